// SPDX-License-Identifier: MIT
#include <DiaryApp/SimpleScripts.h>

#include <QString>

#include <gtest/gtest.h>

namespace diary {
namespace {

TEST(SimpleScripts, areThoseWhoseLettersStandForThemselves) {
    for (const auto letter : QStringLiteral("aÉß ñ\tΩжѢ‘—你、ひカ한！"))
        EXPECT_TRUE(isOfSimpleScript(letter)) << static_cast<int>(letter.unicode());
    // Marks, joiners, stacked and joining scripts, halves of a pair.
    for (const auto unit : QStringLiteral("\u0301\u0483\u05D0\u0628\u0915\u0E01\u200D\u302A\u3099\uFE0F😀"))
        EXPECT_FALSE(isOfSimpleScript(unit)) << static_cast<int>(unit.unicode());
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/FontConfiguration.h>

#include <QFontDatabase>
#include <QFontInfo>

#include <gtest/gtest.h>

namespace diary {
namespace {

QStringList askedFamilies() {
    QStringList families = {QStringLiteral("serif"), QStringLiteral("sans-serif"),
                            QStringLiteral("monospace"), QStringLiteral("Sans Serif"),
                            QStringLiteral("No Such Family")};
    families += QFontInfo(QFont(QStringLiteral("serif"))).family();
    families += QFontInfo(QFont(QStringLiteral("monospace"))).family();
    return families;
}

TEST(FontConfiguration, meansTheFamilyThatQtLoads) {
    for (const auto &family : askedFamilies())
        EXPECT_EQ(FontConfiguration::meantFamily(family), QFontInfo(QFont(family)).family())
            << family.toStdString();
}

TEST(FontConfiguration, meansTheSameWhenItIsReadEarly) {
    // Twice, as a program may start in a process again.
    for (int round = 0; round < 2; ++round) {
        const FontConfiguration::EarlyReading reading;
        FontConfiguration::waitUntilRead();
        // Also when it is asked once more.
        for (const auto &family : askedFamilies() + askedFamilies())
            EXPECT_EQ(FontConfiguration::meantFamily(family), QFontInfo(QFont(family)).family())
                << family.toStdString();
    }
}

TEST(FontConfiguration, listsTheSameFamiliesOnAThread) {
    const auto families = QFontDatabase::families();
    {
        const FontConfiguration::EarlyReading reading;
        const FontConfiguration::EarlyListing listing;
        EXPECT_EQ(QFontDatabase::families(), families);
    }
    // Where nothing is being read.
    const FontConfiguration::EarlyListing listing;
    EXPECT_EQ(QFontDatabase::families(), families);
    EXPECT_FALSE(families.isEmpty());
}

TEST(FontConfiguration, waitsForNothingWhereNothingIsRead) {
    FontConfiguration::waitUntilRead();
    const FontConfiguration::EarlyReading unused;
}

} // namespace
} // namespace diary

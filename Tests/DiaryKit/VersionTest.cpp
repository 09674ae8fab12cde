// SPDX-License-Identifier: MIT
#include <DiaryKit/Version.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace diary {
namespace {

using Numbers = std::vector<std::int64_t>;

TEST(Version, takesTheLeadingDigitsOfEachPiece) {
    EXPECT_EQ(Version::components("1.10.0-beta"), (Numbers{1, 10, 0}));
    EXPECT_EQ(Version::components("2.x"), (Numbers{2, 0}));
    EXPECT_EQ(Version::components("v3.4"), (Numbers{0, 4}));
    EXPECT_EQ(Version::components("-1.+2"), (Numbers{0, 0}));
}

TEST(Version, dropsEmptyPieces) {
    EXPECT_EQ(Version::components(""), Numbers{});
    EXPECT_EQ(Version::components("..1..2."), (Numbers{1, 2}));
}

TEST(Version, keepsTheOrderOfNumbersThatDoNotFit) {
    EXPECT_EQ(Version::components("99999999999999999999"), Numbers{std::numeric_limits<std::int64_t>::max()});
}

TEST(Version, comparesPositionByPosition) {
    EXPECT_TRUE(Version::isNewer("1.10.0", "1.9.9"));
    EXPECT_FALSE(Version::isNewer("1.9.9", "1.10.0"));
    EXPECT_TRUE(Version::isNewer("2", "1.99"));
    EXPECT_TRUE(Version::isNewer("1.2.0.1", "1.2"));
}

TEST(Version, countsMissingComponentsAsZero) {
    EXPECT_FALSE(Version::isNewer("1.2", "1.2.0"));
    EXPECT_FALSE(Version::isNewer("1.2.0", "1.2"));
    EXPECT_FALSE(Version::isNewer("", "0"));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/BundlePath.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace diary {
namespace {

using ::testing::ElementsAre;
using namespace std::string_literals;

TEST(BundlePath, isTakenApart) {
    EXPECT_THAT(bundlePathNames("Tavelo.app"), ElementsAre("Tavelo.app"));
    EXPECT_THAT(bundlePathNames("share/a name, \xc3\xbc"), ElementsAre("share", "a name, \xc3\xbc"));
    EXPECT_THAT(bundlePathNames(".hidden/..two/-dash"), ElementsAre(".hidden", "..two", "-dash"));
    EXPECT_EQ(bundlePathNames(std::string(255, 'n')).size(), 1U);
}

TEST(BundlePath, leadsNowhereElse) {
    for (const auto &path : {""s, "/"s, "/etc/passwd"s, "."s, ".."s, "../x"s, "a/../../x"s, "a/.."s, "a/./b"s,
                             "a//b"s, "a/"s, "a\\b"s, "C:\\x"s, "a\nb"s, "a\0b"s, "\x7f"s}) {
        EXPECT_THROW(bundlePathNames(path), BundleError) << path;
    }
}

TEST(BundlePath, isBounded) {
    EXPECT_THROW(bundlePathNames(std::string(256, 'n')), BundleError);
    std::string deep = "a";
    for (int level = 1; level < 32; ++level)
        deep += "/a";
    EXPECT_EQ(bundlePathNames(deep).size(), 32U);
    EXPECT_THROW(bundlePathNames(deep + "/a"), BundleError);
    const std::string longName(250, 'n');
    EXPECT_THROW(
        bundlePathNames(longName + "/" + longName + "/" + longName + "/" + longName + "/" + longName),
        BundleError);
}

TEST(BundleLink, mayLeadToItsNeighboursAndThroughTheTop) {
    EXPECT_TRUE(linkStaysInside("lib/libone.so", "libone.so.1"));
    EXPECT_TRUE(linkStaysInside("lib/libone.so", "../share/x"));
    EXPECT_TRUE(linkStaysInside("a/b/c", "../../d"));
}

TEST(BundleLink, neverLeadsOut) {
    for (const auto &target : {""s, "/etc/passwd"s, ".."s, "../.."s, "../../x"s, "x/../y"s, "./x"s, "x//y"s,
                               "x/"s, "a\0b"s, "a\\b"s, std::string(5000, 'x')})
        EXPECT_FALSE(linkStaysInside("lib/link", target)) << target;
    EXPECT_FALSE(linkStaysInside("link", "../x"));
}

} // namespace
} // namespace diary

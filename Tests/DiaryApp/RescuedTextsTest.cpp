// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/RescuedTexts.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace diary {
namespace {

using namespace std::chrono_literals;

class RescuedTextsTest : public ::testing::Test {
protected:
    testing::TemporaryFolder folder;
    testing::ScopedEnvironment state{"XDG_STATE_HOME", folder / "state"};
};

TEST_F(RescuedTextsTest, areNoNewsWhileThereAreNone) {
    EXPECT_FALSE(RescuedTexts::haveNews());
    std::filesystem::create_directories(RescuedTexts::folder());
    EXPECT_FALSE(RescuedTexts::haveNews());
}

TEST_F(RescuedTextsTest, areNewsUntilTheUserIsTold) {
    folder.write("state/tavelo/rescued/2025-03-14.md", "Text");
    EXPECT_TRUE(RescuedTexts::haveNews());
    EXPECT_TRUE(RescuedTexts::haveNews());
    RescuedTexts::markAsTold();
    EXPECT_FALSE(RescuedTexts::haveNews());
    EXPECT_EQ(folder.read("state/tavelo/rescued/2025-03-14.md"), "Text");
}

TEST_F(RescuedTextsTest, areNewsAgainWhenAnotherOneComes) {
    folder.write("state/tavelo/rescued/2025-03-14.md", "Text");
    RescuedTexts::markAsTold();
    folder.write("state/tavelo/rescued/2025-03-15.md", "Text");
    std::filesystem::last_write_time(folder / "state/tavelo/rescued/2025-03-15.md",
                                     std::filesystem::file_time_type::clock::now() + 1s);
    EXPECT_TRUE(RescuedTexts::haveNews());
}

} // namespace
} // namespace diary

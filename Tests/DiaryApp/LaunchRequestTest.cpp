// SPDX-License-Identifier: MIT
#include <DiaryApp/LaunchRequest.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace diary {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

CommandLine parsed(std::vector<const char *> words) {
    words.insert(words.begin(), "tavelo");
    return parseCommandLine(static_cast<int>(words.size()), words.data());
}

TEST(LaunchRequest, hasAWordForEachAction) {
    EXPECT_EQ(wordOf(LaunchAction::Show), "");
    EXPECT_EQ(wordOf(LaunchAction::Today), "today");
    EXPECT_EQ(wordOf(LaunchAction::Search), "search");
    for (const auto action : {LaunchAction::Show, LaunchAction::Today, LaunchAction::Search})
        EXPECT_EQ(launchActionNamed(wordOf(action)), action);
}

TEST(LaunchRequest, knowsNoOtherWord) {
    for (const auto *word : {"Today", "today ", "--today", "quit", "show"})
        EXPECT_EQ(launchActionNamed(word), std::nullopt) << word;
}

TEST(LaunchRequest, isReadAsItWasWritten) {
    for (const auto action : {LaunchAction::Show, LaunchAction::Today, LaunchAction::Search}) {
        for (const auto *token : {"", "shell/tavelo/1-0-host_TIME12", "\xd0\xb4"}) {
            const LaunchRequest request{action, token};
            EXPECT_EQ(decodedLaunchRequest(encoded(request)), request) << token;
        }
    }
}

TEST(LaunchRequest, isTheBareTokenWhenItOnlyShowsTheWindow) {
    EXPECT_EQ(encoded({LaunchAction::Show, "token"}), "token");
}

TEST(LaunchRequest, beginsWithTheTokenForVersionsThatKnowNoActions) {
    EXPECT_STREQ(encoded({LaunchAction::Search, "token"}).constData(), "token");
}

TEST(LaunchRequest, showsTheWindowForAWordItDoesNotKnow) {
    const LaunchRequest plain{LaunchAction::Show, "token"};
    for (const auto *word : {"", "erase", "TODAY", "today\n"})
        EXPECT_EQ(decodedLaunchRequest(QByteArray("token") + '\0' + word), plain) << word;
    EXPECT_EQ(decodedLaunchRequest(QByteArray("token\0today\0", 12)), plain);
}

TEST(LaunchRequest, dropsATokenThatIsNone) {
    for (const auto *token : {"a\nb", "\x1b[2J", "a\x7f", "\t"})
        EXPECT_EQ(decodedLaunchRequest(QByteArray(token) + '\0' + "today"),
                  (LaunchRequest{LaunchAction::Today, {}}))
            << token;
}

TEST(CommandLine, opensTheDiaryWithoutArguments) {
    EXPECT_EQ(parsed({}), CommandLine());
    EXPECT_EQ(parseCommandLine(0, nullptr), CommandLine());
}

TEST(CommandLine, takesTheProgramsOwnOptions) {
    EXPECT_EQ(parsed({"--version"}).task, CommandLine::Task::PrintVersion);
    EXPECT_EQ(parsed({"--help"}).task, CommandLine::Task::PrintHelp);
    EXPECT_EQ(parsed({"-h"}).task, CommandLine::Task::PrintHelp);
    EXPECT_EQ(parsed({"--self-test"}).task, CommandLine::Task::TestItself);
    EXPECT_EQ(parsed({"--today"}).action, LaunchAction::Today);
    EXPECT_EQ(parsed({"--search"}).action, LaunchAction::Search);
}

TEST(CommandLine, doesTheLastActionOfSeveral) {
    EXPECT_EQ(parsed({"--search", "--today"}).action, LaunchAction::Today);
    EXPECT_THAT(parsed({"--search", "--today"}).unknown, IsEmpty());
}

TEST(CommandLine, listsWhatItDoesNotKnow) {
    EXPECT_THAT(parsed({"--tody", "--today", "03-14.md", ""}).unknown, ElementsAre("--tody", "03-14.md", ""));
    EXPECT_THAT(parsed({"--today=1"}).unknown, ElementsAre("--today=1"));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/ChildProcess.h"
#include "Support/RunProgram.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaitUntil.h"

#include <DiaryApp/SelfTest.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <map>
#include <string>

namespace diary {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using testing::ProgramCall;

// The program itself, with the user's folders and a place for temporary files.
class SelfTestTest : public ::testing::Test {
protected:
    SelfTestTest() {
        for (const auto *name : {"home", "run", "tmp"})
            std::filesystem::create_directory(folder / name);
        std::filesystem::permissions(folder / "run", std::filesystem::perms::owner_all);
    }

    std::map<std::string, std::string> environment() const {
        return {{"HOME", folder / "home"},
                {"XDG_RUNTIME_DIR", folder / "run"},
                {"TMPDIR", folder / "tmp"},
                {"DIARY_ROOT", folder / "home/vault"},
                {"QT_QPA_PLATFORM", "offscreen"}};
    }
    ProgramCall call() const {
        return {.program = testing::builtProgram("TAVELO_TEST_TAVELO"),
                .arguments = {"--self-test"},
                .environment = environment(),
                .input = {}};
    }
    void expectNothingTouched() const {
        for (const auto *name : {"home", "run", "tmp"})
            EXPECT_THAT(folder.names(name), IsEmpty()) << name;
    }

    testing::TemporaryFolder folder;
};

TEST_F(SelfTestTest, saysThatItIsReadyAndLeavesNothing) {
    const auto result = testing::runProgram(call());
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_THAT(result.output, MatchesRegex("ready [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    expectNothingTouched();
}

TEST_F(SelfTestTest, isNoScriptedRunWhateverTheEnvironmentSays) {
    auto scripted = call();
    scripted.environment.insert({{"DIARY_SCREENSHOT", folder / "home/a.png"},
                                 {"DIARY_TYPE_TEXT", "No"},
                                 {"DIARY_VIEW_ONBOARD", "1"}});
    EXPECT_THAT(testing::runProgram(scripted).output, HasSubstr("ready "));
    expectNothingTouched();
}

TEST_F(SelfTestTest, goesAheadBesideAWindowOfTheVault) {
    testing::ChildProcess window({testing::builtProgram("TAVELO_TEST_TAVELO")},
                                 {{"HOME", folder / "home"},
                                  {"XDG_RUNTIME_DIR", folder / "run"},
                                  {"XDG_STATE_HOME", folder / "home/state"},
                                  {"DIARY_ROOT", folder / "home/vault"}});
    ASSERT_TRUE(testing::waitUntil([&] { return window.handles(SIGTERM); }));
    const auto result = testing::runProgram(call());
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("ready "));
    EXPECT_TRUE(window.isRunning());
}

TEST_F(SelfTestTest, failsWithoutAWindow) {
    auto blind = call();
    blind.environment["QT_QPA_PLATFORM"] = "no-such-platform";
    const auto result = testing::runProgram(blind);
    EXPECT_NE(result.exitCode, 0);
    EXPECT_THAT(result.output, IsEmpty());
}

TEST_F(SelfTestTest, failsWithoutAFolderForItself) {
    auto homeless = call();
    homeless.environment["TMPDIR"] = folder / "no such folder";
    const auto result = testing::runProgram(homeless);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_THAT(result.errors, HasSubstr("no such folder"));
}

TEST_F(SelfTestTest, failsWhenNobodyCanReadItsResult) {
    auto unheard = call();
    unheard.output = ProgramCall::Output::Closed;
    EXPECT_EQ(testing::runProgram(unheard).exitCode, 1);
    EXPECT_THAT(folder.names("tmp"), IsEmpty());
}

TEST_F(SelfTestTest, failsForAnArgumentItDoesNotKnow) {
    auto wrong = call();
    wrong.arguments.emplace_back("--tody");
    const auto result = testing::runProgram(wrong);
    EXPECT_NE(result.exitCode, 0);
    EXPECT_THAT(result.output, Not(HasSubstr("ready")));
    EXPECT_THAT(result.errors, HasSubstr("--tody"));
    expectNothingTouched();
}

} // namespace
} // namespace diary

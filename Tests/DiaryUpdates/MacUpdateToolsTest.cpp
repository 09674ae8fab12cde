// SPDX-License-Identifier: MIT
#include <DiaryUpdates/MacUpdateTools.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace diary {
namespace {

// Starts nothing and remembers what it should have.
class RecordingRunner : public ProcessRunner {
public:
    struct Call {
        QString program;
        QStringList arguments;
    };

    void run(const QString &program, const QStringList &arguments, Completion completion) override {
        runs.push_back({program, arguments});
        completions.push_back(std::move(completion));
    }
    bool startDetached(const QString &program, const QStringList &arguments) override {
        detached.push_back({program, arguments});
        return canStart;
    }

    std::vector<Call> runs;
    std::vector<Completion> completions;
    std::vector<Call> detached;
    bool canStart = true;
};

class MacUpdateToolsTest : public ::testing::Test {
protected:
    UpdateTools::Completion note() {
        return [this](const auto &error) { answers.push_back(error); };
    }

    RecordingRunner runner;
    std::unique_ptr<UpdateTools> tools = std::make_unique<MacUpdateTools>(runner, QStringLiteral("TEAM123"));
    std::vector<std::optional<QString>> answers;
};

TEST_F(MacUpdateToolsTest, unpacksWithDitto) {
    tools->unpack("/staging folder/update.zip", "/staging folder", note());
    ASSERT_EQ(runner.runs.size(), 1U);
    EXPECT_EQ(runner.runs[0].program, QStringLiteral("/usr/bin/ditto"));
    EXPECT_EQ(runner.runs[0].arguments,
              QStringList({QStringLiteral("-x"), QStringLiteral("-k"),
                           QStringLiteral("/staging folder/update.zip"), QStringLiteral("/staging folder")}));
}

TEST_F(MacUpdateToolsTest, verifiesTheSignatureAndTheTeamWithCodesign) {
    tools->verify("/staging/Tavelo.app",
                  {.version = QStringLiteral("2"), .runningVersion = QStringLiteral("1")}, note());
    ASSERT_EQ(runner.runs.size(), 1U);
    EXPECT_EQ(runner.runs[0].program, QStringLiteral("/usr/bin/codesign"));
    EXPECT_EQ(runner.runs[0].arguments,
              QStringList({QStringLiteral("--verify"), QStringLiteral("--deep"), QStringLiteral("--strict"),
                           QStringLiteral("-R=anchor apple generic and certificate leaf[subject.OU] = "
                                          "\"TEAM123\""),
                           QStringLiteral("/staging/Tavelo.app")}));
}

TEST_F(MacUpdateToolsTest, saysHowTheToolEnded) {
    tools->unpack("/a", "/b", note());
    tools->verify("/c", {}, note());
    EXPECT_TRUE(answers.empty());
    runner.completions[0](std::nullopt);
    runner.completions[1](QStringLiteral("status 1"));
    EXPECT_EQ(answers, (std::vector<std::optional<QString>>{std::nullopt, QStringLiteral("status 1")}));
}

TEST_F(MacUpdateToolsTest, answersNobodyOnceItIsGone) {
    tools->unpack("/a", "/b", note());
    tools.reset();
    runner.completions[0](std::nullopt);
    EXPECT_TRUE(answers.empty());
}

TEST_F(MacUpdateToolsTest, hasItsScriptByteForByte) {
    EXPECT_EQ(tools->installScript(),
              QByteArray("#!/bin/sh\n"
                         "while kill -0 \"$1\" 2>/dev/null; do sleep 0.2; done\n"
                         "rm -rf \"$3\"\n"
                         "/usr/bin/ditto \"$2\" \"$3\"\n"
                         "/usr/bin/xattr -dr com.apple.quarantine \"$3\" 2>/dev/null\n"
                         "rm -rf \"$4\""));
}

TEST_F(MacUpdateToolsTest, launchesItsScriptAndDoesNotWait) {
    EXPECT_TRUE(tools->launchInstallScript("/s/install.sh", 4711, "/s/New App.app",
                                           "/Applications/Tavelo.app", "/s"));
    ASSERT_EQ(runner.detached.size(), 1U);
    EXPECT_EQ(runner.detached[0].program, QStringLiteral("/bin/sh"));
    EXPECT_EQ(runner.detached[0].arguments,
              QStringList({QStringLiteral("/s/install.sh"), QStringLiteral("4711"),
                           QStringLiteral("/s/New App.app"), QStringLiteral("/Applications/Tavelo.app"),
                           QStringLiteral("/s")}));
    EXPECT_TRUE(runner.runs.empty());
}

TEST_F(MacUpdateToolsTest, saysThatTheScriptCouldNotBeLaunched) {
    runner.canStart = false;
    EXPECT_FALSE(tools->launchInstallScript("/s/install.sh", 1, "/s/a.app", "/b.app", "/s"));
}

TEST_F(MacUpdateToolsTest, launchesNothingOverAPathThatWouldChangeOnTheWay) {
    EXPECT_FALSE(tools->launchInstallScript("/s/install.sh", 1, "/s/a.app", "/b\xff/Tavelo.app", "/s"));
    EXPECT_TRUE(runner.detached.empty());
}

} // namespace
} // namespace diary

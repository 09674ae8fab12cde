// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <DiaryUpdates/ProcessRunner.h>

#include <QTest>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

namespace diary {
namespace {

class ProcessRunnerTest : public ::testing::Test {
protected:
    // What a program said at its end.
    std::optional<QString> run(const QString &program, const QStringList &arguments) {
        bool hasEnded = false;
        std::optional<QString> said;
        runner.run(program, arguments, [&](const auto &error) {
            hasEnded = true;
            said = error;
        });
        EXPECT_FALSE(hasEnded);
        EXPECT_TRUE(QTest::qWaitFor([&] { return hasEnded; }, 30'000));
        return said;
    }
    std::optional<QString> shell(const std::string &script, const QStringList &more = {}) {
        return run(QStringLiteral("/bin/sh"),
                   QStringList{QStringLiteral("-c"), QString::fromStdString(script), QStringLiteral("sh")} +
                       more);
    }

    bool appears(const char *name) const {
        return QTest::qWaitFor([&] { return std::filesystem::exists(folder / name); }, 30'000);
    }

    testing::TemporaryFolder folder;
    SystemProcessRunner runner;
};

TEST_F(ProcessRunnerTest, isContentWithStatusZero) {
    EXPECT_EQ(shell("exit 0"), std::nullopt);
}

TEST_F(ProcessRunnerTest, saysWhenAProgramFails) {
    EXPECT_EQ(shell("exit 3"), QStringLiteral("/bin/sh exited with status 3"));
    EXPECT_EQ(shell("kill -9 $$"), QStringLiteral("/bin/sh was killed"));
}

TEST_F(ProcessRunnerTest, saysWhenAProgramCannotBeStarted) {
    const auto missing = QString::fromStdString(folder / "missing");
    EXPECT_EQ(run(missing, {}), missing + QStringLiteral(" cannot be started"));
}

TEST_F(ProcessRunnerTest, passesArgumentsAsTheyAre) {
    const auto path = QString::fromStdString(folder / "a $(b) 'c' \"ä\"");
    EXPECT_EQ(shell("test $# = 2 && test -z \"$2\" && : >\"$1\"", {path, QString()}), std::nullopt);
    EXPECT_EQ(folder.names(), std::set<std::string>{"a $(b) 'c' \"ä\""});
}

TEST_F(ProcessRunnerTest, discardsWhatAProgramPrintsHoweverMuch) {
    EXPECT_EQ(shell("head -c 1000000 /dev/zero; head -c 1000000 /dev/zero >&2"), std::nullopt);
}

TEST_F(ProcessRunnerTest, runsSeveralAtATime) {
    // The first ends when the second has run.
    bool hasEnded = false;
    runner.run(QStringLiteral("/bin/sh"),
               {QStringLiteral("-c"), QStringLiteral("while ! test -e \"$0\"; do sleep 0.01; done"),
                QString::fromStdString(folder / "go")},
               [&](const auto &error) { hasEnded = !error; });
    EXPECT_EQ(shell(": >\"$1\"", {QString::fromStdString(folder / "go")}), std::nullopt);
    EXPECT_TRUE(QTest::qWaitFor([&] { return hasEnded; }, 30'000));
}

TEST_F(ProcessRunnerTest, endsWhatItRunsWhenItGoes) {
    bool isAnswered = false;
    pid_t process = 0;
    {
        SystemProcessRunner own;
        own.run(QStringLiteral("/bin/sh"),
                {QStringLiteral("-c"),
                 QStringLiteral("echo $$ >\"$0.new\"; mv \"$0.new\" \"$0\"; exec sleep 600"),
                 QString::fromStdString(folder / "pid")},
                [&](const auto &) { isAnswered = true; });
        ASSERT_TRUE(appears("pid"));
        process = std::stoi(folder.read("pid"));
    }
    EXPECT_EQ(::kill(process, 0), -1);
    EXPECT_EQ(errno, ESRCH);
    EXPECT_FALSE(isAnswered);
}

TEST_F(ProcessRunnerTest, mayBeDestroyedByItsCompletion) {
    auto own = std::make_unique<SystemProcessRunner>();
    bool isAnswered = false;
    own->run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("exit 0")}, [&](const auto &) {
        own.reset();
        isAnswered = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return isAnswered; }, 30'000));
}

TEST_F(ProcessRunnerTest, leavesADetachedProgramRunning) {
    {
        SystemProcessRunner own;
        EXPECT_TRUE(own.startDetached(
            QStringLiteral("/bin/sh"),
            {QStringLiteral("-c"),
             QStringLiteral("while ! test -e \"$0/go\"; do sleep 0.01; done; : >\"$0/done\""),
             QString::fromStdString(folder.path())}));
    }
    folder.write("go", "");
    EXPECT_TRUE(appears("done"));
}

TEST_F(ProcessRunnerTest, saysWhenADetachedProgramCannotBeStarted) {
    EXPECT_FALSE(runner.startDetached(QString::fromStdString(folder / "missing"), {}));
}

} // namespace
} // namespace diary

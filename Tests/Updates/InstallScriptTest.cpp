// SPDX-License-Identifier: MIT
#include "Support/ChildProcess.h"
#include "Support/ForkedTask.h"
#include "Support/InstalledBundle.h"
#include "Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using testing::ChildProcess;
using testing::endedProcess;
using testing::InstalledBundle;
using testing::ownMounts;
using testing::reportOfFork;
using testing::waitUntil;
using Names = std::set<std::string>;
using Swap = InstalledBundle::Swap;

void expectInstalled(const InstalledBundle &place, const std::string &version) {
    EXPECT_EQ(place.installedVersion(), version);
    EXPECT_EQ(place.outcome(), "installed " + version);
    EXPECT_EQ(place.names(place.applications()), Names{"Tavelo.app"});
    EXPECT_EQ(place.names(place.staging().parent_path()), Names{"update-outcome"});
}

void expectKept(const InstalledBundle &place, const std::string &reason) {
    EXPECT_EQ(place.installedVersion(), "1.0");
    EXPECT_EQ(place.outcome(), "kept 2.0 " + reason);
    EXPECT_EQ(place.names(place.applications()), Names{"Tavelo.app"});
    EXPECT_EQ(place.names(place.staging().parent_path()), Names{"update-outcome"});
}

TEST(InstallScript, putsTheNewBundleInPlaceOfTheOld) {
    for (const auto swap : {Swap::InOneStep, Swap::ByTwoRenames}) {
        const InstalledBundle place(swap);
        EXPECT_EQ(place.run(endedProcess()).exitCode, 0);
        expectInstalled(place, "2.0");
    }
}

TEST(InstallScript, worksWithPathsOfEveryKind) {
    for (const auto *odd : {"with blanks", "it's \"quoted\"", "two\nlines", "-rf", "ends with a break\n",
                            "$HOME", "*", "\xff", "back\\slash"}) {
        const InstalledBundle place(Swap::InOneStep, fs::path(odd) / "x");
        EXPECT_EQ(place.run(endedProcess()).exitCode, 0) << odd;
        expectInstalled(place, "2.0");
    }
}

TEST(InstallScript, waitsForTheProgramToEnd) {
    const InstalledBundle place;
    const auto waited = place.applications().parent_path() / "waited";
    place.replaceInScript("sleep 0.2", "sleep 0.2; echo >>'" + waited.string() + "'");
    ChildProcess program({"sh", "-c", "echo $$; exec sleep 1000"});
    ASSERT_TRUE(waitUntil([&] { return program.output().ends_with('\n'); }));
    ChildProcess script(place.command(std::stoi(program.output())));
    ASSERT_TRUE(waitUntil([&] { return fs::exists(waited) && fs::file_size(waited) > 1; }));
    EXPECT_TRUE(script.isRunning());
    EXPECT_EQ(place.installedVersion(), "1.0");
    EXPECT_EQ(place.names(place.applications()), Names{"Tavelo.app"});
    program.sendSignal(SIGKILL);
    program.waitForExit();
    EXPECT_EQ(script.waitForExit(), 0);
    fs::remove(waited);
    expectInstalled(place, "2.0");
}

TEST(InstallScript, doesNotWaitForAProgramThatHasEndedAndIsNotMissedYet) {
    const InstalledBundle place;
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0)
        ::_exit(0);
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(place.run(child).exitCode, 0);
    ::waitpid(child, nullptr, 0);
    expectInstalled(place, "2.0");
}

TEST(InstallScript, givesUpWhenTheProgramDoesNotEnd) {
    const InstalledBundle place;
    place.replaceInScript("patience=3000", "patience=1");
    EXPECT_EQ(place.run(::getpid()).exitCode, 1);
    expectKept(place, "the program did not end");
}

TEST(InstallScript, keepsTheOldProgramWhenTheNewDoesNotStart) {
    for (const auto *trial : {"exit 1", "exit 0", "echo ready 2.0; exit 1", "echo ready 1.9",
                              "echo not ready 2.0", "kill -KILL $$", "echo ready 2x0"}) {
        const InstalledBundle place;
        place.stage("2.0", trial);
        EXPECT_EQ(place.run(endedProcess()).exitCode, 1) << trial;
        expectKept(place, "it did not start");
    }
}

TEST(InstallScript, keepsTheOldProgramWhenTheNewHangs) {
    const InstalledBundle place;
    place.stage("2.0", "echo ready 2.0; sleep 1000");
    place.replaceInScript("trial=60", "trial=1");
    EXPECT_EQ(place.run(endedProcess()).exitCode, 1);
    expectKept(place, "it did not start");
}

TEST(InstallScript, triesTheNewProgramOffScreenAndInItsOwnFolders) {
    const InstalledBundle place;
    place.stage("2.0",
                "[ $QT_QPA_PLATFORM = offscreen ] && [ -d \"$HOME\" ] && [ \"$TMPDIR\" = \"$HOME\" ] &&"
                " case $HOME in */Updates/*) echo ready 2.0 ;; esac");
    EXPECT_EQ(place.run(endedProcess()).exitCode, 0);
    expectInstalled(place, "2.0");
}

TEST(InstallScript, keepsTheOldProgramWhereItMayNotWrite) {
    const InstalledBundle place;
    fs::permissions(place.applications(), static_cast<fs::perms>(0555));
    EXPECT_EQ(place.run(endedProcess()).exitCode, 1);
    fs::permissions(place.applications(), static_cast<fs::perms>(0755));
    expectKept(place, "it could not be copied");
}

TEST(InstallScript, keepsTheOldProgramWhenTheFolderOfTheProgramIsGoneOrALink) {
    const InstalledBundle place;
    fs::rename(place.installed(), place.applications() / "elsewhere");
    EXPECT_EQ(place.run(endedProcess()).exitCode, 1);
    EXPECT_EQ(place.outcome(), "kept 2.0 the program is not where it was");
    place.stage("2.0");
    fs::create_directory_symlink("elsewhere", place.installed());
    EXPECT_EQ(place.run(endedProcess()).exitCode, 1);
    EXPECT_EQ(place.outcome(), "kept 2.0 the program is not where it was");
    EXPECT_EQ(place.installedVersion(), "1.0");

    place.stage("2.0");
    fs::rename(place.applications(), place.applications().parent_path() / "moved");
    EXPECT_EQ(place.run(endedProcess()).exitCode, 1);
    EXPECT_EQ(place.outcome(), "kept 2.0 the folder of the program cannot be read");
}

TEST(InstallScript, keepsTheOldProgramOnAFullDisk) {
    const InstalledBundle place;
    const auto report = reportOfFork([&]() -> std::string {
        if (auto reason = ownMounts(); !reason.empty())
            return "skip: " + reason;
        // What the old bundle takes and half of what the new one would.
        fs::rename(place.installed(), place.applications().parent_path() / "aside");
        if (::mount("none", place.applications().c_str(), "tmpfs", 0, "size=16m") < 0)
            return "skip: no small file system";
        fs::copy(place.applications().parent_path() / "aside", place.installed(),
                 fs::copy_options::recursive);
        std::ofstream filler(place.applications() / "filler", std::ios::binary);
        const std::string block(4096, 'x');
        while (filler.write(block.data(), 4096).flush()) {
        }
        filler.close();
        const int exitCode = place.run(endedProcess()).exitCode;
        fs::remove(place.applications() / "filler");
        return std::to_string(exitCode) + ", " + place.outcome() + ", " + place.installedVersion() + ", " +
               std::to_string(place.names(place.applications()).size());
    });
    if (report.starts_with("skip: "))
        GTEST_SKIP() << report;
    EXPECT_EQ(report, "1, kept 2.0 it could not be copied, 1.0, 1");
}

TEST(InstallScript, bringsAnOldBundleBackThatAKilledRunHadMovedAside) {
    const InstalledBundle place;
    const auto number = std::to_string(endedProcess());
    fs::rename(place.installed(), place.applications() / (".Tavelo.app.old." + number));
    place.makeBundle(place.applications() / (".Tavelo.app.new." + number), "1.5");
    place.stage("2.0", "exit 1");
    EXPECT_EQ(place.run(endedProcess()).exitCode, 1);
    expectKept(place, "it did not start");
}

TEST(InstallScript, clearsWhatKilledRunsLeftButNotWhatOthersUse) {
    const InstalledBundle place;
    const auto number = std::to_string(endedProcess());
    const auto running = ".Tavelo.app.new." + std::to_string(::getpid());
    for (const auto &name : {".Tavelo.app.new." + number, ".Tavelo.app.old." + number, running})
        place.makeBundle(place.applications() / name, "1.5");
    fs::create_directory(place.applications() / ".Tavelo.app.newer");
    EXPECT_EQ(place.run(endedProcess()).exitCode, 0);
    EXPECT_EQ(place.installedVersion(), "2.0");
    EXPECT_EQ(place.names(place.applications()), (Names{"Tavelo.app", ".Tavelo.app.newer", running}));
}

TEST(InstallScript, runTwiceAtOnceInstallsOnce) {
    for (const auto swap : {Swap::InOneStep, Swap::ByTwoRenames}) {
        for (int round = 0; round < 5; ++round) {
            const InstalledBundle place(swap);
            const int process = endedProcess();
            ChildProcess one(place.command(process));
            ChildProcess other(place.command(process));
            // Whoever begins when all is done finds no script.
            EXPECT_THAT(one.waitForExit().value_or(-1), AnyOf(0, 2, 127));
            EXPECT_THAT(other.waitForExit().value_or(-1), AnyOf(0, 2, 127));
            expectInstalled(place, "2.0");
        }
    }
}

TEST(InstallScript, isNotEndedByALogOut) {
    const InstalledBundle place;
    const auto trying = place.applications().parent_path() / "trying";
    const auto go = place.applications().parent_path() / "go";
    place.stage("2.0", "touch '" + trying.string() + "'; until [ -e '" + go.string() +
                           "' ]; do sleep 0.01; done; echo ready 2.0");
    ChildProcess script(place.command(endedProcess()));
    ASSERT_TRUE(waitUntil([&] { return fs::exists(trying); }));
    for (const int number : {SIGHUP, SIGINT, SIGTERM})
        script.sendSignal(number);
    std::ofstream(go).close();
    EXPECT_EQ(script.waitForExit(), 0);
    fs::remove(go);
    fs::remove(trying);
    expectInstalled(place, "2.0");
}

} // namespace
} // namespace diary

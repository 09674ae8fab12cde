// SPDX-License-Identifier: MIT
//
// Staging and installing that are killed at every point there is: strace counts the system calls of one
// undisturbed run, then each of them is made to kill its process, one run each.

#include "Support/ForkedTask.h"
#include "Support/InstalledBundle.h"
#include "Support/RunProgram.h"
#include "Support/TemporaryFolder.h"
#include "Support/TestBundle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace diary {
namespace {

namespace fs = std::filesystem;
using testing::builtProgram;
using testing::endedProcess;
using testing::InstalledBundle;
using testing::ProgramCall;
using testing::ProgramResult;
using testing::runProgram;
using testing::TemporaryFolder;
using testing::TestBundle;
using Names = std::set<std::string>;
using Swap = InstalledBundle::Swap;

constexpr int killedExit = 128 + SIGKILL;

struct SystemCall {
    std::string name;
    int occurrence; // from 1, among the calls of this name in one process
};

std::string killing(const SystemCall &call) {
    return "inject=" + call.name + ":signal=KILL:when=" + std::to_string(call.occurrence);
}

ProgramResult run(const std::vector<std::string> &words) {
    ProgramCall call;
    call.program = "/usr/bin/env";
    call.arguments = words;
    // A traced process cannot be searched for leaks.
    call.environment = {{"ASAN_OPTIONS", "detect_leaks=0"}};
    return runProgram(call);
}

bool mayTrace() {
    return run({"strace", "-qq", "-o", "/dev/null", "true"}).exitCode == 0;
}

// The calls in a log of strace -f -o that the filter wants: each name as often as the process made it that
// made it most often.
std::vector<SystemCall>
callsIn(const fs::path &log,
        const std::function<bool(const std::string &name, const std::string &line)> &wanted) {
    std::ifstream lines(log);
    std::map<std::pair<std::string, std::string>, int> counts;
    std::set<std::pair<std::string, int>> calls;
    for (std::string line; std::getline(lines, line);) {
        const auto space = line.find(' ');
        const auto start = line.find_first_not_of(' ', space);
        const auto parenthesis = line.find('(');
        if (start == std::string::npos || parenthesis == std::string::npos || parenthesis < start)
            continue;
        const auto name = line.substr(start, parenthesis - start);
        if (name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") != std::string::npos)
            continue;
        const int occurrence = ++counts[{line.substr(0, space), name}];
        if (wanted(name, line))
            calls.insert({name, occurrence});
    }
    std::vector<SystemCall> result;
    for (const auto &[name, occurrence] : calls)
        result.push_back({name, occurrence});
    return result;
}

// Two at a time.
void runAll(const std::vector<SystemCall> &calls, const std::function<void(const SystemCall &)> &run) {
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (auto index = next++; index < calls.size(); index = next++)
            run(calls[index]);
    };
    const std::jthread other(work);
    work();
}

std::vector<std::string> traced(const std::vector<std::string> &options,
                                const std::vector<std::string> &words) {
    std::vector<std::string> all = {"strace", "-f", "-qq", "-y", "-s", "4096"};
    all.insert(all.end(), options.begin(), options.end());
    all.insert(all.end(), words.begin(), words.end());
    return all;
}

TEST(StagingFaults, leaveNothingThatIsTakenForWhole) {
    if (!mayTrace())
        GTEST_SKIP() << "this machine permits no tracing";
    const TestBundle bundle;
    const auto archive = bundle.archive();
    const auto contents = bundleContents(bundle.path(), {});
    const auto stagingOf = [&](const fs::path &folder) {
        return std::vector<std::string>{builtProgram("TAVELO_TEST_STAGE_ONCE"), archive.string(),
                                        folder.string(), bundle.key().publicKey().text(), "2.0"};
    };
    const TemporaryFolder first;
    fs::create_directory(first / "staging");
    const auto log = first / "log";
    ASSERT_EQ(run(traced({"-o", log.string()}, stagingOf(first / "staging"))).exitCode, 0);
    const auto calls = callsIn(log, [&](const std::string &name, const std::string &line) {
        return name != "execve" && (line.find((first / "staging").string()) != std::string::npos ||
                                    line.find(archive.string()) != std::string::npos || name == "exit_group");
    });
    ASSERT_GT(calls.size(), 40U);

    std::atomic<std::size_t> killed = 0;
    runAll(calls, [&](const SystemCall &call) {
        SCOPED_TRACE(killing(call));
        const TemporaryFolder place;
        const auto staging = place / "staging";
        fs::create_directory(staging);
        const auto result = run(
            traced({"-o", "/dev/null", "-e", "trace=" + call.name, "-e", killing(call)}, stagingOf(staging)));
        killed += result.exitCode == killedExit ? 1U : 0U;
        EXPECT_EQ(place.names(), Names{"staging"});
        try {
            verifyBundle(staging / "Tavelo.app", bundle.expectation(), {});
            EXPECT_EQ(bundleContents(staging / "Tavelo.app", {}), contents);
        } catch (const std::exception &) {
            EXPECT_NE(result.exitCode, 0);
        }
        // From the beginning, as the next check does.
        fs::remove_all(staging);
        fs::create_directory(staging);
        EXPECT_EQ(run(stagingOf(staging)).exitCode, 0);
    });
    EXPECT_EQ(killed, calls.size());
}

// The calls by which the script and its programs change something or start each other.
bool changesSomething(const std::string &name, const std::string &line) {
    static const std::set<std::string> changing = {
        "clone", "clone3",          "vfork",  "fork",      "execve",    "wait4",    "write",
        "mkdir", "mkdirat",         "rename", "renameat2", "unlink",    "unlinkat", "rmdir",
        "fsync", "copy_file_range", "fchmod", "syncfs",    "exit_group"};
    return changing.contains(name) || (name == "openat" && line.find("O_CREAT") != std::string::npos);
}

class InstallFaults : public ::testing::TestWithParam<Swap> {};

TEST_P(InstallFaults, leaveTheOldProgramOrTheNewWhenAnyProcessIsKilled) {
    if (!mayTrace())
        GTEST_SKIP() << "this machine permits no tracing";
    const InstalledBundle undisturbed(GetParam());
    const auto log = undisturbed.applications().parent_path() / "log";
    const int process = endedProcess();
    ASSERT_EQ(undisturbed.run(process, traced({"-o", log.string()}, {})).exitCode, 0);
    const auto calls = callsIn(log, changesSomething);
    ASSERT_GT(calls.size(), 60U);

    std::atomic<int> kept = 0;
    std::atomic<int> replaced = 0;
    runAll(calls, [&](const SystemCall &call) {
        SCOPED_TRACE(killing(call));
        const InstalledBundle place(GetParam());
        place.run(process, traced({"-o", "/dev/null", "-e", "trace=" + call.name, "-e", killing(call)}, {}));
        const auto version = place.installedVersion();
        kept += version == "1.0" ? 1 : 0;
        replaced += version == "2.0" ? 1 : 0;
        // Between two renames there is neither, for a moment or until the next run.
        const bool mayBeMissing = GetParam() == Swap::ByTwoRenames;
        EXPECT_TRUE(version == "1.0" || version == "2.0" || (mayBeMissing && version.empty())) << version;
        EXPECT_TRUE(version == "2.0" || place.outcome() != "installed 2.0");

        place.stage("3.0");
        EXPECT_EQ(place.run(process).exitCode, 0);
        EXPECT_EQ(place.installedVersion(), "3.0");
        EXPECT_EQ(place.outcome(), "installed 3.0");
        EXPECT_EQ(place.names(place.applications()), Names{"Tavelo.app"});
    });
    EXPECT_GT(kept, 10);
    EXPECT_GT(replaced, 10);
}

INSTANTIATE_TEST_SUITE_P(With, InstallFaults, ::testing::Values(Swap::InOneStep, Swap::ByTwoRenames),
                         [](const auto &swap) {
                             return swap.param == Swap::InOneStep ? "an_exchange_in_one_step" : "two_renames";
                         });

} // namespace
} // namespace diary

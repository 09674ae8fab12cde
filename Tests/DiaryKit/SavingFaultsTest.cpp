// SPDX-License-Identifier: MIT
//
// Saves that are killed, fail or meet others at every point there is: strace counts the system calls of one
// undisturbed save, then each of them is made to kill the process or to fail, one run each.

#include "Support/RunProgram.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/YearSectionParser.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <linux/fs.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using testing::builtProgram;
using ::testing::Contains;
using ::testing::IsSubsetOf;
using testing::ProgramCall;
using testing::ProgramResult;
using testing::runProgram;
using testing::TemporaryFolder;
using Names = std::set<std::string>;
using Content = std::optional<std::string>;

constexpr MonthDay piDay{3, 14};
constexpr const char *entry = "a new entry";
constexpr const char *otherEntry = "of another program";
constexpr int killedExit = 128 + SIGKILL;

std::string withEntry(const std::string &text, std::int64_t year, std::string_view body) {
    return YearSectionParser::replacingEntry(body, year, piDay, text);
}

// What there is before the save, and what may and must be there afterwards.
struct Scenario {
    const char *name = "";
    Content old;    // the day file; none: no vault folder either
    Content theirs; // what another program puts in its place while the new file is being prepared
    std::string saved;
    std::string savedWithTheirs;
};

void PrintTo(const Scenario &scenario, std::ostream *stream) {
    *stream << scenario.name;
}

const std::string oldText = withEntry(withEntry(withEntry("# 03-14\n", 2022, "first"), 2023, "second"), 2024,
                                      "the old entry\n\nof two paragraphs");
const std::string theirText = withEntry(oldText, 2025, otherEntry);

const std::array scenarios = {
    Scenario{"a file with three years", oldText, {}, withEntry(oldText, 2024, entry), {}},
    Scenario{"no folder", {}, {}, withEntry("# 03-14\n", 2024, entry), {}},
    Scenario{"a file that another program replaces meanwhile", oldText, theirText,
             withEntry(oldText, 2024, entry), withEntry(theirText, 2024, entry)},
};

// Whether the other program got between the save's look at the file and the swap.
enum class Rival { None, InTime, Late };

struct TracedSave {
    ProgramResult program;
    Rival rival = Rival::None;
};

// Files in memory: the tests save some thousand times, and a slow disk would only keep the writers apart.
std::optional<std::string> folderInMemory() {
    const char *path = "/dev/shm";
    return ::access(path, W_OK | X_OK) == 0 ? std::optional<std::string>(path) : std::nullopt;
}

// One folder with a vault, and programs that save into it.
class Place {
public:
    explicit Place(const Scenario &scenario) : m_scenario(scenario) {
        if (scenario.old)
            m_folder.write(dayFileName, *scenario.old);
        if (scenario.theirs)
            m_folder.write("theirs", *scenario.theirs);
    }

    ProgramResult save(std::int64_t year, const std::string &text) const {
        return run({builtProgram("TAVELO_TEST_SAVE_ONCE"), vault(), "03-14", std::to_string(year), text});
    }

    // The scenario's save under strace, which traces the call `traced` (all when empty).
    TracedSave trace(const std::string &traced, const std::vector<std::string> &options) const {
        std::vector<std::string> words = {"strace", "-f", "-qq", "-y", "-s", "4096"};
        words.insert(words.end(), options.begin(), options.end());
        // Time for the other program, between the look at the file and the swap.
        const std::string delayed = traced == "fsync" ? "renameat2" : "fsync";
        if (!traced.empty())
            words.insert(words.end(), {"-e", "trace=" + traced + (m_scenario.theirs ? "," + delayed : "")});
        if (m_scenario.theirs)
            words.insert(words.end(), {"-e", "inject=" + delayed + ":delay_enter=20000:when=1"});
        words.insert(words.end(), {builtProgram("TAVELO_TEST_SAVE_ONCE"), vault(), "03-14", "2024", entry});

        TracedSave traceResult;
        std::jthread rival([&](const std::stop_token &stop) {
            if (m_scenario.theirs)
                traceResult.rival = overtake(stop);
        });
        traceResult.program = run(words);
        rival.request_stop();
        rival.join();
        return traceResult;
    }

    Content dayFile() const { return content(m_folder / dayFileName); }

    bool holdsTheirs() const {
        std::vector<fs::path> files = {m_folder / "theirs", m_folder / dayFileName};
        for (const auto &name : m_folder.names("state/tavelo/resolved"))
            files.push_back(m_folder / "state/tavelo/resolved" / name);
        return std::any_of(files.begin(), files.end(), [](const fs::path &file) {
            return content(file).value_or("").find(otherEntry) != std::string::npos;
        });
    }

    Names names() const { return m_folder.names("vault"); }
    std::string vault() const { return (m_folder / "vault").string(); }
    fs::path file(const char *name) const { return m_folder / name; }

    static Content content(const fs::path &file) {
        std::error_code error;
        return readWholeFile(file, error);
    }

    ProgramResult run(const std::vector<std::string> &words) const {
        ProgramCall call;
        call.program = "/usr/bin/env";
        call.arguments = words;
        // A traced process cannot be searched for leaks.
        call.environment = {{"HOME", m_folder.path()},
                            {"XDG_STATE_HOME", m_folder / "state"},
                            {"ASAN_OPTIONS", "detect_leaks=0"}};
        return runProgram(call);
    }

private:
    static constexpr const char *dayFileName = "vault/03-14.md";

    // Puts `theirs` in the day file's place as soon as a new file is being prepared.
    Rival overtake(const std::stop_token &stop) const {
        while (!stop.stop_requested()) {
            for (const auto &name : names()) {
                if (!name.starts_with(".~"))
                    continue;
                const auto theirs = m_folder / "theirs";
                if (::renameat2(AT_FDCWD, theirs.c_str(), AT_FDCWD, (m_folder / dayFileName).c_str(),
                                RENAME_EXCHANGE) < 0)
                    return Rival::None;
                return content(theirs) == m_scenario.old ? Rival::InTime : Rival::Late;
            }
            std::this_thread::sleep_for(std::chrono::microseconds{200});
        }
        return Rival::None;
    }

    const Scenario &m_scenario;
    TemporaryFolder m_folder;
};

struct SystemCall {
    std::string name;
    int occurrence; // from 1, among the calls of this name in the whole process
};

// The calls that concern the place, by path or by open file, and the one that ends the process. The start of
// a program and its sanitizer make many others.
std::vector<SystemCall> systemCallsOf(const Scenario &scenario) {
    const Place place(scenario);
    const auto log = place.file("log");
    const auto result = place.trace({}, {"-o", log.string()});
    EXPECT_EQ(result.program.exitCode, 0) << result.program.errors;

    std::istringstream lines(Place::content(log).value_or(""));
    std::map<std::string, int> counts;
    std::vector<SystemCall> calls;
    for (std::string line; std::getline(lines, line);) {
        const auto start = line.find_first_not_of("0123456789 ");
        const auto parenthesis = line.find('(');
        if (start == std::string::npos || parenthesis == std::string::npos || parenthesis < start)
            continue;
        const auto name = line.substr(start, parenthesis - start);
        const int occurrence = ++counts[name];
        const bool concernsPlace = line.find(place.vault()) != std::string::npos &&
                                   line.find("/proc/") == std::string::npos && name != "execve";
        if (concernsPlace || name == "exit_group")
            calls.push_back({name, occurrence});
    }
    return calls;
}

// Two at a time.
template <typename Case>
void runAll(const std::vector<Case> &cases, const std::function<void(const Case &)> &run) {
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (auto index = next++; index < cases.size(); index = next++)
            run(cases[index]);
    };
    const std::jthread other(work);
    work();
}

class SavingFaults : public ::testing::TestWithParam<Scenario> {
protected:
    void SetUp() override {
        const auto result = Place(GetParam()).run({"strace", "-qq", "-o", "/dev/null", "true"});
        if (result.exitCode != 0)
            GTEST_SKIP() << "this machine permits no tracing: " << result.errors;
        m_calls = systemCallsOf(GetParam());
        // Far fewer would mean that the log was not understood.
        ASSERT_GT(m_calls.size(), 20U);
    }

    // What the day file may be after a save that ended.
    static std::vector<Content> contentsAfter(const TracedSave &save) {
        const auto &scenario = GetParam();
        const bool saved = save.program.exitCode == 0;
        switch (save.rival) {
        case Rival::None:
            return saved ? std::vector<Content>{scenario.saved}
                         : std::vector<Content>{scenario.old, scenario.saved};
        case Rival::InTime:
            return saved ? std::vector<Content>{scenario.savedWithTheirs}
                         : std::vector<Content>{scenario.theirs, scenario.savedWithTheirs};
        case Rival::Late:
            break;
        }
        return {scenario.theirs, scenario.savedWithTheirs};
    }

    const testing::ScopedEnvironment m_temporaryFolders{"TMPDIR", folderInMemory()};
    std::vector<SystemCall> m_calls;
};

std::string injection(const SystemCall &call, const std::string &fault, const char *howOften = "") {
    return "inject=" + call.name + ":" + fault + ":when=" + std::to_string(call.occurrence) + howOften;
}

TEST_P(SavingFaults, leaveTheOldFileOrTheNewWhenTheProcessIsKilled) {
    const auto &scenario = GetParam();
    std::atomic<int> killed = 0;
    std::atomic<int> overtaken = 0;
    runAll<SystemCall>(m_calls, [&](const SystemCall &call) {
        const Place place(scenario);
        const auto fault = injection(call, "signal=KILL");
        SCOPED_TRACE(fault);
        const auto result = place.trace(call.name, {"-o", "/dev/null", "-e", fault});
        killed += result.program.exitCode == killedExit ? 1 : 0;
        overtaken += result.rival == Rival::InTime ? 1 : 0;
        const auto left = place.dayFile();
        EXPECT_THAT(
            (std::vector<Content>{scenario.old, scenario.theirs, scenario.saved, scenario.savedWithTheirs}),
            Contains(left));
        for (const auto &name : place.names())
            EXPECT_TRUE(name == "03-14.md" || (name.starts_with(".~03-14.md.") && name.ends_with('~')))
                << name;
        EXPECT_TRUE(result.program.exitCode != 0 || contentsAfter(result).front() == left);

        const auto later = place.save(2021, "later");
        EXPECT_EQ(later.exitCode, 0) << later.errors;
        EXPECT_EQ(place.dayFile(), withEntry(left.value_or("# 03-14\n"), 2021, "later"));
        EXPECT_EQ(place.names(), Names{"03-14.md"});
        EXPECT_TRUE(!scenario.theirs || place.holdsTheirs());
    });
    // Without the other program there are fewer calls.
    EXPECT_GE(killed, static_cast<int>(m_calls.size() / (scenario.theirs ? 2 : 1)));
    EXPECT_TRUE(!scenario.theirs || overtaken > 10);
}

struct FailingCall {
    SystemCall call;
    const char *error;
};

std::vector<FailingCall> failing(const std::vector<SystemCall> &calls,
                                 std::initializer_list<const char *> errors) {
    std::vector<FailingCall> cases;
    for (const auto &call : calls) {
        if (call.name == "exit_group")
            continue;
        for (const char *error : errors)
            cases.push_back({call, error});
    }
    return cases;
}

// The filter saves half the time, but would lose a signal.
std::vector<std::string> failingWith(const std::string &fault) {
    return {"--seccomp-bpf", "-o", "/dev/null", "-e", fault};
}

// What the program itself said. The sanitizers look whether memory is there by writing from it to a pipe of
// their own, and say so when a failure meant for the program strikes that.
std::string complaints(const std::string &errors) {
    std::istringstream lines(errors);
    std::string said;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && !line.starts_with("SanitizerTool: CHECK failed: sanitizer_posix"))
            said += line + "\n";
    }
    return said;
}

TEST_P(SavingFaults, areReportedWithTheFileWhole) {
    const auto &scenario = GetParam();
    std::atomic<int> failed = 0;
    std::atomic<int> overtaken = 0;
    runAll<FailingCall>(
        failing(m_calls, {"ENOSPC", "EIO", "EROFS", "EACCES", "EINTR"}), [&](const FailingCall &failure) {
            const Place place(scenario);
            const auto fault = injection(failure.call, std::string("error=") + failure.error);
            SCOPED_TRACE(fault);
            const auto result = place.trace(failure.call.name, failingWith(fault));
            const int exitCode = result.program.exitCode;
            failed += exitCode == 1 ? 1 : 0;
            overtaken += result.rival == Rival::InTime ? 1 : 0;
            EXPECT_THAT(contentsAfter(result), Contains(place.dayFile())) << "exit " << exitCode;
            EXPECT_THAT((std::array{0, 1}), Contains(exitCode)) << result.program.errors;
            EXPECT_EQ(complaints(result.program.errors).empty(), exitCode == 0) << result.program.errors;
            EXPECT_TRUE(exitCode == 0 || failure.error != std::string_view("EINTR")) << result.program.errors;
            EXPECT_THAT(place.names(), IsSubsetOf(Names{"03-14.md"}));
            EXPECT_TRUE(!scenario.theirs || place.holdsTheirs());
        });
    EXPECT_GT(failed, 20);
    EXPECT_TRUE(!scenario.theirs || overtaken > 20);
}

TEST_P(SavingFaults, thatLastLeaveTheFileWhole) {
    const auto &scenario = GetParam();
    // Not the last writes, since the sanitizer's own, to pipes, would fail with them. Nothing is written
    // twice.
    std::erase_if(m_calls, [](const SystemCall &call) { return call.name == "write"; });
    runAll<FailingCall>(failing(m_calls, {"EIO"}), [&](const FailingCall &failure) {
        const Place place(scenario);
        const auto fault = injection(failure.call, "error=EIO", "+");
        SCOPED_TRACE(fault);
        const auto result = place.trace(failure.call.name, failingWith(fault));
        auto whole = contentsAfter(result);
        // The swap cannot be undone when renaming fails from now on: the other program's text is set aside.
        if (result.program.exitCode != 0)
            whole.emplace_back(scenario.saved);
        EXPECT_THAT(whole, Contains(place.dayFile())) << "exit " << result.program.exitCode;
        EXPECT_THAT((std::array{0, 1}), Contains(result.program.exitCode)) << result.program.errors;

        // What could not be cleared away then is later.
        EXPECT_EQ(place.save(2021, "later").exitCode, 0);
        EXPECT_EQ(place.names(), Names{"03-14.md"});
        EXPECT_TRUE(!scenario.theirs || place.holdsTheirs());
    });
}

INSTANTIATE_TEST_SUITE_P(Over, SavingFaults, ::testing::ValuesIn(scenarios), [](const auto &scenario) {
    std::string name = scenario.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});

TEST(SavingOrder, syncsANewFileItsFolderAndTheFoldersAboveIt) {
    const Scenario &scenario = scenarios[1];
    const Place place(scenario);
    const auto log = place.file("log");
    const auto result = place.trace("mkdir,fsync,rename,renameat2,unlink", {"-o", log.string()});
    if (result.program.exitCode != 0 && !fs::exists(log))
        GTEST_SKIP() << "this machine permits no tracing: " << result.program.errors;
    std::istringstream lines(Place::content(log).value_or(""));
    std::vector<std::string> steps;
    for (std::string line; std::getline(lines, line);) {
        if (line.find("mkdir(") != std::string::npos)
            steps.emplace_back("make vault");
        else if (line.find("RENAME_NOREPLACE") != std::string::npos)
            steps.emplace_back("rename");
        else if (line.find("fsync(") != std::string::npos)
            steps.emplace_back(line.find("/vault/.~03-14.md") != std::string::npos ? "sync file"
                               : line.find("/vault>") != std::string::npos         ? "sync vault"
                                                                                   : "sync parent");
    }
    EXPECT_EQ(steps,
              (std::vector<std::string>{"make vault", "sync parent", "sync file", "rename", "sync vault"}));
}

// Several writers of one file.

bool isWholeDocument(std::string_view text) {
    if (!text.starts_with("# 03-14\n") || !text.ends_with('\n'))
        return false;
    std::istringstream lines{std::string(text)};
    for (std::string line; std::getline(lines, line);) {
        const bool known = line.empty() || line.starts_with("# 03-14") ||
                           YearSectionParser::yearHeader(line) || line.starts_with("*") ||
                           (line.starts_with("line ") && line.ends_with('.'));
        if (!known)
            return false;
    }
    return true;
}

// Reads the file all the time and keeps the first content that is none.
class TornFileWatch {
public:
    enum class Missing { Allowed, Wrong };

    TornFileWatch(fs::path file, Missing missing)
        : m_thread([this, file = std::move(file), missing](const std::stop_token &stop) {
              while (!stop.stop_requested() && m_torn.empty()) {
                  std::error_code error;
                  const auto text = readWholeFile(file, error);
                  if (text ? !isWholeDocument(*text) : missing == Missing::Wrong)
                      m_torn = text ? "torn: " + *text : "missing: " + error.message();
                  ++m_looks;
              }
          }) {}

    std::string tornContent() {
        m_thread.request_stop();
        m_thread.join();
        EXPECT_GT(m_looks, 10);
        return m_torn;
    }

private:
    std::string m_torn;
    int m_looks = 0;
    std::jthread m_thread;
};

std::vector<std::string> linesMissing(const std::string &text, int writers, int lines) {
    std::map<std::int64_t, std::string> bodies;
    for (const auto &[year, body] : YearSectionParser::sectionBodies(text))
        bodies[year] = body;
    std::vector<std::string> missing;
    for (int year = 2001; year <= 2000 + writers; ++year) {
        for (int number = 1; number <= lines; ++number) {
            const auto line = "line " + std::to_string(year) + "/" + std::to_string(number) + ".";
            if (bodies[year].find(line) == std::string::npos)
                missing.push_back(line);
        }
    }
    return missing;
}

TEST(ConcurrentSaving, losesNoneOfAThousandSaves) {
    constexpr int writers = 4;
    constexpr int saves = 250;
    const testing::ScopedEnvironment temporaryFolders("TMPDIR", folderInMemory());
    const Scenario scenario{.old = "# 03-14\n", .theirs = {}, .saved = {}, .savedWithTheirs = {}};
    const Place place(scenario);
    TornFileWatch watch(place.file("vault/03-14.md"), TornFileWatch::Missing::Wrong);
    {
        std::vector<std::jthread> running;
        for (int year = 2001; year <= 2000 + writers; ++year) {
            running.emplace_back([&place, year] {
                const auto result = place.run({builtProgram("TAVELO_TEST_SAVE_ONCE"), "--many", place.vault(),
                                               "03-14", std::to_string(year), std::to_string(saves)});
                EXPECT_EQ(result.exitCode, 0) << result.errors;
            });
        }
    }
    EXPECT_EQ(watch.tornContent(), "");
    const auto text = place.dayFile();
    ASSERT_TRUE(text);
    EXPECT_EQ(linesMissing(*text, writers, saves), std::vector<std::string>{});
    EXPECT_EQ(text->find('*'), std::string::npos) << "a conflict that was none";
    EXPECT_EQ(place.names(), Names{"03-14.md"});
}

// Replaces the file by a copy with a line added, as a sync tool does that knows nothing of other writers.
void replaceLikeASyncTool(const Place &place, int number) {
    const auto file = place.file("vault/03-14.md");
    std::error_code error;
    const auto text = readWholeFile(file, error);
    if (!text)
        return;
    const auto incoming = place.file("incoming");
    replaceFileDurably(incoming, withEntry(*text, 1999, "line 1999/" + std::to_string(number) + "."));
    fs::remove(file);
    std::this_thread::sleep_for(std::chrono::microseconds{500});
    fs::rename(incoming, file);
}

TEST(ConcurrentSaving, keepsEveryDraftBesideASyncTool) {
    constexpr int writers = 4;
    constexpr int saves = 60;
    constexpr int replacements = 120;
    const testing::ScopedEnvironment temporaryFolders("TMPDIR", folderInMemory());
    const Scenario scenario{.old = "# 03-14\n", .theirs = {}, .saved = {}, .savedWithTheirs = {}};
    const Place place(scenario);
    TornFileWatch watch(place.file("vault/03-14.md"), TornFileWatch::Missing::Allowed);
    {
        std::vector<std::jthread> running;
        for (int year = 2001; year <= 2000 + writers; ++year) {
            running.emplace_back([&place, year] {
                const auto result =
                    place.run({builtProgram("TAVELO_TEST_SAVE_ONCE"), "--draft", place.vault(), "03-14",
                               std::to_string(year), std::to_string(saves), place.file("ended").string()});
                EXPECT_EQ(result.exitCode, 0) << result.errors;
            });
        }
        for (int number = 1; number <= replacements; ++number)
            replaceLikeASyncTool(place, number);
        replaceFileDurably(place.file("ended"), "");
    }
    EXPECT_EQ(watch.tornContent(), "");
    const auto text = place.dayFile();
    ASSERT_TRUE(text);
    EXPECT_EQ(linesMissing(*text, writers, saves), std::vector<std::string>{});
    EXPECT_EQ(place.names(), Names{"03-14.md"});
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "Support/WaitUntil.h"

#include <DiaryKit/DurableFile.h>
#include <DiaryKit/VaultObserver.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using testing::TemporaryFolder;
using testing::waitUntil;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using namespace std::chrono_literals;

constexpr milliseconds patience = 20s;
constexpr milliseconds never = 1h; // between two looks: nothing but the system's own notices is left
constexpr milliseconds often = 20ms;

std::string contentOf(const fs::path &path) {
    std::error_code error;
    return readWholeFile(path, error).value_or("");
}

void writeFile(const fs::path &path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

bool isThere(const fs::path &path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

// An observer whose every notice looks whether a condition has come true.
class Witness {
public:
    explicit Witness(const fs::path &vault, milliseconds lookInterval = never)
        : observer(
              vault, [this] { look(); }, lookInterval) {}

    // Whether the change, which makes the condition true, brings a notice that finds it so.
    bool sees(const std::function<void()> &change, const std::function<bool()> &condition) {
        {
            const std::lock_guard lock(m_mutex);
            m_condition = condition;
            m_hasSeen = false;
            if (condition()) {
                ADD_FAILURE() << "true before the change";
                return false;
            }
        }
        change();
        std::unique_lock lock(m_mutex);
        const bool seen = m_looked.wait_for(lock, patience, [this] { return m_hasSeen; });
        m_condition = nullptr;
        return seen;
    }

    int calls() const {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

    // So that the notices of one change are not taken for those of the next.
    void waitUntilQuiet(milliseconds quiet = 100ms) {
        std::unique_lock lock(m_mutex);
        for (int before = m_calls; m_looked.wait_for(lock, quiet, [&] { return m_calls != before; });)
            before = m_calls;
    }

private:
    void look() {
        {
            const std::lock_guard lock(m_mutex);
            ++m_calls;
            if (m_condition && m_condition())
                m_hasSeen = true;
        }
        m_looked.notify_all();
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_looked;
    std::function<bool()> m_condition;
    bool m_hasSeen = false;
    int m_calls = 0;

public:
    VaultObserver observer; // last, because its thread uses the others
};

// From now on, and in threads made from now on, the system call fails for this thread.
bool refuse(unsigned systemCall, unsigned error) {
    std::array<sock_filter, 4> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, systemCall, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog filter{program.size(), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

// For what changes only the thread that asks for it: filters, mounts, identity.
void runInThread(const std::function<void()> &task) {
    std::thread(task).join();
}

std::vector<fs::path> openInotifyDescriptors() {
    std::vector<fs::path> found;
    for (const auto &descriptor : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (fs::read_symlink(descriptor.path(), error) == "anon_inode:inotify")
            found.push_back(descriptor.path().filename());
    }
    return found;
}

std::ptrdiff_t openDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

// The threads of all observers, by their name: a sanitizer may have threads of its own.
int observerThreads() {
    int count = 0;
    for (const auto &thread : fs::directory_iterator("/proc/self/task"))
        count += contentOf(thread.path() / "comm") == "vault-observer\n" ? 1 : 0;
    return count;
}

// The system may take a moment to clear away a thread that has ended.
bool noObserverThreadIsLeft() {
    return waitUntil([] { return observerThreads() == 0; });
}

struct Change {
    std::string name;
    std::function<void(const TemporaryFolder &)> make;
    std::function<bool(const TemporaryFolder &)> isMade;
    std::function<void(const TemporaryFolder &)> prepare = nullptr;
    fs::path vault = "above/vault"; // relative to the temporary folder
};

void PrintTo(const Change &change, std::ostream *stream) {
    *stream << change.name;
}

const fs::path dayFile = "above/vault/03-14.md";

std::function<bool(const TemporaryFolder &)> reads(const fs::path &file, const std::string &content) {
    return [=](const TemporaryFolder &folder) { return contentOf(folder / file) == content; };
}

std::function<bool(const TemporaryFolder &)> has(const fs::path &file) {
    return [=](const TemporaryFolder &folder) { return isThere(folder / file); };
}

std::function<bool(const TemporaryFolder &)> lacks(const fs::path &file) {
    return [=](const TemporaryFolder &folder) { return !isThere(folder / file); };
}

void makeOtherVault(const TemporaryFolder &folder) {
    folder.write("other/vault/03-14.md", "other");
}

void removeAbove(const TemporaryFolder &folder) {
    fs::remove_all(folder / "above");
}

void replaceLink(const TemporaryFolder &folder, const fs::path &link, const fs::path &target) {
    fs::create_directory_symlink(target, folder / "new-link");
    fs::rename(folder / "new-link", folder / link);
}

std::vector<Change> changesOfFiles() {
    return {
        {"aFileWrittenInPlace", [](auto &folder) { folder.write(dayFile, "newer text"); },
         reads(dayFile, "newer text")},
        {"aFileWrittenInPlaceWithTheSameSize", [](auto &folder) { folder.write(dayFile, "txet"); },
         reads(dayFile, "txet")},
        {"aFileCutShort", [](auto &folder) { fs::resize_file(folder / dayFile, 1); }, reads(dayFile, "t")},
        {"aFileReplaced",
         [](auto &folder) {
             folder.write("above/vault/.~new~", "replaced");
             fs::rename(folder / "above/vault/.~new~", folder / dayFile);
         },
         reads(dayFile, "replaced")},
        {"aFileExchangedWithOneOutside",
         [](auto &folder) {
             ::renameat2(AT_FDCWD, (folder / "outside").c_str(), AT_FDCWD, (folder / dayFile).c_str(),
                         RENAME_EXCHANGE);
         },
         reads(dayFile, "outside"), [](auto &folder) { folder.write("outside", "outside"); }},
        {"aNewFile", [](auto &folder) { folder.write("above/vault/new.md", ""); }, has("above/vault/new.md")},
        {"aNewHiddenFile", [](auto &folder) { folder.write("above/vault/.03-15.md.icloud", ""); },
         has("above/vault/.03-15.md.icloud")},
        {"aFileWhoseNameIsNoText", [](auto &folder) { folder.write("above/vault/\xff\xc3.md", ""); },
         has("above/vault/\xff\xc3.md")},
        {"aNewFolder", [](auto &folder) { fs::create_directory(folder / "above/vault/new"); },
         has("above/vault/new")},
        {"aNewHardLink",
         [](auto &folder) { fs::create_hard_link(folder / "outside", folder / "above/vault/link.md"); },
         has("above/vault/link.md"), [](auto &folder) { folder.write("outside", ""); }},
        {"aFileMovedIn",
         [](auto &folder) { fs::rename(folder / "outside", folder / "above/vault/moved.md"); },
         has("above/vault/moved.md"), [](auto &folder) { folder.write("outside", ""); }},
        {"aFileMovedOut", [](auto &folder) { fs::rename(folder / dayFile, folder / "outside"); },
         lacks(dayFile)},
        {"aFileRenamed", [](auto &folder) { fs::rename(folder / dayFile, folder / "above/vault/03-15.md"); },
         lacks(dayFile)},
        {"aFileDeleted", [](auto &folder) { fs::remove(folder / dayFile); }, lacks(dayFile)},
        {"aFileTouched", [](auto &folder) { fs::last_write_time(folder / dayFile, {}); },
         [](auto &folder) { return fs::last_write_time(folder / dayFile) == fs::file_time_type(); }},
        {"aFileWithOtherPermissions",
         [](auto &folder) { fs::permissions(folder / dayFile, fs::perms::owner_read); },
         [](auto &folder) { return fs::status(folder / dayFile).permissions() == fs::perms::owner_read; }},
    };
}

std::vector<Change> changesOfFolders() {
    return {
        {"theVaultDeleted", [](auto &folder) { fs::remove_all(folder / "above/vault"); },
         lacks("above/vault")},
        {"theVaultDeletedAndMadeAgain",
         [](auto &folder) {
             fs::remove_all(folder / "above/vault");
             folder.write(dayFile, "again");
         },
         reads(dayFile, "again")},
        {"theVaultRenamedAway",
         [](auto &folder) { fs::rename(folder / "above/vault", folder / "above/old"); },
         lacks("above/vault")},
        {"theVaultReplacedByAnother",
         [](auto &folder) {
             fs::rename(folder / "above/vault", folder / "above/old");
             fs::rename(folder / "other/vault", folder / "above/vault");
         },
         reads(dayFile, "other"), makeOtherVault},
        {"theVaultExchangedWithAnother",
         [](auto &folder) {
             ::renameat2(AT_FDCWD, (folder / "above/vault").c_str(), AT_FDCWD,
                         (folder / "other/vault").c_str(), RENAME_EXCHANGE);
         },
         reads(dayFile, "other"), makeOtherVault},
        {"theVaultReplacedByAFile",
         [](auto &folder) {
             fs::remove_all(folder / "above/vault");
             folder.write("above/vault", "a file");
         },
         [](auto &folder) { return !fs::is_directory(folder / "above/vault"); }},
        {"aFileInTheVaultsPlaceReplacedByAFolder",
         [](auto &folder) {
             fs::remove(folder / "above/vault");
             fs::create_directory(folder / "above/vault");
         },
         [](auto &folder) { return fs::is_directory(folder / "above/vault"); },
         [](auto &folder) {
             fs::remove_all(folder / "above/vault");
             folder.write("above/vault", "a file");
         }},
        {"aVaultThatWasMissing", [](auto &folder) { fs::create_directory(folder / "above/vault"); },
         has("above/vault"), [](auto &folder) { fs::remove_all(folder / "above/vault"); }},
        {"aVaultThatWasMissingMovedIn",
         [](auto &folder) { fs::rename(folder / "other/vault", folder / "above/vault"); },
         reads(dayFile, "other"),
         [](auto &folder) {
             makeOtherVault(folder);
             fs::remove_all(folder / "above/vault");
         }},
        {"severalMissingFoldersMade",
         [](auto &folder) { fs::create_directories(folder / "above/further/below/vault"); },
         has("above/further/below/vault"), removeAbove, "above/further/below/vault"},
        {"aTreeMovedToWhereItWasMissing",
         [](auto &folder) { fs::rename(folder / "other", folder / "above"); }, reads(dayFile, "other"),
         [](auto &folder) {
             makeOtherVault(folder);
             removeAbove(folder);
         }},
        {"theFolderAboveRenamed", [](auto &folder) { fs::rename(folder / "above", folder / "old"); },
         lacks(dayFile)},
        {"theFolderAboveReplaced",
         [](auto &folder) {
             fs::rename(folder / "above", folder / "old");
             fs::rename(folder / "other", folder / "above");
         },
         reads(dayFile, "other"), makeOtherVault},
        {"theFolderAboveDeletedWithAll", removeAbove, lacks("above")},
        {"theVaultsOwnPermissions",
         [](auto &folder) { fs::permissions(folder / "above/vault", fs::perms::owner_all); },
         [](auto &folder) {
             return fs::status(folder / "above/vault").permissions() == fs::perms::owner_all;
         },
         [](auto &folder) { fs::permissions(folder / "above/vault", fs::perms(0755)); }},
        {"aFileBehindALink", [](auto &folder) { folder.write(dayFile, "behind"); },
         reads("link/03-14.md", "behind"),
         [](auto &folder) { fs::create_directory_symlink("above/vault", folder / "link"); }, "link"},
        {"theVaultsLinkRetargeted", [](auto &folder) { replaceLink(folder, "link", folder / "other/vault"); },
         reads("link/03-14.md", "other"),
         [](auto &folder) {
             makeOtherVault(folder);
             fs::create_directory_symlink(folder / "above/vault", folder / "link");
         },
         "link"},
        {"aLinkAboveTheVaultRetargeted", [](auto &folder) { replaceLink(folder, "link", "other"); },
         reads("link/vault/03-14.md", "other"),
         [](auto &folder) {
             makeOtherVault(folder);
             fs::create_directory_symlink("above", folder / "link");
         },
         "link/vault"},
        {"aLinkBehindALinkRetargeted", [](auto &folder) { replaceLink(folder, "second", "other"); },
         reads("above/first/vault/03-14.md", "other"),
         [](auto &folder) {
             makeOtherVault(folder);
             fs::create_directory_symlink("../second", folder / "above/first");
             fs::create_directory_symlink("above", folder / "second");
         },
         "above/first/vault"},
        {"theVaultBehindALinkReplaced",
         [](auto &folder) {
             fs::rename(folder / "above/vault", folder / "old");
             fs::rename(folder / "other/vault", folder / "above/vault");
         },
         reads("link/03-14.md", "other"),
         [](auto &folder) {
             makeOtherVault(folder);
             fs::create_directory_symlink("above/vault", folder / "link");
         },
         "link"},
        {"aLinkToNowhereThatFindsItsTarget", [](auto &folder) { fs::create_directory(folder / "nowhere"); },
         has("nowhere"), [](auto &folder) { fs::create_directory_symlink("nowhere", folder / "link"); },
         "link"},
        {"aLinkInACircleThatIsReplaced", [](auto &folder) { replaceLink(folder, "link", "above/vault"); },
         has("link/03-14.md"), [](auto &folder) { fs::create_directory_symlink("link", folder / "link"); },
         "link"},
        {"aLinkToTheFolderThatHoldsIt", [](auto &folder) { folder.write("above/new.md", ""); },
         has("above/link/new.md"),
         [](auto &folder) { fs::create_directory_symlink(".", folder / "above/link"); }, "above/link"},
        {"aPathWithATrailingSlash", [](auto &folder) { folder.write(dayFile, "new"); }, reads(dayFile, "new"),
         nullptr, "above/vault/"},
        {"aPathWithDotsAndSlashes", [](auto &folder) { folder.write(dayFile, "new"); }, reads(dayFile, "new"),
         nullptr, "above/./vault/..//vault/."},
        {"aPathThatLeavesALinksTarget", [](auto &folder) { folder.write(dayFile, "new"); },
         reads("link/../03-14.md", "new"),
         [](auto &folder) {
             fs::create_directory(folder / "above/vault/below");
             fs::create_directory_symlink("above/vault/below", folder / "link");
         },
         "link/.."},
        {"aVaultWhoseNameIsNoText", [](auto &folder) { folder.write("above/\xff\xc3/new.md", ""); },
         has("above/\xff\xc3/new.md"), [](auto &folder) { fs::create_directory(folder / "above/\xff\xc3"); },
         "above/\xff\xc3"},
    };
}

std::vector<Change> allChanges() {
    auto changes = changesOfFiles();
    std::ranges::move(changesOfFolders(), std::back_inserter(changes));
    return changes;
}

enum class System { Watches, RefusesInotify, RefusesWatches };

void PrintTo(System system, std::ostream *stream) {
    *stream << std::array{"watching", "without inotify", "without watches"}.at(
        static_cast<std::size_t>(system));
}

class VaultObserverSeeing : public ::testing::TestWithParam<std::tuple<System, Change>> {
protected:
    static void check(const Change &change, bool isWatched) {
        const TemporaryFolder folder;
        folder.write(dayFile, "text");
        if (change.prepare)
            change.prepare(folder);

        Witness witness(folder / change.vault, isWatched ? never : often);
        ASSERT_EQ(witness.observer.start(), isWatched);
        EXPECT_TRUE(witness.sees([&] { change.make(folder); }, [&] { return change.isMade(folder); }));

        // What is there now is what is observed.
        if (!fs::is_directory(folder / change.vault))
            return;
        witness.waitUntilQuiet();
        const auto later = folder / change.vault / "later.md";
        EXPECT_TRUE(
            witness.sees([&] { writeFile(later, "later"); }, [&] { return contentOf(later) == "later"; }));
        witness.waitUntilQuiet();
        EXPECT_TRUE(witness.sees([&] { fs::remove(later); }, [&] { return !isThere(later); }));
    }
};

TEST_P(VaultObserverSeeing, noticesAndGoesOn) {
    const auto &[system, change] = GetParam();
    runInThread([system = system, &change = change] {
        if ((system == System::RefusesInotify && !refuse(SYS_inotify_init1, EMFILE)) ||
            (system == System::RefusesWatches && !refuse(SYS_inotify_add_watch, ENOSPC)))
            GTEST_SKIP() << std::system_category().message(errno);
        check(change, system == System::Watches);
    });
}

std::string nameOfRow(const ::testing::TestParamInfo<std::tuple<System, Change>> &row) {
    return std::get<Change>(row.param).name;
}

INSTANTIATE_TEST_SUITE_P(watching, VaultObserverSeeing,
                         ::testing::Combine(::testing::Values(System::Watches),
                                            ::testing::ValuesIn(allChanges())),
                         nameOfRow);
INSTANTIATE_TEST_SUITE_P(withoutInotify, VaultObserverSeeing,
                         ::testing::Combine(::testing::Values(System::RefusesInotify),
                                            ::testing::ValuesIn(allChanges())),
                         nameOfRow);
INSTANTIATE_TEST_SUITE_P(withoutWatches, VaultObserverSeeing,
                         ::testing::Combine(::testing::Values(System::RefusesWatches),
                                            ::testing::ValuesIn(allChanges())),
                         nameOfRow);

TEST(VaultObserver, noticesAVaultRenamedAwayAndBack) {
    const TemporaryFolder folder;
    folder.write(dayFile, "text");
    Witness witness(folder / "above/vault");
    ASSERT_TRUE(witness.observer.start());
    for (const fs::path name : {"above/vault", "above"}) {
        EXPECT_TRUE(witness.sees([&] { fs::rename(folder / name, folder / "away"); },
                                 [&] { return !isThere(folder / dayFile); }));
        witness.waitUntilQuiet();
        EXPECT_TRUE(witness.sees([&] { fs::rename(folder / "away", folder / name); },
                                 [&] { return isThere(folder / dayFile); }));
        witness.waitUntilQuiet();
        EXPECT_TRUE(witness.sees([&] { folder.write(dayFile, "after " + name.string()); },
                                 [&] { return contentOf(folder / dayFile) == "after " + name.string(); }));
        witness.waitUntilQuiet();
    }
}

TEST(VaultObserver, takesARelativePathFromTheWorkingFolderAtItsConstruction) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "vault");
    const auto before = fs::current_path();
    fs::current_path(folder.path());
    Witness witness("vault");
    fs::current_path(before);
    ASSERT_TRUE(witness.observer.start());
    EXPECT_TRUE(witness.sees([&] { folder.write("vault/new.md", ""); },
                             [&] { return isThere(folder / "vault/new.md"); }));
}

TEST(VaultObserver, canWatchTheRootFolder) {
    Witness witness("/");
    EXPECT_TRUE(witness.observer.start());
}

TEST(VaultObserver, hasNothingToWatchWithoutAPath) {
    Witness witness("");
    EXPECT_FALSE(witness.observer.start());
}

TEST(VaultObserver, passesOverWhatIsBesideTheVault) {
    const TemporaryFolder folder;
    folder.write(dayFile, "text");
    folder.write("above/beside/file", "");
    Witness witness(folder / "above/vault");
    ASSERT_TRUE(witness.observer.start());
    folder.write("above/beside/file", "text");
    folder.write("above/vault2/03-14.md", "text");
    folder.write("above/file", "text");
    folder.write("file", "text");
    fs::rename(folder / "above/beside", folder / "above/vault3");
    fs::remove_all(folder / "above/vault3");
    witness.waitUntilQuiet(200ms);
    EXPECT_EQ(witness.calls(), 0);
}

TEST(VaultObserver, saysNothingBeforeStartAndAfterStop) {
    const TemporaryFolder folder;
    folder.write("vault/03-14.md", "text");
    for (const auto interval : {never, often}) {
        Witness witness(folder / "vault", interval);
        for (int round = 0; round < 3; ++round) {
            folder.write("vault/03-14.md", "unseen");
            fs::remove(folder / "vault/03-14.md");
            const int before = witness.calls();
            witness.waitUntilQuiet();
            EXPECT_EQ(witness.calls(), before);

            ASSERT_TRUE(witness.observer.start());
            EXPECT_TRUE(witness.sees([&] { folder.write("vault/03-14.md", "seen"); },
                                     [&] { return contentOf(folder / "vault/03-14.md") == "seen"; }));
            // Half of a second change may be in the queue.
            folder.write("vault/03-14.md", "perhaps");
            witness.observer.stop();
        }
    }
}

TEST(VaultObserver, startsAndStopsOnlyOnce) {
    const TemporaryFolder folder;
    Witness witness(folder.path());
    witness.observer.stop();
    ASSERT_TRUE(witness.observer.start());
    ASSERT_TRUE(witness.observer.start());
    EXPECT_TRUE(
        witness.sees([&] { folder.write("new.md", ""); }, [&] { return isThere(folder / "new.md"); }));
    witness.waitUntilQuiet();
    EXPECT_EQ(observerThreads(), 1);
    witness.observer.stop();
    witness.observer.stop();
    EXPECT_TRUE(noObserverThreadIsLeft());
}

TEST(VaultObserver, leavesNoThreadAndNoDescriptor) {
    const TemporaryFolder folder;
    const auto descriptors = openDescriptors();
    VaultObserver observer(folder / "vault", [] {});
    for (int cycle = 0; cycle < 1000; ++cycle) {
        ASSERT_TRUE(observer.start());
        if (cycle % 10 == 0)
            fs::create_directory(folder / "vault");
        else if (cycle % 10 == 5)
            fs::remove(folder / "vault");
        observer.stop();
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_TRUE(noObserverThreadIsLeft());
}

TEST(VaultObserver, stopsWithItsEnd) {
    const TemporaryFolder folder;
    {
        Witness witness(folder.path());
        ASSERT_TRUE(witness.observer.start());
        EXPECT_TRUE(
            witness.sees([&] { folder.write("new.md", ""); }, [&] { return isThere(folder / "new.md"); }));
        EXPECT_EQ(observerThreads(), 1);
    }
    EXPECT_TRUE(noObserverThreadIsLeft());
}

TEST(VaultObserver, stopsWithinATenthOfASecond) {
    const TemporaryFolder folder;
    // A busy machine may delay any single attempt.
    auto fastest = Clock::duration::max();
    for (int attempt = 0; attempt < 10; ++attempt) {
        VaultObserver observer(folder.path(), [] {});
        ASSERT_TRUE(observer.start());
        if (attempt % 2 == 0)
            folder.write("new.md", "");
        const auto begin = Clock::now();
        observer.stop();
        fastest = std::min(fastest, Clock::now() - begin);
    }
    EXPECT_LT(fastest, 100ms);
}

TEST(VaultObserver, stopsWithinATenthOfASecondWhenItCannotWatch) {
    runInThread([] {
        if (!refuse(SYS_eventfd2, EMFILE))
            GTEST_SKIP() << std::system_category().message(errno);
        const TemporaryFolder folder;
        auto fastest = Clock::duration::max();
        for (int attempt = 0; attempt < 4; ++attempt) {
            Witness witness(folder.path(), 500ms);
            ASSERT_FALSE(witness.observer.start());
            // The thread has just looked, and would not do so again for long.
            const auto name = std::to_string(attempt);
            ASSERT_TRUE(
                witness.sees([&] { folder.write(name, ""); }, [&] { return isThere(folder / name); }));
            const auto begin = Clock::now();
            witness.observer.stop();
            fastest = std::min(fastest, Clock::now() - begin);
        }
        EXPECT_LT(fastest, 100ms);
    });
}

TEST(VaultObserver, waitsForTheLastNotice) {
    const TemporaryFolder folder;
    std::promise<void> called;
    std::promise<void> mayReturn;
    std::atomic<bool> hasReturned = false;
    std::once_flag once;
    VaultObserver observer(folder.path(), [&] {
        std::call_once(once, [&] {
            called.set_value();
            mayReturn.get_future().wait();
            hasReturned = true;
        });
    });
    ASSERT_TRUE(observer.start());
    folder.write("new.md", "");
    ASSERT_EQ(called.get_future().wait_for(patience), std::future_status::ready);
    auto stopped = std::async(std::launch::async, [&] {
        observer.stop();
        return hasReturned.load();
    });
    EXPECT_EQ(stopped.wait_for(50ms), std::future_status::timeout);
    mayReturn.set_value();
    EXPECT_TRUE(stopped.get());
}

TEST(VaultObserver, saysFewTimesThatMuchHasChanged) {
    constexpr int files = 10000; // each of them made, written, closed and deleted
    const TemporaryFolder folder;
    fs::create_directory(folder / "vault");
    Witness witness(folder / "vault");
    ASSERT_TRUE(witness.observer.start());
    const auto begin = Clock::now();
    EXPECT_TRUE(witness.sees(
        [&] {
            for (int number = 1; number <= files; ++number) {
                writeFile(folder / "vault" / std::to_string(number), "text");
                fs::remove(folder / "vault" / std::to_string(number));
            }
            writeFile(folder / "vault/last", "text");
        },
        [&] { return contentOf(folder / "vault/last") == "text"; }));
    witness.waitUntilQuiet();
    const auto time = Clock::now() - begin;
    EXPECT_LE(witness.calls(), time / 20ms + 1);
    EXPECT_GE(witness.calls(), 1);
}

TEST(VaultObserver, losesNothingWhenTheSystemLosesEvents) {
    int queueLength = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> queueLength;
    if (queueLength < 1 || queueLength > 1000000)
        GTEST_SKIP() << "the queue holds " << queueLength << " events";

    const TemporaryFolder folder;
    folder.write("vault/one", "");
    folder.write("vault/two", "");
    makeOtherVault(folder);

    std::promise<void> called;
    std::promise<void> mayReturn;
    std::once_flag once;
    std::atomic<int> calls = 0;
    std::atomic<bool> hasSeenOther = false;
    std::atomic<bool> hasSeenLater = false;
    VaultObserver observer(
        folder / "vault",
        [&] {
            std::call_once(once, [&] {
                called.set_value();
                mayReturn.get_future().wait();
            });
            ++calls;
            hasSeenOther = contentOf(folder / "vault/03-14.md") == "other";
            hasSeenLater = isThere(folder / "vault/later.md");
        },
        never);
    ASSERT_TRUE(observer.start());
    folder.write("vault/one", "text");
    ASSERT_EQ(called.get_future().wait_for(patience), std::future_status::ready);

    // Two files in turn, because the system joins events that are the same.
    const std::array files{folder / "vault/one", folder / "vault/two"};
    for (int change = 0; change < queueLength + 2000; ++change)
        ::chmod(files[static_cast<std::size_t>(change % 2)].c_str(), change % 4 < 2 ? 0600 : 0644);
    fs::rename(folder / "vault", folder / "old");
    fs::rename(folder / "other/vault", folder / "vault");
    mayReturn.set_value();
    // The first call looks only now, so it takes a second one to tell that anything was noticed.
    EXPECT_TRUE(waitUntil([&] { return calls > 1 && hasSeenOther; }, patience));
    EXPECT_LE(calls, 4);
    writeFile(folder / "vault/later.md", "");
    EXPECT_TRUE(waitUntil([&] { return hasSeenLater.load(); }, patience));
}

TEST(VaultObserver, missesNoFolderThatComesAndGoesWhileItLooks) {
    const TemporaryFolder folder;
    const auto tree = folder / "a";
    const auto vault = tree / "b/c/vault";
    Witness witness(vault);
    ASSERT_TRUE(witness.observer.start());
    for (int round = 1; round <= 30; ++round) {
        const auto text = std::to_string(round);
        EXPECT_TRUE(witness.sees(
            [&] {
                for (int turn = 0; turn < 20; ++turn) {
                    fs::remove_all(tree);
                    fs::create_directories(vault);
                }
                // The notices of all this may or may not be in the queue when the text comes.
                std::this_thread::sleep_for(milliseconds(round));
                writeFile(vault / "03-14.md", text);
            },
            [&] { return contentOf(vault / "03-14.md") == text; }))
            << round;
    }
}

TEST(VaultObserver, watchesNoMoreThanTheWayToTheVault) {
    const TemporaryFolder folder;
    Witness witness(folder / "vault");
    const auto before = openInotifyDescriptors();
    ASSERT_TRUE(witness.observer.start());
    for (int round = 1; round <= 20; ++round) {
        const auto text = std::to_string(round);
        EXPECT_TRUE(witness.sees(
            [&] {
                if (isThere(folder / "vault"))
                    fs::rename(folder / "vault", folder / ("old" + text));
                folder.write("vault/03-14.md", text);
            },
            [&] { return contentOf(folder / "vault/03-14.md") == text; }));
    }
    auto descriptors = openInotifyDescriptors();
    std::erase_if(descriptors, [&](const fs::path &name) { return std::ranges::count(before, name) != 0; });
    ASSERT_EQ(descriptors.size(), 1U);
    const auto folders = std::distance(folder.path().begin(), folder.path().end()) + 1;
    EXPECT_TRUE(waitUntil([&] {
        std::istringstream lines(contentOf("/proc/self/fdinfo" / descriptors.front()));
        std::ptrdiff_t watches = 0;
        for (std::string line; std::getline(lines, line);)
            watches += line.starts_with("inotify ") ? 1 : 0;
        return watches == folders;
    }));
}

// For as long as this lives, the process can open so many more files and no others.
class FewDescriptors {
public:
    explicit FewDescriptors(int free) {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        int number = -1;
        for (int found = -1; found < free; found += ::fcntl(number, F_GETFD) < 0 ? 1 : 0)
            ++number;
        const rlimit limit{static_cast<rlim_t>(number), m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
    FewDescriptors(const FewDescriptors &) = delete;
    FewDescriptors &operator=(const FewDescriptors &) = delete;
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }

private:
    rlimit m_before{};
};

TEST(VaultObserver, looksOnWithoutDescriptorsAndWatchesWhenThereAreSome) {
    // First enough for all: to meet a type for the first time, the undefined-behaviour sanitizer needs some
    // too.
    for (const int free : {10, 2, 1, 0}) {
        SCOPED_TRACE(free);
        const TemporaryFolder folder;
        folder.write("vault/03-14.md", "text");
        folder.write("outside", "outside");
        const auto before = openInotifyDescriptors().size();
        const bool canWatch = free >= 2;
        Witness witness(folder / "vault", canWatch ? never : often);
        std::optional<FewDescriptors> few(free);
        const bool isWatched = witness.observer.start();
        const bool hasSeen = witness.sees([&] { fs::rename(folder / "outside", folder / "vault/new.md"); },
                                          [&] { return isThere(folder / "vault/new.md"); });
        few.reset();
        EXPECT_EQ(isWatched, canWatch);
        EXPECT_TRUE(hasSeen);
        EXPECT_TRUE(waitUntil([&] { return openInotifyDescriptors().size() == before + 1; }));
        witness.waitUntilQuiet();
        EXPECT_TRUE(witness.sees([&] { folder.write("vault/03-14.md", "later"); },
                                 [&] { return contentOf(folder / "vault/03-14.md") == "later"; }));
    }
}

// A folder that others may pass through and not read, as some systems make /home. The system refuses to watch
// it.
class ClosedFolder {
public:
    ClosedFolder() {
        fs::permissions(m_folder.path(), fs::perms(0755));
        fs::create_directory(path());
        fs::permissions(path(), fs::perms(0311));
    }
    ClosedFolder(const ClosedFolder &) = delete;
    ClosedFolder &operator=(const ClosedFolder &) = delete;
    ~ClosedFolder() { fs::permissions(path(), fs::perms(0755)); }

    fs::path path() const { return m_folder / "closed"; }

private:
    TemporaryFolder m_folder;
};

// What start() says to somebody for whom closed folders are closed. The observer's thread is the same
// somebody, the calling one is the superuser again if it was.
std::optional<bool> startAsNobody(VaultObserver &observer) {
    constexpr auto nobody = 65534;
    if (::geteuid() != 0)
        return observer.start();
    // Not the library's function, which would change every thread.
    if (::syscall(SYS_setresuid, -1, nobody, -1) != 0)
        return std::nullopt;
    const bool isWatched = observer.start();
    ::syscall(SYS_setresuid, -1, 0, -1);
    return isWatched;
}

TEST(VaultObserver, looksAgainForAVaultInAFolderThatMayNotBeRead) {
    runInThread([] {
        const ClosedFolder closed;
        const auto vault = closed.path() / "vault";
        const auto file = vault / "03-14.md";
        Witness witness(vault, often);
        const auto isWatched = startAsNobody(witness.observer);
        if (!isWatched)
            GTEST_SKIP() << std::system_category().message(errno);
        EXPECT_FALSE(*isWatched);
        EXPECT_TRUE(witness.sees(
            [&] {
                fs::create_directory(vault);
                writeFile(file, "text");
            },
            [&] { return contentOf(file) == "text"; }));
        witness.waitUntilQuiet();
        EXPECT_TRUE(
            witness.sees([&] { writeFile(file, "later"); }, [&] { return contentOf(file) == "later"; }));
        witness.waitUntilQuiet();
        EXPECT_TRUE(witness.sees([&] { fs::remove_all(vault); }, [&] { return !isThere(vault); }));
        witness.waitUntilQuiet();
        EXPECT_TRUE(witness.sees([&] { fs::create_directory(vault); }, [&] { return isThere(vault); }));
    });
}

TEST(VaultObserver, watchesAVaultInAFolderThatMayNotBeRead) {
    struct Row {
        fs::path vault;
        std::function<void(const fs::path &)> remove;
    };
    // All that is left to tell of these is the folder itself, for the one that holds it is not watched.
    const std::vector<Row> rows{
        {"vault", [](const fs::path &closed) { fs::remove(closed / "vault"); }},
        {"vault", [](const fs::path &closed) { fs::rename(closed / "vault", closed / "old"); }},
        {"above/vault", [](const fs::path &closed) { fs::rename(closed / "above", closed / "old"); }},
    };
    runInThread([&] {
        for (const auto &row : rows) {
            const ClosedFolder closed;
            const auto vault = closed.path() / row.vault;
            fs::create_directories(vault);
            Witness witness(vault);
            const auto isWatched = startAsNobody(witness.observer);
            if (!isWatched)
                GTEST_SKIP() << std::system_category().message(errno);
            EXPECT_TRUE(*isWatched);
            EXPECT_TRUE(witness.sees([&] { writeFile(vault / "03-14.md", "text"); },
                                     [&] { return contentOf(vault / "03-14.md") == "text"; }));
            fs::remove(vault / "03-14.md");
            witness.waitUntilQuiet();
            EXPECT_TRUE(witness.sees([&] { row.remove(closed.path()); }, [&] { return !isThere(vault); }));
        }
    });
}

TEST(VaultObserver, noticesAMountOverTheVault) {
    runInThread([] {
        // Only this thread has the mounts of its own, and the observer's, which it starts.
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            GTEST_SKIP() << std::system_category().message(errno);
        const TemporaryFolder folder;
        folder.write(dayFile, "text");
        const auto vault = folder / "above/vault";
        const auto above = folder / "above";
        Witness witness(vault);
        ASSERT_TRUE(witness.observer.start());
        for (const auto &point : {vault, above}) {
            SCOPED_TRACE(point);
            EXPECT_TRUE(
                witness.sees([&] { EXPECT_EQ(::mount("none", point.c_str(), "tmpfs", 0, nullptr), 0); },
                             [&] { return !isThere(folder / dayFile); }));
            witness.waitUntilQuiet();
            EXPECT_TRUE(witness.sees([&] { folder.write("above/vault/new.md", ""); },
                                     [&] { return isThere(vault / "new.md"); }));
            witness.waitUntilQuiet();
            EXPECT_TRUE(witness.sees([&] { EXPECT_EQ(::umount(point.c_str()), 0); },
                                     [&] { return isThere(folder / dayFile); }));
            witness.waitUntilQuiet();
        }
        // A mount elsewhere is no news.
        fs::create_directory(folder / "elsewhere");
        const int before = witness.calls();
        EXPECT_EQ(::mount("none", (folder / "elsewhere").c_str(), "tmpfs", 0, nullptr), 0);
        EXPECT_EQ(::umount((folder / "elsewhere").c_str()), 0);
        witness.waitUntilQuiet();
        EXPECT_EQ(witness.calls(), before);
    });
}

} // namespace
} // namespace diary

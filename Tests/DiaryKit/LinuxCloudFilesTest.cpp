// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"
#include "Support/VaultFileNames.h"

#include <DiaryKit/DurableFile.h>
#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/VaultFileName.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using Kind = VaultFileName::Kind;
using Names = std::set<std::string>;
using Paths = std::vector<fs::path>;
using Status = CloudFiles::DownloadingStatus;
using testing::ScopedEnvironment;
using testing::TemporaryFolder;

constexpr const char *noAttributes = "no extended attributes in the temporary folders";

bool makePlaceholder(const fs::path &file) {
    constexpr std::string_view command = "hydrate";
    return ::setxattr(file.c_str(), "user.nextcloud.hydrate_exec", command.data(), command.size(), 0) == 0;
}

// None where no file system at hand keeps extended attributes.
std::unique_ptr<TemporaryFolder> folderWithAttributes() {
    for (const auto &parent : {fs::temp_directory_path(), fs::path("/var/tmp")}) {
        const ScopedEnvironment elsewhere("TMPDIR", parent);
        auto folder = std::make_unique<TemporaryFolder>();
        folder->write("probe", "");
        if (!makePlaceholder(*folder / "probe"))
            continue;
        fs::remove(*folder / "probe");
        return folder;
    }
    return nullptr;
}

// What stands for the day's content besides the file in question.
enum class Plain { Present, Missing, Empty, Attribute, ICloud, Nextcloud, OwnCloud };
constexpr std::array allPlains{Plain::Present, Plain::Missing,   Plain::Empty,   Plain::Attribute,
                               Plain::ICloud,  Plain::Nextcloud, Plain::OwnCloud};

const char *nameOf(Plain plain) {
    switch (plain) {
    case Plain::ICloud:
        return ".03-14.md.icloud";
    case Plain::Nextcloud:
        return "03-14.md.nextcloud";
    case Plain::OwnCloud:
        return "03-14.md.owncloud";
    default:
        return "03-14.md";
    }
}

void makePlain(const fs::path &vault, Plain plain) {
    if (plain == Plain::Missing)
        return;
    const auto *content = plain == Plain::Present ? "# 03-14\n" : plain == Plain::Empty ? "" : " ";
    std::ofstream(vault / nameOf(plain)) << content;
    if (plain == Plain::Attribute) {
        ASSERT_TRUE(makePlaceholder(vault / nameOf(plain)));
    }
}

bool hasPlainFile(Plain plain) {
    return plain == Plain::Present || plain == Plain::Empty || plain == Plain::Attribute;
}

// Every known name beside every kind of plain file.
TEST(LinuxCloudFiles, tellsWhatEachNameMeansBesideEachKindOfDayFile) {
    const auto folder = folderWithAttributes();
    if (!folder)
        GTEST_SKIP() << noAttributes;
    const LinuxCloudFiles files(*folder / "resolved");
    const auto vault = *folder / "vault";
    const auto day = vault / "03-14.md";
    for (const auto &[name, kind] : testing::vaultFileNames()) {
        if (kind == Kind::DayFile)
            continue;
        for (const auto plain : allPlains) {
            SCOPED_TRACE(name + ", " + std::to_string(static_cast<int>(plain)));
            fs::create_directory(vault);
            folder->write("vault/" + name, "# 03-14\n");
            makePlain(vault, plain);
            const bool isElsewhere =
                plain == Plain::Attribute ||
                (!hasPlainFile(plain) && (plain != Plain::Missing || kind == Kind::Placeholder));
            EXPECT_EQ(files.downloadingStatus(day), isElsewhere ? Status::NotDownloaded : Status::None);
            EXPECT_EQ(files.unresolvedConflictVersions(day),
                      kind == Kind::ConflictCopy ? Paths{vault / name} : Paths{});
            fs::remove_all(vault);
        }
    }
}

TEST(LinuxCloudFiles, hasNothingToSayAboutAnOrdinaryFolder) {
    const TemporaryFolder folder;
    const LinuxCloudFiles files(folder / "resolved");
    folder.write("03-14.md", "text");
    folder.write("03-15.md.nextcloud", " ");
    for (const char *name :
         {"03-14.md", "03-16.md", "none/03-14.md", "03-14.md/03-14.md", "", "notes.md", "."}) {
        EXPECT_EQ(files.downloadingStatus(folder / name), Status::None) << name;
        EXPECT_EQ(files.unresolvedConflictVersions(folder / name), Paths{}) << name;
    }
    EXPECT_EQ(files.downloadingStatus({}), Status::None);
    EXPECT_EQ(files.unresolvedConflictVersions({}), Paths{});
}

TEST(LinuxCloudFiles, takesAPlaceholdersPathForItsFile) {
    const TemporaryFolder folder;
    const LinuxCloudFiles files(folder / "resolved");
    for (const auto &name : VaultFileName::placeholderNames({3, 14})) {
        folder.write(name, " ");
        EXPECT_EQ(files.downloadingStatus(folder / name), Status::NotDownloaded) << name;
        folder.write("03-14.md", "arrived");
        EXPECT_EQ(files.downloadingStatus(folder / name), Status::None) << name;
        fs::remove(folder / "03-14.md");
        fs::remove(folder / name);
        EXPECT_EQ(files.downloadingStatus(folder / name), Status::None) << name;
    }
}

TEST(LinuxCloudFiles, takesNoFolderForAPlaceholder) {
    const TemporaryFolder folder;
    const LinuxCloudFiles files(folder / "resolved");
    for (const auto &name : VaultFileName::placeholderNames({3, 14}))
        fs::create_directory(folder / name);
    EXPECT_EQ(files.downloadingStatus(folder / "03-14.md"), Status::None);
}

TEST(LinuxCloudFiles, seesTheAttributeOfAnyFile) {
    const auto folder = folderWithAttributes();
    if (!folder)
        GTEST_SKIP() << noAttributes;
    const LinuxCloudFiles files(*folder / "resolved");
    folder->write("notes.md", " ");
    folder->write("other.md", " ");
    ASSERT_TRUE(makePlaceholder(*folder / "notes.md"));
    fs::create_symlink("notes.md", *folder / "03-14.md");
    ASSERT_EQ(::setxattr((*folder / "other.md").c_str(), "user.color", "blue", 4, 0), 0);
    EXPECT_EQ(files.downloadingStatus(*folder / "notes.md"), Status::NotDownloaded);
    EXPECT_EQ(files.downloadingStatus(*folder / "03-14.md"), Status::NotDownloaded);
    EXPECT_EQ(files.downloadingStatus(*folder / "other.md"), Status::None);
}

TEST(LinuxCloudFiles, listsConflictCopiesByName) {
    const TemporaryFolder folder;
    const LinuxCloudFiles files(folder / "resolved");
    Paths all;
    for (const auto &[name, kind] : testing::vaultFileNames()) {
        folder.write(name, "text");
        if (kind == Kind::ConflictCopy)
            all.push_back(folder / name);
    }
    folder.write("03-15 (conflicted).md", "another day");
    std::ranges::sort(all, [](const fs::path &a, const fs::path &b) { return a.native() < b.native(); });
    ASSERT_GT(all.size(), 20U);
    EXPECT_EQ(files.unresolvedConflictVersions(folder / "03-14.md"), all);
    EXPECT_EQ(files.unresolvedConflictVersions(folder / "03-15.md"), Paths{folder / "03-15 (conflicted).md"});
    EXPECT_EQ(files.unresolvedConflictVersions(folder / "03-14 (conflicted).md"), Paths{});
    EXPECT_EQ(files.unresolvedConflictVersions(folder / "03-14.md.nextcloud"), Paths{});

    const auto before = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_EQ(files.unresolvedConflictVersions("03-15.md"), Paths{"./03-15 (conflicted).md"});
    fs::current_path(before);
}

TEST(LinuxCloudFiles, takesOnlyRegularFilesForConflictCopies) {
    const TemporaryFolder folder;
    const LinuxCloudFiles files(folder / "resolved");
    folder.write("text", "text");
    fs::create_directory(folder / "03-14 (conflicted 1).md");
    fs::create_symlink("text", folder / "03-14 (conflicted 2).md");
    ASSERT_EQ(::mkfifo((folder / "03-14 (conflicted 3).md").c_str(), 0600), 0);
    folder.write("03-14 (conflicted 4).md", "");
    EXPECT_EQ(files.unresolvedConflictVersions(folder / "03-14.md"),
              Paths{folder / "03-14 (conflicted 4).md"});
}

TEST(LinuxCloudFiles, waitsForConflictCopiesThatAreNotDownloaded) {
    const auto folder = folderWithAttributes();
    if (!folder)
        GTEST_SKIP() << noAttributes;
    const LinuxCloudFiles files(*folder / "resolved");
    const auto copy = *folder / "03-14 (conflicted).md";
    folder->write("03-14 (conflicted).md", " ");
    ASSERT_TRUE(makePlaceholder(copy));
    EXPECT_EQ(files.unresolvedConflictVersions(*folder / "03-14.md"), Paths{});
    ASSERT_EQ(::removexattr(copy.c_str(), "user.nextcloud.hydrate_exec"), 0);
    EXPECT_EQ(files.unresolvedConflictVersions(*folder / "03-14.md"), Paths{copy});
}

TEST(LinuxCloudFiles, movesResolvedCopiesOutOfTheVault) {
    const TemporaryFolder folder;
    const LinuxCloudFiles files(folder / "state/resolved");
    for (const char *text : {"first", "second"}) {
        folder.write("vault/03-14 (conflicted).md", text);
        folder.write("vault/03-14.md..path1", text);
        const auto versions = files.unresolvedConflictVersions(folder / "vault/03-14.md");
        ASSERT_EQ(versions.size(), 2U);
        for (const auto &version : versions)
            EXPECT_TRUE(files.markResolved(version));
        EXPECT_EQ(files.unresolvedConflictVersions(folder / "vault/03-14.md"), Paths{});
    }
    EXPECT_EQ(folder.names("vault"), Names{});
    EXPECT_EQ(folder.names("state/resolved"), (Names{"03-14 (conflicted).md", "03-14 (conflicted) 2.md",
                                                     "03-14.md..path1", "03-14.md. 2.path1"}));
    EXPECT_EQ(folder.read("state/resolved/03-14 (conflicted).md"), "first");
    EXPECT_EQ(folder.read("state/resolved/03-14 (conflicted) 2.md"), "second");
}

TEST(LinuxCloudFiles, keepsResolvedCopiesInTheStateFolder) {
    const TemporaryFolder folder;
    const ScopedEnvironment state("XDG_STATE_HOME", folder / "state");
    const LinuxCloudFiles files;
    folder.write("03-14 (conflicted).md", "text");
    EXPECT_TRUE(files.markResolved(folder / "03-14 (conflicted).md"));
    EXPECT_EQ(folder.read("state/tavelo/resolved/03-14 (conflicted).md"), "text");
}

TEST(LinuxCloudFiles, movesResolvedCopiesToAnotherFileSystem) {
    const TemporaryFolder folder;
    std::error_code error;
    if (!fs::is_directory("/dev/shm", error))
        GTEST_SKIP() << "no /dev/shm";
    const ScopedEnvironment elsewhere("TMPDIR", "/dev/shm");
    const TemporaryFolder other;
    struct stat here {};
    struct stat there {};
    ASSERT_EQ(::stat(folder.path().c_str(), &here), 0);
    ASSERT_EQ(::stat(other.path().c_str(), &there), 0);
    if (here.st_dev == there.st_dev)
        GTEST_SKIP() << "one file system only";

    const LinuxCloudFiles files(other / "resolved");
    for (const char *text : {"first", "second"}) {
        folder.write("03-14 (conflicted).md", text);
        EXPECT_TRUE(files.markResolved(folder / "03-14 (conflicted).md"));
    }
    EXPECT_EQ(folder.names(), Names{});
    EXPECT_EQ(other.names("resolved"), (Names{"03-14 (conflicted).md", "03-14 (conflicted) 2.md"}));
    EXPECT_EQ(other.read("resolved/03-14 (conflicted).md"), "first");
    EXPECT_EQ(other.read("resolved/03-14 (conflicted) 2.md"), "second");
}

TEST(LinuxCloudFiles, saysWhenACopyCannotBeMoved) {
    const TemporaryFolder folder;
    folder.write("resolved", "a file where the folder should be");
    folder.write("03-14 (conflicted).md", "text");
    EXPECT_FALSE(LinuxCloudFiles(folder / "resolved").markResolved(folder / "03-14 (conflicted).md"));
    EXPECT_EQ(folder.read("03-14 (conflicted).md"), "text");
    EXPECT_FALSE(LinuxCloudFiles(folder / "made").markResolved(folder / "missing.md"));
    EXPECT_FALSE(LinuxCloudFiles(folder / "made").markResolved({}));
}

// The socket of a sync client, in a runtime folder that the environment names. Accepts and reads only when
// told.
class SyncClient {
public:
    explicit SyncClient(const fs::path &socketPath, int type = SOCK_STREAM, int backlog = 8)
        : m_path(socketPath) {
        fs::create_directories(socketPath.parent_path());
        ::unlink(socketPath.c_str());
        m_listening = FileDescriptor(::socket(AF_UNIX, type | SOCK_CLOEXEC, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const auto path = socketPath.string();
        EXPECT_LT(path.size(), sizeof address.sun_path);
        std::memcpy(address.sun_path, path.data(), std::min(path.size(), sizeof address.sun_path - 1));
        EXPECT_EQ(::bind(m_listening.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        if (type == SOCK_STREAM) {
            EXPECT_EQ(::listen(m_listening.get(), backlog), 0);
        }
    }

    bool accept() {
        if (!becomesReadable(m_listening.get()))
            return false;
        m_connection = FileDescriptor(::accept4(m_listening.get(), nullptr, nullptr, SOCK_CLOEXEC));
        return static_cast<bool>(m_connection);
    }

    bool isAsked() const { return becomesReadable(m_listening.get(), 0); }

    bool say(std::string_view bytes) const {
        return ::send(m_connection.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) ==
               std::ssize(bytes);
    }

    // Without its end; what has come when no line does.
    std::string line() {
        for (;;) {
            if (const auto end = m_received.find('\n'); end != std::string::npos) {
                auto result = m_received.substr(0, end);
                m_received.erase(0, end + 1);
                return result;
            }
            std::array<char, 4096> buffer{};
            if (!becomesReadable(m_connection.get()))
                return m_received + " (no more)";
            const auto count = ::read(m_connection.get(), buffer.data(), buffer.size());
            if (count <= 0)
                return m_received + " (closed)";
            m_received.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }

    std::string nextLine() { return m_connection || accept() ? line() : "(nobody calls)"; }

    // True when nothing more is there to be read.
    bool hasHeardAll() const { return m_received.empty() && !becomesReadable(m_connection.get(), 0); }

    void stopListening() const { EXPECT_EQ(::shutdown(m_connection.get(), SHUT_RD), 0); }
    void hangUp() { m_connection.reset(); }
    void die() {
        m_connection.reset();
        m_listening.reset();
    }

private:
    static bool becomesReadable(int descriptor, int milliseconds = 10000) {
        pollfd waiting{descriptor, POLLIN, 0};
        return ::poll(&waiting, 1, milliseconds) == 1;
    }

    fs::path m_path;
    FileDescriptor m_listening;
    FileDescriptor m_connection;
    std::string m_received;
};

// A vault with one evicted day, and a runtime folder for the clients.
class Downloading : public ::testing::Test {
protected:
    void SetUp() override { folder.write("vault/03-14.md.nextcloud", " "); }

    std::string request(const std::string &name = "03-14.md.nextcloud") const {
        return "MAKE_AVAILABLE_LOCALLY:" + (fs::canonical(folder / "vault") / name).string();
    }

    const TemporaryFolder folder;
    const ScopedEnvironment runtime{"XDG_RUNTIME_DIR", folder / "run"};
    const fs::path nextcloud = folder / "run/Nextcloud/socket";
    const fs::path ownCloud = folder / "run/ownCloud/socket";
    const fs::path day = folder / "vault/03-14.md";
    const LinuxCloudFiles files{folder / "resolved"};
};

TEST_F(Downloading, asksTheClients) {
    for (const auto &path : {nextcloud, ownCloud}) {
        SyncClient client(path);
        files.startDownloading(day);
        ASSERT_TRUE(client.accept());
        EXPECT_EQ(client.line(), request());
        EXPECT_TRUE(client.hasHeardAll());
        client.die();
        fs::remove(path);
    }
    SyncClient first(nextcloud);
    SyncClient second(ownCloud);
    files.startDownloading(day);
    ASSERT_TRUE(first.accept());
    ASSERT_TRUE(second.accept());
    EXPECT_EQ(first.line(), request());
    EXPECT_EQ(second.line(), request());
}

TEST_F(Downloading, asksForThePlaceholderThatIsThere) {
    SyncClient client(nextcloud);
    fs::remove(folder / "vault/03-14.md.nextcloud");
    for (const auto &name : VaultFileName::placeholderNames({3, 14})) {
        folder.write("vault/" + name, " ");
        for (const auto &path : {day, folder / "vault" / name}) {
            files.startDownloading(path);
            EXPECT_EQ(client.nextLine(), request(name));
        }
        fs::remove(folder / "vault" / name);
    }
}

TEST_F(Downloading, asksForAFileWithTheAttribute) {
    const auto other = folderWithAttributes();
    if (!other)
        GTEST_SKIP() << noAttributes;
    other->write("03-14.md", " ");
    ASSERT_TRUE(makePlaceholder(*other / "03-14.md"));
    SyncClient client(nextcloud);
    files.startDownloading(*other / "03-14.md");
    ASSERT_TRUE(client.accept());
    EXPECT_EQ(client.line(), "MAKE_AVAILABLE_LOCALLY:" + fs::canonical(*other / "03-14.md").string());
}

TEST_F(Downloading, givesTheAbsolutePathWithoutLinks) {
    SyncClient client(nextcloud);
    fs::create_directory_symlink("vault", folder / "link");
    files.startDownloading(folder / "link/../link/./03-14.md");
    ASSERT_TRUE(client.accept());
    EXPECT_EQ(client.line(), request());

    const auto before = fs::current_path();
    fs::current_path(folder / "vault");
    files.startDownloading("03-14.md");
    fs::current_path(before);
    EXPECT_EQ(client.line(), request());
}

TEST_F(Downloading, asksForNothingThatIsHere) {
    const SyncClient client(nextcloud);
    folder.write("vault/03-15.md", "text");
    fs::create_directories(folder / "broken\nline");
    folder.write("broken\nline/03-14.md.nextcloud", " ");
    for (const char *name : {"vault/03-15.md", "vault/03-16.md", "vault/notes.md", "broken\nline/03-14.md"})
        files.startDownloading(folder / name);
    files.startDownloading({});
    folder.write("vault/03-14.md", "arrived");
    files.startDownloading(day);
    EXPECT_FALSE(client.isAsked());
}

TEST_F(Downloading, doesNothingWhereNobodyListens) {
    files.startDownloading(day); // no socket

    folder.write("run/Nextcloud/socket", "no socket but a file");
    files.startDownloading(day);

    SyncClient(nextcloud).die(); // its name stays
    files.startDownloading(day);

    const SyncClient datagrams(ownCloud, SOCK_DGRAM);
    files.startDownloading(day);

    SyncClient client(nextcloud);
    const auto before = fs::current_path();
    fs::current_path(folder.path());
    for (const std::optional<std::string> &value :
         {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("run"),
          std::optional<std::string>("/" + std::string(200, 'x'))}) {
        const ScopedEnvironment other("XDG_RUNTIME_DIR", value);
        files.startDownloading(day);
    }
    fs::current_path(before);
    EXPECT_FALSE(client.isAsked());
    files.startDownloading(day);
    EXPECT_TRUE(client.accept());
}

TEST_F(Downloading, sendsTheRequestsForAWholeVaultToAClientThatIsBusy) {
    SyncClient client(nextcloud);
    std::vector<std::string> expected;
    for (std::int64_t offset = 0; offset < MonthDay::cycleLength; ++offset) {
        const auto name = MonthDay{1, 1}.advanced(offset).fileName();
        folder.write("vault/" + name + ".nextcloud", " ");
        files.startDownloading(folder / "vault" / name);
        expected.push_back(request(name + ".nextcloud"));
    }
    ASSERT_TRUE(client.accept());
    for (const auto &line : expected)
        ASSERT_EQ(client.line(), line);
}

TEST_F(Downloading, stillReachesAClientThatSpeaksFirst) {
    SyncClient client(nextcloud);
    files.startDownloading(day);
    ASSERT_TRUE(client.accept());
    EXPECT_TRUE(client.say("REGISTER_PATH:/home/me/Nextcloud\n"));
    EXPECT_EQ(client.line(), request());
    // More than fits between the two unless it is read.
    for (int round = 0; round < 40; ++round) {
        ASSERT_TRUE(client.say(std::string(20000, 'x') + "\n")) << round;
        files.startDownloading(day);
        ASSERT_EQ(client.line(), request()) << round;
    }
}

TEST_F(Downloading, doesNotWaitForAClientThatNeverReads) {
    // Full queues at both ends: one client that accepts nothing, one that reads nothing.
    const SyncClient silent(ownCloud, SOCK_STREAM, 0);
    SyncClient client(nextcloud);
    std::vector<std::unique_ptr<LinuxCloudFiles>> others;
    for (int number = 0; number < 3; ++number) {
        others.push_back(std::make_unique<LinuxCloudFiles>(folder / "resolved"));
        others.back()->startDownloading(day);
    }
    files.startDownloading(day);
    ASSERT_TRUE(client.accept());
    const auto before = std::chrono::steady_clock::now();
    for (int round = 0; round < 3000; ++round)
        files.startDownloading(day);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds{20});
}

TEST_F(Downloading, survivesClientsThatHangUp) {
    SyncClient client(nextcloud);
    for (int round = 0; round < 10; ++round) {
        files.startDownloading(day);
        ASSERT_TRUE(client.accept());
        EXPECT_EQ(client.line(), request());
        client.hangUp();
    }
    files.startDownloading(day);
    ASSERT_TRUE(client.accept());
    client.stopListening();
    files.startDownloading(day);
    files.startDownloading(day);
    ASSERT_TRUE(client.accept());
    EXPECT_EQ(client.line(), request());

    client.die();
    files.startDownloading(day);
    SyncClient restarted(nextcloud);
    files.startDownloading(day);
    ASSERT_TRUE(restarted.accept());
    EXPECT_EQ(restarted.line(), request());
}

TEST_F(Downloading, keepsTheLinesOfSeveralThreadsApart) {
    constexpr int threadCount = 4;
    constexpr int requests = 50;
    SyncClient client(nextcloud);
    {
        std::vector<std::jthread> threads;
        for (int number = 0; number < threadCount; ++number) {
            threads.emplace_back([this] {
                for (int count = 0; count < requests; ++count)
                    files.startDownloading(day);
            });
        }
    }
    ASSERT_TRUE(client.accept());
    for (int count = 0; count < threadCount * requests; ++count)
        ASSERT_EQ(client.line(), request());
    EXPECT_TRUE(client.hasHeardAll());
}

} // namespace
} // namespace diary

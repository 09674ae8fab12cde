// SPDX-License-Identifier: MIT
#include "Support/ForkedTask.h"
#include "Support/TemporaryFolder.h"

#include <DiaryKit/DurableFile.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <grp.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using testing::endedProcess;
using testing::reportOfFork;
using testing::TemporaryFolder;
using testing::temporaryName;
using Expecting = PreparedFile::Expecting;
using Names = std::set<std::string>;
using std::chrono::milliseconds;

constexpr const char *skipMark = "skip: ";

// The system's error number that `action` fails with, or 0.
int errorOf(const std::function<void()> &action) {
    try {
        action();
    } catch (const fs::filesystem_error &error) {
        EXPECT_FALSE(error.path1().empty());
        return error.code().value();
    }
    return 0;
}

int readError(const fs::path &path) {
    std::error_code error;
    EXPECT_EQ(readWholeFile(path, error), std::nullopt);
    return error.value();
}

unsigned modeOf(const fs::path &path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

TEST(DurableFile, readsWholeFiles) {
    const TemporaryFolder folder;
    for (const std::string &content :
         {std::string(), std::string("a"), std::string("a\0b\n", 4), std::string(300000, 'x')}) {
        folder.write("file", content);
        std::error_code error = std::make_error_code(std::errc::io_error);
        EXPECT_EQ(readWholeFile(folder / "file", error), content);
        EXPECT_FALSE(error);
    }
}

TEST(DurableFile, saysWhyThereIsNothingToRead) {
    const TemporaryFolder folder;
    folder.write("file", "text");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(readError(folder / "missing"), ENOENT);
    EXPECT_EQ(readError(folder / "file/below"), ENOTDIR);
    EXPECT_EQ(readError(folder.path()), EISDIR);
    EXPECT_EQ(readError(folder / "pipe"), EINVAL);
    EXPECT_EQ(readError("/dev/null"), EINVAL);
}

TEST(DurableFile, readsNothingThatCouldTakeAllOfTheMemory) {
    const TemporaryFolder folder;
    folder.write("file", "text");
    // Takes no room on the disk.
    fs::resize_file(folder / "file", std::uintmax_t{1} << 40);
    EXPECT_EQ(readError(folder / "file"), EFBIG);
    fs::resize_file(folder / "file", largestReadableFile + 1);
    EXPECT_EQ(readError(folder / "file"), EFBIG);
}

TEST(DurableFile, readsMoreThanTheSizeThatWasAnnounced) {
    // Its size is reported as 0.
    std::error_code error;
    const auto status = readWholeFile("/proc/self/status", error);
    ASSERT_TRUE(status) << error.message();
    EXPECT_TRUE(status->starts_with("Name:"));
    EXPECT_GT(status->size(), 400U);
}

TEST(DurableFile, readsAFileThatGrowsMeanwhile) {
    constexpr std::string_view chunk = "0123456789";
    constexpr std::size_t chunks = 20000;
    const TemporaryFolder folder;
    folder.write("file", chunk);
    const std::jthread writer([&] {
        std::ofstream file(folder / "file", std::ios::app);
        for (std::size_t count = 1; count < chunks; ++count)
            file << chunk << std::flush;
    });
    for (std::size_t longest = 0; longest < chunk.size() * chunks;) {
        std::error_code error;
        const auto bytes = readWholeFile(folder / "file", error);
        ASSERT_TRUE(bytes) << error.message();
        ASSERT_GE(bytes->size(), longest);
        longest = bytes->size();
        ASSERT_EQ(bytes->find_first_not_of(chunk), std::string::npos);
    }
}

TEST(DurableFile, tellsTheTimeOfTheLastChange) {
    const TemporaryFolder folder;
    folder.write("file", "text");
    EXPECT_EQ(contentModificationTime(folder / "file"), fs::last_write_time(folder / "file"));
    EXPECT_EQ(contentModificationTime(folder / "missing"), std::nullopt);
    fs::create_symlink("file", folder / "link");
    EXPECT_EQ(contentModificationTime(folder / "link"), fs::last_write_time(folder / "file"));
}

TEST(DurableFile, followsLinksAtTheEndOfAPath) {
    const TemporaryFolder folder;
    folder.write("far/file", "text");
    fs::create_symlink(folder / "far/file", folder / "absolute");
    fs::create_symlink("far/file", folder / "relative");
    fs::create_symlink("../relative", folder / "far/chain");
    fs::create_symlink("far/nothing", folder / "dangling");
    struct Row {
        const char *path;
        const char *resolved;
    };
    for (const auto &[path, resolved] :
         {Row{"far/file", "far/file"}, Row{"absolute", "far/file"}, Row{"relative", "far/file"},
          Row{"far/chain", "far/file"}, Row{"dangling", "far/nothing"}, Row{"missing", "missing"}})
        EXPECT_EQ(resolvingLinks(folder / path).lexically_normal(), folder / resolved) << path;
}

TEST(DurableFile, givesUpOnLinksThatGoRound) {
    const TemporaryFolder folder;
    fs::create_symlink("two", folder / "one");
    fs::create_symlink("one", folder / "two");
    EXPECT_EQ(errorOf([&] { replaceFileDurably(folder / "one", "text"); }), ELOOP);
    EXPECT_EQ(folder.names(), (Names{"one", "two"}));
}

TEST(DurableFile, makesMissingFolders) {
    const TemporaryFolder folder;
    createFoldersDurably(folder / "a/b/c");
    EXPECT_TRUE(fs::is_directory(folder / "a/b/c"));
    createFoldersDurably(folder / "a/b/c");
    createFoldersDurably(folder / "a/d/");
    EXPECT_TRUE(fs::is_directory(folder / "a/d"));
    fs::create_directory_symlink("a", folder / "link");
    createFoldersDurably(folder / "link/e");
    EXPECT_TRUE(fs::is_directory(folder / "a/e"));

    folder.write("file", "text");
    EXPECT_EQ(errorOf([&] { createFoldersDurably(folder / "file"); }), ENOTDIR);
    EXPECT_EQ(errorOf([&] { createFoldersDurably(folder / "file/below"); }), ENOTDIR);
}

TEST(DurableFile, replacesFilesAndMakesThem) {
    const TemporaryFolder folder;
    replaceFileDurably(folder / "new/folder/file", "first");
    EXPECT_EQ(folder.read("new/folder/file"), "first");
    replaceFileDurably(folder / "new/folder/file", "");
    EXPECT_EQ(folder.read("new/folder/file"), "");
    EXPECT_EQ(folder.names("new/folder"), Names{"file"});
}

TEST(DurableFile, replacesWhatALinkPointsTo) {
    const TemporaryFolder folder;
    folder.write("far/file", "old");
    fs::create_symlink("far/file", folder / "link");
    fs::create_symlink("elsewhere/made", folder / "dangling");
    replaceFileDurably(folder / "link", "new");
    replaceFileDurably(folder / "dangling", "made");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_TRUE(fs::is_symlink(folder / "dangling"));
    EXPECT_EQ(folder.read("far/file"), "new");
    EXPECT_EQ(folder.read("elsewhere/made"), "made");
    EXPECT_EQ(folder.names("far"), Names{"file"});
}

TEST(PreparedFile, waitsBesideTheTargetUnderATemporaryName) {
    const TemporaryFolder folder;
    folder.write("03-14.md", "old");
    {
        const PreparedFile prepared(folder / "03-14.md", "new");
        EXPECT_EQ(folder.read("03-14.md"), "old");
        EXPECT_EQ(prepared.temporaryPath(), folder / temporaryName("03-14.md", ::getpid()));
        EXPECT_EQ(folder.read(prepared.temporaryPath().filename()), "new");
    }
    EXPECT_EQ(folder.names(), Names{"03-14.md"});
}

TEST(PreparedFile, takesAnotherNameWhenItsOwnIsTaken) {
    const TemporaryFolder folder;
    const PreparedFile first(folder / "file", "1");
    const PreparedFile second(folder / "file", "2");
    EXPECT_EQ(second.temporaryPath(), folder / temporaryName("file", ::getpid(), '1'));
    EXPECT_EQ(folder.read(first.temporaryPath().filename()), "1");
}

TEST(PreparedFile, returnsWhatItTookThePlaceOf) {
    const TemporaryFolder folder;
    {
        PreparedFile prepared(folder / "file", "first");
        EXPECT_EQ(prepared.install(Expecting::Nothing), std::nullopt);
        EXPECT_FALSE(prepared.takeDisplaced());
        prepared.syncFolder();
        EXPECT_EQ(contentModificationTime(folder / "file"), prepared.modificationTime());
    }
    for (const auto expecting : {Expecting::File, Expecting::Nothing}) {
        folder.write("file", "written by another program");
        PreparedFile prepared(folder / "file", "second");
        EXPECT_EQ(prepared.install(expecting), "written by another program");
        EXPECT_EQ(folder.read("file"), "second");
        EXPECT_EQ(folder.read(prepared.temporaryPath().filename()), "written by another program");
        EXPECT_EQ(contentModificationTime(folder / "file"), prepared.modificationTime());
    }
    EXPECT_EQ(folder.names(), Names{"file"});
}

TEST(PreparedFile, seesAFileThatCameAfterItWasPrepared) {
    const TemporaryFolder folder;
    PreparedFile prepared(folder / "file", "mine");
    folder.write("file", "theirs");
    EXPECT_EQ(prepared.install(Expecting::Nothing), "theirs");
    EXPECT_EQ(folder.read("file"), "mine");
}

TEST(PreparedFile, waitsForAFileThatIsBeingReplaced) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    PreparedFile prepared(folder / "file", "mine");
    fs::rename(folder / "file", folder / "away");
    const std::jthread other([&] {
        std::this_thread::sleep_for(milliseconds{2});
        fs::rename(folder / "away", folder / "file");
    });
    EXPECT_EQ(prepared.install(Expecting::File), "old");
}

TEST(PreparedFile, makesAFileThatStaysAway) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    PreparedFile prepared(folder / "file", "mine");
    fs::remove(folder / "file");
    EXPECT_EQ(prepared.install(Expecting::File), std::nullopt);
    EXPECT_EQ(folder.read("file"), "mine");
}

TEST(PreparedFile, putsTheDisplacedFileBack) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    {
        PreparedFile prepared(folder / "file", "new");
        EXPECT_FALSE(prepared.putBack());
        ASSERT_EQ(prepared.install(Expecting::File), "old");
        EXPECT_TRUE(prepared.putBack());
        EXPECT_FALSE(prepared.putBack());
        EXPECT_EQ(folder.read("file"), "old");
    }
    EXPECT_EQ(folder.read("file"), "old");
    EXPECT_EQ(folder.names(), Names{"file"});
}

TEST(PreparedFile, putsNothingBackWhereNothingWas) {
    const TemporaryFolder folder;
    PreparedFile prepared(folder / "file", "new");
    ASSERT_EQ(prepared.install(Expecting::Nothing), std::nullopt);
    EXPECT_FALSE(prepared.putBack());
    EXPECT_EQ(folder.read("file"), "new");
}

TEST(PreparedFile, doesNotUndoAnotherProgramsWrite) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    {
        PreparedFile prepared(folder / "file", "new");
        ASSERT_EQ(prepared.install(Expecting::File), "old");
        folder.write("other", "theirs");
        fs::rename(folder / "other", folder / "file");
        EXPECT_FALSE(prepared.putBack());
    }
    EXPECT_EQ(folder.read("file"), "theirs");
    EXPECT_EQ(folder.read(temporaryName("file", ::getpid())), "old");
}

TEST(PreparedFile, leavesTheDisplacedFileReadable) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    FileDescriptor displaced;
    const FileDescriptor writer(::open((folder / "file").c_str(), O_WRONLY | O_CLOEXEC));
    {
        PreparedFile prepared(folder / "file", "new");
        ASSERT_EQ(prepared.install(Expecting::File), "old");
        displaced = prepared.takeDisplaced();
    }
    ASSERT_EQ(::pwrite(writer.get(), "late", 4, 0), 4);
    std::error_code error;
    EXPECT_EQ(readWholeFile(displaced.get(), error), "late");
    EXPECT_EQ(folder.read("file"), "new");
}

TEST(PreparedFile, keepsModeAndAttributes) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    const auto path = folder / "file";
    for (const unsigned mode : {0600U, 0640U, 0664U, 0200U | 0044U, 0755U}) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        if (::access(path.c_str(), R_OK) < 0)
            continue; // without the superuser's powers a file that cannot be read cannot be saved over
        replaceFileDurably(path, "new");
        EXPECT_EQ(modeOf(path), mode);
    }

    const std::string value("blue\0green", 10);
    if (::setxattr(path.c_str(), "user.color", value.data(), value.size(), 0) < 0)
        GTEST_SKIP() << "no extended attributes in " << folder.path();
    ASSERT_EQ(::setxattr(path.c_str(), "user.empty", nullptr, 0, 0), 0);
    replaceFileDurably(path, "newer");
    EXPECT_EQ(folder.read("file"), "newer");
    std::array<char, 64> found{};
    const auto size = ::getxattr(path.c_str(), "user.color", found.data(), found.size());
    EXPECT_EQ(std::string(found.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))), value);
    EXPECT_EQ(::getxattr(path.c_str(), "user.empty", found.data(), found.size()), 0);
}

TEST(PreparedFile, givesANewFileTheUsualMode) {
    const TemporaryFolder folder;
    const auto mask = ::umask(027);
    replaceFileDurably(folder / "file", "text");
    ::umask(mask);
    EXPECT_EQ(modeOf(folder / "file"), 0640U);
}

TEST(PreparedFile, keepsOwnerAndGroupForTheSuperuser) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can give files away";
    const TemporaryFolder folder;
    folder.write("file", "old");
    ASSERT_EQ(::chown((folder / "file").c_str(), 12345, 12346), 0);
    replaceFileDurably(folder / "file", "new");
    struct stat status {};
    ASSERT_EQ(::stat((folder / "file").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 12346U);
}

TEST(PreparedFile, keepsTheGroupOfAFileThatSomeoneElseOwns) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs the superuser to become two other users";
    constexpr gid_t family = 12346;
    const TemporaryFolder folder;
    folder.write("file", "old");
    ASSERT_EQ(::chown((folder / "file").c_str(), 12345, family), 0);
    ASSERT_EQ(::chmod((folder / "file").c_str(), 0660), 0);
    ASSERT_EQ(::chown(folder.path().c_str(), 12345, family), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0770), 0);
    EXPECT_EQ(reportOfFork([&]() -> std::string {
                  if (::setgroups(1, &family) < 0 || ::setgid(12347) < 0 || ::setuid(12347) < 0)
                      return "cannot become another user";
                  replaceFileDurably(folder / "file", "new");
                  return "saved";
              }),
              "saved");
    struct stat status {};
    ASSERT_EQ(::stat((folder / "file").c_str(), &status), 0);
    EXPECT_EQ(folder.read("file"), "new");
    EXPECT_EQ(status.st_gid, family);
    EXPECT_EQ(status.st_mode & 07777U, 0660U);
}

TEST(PreparedFile, refusesReadOnlyFiles) {
    const TemporaryFolder folder;
    folder.write("file", "old");
    ASSERT_EQ(::chmod((folder / "file").c_str(), 0444), 0);
    EXPECT_EQ(errorOf([&] { PreparedFile(folder / "file", "new"); }), EACCES);
    EXPECT_EQ(folder.read("file"), "old");
    EXPECT_EQ(modeOf(folder / "file"), 0444U);
    EXPECT_EQ(folder.names(), Names{"file"});
}

TEST(PreparedFile, refusesWhatIsNoFile) {
    const TemporaryFolder folder;
    folder.write("full/file", "kept");
    fs::create_directory(folder / "empty");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    folder.write("file", "text");
    fs::create_symlink("file", folder / "link");
    const auto before = folder.names();
    struct Row {
        const char *name;
        int error;
    };
    for (const auto &[name, error] :
         {Row{"full", EISDIR}, Row{"empty", EISDIR}, Row{"pipe", EINVAL}, Row{"link", ELOOP}})
        EXPECT_EQ(errorOf([&, target = folder / name] { PreparedFile(target, "new"); }), error) << name;
    EXPECT_EQ(errorOf([&] { PreparedFile(folder / "missing/file", "new"); }), ENOENT);
    EXPECT_EQ(errorOf([&] { PreparedFile(folder / "file/below", "new"); }), ENOTDIR);
    EXPECT_EQ(folder.names(), before);
    EXPECT_EQ(folder.read("full/file"), "kept");
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
}

TEST(PreparedFile, leavesAFolderThatTookTheTargetsPlace) {
    const TemporaryFolder folder;
    struct Row {
        std::function<void(const fs::path &)> make;
        fs::file_type type;
        int error;
    };
    const auto makeFolder = [](const fs::path &path) { fs::create_directory(path); };
    const auto makePipe = [](const fs::path &path) { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); };
    const auto makeLink = [](const fs::path &path) { fs::create_symlink("nowhere", path); };
    for (const auto &[make, type, error] :
         {Row{makeFolder, fs::file_type::directory, EISDIR}, Row{makePipe, fs::file_type::fifo, EINVAL},
          Row{makeLink, fs::file_type::symlink, ELOOP}}) {
        {
            PreparedFile prepared(folder / "file", "new");
            make(folder / "file");
            EXPECT_EQ(errorOf([&] { prepared.install(Expecting::File); }), error);
        }
        EXPECT_EQ(fs::symlink_status(folder / "file").type(), type);
        EXPECT_EQ(folder.names(), Names{"file"});
        fs::remove(folder / "file");
    }
}

// Lets this process run on as on a file system that knows rename alone.
bool refuseExchange() {
    std::array<sock_filter, 4> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog filter{program.size(), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

TEST(PreparedFile, makesDoWithAPlainRename) {
    const TemporaryFolder folder;
    const auto report = reportOfFork([&]() -> std::string {
        if (!refuseExchange())
            return skipMark + std::system_category().message(errno);
        std::string seen;
        const auto install = [&](std::string_view bytes, Expecting expecting) {
            PreparedFile prepared(folder / "file", bytes);
            seen += prepared.install(expecting).value_or("(none)") + " ";
            seen += prepared.putBack() ? "back " : "";
        };
        install("first", Expecting::Nothing);
        install("second", Expecting::File);
        fs::rename(folder / "file", folder / "away");
        const std::jthread other([&] {
            std::this_thread::sleep_for(milliseconds{2});
            fs::rename(folder / "away", folder / "file");
        });
        install("third", Expecting::File);
        return seen;
    });
    if (report.starts_with(skipMark))
        GTEST_SKIP() << "no system call filter: " << report;
    EXPECT_EQ(report, "(none) first second ");
    EXPECT_EQ(folder.read("file"), "third");
    EXPECT_EQ(folder.names(), Names{"file"});
}

TEST(DurableFile, movesFilesToNamesThatAreFree) {
    const TemporaryFolder folder;
    for (const char *content : {"1", "2", "3"}) {
        folder.write("file", content);
        EXPECT_TRUE(moveIntoFolder(folder / "file", folder / "made/here", "03-14.md"));
    }
    EXPECT_EQ(folder.names("made/here"), (Names{"03-14.md", "03-14 2.md", "03-14 3.md"}));
    EXPECT_EQ(folder.read("made/here/03-14.md"), "1");
    EXPECT_EQ(folder.read("made/here/03-14 3.md"), "3");
    EXPECT_EQ(folder.names(), Names{"made"});
}

TEST(DurableFile, movesFilesBetweenFileSystems) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "other");
    const auto report = reportOfFork([&]() -> std::string {
        if (const auto why = testing::ownMounts(); !why.empty())
            return skipMark + why;
        if (::mount("tmpfs", (folder / "other").c_str(), "tmpfs", 0, "size=1m") < 0)
            return skipMark + std::system_category().message(errno);
        folder.write("other/03-14.md", "there before");
        folder.write("file", "text");
        std::string moved = moveIntoFolder(folder / "file", folder / "other", "03-14.md") ? "moved" : "not";
        for (const auto &name : folder.names("other"))
            moved += ", " + name + ": " + folder.read("other/" + name);
        return moved;
    });
    if (report.starts_with(skipMark))
        GTEST_SKIP() << "cannot mount: " << report;
    EXPECT_EQ(report, "moved, 03-14 2.md: text, 03-14.md: there before");
    EXPECT_EQ(folder.names(), Names{"other"});
}

TEST(DurableFile, leavesAFileThatCannotBeMoved) {
    const TemporaryFolder folder;
    folder.write("file", "text");
    folder.write("blocked", "no folder");
    EXPECT_FALSE(moveIntoFolder(folder / "file", folder / "blocked", "03-14.md"));
    EXPECT_FALSE(moveIntoFolder(folder / "file", folder / "blocked/below", "03-14.md"));
    EXPECT_FALSE(moveIntoFolder(folder / "missing", folder / "made", "03-14.md"));
    EXPECT_EQ(folder.read("file"), "text");
    EXPECT_EQ(folder.names("made"), Names{});
}

TEST(DurableFile, tellsWhoseTemporaryWasAbandoned) {
    const auto ended = endedProcess();
    EXPECT_EQ(targetOfAbandonedTemporary(temporaryName("03-14.md", ended)), "03-14.md");
    EXPECT_EQ(targetOfAbandonedTemporary(temporaryName("a.b~", ended, 'z')), "a.b~");
    EXPECT_EQ(targetOfAbandonedTemporary(temporaryName("03-14.md", ::getpid())), std::nullopt);
    EXPECT_EQ(targetOfAbandonedTemporary(temporaryName("03-14.md", ::getppid())), std::nullopt);
}

TEST(DurableFile, takesNoOtherNameForATemporary) {
    const auto name = temporaryName("03-14.md", endedProcess());
    ASSERT_TRUE(targetOfAbandonedTemporary(name));
    for (const auto &other :
         {std::string(), std::string("03-14.md"), std::string(".~"), std::string(".~03-14.md"),
          std::string(".~03-14.md~"), name.substr(1), name.substr(0, name.size() - 1), name + "~",
          temporaryName("", endedProcess()), std::string(".~03-14.md.ABCDE0~"),
          std::string(".~03-14.md.00-010~"), std::string(".~03-14.md.000000~")})
        EXPECT_EQ(targetOfAbandonedTemporary(other), std::nullopt) << other;
}

TEST(FileDescriptor, closesWhatItHolds) {
    const int number = ::open("/", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(number, 0);
    const auto isOpen = [&] { return ::fcntl(number, F_GETFD) >= 0; };
    {
        FileDescriptor first(number);
        FileDescriptor second;
        EXPECT_FALSE(second);
        second = std::move(first);
        EXPECT_TRUE(second);
        EXPECT_EQ(second.get(), number);
        const FileDescriptor third(std::move(second));
        EXPECT_TRUE(isOpen());
    }
    EXPECT_FALSE(isOpen());
}

} // namespace
} // namespace diary

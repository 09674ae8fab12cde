// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/SystemCalls.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view temporaryPrefix = ".~";
constexpr std::size_t processDigits = 5;
constexpr std::string_view base36 = "0123456789abcdefghijklmnopqrstuvwxyz";

// A sync tool that replaces a file by unlink and rename leaves a gap of about half a millisecond, and one of
// many times that where it has to wait for a busy machine in between.
constexpr int replacementGapLooks = 40;
constexpr std::chrono::milliseconds replacementGapPause{1};

// A save takes some milliseconds. The user is waiting too, perhaps for a process that was stopped.
constexpr int turnLooks = 500;
constexpr std::chrono::milliseconds turnPause{1};

// How often the target may change its mind between existing and missing before that is an error.
constexpr int installRounds = 100;

std::string processTag() {
    std::string tag(processDigits, '0');
    auto rest = static_cast<std::uint64_t>(getpid());
    for (auto digit = tag.rbegin(); digit != tag.rend(); ++digit, rest /= base36.size())
        *digit = base36[rest % base36.size()];
    return tag;
}

// Extended attributes, access control lists among them. What the new file may not carry is left out.
int copyAttributes(int from, int to) {
    const auto namesSize = retryingWhenInterrupted([&] { return flistxattr(from, nullptr, 0); });
    if (namesSize <= 0)
        return namesSize == 0 || errno == ENOTSUP || errno == EPERM || errno == EACCES ? 0 : errno;
    std::vector<char> names(static_cast<std::size_t>(namesSize));
    const auto listed = retryingWhenInterrupted([&] { return flistxattr(from, names.data(), names.size()); });
    if (listed < 0)
        return errno;
    std::vector<char> value;
    for (const char *name = names.data(); name < names.data() + listed;
         name += std::string_view(name).size() + 1) {
        const auto size = retryingWhenInterrupted([&] { return fgetxattr(from, name, nullptr, 0); });
        if (size < 0)
            continue;
        value.resize(static_cast<std::size_t>(size));
        const auto read =
            retryingWhenInterrupted([&] { return fgetxattr(from, name, value.data(), value.size()); });
        if (read < 0)
            continue;
        const auto set = retryingWhenInterrupted(
            [&] { return fsetxattr(to, name, value.data(), static_cast<std::size_t>(read), 0); });
        if (set < 0 && errno != ENOTSUP && errno != EPERM && errno != EACCES && errno != EINVAL)
            return errno;
    }
    return 0;
}

// Makes `to` look like `from` to its owner. Returns an error number or 0.
int copyIdentity(int from, const struct stat &status, int to) {
    const auto give = [&](uid_t owner) {
        return retryingWhenInterrupted([&] { return fchown(to, owner, status.st_gid); }) < 0 ? errno : 0;
    };
    const auto refused = [](int error) { return error == EPERM || error == EINVAL; };
    // Giving a file away is for the superuser; others keep the group where they may, since a group that
    // shares the folder would be locked out.
    constexpr auto sameOwner = static_cast<uid_t>(-1);
    int error = give(status.st_uid);
    if (refused(error))
        error = give(sameOwner);
    if (error != 0 && !refused(error))
        return error;
    if (const int attributesError = copyAttributes(from, to))
        return attributesError;
    return retryingWhenInterrupted([&] { return fchmod(to, status.st_mode & 07777U); }) < 0 ? errno : 0;
}

bool exchangeRefused(int error) {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written =
            retryingWhenInterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (written < 0)
            return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

// False with errno set when it failed.
bool syncedFolder(int folder) {
    // Some file systems have nothing to sync in a folder and say so.
    return retryingWhenInterrupted([&] { return ::fsync(folder); }) == 0 || errno == EINVAL ||
           errno == ENOTSUP;
}

void unlinkQuietly(const fs::path &path) {
    // A second try, since what cannot be removed stays in the user's folder.
    if (::unlink(path.c_str()) < 0 && errno != ENOENT)
        ::unlink(path.c_str());
}

} // namespace

FileDescriptor &FileDescriptor::operator=(FileDescriptor &&other) noexcept {
    if (this != &other) {
        reset();
        m_number = other.release();
    }
    return *this;
}

int FileDescriptor::release() {
    return std::exchange(m_number, -1);
}

void FileDescriptor::reset() {
    // Never repeated: on Linux the number is free even when close was interrupted.
    if (m_number >= 0)
        ::close(release());
}

std::optional<std::string> readWholeFile(int descriptor, std::error_code &error) {
    error.clear();
    struct stat status {};
    if (retryingWhenInterrupted([&] { return fstat(descriptor, &status); }) < 0) {
        error.assign(errno, std::system_category());
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        error.assign(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, std::system_category());
        return std::nullopt;
    }
    if (static_cast<std::size_t>(status.st_size) > largestReadableFile) {
        error.assign(EFBIG, std::system_category());
        return std::nullopt;
    }

    // One byte more than announced, so that the end is seen by the first read.
    std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t filled = 0;
    for (;;) {
        const auto count = retryingWhenInterrupted([&] {
            return ::pread(descriptor, bytes.data() + filled, bytes.size() - filled,
                           static_cast<off_t>(filled));
        });
        if (count < 0) {
            error.assign(errno, std::system_category());
            return std::nullopt;
        }
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
        if (filled > largestReadableFile) {
            error.assign(EFBIG, std::system_category());
            return std::nullopt;
        }
        if (filled == bytes.size())
            bytes.resize(bytes.size() * 2);
    }
    bytes.resize(filled);
    return bytes;
}

std::optional<std::string> readWholeFile(const fs::path &path, std::error_code &error) {
    const FileDescriptor file(
        retryingWhenInterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
    if (!file) {
        error.assign(errno, std::system_category());
        return std::nullopt;
    }
    return readWholeFile(file.get(), error);
}

std::optional<fs::file_time_type> contentModificationTime(const fs::path &path) {
    struct stat status {};
    if (retryingWhenInterrupted([&] { return ::stat(path.c_str(), &status); }) < 0)
        return std::nullopt;
    return fileTime(status);
}

fs::path resolvingLinks(fs::path path) {
    constexpr int linkLimit = 40;
    for (int followed = 0; followed < linkLimit; ++followed) {
        std::error_code error;
        auto next = fs::read_symlink(path, error);
        while (error == std::errc::interrupted)
            next = fs::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / next; // an absolute link replaces the whole path
    }
    return path;
}

PreparedFile::PreparedFile(fs::path target, std::string_view bytes) : m_target(std::move(target)) {
    const auto folder = m_target.has_parent_path() ? m_target.parent_path() : fs::path(".");
    m_folder = FileDescriptor(
        retryingWhenInterrupted([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!m_folder)
        fail("open folder", errno);
    try {
        writeTemporary(bytes);
    } catch (...) {
        if (!m_temporary.empty())
            unlinkQuietly(m_temporary);
        throw;
    }
}

PreparedFile::~PreparedFile() {
    if (!m_temporary.empty())
        unlinkQuietly(m_temporary);
}

void PreparedFile::fail(const char *operation, int error) const {
    throw fs::filesystem_error(operation, m_target, std::error_code(error, std::system_category()));
}

void PreparedFile::writeTemporary(std::string_view bytes) {
    const FileDescriptor old(retryingWhenInterrupted(
        [&] { return ::open(m_target.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW); }));
    struct stat oldStatus {};
    if (old) {
        if (retryingWhenInterrupted([&] { return fstat(old.get(), &oldStatus); }) < 0)
            fail("save", errno);
        if (!S_ISREG(oldStatus.st_mode))
            fail("save", S_ISDIR(oldStatus.st_mode) ? EISDIR : EINVAL);
        // The folder's permission would do for a replacement, but its owner said that this file stays.
        if ((oldStatus.st_mode & 0222U) == 0)
            fail("save", EACCES);
        // Gone again: another program is just replacing it, which is dealt with when this file takes its
        // place.
        if (retryingWhenInterrupted([&] { return ::access(m_target.c_str(), W_OK); }) < 0 && errno != ENOENT)
            fail("save", errno);
    } else if (errno != ENOENT) {
        fail("save", errno);
    }

    const auto stem = std::string(temporaryPrefix) + m_target.filename().string() + "." + processTag();
    FileDescriptor file;
    for (std::size_t attempt = 0; !file; ++attempt) {
        const auto path = m_target.parent_path() / (stem + base36[attempt % base36.size()] + "~");
        const mode_t mode = old ? 0600 : 0666;
        file = FileDescriptor(retryingWhenInterrupted([&] {
            return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode);
        }));
        if (file)
            m_temporary = path;
        else if (errno != EEXIST || attempt + 1 == base36.size())
            fail("save", errno);
    }

    if (const int error = writeAll(file.get(), bytes))
        fail("save", error);
    if (old) {
        if (const int error = copyIdentity(old.get(), oldStatus, file.get()))
            fail("save", error);
    }
    if (retryingWhenInterrupted([&] { return ::fsync(file.get()); }) < 0)
        fail("save", errno);
    struct stat status {};
    if (retryingWhenInterrupted([&] { return fstat(file.get(), &status); }) < 0)
        fail("save", errno);
    m_modified = fileTime(status);
    m_device = status.st_dev;
    m_inode = status.st_ino;
    // Network file systems may report a lost write only here. An interrupted close has closed all the same.
    if (::close(file.release()) < 0 && errno != EINTR)
        fail("save", errno);
}

std::optional<std::string> PreparedFile::readDisplaced() {
    m_displaced = FileDescriptor(retryingWhenInterrupted(
        [&] { return ::open(m_temporary.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW); }));
    std::error_code error;
    std::optional<std::string> bytes;
    if (m_displaced)
        bytes = readWholeFile(m_displaced.get(), error);
    else
        error.assign(errno, std::system_category());
    if (!bytes) {
        putBack();
        fail("save", error.value());
    }
    return bytes;
}

std::optional<std::string> PreparedFile::installByPlainRename(Expecting expecting) {
    std::error_code error;
    auto replaced = readWholeFile(m_target, error);
    for (int look = 0; expecting == Expecting::File && error.value() == ENOENT && look < replacementGapLooks;
         ++look) {
        std::this_thread::sleep_for(replacementGapPause);
        replaced = readWholeFile(m_target, error);
    }
    if (!replaced && error.value() != ENOENT)
        fail("save", error.value());
    if (retryingWhenInterrupted([&] { return ::rename(m_temporary.c_str(), m_target.c_str()); }) < 0)
        fail("save", errno);
    m_temporary.clear();
    return replaced;
}

std::optional<std::string> PreparedFile::install(Expecting expecting) {
    int gapLooks = expecting == Expecting::File ? replacementGapLooks : 0;
    for (int round = 0; round < installRounds; ++round) {
        const auto rename = [&](unsigned flags) {
            return retryingWhenInterrupted([&] {
                return ::renameat2(AT_FDCWD, m_temporary.c_str(), AT_FDCWD, m_target.c_str(), flags);
            });
        };
        if (rename(RENAME_EXCHANGE) == 0) {
            m_exchanged = true;
            return readDisplaced();
        }
        if (exchangeRefused(errno))
            return installByPlainRename(expecting);
        if (errno != ENOENT)
            fail("save", errno);

        if (gapLooks > 0) {
            --gapLooks;
            std::this_thread::sleep_for(replacementGapPause);
            continue;
        }
        if (rename(RENAME_NOREPLACE) == 0) {
            m_temporary.clear();
            return std::nullopt;
        }
        if (exchangeRefused(errno))
            return installByPlainRename(expecting);
        if (errno != EEXIST)
            fail("save", errno);
    }
    fail("save", EBUSY);
}

bool PreparedFile::putBack() noexcept {
    if (!std::exchange(m_exchanged, false))
        return false;
    const auto swap = [&] {
        return retryingWhenInterrupted([&] {
                   return ::renameat2(AT_FDCWD, m_temporary.c_str(), AT_FDCWD, m_target.c_str(),
                                      RENAME_EXCHANGE);
               }) == 0;
    };
    if (swap()) {
        struct stat status {};
        const bool isOurs = ::lstat(m_temporary.c_str(), &status) == 0 && status.st_dev == m_device &&
                            status.st_ino == m_inode;
        if (isOurs)
            return true;
        // Another program has replaced our file meanwhile: what it wrote stays.
        swap();
    }
    // The displaced file has no other place now. It is found as an abandoned temporary later.
    m_temporary.clear();
    return false;
}

void PreparedFile::syncFolder() const {
    if (!syncedFolder(m_folder.get()))
        fail("save", errno);
}

FolderTurn::FolderTurn(const fs::path &folder)
    : m_folder(retryingWhenInterrupted(
          [&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); })) {
    for (int look = 0; m_folder && look < turnLooks; ++look) {
        const bool taken = ::flock(m_folder.get(), LOCK_EX | LOCK_NB) < 0 && errno == EWOULDBLOCK;
        if (!taken)
            return;
        std::this_thread::sleep_for(turnPause);
    }
}

void createFoldersDurably(const fs::path &folder) {
    const auto fail = [&](int error) {
        throw fs::filesystem_error("create folder", folder, std::error_code(error, std::system_category()));
    };
    struct stat status {};
    if (retryingWhenInterrupted([&] { return ::stat(folder.c_str(), &status); }) == 0) {
        if (!S_ISDIR(status.st_mode))
            fail(ENOTDIR);
        return;
    }
    if (errno != ENOENT)
        fail(errno);

    const auto parent = folder.has_parent_path() ? folder.parent_path() : fs::path(".");
    createFoldersDurably(parent);
    if (retryingWhenInterrupted([&] { return ::mkdir(folder.c_str(), 0777); }) < 0 && errno != EEXIST)
        fail(errno);
    // A folder that may be entered but not listed cannot be synced.
    const FileDescriptor parentFolder(
        retryingWhenInterrupted([&] { return ::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (parentFolder && !syncedFolder(parentFolder.get()))
        fail(errno);
}

void replaceFileDurably(const fs::path &path, std::string_view bytes) {
    const auto target = resolvingLinks(path);
    if (target.has_parent_path())
        createFoldersDurably(target.parent_path());
    PreparedFile prepared(target, bytes);
    prepared.install(PreparedFile::Expecting::Nothing);
    prepared.syncFolder();
}

bool moveIntoFolder(const fs::path &file, const fs::path &folder, const std::string &name) noexcept {
    constexpr int lastNumber = 10000;
    try {
        createFoldersDurably(folder);
        const fs::path wanted(name);
        for (int number = 1; number <= lastNumber; ++number) {
            auto numbered = wanted.stem().string();
            if (number > 1)
                numbered += " " + std::to_string(number);
            const auto destination = folder / (numbered + wanted.extension().string());
            if (::renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, destination.c_str(), RENAME_NOREPLACE) == 0)
                return true;
            if (errno == EEXIST || fs::exists(fs::symlink_status(destination)))
                continue;
            // Another file system, most likely. The copy is on disk before the original goes.
            std::error_code error;
            const auto bytes = readWholeFile(file, error);
            if (!bytes)
                return false;
            replaceFileDurably(destination, *bytes);
            return fs::remove(file);
        }
    } catch (const std::exception &) {
        // Reported by the result: the file is still where it was.
    }
    return false;
}

std::optional<std::string> targetOfAbandonedTemporary(std::string_view fileName) {
    // ".~" NAME "." and five digits for the process, one for the attempt, "~".
    constexpr std::size_t tailLength = 1 + processDigits + 1 + 1;
    if (!fileName.starts_with(temporaryPrefix) || fileName.size() <= temporaryPrefix.size() + tailLength)
        return std::nullopt;
    const auto tail = fileName.substr(fileName.size() - tailLength);
    if (tail.front() != '.' || tail.back() != '~')
        return std::nullopt;
    std::uint64_t process = 0;
    for (const char digit : tail.substr(1, processDigits)) {
        const auto value = base36.find(digit);
        if (value == std::string_view::npos)
            return std::nullopt;
        process = process * base36.size() + value;
    }
    if (process == 0 || ::kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH)
        return std::nullopt;
    return std::string(
        fileName.substr(temporaryPrefix.size(), fileName.size() - temporaryPrefix.size() - tailLength));
}

} // namespace diary

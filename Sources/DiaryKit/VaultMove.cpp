// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/SystemCalls.h>
#include <DiaryKit/VaultFileName.h>
#include <DiaryKit/VaultMove.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using Kind = VaultFileName::Kind;

constexpr const char *stagingName = ".tavelo-copy";
// How often the old folder is gone through until it stays as it was copied.
constexpr int mostRounds = 20;

[[noreturn]] void fail(const fs::path &path, int error) {
    throw fs::filesystem_error("copy the diary", path, std::error_code(error, std::system_category()));
}

bool belongsToDiary(Kind kind) {
    return kind == Kind::DayFile || kind == Kind::ConflictCopy;
}

std::chrono::nanoseconds nanoseconds(const timespec &time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

// Complete and on disk, or an exception. The path is new.
void writeCopy(const fs::path &path, const std::string &bytes, const struct stat &original) {
    FileDescriptor file(retryingWhenInterrupted(
        [&] { return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600); }));
    if (!file)
        fail(path, errno);
    for (std::size_t written = 0; written < bytes.size();) {
        const auto count = retryingWhenInterrupted(
            [&] { return ::write(file.get(), bytes.data() + written, bytes.size() - written); });
        if (count < 0)
            fail(path, errno);
        written += static_cast<std::size_t>(count);
    }
    // Not every file system has these; the text matters.
    retryingWhenInterrupted([&] { return ::fchmod(file.get(), original.st_mode & 0777U); });
    const timespec times[] = {original.st_atim, original.st_mtim};
    retryingWhenInterrupted([&] { return ::futimens(file.get(), times); });
    if (retryingWhenInterrupted([&] { return ::fsync(file.get()); }) < 0)
        fail(path, errno);
    // So that what is read back comes from the disk, where the file system can do that.
    ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_DONTNEED);
    // Network file systems may report a lost write only here.
    if (::close(file.release()) < 0 && errno != EINTR)
        fail(path, errno);
}

void syncFolder(const fs::path &folder) {
    const FileDescriptor descriptor(
        retryingWhenInterrupted([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!descriptor)
        fail(folder, errno);
    const bool synced = retryingWhenInterrupted([&] { return ::fsync(descriptor.get()); }) == 0;
    // Some file systems have nothing to sync in a folder and say so.
    if (!synced && errno != EINVAL && errno != ENOTSUP)
        fail(folder, errno);
}

// To a name that must be free.
void moveToNewName(const fs::path &from, const fs::path &to) {
    const auto renamed = retryingWhenInterrupted(
        [&] { return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE); });
    if (renamed == 0)
        return;
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP)
        fail(to, errno);
    // A file system without that call may know hard links, which do not replace either.
    if (::link(from.c_str(), to.c_str()) == 0) {
        ::unlink(from.c_str());
        return;
    }
    if (errno == EEXIST)
        fail(to, errno);
    std::error_code error;
    if (fs::exists(fs::symlink_status(to, error)))
        fail(to, EEXIST);
    if (::rename(from.c_str(), to.c_str()) < 0)
        fail(to, errno);
}

} // namespace

bool VaultMove::Stamp::isSameAs(const Stamp &other) const {
    return device == other.device && inode == other.inode && size == other.size &&
           nanoseconds(modified) == nanoseconds(other.modified) &&
           nanoseconds(changed) == nanoseconds(other.changed);
}

bool VaultMove::hasDiary(const fs::path &folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const auto kind = VaultFileName::classify(entry->path().filename().native()).kind;
        if (belongsToDiary(kind) || kind == Kind::Placeholder)
            return true;
    }
    return false;
}

VaultMove::VaultMove(fs::path from, fs::path to, std::shared_ptr<const CloudFiles> cloudFiles)
    : m_from(std::move(from)),
      m_to(std::move(to)),
      m_staging(m_to / stagingName),
      m_cloudFiles(std::move(cloudFiles)) {}

VaultMove::~VaultMove() {
    takeBack();
}

VaultMove::Stamp VaultMove::stampOf(const fs::path &file) {
    struct stat status {};
    if (retryingWhenInterrupted([&] { return ::stat(file.c_str(), &status); }) < 0)
        fail(file, errno);
    // The coarsest file systems count in steps of two seconds.
    constexpr std::chrono::seconds coarsestStep(2);
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const auto lastChange = std::max(nanoseconds(status.st_mtim), nanoseconds(status.st_ctim));
    return {status.st_dev,  status.st_ino,  status.st_size,
            status.st_mtim, status.st_ctim, lastChange + coarsestStep < nanoseconds(now)};
}

// Of what is to be copied.
std::vector<std::string> VaultMove::names() const {
    std::vector<std::string> found;
    std::error_code error;
    fs::directory_iterator entry(m_from, error);
    for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
        const auto name = entry->path().filename().native();
        std::error_code ignored;
        if (belongsToDiary(VaultFileName::classify(name).kind) && !entry->is_directory(ignored))
            found.push_back(name);
    }
    if (error)
        fail(m_from, error.value());
    std::sort(found.begin(), found.end());
    return found;
}

std::set<MonthDay> VaultMove::daysAwaitingDownload() const {
    std::set<MonthDay> days;
    std::error_code error;
    fs::directory_iterator entry(m_from, error);
    for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
        const auto name = VaultFileName::classify(entry->path().filename().native());
        if (name.kind != Kind::DayFile && name.kind != Kind::Placeholder)
            continue;
        if (m_cloudFiles->downloadingStatus(m_from / name.monthDay.fileName()) ==
            CloudFiles::DownloadingStatus::NotDownloaded)
            days.insert(name.monthDay);
    }
    if (error)
        fail(m_from, error.value());
    return days;
}

std::set<MonthDay> VaultMove::copy(const std::stop_token &stop) {
    std::error_code ignored;
    if (fs::equivalent(m_from, m_to, ignored))
        fail(m_to, EEXIST);
    if (auto days = daysAwaitingDownload(); !days.empty())
        return days;

    makeFolders();
    for (int round = 0; round < mostRounds; ++round) {
        if (!copyChanged(stop)) {
            syncFolder(m_staging);
            return {};
        }
    }
    fail(m_from, EBUSY);
}

void VaultMove::makeFolders() {
    if (m_hasStaging)
        return;
    std::error_code error;
    std::vector<fs::path> missing;
    for (auto folder = m_to; !folder.empty() && !fs::exists(folder, error); folder = folder.parent_path()) {
        missing.push_back(folder);
        if (folder == folder.parent_path())
            break;
    }
    createFoldersDurably(m_to);
    m_madeFolders.assign(missing.rbegin(), missing.rend());
    // What an earlier attempt left whose process was killed.
    fs::remove_all(m_staging);
    if (::mkdir(m_staging.c_str(), 0700) < 0)
        fail(m_staging, errno);
    m_hasStaging = true;
}

// One round. False when the old folder is as it was copied.
bool VaultMove::copyChanged(const std::stop_token &stop) {
    const auto present = names();
    bool changed = false;
    for (auto copied = m_copies.begin(); copied != m_copies.end();) {
        if (std::binary_search(present.begin(), present.end(), copied->first)) {
            ++copied;
            continue;
        }
        fs::remove(m_staging / copied->first);
        copied = m_copies.erase(copied);
        changed = true;
    }
    for (const auto &name : present) {
        if (stop.stop_requested())
            fail(m_from, ECANCELED);
        const auto copied = m_copies.find(name);
        if (copied != m_copies.end() && isCurrent(name, copied->second))
            continue;
        changed = true;
        if (copied != m_copies.end())
            m_copies.erase(copied);
        try {
            m_copies.emplace(name, copyFile(name));
        } catch (const fs::filesystem_error &error) {
            // Removed, or being replaced, at this very moment: the next round sees which.
            const bool isGone = error.code().value() == ENOENT && error.path1() == m_from / name &&
                                !fs::exists(fs::symlink_status(m_from / name));
            if (!isGone)
                throw;
        }
    }
    return changed;
}

VaultMove::Stamp VaultMove::copyFile(const std::string &name) const {
    const auto original = m_from / name;
    const auto copy = m_staging / name;
    fs::remove(copy);
    // Before the bytes are read, so that what is written meanwhile is noticed.
    const auto stamp = stampOf(original);
    struct stat status {};
    if (retryingWhenInterrupted([&] { return ::stat(original.c_str(), &status); }) < 0)
        fail(original, errno);
    std::error_code error;
    const auto bytes = readWholeFile(original, error);
    if (!bytes)
        fail(original, error.value());
    writeCopy(copy, *bytes, status);
    const auto written = readWholeFile(copy, error);
    if (!written)
        fail(copy, error.value());
    if (*written != *bytes)
        fail(copy, EIO);
    return stamp;
}

bool VaultMove::isCurrent(const std::string &name, const Stamp &copied) const {
    const auto now = stampOf(m_from / name);
    if (!now.isSameAs(copied))
        return false;
    if (copied.isSettled)
        return true;
    std::error_code error;
    const auto bytes = readWholeFile(m_from / name, error);
    return bytes && bytes == readWholeFile(m_staging / name, error);
}

bool VaultMove::isCurrent() const {
    try {
        const auto present = names();
        return present.size() == m_copies.size() &&
               std::all_of(present.begin(), present.end(), [this](const std::string &name) {
                   const auto copied = m_copies.find(name);
                   return copied != m_copies.end() && isCurrent(name, copied->second);
               });
    } catch (const fs::filesystem_error &) {
        // The next copying says what is wrong.
        return false;
    }
}

void VaultMove::install() {
    for (const auto &[name, stamp] : m_copies) {
        const auto copied = stampOf(m_staging / name);
        moveToNewName(m_staging / name, m_to / name);
        m_installed.push_back({name, copied.device, copied.inode});
    }
    fs::remove(m_staging);
    m_hasStaging = false;
    syncFolder(m_to);
}

void VaultMove::takeBack() noexcept {
    std::error_code error;
    if (m_hasStaging)
        fs::remove_all(m_staging, error);
    if (m_isKept)
        return;
    for (const auto &[name, device, inode] : m_installed) {
        struct stat status {};
        const auto file = m_to / name;
        if (::lstat(file.c_str(), &status) == 0 && status.st_dev == device && status.st_ino == inode)
            ::unlink(file.c_str());
    }
    // Only while nothing else is in them.
    for (auto folder = m_madeFolders.rbegin(); folder != m_madeFolders.rend(); ++folder)
        fs::remove(*folder, error);
}

} // namespace diary

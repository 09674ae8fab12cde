// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/SystemCalls.h>
#include <DiaryUpdates/BundleArchive.h>
#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/BundlePath.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr mode_t folderMode = 0755;
constexpr mode_t programMode = 0755;
constexpr mode_t fileMode = 0644;

// The path of an entry; that of a folder may end in a slash.
std::string withoutLastSlash(std::string path) {
    if (path.ends_with('/'))
        path.pop_back();
    return path;
}

// The table of contents at the archive's end, read as strictly as it can be: directly followed by the record
// that tells where it is, which directly ends the file. What is left for the library to understand in its own
// way is then bounded and has no second meaning.
class CentralDirectory {
public:
    CentralDirectory(const FileDescriptor &file, std::size_t mostEntries) : m_file(file) {
        struct stat status {};
        if (::fstat(file.get(), &status) < 0)
            throw BundleError("the archive", errno);
        if (!S_ISREG(status.st_mode) || status.st_size < static_cast<off_t>(endSize))
            failMalformed();
        const auto end = static_cast<std::uint64_t>(status.st_size) - endSize;
        const auto record = read(end, endSize);
        const auto count = number(record, 10, 2);
        const auto size = number(record, 12, 4);
        const auto start = number(record, 16, 4);
        // One disk, no comment, and no second record for larger archives in front.
        if (!record.starts_with(endSignature) || number(record, 4, 4) != 0 || number(record, 8, 2) != count ||
            number(record, 20, 2) != 0 || start + size != end)
            failMalformed();
        if (count > mostEntries)
            throw BundleError("too many files");
        readNames(start, end, count);
    }

    const std::set<std::string> &paths() const { return m_paths; }

private:
    static constexpr std::size_t endSize = 22;
    static constexpr std::size_t headerSize = 46;
    static constexpr std::string_view endSignature{"PK\x05\x06"};
    static constexpr std::string_view headerSignature{"PK\x01\x02"};
    static constexpr std::uint64_t encryptedFlags = 1U | 1U << 6U | 1U << 13U;

    [[noreturn]] static void failMalformed() { throw BundleError("this is no plain zip archive"); }

    static std::uint64_t number(std::string_view bytes, std::size_t at, std::size_t size) {
        std::uint64_t value = 0;
        for (std::size_t index = size; index > 0; --index)
            value = value << 8U | static_cast<unsigned char>(bytes[at + index - 1]);
        return value;
    }

    std::string read(std::uint64_t at, std::size_t size) const {
        std::string bytes(size, '\0');
        const auto count = retryingWhenInterrupted(
            [&] { return ::pread(m_file.get(), bytes.data(), size, static_cast<off_t>(at)); });
        if (count < 0)
            throw BundleError("the archive", errno);
        if (count != static_cast<ssize_t>(size))
            failMalformed();
        return bytes;
    }

    void readNames(std::uint64_t at, std::uint64_t end, std::uint64_t count) {
        for (std::uint64_t index = 0; index < count; ++index) {
            const auto header = read(at, headerSize);
            if (!header.starts_with(headerSignature))
                failMalformed();
            if ((number(header, 8, 2) & encryptedFlags) != 0)
                throw BundleError("an encrypted archive");
            const auto kind = number(header, 40, 2) & S_IFMT;
            const auto nameSize = number(header, 28, 2);
            auto path = withoutLastSlash(read(at + headerSize, nameSize));
            bundlePathNames(path);
            // The library makes files of some kinds that are none. Not every archive tells.
            if (kind != 0 && kind != S_IFREG && kind != S_IFDIR && kind != S_IFLNK)
                throw BundleError("neither file nor folder: " + readable(path));
            if (!m_paths.insert(path).second)
                throw BundleError("occurs twice: " + readable(path));
            at += headerSize + nameSize + number(header, 30, 2) + number(header, 32, 2);
            if (at > end)
                failMalformed();
        }
        if (at != end)
            failMalformed();
    }

    const FileDescriptor &m_file;
    std::set<std::string> m_paths;
};

// Writes below a folder, never through a link and never over anything.
class Destination {
public:
    explicit Destination(const fs::path &folder)
        : m_folder(retryingWhenInterrupted(
              [&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); })) {
        if (!m_folder)
            throw BundleError(readable(folder.string()), errno);
    }

    void makeFolder(const std::vector<std::string> &names) { openFolder(names.begin(), names.end()); }

    FileDescriptor makeFile(const std::vector<std::string> &names) {
        const auto folder = openFolder(names.begin(), names.end() - 1);
        FileDescriptor file(retryingWhenInterrupted([&] {
            return ::openat(folder.get(), names.back().c_str(),
                            O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        }));
        if (!file)
            throw BundleError(readable(names.back()), errno);
        return file;
    }

    void makeLink(const std::vector<std::string> &names, const std::string &target) {
        const auto folder = openFolder(names.begin(), names.end() - 1);
        if (::symlinkat(target.c_str(), folder.get(), names.back().c_str()) < 0)
            throw BundleError(readable(names.back()), errno);
    }

    void sync() const {
        if (::syncfs(m_folder.get()) < 0)
            throw BundleError("the staging folder", errno);
    }

private:
    using Name = std::vector<std::string>::const_iterator;

    // The folder with those names, made where it is missing.
    FileDescriptor openFolder(Name name, Name end) const {
        FileDescriptor folder(::fcntl(m_folder.get(), F_DUPFD_CLOEXEC, 0));
        for (; name != end; ++name) {
            const bool isNew =
                retryingWhenInterrupted([&] { return ::mkdirat(folder.get(), name->c_str(), 0700); }) == 0;
            if (!isNew && errno != EEXIST)
                throw BundleError(readable(*name), errno);
            FileDescriptor next(retryingWhenInterrupted([&] {
                return ::openat(folder.get(), name->c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            }));
            if (!next || (isNew && ::fchmod(next.get(), folderMode) < 0))
                throw BundleError(readable(*name), errno);
            folder = std::move(next);
        }
        return folder;
    }

    FileDescriptor m_folder;
};

void writeAll(const FileDescriptor &file, const char *bytes, std::size_t size, const std::string &path) {
    while (size > 0) {
        const auto written = retryingWhenInterrupted([&] { return ::write(file.get(), bytes, size); });
        if (written < 0)
            throw BundleError(readable(path), errno);
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

class Unpacking {
public:
    Unpacking(const FileDescriptor &file, const fs::path &folder, const std::stop_token &stop,
              const ArchiveLimits &limits)
        : m_announced(file, limits.entries), m_destination(folder), m_stop(stop), m_limits(limits) {
        if (!m_archive)
            throw BundleError("the archive", ENOMEM);
        constexpr std::size_t blockSize = 1U << 16U;
        // Only as its table of contents has it, never as a stream that may tell something else.
        require(archive_read_support_format_zip_seekable(m_archive.get()));
        require(archive_read_open_fd(m_archive.get(), file.get(), blockSize));
    }

    void run() {
        archive_entry *entry = nullptr;
        std::set<std::string> seen;
        for (;;) {
            throwIfStopped();
            const int result = archive_read_next_header(m_archive.get(), &entry);
            if (result == ARCHIVE_EOF)
                break;
            require(result);
            const auto path = pathOf(entry);
            if (!seen.insert(path).second)
                throw BundleError("occurs twice: " + readable(path));
            unpack(entry, path);
        }
        if (seen.size() != m_announced.paths().size())
            throw BundleError("the archive is not what its table of contents says");
        // In the end, so that nothing at all is written while there are links.
        for (const auto &[path, target] : m_links)
            m_destination.makeLink(bundlePathNames(path), target);
        throwIfStopped();
        m_destination.sync();
    }

private:
    void throwIfStopped() const {
        if (m_stop.stop_requested())
            throw BundleError("stopped");
    }

    void require(int result) const {
        if (result != ARCHIVE_OK) {
            const char *reason = archive_error_string(m_archive.get());
            throw BundleError(std::string("the archive is damaged: ") + (reason ? reason : "unknown error"));
        }
    }

    // The library has it from the entry itself, which need not agree with the table of contents.
    std::string pathOf(archive_entry *entry) const {
        const char *name = archive_entry_pathname(entry);
        auto path = withoutLastSlash(name ? name : "");
        if (!m_announced.paths().contains(path))
            throw BundleError("the archive is not what its table of contents says: " + readable(path));
        return path;
    }

    void unpack(archive_entry *entry, const std::string &path) {
        const auto names = bundlePathNames(path);
        const auto mode = archive_entry_mode(entry);
        if (archive_entry_is_encrypted(entry) != 0)
            throw BundleError("an encrypted archive");
        if (archive_entry_hardlink(entry) != nullptr || (mode & 07000U) != 0)
            throw BundleError("a mode that a bundle may not have: " + readable(path));

        switch (archive_entry_filetype(entry)) {
        case AE_IFDIR:
            m_destination.makeFolder(names);
            break;
        case AE_IFLNK: {
            const char *target = archive_entry_symlink(entry);
            if (!target || !linkStaysInside(path, target))
                throw BundleError("a link that leads out: " + readable(path));
            m_links[path] = target;
            break;
        }
        case AE_IFREG:
            unpackFile(names, path, (mode & 0100U) != 0 ? programMode : fileMode);
            break;
        default:
            throw BundleError("neither file nor folder: " + readable(path));
        }
    }

    void unpackFile(const std::vector<std::string> &names, const std::string &path, mode_t mode) {
        auto file = m_destination.makeFile(names);
        std::uint64_t size = 0;
        for (;;) {
            throwIfStopped();
            const auto count = archive_read_data(m_archive.get(), m_buffer.data(), m_buffer.size());
            if (count < 0)
                require(static_cast<int>(count));
            if (count <= 0)
                break;
            size += static_cast<std::uint64_t>(count);
            m_total += static_cast<std::uint64_t>(count);
            if (size > m_limits.entrySize || m_total > m_limits.totalSize)
                throw BundleError("the archive unpacks to too much");
            writeAll(file, m_buffer.data(), static_cast<std::size_t>(count), path);
        }
        if (::fchmod(file.get(), mode) < 0)
            throw BundleError(readable(path), errno);
        // Some file systems report a lost write only here. An interrupted close has closed all the same.
        if (::close(file.release()) < 0 && errno != EINTR)
            throw BundleError(readable(path), errno);
    }

    const CentralDirectory m_announced;
    const std::unique_ptr<struct archive, decltype(&archive_read_free)> m_archive{archive_read_new(),
                                                                                  archive_read_free};
    Destination m_destination;
    const std::stop_token &m_stop;
    const ArchiveLimits m_limits;
    std::vector<char> m_buffer = std::vector<char>(1U << 16U);
    std::map<std::string, std::string> m_links; // target by path
    std::uint64_t m_total = 0;
};

} // namespace

void unpackArchive(const fs::path &archive, const fs::path &folder, const std::stop_token &stop,
                   const ArchiveLimits &limits) {
    const FileDescriptor file(retryingWhenInterrupted(
        [&] { return ::open(archive.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); }));
    if (!file)
        throw BundleError(readable(archive.string()), errno);
    Unpacking(file, folder, stop, limits).run();
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryKit/SystemCalls.h>
#include <DiaryPhotos/PhotoFile.h>

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

std::chrono::nanoseconds modificationOf(const struct stat &status) {
    return std::chrono::seconds{status.st_mtim.tv_sec} + std::chrono::nanoseconds{status.st_mtim.tv_nsec};
}

} // namespace

std::unique_ptr<PhotoFile> PhotoFile::openRegular(const std::filesystem::path &path) {
    struct stat status {};
    // Asked before opening, since opening alone makes some devices act.
    if (::stat(path.c_str(), &status) < 0 || !S_ISREG(status.st_mode))
        return nullptr;
    FileDescriptor file(retryingWhenInterrupted(
        [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
    if (!file || ::fstat(file.get(), &status) < 0 || !S_ISREG(status.st_mode))
        return nullptr;
    std::unique_ptr<PhotoFile> photo(new PhotoFile(std::move(file), status.st_size, modificationOf(status)));
    // The decoders read in pieces of their own.
    photo->open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    return photo;
}

PhotoFile::PhotoFile(FileDescriptor file, qint64 size, std::chrono::nanoseconds modified)
    : m_file(std::move(file)), m_size(size), m_modified(modified) {}

std::chrono::seconds PhotoFile::modificationTime() const {
    return std::chrono::floor<std::chrono::seconds>(m_modified);
}

bool PhotoFile::isUnchanged() const {
    struct stat status {};
    return ::fstat(m_file.get(), &status) == 0 && status.st_size == m_size &&
           modificationOf(status) == m_modified;
}

std::size_t PhotoFile::readAt(std::int64_t offset, char *bytes, std::size_t size) const {
    std::size_t done = 0;
    while (done < size) {
        const auto read = retryingWhenInterrupted([&] {
            return ::pread(m_file.get(), bytes + done, size - done, offset + static_cast<off_t>(done));
        });
        if (read <= 0)
            break;
        done += static_cast<std::size_t>(read);
    }
    return done;
}

bool PhotoFile::seek(qint64 position) {
    if (!QIODevice::seek(position))
        return false;
    m_position = position;
    return true;
}

qint64 PhotoFile::readData(char *bytes, qint64 size) {
    const auto read = readAt(m_position, bytes, static_cast<std::size_t>(size));
    m_position += static_cast<qint64>(read);
    return static_cast<qint64>(read);
}

qint64 PhotoFile::writeData(const char * /*bytes*/, qint64 /*size*/) {
    return -1;
}

} // namespace diary

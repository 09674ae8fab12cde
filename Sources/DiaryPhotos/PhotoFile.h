// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DurableFile.h>

#include <QIODevice>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>

namespace diary {

// A regular file being read, and nothing else: what is named like a picture may be a pipe or a device.
//
// Other programs may replace, shorten or remove the file meanwhile. What is read then ends early; the file is
// never mapped into memory, where its end would kill the program. Used by one thread at a time.
class PhotoFile final : public QIODevice {
public:
    // Null when there is no such regular file or it may not be read. Never waits for the other end of a pipe.
    static std::unique_ptr<PhotoFile> openRegular(const std::filesystem::path &path);

    // In bytes, when it was opened.
    qint64 size() const override { return m_size; }

    // The last change of content when it was opened, since the epoch.
    std::chrono::seconds modificationTime() const;

    // Whether nobody has changed the file since it was opened, as far as its times tell.
    bool isUnchanged() const;

    // Reads up to `size` bytes from the offset, without moving the position; fewer only at the end of the
    // file or at an error.
    std::size_t readAt(std::int64_t offset, char *bytes, std::size_t size) const;

    bool seek(qint64 position) override;

protected:
    qint64 readData(char *bytes, qint64 size) override;
    qint64 writeData(const char *bytes, qint64 size) override;

private:
    PhotoFile(FileDescriptor file, qint64 size, std::chrono::nanoseconds modified);

    FileDescriptor m_file;
    qint64 m_size;
    std::chrono::nanoseconds m_modified;
    qint64 m_position = 0;
};

} // namespace diary

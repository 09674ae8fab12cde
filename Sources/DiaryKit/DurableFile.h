// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/types.h>

namespace diary {

// A file descriptor that closes itself.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : m_number(number) {}
    FileDescriptor(FileDescriptor &&other) noexcept : m_number(other.release()) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept;
    ~FileDescriptor() { reset(); }

    explicit operator bool() const { return m_number >= 0; }
    int get() const { return m_number; }
    int release();
    void reset();

private:
    int m_number = -1;
};

// In bytes. What is larger is no diary, and to read it could take all of the memory.
inline constexpr std::size_t largestReadableFile = std::size_t{256} << 20;

// The whole content of a regular file. None with the error set when it is missing, unreadable, no regular
// file or too large; never waits for a pipe.
std::optional<std::string> readWholeFile(const std::filesystem::path &path, std::error_code &error);
std::optional<std::string> readWholeFile(int descriptor, std::error_code &error);

// Time of the last change of content; none when the file is missing or cannot be asked.
std::optional<std::filesystem::file_time_type> contentModificationTime(const std::filesystem::path &path);

// The path with every symbolic link at its end followed, also when the last one points nowhere.
std::filesystem::path resolvingLinks(std::filesystem::path path);

// A new content for a file, complete and on disk beside it under a temporary name, waiting to take its
// place. Once it has, the temporary name holds what stood there before, until this object goes.
//
// The temporary name is `.~NAME.PPPPPX~`, where PPPPP is the writing process in base 36: sync tools pass it
// over, it is no day's name, and what a killed process leaves behind can be told (see
// targetOfAbandonedTemporary).
// All operations throw std::filesystem::filesystem_error with the path and the system's own error.
class PreparedFile {
public:
    // Writes and syncs the bytes. Mode, owner and extended attributes are those of the file to be replaced,
    // if there is one. The target must not be a link (see resolvingLinks).
    PreparedFile(std::filesystem::path target, std::string_view bytes);
    PreparedFile(const PreparedFile &) = delete;
    PreparedFile &operator=(const PreparedFile &) = delete;
    ~PreparedFile();

    enum class Expecting {
        File,   // one was there a moment ago: when it is missing, look again for some milliseconds
        Nothing // it is new
    };

    // Takes the target's place and returns what it held at that very moment, or none when there was no file.
    // Nothing is decided by an earlier look, so no other program's write can slip in between unseen.
    std::optional<std::string> install(Expecting expecting);

    // Undoes `install`: the displaced file stands at the target again. False when there was none to put back,
    // or when that is impossible or would undo another program's write: the displaced file then keeps the
    // temporary name, for good. For a way out of an error.
    bool putBack() noexcept;

    // Makes the target's new name last through a power cut.
    void syncFolder() const;

    // The displaced file, which another program may still hold open and write to; closed when none.
    FileDescriptor takeDisplaced() { return std::move(m_displaced); }

    const std::filesystem::path &temporaryPath() const { return m_temporary; }

    // Modification time of the new content, as it will be found at the target.
    std::filesystem::file_time_type modificationTime() const { return m_modified; }

private:
    void writeTemporary(std::string_view bytes);
    std::optional<std::string> readDisplaced();
    std::optional<std::string> installByPlainRename(Expecting expecting);
    [[noreturn]] void fail(const char *operation, int error) const;

    std::filesystem::path m_target;
    std::filesystem::path m_temporary; // empty once nothing stands there
    FileDescriptor m_folder;
    FileDescriptor m_displaced;
    std::filesystem::file_time_type m_modified;
    dev_t m_device = 0; // with the inode tells our file from one that has replaced it
    ino_t m_inode = 0;
    bool m_exchanged = false;
};

// Lets this program's own processes write into a folder one after the other. Nothing depends on it, since
// other programs do not ask: who waits too long, or cannot lock here, goes on without. Leaves no file behind.
class FolderTurn {
public:
    explicit FolderTurn(const std::filesystem::path &folder);

private:
    FileDescriptor m_folder;
};

// Makes the folder and the missing ones above it, so that they last through a power cut. Throws
// std::filesystem::filesystem_error.
void createFoldersDurably(const std::filesystem::path &folder);

// Replaces a file, or makes it, so that a crash leaves the old content or the new. The last writer wins.
// Missing folders are made.
void replaceFileDurably(const std::filesystem::path &path, std::string_view bytes);

// Moves a file to another folder, which is made when missing, under the given name or, when that is taken,
// the name with a number. Returns false, with the file where it was, when that is impossible.
bool moveIntoFolder(const std::filesystem::path &file, const std::filesystem::path &folder,
                    const std::string &name) noexcept;

// The file that a temporary was made for, when the name is that of one whose process no longer runs.
std::optional<std::string> targetOfAbandonedTemporary(std::string_view fileName);

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryPhotos/PhotoDate.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace diary {

// What is known of the pictures on this machine, in a database that can be made again at any time.
//
// Queries and changes may come from any threads and from several processes: a query never waits for a change.
// Nothing throws. A database that is damaged, of another program or of another version is moved aside (to
// "photos.sqlite.bad") and begun anew. Where no file can be written, the index is kept in memory and goes
// with the process; when the disk fills up later, what was stored before is still found.
class PhotoIndex {
public:
    struct Photo {
        std::filesystem::path file;
        PhotoDate::LocalTime taken;

        bool operator==(const Photo &) const = default;
    };

    // A folder stays known while it cannot be reached, but its pictures are not found meanwhile.
    struct Folder {
        std::int64_t number = 0;
        std::filesystem::path path;
        bool isReachable = true;
    };

    struct Reading {
        std::filesystem::path folder;
        std::string name;
        PhotoReading photo;
    };

    struct GoneFile {
        std::int64_t folder = 0;
        std::string name;
    };

    struct Changes {
        std::vector<Reading> read = {}; // replace what was known of the same file
        std::vector<GoneFile> goneFiles = {};
        std::vector<std::int64_t> goneFolders = {}; // with their files, not with folders below
        std::vector<std::int64_t> unreachableFolders = {};
        std::vector<std::int64_t> reachableFolders = {};

        bool isEmpty() const {
            return read.empty() && goneFiles.empty() && goneFolders.empty() && unreachableFolders.empty() &&
                   reachableFolders.empty();
        }
    };

    // The folder is made when missing.
    explicit PhotoIndex(const std::filesystem::path &folder);
    PhotoIndex(const PhotoIndex &) = delete;
    PhotoIndex &operator=(const PhotoIndex &) = delete;
    ~PhotoIndex();

    // The first pictures taken in [start, end) that are accepted, by time and then by name.
    std::vector<Photo> photos(PhotoDate::LocalTime start, PhotoDate::LocalTime end, std::size_t limit,
                              const std::function<bool(const std::filesystem::path &)> &accepts = {});

    std::vector<Folder> folders();

    // Every file known in the folder, pictures or not, in the order of the bytes of their names. False when
    // the list is not whole.
    bool forEachFile(std::int64_t folder,
                     const std::function<void(std::string_view name, const FileStamp &)> &handle);

    // All or nothing; false when it could not be stored.
    bool apply(const Changes &changes);

    // Follows a file that was deleted or replaced since it was opened.
    void refresh();

    // Grows whenever everything was lost, so that everything must be read again.
    std::uint64_t beginnings();

    static constexpr const char *fileName = "photos.sqlite";

private:
    class Connection;
    enum class Purpose { Query, Change };

    template <typename Result>
    Result attempt(Purpose purpose, Result otherwise, const std::function<Result(Connection &)> &work);
    static std::int64_t numberOfFolder(Connection &connection, std::string_view path);
    void openBoth();
    void beginAnew(std::uint64_t beginning);
    bool isFileOurs() const;

    const std::filesystem::path m_path;
    // One for each, so that a query does not wait for a change. Whoever takes both takes this order.
    std::mutex m_changeMutex;
    std::mutex m_queryMutex;
    std::unique_ptr<Connection> m_forChanges;
    std::unique_ptr<Connection> m_forQueries;
    std::uint64_t m_beginnings = 0; // changed under both
    bool m_isInMemory = false;
    std::uint64_t m_device = 0; // of the file that was opened
    std::uint64_t m_inode = 0;
};

} // namespace diary

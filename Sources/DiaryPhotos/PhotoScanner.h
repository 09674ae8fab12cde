// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryPhotos/PhotoIndex.h>
#include <DiaryPhotos/PhotoWatch.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <set>
#include <utility>
#include <vector>

namespace diary {

// What can be seen of some folders of pictures without looking below them.
struct PhotoFolderAccess {
    std::size_t listable = 0;
    std::size_t unreadable = 0; // there, but not for this user
    std::size_t missing = 0;

    bool operator==(const PhotoFolderAccess &) const = default;
};

PhotoFolderAccess accessOf(const std::vector<std::filesystem::path> &folders);

// Brings the index up to what is in the folders.
//
// Files that have kept their size and time are not read again, so an interrupted search goes on where it was.
// Names that begin with a dot are passed over, and so are folders that hold a file ".nomedia" or have a name
// that programs give to what is no collection of pictures. Folders are recognised by device and inode: each
// is listed once, whatever links lead to it. A link to a picture is followed unless the picture will be found
// by itself.
//
// A root that is missing, unreadable or suddenly empty, as the folder of a drive that is not there, keeps its
// entries in the index until it returns; they are not found meanwhile. So does an unreadable folder below.
// For one thread, which should have low priority; dates are read with the help of a second.
class PhotoScanner {
public:
    // More than any collection has. What lies beyond is not found.
    struct Bounds {
        std::size_t depth = 32;
        std::size_t folders = 100'000;
        std::size_t photos = 500'000;
        std::size_t entries = 4'000'000; // names of every kind
    };

    struct Progress {
        std::size_t found = 0;
        std::size_t read = 0;
    };

    struct Hooks {
        std::function<bool()> isCancelled; // asked before every file
        std::function<void()> onStored;    // the index answers differently than before
        std::function<void(const Progress &)> onProgress;
    };

    struct Result {
        bool isFinished = false; // not cancelled
        std::size_t unreadableFolders = 0;
        Progress progress;
    };

    // All must outlive the scanner.
    PhotoScanner(PhotoIndex &index, PhotoWatch &watch, Hooks hooks)
        : PhotoScanner(index, watch, std::move(hooks), Bounds()) {}
    PhotoScanner(PhotoIndex &index, PhotoWatch &watch, Hooks hooks, Bounds bounds);

    // Everything below the roots, which are absolute; what the index knows of other places is forgotten.
    Result scan(const std::vector<std::filesystem::path> &roots);

    // Only these folders, without those below, which must have been scanned before.
    Result scanFolders(const std::vector<std::filesystem::path> &roots,
                       const std::set<std::filesystem::path> &folders);

private:
    class Walk;

    bool readAndStore(Walk &walk);

    PhotoIndex &m_index;
    PhotoWatch &m_watch;
    Hooks m_hooks;
    Bounds m_bounds;
    Progress m_progress;
    std::size_t m_unreadableFolders = 0;
};

} // namespace diary

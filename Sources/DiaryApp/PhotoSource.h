// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace diary {

// The pictures someone took, wherever this machine keeps them. Nothing is imported and no picture is changed.
//
// May be used from any thread. Handlers are called exactly once each, on any thread, perhaps before the call
// returns; after the source was destroyed none is called any more.
class PhotoSource {
public:
    // By the camera's own clock, wherever it was carried.
    using LocalTime = std::chrono::local_seconds;

    enum class AuthorizationStatus {
        NotDetermined, // nobody looked yet, or there is no folder of pictures at all
        Restricted,    // never on this platform
        Denied,        // no folder of pictures can be read
        Authorized,
        Limited, // some of the folders cannot be read
    };

    struct Asset {
        std::string identifier; // means something to this source alone
        QString filename;
        std::optional<LocalTime> creationTime;

        bool operator==(const Asset &) const = default;
    };

    struct FullImage {
        QImage image; // upright; null when only the file could be found
        std::filesystem::path file;
    };

    // How far the search for pictures has come.
    struct Progress {
        std::size_t filesFound = 0;
        std::size_t filesRead = 0; // of these, the ones that were looked into
        bool isComplete = false;

        bool operator==(const Progress &) const = default;
    };

    virtual ~PhotoSource() = default;

    // As it was found last; never blocks.
    virtual AuthorizationStatus authorizationStatus() const = 0;

    // Looks at the folders, in the background.
    virtual void requestAuthorization(std::function<void(AuthorizationStatus)> handler) = 0;

    // The first pictures taken in [start, end), by time and then by name. Reads what is known so far and
    // never waits for a search under way, but may wait for the disk: not for the main thread.
    virtual std::vector<Asset> assets(LocalTime start, LocalTime end, std::size_t limit) = 0;

    // The picture upright, scaled so that it just covers the size (in pixels) and no larger. A null image
    // when it cannot be had.
    virtual void requestImage(const std::string &identifier, QSize targetSize,
                              std::function<void(QImage)> handler) = 0;

    // The picture upright, whole, and at most as large as the size (in pixels), with the file it came from.
    // None when the file is gone.
    virtual void requestFullImage(const std::string &identifier, QSize largest,
                                  std::function<void(std::optional<FullImage>)> handler) = 0;

    virtual Progress progress() const = 0;

    // Where to look, besides the user's picture folder. What was found elsewhere is forgotten.
    virtual void setAddedFolders(std::vector<std::filesystem::path> folders) = 0;

    // Called on any thread after `assets` may answer differently than before; several changes may share a
    // call. Set before anything else is called.
    std::function<void()> onChange;
};

// What a source of the folders on this machine is made from.
struct PhotoFolders {
    std::filesystem::path pictures;           // the user's picture folder; need not exist
    std::vector<std::filesystem::path> added; // by the user
    std::filesystem::path cache;              // for what can be made again; made when it is missing
    std::filesystem::path thumbnails;         // the desktop's shared thumbnails, $XDG_CACHE_HOME/thumbnails
};

// The functions by which the photo module is entered, and their types. The module must be of the program's
// own version: one that was replaced while the program runs speaks of other types. The caller owns what is
// made.
using PhotosVersion = const char *();
inline constexpr const char *photosVersionName = "tavelo_photos_version";
using MakePhotoSource = PhotoSource *(const PhotoFolders &folders);
inline constexpr const char *makePhotoSourceName = "tavelo_make_photo_source";

} // namespace diary

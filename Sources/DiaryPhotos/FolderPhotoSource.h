// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/PhotoSource.h>
#include <DiaryPhotos/PhotoWatch.h>

#include <QImage>
#include <QSize>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace diary {

// How the file of a picture becomes one on the screen; a null image when it cannot. Called on several threads
// at once. Sizes are in pixels.
struct PhotoDecoding {
    std::function<QImage(const std::filesystem::path &file, QSize cover)> display;
    std::function<QImage(const std::filesystem::path &file, QSize largest)> full;
};

// The pictures in the user's folders, found by an index that is kept up to date in the background.
//
// Nothing happens before the first call other than of `authorizationStatus` and `progress`; then the folders
// are searched by a thread of low priority and watched for changes. Where they cannot be watched, asking for
// assets searches again after a while. Images are made two at a time, the one asked for last first.
//
// The destructor returns at once but for calls of handlers under way, unless the system keeps a thread
// waiting for a disk: such a thread is left to end by itself, so the code must not be unloaded. A handler may
// destroy the source.
class FolderPhotoSource : public PhotoSource {
public:
    struct Options {
        // Between two searches of folders that cannot be watched.
        std::chrono::milliseconds searchInterval = std::chrono::minutes(1);
        // How long changes gather before they are looked at.
        std::chrono::milliseconds gatheringTime = std::chrono::milliseconds(200);
        std::size_t mostWatchedFolders = PhotoWatch::usualLimit;
        // How long the destructor waits for threads.
        std::chrono::milliseconds patience = std::chrono::seconds(2);
    };

    FolderPhotoSource(const PhotoFolders &folders, PhotoDecoding decoding)
        : FolderPhotoSource(folders, std::move(decoding), Options()) {}
    FolderPhotoSource(const PhotoFolders &folders, PhotoDecoding decoding, const Options &options);
    FolderPhotoSource(const FolderPhotoSource &) = delete;
    FolderPhotoSource &operator=(const FolderPhotoSource &) = delete;
    ~FolderPhotoSource() override;

    AuthorizationStatus authorizationStatus() const override;
    void requestAuthorization(std::function<void(AuthorizationStatus)> handler) override;
    std::vector<Asset> assets(LocalTime start, LocalTime end, std::size_t limit) override;
    void requestImage(const std::string &identifier, QSize targetSize,
                      std::function<void(QImage)> handler) override;
    void requestFullImage(const std::string &identifier, QSize largest,
                          std::function<void(std::optional<FullImage>)> handler) override;
    Progress progress() const override;
    void setAddedFolders(std::vector<std::filesystem::path> folders) override;

private:
    class Work;
    // Shared with its threads.
    std::shared_ptr<Work> m_work;
};

} // namespace diary

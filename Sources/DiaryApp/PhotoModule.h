// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/PhotoSource.h>

#include <QThreadPool>

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>

namespace diary {

// The photo source that stands in a module of its own, so that a diary without photos does not pay for the
// libraries it needs: it is loaded when authorization is asked for first, in the background, and stays.
//
// Until then, nobody having looked, the authorization is not determined and there are no photos. A module
// that cannot be loaded denies it. Destroying this waits for a loading under way.
class PhotoModule : public PhotoSource {
public:
    // Where the module of a program in that folder stands.
    static std::filesystem::path file(const std::filesystem::path &programFolder);

    // None where the module is not installed. Looks, but loads nothing.
    static std::unique_ptr<PhotoModule> find(const std::filesystem::path &programFolder,
                                             PhotoFolders folders);

    // The user's own pictures, for the program itself.
    static PhotoFolders userFolders();

    PhotoModule(std::filesystem::path file, PhotoFolders folders);
    ~PhotoModule() override;

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
    void load();
    std::unique_ptr<PhotoSource> makeSource(const PhotoFolders &folders) const;

    const std::filesystem::path m_file;
    mutable std::mutex m_mutex; // never held while the module is loaded
    PhotoFolders m_folders;
    std::unique_ptr<PhotoSource> m_source; // of the module; set once
    std::atomic<PhotoSource *> m_loaded = nullptr;
    std::atomic<bool> m_isUnusable = false;
    QThreadPool m_thread; // for the loading
};

} // namespace diary

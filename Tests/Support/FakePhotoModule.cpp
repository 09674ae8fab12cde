// SPDX-License-Identifier: MIT
//
// A photo module whose source tells how it was made and what it was asked. The picture folder's name says how
// it behaves.

#include <DiaryApp/PhotoSource.h>

#include <QCoreApplication>
#include <QThread>

#include <mutex>
#include <stdexcept>
#include <utility>

namespace {

using diary::PhotoFolders;
using diary::PhotoSource;

class ToldSource : public PhotoSource {
public:
    explicit ToldSource(PhotoFolders folders) : m_folders(std::move(folders)) {}

    AuthorizationStatus authorizationStatus() const override { return AuthorizationStatus::Limited; }

    void requestAuthorization(std::function<void(AuthorizationStatus)> handler) override {
        if (onChange)
            onChange();
        handler(AuthorizationStatus::Limited);
    }

    // The thread it was made in, then the folders.
    std::vector<Asset> assets(LocalTime start, LocalTime, std::size_t limit) override {
        const std::lock_guard lock(m_mutex);
        std::vector<Asset> told{{m_maker, {}, start}};
        for (const auto &folder : {m_folders.pictures, m_folders.cache, m_folders.thumbnails})
            told.push_back({folder.string(), {}, start});
        for (const auto &folder : m_folders.added)
            told.push_back({folder.string(), {}, start});
        told.resize(std::min(told.size(), limit));
        return told;
    }

    void requestImage(const std::string &, QSize targetSize, std::function<void(QImage)> handler) override {
        handler(QImage(targetSize, QImage::Format_RGB32));
    }

    void requestFullImage(const std::string &identifier, QSize largest,
                          std::function<void(std::optional<FullImage>)> handler) override {
        handler(FullImage{QImage(largest, QImage::Format_RGB32), identifier});
    }

    Progress progress() const override { return {3, 2, true}; }

    void setAddedFolders(std::vector<std::filesystem::path> folders) override {
        const std::lock_guard lock(m_mutex);
        m_folders.added = std::move(folders);
    }

private:
    static bool isMainThread() { return QThread::currentThread() == QCoreApplication::instance()->thread(); }

    const std::string m_maker = isMainThread() ? "made on the main thread" : "made in the background";
    std::mutex m_mutex;
    PhotoFolders m_folders;
};

} // namespace

extern "C" __attribute__((visibility("default"))) const char *tavelo_photos_version() {
    return TAVELO_TEST_MODULE_VERSION;
}

extern "C" __attribute__((visibility("default"))) PhotoSource *
tavelo_make_photo_source(const PhotoFolders &folders) {
    if (folders.pictures == "throw")
        throw std::runtime_error("cannot begin");
    return folders.pictures == "none" ? nullptr : new ToldSource(folders);
}

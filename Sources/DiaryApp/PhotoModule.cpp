// SPDX-License-Identifier: MIT
#include <DiaryApp/PhotoModule.h>
#include <DiaryApp/ProgramModule.h>
#include <DiaryKit/UserDirectories.h>

#include <QtDebug>

#include <exception>
#include <system_error>
#include <utility>

namespace diary {

std::filesystem::path PhotoModule::file(const std::filesystem::path &programFolder) {
    return moduleFile(programFolder, "tavelo-photos");
}

std::unique_ptr<PhotoModule> PhotoModule::find(const std::filesystem::path &programFolder,
                                               PhotoFolders folders) {
    auto module = file(programFolder);
    std::error_code error;
    if (!std::filesystem::is_regular_file(module, error))
        return nullptr;
    return std::make_unique<PhotoModule>(std::move(module), std::move(folders));
}

PhotoFolders PhotoModule::userFolders() {
    // The desktop's thumbnails stand beside the program's own folder.
    const auto cache = UserDirectories::cache();
    return {.pictures = UserDirectories::pictures(),
            .added = {},
            .cache = cache,
            .thumbnails = cache.parent_path() / "thumbnails"};
}

PhotoModule::PhotoModule(std::filesystem::path file, PhotoFolders folders)
    : m_file(std::move(file)), m_folders(std::move(folders)) {
    m_thread.setMaxThreadCount(1);
}

PhotoModule::~PhotoModule() {
    m_thread.clear();
    m_thread.waitForDone();
}

PhotoSource::AuthorizationStatus PhotoModule::authorizationStatus() const {
    if (const auto *source = m_loaded.load())
        return source->authorizationStatus();
    return m_isUnusable ? AuthorizationStatus::Denied : AuthorizationStatus::NotDetermined;
}

void PhotoModule::requestAuthorization(std::function<void(AuthorizationStatus)> handler) {
    if (auto *source = m_loaded.load()) {
        source->requestAuthorization(std::move(handler));
        return;
    }
    m_thread.start([this, handler = std::move(handler)] {
        load();
        if (auto *source = m_loaded.load())
            source->requestAuthorization(handler);
        else
            handler(AuthorizationStatus::Denied);
    });
}

std::vector<PhotoSource::Asset> PhotoModule::assets(LocalTime start, LocalTime end, std::size_t limit) {
    auto *source = m_loaded.load();
    return source ? source->assets(start, end, limit) : std::vector<Asset>();
}

void PhotoModule::requestImage(const std::string &identifier, QSize targetSize,
                               std::function<void(QImage)> handler) {
    if (auto *source = m_loaded.load())
        source->requestImage(identifier, targetSize, std::move(handler));
    else
        handler({});
}

void PhotoModule::requestFullImage(const std::string &identifier, QSize largest,
                                   std::function<void(std::optional<FullImage>)> handler) {
    if (auto *source = m_loaded.load())
        source->requestFullImage(identifier, largest, std::move(handler));
    else
        handler(std::nullopt);
}

PhotoSource::Progress PhotoModule::progress() const {
    const auto *source = m_loaded.load();
    return source ? source->progress() : Progress{};
}

void PhotoModule::setAddedFolders(std::vector<std::filesystem::path> folders) {
    const std::lock_guard lock(m_mutex);
    m_folders.added = folders;
    if (auto *source = m_loaded.load())
        source->setAddedFolders(std::move(folders));
}

// On the loading thread.
void PhotoModule::load() {
    if (m_loaded.load() || m_isUnusable)
        return;
    PhotoFolders folders;
    {
        const std::lock_guard lock(m_mutex);
        folders = m_folders;
    }
    auto source = makeSource(folders);
    if (!source) {
        m_isUnusable = true;
        return;
    }
    source->onChange = onChange;
    const std::lock_guard lock(m_mutex);
    if (m_folders.added != folders.added)
        source->setAddedFolders(m_folders.added);
    m_source = std::move(source);
    m_loaded = m_source.get();
}

// None when the module cannot be loaded or cannot begin.
std::unique_ptr<PhotoSource> PhotoModule::makeSource(const PhotoFolders &folders) const {
    ProgramModule module(m_file, photosVersionName);
    auto *make = module.function<MakePhotoSource>(makePhotoSourceName);
    if (!make) {
        qWarning("The photo module cannot be used: %s", module.error().c_str());
        return nullptr;
    }
    try {
        return std::unique_ptr<PhotoSource>(make(folders));
    } catch (const std::exception &error) {
        qWarning("The photo module cannot be used: %s", error.what());
        return nullptr;
    }
}

} // namespace diary

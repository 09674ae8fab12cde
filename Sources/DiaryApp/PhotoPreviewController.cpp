// SPDX-License-Identifier: MIT
#include <DiaryApp/DebugScenario.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/PhotoPreviewController.h>
#include <DiaryApp/Text.h>
#include <DiaryKit/DurableFile.h>

#include <QBuffer>
#include <QByteArray>
#include <QGuiApplication>
#include <QImageWriter>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace diary {

namespace {

constexpr std::chrono::milliseconds zoomDuration{200};
constexpr int exportQuality = 90;            // of 100
constexpr std::size_t longestBaseName = 180; // bytes, so that a number and the ending still fit
constexpr const char *exportSuffix = ".preview.jpg";
// In pixels. The page asks for pictures that cover this; one that does not is not reduced.
constexpr QSize tilePixels{400, 264};

// What a file system and a person can live with: no folders, no hidden file, nothing unprintable.
QString asFileName(QString name) {
    for (auto &character : name) {
        if (character == QLatin1Char('/') || character.category() == QChar::Other_Control ||
            character.category() == QChar::Other_Format || character == QChar::LineSeparator ||
            character == QChar::ParagraphSeparator)
            character = QLatin1Char('_');
    }
    if (name.startsWith(QLatin1Char('.')))
        name[0] = QLatin1Char('_');
    while (name.toUtf8().size() > static_cast<qsizetype>(longestBaseName))
        name.chop(name.size() > 1 && name.back().isLowSurrogate() ? 2 : 1);
    return name;
}

QString withoutExtension(const QString &filename) {
    const auto dot = filename.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? filename : filename.left(dot);
}

std::string exportBaseName(const QString &filename, std::size_t index) {
    auto base = asFileName(withoutExtension(filename));
    if (base.isEmpty())
        base = QStringLiteral("IMG_%1").arg(index, 3, 10, QLatin1Char('0'));
    return toUtf8(base);
}

// The names of the photos' files, no two alike.
std::vector<std::string> exportNames(const std::vector<DayPhoto> &photos) {
    std::set<std::string> taken;
    std::vector<std::string> names;
    for (std::size_t index = 0; index < photos.size(); ++index) {
        const auto base = exportBaseName(photos[index].filename, index);
        auto name = base + exportSuffix;
        for (int number = 2; !taken.insert(name).second; ++number)
            name = base + ' ' + std::to_string(number) + exportSuffix;
        names.push_back(std::move(name));
    }
    return names;
}

// Empty when the picture cannot be written. For any thread.
QByteArray jpegOf(QImage image) {
    if (image.hasAlphaChannel()) {
        // The format knows no transparency and would show black.
        QImage opaque(image.size(), QImage::Format_RGB32);
        opaque.fill(Qt::white);
        image.setDevicePixelRatio(1);
        QPainter(&opaque).drawImage(0, 0, image);
        image = opaque;
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(exportQuality);
    return writer.write(image) ? bytes : QByteArray();
}

// In pixels: nothing larger can be seen at once.
QSize largestScreen() {
    QSize largest(1, 1);
    for (const auto *screen : QGuiApplication::screens())
        largest = largest.expandedTo((QSizeF(screen->size()) * screen->devicePixelRatio()).toSize());
    return largest;
}

// But for the rounding of a reduction.
bool hasSameProportions(QSize a, QSize b) {
    const double ratioA = static_cast<double>(a.width()) / a.height();
    const double ratioB = static_cast<double>(b.width()) / b.height();
    return std::abs(ratioA / ratioB - 1) < 0.02;
}

} // namespace

// A new folder that nobody else can look into or put anything in the way of. May be used from any thread.
class PhotoPreviewController::ExportFolder {
public:
    ExportFolder() {
        std::error_code error;
        const auto temporary = std::filesystem::temp_directory_path(error);
        if (error)
            return;
        // A folder that everybody writes to: mkdtemp makes a name that was not there, for this user alone.
        auto pattern = (temporary / "DiaryPhotoPreview-XXXXXX").string();
        if (mkdtemp(pattern.data()))
            m_path = pattern;
    }
    ExportFolder(const ExportFolder &) = delete;
    ExportFolder &operator=(const ExportFolder &) = delete;
    ~ExportFolder() { remove(); }

    // Set by the constructor alone.
    const std::filesystem::path &path() const { return m_path; }

    bool isRemoved() const {
        const std::lock_guard lock(m_mutex);
        return m_isRemoved;
    }

    // False when the file could not be written, or must not be any more.
    bool write(const std::string &name, const QByteArray &bytes) const {
        const std::lock_guard lock(m_mutex);
        if (m_isRemoved || m_path.empty() || bytes.isEmpty())
            return false;
        const FileDescriptor file(::open((m_path / name).c_str(),
                                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                         S_IRUSR | S_IWUSR));
        if (!file)
            return false;
        qsizetype written = 0;
        while (written < bytes.size()) {
            const auto count =
                ::write(file.get(), bytes.data() + written, static_cast<std::size_t>(bytes.size() - written));
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0) {
                // Half a picture is none.
                ::unlink((m_path / name).c_str());
                return false;
            }
            written += count;
        }
        return true;
    }

    void remove() {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_isRemoved, true) || m_path.empty())
            return;
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

private:
    std::filesystem::path m_path;
    mutable std::mutex m_mutex;
    bool m_isRemoved = false;
};

PhotoPreviewController::PhotoPreviewController(FileManager &fileManager, Executor &executor,
                                               PhotoSource *source)
    : m_fileManager(fileManager), m_executor(executor), m_source(source) {}

PhotoPreviewController::~PhotoPreviewController() {
    delete m_panel;
    if (m_exports)
        m_exports->remove();
}

template <typename... Arguments>
std::function<void(Arguments...)>
PhotoPreviewController::onMain(void (PhotoPreviewController::*work)(std::size_t, Arguments...),
                               std::size_t index) {
    return [self = QPointer(this), generation = m_generation, work, index](Arguments... arguments) {
        // By way of the application, which is there as long as anyone could call: the controller may be gone.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [=] {
                if (self && self->m_generation == generation)
                    (self.data()->*work)(index, arguments...);
            },
            Qt::QueuedConnection);
    };
}

std::filesystem::path PhotoPreviewController::exportRoot() const {
    return m_exports ? m_exports->path() : std::filesystem::path();
}

PhotoPreviewController::Photo PhotoPreviewController::photoOf(const DayPhoto &photo) {
    Photo known;
    known.small = photo.image;
    known.assetIdentifier = photo.assetIdentifier;
    known.proportions = photo.image.size();
    const bool isReduced =
        photo.image.width() >= tilePixels.width() && photo.image.height() >= tilePixels.height();
    if (photo.assetIdentifier && isReduced)
        known.enlarging = PhotoEnlarging::ToFill;
    return known;
}

bool PhotoPreviewController::prepare(const std::vector<DayPhoto> &photos, std::int64_t startIndex,
                                     SourceFrame sourceFrame) {
    dismiss();
    m_shown.reset();
    ++m_generation;
    m_sourceFrameProvider = std::move(sourceFrame);
    m_items.clear();
    m_photos.clear();
    m_startIndex = 0;
    if (m_exports)
        m_exports->remove();
    m_exports = photos.empty() ? nullptr : std::make_shared<ExportFolder>();
    if (photos.empty())
        return false;

    for (const auto &photo : photos) {
        m_photos.push_back(photoOf(photo));
        m_items.push_back({.previewItemURL = {}, .previewItemTitle = photo.filename, .image = photo.image});
    }
    const auto last = static_cast<std::int64_t>(m_items.size()) - 1;
    m_startIndex = static_cast<std::size_t>(std::clamp<std::int64_t>(startIndex, 0, last));
    const auto names = exportNames(photos);
    for (std::size_t index = 0; index < names.size(); ++index)
        exportItem(index, names[index]);
    m_motion.ask();
    return true;
}

void PhotoPreviewController::exportItem(std::size_t index, const std::string &fileName) {
    const auto &image = m_photos[index].small;
    if (image.isNull() || exportRoot().empty())
        return;
    m_items[index].previewItemURL = exportRoot() / fileName;
    m_executor.runInBackground(
        Executor::Priority::Utility,
        [folder = m_exports, image, fileName, tell = onMain(&PhotoPreviewController::exported, index)] {
            // Asked first: encoding is what takes the time.
            if (!folder->isRemoved() && folder->write(fileName, jpegOf(image)))
                tell();
        });
}

void PhotoPreviewController::exported(std::size_t index) {
    m_items[index].hasFile = true;
    if (m_shown == index)
        updatePanel();
}

void PhotoPreviewController::present(QWidget *over) {
    if (m_items.empty())
        return;
    if (!m_panel || m_panel->parentWidget() != over)
        makePanel(over);
    m_shown = m_startIndex;
    loadWholeImages();
    m_panel->setZoomDuration(isDebugScenario() || m_motion.isReduced() ? std::chrono::milliseconds(0)
                                                                       : zoomDuration);
    m_panel->update(panelModel());
    m_panel->zoomIn(sourceFrameOnScreen(m_startIndex));
}

void PhotoPreviewController::makePanel(QWidget *over) {
    delete m_panel;
    m_panel = new PhotoPreviewPanel(over);
    m_panel->setObjectName(QStringLiteral("photoPreview"));
    m_panel->onShow = [this](std::size_t index) { showItem(index); };
    m_panel->onClose = [this] { m_panel->zoomOut(sourceFrameOnScreen(m_panel->model().index)); };
    m_panel->onOpenInViewer = [this] { giveToFileManager(&FileManager::openFile); };
    m_panel->onShowInFolder = [this] { giveToFileManager(&FileManager::reveal); };
    m_panel->onClosed = [this] {
        m_shown.reset();
        dropFarImages();
    };
}

void PhotoPreviewController::dismiss() {
    if (m_panel)
        m_panel->dismiss();
}

QRect PhotoPreviewController::sourceFrameOnScreen(std::size_t index) const {
    return m_sourceFrameProvider ? m_sourceFrameProvider(index) : QRect();
}

void PhotoPreviewController::showItem(std::size_t index) {
    m_shown = index;
    dropFarImages();
    loadWholeImages();
    updatePanel();
}

bool PhotoPreviewController::isNearShown(std::size_t index) const {
    return m_shown && index + 1 >= *m_shown && index <= *m_shown + 1;
}

void PhotoPreviewController::loadWholeImages() {
    requestWhole(*m_shown);
    if (*m_shown + 1 < m_items.size())
        requestWhole(*m_shown + 1);
    if (*m_shown > 0)
        requestWhole(*m_shown - 1);
}

void PhotoPreviewController::dropFarImages() {
    for (std::size_t index = 0; index < m_photos.size(); ++index) {
        if (isNearShown(index) || m_photos[index].whole != Photo::Whole::Here)
            continue;
        m_photos[index].whole = Photo::Whole::NotAsked;
        m_items[index].image = m_photos[index].small;
    }
}

void PhotoPreviewController::requestWhole(std::size_t index) {
    auto &photo = m_photos[index];
    if (!m_source || !photo.assetIdentifier || photo.whole != Photo::Whole::NotAsked)
        return;
    photo.whole = Photo::Whole::Asked;
    m_source->requestFullImage(*photo.assetIdentifier, largestScreen(),
                               onMain(&PhotoPreviewController::upgrade, index));
}

void PhotoPreviewController::upgrade(std::size_t index, const std::optional<PhotoSource::FullImage> &whole) {
    auto &photo = m_photos[index];
    auto &item = m_items[index];
    photo.whole = Photo::Whole::NotToBeHad;
    if (!whole)
        return;
    if (!whole->file.empty()) {
        item.previewItemURL = whole->file;
        item.hasFile = true;
    }
    if (!whole->image.isNull() && isNearShown(index)) {
        photo.whole = Photo::Whole::Here;
        item.image = whole->image;
        if (photo.small.isNull() || !hasSameProportions(photo.small.size(), whole->image.size()))
            photo.proportions = whole->image.size();
    } else if (!whole->image.isNull()) {
        // The person has stepped on meanwhile, and may come back.
        photo.whole = Photo::Whole::NotAsked;
    }
    if (m_shown == index)
        updatePanel();
}

PhotoPreviewPanel::Model PhotoPreviewController::panelModel() const {
    const auto &item = m_items[*m_shown];
    const auto &photo = m_photos[*m_shown];
    return {.image = item.image,
            .proportions = photo.proportions,
            .enlarging = photo.enlarging,
            .title = item.previewItemTitle,
            .index = *m_shown,
            .count = m_items.size(),
            .hasFile = item.hasFile};
}

void PhotoPreviewController::updatePanel() {
    if (m_panel && m_shown)
        m_panel->update(panelModel());
}

void PhotoPreviewController::giveToFileManager(void (FileManager::*action)(const std::filesystem::path &)) {
    auto &item = m_items[*m_shown];
    std::error_code error;
    // It may have been moved or thrown away meanwhile.
    item.hasFile = std::filesystem::exists(item.previewItemURL, error);
    if (item.hasFile)
        (m_fileManager.*action)(item.previewItemURL);
    updatePanel();
}

} // namespace diary

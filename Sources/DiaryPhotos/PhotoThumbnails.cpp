// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/SystemCalls.h>
#include <DiaryPhotos/PhotoDecoder.h>
#include <DiaryPhotos/PhotoFile.h>
#include <DiaryPhotos/PhotoThumbnails.h>

#include <QBuffer>
#include <QByteArray>
#include <QCryptographicHash>
#include <QImageReader>
#include <QImageWriter>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

struct ThumbnailSize {
    const char *folder;
    int side; // neither side of the thumbnail is longer
};

constexpr std::array thumbnailSizes{ThumbnailSize{"normal", 128}, ThumbnailSize{"large", 256},
                                    ThumbnailSize{"x-large", 512}, ThumbnailSize{"xx-large", 1024}};

const QString uriKey = QStringLiteral("Thumb::URI");
const QString modifiedKey = QStringLiteral("Thumb::MTime");
const QString softwareKey = QStringLiteral("Software");

// Smaller pictures are decoded as fast as a thumbnail is read.
constexpr std::int64_t pixelsWorthAThumbnail = 4'000'000;

// The times in thumbnails are whole seconds. A file that may still change within its second gets none, or the
// thumbnail would pass for one of the later content.
constexpr std::chrono::seconds settlingTime{2};

constexpr mode_t ownerOnlyFolder = 0700;

// What a thumbnail belongs to.
struct Subject {
    std::string uri;
    QString modified; // whole seconds since the epoch, as text
};

bool covers(QSize size, QSize cover) {
    return size.width() >= cover.width() && size.height() >= cover.height();
}

QImage scaledTo(const QImage &image, QSize size) {
    return image.size() == size ? image : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

// Null unless the file is a thumbnail of the subject as it is now, and large enough.
QImage readThumbnail(const fs::path &path, int side, const Subject &subject, QSize cover) {
    const auto file = PhotoFile::openRegular(path);
    if (!file)
        return {};
    QImageReader reader(file.get(), "png");
    reader.setAutoDetectImageFormat(false);
    const auto size = reader.size();
    if (!covers(size, cover) || size.width() > side || size.height() > side)
        return {};
    // Some programs put the texts behind the picture.
    const auto image = reader.read();
    if (image.text(uriKey) != QString::fromStdString(subject.uri) ||
        image.text(modifiedKey) != subject.modified)
        return {};
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                         : QImage::Format_RGB32);
}

QImage findThumbnail(const fs::path &thumbnails, const Subject &subject, QSize cover) {
    const auto name = thumbnailFileName(subject.uri);
    for (const auto &size : thumbnailSizes) {
        if (!covers({size.side, size.side}, cover))
            continue;
        const auto image = readThumbnail(thumbnails / size.folder / name, size.side, subject, cover);
        if (!image.isNull())
            return scaledTo(image, sizeCovering(image.size(), cover));
    }
    return {};
}

// The smallest standard size whose thumbnail of the picture covers; none when there is none, or when the
// picture itself is smaller than its thumbnail would be.
std::optional<ThumbnailSize> standardSizeFor(QSize picture, QSize cover) {
    for (const auto &size : thumbnailSizes) {
        const auto thumbnail = sizeWithin(picture, {size.side, size.side});
        if (covers(thumbnail, cover) && thumbnail != picture)
            return size;
    }
    return std::nullopt;
}

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written =
            retryingWhenInterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

QByteArray thumbnailBytes(const QImage &image, const Subject &subject) {
    // A view of the pixels alone: what the camera wrote into the picture is not passed on.
    QImage pixels(image.constBits(), image.width(), image.height(), image.bytesPerLine(), image.format());
    pixels.setText(uriKey, QString::fromStdString(subject.uri));
    pixels.setText(modifiedKey, subject.modified);
    pixels.setText(softwareKey, QStringLiteral("Tavelo"));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    return writer.write(pixels) ? buffer.data() : QByteArray();
}

bool makeFolder(const fs::path &folder) {
    return ::mkdir(folder.c_str(), ownerOnlyFolder) == 0 || errno == EEXIST;
}

// Whole or not at all, and only for the user's own eyes, since the picture may be. Not synced: after a crash
// an empty file may stand there, which is no thumbnail and is written again.
void writeThumbnail(const fs::path &thumbnails, const ThumbnailSize &size, const QImage &image,
                    const Subject &subject) {
    const auto bytes = thumbnailBytes(image, subject);
    const auto folder = thumbnails / size.folder;
    std::error_code error;
    fs::create_directories(thumbnails.parent_path(), error);
    if (bytes.isEmpty() || !makeFolder(thumbnails) || !makeFolder(folder))
        return;
    auto temporary = (folder / ".tavelo-XXXXXX").string();
    FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file)
        return;
    const bool isWritten = writeAll(file.get(), {bytes.constData(), static_cast<std::size_t>(bytes.size())});
    file.reset();
    if (!isWritten || ::rename(temporary.c_str(), (folder / thumbnailFileName(subject.uri)).c_str()) < 0)
        ::unlink(temporary.c_str());
}

bool hasSettled(const PhotoFile &photo) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return photo.isUnchanged() && photo.modificationTime() + settlingTime <= now;
}

// As it is when there is no current folder to start from.
fs::path absolutePath(const fs::path &path) {
    std::error_code error;
    const auto absolute = fs::absolute(path, error);
    const auto normal = (error ? path : absolute).lexically_normal();
    // Without the slash that may stand behind a folder.
    return normal.has_filename() ? normal : normal.parent_path();
}

bool isBelow(const fs::path &file, const fs::path &folder) {
    const auto [end, position] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    return end == folder.end();
}

bool needsNoEncoding(unsigned char byte) {
    constexpr std::string_view plain = "!$&'()*+,-./:=@_~";
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           plain.find(static_cast<char>(byte)) != std::string_view::npos;
}

} // namespace

std::string thumbnailUri(const fs::path &file) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto absolute = absolutePath(file);
    std::string uri = "file://";
    for (const char character : absolute.native()) {
        const auto byte = static_cast<unsigned char>(character);
        if (needsNoEncoding(byte))
            uri += character;
        else
            uri.append({'%', digits[byte / 16], digits[byte % 16]});
    }
    return uri;
}

fs::path thumbnailFileName(const std::string &uri) {
    const QByteArrayView bytes(uri.data(), static_cast<qsizetype>(uri.size()));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex().toStdString() + ".png";
}

QImage displayImage(const fs::path &file, QSize cover, const fs::path &thumbnailsFolder) {
    const auto photo = PhotoFile::openRegular(file);
    if (!photo || cover.isEmpty())
        return {};
    const Subject subject{.uri = thumbnailUri(file),
                          .modified = QString::number(photo->modificationTime().count())};
    // Thumbnails have no thumbnails.
    const bool hasThumbnails =
        !thumbnailsFolder.empty() && !isBelow(absolutePath(file), absolutePath(thumbnailsFolder));
    if (hasThumbnails) {
        auto image = findThumbnail(thumbnailsFolder, subject, cover);
        if (!image.isNull())
            return image;
    }

    std::optional<ThumbnailSize> leaving;
    QSize thumbnail;
    auto image = decodePhoto(*photo, [&](const PhotoHeader &header) {
        leaving.reset();
        if (hasThumbnails && header.isHeldWhole &&
            std::int64_t{header.size.width()} * header.size.height() >= pixelsWorthAThumbnail)
            leaving = standardSizeFor(header.size, cover);
        if (!leaving)
            return sizeCovering(header.size, cover);
        thumbnail = sizeWithin(header.size, {leaving->side, leaving->side});
        return thumbnail;
    });
    if (image.isNull() || !leaving)
        return image;
    if (image.size() == thumbnail && hasSettled(*photo))
        writeThumbnail(thumbnailsFolder, *leaving, image, subject);
    // Just as it will be when it comes from the thumbnail.
    return scaledTo(image, sizeCovering(image.size(), cover));
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryPhotos/HeifDecoder.h>
#include <DiaryPhotos/JpegFrame.h>
#include <DiaryPhotos/PhotoDecoder.h>

#include <QByteArray>
#include <QColorSpace>
#include <QImageReader>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace diary {

namespace {

using namespace std::string_view_literals;

// A JPEG is stored in a few passes, or in some dozens by the strangest of programs.
constexpr int mostScans = 100;

struct Signature {
    std::string_view bytes; // at the beginning
    const char *format;     // as QImageReader calls it
};

constexpr std::array signatures{
    Signature{"\xFF\xD8\xFF"sv, "jpeg"},    Signature{"\x89PNG\r\n\x1A\n"sv, "png"},
    Signature{"GIF87a"sv, "gif"},           Signature{"GIF89a"sv, "gif"},
    Signature{"II*\0"sv, "tiff"},           Signature{"MM\0*"sv, "tiff"},
    Signature{"II+\0\x08\0\0\0"sv, "tiff"}, Signature{"MM\0+\0\x08\0\0"sv, "tiff"},
};

QByteArray formatOf(std::string_view head) {
    for (const auto &signature : signatures) {
        if (head.starts_with(signature.bytes))
            return signature.format;
    }
    return head.starts_with("RIFF"sv) &&
                   head.substr(std::min<std::size_t>(8, head.size())).starts_with("WEBP"sv)
               ? "webp"
               : QByteArray();
}

std::int64_t pixelsOf(QSize size) {
    return std::int64_t{size.width()} * size.height();
}

// Qt refuses by the size of the final image alone, and at a size that some cameras exceed.
void raiseQtLimit() {
    [[maybe_unused]] static const bool isRaised = [] {
        constexpr int megabytes = largestDecodingBytes >> 20;
        const auto limit = QImageReader::allocationLimit();
        if (limit != 0 && limit < megabytes)
            QImageReader::setAllocationLimit(megabytes);
        return true;
    }();
}

// The decoder makes the picture in eighths of its size, the next above what is wanted, and scales the rest.
std::int64_t bytesToDecode(const JpegFrame &frame, QSize wanted) {
    const auto eighths = [](int whole, int part) { return (std::int64_t{8} * part + whole - 1) / whole; };
    const auto scale = std::clamp<std::int64_t>(
        std::max(eighths(frame.size.width(), wanted.width()), eighths(frame.size.height(), wanted.height())),
        1, 8);
    // Gray is decoded with one byte and scaled with four more, colours with four.
    constexpr std::int64_t perDecoded = 5;
    constexpr std::int64_t perWanted = 4;
    return frame.coefficientBytes + pixelsOf(frame.size) * scale * scale / 64 * perDecoded +
           pixelsOf(wanted) * perWanted;
}

// For the other formats: what stands in memory at once of the picture while it is decoded and scaled.
std::int64_t bytesToDecode(const QByteArray &format, QImage::Format pixels, QSize stored, qint64 fileSize) {
    constexpr std::int64_t perScaled = 4;
    constexpr std::int64_t perDeepScaled = 8;
    const bool isUnknown = pixels == QImage::Format_Invalid;
    const int bits = isUnknown ? 32 : QImage::toPixelFormat(pixels).bitsPerPixel();
    const bool isDeep = bits > 32 || pixels == QImage::Format_Grayscale16;
    auto perPixel = std::max(bits / 8, 1) + (isDeep ? perDeepScaled : perScaled);
    if (format == "webp")
        perPixel += 4; // what the decoder keeps for itself
    return pixelsOf(stored) * perPixel + (format == "webp" || format == "tiff" ? fileSize : 0);
}

QSize halfOf(QSize size) {
    return QSize(size.width() / 2, size.height() / 2).expandedTo({1, 1});
}

// None when the JPEG cannot be decoded within bounds at any size.
std::optional<QSize> affordableSize(const PhotoFile &file, const JpegFrame &frame, QSize wanted) {
    if (frame.coefficientBytes > 0 && countJpegScans(file, mostScans + 1) > mostScans)
        return std::nullopt;
    while (bytesToDecode(frame, wanted) > largestDecodingBytes) {
        if (wanted == halfOf(wanted))
            return std::nullopt;
        wanted = halfOf(wanted);
    }
    return wanted;
}

QImage decodeWithQt(PhotoFile &file, const QByteArray &format, const ChooseSize &chooseSize) {
    raiseQtLimit();
    file.seek(0);
    QImageReader reader(&file, format);
    // Never one of the many other formats that Qt may know.
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const auto stored = reader.size();
    if (stored.isEmpty() || pixelsOf(stored) > largestPixels)
        return {};

    const auto frame = format == "jpeg" ? readJpegFrame(file) : std::nullopt;
    if (format == "jpeg"
            ? !frame || frame->size != stored
            : bytesToDecode(format, reader.imageFormat(), stored, file.size()) > largestDecodingBytes)
        return {};

    const bool isTurned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    const auto upright = isTurned ? stored.transposed() : stored;
    auto wanted = chooseSize({.size = upright, .isHeldWhole = !frame || frame->coefficientBytes > 0});
    if (isTurned)
        wanted.transpose();
    if (wanted.isEmpty())
        return {};
    if (frame) {
        const auto affordable = affordableSize(file, *frame, wanted);
        if (!affordable)
            return {};
        wanted = *affordable;
    }
    if (wanted != stored)
        reader.setScaledSize(wanted);
    return reader.read();
}

// Many programs write an alpha channel that hides nothing, and scaling may add one.
bool isOpaque(const QImage &image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (!std::all_of(row, row + image.width(), [](QRgb pixel) { return qAlpha(pixel) == 255; }))
            return false;
    }
    return true;
}

QImage inCommonForm(QImage image) {
    if (image.isNull())
        return image;
    if (image.colorSpace().isValid() && image.colorSpace() != QColorSpace(QColorSpace::SRgb))
        image.convertToColorSpace(QColorSpace::SRgb);
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.hasAlphaChannel() && isOpaque(image))
        image.reinterpretAsFormat(QImage::Format_RGB32);
    return image;
}

} // namespace

QSize sizeWithin(QSize picture, QSize largest) {
    if (picture.isEmpty() || largest.isEmpty())
        return {};
    if (picture.width() <= largest.width() && picture.height() <= largest.height())
        return picture;
    return picture.scaled(largest, Qt::KeepAspectRatio).expandedTo({1, 1});
}

QSize sizeCovering(QSize picture, QSize cover) {
    if (picture.isEmpty() || cover.isEmpty())
        return {};
    if (picture.width() <= cover.width() || picture.height() <= cover.height())
        return picture;
    return picture.scaled(cover, Qt::KeepAspectRatioByExpanding).expandedTo({1, 1});
}

QImage decodePhoto(PhotoFile &file, const ChooseSize &chooseSize) {
    try {
        std::array<char, heifSignatureBytes> head{};
        const auto size = file.readAt(0, head.data(), head.size());
        if (isHeif(head.data(), size))
            return inCommonForm(decodeHeif(file, chooseSize));
        const auto format = formatOf({head.data(), size});
        return format.isEmpty() ? QImage() : inCommonForm(decodeWithQt(file, format, chooseSize));
    } catch (const std::exception &) {
        // Memory ran out, or a decoder met what it did not expect.
        return {};
    }
}

QImage decodePhoto(const std::filesystem::path &file, QSize largest) {
    const auto photo = PhotoFile::openRegular(file);
    if (!photo || largest.isEmpty())
        return {};
    return decodePhoto(*photo, [&](const PhotoHeader &header) { return sizeWithin(header.size, largest); });
}

QImage decodePhotoCovering(const std::filesystem::path &file, QSize cover) {
    const auto photo = PhotoFile::openRegular(file);
    if (!photo || cover.isEmpty())
        return {};
    return decodePhoto(*photo, [&](const PhotoHeader &header) { return sizeCovering(header.size, cover); });
}

} // namespace diary

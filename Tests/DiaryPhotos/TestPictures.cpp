// SPDX-License-Identifier: MIT
#include "TestPictures.h"

#include <QBuffer>
#include <QColor>
#include <QImageWriter>
#include <QPainter>
#include <QTransform>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exiv2/exiv2.hpp>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <libheif/heif.h>

#if defined(__SANITIZE_ADDRESS__)
// Part of the sanitizer's library, whose header not every compiler brings.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void *, std::size_t),
                                                         void (*)(const volatile void *));
extern "C" std::size_t __sanitizer_get_allocated_size(const volatile void *);
#endif

namespace diary::testing {

namespace {

constexpr std::array corners{Qt::red, Qt::green, Qt::blue, Qt::yellow};

QPoint centreOf(std::size_t corner, QSize size) {
    return {size.width() * (corner % 2 == 0 ? 1 : 3) / 4, size.height() * (corner < 2 ? 1 : 3) / 4};
}

bool isNear(QRgb color, const QColor &expected) {
    constexpr int tolerance = 60;
    return std::abs(qRed(color) - expected.red()) < tolerance &&
           std::abs(qGreen(color) - expected.green()) < tolerance &&
           std::abs(qBlue(color) - expected.blue()) < tolerance;
}

void check(const heif_error &error) {
    if (error.code != heif_error_Ok)
        throw std::runtime_error(error.message);
}

heif_compression_format compressionOf(HeifKind kind) {
    return kind == HeifKind::Avif ? heif_compression_AV1 : heif_compression_HEVC;
}

using HeifImage = std::unique_ptr<heif_image, decltype(&heif_image_release)>;

// Pixels as the library takes them: bytes, or ten bits in two bytes, least significant first.
std::vector<std::uint8_t> samplesOf(const QImage &image, bool isDeep) {
    const int channels = image.hasAlphaChannel() ? 4 : 3;
    std::vector<std::uint8_t> samples;
    samples.reserve(static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) * 8);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const auto color = image.pixel(x, y);
            const std::array values{qRed(color), qGreen(color), qBlue(color), qAlpha(color)};
            for (int channel = 0; channel < channels; ++channel) {
                const auto value = values.at(static_cast<std::size_t>(channel)) * (isDeep ? 4 : 1);
                samples.push_back(static_cast<std::uint8_t>(value & 0xFF));
                if (isDeep)
                    samples.push_back(static_cast<std::uint8_t>(value >> 8));
            }
        }
    }
    return samples;
}

HeifImage toHeif(const QImage &image, const HeifOptions &options) {
    constexpr std::array chromas{heif_chroma_interleaved_RGB, heif_chroma_interleaved_RGBA,
                                 heif_chroma_interleaved_RRGGBB_LE, heif_chroma_interleaved_RRGGBBAA_LE};
    const auto chroma = chromas.at((options.isDeep ? 2U : 0U) + (image.hasAlphaChannel() ? 1U : 0U));
    heif_image *made = nullptr;
    check(heif_image_create(image.width(), image.height(), heif_colorspace_RGB, chroma, &made));
    HeifImage result(made, &heif_image_release);
    check(heif_image_add_plane(made, heif_channel_interleaved, image.width(), image.height(),
                               options.isDeep ? 10 : 8));
    const auto samples = samplesOf(image, options.isDeep);
    const auto row = samples.size() / static_cast<std::size_t>(image.height());
    int stride = 0;
    auto *plane = heif_image_get_plane(made, heif_channel_interleaved, &stride);
    for (int y = 0; y < image.height(); ++y)
        std::memcpy(plane + static_cast<std::ptrdiff_t>(y) * stride,
                    samples.data() + static_cast<std::size_t>(y) * row, row);
    if (!options.profile.isEmpty())
        check(heif_image_set_raw_color_profile(made, "prof", options.profile.constData(),
                                               static_cast<std::size_t>(options.profile.size())));
    return result;
}

std::string bigEndian(unsigned value, int bytes) {
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        text += static_cast<char>(value >> static_cast<unsigned>(shift) & 0xFFU);
    return text;
}

std::uint32_t checksum(const std::string &bytes) {
    std::uint32_t sum = 0xFFFFFFFFU;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1U ^ (sum & 1U ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

std::string pngChunk(const std::string &type, const std::string &content) {
    return bigEndian(static_cast<unsigned>(content.size()), 4) + type + content +
           bigEndian(checksum(type + content), 4);
}

#if defined(__SANITIZE_ADDRESS__)
std::atomic<bool> isCounting = false;
std::atomic<std::int64_t> inUse = 0;
std::atomic<std::int64_t> peak = 0;

// What was allocated before the counting began and is freed during it makes the peak smaller than it is: by
// nothing that matters beside pictures.
void onAllocation(const volatile void * /*memory*/, std::size_t size) {
    if (!isCounting)
        return;
    const auto now = inUse += static_cast<std::int64_t>(size);
    auto highest = peak.load();
    while (now > highest && !peak.compare_exchange_weak(highest, now)) {
    }
}

void onRelease(const volatile void *memory) {
    if (isCounting && memory)
        inUse -= static_cast<std::int64_t>(__sanitizer_get_allocated_size(memory));
}
#endif

} // namespace

QImage quadrants(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const int middle = size.width() / 2;
    const int waist = size.height() / 2;
    painter.fillRect(0, 0, middle, waist, corners[0]);
    painter.fillRect(middle, 0, size.width() - middle, waist, corners[1]);
    painter.fillRect(0, waist, middle, size.height() - waist, corners[2]);
    painter.fillRect(middle, waist, size.width() - middle, size.height() - waist, corners[3]);
    return image;
}

bool showsQuadrants(const QImage &image) {
    if (image.isNull())
        return false;
    for (std::size_t corner = 0; corner < corners.size(); ++corner) {
        if (!isNear(image.pixel(centreOf(corner, image.size())), corners.at(corner)))
            return false;
    }
    return true;
}

QImage storedAs(int orientation, const QImage &upright) {
    switch (orientation) {
    case 2:
        return upright.mirrored(true, false);
    case 3:
        return upright.mirrored(true, true);
    case 4:
        return upright.mirrored(false, true);
    case 5:
        return upright.transformed(QTransform(0, 1, 1, 0, 0, 0)).convertToFormat(upright.format());
    case 6:
        return upright.transformed(QTransform().rotate(-90));
    case 7:
        return upright.transformed(QTransform(0, -1, -1, 0, 0, 0)).convertToFormat(upright.format());
    case 8:
        return upright.transformed(QTransform().rotate(90));
    default:
        return upright;
    }
}

void setOrientation(const std::filesystem::path &file, int orientation) {
    const auto image = Exiv2::ImageFactory::open(file.string());
    image->readMetadata();
    image->exifData()["Exif.Image.Orientation"] = static_cast<std::uint16_t>(orientation);
    image->writeMetadata();
}

QByteArray encoded(const QImage &image, const char *format, int quality) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (!writer.write(image))
        throw std::runtime_error("cannot write " + std::string(format));
    return buffer.data();
}

QByteArray progressiveJpeg(const QImage &image) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(true);
    if (!writer.write(image))
        throw std::runtime_error("cannot write a progressive JPEG");
    return buffer.data();
}

std::string jpegHeader(unsigned width, unsigned height, bool isProgressive) {
    const std::string components("\x01\x22\x00\x02\x11\x00\x03\x11\x00", 9);
    return std::string("\xFF\xD8\xFF") + (isProgressive ? "\xC2" : "\xC0") + bigEndian(17, 2) + "\x08" +
           bigEndian(height, 2) + bigEndian(width, 2) + "\x03" + components + "\xFF\xDA" + bigEndian(12, 2) +
           std::string("\x03\x01\x00\x02\x00\x03\x00\x00\x3F\x00", 10);
}

std::string cmykJpeg(int width, int height, std::array<unsigned char, 4> inks) {
    // Codes for differences of no, seven and eight bits, and one for blocks without any detail.
    const auto table = [](const std::string &kind, const std::string &lengths, const std::string &values) {
        return std::string("\xFF\xC4") + bigEndian(static_cast<unsigned>(3 + 16 + values.size()), 2) + kind +
               lengths + std::string(16 - lengths.size(), '\0') + values;
    };
    std::string bytes = "\xFF\xD8\xFF\xDB" + bigEndian(67, 2) + std::string(1, '\0') +
                        std::string(64, '\x08') + "\xFF\xC0" + bigEndian(8 + 3 * 4, 2) + "\x08" +
                        bigEndian(static_cast<unsigned>(height), 2) +
                        bigEndian(static_cast<unsigned>(width), 2) + "\x04";
    for (const char component : {'\1', '\2', '\3', '\4'})
        bytes += std::string{component, '\x11', '\0'};
    bytes += table(std::string(1, '\0'), "\1\1\1", std::string("\0\7\x08", 3));
    bytes += table("\x10", "\1", std::string(1, '\0'));
    bytes += "\xFF\xDA" + bigEndian(6 + 2 * 4, 2) + "\x04";
    for (const char component : {'\1', '\2', '\3', '\4'})
        bytes += std::string{component, '\0'};
    bytes += std::string("\0\x3F\0", 3);

    // The first block of each ink tells the level, 0 or 255; the others do not differ. A zero ends each.
    std::string bits;
    for (const auto ink : inks)
        bits += ink == 0 ? "110"
                           "01111111"
                           "0"
                         : "10"
                           "1111111"
                           "0";
    const auto blocks = ((width + 7) / 8) * ((height + 7) / 8);
    bits += std::string(static_cast<std::size_t>(blocks - 1) * 4 * 2, '0');
    bits += std::string((8 - bits.size() % 8) % 8, '1');
    for (std::size_t at = 0; at < bits.size(); at += 8) {
        const auto byte = static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
        bytes += byte;
        if (byte == '\xFF')
            bytes += '\0';
    }
    return bytes + "\xFF\xD9";
}

std::string uniformPng(unsigned width, unsigned height) {
    // One bit a pixel: a row is a filter and its bits.
    const auto rows = QByteArray(static_cast<qsizetype>(height) * (1 + (width + 7) / 8), '\0');
    const auto compressed = qCompress(rows, 9).mid(4).toStdString();
    return std::string("\x89PNG\r\n\x1A\n") +
           pngChunk("IHDR",
                    bigEndian(width, 4) + bigEndian(height, 4) + std::string("\x01\x00\x00\x00\x00", 5)) +
           pngChunk("IDAT", compressed) + pngChunk("IEND", "");
}

bool canWriteHeif(HeifKind kind) {
    return heif_have_encoder_for_format(compressionOf(kind)) != 0;
}

void writeHeif(const std::filesystem::path &file, const QImage &upright, const HeifOptions &options) {
    const std::unique_ptr<heif_context, decltype(&heif_context_free)> context(heif_context_alloc(),
                                                                              &heif_context_free);
    heif_encoder *made = nullptr;
    check(heif_context_get_encoder_for_format(context.get(), compressionOf(options.kind), &made));
    const std::unique_ptr<heif_encoder, decltype(&heif_encoder_release)> encoder(made, &heif_encoder_release);
    heif_encoder_set_lossy_quality(made, 60);
    heif_encoder_set_parameter(made, options.kind == HeifKind::Avif ? "speed" : "preset",
                               options.kind == HeifKind::Avif ? "9" : "ultrafast");
    const std::unique_ptr<heif_encoding_options, decltype(&heif_encoding_options_free)> encoding(
        heif_encoding_options_alloc(), &heif_encoding_options_free);
    encoding->image_orientation = static_cast<heif_orientation>(options.orientation);

    const auto main = toHeif(storedAs(options.orientation, upright), options);
    heif_image_handle *handle = nullptr;
    check(heif_context_encode_image(context.get(), main.get(), made, encoding.get(), &handle));
    const std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)> owned(
        handle, &heif_image_handle_release);
    if (options.thumbnailSide > 0) {
        const auto shown = options.thumbnail.isNull() ? upright : options.thumbnail;
        const auto small = toHeif(storedAs(options.orientation, shown), options);
        heif_image_handle *thumbnail = nullptr;
        check(heif_context_encode_thumbnail(context.get(), small.get(), handle, made, encoding.get(),
                                            options.thumbnailSide, &thumbnail));
        heif_image_handle_release(thumbnail);
    }
    check(heif_context_write_to_file(context.get(), file.c_str()));
}

std::optional<std::int64_t> peakMemoryOf(const std::function<void()> &function) {
#if defined(__SANITIZE_ADDRESS__)
    static const bool isInstalled = __sanitizer_install_malloc_and_free_hooks(onAllocation, onRelease) != 0;
    if (!isInstalled)
        return std::nullopt;
    inUse = 0;
    peak = 0;
    isCounting = true;
    function();
    isCounting = false;
    return peak.load();
#else
    function();
    return std::nullopt;
#endif
}

} // namespace diary::testing

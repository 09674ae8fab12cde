// SPDX-License-Identifier: MIT
#include <DiaryPhotos/HeifDecoder.h>

#include <QColorSpace>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include <libheif/heif.h>

namespace diary {

namespace {

// Colour profiles of cameras and screens are far below this.
constexpr std::size_t largestProfileBytes = std::size_t{4} << 20;

template <auto release>
struct Release {
    template <typename Type>
    void operator()(Type *object) const {
        release(object);
    }
};

using Context = std::unique_ptr<heif_context, Release<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Release<heif_image_release>>;
using Options = std::unique_ptr<heif_decoding_options, Release<heif_decoding_options_free>>;
using NamedColors = std::unique_ptr<heif_color_profile_nclx, Release<heif_nclx_color_profile_free>>;

bool succeeded(const heif_error &error) {
    return error.code == heif_error_Ok;
}

struct Reader {
    const PhotoFile &file;
    std::int64_t position = 0;
};

// Only what is needed is read: a file may carry seconds of film behind its picture.
const heif_reader readerFunctions{
    .reader_api_version = 1,
    .get_position = [](void *reader) { return static_cast<Reader *>(reader)->position; },
    .read =
        [](void *bytes, std::size_t size, void *data) {
            auto &reader = *static_cast<Reader *>(data);
            const auto read = reader.file.readAt(reader.position, static_cast<char *>(bytes), size);
            reader.position += static_cast<std::int64_t>(read);
            return read == size ? 0 : 1;
        },
    .seek =
        [](std::int64_t position, void *data) {
            auto &reader = *static_cast<Reader *>(data);
            if (position < 0 || position > reader.file.size())
                return 1;
            reader.position = position;
            return 0;
        },
    .wait_for_file_size =
        [](std::int64_t size, void *data) {
            return size <= static_cast<Reader *>(data)->file.size() ? heif_reader_grow_status_size_reached
                                                                    : heif_reader_grow_status_size_beyond_eof;
        },
};

QSize uprightSize(const heif_image_handle &handle) {
    return {heif_image_handle_get_width(&handle), heif_image_handle_get_height(&handle)};
}

// As it is coded, before parts are cut off and it is turned.
QSize codedSize(const heif_image_handle &handle) {
    const QSize coded(heif_image_handle_get_ispe_width(&handle), heif_image_handle_get_ispe_height(&handle));
    return coded.expandedTo(uprightSize(handle));
}

std::int64_t pixelsOf(QSize size) {
    return std::int64_t{size.width()} * size.height();
}

bool fitsMemory(const heif_image_handle &handle) {
    const auto pixels = pixelsOf(codedSize(handle));
    const bool isDeep = heif_image_handle_get_luma_bits_per_pixel(&handle) > 8;
    return pixels <= largestDecodingBytes / (isDeep ? heifBytesPerDeepPixel : heifBytesPerPixel);
}

// The colours that a file names by number instead of describing them.
QColorSpace namedColorSpace(const heif_image_handle &handle) {
    heif_color_profile_nclx *colors = nullptr;
    const bool isNamed = succeeded(heif_image_handle_get_nclx_color_profile(&handle, &colors));
    const NamedColors owned(colors);
    if (isNamed && colors && colors->color_primaries == heif_color_primaries_SMPTE_EG_432_1)
        return QColorSpace::DisplayP3;
    return {};
}

QColorSpace colorSpaceOf(const heif_image_handle &handle) {
    const auto size = heif_image_handle_get_raw_color_profile_size(&handle);
    if (size == 0 || size > largestProfileBytes)
        return namedColorSpace(handle);
    QByteArray profile(static_cast<qsizetype>(size), '\0');
    if (!succeeded(heif_image_handle_get_raw_color_profile(&handle, profile.data())))
        return namedColorSpace(handle);
    return QColorSpace::fromIccProfile(profile);
}

QImage decoded(const heif_image_handle &handle, QSize size) {
    const Options options(heif_decoding_options_alloc());
    options->convert_hdr_to_8bit = 1;
    const bool hasAlpha = heif_image_handle_has_alpha_channel(&handle) != 0;
    heif_image *result = nullptr;
    const bool isDecoded = succeeded(heif_decode_image(
        &handle, &result, heif_colorspace_RGB,
        hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, options.get()));
    const Image image(result);
    if (!isDecoded || !image)
        return {};
    int stride = 0;
    const auto *pixels = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    const auto width = heif_image_get_width(image.get(), heif_channel_interleaved);
    const auto height = heif_image_get_height(image.get(), heif_channel_interleaved);
    if (!pixels || width <= 0 || height <= 0)
        return {};
    const auto format = !hasAlpha ? QImage::Format_RGB888
                        : heif_image_handle_is_premultiplied_alpha(&handle) != 0
                            ? QImage::Format_RGBA8888_Premultiplied
                            : QImage::Format_RGBA8888;
    const QImage whole(pixels, width, height, stride, format);
    auto scaled = whole.size() == size ? whole.copy()
                                       : whole.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaled.setColorSpace(colorSpaceOf(handle));
    return scaled;
}

// Whether one is the other at another size. Some small pictures are framed, or stand as the camera was held.
bool haveSameShape(QSize one, QSize other) {
    const auto difference =
        std::abs(std::int64_t{one.width()} * other.height() - std::int64_t{other.width()} * one.height());
    // The smaller one's sides were rounded to whole pixels, or to an even number of them.
    const auto tolerance =
        std::int64_t{2} * std::max({one.width(), one.height(), other.width(), other.height()});
    return difference <= tolerance;
}

// The small pictures in the file that show all of the main one, by size.
std::vector<Handle> thumbnailsOf(const heif_image_handle &main) {
    std::vector<heif_item_id> identifiers(
        static_cast<std::size_t>(std::clamp(heif_image_handle_get_number_of_thumbnails(&main), 0, 16)));
    const auto found = heif_image_handle_get_list_of_thumbnail_IDs(&main, identifiers.data(),
                                                                   static_cast<int>(identifiers.size()));
    identifiers.resize(static_cast<std::size_t>(std::max(found, 0)));
    std::vector<Handle> thumbnails;
    for (const auto identifier : identifiers) {
        heif_image_handle *result = nullptr;
        const bool exists = succeeded(heif_image_handle_get_thumbnail(&main, identifier, &result));
        Handle thumbnail(result);
        if (exists && thumbnail && fitsMemory(*thumbnail) &&
            haveSameShape(uprightSize(*thumbnail), uprightSize(main)))
            thumbnails.push_back(std::move(thumbnail));
    }
    std::sort(thumbnails.begin(), thumbnails.end(), [](const Handle &one, const Handle &other) {
        return pixelsOf(uprightSize(*one)) < pixelsOf(uprightSize(*other));
    });
    return thumbnails;
}

bool isAtLeast(QSize size, QSize wanted) {
    return size.width() >= wanted.width() && size.height() >= wanted.height();
}

} // namespace

bool isHeif(const char *bytes, std::size_t size) {
    return heif_check_filetype(reinterpret_cast<const std::uint8_t *>(bytes), static_cast<int>(size)) !=
               heif_filetype_no &&
           size >= 12;
}

QImage decodeHeif(const PhotoFile &file, const ChooseSize &chooseSize) {
    const Context context(heif_context_alloc());
    Reader reader{file};
    if (!context ||
        !succeeded(heif_context_read_from_reader(context.get(), &readerFunctions, &reader, nullptr)))
        return {};
    heif_image_handle *result = nullptr;
    const bool exists = succeeded(heif_context_get_primary_image_handle(context.get(), &result));
    const Handle main(result);
    if (!exists || !main || uprightSize(*main).isEmpty())
        return {};
    const auto coded = codedSize(*main);
    // Parts of the file may disagree about the size; no part may claim more than was looked at.
    heif_context_set_maximum_image_size_limit(context.get(), std::max(coded.width(), coded.height()));

    const auto thumbnails = thumbnailsOf(*main);
    const auto fromThumbnail = chooseSize({.size = uprightSize(*main), .isHeldWhole = false});
    if (fromThumbnail.isEmpty())
        return {};
    for (const auto &thumbnail : thumbnails) {
        if (!isAtLeast(uprightSize(*thumbnail), fromThumbnail))
            continue;
        if (auto image = decoded(*thumbnail, fromThumbnail); !image.isNull())
            return image;
    }
    if (fitsMemory(*main))
        return decoded(*main, chooseSize({.size = uprightSize(*main), .isHeldWhole = true}));
    // A smaller picture tells more than none.
    if (thumbnails.empty())
        return {};
    const auto &largest = *thumbnails.back();
    return decoded(largest, uprightSize(largest).boundedTo(fromThumbnail));
}

} // namespace diary

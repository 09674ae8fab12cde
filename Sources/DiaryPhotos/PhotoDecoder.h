// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryPhotos/PhotoFile.h>

#include <QImage>
#include <QSize>

#include <cstdint>
#include <filesystem>
#include <functional>

// Pictures from files: JPEG, PNG, WebP, TIFF, GIF, HEIC and AVIF, told by their content, whatever the name.
//
// What comes is upright, in sRGB where the file says which colours it means, and RGB32, or
// ARGB32_Premultiplied when it has transparency. Of several pictures in a file the first, or the one the file
// calls its main one. A file that was cut off shows what there is of it.
//
// May be called from any thread. Nothing is thrown: what cannot be decoded is a null image. Only regular
// files are opened, so that no pipe and no device is waited for; but a file on a network drive that does not
// answer blocks its reader, as every program's.
namespace diary {

// What decoding one picture may take at most, in bytes of memory. A picture whose header announces more is
// not begun; a JPEG, which can be decoded at a fraction of its size, is then made as large as this allows.
inline constexpr std::int64_t largestDecodingBytes = std::int64_t{640} << 20;

// The largest picture that is decoded at all, since even a JPEG at a fraction of its size takes its time.
inline constexpr std::int64_t largestPixels = 500'000'000;

// At most as large as `largest` and never enlarged, in pixels.
QImage decodePhoto(const std::filesystem::path &file, QSize largest);

// So that it just covers `cover` and no larger; a smaller picture is not enlarged.
QImage decodePhotoCovering(const std::filesystem::path &file, QSize cover);

// The sizes of the two, for an upright picture; at least one pixel each way. Empty when either size is.
QSize sizeWithin(QSize picture, QSize largest);
QSize sizeCovering(QSize picture, QSize cover);

// What is known of a picture before it is decoded.
struct PhotoHeader {
    QSize size;              // upright, in pixels
    bool isHeldWhole = true; // every pixel has to be decoded and kept, however small a picture is wanted
};

// Says how large a picture is wanted: no larger than it is. Empty for not at all.
using ChooseSize = std::function<QSize(const PhotoHeader &)>;

// Decodes an open file, from its beginning.
QImage decodePhoto(PhotoFile &file, const ChooseSize &chooseSize);

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryPhotos/PhotoDecoder.h>
#include <DiaryPhotos/PhotoFile.h>

#include <QImage>

#include <cstddef>
#include <cstdint>

namespace diary {

// What each pixel takes while a picture is decoded: its samples, once more while they are turned and
// converted, and as RGB before and after they are brought into the form that can be scaled. Measured.
inline constexpr std::int64_t heifBytesPerPixel = 13;
inline constexpr std::int64_t heifBytesPerDeepPixel = 17; // more than eight bits a channel

// As many bytes as are needed to tell what a file is.
inline constexpr std::size_t heifSignatureBytes = 64;

// Whether a file that begins so is HEIC, AVIF or another picture in that container.
bool isHeif(const char *bytes, std::size_t size);

// Upright and in sRGB, of the wanted size; null when it cannot be decoded. A small picture that the file
// carries beside the main one is taken when it is large enough, or when the main one is too large for
// `largestDecodingBytes`.
QImage decodeHeif(const PhotoFile &file, const ChooseSize &chooseSize);

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryPhotos/PhotoDecoder.h>
#include <DiaryPhotos/PhotoFile.h>

#include <QImage>

#include <cstddef>

namespace diary {

// As many bytes as are needed to tell what a file is.
inline constexpr std::size_t heifSignatureBytes = 64;

// Whether a file that begins so is HEIC, AVIF or another picture in that container.
bool isHeif(const char *bytes, std::size_t size);

// Upright and in sRGB, of the wanted size; null when it cannot be decoded. A small picture that the file
// carries beside the main one is taken when it is large enough, or when the main one is too large for
// `largestDecodingBytes`.
QImage decodeHeif(const PhotoFile &file, const ChooseSize &chooseSize);

} // namespace diary

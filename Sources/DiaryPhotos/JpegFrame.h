// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryPhotos/PhotoFile.h>

#include <QSize>

#include <cstdint>
#include <optional>

namespace diary {

// What the header of a JPEG tells about the work of decoding it.
struct JpegFrame {
    QSize size; // as stored, before any rotation

    // Memory for all coefficients of the picture, in bytes. Zero when each row of blocks is complete where it
    // stands in the file, so that it can be shown and forgotten.
    std::int64_t coefficientBytes = 0;

    bool operator==(const JpegFrame &) const = default;
};

// None when the file does not begin as a JPEG does, or ends before its first scan.
std::optional<JpegFrame> readJpegFrame(const PhotoFile &file);

// How often a JPEG goes over the whole picture, counted up to a limit. A small file can ask for thousands
// of passes.
int countJpegScans(const PhotoFile &file, int limit);

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayPhoto.h>

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace diary {

// Photos for pictures and demonstrations, the same on every day: DIARY_FAKE_PHOTOS is their number,
// DIARY_FAKE_PHOTO_NAMES holds file names with commas between, and DIARY_FAKE_PHOTOS_DIR is a folder of
// images, which are read once. None when the number is not set, or is none. Main thread only.
std::optional<std::vector<DayPhoto>> scriptedPhotos();

// Whatever the number asked for.
inline constexpr std::int64_t mostScriptedPhotos = 1000;

// The hour from 0 to 23 and the minute as they stand under a photo.
QString photoTimeText(int hour, int minute);

} // namespace diary

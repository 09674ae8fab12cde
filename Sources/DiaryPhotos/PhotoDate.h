// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include <sys/stat.h>

namespace diary {

// When a picture was taken, by the clock of the camera wherever that was carried.
struct PhotoDate {
    using LocalTime = std::chrono::local_seconds;

    // The numbers are those of the index.
    enum class Origin {
        Original = 1,  // the camera's own word
        Digitized = 2, // when a scanner or another device made the file
        FileName = 3,
        Modified = 4, // when the file was last written, by this machine's clock
    };

    LocalTime time;
    Origin origin = Origin::Modified;

    bool operator==(const PhotoDate &) const = default;
};

// A date as a file name tells it, often without the time of day.
struct NamedDate {
    std::chrono::local_days day;
    std::optional<std::chrono::seconds> timeOfDay;

    bool operator==(const NamedDate &) const = default;
};

// What a change of a file is told by.
struct FileStamp {
    std::int64_t size = 0;     // bytes
    std::int64_t modified = 0; // nanoseconds since 1970

    bool operator==(const FileStamp &) const = default;
};

FileStamp stampOf(const struct stat &status);

// What reading a picture's file for its date has found.
struct PhotoReading {
    FileStamp stamp;               // of the content that was read
    std::optional<PhotoDate> date; // none when the file is no picture, whatever its name says
};

// None for what is no moment of any calendar, such as zeros, blanks or a thirteenth month, and for years
// before there was photography. A date whose time of day was left blank counts as noon.
std::optional<PhotoDate::LocalTime> exifTime(std::string_view text);

// The first plausible date in a name such as "IMG_20240203_101112.jpg" or "Screenshot 2024-02-03
// at 10.11.12.png". A name may be of any bytes.
std::optional<NamedDate> dateInFileName(std::string_view name);

// Nanoseconds since 1970 as this machine's clock on the wall showed them then.
PhotoDate::LocalTime localTimeOf(std::int64_t nanoseconds);

// The moment that a name and the file's own time make together. Without a time of day in the name it is that
// of the file when the file was last written on that very day, as by a messenger that received it; else noon,
// which no small error moves to another day.
PhotoDate dateFromName(const NamedDate &named, PhotoDate::LocalTime modified);

// Opens the file and reads what tells its date: what a camera wrote, else its name, else its time. None when
// the file is gone or cannot be read. Reads without memory maps, so that a file cut short meanwhile does no
// harm, and never waits for a pipe. At most one thread for each file; any number of files at once.
std::optional<PhotoReading> readPhoto(const std::filesystem::path &file);

// Whether the name's ending is that of a picture this program shows.
bool hasPhotoExtension(std::string_view name);

} // namespace diary

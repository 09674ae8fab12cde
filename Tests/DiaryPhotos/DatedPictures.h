// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// Pictures as cameras and other programs write them, made by the test that needs them.
namespace diary::testing {

struct ExifDate {
    std::string key; // "Exif.Photo.DateTimeOriginal"
    std::string value;
};

inline constexpr const char *original = "Exif.Photo.DateTimeOriginal";
inline constexpr const char *digitized = "Exif.Photo.DateTimeDigitized";

// A small picture of the format that the name's ending says, with these dates. Missing folders are made.
// Throws when it cannot be written.
void makePicture(const std::filesystem::path &file, const std::vector<ExifDate> &dates = {});

// The same, taken at that time: "2024:02:03 10:11:12".
void makePictureTakenAt(const std::filesystem::path &file, const std::string &time);

// The boxes of a HEIF file with no picture in them, but with the date, which stands at the given offset.
std::string heifWithDate(std::string_view brand, std::string_view time, std::size_t offset);

// A TIFF file with no picture in it, but with the date, whose directories stand at the given offset.
std::string tiffWithDate(std::string_view time, std::size_t offset);

// The file's time, in seconds since 1970.
void setModified(const std::filesystem::path &file, std::int64_t seconds);

std::string contentOf(const std::filesystem::path &file);
void writeBytes(const std::filesystem::path &file, std::string_view bytes);

} // namespace diary::testing

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

// Pictures that tests make for themselves, and what they look at in them.
namespace diary::testing {

// Red and green above blue and yellow: every way of turning it shows.
QImage quadrants(QSize size);

// Whether a picture shows these four colours where they belong, as far as its compression lets it.
bool showsQuadrants(const QImage &image);

// As a camera held differently would have stored the picture, for an EXIF orientation from 1 to 8.
QImage storedAs(int orientation, const QImage &upright);

// Writes the orientation into a JPEG or TIFF.
void setOrientation(const std::filesystem::path &file, int orientation);

// What a file of this format (as QImageWriter calls it) holds.
QByteArray encoded(const QImage &image, const char *format, int quality = 90);

// A JPEG that is sent in several passes over the picture.
QByteArray progressiveJpeg(const QImage &image);

// The header of a JPEG and nothing else.
std::string jpegHeader(unsigned width, unsigned height, bool isProgressive = false);

// A JPEG of one colour in four inks, as printing programs write it.
std::string cmykJpeg(int width, int height, std::array<unsigned char, 4> inks);

// A complete PNG of one colour, which takes a thousandth of its size on the disk.
std::string uniformPng(unsigned width, unsigned height);

enum class HeifKind { Heic, Avif };

struct HeifOptions {
    HeifKind kind = HeifKind::Heic;
    int orientation = 1;   // as in EXIF; the picture is stored turned and marked with the way back
    int thumbnailSide = 0; // of a small picture in the file; none at zero
    QImage thumbnail{};    // shown by the small picture instead of the main one
    bool isDeep = false;   // ten bits a channel
    QByteArray profile{};  // an ICC profile
};

bool canWriteHeif(HeifKind kind);
void writeHeif(const std::filesystem::path &file, const QImage &upright, const HeifOptions &options = {});

// The most memory, in bytes, that was in use at once while the function ran, beyond what was before. None
// where allocations cannot be observed.
std::optional<std::int64_t> peakMemoryOf(const std::function<void()> &function);

} // namespace diary::testing

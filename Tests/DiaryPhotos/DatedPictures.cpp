// SPDX-License-Identifier: MIT
#include "DiaryPhotos/DatedPictures.h"

#include <QImage>
#include <QString>

#include <array>
#include <cstdint>
#include <exiv2/exiv2.hpp>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace diary::testing {

namespace {

namespace fs = std::filesystem;

std::string bigEndian(std::uint64_t number, std::size_t bytes) {
    std::string result(bytes, '\0');
    for (auto byte = result.rbegin(); byte != result.rend(); ++byte, number >>= 8)
        *byte = static_cast<char>(number & 0xff);
    return result;
}

std::string box(std::string_view type, const std::string &content) {
    return bigEndian(content.size() + 8, 4) + std::string(type) + content;
}

std::string fullBox(std::string_view type, unsigned version, const std::string &content) {
    return box(type, bigEndian(version << 24, 4) + content);
}

// A TIFF directory, to stand at the offset, with a sub-directory of one date.
std::string exifDirectories(std::string_view time, std::size_t offset) {
    constexpr std::size_t directorySize = 18; // of one entry
    const std::string value = std::string(time) + std::string(1, '\0');
    const auto directory = [](unsigned tag, unsigned type, std::size_t count, std::size_t valueOffset) {
        return bigEndian(1, 2) + bigEndian(tag, 2) + bigEndian(type, 2) + bigEndian(count, 4) +
               bigEndian(valueOffset, 4) + bigEndian(0, 4);
    };
    return directory(0x8769, 4, 1, offset + directorySize) +
           directory(0x9003, 2, value.size(), offset + 2 * directorySize) + value;
}

std::string tiffHeader(std::size_t offset) {
    return "MM" + bigEndian(42, 2) + bigEndian(offset, 4);
}

} // namespace

void makePicture(const fs::path &file, const std::vector<ExifDate> &dates) {
    fs::create_directories(file.parent_path());
    QImage picture(16, 12, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    // Under a plain name, because not every library takes every name.
    const auto plain = file.parent_path() / ("plain" + file.extension().string());
    const auto plainName = QString::fromStdString(plain.string());
    const auto extension = file.extension().string().substr(1);
    if (!picture.save(plainName, extension == "jpe" ? "jpg" : nullptr))
        throw std::runtime_error("cannot write " + plain.string());
    if (!dates.empty()) {
        const auto image = Exiv2::ImageFactory::open(plain.string());
        image->readMetadata();
        for (const auto &[key, value] : dates)
            image->exifData()[key] = value;
        image->writeMetadata();
    }
    fs::rename(plain, file);
}

void makePictureTakenAt(const fs::path &file, const std::string &time) {
    makePicture(file, {{original, time}});
}

std::string heifWithDate(std::string_view brand, std::string_view time, std::size_t offset) {
    const auto fileType = box("ftyp", std::string(brand) + bigEndian(0, 4) + "mif1" + std::string(brand));
    const auto handler =
        fullBox("hdlr", 0, bigEndian(0, 4) + "pict" + std::string(12, '\0') + std::string(1, '\0'));
    const auto entry = fullBox("infe", 2, bigEndian(1, 2) + bigEndian(0, 2) + "Exif" + std::string(1, '\0'));
    const auto items = fullBox("iinf", 0, bigEndian(1, 2) + entry);
    // Before the data stands the offset of the TIFF header in it.
    const auto data = bigEndian(6, 4) + std::string("Exif\0\0", 6) + tiffHeader(8) + exifDirectories(time, 8);
    const auto location = fullBox("iloc", 0,
                                  bigEndian(0x4400, 2) + bigEndian(1, 2) + bigEndian(1, 2) + bigEndian(0, 2) +
                                      bigEndian(1, 2) + bigEndian(offset, 4) + bigEndian(data.size(), 4));
    auto result = fileType + fullBox("meta", 0, handler + items + location);
    if (result.size() + 8 > offset)
        throw std::runtime_error("no place for the date");
    result += bigEndian(offset - result.size() + data.size(), 4) + "mdat";
    result.resize(offset, '\0');
    return result + data;
}

std::string tiffWithDate(std::string_view time, std::size_t offset) {
    auto result = tiffHeader(offset);
    result.resize(offset, '\0');
    return result + exifDirectories(time, offset);
}

void setModified(const fs::path &file, std::int64_t seconds) {
    const std::array<timespec, 2> times{{{seconds, 0}, {seconds, 0}}};
    if (::utimensat(AT_FDCWD, file.c_str(), times.data(), 0) < 0)
        throw std::system_error(errno, std::system_category(), file.string());
}

std::string contentOf(const fs::path &file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void writeBytes(const fs::path &file, std::string_view bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

} // namespace diary::testing

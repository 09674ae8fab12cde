// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <chrono>
#include <filesystem>
#include <string>

// The small pictures that all programs of the desktop share, by the freedesktop thumbnail standard: PNG files
// in the folders normal, large, x-large and xx-large of $XDG_CACHE_HOME/thumbnails, named for the file they
// show.
//
// May be called from any thread, and by several programs at once. Nothing is thrown.
namespace diary {

// The picture upright, scaled so that it just covers `cover` (in pixels) and no larger; null when it cannot
// be decoded. From a thumbnail when there is one that covers and shows the file as it is now, else decoded.
//
// A picture that took long to decode leaves a thumbnail of a standard size, for this program and for others.
// With an empty folder no thumbnail is read or written.
QImage displayImage(const std::filesystem::path &file, QSize cover,
                    const std::filesystem::path &thumbnailsFolder);

// The file's address as thumbnails name it: absolute, without following links, and every byte encoded that
// has a meaning in addresses or is not ASCII. The name need not be UTF-8.
std::string thumbnailUri(const std::filesystem::path &file);

// Where the thumbnail of an address stands, below the folder of its size.
std::filesystem::path thumbnailFileName(const std::string &uri);

} // namespace diary

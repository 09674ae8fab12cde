// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <filesystem>
#include <string>
#include <string_view>

// The border between the kit's UTF-8 and Qt's strings.
namespace diary {

inline QString toQString(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

inline std::string toUtf8(const QString &text) {
    return text.toStdString();
}

// File names are bytes; what cannot be shown as text is shown with replacement characters.
inline QString pathToQString(const std::filesystem::path &path) {
    return toQString(std::string_view(path.native()));
}

// The path as people write it, with a tilde for the home folder.
QString abbreviatingHome(const std::filesystem::path &path);

// What the system says of a failure, and below it the path.
QString systemText(const std::filesystem::filesystem_error &error);

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/Text.h>
#include <DiaryKit/UserDirectories.h>

namespace diary {

QString abbreviatingHome(const std::filesystem::path &path) {
    const auto relative = path.lexically_relative(UserDirectories::home());
    if (relative == ".")
        return QStringLiteral("~");
    const bool isInside = !relative.empty() && *relative.begin() != "..";
    return pathToQString(isInside ? "~" / relative : path);
}

QString systemText(const std::filesystem::filesystem_error &error) {
    return toQString(error.code().message()) + QLatin1Char('\n') + pathToQString(error.path1());
}

} // namespace diary

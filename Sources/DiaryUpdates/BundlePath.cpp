// SPDX-License-Identifier: MIT
#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/BundlePath.h>

#include <algorithm>
#include <cstddef>

namespace diary {

namespace {

constexpr std::size_t longestName = 255;
constexpr std::size_t longestPath = 1024;
constexpr std::size_t mostNames = 32;
constexpr std::size_t longestQuote = 120;

bool isControl(char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
}

bool isGoodName(std::string_view name) {
    return !name.empty() && name.size() <= longestName && name != "." && name != ".." &&
           std::none_of(name.begin(), name.end(),
                        [](char character) { return character == '\\' || isControl(character); });
}

std::vector<std::string_view> pieces(std::string_view path) {
    std::vector<std::string_view> found;
    for (;;) {
        const auto slash = path.find('/');
        found.push_back(path.substr(0, slash));
        if (slash == std::string_view::npos)
            return found;
        path.remove_prefix(slash + 1);
    }
}

} // namespace

std::vector<std::string> bundlePathNames(std::string_view path) {
    if (path.size() <= longestPath) {
        const auto names = pieces(path);
        if (names.size() <= mostNames && std::all_of(names.begin(), names.end(), isGoodName))
            return {names.begin(), names.end()};
    }
    throw BundleError("a bad path: " + readable(path));
}

bool linkStaysInside(std::string_view path, std::string_view target) {
    if (target.empty() || target.size() > longestPath)
        return false;
    auto names = pieces(target);
    const auto climbEnd =
        std::find_if(names.begin(), names.end(), [](std::string_view name) { return name != ".."; });
    const auto climbed = climbEnd - names.begin();
    // The names above the link itself.
    const auto depth = std::count(path.begin(), path.end(), '/');
    return climbed <= depth && climbEnd != names.end() && std::all_of(climbEnd, names.end(), isGoodName);
}

std::string readable(std::string_view text) {
    std::string quoted(text.substr(0, longestQuote));
    std::replace_if(quoted.begin(), quoted.end(), isControl, '?');
    if (text.size() > longestQuote)
        quoted += "...";
    return quoted;
}

} // namespace diary

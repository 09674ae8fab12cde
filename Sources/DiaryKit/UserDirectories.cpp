// SPDX-License-Identifier: MIT
#include <DiaryKit/UserDirectories.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include <pwd.h>
#include <unistd.h>

namespace diary::UserDirectories {

namespace {

namespace fs = std::filesystem;

constexpr const char *programFolder = "tavelo";

// The convention ignores relative paths.
std::optional<fs::path> absoluteFromEnvironment(const char *variable) {
    const char *value = std::getenv(variable);
    if (!value || value[0] != '/')
        return std::nullopt;
    return fs::path(value);
}

fs::path baseDirectory(const char *variable, const char *belowHome) {
    return absoluteFromEnvironment(variable).value_or(home() / belowHome);
}

// The value of a line such as XDG_DOCUMENTS_DIR="$HOME/Documents": a shell assignment, whose value is
// absolute or begins with $HOME, with a backslash before special characters.
std::optional<fs::path> userDirectoryFromLine(std::string_view line, std::string_view key) {
    const auto start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos || !line.substr(start).starts_with(key))
        return std::nullopt;
    line.remove_prefix(start + key.size());
    if (!line.starts_with("=\""))
        return std::nullopt;
    line.remove_prefix(2);

    constexpr std::string_view homeVariable = "$HOME";
    const bool belowHome = line.starts_with(homeVariable) && line.find_first_of("/\"") == homeVariable.size();
    if (belowHome)
        line.remove_prefix(homeVariable.size());
    std::string value;
    for (std::size_t index = 0; index < line.size() && line[index] != '"'; ++index) {
        if (line[index] == '\\' && index + 1 < line.size())
            ++index;
        value += line[index];
    }
    if (belowHome) {
        value.erase(0, value.find_first_not_of('/'));
        return value.empty() ? home() : home() / value;
    }
    if (value.starts_with('/'))
        return fs::path(value);
    return std::nullopt;
}

fs::path userDirectory(std::string_view key, const char *belowHome) {
    std::ifstream file(baseDirectory("XDG_CONFIG_HOME", ".config") / "user-dirs.dirs");
    std::optional<fs::path> found;
    for (std::string line; std::getline(file, line);) {
        if (auto directory = userDirectoryFromLine(line, key))
            found = std::move(directory);
    }
    return found.value_or(home() / belowHome);
}

} // namespace

fs::path home() {
    if (const char *value = std::getenv("HOME"); value && value[0] != '\0')
        return value;
    const passwd *account = getpwuid(getuid());
    return account ? fs::path(account->pw_dir) : fs::path("/");
}

fs::path documents() {
    return userDirectory("XDG_DOCUMENTS_DIR", "Documents");
}
fs::path pictures() {
    return userDirectory("XDG_PICTURES_DIR", "Pictures");
}
fs::path config() {
    return baseDirectory("XDG_CONFIG_HOME", ".config") / programFolder;
}
fs::path state() {
    return baseDirectory("XDG_STATE_HOME", ".local/state") / programFolder;
}
fs::path cache() {
    return baseDirectory("XDG_CACHE_HOME", ".cache") / programFolder;
}
fs::path data() {
    return baseDirectory("XDG_DATA_HOME", ".local/share");
}

} // namespace diary::UserDirectories

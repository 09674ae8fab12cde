// SPDX-License-Identifier: MIT
#include <DiaryKit/UserDirectories.h>
#include <DiaryKit/VaultLocation.h>

#include <cstdlib>
#include <string>
#include <system_error>

namespace diary::VaultLocation {

namespace {

namespace fs = std::filesystem;

constexpr const char *diaryFolder = "Diary";

} // namespace

fs::path localVault() {
    return UserDirectories::documents() / diaryFolder;
}

std::optional<fs::path> cloudDriveRoot() {
    const auto home = UserDirectories::home();
    std::error_code error;
    if (auto drive = home / "Library/Mobile Documents/com~apple~CloudDocs"; fs::exists(drive, error))
        return drive;
    for (const char *name : {"Nextcloud", "Dropbox", "Seafile", "Sync"}) {
        if (auto drive = home / name; fs::is_directory(drive, error))
            return drive;
    }
    return std::nullopt;
}

std::optional<fs::path> cloudVault() {
    const auto root = cloudDriveRoot();
    return root ? std::optional(*root / diaryFolder) : std::nullopt;
}

bool hasDiaryFiles(const fs::path &folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->path().native().ends_with(".md"))
            return true;
    }
    return false;
}

fs::path defaultVault() {
    const auto local = localVault();
    return hasDiaryFiles(local) ? local : cloudVault().value_or(local);
}

fs::path chosen(const Defaults &defaults) {
    if (const char *root = std::getenv("DIARY_ROOT"))
        return root;
    if (const auto stored = defaults.string("vaultPath"))
        return *stored;
    return defaultVault();
}

} // namespace diary::VaultLocation

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/Defaults.h>

#include <filesystem>
#include <optional>

// Which folder is the vault. Looks at the disk and the environment at each call; nothing is created.
namespace diary::VaultLocation {

// "Diary" in the user's documents folder.
std::filesystem::path localVault();

// The folder that a cloud drive keeps in step with other machines: iCloud Drive's, else the first there is of
// Nextcloud, Dropbox, Seafile and Sync in the home folder.
std::optional<std::filesystem::path> cloudDriveRoot();

// "Diary" in the cloud drive; none without a drive.
std::optional<std::filesystem::path> cloudVault();

// Whether the name of any entry ends in ".md". A folder that is missing or cannot be listed has none.
bool hasDiaryFiles(const std::filesystem::path &folder);

// The local vault when a diary is there already, else the cloud drive's, else the local one.
std::filesystem::path defaultVault();

// What the environment variable DIARY_ROOT names, taken as it stands, else the folder stored under
// "vaultPath", else the default.
std::filesystem::path chosen(const Defaults &defaults);

} // namespace diary::VaultLocation

// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

// Where the user's files and the program's own files live, by the XDG base directory and user directory
// conventions. Read from the environment at each call; nothing is created.
namespace diary::UserDirectories {

// $HOME, else the account's home folder.
std::filesystem::path home();

// XDG_DOCUMENTS_DIR of user-dirs.dirs, else "Documents" in the home folder.
std::filesystem::path documents();

// XDG_PICTURES_DIR of user-dirs.dirs, else "Pictures" in the home folder.
std::filesystem::path pictures();

// The program's folders below the XDG base directories.
std::filesystem::path config(); // settings
std::filesystem::path state();  // what must survive but belongs to this machine
std::filesystem::path cache();  // what can be made again

// $XDG_DATA_HOME, else ".local/share" in the home folder: the base directory itself, since what the program
// keeps there has a name of its own.
std::filesystem::path data();

} // namespace diary::UserDirectories

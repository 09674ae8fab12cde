// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace diary {

// The desktop's file manager. Main thread only.
class FileManager {
public:
    virtual ~FileManager() = default;

    // Shows the file or folder in its folder, selected. Does not wait; where no file manager answers, the
    // folder is opened with whatever opens folders here, and where nothing does, nothing happens.
    virtual void reveal(const std::filesystem::path &path) = 0;

    // Shows what is in the folder.
    virtual void openFolder(const std::filesystem::path &folder) = 0;

    // Opens the file with the program that the desktop has for its kind.
    virtual void openFile(const std::filesystem::path &file) = 0;
};

// By the freedesktop file manager interface on the session bus.
class DesktopFileManager : public FileManager {
public:
    void reveal(const std::filesystem::path &path) override;
    void openFolder(const std::filesystem::path &folder) override;
    void openFile(const std::filesystem::path &file) override;
};

} // namespace diary

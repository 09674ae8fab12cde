// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/FileManager.h>

#include <filesystem>
#include <vector>

namespace diary::testing {

// Remembers what it was asked to show.
class FakeFileManager : public FileManager {
public:
    void reveal(const std::filesystem::path &path) override { revealed.push_back(path); }
    void openFolder(const std::filesystem::path &folder) override { opened.push_back(folder); }
    void openFile(const std::filesystem::path &file) override { openedFiles.push_back(file); }

    std::vector<std::filesystem::path> revealed;
    std::vector<std::filesystem::path> opened; // folders
    std::vector<std::filesystem::path> openedFiles;
};

} // namespace diary::testing

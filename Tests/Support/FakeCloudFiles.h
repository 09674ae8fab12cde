// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/CloudFiles.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace diary::testing {

// Answers as it is told, by file name, and records what it was asked for.
class FakeCloudFiles : public CloudFiles {
public:
    std::map<std::string, DownloadingStatus> statuses;
    std::map<std::string, std::vector<std::filesystem::path>> versions;
    bool canMarkResolved = true;

    mutable std::vector<std::string> asked;
    mutable std::vector<std::string> downloads;
    mutable std::vector<std::filesystem::path> resolved;

    DownloadingStatus downloadingStatus(const std::filesystem::path &file) const override {
        const std::lock_guard lock(m_mutex);
        asked.push_back(file.filename().string());
        const auto found = statuses.find(file.filename().string());
        return found == statuses.end() ? DownloadingStatus::None : found->second;
    }

    void startDownloading(const std::filesystem::path &file) const override {
        const std::lock_guard lock(m_mutex);
        downloads.push_back(file.filename().string());
    }

    std::vector<std::filesystem::path>
    unresolvedConflictVersions(const std::filesystem::path &file) const override {
        const auto found = versions.find(file.filename().string());
        return found == versions.end() ? std::vector<std::filesystem::path>{} : found->second;
    }

    bool markResolved(const std::filesystem::path &version) const override {
        resolved.push_back(version);
        return canMarkResolved;
    }

private:
    mutable std::mutex m_mutex;
};

} // namespace diary::testing

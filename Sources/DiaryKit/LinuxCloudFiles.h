// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/CloudFiles.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace diary {

// The placeholders and conflict copies of the sync tools found on Linux. Only the desktop clients of
// Nextcloud and ownCloud can be asked for a content.
class LinuxCloudFiles : public CloudFiles {
public:
    // Resolved conflict copies move to this folder, by default "resolved" in the user's state folder.
    explicit LinuxCloudFiles(std::optional<std::filesystem::path> resolvedFolder = std::nullopt);
    ~LinuxCloudFiles() override;

    DownloadingStatus downloadingStatus(const std::filesystem::path &file) const override;

    // The connections to the clients stay open as long as this object lives: a client may drop the request of
    // one that hangs up at once.
    void startDownloading(const std::filesystem::path &file) const override;

    // Copies that are placeholders themselves come once they are downloaded.
    std::vector<std::filesystem::path>
    unresolvedConflictVersions(const std::filesystem::path &file) const override;

    // The copy keeps its name, with a number when the name is taken.
    bool markResolved(const std::filesystem::path &version) const override;

private:
    class DesktopClients;
    std::filesystem::path m_resolvedFolder;
    std::unique_ptr<DesktopClients> m_clients;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <vector>

namespace diary {

// What sync tools do to day files: some leave only a placeholder until the content is wanted, all leave
// copies beside a file when two machines wrote it at once.
//
// Every call looks at the disk anew. May be used from any thread, by several at once. Nothing throws: what
// cannot be found out is "none".
class CloudFiles {
public:
    enum class DownloadingStatus {
        None,          // no placeholder: an ordinary file, or no file at all
        NotDownloaded, // only a placeholder is here
        Downloaded,    // a copy is here that may be out of date
        Current
    };

    virtual ~CloudFiles() = default;

    // Of the file at this path, whether the placeholder stands at it or beside it. The path of a placeholder
    // beside it stands for the file itself.
    virtual DownloadingStatus downloadingStatus(const std::filesystem::path &file) const = 0;

    // Asks for the content and does not wait. Does nothing where nobody can be asked.
    virtual void startDownloading(const std::filesystem::path &file) const = 0;

    // The other texts of a day file that are not merged yet, in the order of their names.
    virtual std::vector<std::filesystem::path>
    unresolvedConflictVersions(const std::filesystem::path &file) const = 0;

    // The version is in the day file now. It is never deleted: it moves out of the vault. False when it could
    // not.
    virtual bool markResolved(const std::filesystem::path &version) const = 0;
};

} // namespace diary

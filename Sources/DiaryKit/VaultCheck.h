// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace diary {

// What a careful owner of a vault wants to know about a file.
struct VaultFinding {
    enum class Kind {
        Placeholder,     // the content is not on this machine
        ConflictCopy,    // a sync tool's copy that is not merged yet
        Lookalike,       // named like a day, but nothing the diary reads
        Unreadable,      // `detail`: the system's own error
        InvalidUtf8,     // shown with replacement characters
        CarriageReturns, // lines end with CR LF, so that no year is found
        RepeatedYear,    // `detail`: the year; only its first section is shown
        OpenFence,       // a fence that is never closed hides what follows
        AbandonedSave    // left by a process that was killed while saving
    };

    std::string fileName;
    Kind kind = Kind::Lookalike;
    std::string detail;

    bool operator==(const VaultFinding &) const = default;
};

// Looks at every file of the vault and changes nothing. Ordered by file name. Throws
// std::filesystem::filesystem_error when the folder cannot be listed; one that does not exist has nothing
// wrong.
std::vector<VaultFinding> checkVault(const std::filesystem::path &folder);

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryUpdates/BundleSeal.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stop_token>

namespace diary {

// What an archive may hold at most; counted while it is unpacked, whatever it tells of itself.
struct ArchiveLimits {
    std::size_t entries = mostBundleEntries;
    std::uint64_t entrySize = largestBundle; // bytes, unpacked
    std::uint64_t totalSize = largestBundle;
};

// Unpacks a zip archive into an existing folder and brings it to the disk. Programs get the mode 755, other
// files 644, folders 755, whatever the user's mask.
//
// Nothing is written outside of the folder or over something in it, whatever the archive says and whoever
// puts links there meanwhile. Throws BundleError for what no bundle has: bad paths (see bundlePathNames),
// links that lead out, anything but files, folders and links, modes with special bits, names that occur
// twice, encrypted or damaged entries, more than the limits; also for a file that is no plain zip archive
// from its central directory to its end, when the token asks to stop, and with the system's error when
// something cannot be read or written. What was unpacked until then stays, and no link among it.
void unpackArchive(const std::filesystem::path &archive, const std::filesystem::path &folder,
                   const std::stop_token &stop, const ArchiveLimits &limits = {});

} // namespace diary

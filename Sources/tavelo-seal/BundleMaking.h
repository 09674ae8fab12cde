// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace diary {

class MakerKey;

// Lists what is in a bundle's folder and signs the list; a seal that is there is replaced. Throws BundleError
// for everything that would not be taken from an archive (see bundleContents), and for a version or an
// architecture that is no plain word.
void sealBundle(const std::filesystem::path &bundle, const std::string &version,
                const std::string &architecture, const MakerKey &key);

// Writes a zip archive that holds the bundle's folder. The same bundle yields the same bytes: the names are
// in order, and the time of every entry is the given one, in seconds since 1970. Throws BundleError.
void archiveBundle(const std::filesystem::path &bundle, const std::filesystem::path &archive,
                   std::int64_t time);

// The feed that announces an archive, ending in a line break. Throws BundleError when it cannot be read.
std::string feedText(const std::string &version, const std::string &url,
                     const std::filesystem::path &archive);

} // namespace diary

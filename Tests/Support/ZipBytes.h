// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace diary::testing {

// One entry of a zip archive, stored without compression, and what may be wrong with it.
struct ZipEntry {
    std::string name;
    std::string bytes;
    unsigned mode = 0100644; // type and permissions as stat has them
    unsigned flags = 0;
    std::optional<std::string> nameBeforeContent =
        {};                                     // where it differs from the one in the table of contents
    std::optional<std::uint32_t> checksum = {}; // where it is wrong
};

// A zip archive written byte by byte, so that it can say what no program would write.
std::string zipBytes(const std::vector<ZipEntry> &entries);

} // namespace diary::testing

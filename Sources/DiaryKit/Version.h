// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace diary {

// Comparison of dotted version strings such as 1.10.0-beta.
class Version {
public:
    Version() = delete;

    // The number at the start of each piece between dots, 0 for a piece that begins with no digit. Empty
    // pieces do not count. Numbers beyond 64 bits stand as the largest one.
    static std::vector<std::int64_t> components(std::string_view version);

    // Component by component, missing ones counting as 0; 1.2 and 1.2.0 are equal, so neither is newer.
    static bool isNewer(std::string_view version, std::string_view than);
};

} // namespace diary

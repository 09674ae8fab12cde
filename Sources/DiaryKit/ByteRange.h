// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace diary {

// Part of a text, in bytes.
struct ByteRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    std::string_view in(std::string_view text) const { return text.substr(begin, end - begin); }
    bool operator==(const ByteRange &) const = default;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryKit/Version.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace diary {

namespace {

std::int64_t leadingNumber(std::string_view piece) {
    // from_chars would accept a minus sign, which is no digit here.
    if (piece.front() < '0' || piece.front() > '9')
        return 0;
    std::int64_t number = 0;
    const auto result = std::from_chars(piece.data(), piece.data() + piece.size(), number);
    return result.ec == std::errc::result_out_of_range ? std::numeric_limits<std::int64_t>::max() : number;
}

} // namespace

std::vector<std::int64_t> Version::components(std::string_view version) {
    std::vector<std::int64_t> numbers;
    while (!version.empty()) {
        const auto length = std::min(version.find('.'), version.size());
        if (length > 0)
            numbers.push_back(leadingNumber(version.substr(0, length)));
        version.remove_prefix(std::min(length + 1, version.size()));
    }
    return numbers;
}

bool Version::isNewer(std::string_view version, std::string_view than) {
    auto mine = components(version);
    auto theirs = components(than);
    const auto length = std::max(mine.size(), theirs.size());
    mine.resize(length);
    theirs.resize(length);
    return mine > theirs;
}

} // namespace diary

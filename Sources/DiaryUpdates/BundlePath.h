// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Which names may occur in a bundle and in its archive.
namespace diary {

// The names along a relative path, in order. Throws BundleError for everything that could lead elsewhere or
// confuse: an empty or absolute path, empty, "." and ".." names, backslashes, control characters, more than
// 255 bytes in a name, 1024 in all, or 32 names.
std::vector<std::string> bundlePathNames(std::string_view path);

// Whether a symbolic link at a path, which is a good one as above, leads to something in the same folder. Its
// target may climb at its beginning only, through folders that are no links themselves, and not above the
// top: so no chain of such links leads out.
bool linkStaysInside(std::string_view path, std::string_view target);

// A text that may come from a stranger, cut and with odd characters replaced, for a message.
std::string readable(std::string_view text);

} // namespace diary

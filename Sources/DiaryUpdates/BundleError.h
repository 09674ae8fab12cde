// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>
#include <system_error>

namespace diary {

// Why a bundle, its archive or its signature is not taken. The message is one clause for a log, without a
// full stop.
class BundleError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    // The system's own error, an errno, about what the path names.
    BundleError(const std::string &path, int error)
        : std::runtime_error(path + ": " + std::system_category().message(error)) {}
};

} // namespace diary

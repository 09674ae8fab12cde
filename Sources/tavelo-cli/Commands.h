// SPDX-License-Identifier: MIT
#pragma once

#include "Arguments.h"

namespace diary::cli {

// Carries out the command. False when it did what it was asked for and the answer is bad news, which it has
// told: something to check was found. Throws UsageError, std::filesystem::filesystem_error and
// std::system_error.
bool run(const Arguments &arguments);

} // namespace diary::cli

// SPDX-License-Identifier: MIT
#pragma once

#include "Arguments.h"

#include <filesystem>

// The commands that look at the whole vault rather than at one day. They throw as run() does.
namespace diary::cli {

// The folder that the call or the settings name.
std::filesystem::path vaultOf(const Arguments &arguments);

void search(const Arguments &arguments);
void stats(const Arguments &arguments);
void random(const Arguments &arguments);

// False when anything was found, or left unmerged.
bool check(const Arguments &arguments);
bool resolve(const Arguments &arguments);

} // namespace diary::cli

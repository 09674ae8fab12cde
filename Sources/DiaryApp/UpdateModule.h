// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateChecker.h>

#include <filesystem>

// The part of the program that speaks to the network and unpacks archives. It is a file of its own, loaded
// when it is first used, since what it is linked with would make every start slower. Main thread only.
namespace diary::UpdateModule {

// "lib/tavelo/modules/tavelo-updates.so" beside the program's folder.
std::filesystem::path file();

// What the module makes; none when it cannot be loaded or belongs to another version of the program. Nothing
// is loaded before the first call of one of the two, and then it stays until the process ends.
UpdateChecker::Parts parts(const std::filesystem::path &module = file());

} // namespace diary::UpdateModule

// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

// Texts that could not be saved when the program ended, each in a file of its own outside the vault. They
// stay until the user removes them. Main thread only.
namespace diary::RescuedTexts {

// Made when there is something to be put into it.
std::filesystem::path folder();

// Whether there is one that the user has not been told of.
bool haveNews();
// Best effort: should it fail, the user is told once more.
void markAsTold();

} // namespace diary::RescuedTexts

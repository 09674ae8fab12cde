// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// Input and output of a program that others call: whole, and with every failure told.
namespace diary::cli {

// To be called first. A descriptor that the caller closed would be given to the next file opened, and output
// would land in it; afterwards using such a stream fails. Writing to a closed pipe and beyond a file size
// limit become errors like others.
void secureStandardStreams();

// Throw std::system_error with the system's own error, and std::filesystem::filesystem_error for a path.
std::string readStandardInput();
std::string readInput(const std::filesystem::path &path); // pipes too
void writeStandardOutput(std::string_view bytes);

// One line after the program's name, control characters in it replaced. Failure is no news here.
void reportError(std::string_view message);

} // namespace diary::cli

// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace diary::testing {

struct ProgramCall {
    enum class Stream { Open, Closed };
    enum class Output { Captured, ClosedPipe, Closed, File };

    std::filesystem::path program;
    std::vector<std::string> arguments;
    // All that the program sees, besides time zone, locale, search path and the sanitizers' options.
    std::map<std::string, std::string> environment;
    std::string input;
    Stream inputStream = Stream::Open;
    Output output = Output::Captured;
    std::filesystem::path outputFile = {}; // for Output::File; must exist
};

struct ProgramResult {
    int exitCode = -1; // 128 and the signal's number for a program that was killed
    std::string output;
    std::string errors;
};

// Runs a program to its end, at most a minute, without a shell. For the superuser too it obeys the
// permissions of files. Throws std::system_error when it cannot be started.
ProgramResult runProgram(const ProgramCall &call);

// The path of a program of this project that the test asked the build for; throws when the variable is not
// set.
std::filesystem::path builtProgram(const char *environmentVariable);

} // namespace diary::testing

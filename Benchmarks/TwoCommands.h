// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

namespace diary::benchmarks {

// Two programs to be compared, from a command line that ends in PROGRAM [ARGUMENT...] -- PROGRAM
// [ARGUMENT...]
struct TwoCommands {
    // The first program stands at the index. Ends the process with the usage when there are not two.
    TwoCommands(int argc, char *argv[], int index, const char *usage) {
        const std::vector<char *> arguments(argv, argv + argc);
        const auto separator = std::find_if(arguments.begin(), arguments.end(), [](const char *argument) {
            return std::string_view(argument) == "--";
        });
        if (separator - arguments.begin() <= index || arguments.end() - separator < 2) {
            std::fprintf(stderr, "usage: %s PROGRAM [ARGUMENT...] -- PROGRAM [ARGUMENT...]\n", usage);
            std::exit(2);
        }
        first.assign(arguments.begin() + index, separator);
        second.assign(separator + 1, arguments.end());
        first.push_back(nullptr);
        second.push_back(nullptr);
    }

    std::vector<char *> first; // as for execv()
    std::vector<char *> second;
};

// Its output goes nowhere. Ends this process when it cannot be started.
inline pid_t start(const std::vector<char *> &command) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = posix_spawnp(&child, command[0], &actions, nullptr, command.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        std::fprintf(stderr, "cannot run %s\n", command[0]);
        std::exit(1);
    }
    return child;
}

} // namespace diary::benchmarks

// SPDX-License-Identifier: MIT
//
// Runs two programs by turns and prints how long the first takes in units of the second:
//   compare-processes NAME AIM ROUNDS PROGRAM [ARGUMENT...] -- PROGRAM [ARGUMENT...]
// The fastest of the rounds counts, since everything else is the machine's other work. Output goes nowhere.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

namespace {

extern "C" char **environ;

double millisecondsOf(const std::vector<char *> &command) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int error = posix_spawnp(&child, command[0], &actions, nullptr, command.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        std::fprintf(stderr, "compare-processes: cannot run %s\n", command[0]);
        std::exit(1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    // 1 says that nothing was found.
    if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) {
        std::fprintf(stderr, "compare-processes: %s failed\n", command[0]);
        std::exit(1);
    }
    return elapsed.count();
}

} // namespace

int main(int argc, char *argv[]) {
    const std::vector<char *> arguments(argv, argv + argc);
    const auto separator = std::find_if(arguments.begin(), arguments.end(), [](const char *argument) {
        return std::string_view(argument) == "--";
    });
    if (argc < 7 || separator == arguments.end() || separator + 1 == arguments.end()) {
        std::fprintf(stderr,
                     "usage: compare-processes NAME AIM ROUNDS PROGRAM [ARGUMENT...] -- PROGRAM [...]\n");
        return 2;
    }
    std::vector<char *> first(arguments.begin() + 4, separator);
    std::vector<char *> second(separator + 1, arguments.end());
    first.push_back(nullptr);
    second.push_back(nullptr);

    double fastestFirst = std::numeric_limits<double>::max();
    double fastestSecond = std::numeric_limits<double>::max();
    for (int round = 0; round < std::atoi(argv[3]); ++round) {
        fastestFirst = std::min(fastestFirst, millisecondsOf(first));
        fastestSecond = std::min(fastestSecond, millisecondsOf(second));
    }
    std::printf("%-52s %8.2f %8s   (%.1f ms / %.1f ms)\n", argv[1], fastestFirst / fastestSecond, argv[2],
                fastestFirst, fastestSecond);
    return 0;
}

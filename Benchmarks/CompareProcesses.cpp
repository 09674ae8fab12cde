// SPDX-License-Identifier: MIT
//
// Runs two programs by turns and prints how long the first takes in units of the second:
//   compare-processes NAME AIM ROUNDS PROGRAM [ARGUMENT...] -- PROGRAM [ARGUMENT...]
// The fastest of the rounds counts, since everything else is the machine's other work. Output goes nowhere.

#include "TwoCommands.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

#include <sys/wait.h>

namespace {

double millisecondsOf(const std::vector<char *> &command) {
    const auto start = std::chrono::steady_clock::now();
    const auto child = diary::benchmarks::start(command);
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
    const diary::benchmarks::TwoCommands commands(argc, argv, 4, "compare-processes NAME AIM ROUNDS");
    double fastestFirst = std::numeric_limits<double>::max();
    double fastestSecond = std::numeric_limits<double>::max();
    for (int round = 0; round < std::atoi(argv[3]); ++round) {
        fastestFirst = std::min(fastestFirst, millisecondsOf(commands.first));
        fastestSecond = std::min(fastestSecond, millisecondsOf(commands.second));
    }
    std::printf("%-52s %8.2f %8s   (%.1f ms / %.1f ms)\n", argv[1], fastestFirst / fastestSecond, argv[2],
                fastestFirst, fastestSecond);
    return 0;
}

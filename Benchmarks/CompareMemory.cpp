// SPDX-License-Identifier: MIT
//
// Prints how much memory one running program takes in units of another:
//   compare-memory NAME AIM SECONDS PROGRAM [ARGUMENT...] -- PROGRAM [ARGUMENT...]
// Each is looked at so long after its start and then ended. Counted is its proportional set: what it has for
// itself, and its share of what several programs have together.

#include "TwoCommands.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <sys/wait.h>

namespace {

double megabytesOf(const std::vector<char *> &command, std::chrono::seconds age) {
    const auto child = diary::benchmarks::start(command);
    std::this_thread::sleep_for(age);
    double kilobytes = 0;
    std::ifstream lines("/proc/" + std::to_string(child) + "/smaps_rollup");
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("Pss:"))
            kilobytes = std::atof(line.c_str() + 4);
    }
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
    if (kilobytes == 0) {
        std::fprintf(stderr, "compare-memory: %s did not last\n", command[0]);
        std::exit(1);
    }
    return kilobytes / 1024;
}

} // namespace

int main(int argc, char *argv[]) {
    const diary::benchmarks::TwoCommands commands(argc, argv, 4, "compare-memory NAME AIM SECONDS");
    const std::chrono::seconds age(std::atoi(argv[3]));
    const double first = megabytesOf(commands.first, age);
    const double second = megabytesOf(commands.second, age);
    std::printf("%-52s %8.2f %8s   (%.1f MB / %.1f MB)\n", argv[1], first / second, argv[2], first, second);
    return 0;
}

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DurableFile.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace diary::testing {

// A program that runs beside the test and never outlives it. Its environment is the test's own with the given
// changes; its input is empty.
class ChildProcess {
public:
    // The first word is the program, looked for in PATH. Throws std::system_error when it cannot be started.
    explicit ChildProcess(std::vector<std::string> words,
                          const std::map<std::string, std::string> &environment = {});
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;
    // Kills it when it still runs.
    ~ChildProcess();

    void sendSignal(int number) const;

    // Whether the program has put a handler of its own on the signal.
    bool handles(int signalNumber) const;

    bool isRunning();

    // The exit code, or 128 and the signal's number; none when the program still runs at the end of the time.
    std::optional<int> waitForExit(std::chrono::milliseconds limit = std::chrono::seconds(30));

    // Standard output and standard error so far.
    std::string output() const;
    std::string errors() const;

private:
    pid_t m_pid = -1;
    std::optional<int> m_exitCode;
    FileDescriptor m_output;
    FileDescriptor m_errors;
};

} // namespace diary::testing

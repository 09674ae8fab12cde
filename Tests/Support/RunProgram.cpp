// SPDX-License-Identifier: MIT
#include "Support/RunProgram.h"

#include <DiaryKit/DurableFile.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace diary::testing {

namespace {

constexpr unsigned timeLimitInSeconds = 60;
constexpr int notStarted = 127;
constexpr std::array inheritedVariables = {"TZ",           "LC_ALL",        "PATH",        "ASAN_OPTIONS",
                                           "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"};

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::system_category(), what);
}

// Memory, so that neither side waits for the other, however much there is.
FileDescriptor memoryFile(std::string_view content) {
    FileDescriptor file(::memfd_create("stream", MFD_CLOEXEC));
    if (!file || ::write(file.get(), content.data(), content.size()) != std::ssize(content) ||
        ::lseek(file.get(), 0, SEEK_SET) < 0)
        fail("memory file");
    return file;
}

std::string contentOf(const FileDescriptor &file) {
    std::error_code error;
    return readWholeFile(file.get(), error).value_or("");
}

FileDescriptor outputFor(const ProgramCall &call) {
    if (call.output == ProgramCall::Output::File) {
        FileDescriptor file(::open(call.outputFile.c_str(), O_WRONLY | O_CLOEXEC));
        if (!file)
            fail("output file");
        return file;
    }
    if (call.output == ProgramCall::Output::ClosedPipe) {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) < 0)
            fail("pipe");
        ::close(ends[0]);
        return FileDescriptor(ends[1]);
    }
    return memoryFile({});
}

std::vector<char *> pointersTo(std::vector<std::string> &strings) {
    std::vector<char *> pointers;
    pointers.reserve(strings.size() + 1);
    for (auto &string : strings)
        pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentOf(const ProgramCall &call) {
    auto variables = call.environment;
    for (const char *name : inheritedVariables) {
        if (const char *value = std::getenv(name))
            variables.try_emplace(name, value);
    }
    std::vector<std::string> lines;
    lines.reserve(variables.size());
    for (const auto &[name, value] : variables)
        lines.emplace_back(name).append("=").append(value);
    return lines;
}

} // namespace

ProgramResult runProgram(const ProgramCall &call) {
    std::vector<std::string> words{call.program.string()};
    words.insert(words.end(), call.arguments.begin(), call.arguments.end());
    auto environment = environmentOf(call);
    const auto wordPointers = pointersTo(words);
    const auto environmentPointers = pointersTo(environment);
    const auto input = memoryFile(call.input);
    const auto output = outputFor(call);
    const auto errors = memoryFile({});

    const pid_t child = ::fork();
    if (child < 0)
        fail("fork");
    if (child == 0) {
        ::alarm(timeLimitInSeconds);
        // Fails for everyone else, who has no such power anyway.
        ::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
        ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0);
        ::dup2(input.get(), STDIN_FILENO);
        ::dup2(output.get(), STDOUT_FILENO);
        ::dup2(errors.get(), STDERR_FILENO);
        if (call.inputStream == ProgramCall::Stream::Closed)
            ::close(STDIN_FILENO);
        if (call.output == ProgramCall::Output::Closed)
            ::close(STDOUT_FILENO);
        do {
            ::execve(wordPointers.front(), wordPointers.data(), environmentPointers.data());
            // The file was just written while another thread forked, whose child holds it until it executes.
        } while (errno == ETXTBSY && ::usleep(1000) == 0);
        ::_exit(notStarted);
    }

    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            fail("waitpid");
    }
    const int exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    if (exitCode == notStarted)
        throw std::system_error(ENOEXEC, std::system_category(), call.program.string());
    const bool captured = call.output == ProgramCall::Output::Captured;
    return {exitCode, captured ? contentOf(output) : std::string(), contentOf(errors)};
}

std::filesystem::path builtProgram(const char *environmentVariable) {
    if (const char *path = std::getenv(environmentVariable))
        return path;
    throw std::runtime_error(std::string(environmentVariable) + " is not set: run the tests with ctest");
}

} // namespace diary::testing

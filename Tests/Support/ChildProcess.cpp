// SPDX-License-Identifier: MIT
#include "Support/ChildProcess.h"

#include "Support/WaitUntil.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace diary::testing {

namespace {

constexpr int notStarted = 127;

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::system_category(), what);
}

FileDescriptor memoryFile() {
    FileDescriptor file(::memfd_create("stream", MFD_CLOEXEC));
    if (!file)
        fail("memory file");
    return file;
}

// The position of the descriptor is the program's.
std::string contentOf(const FileDescriptor &file) {
    std::string content;
    std::array<char, 4096> block{};
    ssize_t size = 0;
    while ((size = ::pread(file.get(), block.data(), block.size(), static_cast<off_t>(content.size()))) > 0)
        content.append(block.data(), static_cast<std::size_t>(size));
    return content;
}

std::vector<std::string> environmentWith(std::map<std::string, std::string> variables) {
    for (char **line = environ; *line; ++line) {
        const std::string entry = *line;
        const auto equals = entry.find('=');
        variables.try_emplace(entry.substr(0, equals), entry.substr(equals + 1));
    }
    std::vector<std::string> lines;
    for (const auto &[name, value] : variables)
        lines.push_back(name + "=" + value);
    return lines;
}

std::vector<char *> pointersTo(std::vector<std::string> &strings) {
    std::vector<char *> pointers;
    for (auto &string : strings)
        pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> words,
                           const std::map<std::string, std::string> &environment)
    : m_output(memoryFile()), m_errors(memoryFile()) {
    auto lines = environmentWith(environment);
    const auto wordPointers = pointersTo(words);
    const auto linePointers = pointersTo(lines);
    const FileDescriptor input(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const pid_t parent = ::getpid();

    m_pid = ::fork();
    if (m_pid < 0)
        fail("fork");
    if (m_pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(notStarted);
        ::dup2(input.get(), STDIN_FILENO);
        ::dup2(m_output.get(), STDOUT_FILENO);
        ::dup2(m_errors.get(), STDERR_FILENO);
        ::execvpe(wordPointers.front(), wordPointers.data(), linePointers.data());
        ::_exit(notStarted);
    }
}

ChildProcess::~ChildProcess() {
    if (!isRunning())
        return;
    ::kill(m_pid, SIGKILL);
    int status = 0;
    while (::waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
    }
}

void ChildProcess::sendSignal(int number) const {
    if (m_exitCode || ::kill(m_pid, number) < 0)
        fail("kill");
}

bool ChildProcess::handles(int signalNumber) const {
    std::ifstream status("/proc/" + std::to_string(m_pid) + "/status");
    for (std::string word; status >> word;) {
        if (word != "SigCgt:")
            continue;
        std::uint64_t caught = 0;
        status >> std::hex >> caught;
        return (caught >> (signalNumber - 1) & 1U) != 0;
    }
    return false;
}

bool ChildProcess::isRunning() {
    if (m_exitCode)
        return false;
    int status = 0;
    if (::waitpid(m_pid, &status, WNOHANG) != m_pid)
        return true;
    m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return false;
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds limit) {
    waitUntil([this] { return !isRunning(); }, limit);
    return m_exitCode;
}

std::string ChildProcess::output() const {
    return contentOf(m_output);
}

std::string ChildProcess::errors() const {
    return contentOf(m_errors);
}

} // namespace diary::testing

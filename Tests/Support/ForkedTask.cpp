// SPDX-License-Identifier: MIT
#include "Support/ForkedTask.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <exception>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace diary::testing {

namespace {

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::system_category(), what);
}

void waitFor(pid_t child) {
    while (::waitpid(child, nullptr, 0) < 0) {
        if (errno != EINTR)
            fail("waitpid");
    }
}

std::string resultOf(const std::function<std::string()> &task) {
    try {
        return task();
    } catch (const std::exception &exception) {
        return std::string("exception: ") + exception.what();
    }
}

} // namespace

std::string reportOfFork(const std::function<std::string()> &task) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) < 0)
        fail("pipe");
    const pid_t child = ::fork();
    if (child < 0)
        fail("fork");
    if (child == 0) {
        const auto report = resultOf(task);
        const bool written = ::write(ends[1], report.data(), report.size()) == std::ssize(report);
        ::_exit(written ? 0 : 1);
    }
    ::close(ends[1]);
    std::string report;
    std::array<char, 4096> buffer{};
    for (;;) {
        const auto count = ::read(ends[0], buffer.data(), buffer.size());
        if (count <= 0)
            break;
        report.append(buffer.data(), static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    waitFor(child);
    return report;
}

std::string ownMounts() {
    const auto user = ::getuid();
    if (::unshare(CLONE_NEWNS) < 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) < 0)
            return std::system_category().message(errno);
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1\n";
    }
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) < 0)
        return std::system_category().message(errno);
    return {};
}

pid_t endedProcess() {
    const pid_t child = ::fork();
    if (child < 0)
        fail("fork");
    if (child == 0)
        ::_exit(0);
    waitFor(child);
    return child;
}

std::string temporaryName(const std::string &fileName, pid_t process, char attempt) {
    constexpr std::string_view digits = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::string tag(5, '0');
    auto rest = static_cast<std::size_t>(process);
    for (auto digit = tag.rbegin(); digit != tag.rend(); ++digit, rest /= digits.size())
        *digit = digits[rest % digits.size()];
    return ".~" + fileName + "." + tag + attempt + "~";
}

} // namespace diary::testing

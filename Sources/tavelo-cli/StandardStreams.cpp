// SPDX-License-Identifier: MIT
#include "StandardStreams.h"

#include <DiaryKit/DurableFile.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace diary::cli {

namespace {

namespace fs = std::filesystem;

// Whether a call that failed can be tried again; waits until then where the stream is a non-blocking one.
bool canRetry(int descriptor, short event) {
    if (errno == EINTR)
        return true;
    if (errno != EAGAIN)
        return false;
    pollfd waiting{.fd = descriptor, .events = event, .revents = 0};
    return ::poll(&waiting, 1, -1) >= 0 || errno == EINTR;
}

std::string readToEnd(int descriptor, std::error_code &error) {
    constexpr std::size_t step = 65'536;
    std::string bytes;
    for (;;) {
        const auto filled = bytes.size();
        bytes.resize(filled + step);
        const auto count = ::read(descriptor, bytes.data() + filled, step);
        bytes.resize(filled + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count == 0)
            return bytes;
        if (count < 0 && !canRetry(descriptor, POLLIN)) {
            error.assign(errno, std::system_category());
            return bytes;
        }
    }
}

} // namespace

void secureStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is taken, which is this one. Open the other way round, so that use fails.
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

std::string readStandardInput() {
    std::error_code error;
    auto bytes = readToEnd(STDIN_FILENO, error);
    if (error)
        throw std::system_error(error, "standard input");
    return bytes;
}

std::string readInput(const fs::path &path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::error_code error;
    std::string bytes;
    if (file)
        bytes = readToEnd(file.get(), error);
    else
        error.assign(errno, std::system_category());
    if (error)
        throw fs::filesystem_error("read", path, error);
    return bytes;
}

void writeStandardOutput(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (!canRetry(STDOUT_FILENO, POLLOUT))
            throw std::system_error(errno, std::system_category(), "standard output");
    }
}

void reportError(std::string_view message) {
    std::string line = "tavelo-cli: ";
    line.append(message);
    const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; };
    std::replace_if(line.begin(), line.end(), isControl, '?');
    line += '\n';
    std::string_view rest = line;
    while (!rest.empty()) {
        const auto count = ::write(STDERR_FILENO, rest.data(), rest.size());
        if (count >= 0)
            rest.remove_prefix(static_cast<std::size_t>(count));
        else if (!canRetry(STDERR_FILENO, POLLOUT))
            return;
    }
}

} // namespace diary::cli

// SPDX-License-Identifier: MIT
#include "Support/LoopbackHttp.h"

#include <DiaryKit/DurableFile.h>

#include <array>
#include <cerrno>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace diary::testing {

namespace {

constexpr timeval patience{.tv_sec = 20, .tv_usec = 0};

FileDescriptor makeSocket() {
    FileDescriptor made(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!made)
        throw std::system_error(errno, std::system_category(), "socket");
    return made;
}

sockaddr_in loopbackAddress(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

std::optional<std::string> bodyOf(std::string_view answer) {
    const auto status = answer.find(' ');
    const auto headersEnd = answer.find("\r\n\r\n");
    if (status == std::string_view::npos || headersEnd == std::string_view::npos ||
        !answer.substr(status + 1).starts_with('2'))
        return std::nullopt;
    return std::string(answer.substr(headersEnd + 4));
}

} // namespace

std::uint16_t freeLoopbackPort() {
    const auto made = makeSocket();
    auto address = loopbackAddress(0);
    socklen_t size = sizeof address;
    if (::bind(made.get(), reinterpret_cast<const sockaddr *>(&address), size) < 0 ||
        ::getsockname(made.get(), reinterpret_cast<sockaddr *>(&address), &size) < 0)
        throw std::system_error(errno, std::system_category(), "bind");
    return ntohs(address.sin_port);
}

std::optional<std::string> askLoopback(std::uint16_t port, const LoopbackRequest &request) {
    const auto made = makeSocket();
    ::setsockopt(made.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    const auto address = loopbackAddress(port);
    if (::connect(made.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) < 0)
        return std::nullopt;

    // The older protocol, so that the end of the connection is the end of the answer.
    std::string question(request.method);
    question.append(" ").append(request.path).append(" HTTP/1.0\r\nHost: 127.0.0.1\r\nContent-Length: ");
    question.append(std::to_string(request.body.size())).append("\r\n");
    for (const auto &[name, value] : request.headers)
        question.append(name).append(": ").append(value).append("\r\n");
    question.append("\r\n").append(request.body);
    if (::send(made.get(), question.data(), question.size(), MSG_NOSIGNAL) !=
        static_cast<ssize_t>(question.size()))
        return std::nullopt;

    std::string answer;
    std::array<char, 4096> block{};
    ssize_t size = 0;
    while ((size = ::recv(made.get(), block.data(), block.size(), 0)) > 0)
        answer.append(block.data(), static_cast<std::size_t>(size));
    return size == 0 ? bodyOf(answer) : std::nullopt;
}

} // namespace diary::testing

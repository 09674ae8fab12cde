// SPDX-License-Identifier: MIT
#include "Support/LoopbackServer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace diary::testing {

namespace {

// The first byte of a client that expects an encrypted connection.
constexpr char startOfEncryption = '\x16';

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::system_category(), what);
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

// The request up to the end of its headers, or the beginning of what is no HTTP; none when the client went
// before.
std::optional<std::string> receiveHead(int socket) {
    std::string received;
    std::array<char, 4096> buffer{};
    while (received.find("\r\n\r\n") == std::string::npos && !received.starts_with(startOfEncryption)) {
        const auto count = ::recv(socket, buffer.data(), buffer.size(), 0);
        if (count <= 0)
            return std::nullopt;
        received.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return received;
}

void waitUntilClosed(int socket) {
    std::array<char, 4096> buffer{};
    while (::recv(socket, buffer.data(), buffer.size(), 0) > 0) {
    }
}

// True when the client is still there after the pause.
bool pauseFor(int socket, std::chrono::milliseconds pause) {
    pollfd end{.fd = socket, .events = POLLRDHUP, .revents = 0};
    return ::poll(&end, 1, static_cast<int>(pause.count())) == 0;
}

LoopbackServer::Request parse(const std::string &head) {
    LoopbackServer::Request request;
    const auto targetStart = head.find(' ') + 1;
    request.target = head.substr(targetStart, head.find(' ', targetStart) - targetStart);
    for (auto line = head.find("\r\n"); line != std::string::npos; line = head.find("\r\n", line + 2)) {
        const auto end = head.find("\r\n", line + 2);
        const auto colon = head.find(": ", line + 2);
        if (end == std::string::npos || colon > end)
            continue;
        auto name = head.substr(line + 2, colon - line - 2);
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
        request.headers[name] = head.substr(colon + 2, end - colon - 2);
    }
    return request;
}

} // namespace

LoopbackServer::Reply LoopbackServer::answer(const std::string &status, const std::string &headers,
                                             const std::string &body) {
    return {.bytes = "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + headers + "\r\n" + body};
}

LoopbackServer::Reply LoopbackServer::ok(const std::string &body) {
    return answer("200 OK", "Content-Length: " + std::to_string(body.size()) + "\r\n", body);
}

LoopbackServer::Reply LoopbackServer::redirect(const std::string &location, const std::string &status) {
    return answer(status, "Location: " + location + "\r\nContent-Length: 0\r\n");
}

LoopbackServer::LoopbackServer(std::function<Reply(const Request &)> handler)
    : m_handler(std::move(handler)), m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(m_socket.get(), reinterpret_cast<const sockaddr *>(&address), size) < 0 ||
        ::listen(m_socket.get(), SOMAXCONN) < 0 ||
        ::getsockname(m_socket.get(), reinterpret_cast<sockaddr *>(&address), &size) < 0)
        fail("listen");
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { accept(); });
}

LoopbackServer::~LoopbackServer() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
        for (const auto &connection : m_connections)
            ::shutdown(connection.socket.get(), SHUT_RDWR);
    }
    ::shutdown(m_socket.get(), SHUT_RDWR);
    m_thread.join();
    for (auto &connection : m_connections)
        connection.thread.join();
}

std::string LoopbackServer::address(const std::string &path) const {
    return "http://127.0.0.1:" + std::to_string(m_port) + path;
}

std::vector<LoopbackServer::Request> LoopbackServer::requests() const {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

void LoopbackServer::accept() {
    for (;;) {
        FileDescriptor socket(::accept4(m_socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
        const std::lock_guard lock(m_mutex);
        if (!socket || m_isEnding)
            return;
        const int number = socket.get();
        m_connections.push_back(
            {.socket = std::move(socket), .thread = std::thread([this, number] { serve(number); })});
    }
}

void LoopbackServer::serve(int socket) {
    if (const auto head = receiveHead(socket)) {
        const auto request = parse(*head);
        {
            const std::lock_guard lock(m_mutex);
            m_requests.push_back(request);
        }
        const auto reply = m_handler(request);
        bool isThere = sendAll(socket, reply.bytes);
        while (isThere && reply.then == Reply::Then::Repeat)
            isThere = pauseFor(socket, reply.pause) && sendAll(socket, reply.piece);
        if (reply.then == Reply::Then::Close)
            ::shutdown(socket, SHUT_WR);
        // Closed at once, what the client has not read yet could be lost.
        waitUntilClosed(socket);
    }
    ::shutdown(socket, SHUT_RDWR);
}

} // namespace diary::testing

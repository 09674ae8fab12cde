// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DurableFile.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace diary::testing {

// A web server on the loopback that does as it is told, however wrong that is. Each connection has a thread
// of its own and carries one answer.
class LoopbackServer {
public:
    struct Request {
        std::string target;                         // path and query, as sent
        std::map<std::string, std::string> headers; // by lower-case names
    };

    struct Reply {
        enum class Then {
            Close,
            Stall,  // send no more and wait for the client to go
            Repeat, // send the last piece again and again
        };
        std::string bytes; // as they are sent, status line and headers first
        Then then = Then::Close;
        std::string piece = {};             // for Repeat
        std::chrono::milliseconds pause{0}; // before each piece
    };

    // A whole answer with the length of its body announced.
    static Reply ok(const std::string &body);
    // The headers are whole lines.
    static Reply answer(const std::string &status, const std::string &headers, const std::string &body = {});
    static Reply redirect(const std::string &location, const std::string &status = "302 Found");

    // The handler is called on the threads of the connections.
    explicit LoopbackServer(std::function<Reply(const Request &)> handler);
    // Ends all connections.
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer &) = delete;
    LoopbackServer &operator=(const LoopbackServer &) = delete;

    std::uint16_t port() const { return m_port; }
    // "http://127.0.0.1:PORT" and the path.
    std::string address(const std::string &path) const;

    std::vector<Request> requests() const;

private:
    struct Connection {
        FileDescriptor socket;
        std::thread thread;
    };

    void accept();
    void serve(int socket);

    std::function<Reply(const Request &)> m_handler;
    FileDescriptor m_socket;
    std::uint16_t m_port = 0;
    mutable std::mutex m_mutex;
    bool m_isEnding = false;
    std::vector<Request> m_requests;
    std::list<Connection> m_connections;
    std::thread m_thread;
};

} // namespace diary::testing

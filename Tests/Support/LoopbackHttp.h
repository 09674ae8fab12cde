// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace diary::testing {

// A port of this machine that nobody listened at a moment ago.
std::uint16_t freeLoopbackPort();

struct LoopbackRequest {
    std::string_view method = "GET";
    std::string path;
    std::map<std::string, std::string> headers = {};
    std::string body = {};
};

// Asks a program that serves HTTP on this machine. Returns the body of a successful answer; none when nobody
// answers in time or the answer is an error.
std::optional<std::string> askLoopback(std::uint16_t port, const LoopbackRequest &request);

} // namespace diary::testing

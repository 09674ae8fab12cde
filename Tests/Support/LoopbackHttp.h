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

// Asks a program that serves HTTP on this machine: "GET" or "POST" with an empty body. Returns the body of a
// successful answer; none when nobody answers in time or the answer is an error.
std::optional<std::string> askLoopback(std::uint16_t port, std::string_view method, std::string_view path,
                                       const std::map<std::string, std::string> &headers = {});

} // namespace diary::testing

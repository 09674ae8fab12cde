// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <thread>

namespace diary::testing {

// Looks again and again until the condition holds; false when it never does. For what other processes do: the
// event loop of this one stands still meanwhile.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(30)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace diary::testing

// SPDX-License-Identifier: MIT
#pragma once

#include "Support/ChildProcess.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace diary::testing {

// A session bus of its own with the accessibility services on it, and a screen reader's view of the programs
// that speak to it.
class AccessibilityBus {
public:
    // Whether the services and the bindings that are asked through are there.
    static bool isInstalled();

    // Ready for programs afterwards; throws std::runtime_error when it does not get that far.
    explicit AccessibilityBus(const std::string &display);
    // Stops the services, and with the launcher the bus that it started.
    ~AccessibilityBus();

    // For a program that is to be seen, and for everyone who asks.
    const std::map<std::string, std::string> &environment() const { return m_environment; }

    // What a command of accessibility.py prints about the program; none when there is nothing to tell.
    std::optional<std::string> ask(const std::vector<std::string> &command) const;

    std::optional<std::string> tree() const { return ask({"tree"}); }
    std::optional<std::string> text(const std::string &role, const std::string &name) const {
        return ask({"text", role, name});
    }
    bool press(const std::string &role, const std::string &name) const {
        return ask({"press", role, name}).has_value();
    }

private:
    std::map<std::string, std::string> m_environment;
    std::unique_ptr<ChildProcess> m_sessionBus;
    std::unique_ptr<ChildProcess> m_launcher;
};

} // namespace diary::testing

// SPDX-License-Identifier: MIT
#include "Support/AccessibilityBus.h"

#include "Support/WaitUntil.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>

namespace diary::testing {

namespace {

using namespace std::chrono_literals;

constexpr const char *launcher = "/usr/libexec/at-spi-bus-launcher";

} // namespace

bool AccessibilityBus::isInstalled() {
    if (!std::filesystem::exists(launcher))
        return false;
    ChildProcess bindings({"/usr/bin/python3", "-c", "import pyatspi"});
    return bindings.waitForExit() == 0;
}

AccessibilityBus::AccessibilityBus(const std::string &display) : m_environment{{"DISPLAY", display}} {
    m_sessionBus = std::make_unique<ChildProcess>(
        std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--print-address"}, m_environment);
    if (!waitUntil([this] { return m_sessionBus->output().ends_with('\n') || !m_sessionBus->isRunning(); }) ||
        !m_sessionBus->isRunning())
        throw std::runtime_error("dbus-daemon: " + m_sessionBus->errors());
    auto address = m_sessionBus->output();
    address.pop_back();
    m_environment["DBUS_SESSION_BUS_ADDRESS"] = address;
    m_environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
    // The bindings are to take the bus for what it is, whatever desktop this is.
    m_environment["NO_AT_BRIDGE"] = "1";

    m_launcher = std::make_unique<ChildProcess>(std::vector<std::string>{launcher, "--launch-immediately"},
                                                m_environment);
    const auto isReady = [this] {
        ChildProcess call({"dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                           "org.a11y.Bus.GetAddress"},
                          m_environment);
        return call.waitForExit() == 0;
    };
    if (!waitUntil(isReady))
        throw std::runtime_error("at-spi-bus-launcher: " + m_launcher->errors());
}

AccessibilityBus::~AccessibilityBus() {
    // Asked nicely: one that is killed leaves its bus behind.
    if (m_launcher->isRunning())
        m_launcher->sendSignal(SIGTERM);
    m_launcher->waitForExit(10s);
}

std::optional<std::string> AccessibilityBus::ask(const std::vector<std::string> &command) const {
    std::vector<std::string> words{"/usr/bin/python3", TAVELO_ACCESSIBILITY_SCRIPT, "tavelo"};
    words.insert(words.end(), command.begin(), command.end());
    ChildProcess program(words, m_environment);
    if (program.waitForExit() != 0)
        return std::nullopt;
    return program.output();
}

} // namespace diary::testing

// SPDX-License-Identifier: MIT
#pragma once

#include "Support/ChildProcess.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace diary::testing {

// An X server without a screen, on a number of its own, with a window manager and a keyboard.
class XServer {
public:
    // Whether Xvfb, openbox and xdotool are there.
    static bool isInstalled();

    // Ready for clients afterwards; throws std::runtime_error when it does not get that far.
    XServer();
    // Stops the window manager and the server.
    ~XServer();

    // For DISPLAY.
    const std::string &display() const { return m_display; }

    // What `xdotool` printed, without the last line break; none when it failed.
    std::optional<std::string> xdotool(const std::vector<std::string> &arguments) const;

private:
    std::string m_display;
    std::unique_ptr<ChildProcess> m_server;
    std::unique_ptr<ChildProcess> m_windowManager;
};

} // namespace diary::testing

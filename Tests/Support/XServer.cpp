// SPDX-License-Identifier: MIT
#include "Support/XServer.h"

#include "Support/WaitUntil.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace diary::testing {

namespace {

bool isInPath(const char *program) {
    const char *path = std::getenv("PATH");
    std::istringstream folders(path ? path : "");
    std::error_code error;
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (std::filesystem::exists(std::filesystem::path(folder) / program, error))
            return true;
    }
    return false;
}

} // namespace

bool XServer::isInstalled() {
    return isInPath("Xvfb") && isInPath("openbox") && isInPath("xdotool");
}

XServer::XServer() {
    // The server chooses a free number and prints it once it takes clients. It must not start over when a
    // short client such as xdotool leaves before the others have come.
    m_server = std::make_unique<ChildProcess>(std::vector<std::string>{
        "Xvfb", "-displayfd", "1", "-screen", "0", "1600x1000x24", "-nolisten", "tcp", "-noreset"});
    if (!waitUntil([this] { return m_server->output().ends_with('\n') || !m_server->isRunning(); }) ||
        !m_server->isRunning())
        throw std::runtime_error("Xvfb: " + m_server->errors());
    const auto number = m_server->output();
    m_display = ":" + number.substr(0, number.size() - 1);

    m_windowManager = std::make_unique<ChildProcess>(
        std::vector<std::string>{"openbox"}, std::map<std::string, std::string>{{"DISPLAY", m_display}});
    // Only a window manager knows of desktops.
    const auto isReady = [this] { return xdotool({"get_desktop"}) == "0"; };
    if (!waitUntil([&] { return isReady() || !m_windowManager->isRunning(); }) ||
        !m_windowManager->isRunning())
        throw std::runtime_error("openbox: " + m_windowManager->errors());
}

XServer::~XServer() {
    m_windowManager.reset();
    // Asked nicely, it removes its socket and its lock.
    if (m_server->isRunning())
        m_server->sendSignal(SIGTERM);
    m_server->waitForExit(std::chrono::seconds(10));
}

std::optional<std::string> XServer::xdotool(const std::vector<std::string> &arguments) const {
    std::vector<std::string> words{"xdotool"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    ChildProcess program(words, {{"DISPLAY", m_display}});
    if (program.waitForExit() != 0)
        return std::nullopt;
    auto output = program.output();
    if (output.ends_with('\n'))
        output.pop_back();
    return output;
}

} // namespace diary::testing

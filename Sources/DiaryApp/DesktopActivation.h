// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/LaunchRequest.h>

#include <functional>
#include <memory>

namespace diary {

// The program as the desktop knows it: under its application id, asked to show itself or to do what its menu
// entry offers. Main thread only.
class DesktopActivation {
public:
    // The name of its desktop file, its icon and, on the session bus, itself.
    static constexpr const char *applicationId = "io.github.tavelo.Tavelo";

    DesktopActivation();
    DesktopActivation(const DesktopActivation &) = delete;
    DesktopActivation &operator=(const DesktopActivation &) = delete;
    // Nothing is answered afterwards.
    ~DesktopActivation();

    // Becomes known where there is a session bus, and waits for nothing: another window of the diary may have
    // the name, which then passes on when that one ends. Without a bus nothing happens; none is started.
    void start();

    std::function<void(const LaunchRequest &)> onLaunch;

private:
    class Service;

    std::unique_ptr<Service> m_service;
};

} // namespace diary

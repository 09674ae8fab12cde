// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QEvent>

#include <algorithm>
#include <chrono>

namespace diary::benchmarks {

// Watches how long the events keep the main thread.
class WatchedApplication : public QApplication {
public:
    using QApplication::QApplication;
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::duration<double, std::milli>;

    // What the screen shows in a second sixty times.
    static constexpr Milliseconds frame{16};

    bool notify(QObject *receiver, QEvent *event) override {
        const auto start = Clock::now();
        ++m_depth;
        const bool isHandled = QApplication::notify(receiver, event);
        --m_depth;
        const auto end = Clock::now();
        if (m_depth == 0)
            longestEvent = std::max(longestEvent, Milliseconds(end - start));
        wasHandled(receiver, *event, end);
        return isHandled;
    }

    Milliseconds longestEvent{0}; // since it was set to zero

protected:
    virtual void wasHandled(QObject *, const QEvent &, Clock::time_point) {}

private:
    int m_depth = 0;
};

} // namespace diary::benchmarks

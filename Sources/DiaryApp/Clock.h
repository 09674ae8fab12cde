// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DiaryDay.h>

#include <chrono>
#include <functional>
#include <memory>

namespace diary {

// A one-shot timer on the main thread. Destroying it cancels it.
class Timer {
public:
    virtual ~Timer() = default;

    // Runs the action once after the delay; a pending run is forgotten.
    virtual void start(std::chrono::milliseconds delay) = 0;
    virtual void stop() = 0;
    virtual bool isActive() const = 0;
};

// A one-shot timer that goes by the clock on the wall: time asleep counts. Destroying it cancels it.
class Alarm {
public:
    virtual ~Alarm() = default;

    // Runs the action once when that instant has come, or earlier when the clock was set meanwhile: whoever
    // is called looks for himself what time it is. A pending run is forgotten.
    virtual void startAt(DiaryDay::Instant instant) = 0;
};

// The time of day and its passing. Main thread only; must outlive the timers it made.
class Clock {
public:
    virtual ~Clock() = default;

    virtual DiaryDay::Instant now() const = 0;
    virtual std::unique_ptr<Timer> makeTimer(std::function<void()> action) = 0;
    virtual std::unique_ptr<Alarm> makeAlarm(std::function<void()> action) = 0;

    DiaryDay today() const { return DiaryDay::containing(now()); }
};

// The system's clock, with timers on the Qt event loop.
class SystemClock : public Clock {
public:
    DiaryDay::Instant now() const override;
    std::unique_ptr<Timer> makeTimer(std::function<void()> action) override;
    std::unique_ptr<Alarm> makeAlarm(std::function<void()> action) override;
};

} // namespace diary

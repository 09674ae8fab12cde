// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace diary::testing {

// Time that stands still until it is moved.
class FakeClock : public Clock {
public:
    // Noon of the day.
    explicit FakeClock(DiaryDay day) : m_now(day.date()) {}
    FakeClock(const FakeClock &) = delete;
    FakeClock &operator=(const FakeClock &) = delete;

    DiaryDay::Instant now() const override { return m_now; }

    // A jump, as when the machine's clock is set: no timer fires, every alarm does.
    void setNow(DiaryDay::Instant now) {
        for (auto *timer : m_timers) {
            if (!timer->isAlarm)
                timer->due += now - m_now;
        }
        m_now = now;
        const auto timers = m_timers;
        for (auto *timer : timers) {
            if (timer->isAlarm && std::exchange(timer->active, false))
                timer->action();
        }
    }
    void setToday(DiaryDay day) { setNow(day.date()); }

    // Time passes: what falls due on the way fires, each timer at its own instant, the earliest first.
    void advance(std::chrono::milliseconds duration) {
        const auto end = m_now + duration;
        for (auto *timer = nextDue(end); timer; timer = nextDue(end)) {
            m_now = timer->due;
            timer->active = false;
            // The timer may be destroyed by what it does.
            const auto action = timer->action;
            action();
        }
        m_now = end;
    }

    std::unique_ptr<Timer> makeTimer(std::function<void()> action) override {
        return std::make_unique<FakeTimer>(*this, std::move(action));
    }

    std::unique_ptr<Alarm> makeAlarm(std::function<void()> action) override {
        return std::make_unique<FakeAlarm>(*this, std::move(action));
    }

private:
    class FakeTimer : public Timer {
    public:
        FakeTimer(FakeClock &clock, std::function<void()> onDue) : action(std::move(onDue)), m_clock(clock) {
            m_clock.m_timers.push_back(this);
        }
        FakeTimer(const FakeTimer &) = delete;
        FakeTimer &operator=(const FakeTimer &) = delete;
        ~FakeTimer() override { std::erase(m_clock.m_timers, this); }

        void start(std::chrono::milliseconds delay) override {
            due = m_clock.m_now + delay;
            active = true;
        }
        void stop() override { active = false; }
        bool isActive() const override { return active; }

        std::function<void()> action;
        DiaryDay::Instant due;
        bool active = false;
        bool isAlarm = false;

    private:
        FakeClock &m_clock;
    };

    class FakeAlarm : public Alarm {
    public:
        FakeAlarm(FakeClock &clock, std::function<void()> onDue) : m_timer(clock, std::move(onDue)) {
            m_timer.isAlarm = true;
        }
        void startAt(DiaryDay::Instant instant) override {
            m_timer.due = instant;
            m_timer.active = true;
        }

    private:
        FakeTimer m_timer;
    };

    FakeTimer *nextDue(DiaryDay::Instant end) const {
        FakeTimer *next = nullptr;
        for (auto *timer : m_timers) {
            if (timer->active && timer->due <= end && (!next || timer->due < next->due))
                next = timer;
        }
        return next;
    }

    DiaryDay::Instant m_now;
    std::vector<FakeTimer *> m_timers;
};

} // namespace diary::testing

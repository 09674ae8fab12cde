// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>

#include <functional>
#include <memory>

namespace diary {

// Notices midnight, also one that passed while the machine slept or that came because its clock was set. Main
// thread only; the clock must outlive it.
class DayChange {
public:
    DayChange(Clock &clock, std::function<void()> onChange);

private:
    void look();
    void waitForMidnight();

    Clock &m_clock;
    std::function<void()> m_onChange;
    DiaryDay m_today;
    std::unique_ptr<Alarm> m_alarm;
};

} // namespace diary

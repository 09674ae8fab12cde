// SPDX-License-Identifier: MIT
#include <DiaryApp/DayChange.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <utility>

namespace diary {

namespace {

using namespace std::chrono_literals;

// The first instant of the day by the local clock; where the clock skips midnight, an instant close to it.
DiaryDay::Instant startOf(const DiaryDay &day) {
    std::tm parts{};
    parts.tm_year = static_cast<int>(day.year - 1900);
    parts.tm_mon = static_cast<int>(day.month - 1);
    parts.tm_mday = static_cast<int>(day.day);
    parts.tm_isdst = -1;
    return std::chrono::system_clock::from_time_t(std::mktime(&parts));
}

} // namespace

DayChange::DayChange(Clock &clock, std::function<void()> onChange)
    : m_clock(clock),
      m_onChange(std::move(onChange)),
      m_today(clock.today()),
      m_alarm(clock.makeAlarm([this] { look(); })) {
    waitForMidnight();
}

void DayChange::look() {
    const bool changed = std::exchange(m_today, m_clock.today()) != m_today;
    waitForMidnight();
    if (changed)
        m_onChange();
}

void DayChange::waitForMidnight() {
    // Never in the past: an alarm that finds the day unchanged must not ring again at once.
    m_alarm->startAt(std::max(startOf(m_today.advanced(1)), m_clock.now() + 1s));
}

} // namespace diary

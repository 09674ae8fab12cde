// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace diary {

// A day of the calendar without its year: the key of one day file.
//
// Days stand on a fixed cycle of 366 in which 29 February always has a place. A key is not checked
// against its month's length: 02-31 is a key like any other, since such files may exist in a vault.
struct MonthDay {
    std::int64_t month = 1; // 1 to 12
    std::int64_t day = 1;   // 1 to 31

    static constexpr std::array<std::int64_t, 12> daysInCycleMonth = {31, 29, 31, 30, 31, 30,
                                                                      31, 31, 30, 31, 30, 31};
    static constexpr std::int64_t cycleLength = 366;

    // The day whose `fileName` this is, for months 1 to 12 and days 1 to 31; none for any other name.
    static std::optional<MonthDay> parse(std::string_view fileName);

    // By the Gregorian rule, for any year, before 1582 too.
    static bool isLeapYear(std::int64_t year);

    // "03-14.md" for 14 March.
    std::string fileName() const;

    // "03-14" for 14 March: the title line of the day file.
    std::string headerTitle() const;

    // Position on the cycle, from 1 (1 January) to 366. Ends the process when `month` is below 1 or the
    // sum does not fit.
    std::int64_t ordinalInCycle() const;

    // The day `by` places further on the cycle, which wraps around; negative goes back. Ends the process
    // when the sum does not fit.
    MonthDay advanced(std::int64_t by) const;

    // Number of this day within a real year, from 1. In a common year 29 February shares its number with
    // 1 March.
    std::int64_t ordinal(std::int64_t inYear) const;

    // 366 in a leap year and for 29 February, else 365.
    std::int64_t daysInYear(std::int64_t year) const;

    // 1 (Sunday) to 7 (Saturday); none for 29 February in a common year.
    std::optional<int> weekday(std::int64_t inYear) const;

    bool operator==(const MonthDay &) const = default;
    // Calendar order: by month, then by day.
    auto operator<=>(const MonthDay &) const = default;
};

// A dated day, in the Gregorian calendar and the process's local time zone.
//
// Instants are formed and taken apart by the C library (mktime, localtime), so the zone is the one that
// the process started with.
struct DiaryDay {
    using Instant = std::chrono::system_clock::time_point;

    std::int64_t year = 1;
    std::int64_t month = 1; // 1 to 12
    std::int64_t day = 1;   // 1 to 31

    static DiaryDay today();
    static DiaryDay containing(std::chrono::sys_seconds instant);
    static DiaryDay containing(Instant instant) {
        return containing(std::chrono::floor<std::chrono::seconds>(instant));
    }

    MonthDay monthDay() const { return {month, day}; }

    // Noon of this day, so that a small change of zone never moves the day. A day that the calendar lacks
    // rolls over (30 February is 1 or 2 March); one beyond the C library's range gives the present instant.
    // In seconds, since an Instant reaches only from 1677 to 2262.
    std::chrono::sys_seconds date() const;

    // 1 (Sunday) to 7 (Saturday).
    int weekday() const;

    // The day `by` calendar days later, or earlier when negative; this day when that cannot be computed.
    DiaryDay advanced(std::int64_t by) const;

    bool operator==(const DiaryDay &) const = default;
    auto operator<=>(const DiaryDay &) const = default;
};

} // namespace diary

template <>
struct std::hash<diary::MonthDay> {
    std::size_t operator()(const diary::MonthDay &value) const noexcept;
};

template <>
struct std::hash<diary::DiaryDay> {
    std::size_t operator()(const diary::DiaryDay &value) const noexcept;
};

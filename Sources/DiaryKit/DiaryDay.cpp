// SPDX-License-Identifier: MIT
#include <DiaryKit/DiaryDay.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>

namespace diary {

namespace {

[[noreturn]] void fatal(const char *reason) {
    std::fprintf(stderr, "%s\n", reason);
    std::abort();
}

std::int64_t checkedSum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum))
        fatal("calendar arithmetic overflow");
    return sum;
}

std::string twoByTwo(std::int64_t month, std::int64_t day, const char *suffix) {
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%02lld-%02lld%s", static_cast<long long>(month),
                  static_cast<long long>(day), suffix);
    return buffer.data();
}

std::optional<std::int64_t> twoDigits(std::string_view text) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.size() != 2 || !isDigit(text[0]) || !isDigit(text[1]))
        return std::nullopt;
    return (text[0] - '0') * 10 + (text[1] - '0');
}

constexpr MonthDay leapDay{2, 29};

// Noon of the day that lies `extraDays` after the given one, as the C library normalises it: by mktime in the
// local time zone, by timegm in the bare calendar, where no zone leaves out a day.
std::optional<std::tm> noon(const DiaryDay &day, std::int64_t extraDays,
                            std::time_t (*normalise)(std::tm *)) {
    const auto asInt = [](std::int64_t value) -> std::optional<int> {
        if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
            return std::nullopt;
        return static_cast<int>(value);
    };
    std::int64_t yearsSince1900 = 0;
    std::int64_t dayOfMonth = 0;
    std::int64_t monthIndex = 0;
    if (__builtin_sub_overflow(day.year, 1900, &yearsSince1900) ||
        __builtin_add_overflow(day.day, extraDays, &dayOfMonth) ||
        __builtin_sub_overflow(day.month, 1, &monthIndex))
        return std::nullopt;

    const auto tmYear = asInt(yearsSince1900);
    const auto tmMonth = asInt(monthIndex);
    const auto tmDay = asInt(dayOfMonth);
    if (!tmYear || !tmMonth || !tmDay)
        return std::nullopt;

    std::tm parts{};
    parts.tm_year = *tmYear;
    parts.tm_mon = *tmMonth;
    parts.tm_mday = *tmDay;
    parts.tm_hour = 12;
    parts.tm_isdst = -1;
    // -1 is also a valid instant, one second before 1970; the weekday tells success apart.
    parts.tm_wday = -1;
    normalise(&parts);
    if (parts.tm_wday < 0)
        return std::nullopt;
    return parts;
}

DiaryDay fromParts(const std::tm &parts) {
    return {std::int64_t{parts.tm_year} + 1900, std::int64_t{parts.tm_mon} + 1, std::int64_t{parts.tm_mday}};
}

std::size_t combine(std::size_t seed, std::int64_t value) {
    return seed ^ (std::hash<std::int64_t>{}(value) + 0x9e3779b97f4a7c15U + (seed << 6U) + (seed >> 2U));
}

} // namespace

std::optional<MonthDay> MonthDay::parse(std::string_view fileName) {
    if (fileName.size() != 8 || fileName[2] != '-' || !fileName.ends_with(".md"))
        return std::nullopt;
    const auto month = twoDigits(fileName.substr(0, 2));
    const auto day = twoDigits(fileName.substr(3, 2));
    if (!month || !day || *month < 1 || *month > 12 || *day < 1 || *day > 31)
        return std::nullopt;
    return MonthDay{*month, *day};
}

bool MonthDay::isLeapYear(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

std::string MonthDay::fileName() const {
    return twoByTwo(month, day, ".md");
}

std::string MonthDay::headerTitle() const {
    return twoByTwo(month, day, "");
}

std::int64_t MonthDay::ordinalInCycle() const {
    if (month < 1)
        fatal("a month below 1 has no place in the calendar");
    std::int64_t sum = day;
    const auto fullMonths = std::min<std::int64_t>(month - 1, std::ssize(daysInCycleMonth));
    for (std::int64_t index = 0; index < fullMonths; ++index)
        sum = checkedSum(sum, daysInCycleMonth.at(static_cast<std::size_t>(index)));
    return sum;
}

MonthDay MonthDay::advanced(std::int64_t by) const {
    const auto position = checkedSum(checkedSum(ordinalInCycle(), -1), by);
    auto rest = position % cycleLength;
    if (rest < 0)
        rest += cycleLength;
    std::int64_t resultMonth = 1;
    for (const auto length : daysInCycleMonth) {
        if (rest < length)
            break;
        rest -= length;
        ++resultMonth;
    }
    return {resultMonth, rest + 1};
}

std::int64_t MonthDay::ordinal(std::int64_t inYear) const {
    const auto inCycle = ordinalInCycle();
    return isLeapYear(inYear) || month <= 2 ? inCycle : inCycle - 1;
}

std::int64_t MonthDay::daysInYear(std::int64_t year) const {
    return isLeapYear(year) || *this == leapDay ? 366 : 365;
}

std::optional<int> MonthDay::weekday(std::int64_t inYear) const {
    if (*this == leapDay && !isLeapYear(inYear))
        return std::nullopt;
    return DiaryDay{inYear, month, day}.weekday();
}

DiaryDay DiaryDay::today() {
    return containing(std::chrono::system_clock::now());
}

DiaryDay DiaryDay::containing(std::chrono::sys_seconds instant) {
    const std::time_t seconds = instant.time_since_epoch().count();
    std::tm parts{};
    localtime_r(&seconds, &parts);
    return fromParts(parts);
}

std::chrono::sys_seconds DiaryDay::date() const {
    using namespace std::chrono;
    auto parts = noon(*this, 0, std::mktime);
    if (!parts)
        return floor<seconds>(system_clock::now());
    return sys_seconds(seconds(std::mktime(&*parts)));
}

int DiaryDay::weekday() const {
    if (const auto parts = noon(*this, 0, timegm))
        return parts->tm_wday + 1;
    return containing(date()).weekday();
}

DiaryDay DiaryDay::advanced(std::int64_t by) const {
    const auto parts = noon(*this, by, timegm);
    return parts ? fromParts(*parts) : *this;
}

} // namespace diary

std::size_t std::hash<diary::MonthDay>::operator()(const diary::MonthDay &value) const noexcept {
    return diary::combine(diary::combine(0, value.month), value.day);
}

std::size_t std::hash<diary::DiaryDay>::operator()(const diary::DiaryDay &value) const noexcept {
    return diary::combine(diary::combine(diary::combine(0, value.year), value.month), value.day);
}

// SPDX-License-Identifier: MIT
#include <DiaryKit/DiaryDay.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include <Support/ScopedEnvironment.h>

namespace diary {

// Found by argument lookup when an expectation fails.
void PrintTo(const MonthDay &value, std::ostream *out) {
    *out << value.headerTitle();
}
void PrintTo(const DiaryDay &value, std::ostream *out) {
    *out << value.year << '-' << value.monthDay().headerTitle();
}

namespace {

using testing::ScopedEnvironment;

constexpr MonthDay leapDay{2, 29};
constexpr auto int64Max = std::numeric_limits<std::int64_t>::max();
constexpr auto int64Min = std::numeric_limits<std::int64_t>::min();

// Rules spelled out, so that the tests need no zone database.
constexpr const char *berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char *utc = "UTC0";
constexpr const char *fourteenHoursEast = "EAST-14";
constexpr const char *twelveHoursWest = "WEST12";

DiaryDay::Instant atUtc(int year, unsigned month, unsigned day, std::chrono::seconds time) {
    using namespace std::chrono;
    return sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)) + time;
}

std::tm localParts(DiaryDay::Instant instant) {
    const auto seconds = std::chrono::system_clock::to_time_t(instant);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    return parts;
}

std::vector<MonthDay> wholeCycle() {
    std::vector<MonthDay> days;
    for (std::int64_t month = 1; month <= 12; ++month) {
        const auto length = MonthDay::daysInCycleMonth.at(static_cast<std::size_t>(month - 1));
        for (std::int64_t day = 1; day <= length; ++day)
            days.push_back({month, day});
    }
    return days;
}

TEST(MonthDay, cycleHas366DaysWithFebruaryAlwaysOf29) {
    EXPECT_EQ(MonthDay::cycleLength, 366);
    EXPECT_EQ(std::ssize(wholeCycle()), MonthDay::cycleLength);
    EXPECT_EQ(MonthDay::daysInCycleMonth.at(1), 29);
}

TEST(MonthDay, namesItsFileAndTitleWithTwoDigitsEach) {
    EXPECT_EQ((MonthDay{3, 14}.fileName()), "03-14.md");
    EXPECT_EQ((MonthDay{3, 14}.headerTitle()), "03-14");
    EXPECT_EQ((MonthDay{12, 1}.fileName()), "12-01.md");
    EXPECT_EQ((MonthDay{2, 29}.headerTitle()), "02-29");
}

TEST(MonthDay, formatsUncheckedNumbersInFull) {
    EXPECT_EQ((MonthDay{123, -4}.fileName()), "123--4.md");
    EXPECT_EQ((MonthDay{int64Min, int64Min}.fileName()), "-9223372036854775808--9223372036854775808.md");
}

TEST(MonthDay, parsesTheNameOfEveryDayOfTheCycle) {
    for (const auto &day : wholeCycle())
        EXPECT_EQ(MonthDay::parse(day.fileName()), day);
}

TEST(MonthDay, parsesDaysThatTheirMonthLacks) {
    EXPECT_EQ(MonthDay::parse("02-30.md"), (MonthDay{2, 30}));
    EXPECT_EQ(MonthDay::parse("02-31.md"), (MonthDay{2, 31}));
    EXPECT_EQ(MonthDay::parse("04-31.md"), (MonthDay{4, 31}));
}

TEST(MonthDay, refusesEveryOtherName) {
    const std::vector<std::string> names = {
        "3-14.md",
        "03-14.txt",
        "03_14.md",
        "13-01.md",
        "00-10.md",
        "03-00.md",
        "03-32.md",
        "03-14.md.icloud",
        "",
        ".md",
        "03-14",
        "03-14.MD",
        "03-14.mdx",
        "-03-14.md",
        "03--4.md",
        "-0314.md",
        "0314-.md",
        "0-314.md",
        "031-4.md",
        "0-3-4.md",
        "+3-14.md",
        "03-+4.md",
        " 3-14.md",
        "03- 4.md",
        "03-1a.md",
        "a3-14.md",
        "03-14md.",
        "03-14 .md",
        ".03-14.md.icloud",
        "03-14.md ",
        "99-99.md",
        "12-99.md",
        "0:-14.md",
        "0/-14.md",
        "003-14.md",
        "03-014.md",
        "03–14.md",
        "\u06603-14.md",
        "03-1\u0664.md",
        std::string("03-14.md\0", 9),
        std::string("03-1\0.md", 8),
        "\uFF10\uFF13-14.md",
        "é3-1.md",
    };
    for (const auto &name : names)
        EXPECT_EQ(MonthDay::parse(name), std::nullopt) << name;
}

TEST(MonthDay, countsItsPlaceOnTheCycleFromOne) {
    EXPECT_EQ((MonthDay{1, 1}.ordinalInCycle()), 1);
    EXPECT_EQ((MonthDay{2, 28}.ordinalInCycle()), 59);
    EXPECT_EQ((MonthDay{2, 29}.ordinalInCycle()), 60);
    EXPECT_EQ((MonthDay{3, 1}.ordinalInCycle()), 61);
    EXPECT_EQ((MonthDay{12, 31}.ordinalInCycle()), 366);

    std::int64_t expected = 1;
    for (const auto &day : wholeCycle())
        EXPECT_EQ(day.ordinalInCycle(), expected++);
}

TEST(MonthDay, countsADayItsMonthLacksBeyondTheMonth) {
    EXPECT_EQ((MonthDay{2, 31}.ordinalInCycle()), 62);
    EXPECT_EQ((MonthDay{4, 31}.ordinalInCycle()), (MonthDay{5, 1}.ordinalInCycle()));
}

TEST(MonthDay, countsTwelveMonthsAtMost) {
    EXPECT_EQ((MonthDay{13, 1}.ordinalInCycle()), 367);
    EXPECT_EQ((MonthDay{int64Max, 1}.ordinalInCycle()), 367);
}

TEST(MonthDay, advancesThroughTheLeapDay) {
    EXPECT_EQ((MonthDay{2, 28}.advanced(1)), (MonthDay{2, 29}));
    EXPECT_EQ((MonthDay{2, 29}.advanced(1)), (MonthDay{3, 1}));
    EXPECT_EQ((MonthDay{3, 1}.advanced(-1)), (MonthDay{2, 29}));
    EXPECT_EQ((MonthDay{2, 29}.advanced(-1)), (MonthDay{2, 28}));
}

TEST(MonthDay, wrapsFromDecemberToJanuaryAndBack) {
    EXPECT_EQ((MonthDay{12, 31}.advanced(1)), (MonthDay{1, 1}));
    EXPECT_EQ((MonthDay{1, 1}.advanced(-1)), (MonthDay{12, 31}));
}

TEST(MonthDay, comesBackAfterAWholeCycle) {
    for (const auto &day : wholeCycle()) {
        for (const std::int64_t turns : {-3, -1, 0, 1, 2})
            EXPECT_EQ(day.advanced(turns * 366), day);
    }
}

TEST(MonthDay, reachesEveryDayFromEveryDay) {
    const auto days = wholeCycle();
    for (std::size_t from = 0; from < days.size(); from += 7) {
        for (std::size_t to = 0; to < days.size(); ++to) {
            const auto distance = static_cast<std::int64_t>(to) - static_cast<std::int64_t>(from);
            ASSERT_EQ(days[from].advanced(distance), days[to]);
            ASSERT_EQ(days[from].advanced(distance - 366), days[to]);
            ASSERT_EQ(days[from].advanced(distance + 366), days[to]);
        }
    }
}

TEST(MonthDay, advancesByHugeDistances) {
    EXPECT_EQ((MonthDay{1, 1}.advanced(int64Max)), (MonthDay{1, 1}.advanced(int64Max % 366)));
    EXPECT_EQ((MonthDay{1, 1}.advanced(int64Min)), (MonthDay{1, 1}.advanced(int64Min % 366)));
}

TEST(MonthDay, advancingBringsADayItsMonthLacksOntoTheCycle) {
    EXPECT_EQ((MonthDay{2, 31}.advanced(0)), (MonthDay{3, 2}));
    EXPECT_EQ((MonthDay{1, 0}.advanced(0)), (MonthDay{12, 31}));
}

TEST(MonthDayDeathTest, endsTheProcessForAMonthBelowOne) {
    EXPECT_DEATH(static_cast<void>(MonthDay{0, 1}.ordinalInCycle()), "month below 1");
    EXPECT_DEATH(static_cast<void>(MonthDay{-1, 1}.ordinalInCycle()), "month below 1");
    EXPECT_DEATH(static_cast<void>(MonthDay{int64Min, 1}.ordinalInCycle()), "month below 1");
    EXPECT_DEATH(static_cast<void>(MonthDay{0, 1}.advanced(1)), "month below 1");
    EXPECT_DEATH(static_cast<void>(MonthDay{0, 1}.ordinal(2024)), "month below 1");
}

TEST(MonthDayDeathTest, endsTheProcessWhenAnOrdinalDoesNotFit) {
    EXPECT_DEATH(static_cast<void>(MonthDay{2, int64Max}.ordinalInCycle()), "overflow");
    EXPECT_DEATH(static_cast<void>(MonthDay{12, int64Max - 334}.ordinalInCycle()), "overflow");
    EXPECT_EQ((MonthDay{12, int64Max - 335}.ordinalInCycle()), int64Max);
}

TEST(MonthDayDeathTest, endsTheProcessWhenAnAdvanceDoesNotFit) {
    EXPECT_DEATH(static_cast<void>(MonthDay{1, 2}.advanced(int64Max)), "overflow");
    EXPECT_DEATH(static_cast<void>(MonthDay{1, 0}.advanced(int64Min)), "overflow");
    EXPECT_DEATH(static_cast<void>(MonthDay{1, int64Min}.advanced(1)), "overflow");
}

TEST(MonthDay, knowsLeapYears) {
    for (const std::int64_t year : {2024, 2000, 1600, 4, 0, -4, -400, 400000})
        EXPECT_TRUE(MonthDay::isLeapYear(year)) << year;
    for (const std::int64_t year : {2023, 1900, 2100, 1, 2, 3, -1, -100, 100, 400100})
        EXPECT_FALSE(MonthDay::isLeapYear(year)) << year;
}

TEST(MonthDay, numbersDaysWithinARealYear) {
    EXPECT_EQ((MonthDay{3, 1}.ordinal(2023)), 60);
    EXPECT_EQ((MonthDay{2, 29}.ordinal(2023)), 60);
    EXPECT_EQ((MonthDay{12, 31}.ordinal(2023)), 365);
    EXPECT_EQ((MonthDay{3, 1}.ordinal(2024)), 61);
    EXPECT_EQ((MonthDay{2, 29}.ordinal(2024)), 60);
    EXPECT_EQ((MonthDay{12, 31}.ordinal(2024)), 366);
    EXPECT_EQ((MonthDay{1, 1}.ordinal(2023)), 1);
    EXPECT_EQ((MonthDay{2, 28}.ordinal(2023)), 59);
    EXPECT_EQ((MonthDay{12, 31}.ordinal(1900)), 365);
    EXPECT_EQ((MonthDay{12, 31}.ordinal(2000)), 366);
}

TEST(MonthDay, numbersTheDaysOfACommonYearWithoutGap) {
    std::int64_t expected = 1;
    for (const auto &day : wholeCycle()) {
        if (day == leapDay)
            continue;
        EXPECT_EQ(day.ordinal(2023), expected++);
    }
}

TEST(MonthDay, countsTheDaysOfAYearWithTheLeapDayAlwaysOf366) {
    for (const auto &day : wholeCycle()) {
        EXPECT_EQ(day.daysInYear(2023), day == leapDay ? 366 : 365);
        EXPECT_EQ(day.daysInYear(2024), 366);
    }
    EXPECT_EQ((MonthDay{1, 1}.daysInYear(1900)), 365);
    EXPECT_EQ((MonthDay{1, 1}.daysInYear(2000)), 366);
}

TEST(MonthDay, tellsTheWeekdayFromSundayAsOne) {
    EXPECT_EQ((MonthDay{3, 10}.weekday(2024)), 1);
    EXPECT_EQ((MonthDay{3, 14}.weekday(2024)), 5);
    EXPECT_EQ((MonthDay{3, 16}.weekday(2024)), 7);
    EXPECT_EQ((MonthDay{2, 29}.weekday(2024)), 5);
}

TEST(MonthDay, hasNoWeekdayOnTheLeapDayOfACommonYear) {
    EXPECT_EQ((MonthDay{2, 29}.weekday(2023)), std::nullopt);
    EXPECT_EQ((MonthDay{2, 29}.weekday(1900)), std::nullopt);
    EXPECT_EQ((MonthDay{2, 28}.weekday(2023)), 3);
    EXPECT_EQ((MonthDay{3, 1}.weekday(2023)), 4);
}

TEST(MonthDay, comparesByMonthThenDay) {
    EXPECT_EQ((MonthDay{3, 14}), (MonthDay{3, 14}));
    EXPECT_NE((MonthDay{3, 14}), (MonthDay{3, 15}));
    EXPECT_NE((MonthDay{3, 14}), (MonthDay{4, 14}));
    EXPECT_LT((MonthDay{3, 31}), (MonthDay{4, 1}));
    EXPECT_LT((MonthDay{3, 14}), (MonthDay{3, 15}));
}

TEST(MonthDay, isAKeyOfHashedSets) {
    std::unordered_set<MonthDay> keys;
    for (int round = 0; round < 2; ++round) {
        for (const auto &day : wholeCycle())
            keys.insert(day);
    }
    EXPECT_EQ(keys.size(), 366U);
    EXPECT_TRUE(keys.contains({2, 29}));
    EXPECT_FALSE(keys.contains({2, 30}));
}

TEST(MonthDay, hashesMonthAndDayByTheirPlace) {
    const std::hash<MonthDay> hash;
    EXPECT_EQ(hash({3, 4}), hash({3, 4}));
    EXPECT_NE(hash({3, 4}), hash({4, 3}));

    std::unordered_set<std::size_t> hashes;
    for (const auto &day : wholeCycle())
        hashes.insert(hash(day));
    EXPECT_EQ(hashes.size(), 366U);
}

TEST(DiaryDay, hasTheKeyOfItsMonthAndDay) {
    EXPECT_EQ((DiaryDay{2024, 3, 14}.monthDay()), (MonthDay{3, 14}));
}

TEST(DiaryDay, comparesByYearMonthAndDay) {
    EXPECT_EQ((DiaryDay{2024, 3, 14}), (DiaryDay{2024, 3, 14}));
    EXPECT_NE((DiaryDay{2024, 3, 14}), (DiaryDay{2023, 3, 14}));
    EXPECT_NE((DiaryDay{2024, 3, 14}), (DiaryDay{2024, 4, 14}));
    EXPECT_NE((DiaryDay{2024, 3, 14}), (DiaryDay{2024, 3, 15}));
    EXPECT_LT((DiaryDay{2023, 12, 31}), (DiaryDay{2024, 1, 1}));
}

TEST(DiaryDay, isAKeyOfHashedSets) {
    std::unordered_set<DiaryDay> keys;
    for (std::int64_t year = 2020; year < 2025; ++year) {
        for (const auto &day : wholeCycle())
            keys.insert({year, day.month, day.day});
    }
    EXPECT_EQ(keys.size(), 5U * 366U);
    EXPECT_TRUE(keys.contains({2024, 3, 14}));
    EXPECT_FALSE(keys.contains({2025, 3, 14}));

    const std::hash<DiaryDay> hash;
    EXPECT_EQ(hash({2024, 3, 4}), hash({2024, 3, 4}));
    EXPECT_NE(hash({2024, 3, 4}), hash({2024, 4, 3}));
    EXPECT_NE(hash({2024, 3, 4}), hash({2023, 3, 4}));
}

TEST(DiaryDay, isNoonLocalTime) {
    using namespace std::chrono_literals;
    struct Row {
        const char *zone;
        DiaryDay day;
        DiaryDay::Instant instant;
    };
    const std::vector<Row> rows = {
        {utc, {2024, 3, 14}, atUtc(2024, 3, 14, 12h)},
        {berlin, {2024, 1, 14}, atUtc(2024, 1, 14, 11h)},
        {berlin, {2024, 7, 14}, atUtc(2024, 7, 14, 10h)},
        {berlin, {2024, 3, 31}, atUtc(2024, 3, 31, 10h)},
        {berlin, {2024, 10, 27}, atUtc(2024, 10, 27, 11h)},
        {berlin, {1969, 12, 31}, atUtc(1969, 12, 31, 11h)},
        {fourteenHoursEast, {2024, 3, 14}, atUtc(2024, 3, 13, 22h)},
        {twelveHoursWest, {2024, 3, 14}, atUtc(2024, 3, 15, 0h)},
        {"ODD+12:00:01", {1970, 1, 1}, atUtc(1970, 1, 2, 1s)},
    };
    for (const auto &row : rows) {
        const ScopedEnvironment zone("TZ", row.zone);
        EXPECT_EQ(row.day.date(), row.instant) << row.zone << ' ' << ::testing::PrintToString(row.day);
        EXPECT_EQ(DiaryDay::containing(row.instant), row.day) << row.zone;
        EXPECT_EQ(localParts(row.day.date()).tm_hour, 12);
    }
}

TEST(DiaryDay, isNoonInAnyYearThatAHeaderCanName) {
    using namespace std::chrono;
    const ScopedEnvironment zone("TZ", utc);
    for (const std::int64_t year : {0, 1, 1582, 1677, 1678, 1969, 2262, 2263, 9999}) {
        const DiaryDay day{year, 3, 14};
        const sys_seconds noon = sys_days(std::chrono::year(static_cast<int>(year)) / March / 14) + 12h;
        EXPECT_EQ(day.date(), noon) << year;
        EXPECT_EQ(DiaryDay::containing(day.date()), day) << year;
    }
}

TEST(DiaryDay, canBeOneSecondBefore1970) {
    using namespace std::chrono_literals;
    // Noon in this zone is the instant -1, with which the C library also reports failure.
    const ScopedEnvironment zone("TZ", "ODD-12:00:01");
    const DiaryDay day{1970, 1, 1};
    EXPECT_EQ(day.date(), atUtc(1970, 1, 1, -1s));
    EXPECT_EQ(day.advanced(1), (DiaryDay{1970, 1, 2}));
    EXPECT_EQ((DiaryDay{1969, 12, 31}.advanced(1)), day);
    EXPECT_EQ(day.weekday(), 5);
}

TEST(DiaryDay, staysTheSameDayWhenTheZoneMovesByHours) {
    const DiaryDay day{2024, 3, 14};
    std::optional<ScopedEnvironment> zone(std::in_place, "TZ", berlin);
    const auto instant = day.date();
    for (const char *other : {"A+10", "B+3", "C0", "D-5", "E-12"}) {
        zone.reset();
        zone.emplace("TZ", other);
        EXPECT_EQ(DiaryDay::containing(instant), day) << other;
    }
}

TEST(DiaryDay, containsItsInstantsUpToLocalMidnight) {
    using namespace std::chrono_literals;
    const ScopedEnvironment zone("TZ", berlin);
    EXPECT_EQ(DiaryDay::containing(atUtc(2024, 3, 13, 23h)), (DiaryDay{2024, 3, 14}));
    EXPECT_EQ(DiaryDay::containing(atUtc(2024, 3, 13, 23h - 1s)), (DiaryDay{2024, 3, 13}));
    EXPECT_EQ(DiaryDay::containing(atUtc(2024, 12, 31, 23h)), (DiaryDay{2025, 1, 1}));
    EXPECT_EQ(DiaryDay::containing(atUtc(2024, 3, 13, 23h) - 1ns), (DiaryDay{2024, 3, 13}));
    EXPECT_EQ(DiaryDay::containing(atUtc(1950, 3, 13, 23h) - 1ns), (DiaryDay{1950, 3, 13}));
}

TEST(DiaryDay, todayIsTheDayOfThePresentInstantInTheLocalZone) {
    for (const char *name : {fourteenHoursEast, twelveHoursWest, berlin}) {
        const ScopedEnvironment zone("TZ", name);
        const auto before = DiaryDay::containing(std::chrono::system_clock::now());
        const auto today = DiaryDay::today();
        const auto after = DiaryDay::containing(std::chrono::system_clock::now());
        EXPECT_TRUE(today == before || today == after) << name;
    }
    // More than a day apart, so these two never agree.
    std::optional<ScopedEnvironment> zone(std::in_place, "TZ", fourteenHoursEast);
    const auto east = DiaryDay::today();
    zone.reset();
    zone.emplace("TZ", twelveHoursWest);
    EXPECT_LT(DiaryDay::today(), east);
}

TEST(DiaryDay, tellsTheWeekdayFromSundayAsOne) {
    for (const char *name : {utc, berlin, fourteenHoursEast, twelveHoursWest}) {
        const ScopedEnvironment zone("TZ", name);
        EXPECT_EQ((DiaryDay{2024, 3, 10}.weekday()), 1) << name;
        EXPECT_EQ((DiaryDay{2024, 3, 14}.weekday()), 5) << name;
        EXPECT_EQ((DiaryDay{2024, 3, 16}.weekday()), 7) << name;
        EXPECT_EQ((DiaryDay{1969, 12, 31}.weekday()), 4) << name;
        EXPECT_EQ((DiaryDay{1900, 1, 1}.weekday()), 2) << name;
    }
}

TEST(DiaryDay, rollsADayThatTheCalendarLacksOver) {
    const ScopedEnvironment zone("TZ", berlin);
    EXPECT_EQ((DiaryDay{2024, 2, 30}.date()), (DiaryDay{2024, 3, 1}.date()));
    EXPECT_EQ((DiaryDay{2023, 2, 30}.date()), (DiaryDay{2023, 3, 2}.date()));
    EXPECT_EQ((MonthDay{2, 31}.weekday(2024)), (DiaryDay{2024, 3, 2}.weekday()));
    EXPECT_EQ((DiaryDay{2024, 2, 30}.advanced(1)), (DiaryDay{2024, 3, 2}));
}

TEST(DiaryDay, advancesAcrossMonthsAndYears) {
    struct Row {
        DiaryDay from;
        std::int64_t by;
        DiaryDay to;
    };
    const std::vector<Row> rows = {
        {{2024, 3, 14}, 0, {2024, 3, 14}},   {{2024, 2, 28}, 1, {2024, 2, 29}},
        {{2023, 2, 28}, 1, {2023, 3, 1}},    {{2024, 3, 1}, -1, {2024, 2, 29}},
        {{2023, 3, 1}, -1, {2023, 2, 28}},   {{2023, 12, 31}, 1, {2024, 1, 1}},
        {{2024, 1, 1}, -1, {2023, 12, 31}},  {{2023, 1, 1}, 365, {2024, 1, 1}},
        {{2024, 1, 1}, 366, {2025, 1, 1}},   {{2000, 2, 29}, 146097, {2400, 2, 29}},
        {{1900, 2, 28}, 1, {1900, 3, 1}},    {{1970, 1, 1}, -1, {1969, 12, 31}},
        {{1582, 10, 4}, 1, {1582, 10, 5}},   {{1, 1, 1}, -1, {0, 12, 31}},
        {{2024, 3, 14}, -738958, {1, 1, 1}},
    };
    for (const char *name : {utc, berlin, fourteenHoursEast, twelveHoursWest}) {
        const ScopedEnvironment zone("TZ", name);
        for (const auto &row : rows) {
            EXPECT_EQ(row.from.advanced(row.by), row.to) << name;
            EXPECT_EQ(row.to.advanced(-row.by), row.from) << name;
        }
    }
}

TEST(DiaryDay, advancesOneDayOverEachChangeOfClocks) {
    const ScopedEnvironment zone("TZ", berlin);
    DiaryDay day{2024, 1, 1};
    for (const auto &expected : wholeCycle()) {
        EXPECT_EQ(day, (DiaryDay{2024, expected.month, expected.day}));
        EXPECT_EQ(day.advanced(1).advanced(-1), day);
        day = day.advanced(1);
    }
    EXPECT_EQ(day, (DiaryDay{2025, 1, 1}));
}

TEST(DiaryDay, advancesOverADayThatTheZoneLeftOut) {
    using namespace std::chrono_literals;
    // Samoa went from 29 to 31 December 2011 when it changed the side of the date line.
    const ScopedEnvironment zone("TZ", "Pacific/Apia");
    const DiaryDay before{2011, 12, 29};
    const DiaryDay after{2011, 12, 31};
    if (after.date() - before.date() != 24h)
        GTEST_SKIP() << "no zone database here";
    EXPECT_EQ(before.advanced(2), after);
    EXPECT_EQ(after.advanced(-1).advanced(-1), before);
    EXPECT_EQ(before.advanced(1).advanced(1), after);
    EXPECT_EQ(after.weekday(), 7);
    EXPECT_EQ(after.advanced(-1).weekday(), 6);
}

TEST(DiaryDay, staysWhereItIsWhenTheAdvanceCannotBeComputed) {
    const DiaryDay day{2024, 3, 14};
    EXPECT_EQ(day.advanced(int64Max), day);
    EXPECT_EQ(day.advanced(int64Min), day);
    const DiaryDay far{int64Max, 3, 14};
    EXPECT_EQ(far.advanced(1), far);
    const DiaryDay early{int64Min, 3, 14};
    EXPECT_EQ(early.advanced(-1), early);
    const DiaryDay late{2024, 3, int64Max};
    EXPECT_EQ(late.advanced(1), late);
    // The last day whose year the C library can hold.
    const DiaryDay last{std::numeric_limits<int>::max() + std::int64_t{1900}, 12, 31};
    EXPECT_EQ(last.advanced(-1), (DiaryDay{last.year, 12, 30}));
    EXPECT_EQ(last.advanced(1), last);
}

TEST(DiaryDay, isThePresentInstantWhenItsDateCannotBeFormed) {
    for (const DiaryDay &day : {DiaryDay{int64Max, 1, 1}, DiaryDay{int64Min, 1, 1},
                                DiaryDay{2024, int64Min, 1}, DiaryDay{2024, 1, int64Max},
                                DiaryDay{std::numeric_limits<int>::max() + std::int64_t{1900}, 12, 32}}) {
        const auto before = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
        const auto date = day.date();
        const auto after = std::chrono::system_clock::now();
        EXPECT_LE(before, date);
        EXPECT_LE(date, after);
        EXPECT_GE(day.weekday(), 1);
        EXPECT_LE(day.weekday(), 7);
    }
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"

#include <DiaryApp/DayChange.h>

#include <gtest/gtest.h>

#include <chrono>

namespace diary {
namespace {

using namespace std::chrono_literals;

// From noon of the day.
class DayChangeTest : public ::testing::Test {
protected:
    testing::FakeClock clock{{2025, 3, 14}};
    int changes = 0;
    DayChange dayChange{clock, [this] { ++changes; }};
};

TEST_F(DayChangeTest, tellsOfMidnightOnce) {
    clock.advance(12h - 1s);
    EXPECT_EQ(changes, 0);
    clock.advance(1s);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(clock.today(), (DiaryDay{2025, 3, 15}));
    clock.advance(23h);
    EXPECT_EQ(changes, 1);
}

TEST_F(DayChangeTest, tellsOfEveryMidnightAlsoWhenTheClocksChange) {
    // Summer time begins on 30 March and ends on 26 October.
    for (int day = 0; day < 300; ++day)
        clock.advance(24h);
    EXPECT_EQ(changes, 300);
}

TEST_F(DayChangeTest, tellsOnceOfSeveralDaysAsleep) {
    clock.setToday({2025, 3, 17});
    EXPECT_EQ(changes, 1);
    clock.advance(12h);
    EXPECT_EQ(changes, 2);
}

TEST_F(DayChangeTest, tellsWhenTheClockIsSetToAnEarlierDay) {
    clock.setToday({2025, 3, 13});
    EXPECT_EQ(changes, 1);
    clock.advance(12h);
    EXPECT_EQ(changes, 2);
}

TEST_F(DayChangeTest, staysSilentWhenTheClockIsSetWithinTheDay) {
    clock.setNow(clock.now() + 11h);
    EXPECT_EQ(changes, 0);
    clock.advance(1h);
    EXPECT_EQ(changes, 1);
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/Clock.h>

#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono_literals;

TEST(SystemClock, tellsTheSystemsTime) {
    SystemClock clock;
    const auto before = std::chrono::system_clock::now();
    const auto now = clock.now();
    const auto today = clock.today();
    const auto after = std::chrono::system_clock::now();
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
    EXPECT_LE(DiaryDay::containing(before), today);
    EXPECT_LE(today, DiaryDay::containing(after));
}

TEST(SystemClock, firesATimerOnceAndNotBeforeItsTime) {
    SystemClock clock;
    int fired = 0;
    auto timer = clock.makeTimer([&] { ++fired; });
    EXPECT_FALSE(timer->isActive());
    const auto start = std::chrono::steady_clock::now();
    timer->start(50ms);
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(fired, 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return fired > 0; }));
    // The event loop's timers may come a millisecond early.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 45ms);
    EXPECT_FALSE(timer->isActive());

    bool laterFired = false;
    auto later = clock.makeTimer([&] { laterFired = true; });
    later->start(120ms);
    ASSERT_TRUE(QTest::qWaitFor([&] { return laterFired; }));
    EXPECT_EQ(fired, 1);
}

TEST(SystemClock, firesNoTimerEarlyToFireSeveralTogether) {
    using SteadyClock = std::chrono::steady_clock;
    struct Run {
        std::chrono::milliseconds delay;
        std::unique_ptr<Timer> timer;
        SteadyClock::time_point start;
        std::optional<SteadyClock::duration> elapsed;
    };
    SystemClock clock;
    std::vector<Run> runs(20);
    for (std::size_t index = 0; index < runs.size(); ++index) {
        auto &run = runs[index];
        run.delay = std::chrono::milliseconds(200 + index);
        run.timer = clock.makeTimer([&run] { run.elapsed = SteadyClock::now() - run.start; });
        run.start = SteadyClock::now();
        run.timer->start(run.delay);
    }
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return std::all_of(runs.begin(), runs.end(), [](auto &run) { return run.elapsed; }); }));
    // Qt's milliseconds are whole ones.
    for (const auto &run : runs)
        EXPECT_GE(*run.elapsed, run.delay - 1ms) << run.delay.count();
}

TEST(SystemClock, forgetsThePendingRunOfATimerThatIsStartedAgainStoppedOrDestroyed) {
    SystemClock clock;
    int restarted = 0;
    int stopped = 0;
    int destroyed = 0;
    bool done = false;
    auto one = clock.makeTimer([&] { ++restarted; });
    one->start(1ms);
    one->start(10ms);
    auto two = clock.makeTimer([&] { ++stopped; });
    two->start(1ms);
    two->stop();
    EXPECT_FALSE(two->isActive());
    auto three = clock.makeTimer([&] { ++destroyed; });
    three->start(1ms);
    three.reset();
    auto last = clock.makeTimer([&] { done = true; });
    last->start(60ms);
    ASSERT_TRUE(QTest::qWaitFor([&] { return done; }));
    EXPECT_EQ(restarted, 1);
    EXPECT_EQ(stopped, 0);
    EXPECT_EQ(destroyed, 0);
}

TEST(SystemClock, ringsAnAlarmWhenItsInstantHasComeAndOnlyOnce) {
    SystemClock clock;
    int rung = 0;
    auto alarm = clock.makeAlarm([&] { ++rung; });
    const auto when = clock.now() + 50ms;
    alarm->startAt(when);
    EXPECT_EQ(rung, 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return rung > 0; }));
    EXPECT_GE(clock.now(), when);

    int laterRung = 0;
    auto later = clock.makeAlarm([&] { ++laterRung; });
    later->startAt(clock.now() + 100ms);
    ASSERT_TRUE(QTest::qWaitFor([&] { return laterRung > 0; }));
    EXPECT_EQ(rung, 1);
}

TEST(SystemClock, ringsAnAlarmAtOnceForAnInstantThatHasPassed) {
    SystemClock clock;
    int rung = 0;
    auto alarm = clock.makeAlarm([&] { ++rung; });
    alarm->startAt(clock.now() - 1h);
    EXPECT_TRUE(QTest::qWaitFor([&] { return rung == 1; }));
}

TEST(SystemClock, forgetsThePendingRunOfAnAlarmThatIsStartedAgainOrDestroyed) {
    SystemClock clock;
    int restarted = 0;
    int destroyed = 0;
    bool done = false;
    auto one = clock.makeAlarm([&] { ++restarted; });
    one->startAt(clock.now() + 1ms);
    one->startAt(clock.now() + 20ms);
    {
        auto two = clock.makeAlarm([&] { ++destroyed; });
        two->startAt(clock.now() + 1ms);
    }
    auto last = clock.makeAlarm([&] { done = true; });
    last->startAt(clock.now() + 100ms);
    ASSERT_TRUE(QTest::qWaitFor([&] { return done; }));
    EXPECT_EQ(restarted, 1);
    EXPECT_EQ(destroyed, 0);
}

} // namespace
} // namespace diary

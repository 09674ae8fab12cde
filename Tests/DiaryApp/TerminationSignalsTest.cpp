// SPDX-License-Identifier: MIT
#include <DiaryApp/TerminationSignals.h>

#include <QTest>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <thread>

#include <pthread.h>
#include <signal.h>

namespace diary {
namespace {

class TerminationSignalsTest : public ::testing::TestWithParam<int> {};

bool hasDefaultEffect(int number) {
    struct sigaction action {};
    return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_DFL;
}

TEST_P(TerminationSignalsTest, bringsASignalToTheEventLoop) {
    ASSERT_TRUE(hasDefaultEffect(GetParam()));
    {
        int calls = 0;
        const TerminationSignals terminationSignals([&] { ++calls; });
        raise(GetParam());
        EXPECT_EQ(calls, 0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return calls > 0; }));
        EXPECT_EQ(calls, 1);
        raise(GetParam());
        EXPECT_TRUE(QTest::qWaitFor([&] { return calls > 1; }));
    }
    EXPECT_TRUE(hasDefaultEffect(GetParam()));
}

TEST_P(TerminationSignalsTest, callsOnTheMainThreadWhicheverThreadWasInterrupted) {
    std::thread::id caller;
    const TerminationSignals terminationSignals([&] { caller = std::this_thread::get_id(); });
    std::thread([] { pthread_kill(pthread_self(), GetParam()); }).join();
    ASSERT_TRUE(QTest::qWaitFor([&] { return caller != std::thread::id(); }));
    EXPECT_EQ(caller, std::this_thread::get_id());
}

INSTANTIATE_TEST_SUITE_P(, TerminationSignalsTest, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST(TerminationSignals, makesOneCallOfAFloodAndKeepsTheErrorNumber) {
    int calls = 0;
    const TerminationSignals terminationSignals([&] { ++calls; });
    errno = ERANGE;
    // More than a pipe holds.
    for (int count = 0; count < 100'000; ++count)
        raise(SIGTERM);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls > 0; }));
    QTest::qWait(0);
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/QtExecutor.h>

#include <QCoreApplication>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>

namespace diary {
namespace {

TEST(QtExecutor, worksInAnotherThreadAndReportsInThisOne) {
    QtExecutor executor;
    QThread *worker = nullptr;
    QThread *reporter = nullptr;
    executor.runInBackground(Executor::Priority::UserInitiated, [&] {
        worker = QThread::currentThread();
        executor.postToMain([&] { reporter = QThread::currentThread(); });
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return reporter != nullptr; }));
    EXPECT_NE(worker, QThread::currentThread());
    EXPECT_EQ(reporter, QThread::currentThread());
}

TEST(QtExecutor, reportsOnlyAfterTheCallHasReturned) {
    QtExecutor executor;
    bool reported = false;
    executor.postToMain([&] { reported = true; });
    EXPECT_FALSE(reported);
    EXPECT_TRUE(QTest::qWaitFor([&] { return reported; }));
}

TEST(QtExecutor, waitsForWorkUnderWayAndDropsItsReportAtItsEnd) {
    std::atomic<bool> started = false;
    std::atomic<bool> ended = false;
    bool reported = false;
    {
        QtExecutor executor;
        executor.runInBackground(Executor::Priority::Utility, [&] {
            started = true;
            QThread::msleep(20);
            executor.postToMain([&] { reported = true; });
            ended = true;
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return started.load(); }));
    }
    EXPECT_TRUE(ended);
    QCoreApplication::processEvents();
    EXPECT_FALSE(reported);
}

} // namespace
} // namespace diary

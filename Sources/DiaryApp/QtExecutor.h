// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/Executor.h>

#include <QObject>
#include <QThreadPool>

namespace diary {

// Background work on threads of its own, results on the Qt event loop. Made on the main thread; destroying it
// waits for the work under way, drops what was not begun and what was not posted yet.
class QtExecutor : public QObject, public Executor {
    Q_OBJECT

public:
    // With one thread, what is run goes on in the order in which it came.
    explicit QtExecutor(int threads = 2);
    ~QtExecutor() override;

    void runInBackground(Priority priority, std::function<void()> work) override;
    void postToMain(std::function<void()> work) override;

private:
    QThreadPool m_threads;
};

} // namespace diary

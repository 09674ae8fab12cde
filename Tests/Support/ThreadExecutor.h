// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/Executor.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace diary::testing {

// A thread for each piece of background work; the test is the main thread and runs what is posted to it.
class ThreadExecutor : public Executor {
public:
    ~ThreadExecutor() override { join(); }

    void runInBackground(Priority, std::function<void()> work) override {
        m_threads.emplace_back(std::move(work));
    }

    void postToMain(std::function<void()> work) override {
        const std::lock_guard lock(m_mutex);
        m_posted.push_back(std::move(work));
        m_somethingPosted.notify_one();
    }

    // Waits for the next piece of work posted to the main thread, and runs it.
    void runNext() {
        std::unique_lock lock(m_mutex);
        m_somethingPosted.wait(lock, [this] { return !m_posted.empty(); });
        const auto work = std::move(m_posted.front());
        m_posted.pop_front();
        lock.unlock();
        work();
    }

    void join() {
        for (auto &thread : m_threads)
            thread.join();
        m_threads.clear();
    }

private:
    std::vector<std::thread> m_threads; // of the main thread alone
    std::mutex m_mutex;
    std::condition_variable m_somethingPosted;
    std::deque<std::function<void()>> m_posted;
};

} // namespace diary::testing

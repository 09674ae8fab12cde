// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/Executor.h>

#include <deque>
#include <functional>
#include <utility>

namespace diary::testing {

// Runs what it was given when told to, in the caller's thread.
class ManualExecutor : public Executor {
public:
    struct Work {
        Priority priority;
        std::function<void()> run;
    };
    std::deque<Work> background;
    std::deque<std::function<void()>> main;

    void runInBackground(Priority priority, std::function<void()> work) override {
        background.push_back({priority, std::move(work)});
    }
    void postToMain(std::function<void()> work) override { main.push_back(std::move(work)); }

    void runBackground() {
        while (!background.empty()) {
            const auto work = std::move(background.front());
            background.pop_front();
            work.run();
        }
    }
    void runMain() {
        while (!main.empty()) {
            const auto work = std::move(main.front());
            main.pop_front();
            work();
        }
    }
};

} // namespace diary::testing

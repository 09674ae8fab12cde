// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace diary {

// Where work runs that the main thread must not wait for.
class Executor {
public:
    enum class Priority {
        UserInitiated, // someone looks at the screen for the result
        Utility        // nobody waits
    };

    virtual ~Executor() = default;

    // Runs the work once on a thread other than the main one, at some time. May be called from any thread.
    virtual void runInBackground(Priority priority, std::function<void()> work) = 0;

    // Runs the work once on the main thread, after this call has returned there. May be called from any
    // thread.
    virtual void postToMain(std::function<void()> work) = 0;
};

// For a program without an event loop: everything runs at once, in the caller's thread.
class ImmediateExecutor : public Executor {
public:
    void runInBackground(Priority, std::function<void()> work) override { work(); }
    void postToMain(std::function<void()> work) override { work(); }
};

} // namespace diary

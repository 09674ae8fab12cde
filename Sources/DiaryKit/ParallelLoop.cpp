// SPDX-License-Identifier: MIT
#include <DiaryKit/ParallelLoop.h>

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace diary {

namespace {

// Reading from the page cache gains little from more, and the machine has other things to do.
constexpr std::size_t mostThreads = 4;

// Fewer pieces than this are not worth starting a thread.
constexpr std::size_t smallestShare = 8;

} // namespace

void runInParallel(std::size_t count, const std::function<std::function<bool(std::size_t)>()> &makeWorker) {
    std::atomic<std::size_t> next = 0;
    const auto loop = [&] {
        const auto work = makeWorker();
        for (auto index = next.fetch_add(1); index < count; index = next.fetch_add(1)) {
            if (!work(index))
                next = count;
        }
    };
    const auto cores = std::max<std::size_t>(std::thread::hardware_concurrency(), 1);
    const auto threads = std::min({cores, mostThreads, count / smallestShare + 1});
    std::vector<std::thread> others;
    try {
        for (std::size_t index = 1; index < threads; ++index)
            others.emplace_back(loop);
    } catch (const std::system_error &) {
        // No more threads to be had: those there are do the work.
    }
    loop();
    for (auto &thread : others)
        thread.join();
}

} // namespace diary

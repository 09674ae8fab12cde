// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace diary {

// Keeps the fastest repetition of each.
class FastestTimes : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const auto &run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const auto name = run.run_name.function_name;
            const auto seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            const auto [fastest, isNew] = m_seconds.try_emplace(name, seconds);
            if (!isNew && seconds < fastest->second)
                fastest->second = seconds;
        }
    }

    void printRatio(const char *title, const char *name, const char *against, const char *aim) const {
        const double mine = m_seconds.at(name) * 1e3;
        const double theirs = m_seconds.at(against) * 1e3;
        std::printf("%-52s %8.2f %8s   (%.3f ms / %.3f ms)\n", title, mine / theirs, aim, mine, theirs);
    }

    // For work that must be done before the next picture.
    void printShareOfAFrame(const char *title, const char *name, const char *aim) const {
        constexpr double frame = 16;
        printShareOf(title, name, frame, aim);
    }

    void printShareOf(const char *title, const char *name, double milliseconds, const char *aim) const {
        const double mine = m_seconds.at(name) * 1e3;
        std::printf("%-52s %8.2f %8s   (%.3f ms / %.0f ms)\n", title, mine / milliseconds, aim, mine,
                    milliseconds);
    }

private:
    std::map<std::string, double> m_seconds;
};

} // namespace diary

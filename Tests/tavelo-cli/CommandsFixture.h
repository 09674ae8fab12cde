// SPDX-License-Identifier: MIT
#pragma once

#include "Support/RunProgram.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryKit/DiaryDay.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace diary::cli {

// A time zone where it is about noon, so that no test sees the day change.
inline std::string noonZone() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto hour = std::chrono::duration_cast<std::chrono::hours>(sinceEpoch).count() % 24;
    return "NOON" + std::to_string(hour - 12); // counted westwards
}

// Runs the real program, as a script would, on a vault of its own.
class CommandsTest : public ::testing::Test {
protected:
    testing::ScopedEnvironment m_zone{"TZ", noonZone()};
    DiaryDay m_today = DiaryDay::today();
    DiaryDay m_yesterday = m_today.advanced(-1);
    testing::TemporaryFolder m_home;
    std::filesystem::path m_vault = m_home / "vault";

    testing::ProgramCall call(const std::vector<std::string> &words, const std::string &input = {}) const {
        return {.program = testing::builtProgram("TAVELO_TEST_TAVELO_CLI"),
                .arguments = words,
                .environment = {{"HOME", m_home.path().string()}, {"DIARY_ROOT", m_vault.string()}},
                .input = input};
    }

    testing::ProgramResult run(const std::vector<std::string> &words, const std::string &input = {}) const {
        return runProgram(call(words, input));
    }

    // Of a call that succeeds and complains about nothing.
    std::string output(const std::vector<std::string> &words, const std::string &input = {}) const {
        const auto result = run(words, input);
        EXPECT_EQ(result.exitCode, 0) << ::testing::PrintToString(words);
        EXPECT_EQ(result.errors, "");
        return result.output;
    }

    void writeDay(const std::string &name, std::string_view text) const {
        m_home.write(std::filesystem::path("vault") / name, text);
    }
    std::string readDay(const std::string &name) const {
        return m_home.read(std::filesystem::path("vault") / name);
    }
    std::set<std::string> vaultNames() const { return m_home.names("vault"); }
};

inline void expectFailure(const testing::ProgramResult &result, const std::string &message) {
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "tavelo-cli: " + message + "\n");
}

inline void expectWrongUsage(const testing::ProgramResult &result, const std::string &message) {
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "tavelo-cli: " + message + " (see tavelo-cli --help)\n");
}

} // namespace diary::cli

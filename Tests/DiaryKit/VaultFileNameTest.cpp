// SPDX-License-Identifier: MIT
#include "Support/VaultFileNames.h"

#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/VaultFileName.h>

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace diary {
namespace {

using Kind = VaultFileName::Kind;
using testing::vaultFileNames;

VaultFileName expected(Kind kind, MonthDay day = {3, 14}) {
    return kind == Kind::Other ? VaultFileName{} : VaultFileName{kind, day};
}

TEST(VaultFileName, knowsTheNamesOfSyncToolsAndEditors) {
    for (const auto &[name, kind] : vaultFileNames())
        EXPECT_EQ(VaultFileName::classify(name), expected(kind)) << name;
}

TEST(VaultFileName, knowsDecomposedNames) {
    int different = 0;
    for (const auto &[name, kind] : vaultFileNames()) {
        if (!UnicodeText::isValid(name))
            continue;
        const auto apart = testing::decomposed(name);
        different += apart != name;
        EXPECT_EQ(VaultFileName::classify(apart), expected(kind)) << name;
    }
    EXPECT_GE(different, 8);
}

TEST(VaultFileName, keepsTheDay) {
    for (std::int64_t month = 1; month <= 12; ++month) {
        for (std::int64_t day = 1; day <= 31; ++day) {
            const MonthDay monthDay{month, day};
            for (const auto &[name, kind] : vaultFileNames()) {
                auto moved = name;
                if (const auto at = moved.find("03-14"); at != std::string::npos)
                    moved.replace(at, 5, monthDay.headerTitle());
                EXPECT_EQ(VaultFileName::classify(moved), expected(kind, monthDay)) << moved;
            }
        }
    }
}

TEST(VaultFileName, takesAnyBytes) {
    EXPECT_EQ(VaultFileName::classify({}), VaultFileName{});
    EXPECT_EQ(VaultFileName::classify(std::string_view()), VaultFileName{});
    EXPECT_EQ(VaultFileName::classify(std::string("03-14\0.md", 9)), expected(Kind::Lookalike));
    EXPECT_EQ(VaultFileName::classify(std::string("03-14.md\0", 9)), VaultFileName{});
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(VaultFileName::classify(std::string(1, static_cast<char>(byte))), VaultFileName{});
        EXPECT_EQ(VaultFileName::classify(std::string(300, static_cast<char>(byte))), VaultFileName{});
    }
}

TEST(VaultFileName, refusesWhatIsTooLongForAName) {
    const auto ofLength = [](std::size_t length) { return "03-14 " + std::string(length - 9, 'x') + ".md"; };
    EXPECT_EQ(VaultFileName::classify(ofLength(1024)), expected(Kind::Lookalike));
    EXPECT_EQ(VaultFileName::classify(ofLength(1025)), VaultFileName{});
    EXPECT_EQ(VaultFileName::classify(ofLength(50'000'000)), VaultFileName{});
}

// Each repeats what a pattern looks for again and again, so that a careless one would try every combination.
TEST(VaultFileName, isNotHeldUpByRepetition) {
    struct Row {
        const char *start;
        std::string_view repeated;
        const char *end;
    };
    for (const auto &[start, repeated, end] :
         {Row{"03-14 (", "conflicted copy", ").md"}, Row{"03-14 (", "2026-11-20", ").md"},
          Row{"03-14 (", "conflicted copy 2026-11-20 ", ".md"}, Row{"03-14 (", "(", ").md"},
          Row{"03-14 (", "()", "conflicted copy 2026-11-20.md"}, Row{"03-14", "-safeBackup-0001", ".md"},
          Row{"03-14 (SFConflict ", " 2026-11-20-10-11-12)", ".md"}}) {
        std::string name = start;
        while (name.size() + repeated.size() + std::string_view(end).size() <= 1024)
            name += repeated;
        name += end;
        const auto before = std::chrono::steady_clock::now();
        for (int round = 0; round < 100; ++round)
            VaultFileName::classify(name);
        EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds{5}) << name;
    }
}

TEST(VaultFileName, namesThePlaceholdersOfADay) {
    const auto names = VaultFileName::placeholderNames({3, 14});
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()),
              (std::set<std::string>{".03-14.md.icloud", "03-14.md.nextcloud", "03-14.md.owncloud"}));
}

TEST(VaultFileName, staysTrueOfDamagedNames) {
    constexpr int count = 100'000;
    std::map<Kind, int> kinds;
    testing::RandomVaultFileNames names(20261120);
    for (int index = 0; index < count; ++index) {
        const auto name = names.next();
        const auto falsehood = testing::falsehoodAbout(name);
        ASSERT_EQ(falsehood, "") << ::testing::PrintToString(name);
        ++kinds[VaultFileName::classify(name).kind];
    }
    for (const auto kind :
         {Kind::DayFile, Kind::Placeholder, Kind::ConflictCopy, Kind::Lookalike, Kind::Other})
        EXPECT_GT(kinds[kind], count / 1000) << static_cast<int>(kind);
}

TEST(VaultFileName, isTheSameInEveryThread) {
    std::vector<std::jthread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([] {
            for (const auto &[name, kind] : vaultFileNames())
                EXPECT_EQ(VaultFileName::classify(name), expected(kind)) << name;
        });
    }
}

} // namespace
} // namespace diary

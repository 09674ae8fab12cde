// SPDX-License-Identifier: MIT
#include "CommandsFixture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <string>

namespace diary::cli {

namespace {

using Json = nlohmann::json;

class VaultCommandsTest : public CommandsTest {
protected:
    void SetUp() override {
        writeDay("01-02.md",
                 "# 01-02\n\n## 2023\n\nThe swallows came back.\n\n## 2024\n\nNo \"swallows\" yet.\n");
        writeDay("03-14.md", "# 03-14\n\n## 2024\n\nRain.\n");
        writeDay("03-15.md", "# 03-15\n\n## 2024\n\n");
    }

    Json json(const std::vector<std::string> &words) const { return Json::parse(output(words)); }
    std::string resolvedFolder() const { return ".local/state/tavelo/resolved"; }
};

TEST_F(VaultCommandsTest, searchPrintsALineForEachEntry) {
    EXPECT_EQ(output({"search", "SWALLOWS"}),
              "01-02 2023  The swallows came back.\n01-02 2024  No \"swallows\" yet.\n");
    EXPECT_EQ(output({"search", "came", "back"}), "01-02 2023  The swallows came back.\n");
    EXPECT_EQ(output({"search", "nowhere"}), "");
}

TEST_F(VaultCommandsTest, searchStopsAtTheLimit) {
    EXPECT_EQ(output({"search", "swallows", "--limit", "1"}), "01-02 2023  The swallows came back.\n");
    for (const auto *limit : {"0", "-1", "x", "1x", "", "99999999999999999999"})
        expectWrongUsage(run({"search", "swallows", std::string("--limit=") + limit}),
                         "'" + std::string(limit) + "' is no limit from 1");
}

TEST_F(VaultCommandsTest, searchPrintsJson) {
    EXPECT_EQ(output({"search", "rain", "--json"}),
              "[{\"day\":\"03-14\",\"year\":2024,\"snippet\":\"Rain.\"}]\n");
    EXPECT_EQ(json({"search", "--json", "swallows"}).at(1).at("snippet"), "No \"swallows\" yet.");
    EXPECT_EQ(output({"search", "nowhere", "--json"}), "[]\n");
}

TEST_F(VaultCommandsTest, searchNeedsAQuery) {
    expectWrongUsage(run({"search"}), "no query given");
    expectWrongUsage(run({"search", "  "}), "no query given");
    expectWrongUsage(run({"search", "a", "--json=1"}), "--json takes no value");
}

TEST_F(VaultCommandsTest, searchNamesTheDaysThatAreNotOnThisMachine) {
    writeDay(".03-16.md.icloud", "");
    const auto result = run({"search", "rain"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "03-14 2024  Rain.\n");
    EXPECT_EQ(result.errors, "tavelo-cli: not on this machine: 03-16\n");
}

TEST_F(VaultCommandsTest, statsPrintsWhatTheDiaryHolds) {
    EXPECT_EQ(output({"stats"}), "days with an entry: 2\nfirst year: 2023\nfiles: 3\nyears: 2023 2024\n");
}

TEST_F(VaultCommandsTest, statsPrintsJson) {
    writeDay(".03-16.md.icloud", "");
    EXPECT_EQ(output({"stats", "--json"}),
              R"({"daysWithContent":2,"earliestYear":2023,"fileCount":4,"contentYears":[2023,2024],)"
              R"("heatCounts":{"01-02":2,"03-14":1},"awaitingDownload":["03-16"]})"
              "\n");
}

TEST_F(VaultCommandsTest, anEmptyDiaryHasStatisticsAndNoRandomDay) {
    const auto nowhere = (m_home / "nowhere").string();
    EXPECT_EQ(output({"--root", nowhere, "stats", "--json"}),
              R"({"daysWithContent":0,"earliestYear":null,"fileCount":0,"contentYears":[],)"
              R"("heatCounts":{},"awaitingDownload":[]})"
              "\n");
    EXPECT_EQ(output({"--root", nowhere, "search", "x"}), "");
    EXPECT_EQ(output({"--root", nowhere, "check"}), "");
    EXPECT_EQ(output({"--root", nowhere, "resolve"}), "");
    expectFailure(run({"--root", nowhere, "random"}), "no day has an entry");
}

TEST_F(VaultCommandsTest, aVaultThatCannotBeListedIsNoEmptyDiary) {
    m_home.write("file", "x");
    const auto file = (m_home / "file").string();
    for (const auto *command : {"stats", "random", "check"})
        expectFailure(run({"--root", file, command}), file + ": Not a directory");
    expectFailure(run({"--root", file, "search", "x"}), file + ": Not a directory");
}

TEST_F(VaultCommandsTest, randomPrintsADayWithAnEntry) {
    std::set<std::string> days;
    for (int round = 0; round < 40; ++round)
        days.insert(output({"random"}));
    EXPECT_EQ(days, (std::set<std::string>{"01-02\n", "03-14\n"}));
}

TEST_F(VaultCommandsTest, checkHasNothingToSayOfAHealthyVault) {
    EXPECT_EQ(output({"check"}), "");
}

TEST_F(VaultCommandsTest, checkTellsFileByFileWhatIsWrong) {
    writeDay("03-14 (conflicted).md", "x");
    writeDay("03-16.md", "## 2024\n\na\n\n## 2024\n\nb\xFF\n");
    const auto result = run({"check"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output,
              "03-14 (conflicted).md: conflict copy, not merged yet ('tavelo-cli resolve' merges it)\n"
              "03-16.md: is not valid UTF-8\n"
              "03-16.md: year with several sections: 2024\n");
}

TEST_F(VaultCommandsTest, resolveMergesTheCopiesOfAllDaysOrOfSome) {
    writeDay("03-14 (conflicted).md", "## 2024\n\nSun.\n");
    writeDay("03-15.sync-conflict-20261120-101112-ABCDEFG.md", "## 2023\n\nSnow.\n");
    EXPECT_EQ(output({"resolve", "03-15", "03-16"}), "03-15\n");
    EXPECT_EQ(readDay("03-15.md"), "# 03-15\n\n## 2023\n\nSnow.\n\n## 2024\n");
    EXPECT_EQ(output({"resolve"}), "03-14\n");
    EXPECT_EQ(readDay("03-14.md"),
              "# 03-14\n\n## 2024\n\nRain.\n\n*— The other version of this entry —*\n\nSun.\n");
    EXPECT_EQ(vaultNames(), (std::set<std::string>{"01-02.md", "03-14.md", "03-15.md"}));
    EXPECT_EQ(
        m_home.names(resolvedFolder()),
        (std::set<std::string>{"03-14 (conflicted).md", "03-15.sync-conflict-20261120-101112-ABCDEFG.md"}));
    EXPECT_EQ(output({"resolve"}), "");
}

TEST_F(VaultCommandsTest, resolveFailsForWhatItCouldNotMerge) {
    writeDay("03-14 (conflicted).md", "## 2024\n\nSun.\n");
    std::filesystem::permissions(m_vault / "03-14.md", std::filesystem::perms::owner_read);
    expectFailure(run({"resolve"}), "03-14: conflict copies could not be merged");
    EXPECT_EQ(readDay("03-14 (conflicted).md"), "## 2024\n\nSun.\n");
}

} // namespace

} // namespace diary::cli

// SPDX-License-Identifier: MIT
//
// Runs the real program, as a script would.

#include "CommandsFixture.h"
#include "Support/RunProgram.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryKit/Defaults.h>
#include <DiaryKit/DiaryDay.h>
#include <DiaryKit/DiaryStore.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace diary::cli {

namespace {

namespace fs = std::filesystem;
using diary::testing::ProgramCall;
using diary::testing::ProgramResult;
using diary::testing::ScopedEnvironment;
using diary::testing::TemporaryFolder;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::StartsWith;
using Words = std::vector<std::string>;
using Names = std::set<std::string>;

const std::string replacementCharacter = "\xef\xbf\xbd";

TEST_F(CommandsTest, printsHelpAndTheVersion) {
    EXPECT_THAT(output({"--help"}), StartsWith("Usage: tavelo-cli [--root DIR] COMMAND ...\n"));
    EXPECT_THAT(output({"merge", "--help"}),
                StartsWith("Usage: tavelo-cli [--root DIR] merge CURRENT OTHER "));
    EXPECT_THAT(output({"--version"}), MatchesRegex("tavelo-cli [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(CommandsTest, tellsWrongUsageInOneLine) {
    expectWrongUsage(run({}), "no command given");
    expectWrongUsage(run({"bogus"}), "unknown command 'bogus'");
    expectWrongUsage(run({"two\nlines"}), "unknown command 'two?lines'");
    expectWrongUsage(run({"show", "--year", "999"}), "'999' is no year from 1000 to 9999");
    expectWrongUsage(run({"path", "--year", "2024"}), "path has no option --year");
    EXPECT_FALSE(fs::exists(m_vault));
}

TEST_F(CommandsTest, printsThePathOfADay) {
    EXPECT_EQ(output({"path", "03-14"}), (m_vault / "03-14.md").string() + "\n");
    EXPECT_EQ(output({"path", "2023-02-29"}), (m_vault / "02-29.md").string() + "\n");
    EXPECT_EQ(output({"path", "02-30"}), (m_vault / "02-30.md").string() + "\n");
    EXPECT_FALSE(fs::exists(m_vault));
}

TEST_F(CommandsTest, knowsTodayAndYesterday) {
    const auto pathOf = [&](DiaryDay day) { return (m_vault / day.monthDay().fileName()).string() + "\n"; };
    EXPECT_EQ(output({"path"}), pathOf(m_today));
    EXPECT_EQ(output({"path", "today"}), pathOf(m_today));
    EXPECT_EQ(output({"path", "yesterday"}), pathOf(m_yesterday));
}

TEST_F(CommandsTest, findsTheVaultByOptionEnvironmentSettingAndDefault) {
    auto path = call({"path", "03-14"});
    const auto folder = [&] {
        const auto result = runProgram(path);
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return fs::path(result.output).parent_path();
    };

    path.arguments = {"--root", "/from/option", "path", "03-14"};
    EXPECT_EQ(folder(), "/from/option");
    path.arguments = {"path", "03-14", "--root=relative"};
    EXPECT_EQ(folder(), "relative");

    path.arguments = {"path", "03-14"};
    path.environment["DIARY_ROOT"] = "/from/environment";
    EXPECT_EQ(folder(), "/from/environment");

    path.environment.erase("DIARY_ROOT");
    EXPECT_EQ(folder(), m_home / "Documents/Diary");
    fs::create_directory(m_home / "Nextcloud");
    EXPECT_EQ(folder(), m_home / "Nextcloud/Diary");

    Defaults(m_home / ".config/tavelo/settings.json").set("vaultPath", "/from/home/setting");
    EXPECT_EQ(folder(), "/from/home/setting");
    Defaults(m_home / "config/tavelo/settings.json").set("vaultPath", "/from/setting");
    path.environment["XDG_CONFIG_HOME"] = (m_home / "config").string();
    EXPECT_EQ(folder(), "/from/setting");

    m_home.write("config/tavelo/settings.json", "broken");
    EXPECT_EQ(folder(), m_home / "Nextcloud/Diary");
    EXPECT_EQ(m_home.read("config/tavelo/settings.json"), "broken");
}

TEST_F(CommandsTest, showsADayFileAsItIs) {
    for (const std::string text :
         {"# 03-14\n\n## 2020\n\nOne.\n", "no line break at its end", "", "\r\n\r\n"}) {
        SCOPED_TRACE(text);
        writeDay("03-14.md", text);
        EXPECT_EQ(output({"show", "03-14"}), text);
    }
}

TEST_F(CommandsTest, showsTheTitleOfADayWithoutAFile) {
    EXPECT_EQ(output({"show", "03-14"}), "# 03-14\n");
    EXPECT_FALSE(fs::exists(m_vault));
}

TEST_F(CommandsTest, showsToday) {
    writeDay(m_today.monthDay().fileName(), "of today");
    EXPECT_EQ(output({"show"}), "of today");
    EXPECT_EQ(output({"show", "today"}), "of today");
    EXPECT_EQ(output({"show", "yesterday"}), DiaryStore::defaultText(m_yesterday.monthDay()));
}

TEST_F(CommandsTest, showsTheEntryOfOneYear) {
    writeDay("02-29.md", "# 02-29\n\n## 2019\n\n\n## 2020\n\nLeap.\n\n```\n## 2021\n```\n\n## 2023\nCommon.");
    EXPECT_EQ(output({"show", "2020-02-29"}), "Leap.\n\n```\n## 2021\n```\n");
    EXPECT_EQ(output({"show", "02-29", "--year", "2020"}), "Leap.\n\n```\n## 2021\n```\n");
    EXPECT_EQ(output({"show", "2023-02-29"}), "Common.\n");
    EXPECT_EQ(output({"show", "2019-02-29"}), "");
    EXPECT_EQ(output({"show", "2021-02-29"}), "");
    EXPECT_EQ(output({"show", "2024-03-14"}), "");
}

TEST_F(CommandsTest, showsAllSectionsOfAYear) {
    writeDay("03-14.md", "## 2020\nFirst.\n## 2021\nOther.\n## 2020\nSecond.\n");
    EXPECT_EQ(output({"show", "2020-03-14"}), "First.\n\nSecond.\n");
}

TEST_F(CommandsTest, repairsInvalidTextOnShowing) {
    writeDay("03-14.md", "caf\xe9\n");
    EXPECT_EQ(output({"show", "03-14"}), "caf" + replacementCharacter + "\n");
    EXPECT_EQ(readDay("03-14.md"), "caf\xe9\n");
}

TEST_F(CommandsTest, printsTheYearsThatHaveContent) {
    writeDay("03-14.md",
             "# 03-14\n\n## 2021\n\nx\n\n## 0987\n\nx\n\n## 2019\n\n \n\n## 2018\n\n```\n## 2022\n```\n");
    EXPECT_EQ(output({"years", "03-14"}), "987\n2018\n2021\n");
    EXPECT_EQ(output({"years", "03-15"}), "");
}

TEST_F(CommandsTest, writesAnEntryFromStandardInput) {
    EXPECT_EQ(output({"write", "03-14", "--year", "2024"}, "\n  Hello.\n\nWorld.\n\n"), "");
    EXPECT_EQ(readDay("03-14.md"), "# 03-14\n\n## 2024\n\nHello.\n\nWorld.\n");
    EXPECT_EQ(vaultNames(), Names{"03-14.md"});
}

TEST_F(CommandsTest, writesOnlyTheYearItIsGiven) {
    writeDay("03-14.md", "# 03-14\n\nPreamble.\n\n## 2020\n\nOld.\n\n## 2022\n\nKept.\n");
    output({"write", "2020-03-14"}, "New.");
    output({"write", "03-14", "--year", "2021"}, "Between.");
    EXPECT_EQ(readDay("03-14.md"),
              "# 03-14\n\nPreamble.\n\n## 2020\n\nNew.\n\n## 2021\n\nBetween.\n\n## 2022\n\nKept.\n");
}

TEST_F(CommandsTest, writesDaysThatTheYearLacks) {
    output({"write", "2023-02-29"}, "Common.");
    output({"write", "02-30", "--year", "1000"}, "Never.");
    EXPECT_EQ(readDay("02-29.md"), "# 02-29\n\n## 2023\n\nCommon.\n");
    EXPECT_EQ(readDay("02-30.md"), "# 02-30\n\n## 1000\n\nNever.\n");
}

TEST_F(CommandsTest, writesToTheYearOfTodayAndYesterday) {
    output({"write", "today"}, "Now.");
    output({"write", "yesterday"}, "Then.");
    EXPECT_THAT(readDay(m_today.monthDay().fileName()),
                HasSubstr("## " + std::to_string(m_today.year) + "\n\nNow.\n"));
    EXPECT_THAT(readDay(m_yesterday.monthDay().fileName()),
                HasSubstr("## " + std::to_string(m_yesterday.year) + "\n\nThen.\n"));
}

TEST_F(CommandsTest, repairsInvalidTextOnWriting) {
    output({"write", "2024-03-14"}, "caf\xe9 \xe2\x82");
    EXPECT_EQ(readDay("03-14.md"),
              "# 03-14\n\n## 2024\n\ncaf" + replacementCharacter + " " + replacementCharacter + "\n");
}

TEST_F(CommandsTest, keepsWhatLooksLikeStructureInsideItsEntry) {
    const std::string neighbours = "# 03-14\n\n## 2020\n\nBefore.\n\n## 2022\n\nAfter.\n";
    for (const std::string entry : {"## 2022\n\nNot another year.", "x\n```\n## 2020\nopen fence",
                                    "```\n## 2020\n```\n\n## 2020", "# 03-14\n\n## 1999\n## 2021"}) {
        SCOPED_TRACE(entry);
        writeDay("03-14.md", neighbours);
        output({"write", "2021-03-14"}, entry);
        EXPECT_EQ(output({"years", "03-14"}), "2020\n2021\n2022\n");
        EXPECT_EQ(output({"show", "2020-03-14"}), "Before.\n");
        EXPECT_EQ(output({"show", "2022-03-14"}), "After.\n");

        writeDay("03-14.md", neighbours);
        output({"append", "2021-03-14", entry});
        output({"append", "2021-03-14"}, "Last.\n");
        EXPECT_EQ(output({"years", "03-14"}), "2020\n2021\n2022\n");
        EXPECT_THAT(output({"show", "2021-03-14"}), ::testing::EndsWith("\n\nLast.\n"));
        EXPECT_EQ(output({"show", "2022-03-14"}), "After.\n");
    }
}

TEST_F(CommandsTest, writesLongTextsWhole) {
    std::string entry;
    for (int line = 0; line < 100'000; ++line)
        entry += "Zeile " + std::to_string(line) + " – ü\n";
    output({"write", "2024-03-14"}, entry);
    EXPECT_EQ(output({"show", "2024-03-14"}), entry);
}

TEST_F(CommandsTest, emptiesAnEntryByWritingWhitespace) {
    writeDay("03-14.md", "# 03-14\n\n## 2020\n\nOld.\n\n## 2021\n\nKept.\n");
    output({"write", "2020-03-14"}, " \n\xe3\x80\x80\n");
    EXPECT_EQ(output({"show", "2020-03-14"}), "");
    EXPECT_EQ(output({"show", "2021-03-14"}), "Kept.\n");
}

TEST_F(CommandsTest, changesNothingByEmptyingWhatIsEmpty) {
    output({"write", "2020-03-14"}, "\n");
    EXPECT_FALSE(fs::exists(m_vault));
    const std::string text = "# 03-14\n\n## 2021\n\nKept.\n";
    writeDay("03-14.md", text);
    output({"write", "2020-03-14"}, "");
    EXPECT_EQ(readDay("03-14.md"), text);
}

TEST_F(CommandsTest, replacesAllSectionsOfTheYear) {
    writeDay("03-14.md", "## 2020\nFirst.\n## 2021\nKept.\n## 2020\nSecond.\n");
    output({"write", "2020-03-14"}, "Only.");
    EXPECT_EQ(output({"show", "2020-03-14"}), "Only.\n");
    EXPECT_EQ(output({"show", "2021-03-14"}), "Kept.\n");
}

TEST_F(CommandsTest, appendsParagraphs) {
    output({"append", "2024-03-14", "Hello", "world."});
    EXPECT_EQ(readDay("03-14.md"), "# 03-14\n\n## 2024\n\nHello world.\n");
    output({"append", "2024-03-14"}, "\nFrom input.\n- a\n- b\n\n");
    output({"append", "2024-03-14", "-", "item"});
    output({"append", "--", "2024-03-14", "--root", "is text"});
    EXPECT_EQ(readDay("03-14.md"), "# 03-14\n\n## 2024\n\nHello world.\n\nFrom input.\n- a\n- b\n\n- item\n\n"
                                   "--root is text\n");
    EXPECT_EQ(vaultNames(), Names{"03-14.md"});
}

TEST_F(CommandsTest, appendsToThisYearUnlessTheDayTellsAnother) {
    output({"append", "Now."});
    output({"append", "today"}, "Input.");
    output({"append", "yesterday", "Then."});
    output({"append", "02-30", "Never."});
    const auto header = [](std::int64_t year) { return "## " + std::to_string(year) + "\n\n"; };
    EXPECT_EQ(readDay(m_today.monthDay().fileName()),
              DiaryStore::defaultText(m_today.monthDay()) + "\n" + header(m_today.year) + "Now.\n\nInput.\n");
    EXPECT_EQ(readDay(m_yesterday.monthDay().fileName()),
              DiaryStore::defaultText(m_yesterday.monthDay()) + "\n" + header(m_yesterday.year) + "Then.\n");
    EXPECT_EQ(readDay("02-30.md"), "# 02-30\n\n" + header(m_today.year) + "Never.\n");
}

TEST_F(CommandsTest, keepsTheOtherYearsWhenAppending) {
    writeDay("03-14.md", "# 03-14\n\n## 2020\n\nOne.\n\n## 2022\n\nThree.\n");
    output({"append", "2020-03-14", "More."});
    output({"append", "2021-03-14", "Two."});
    EXPECT_EQ(readDay("03-14.md"),
              "# 03-14\n\n## 2020\n\nOne.\n\nMore.\n\n## 2021\n\nTwo.\n\n## 2022\n\nThree.\n");
}

TEST_F(CommandsTest, appendsAfterAnOpenFence) {
    writeDay("03-14.md", "# 03-14\n\n## 2020\n\n```\ncode\n");
    output({"append", "2020-03-14", "Prose."});
    EXPECT_EQ(output({"show", "2020-03-14"}), "```\ncode\n```\n\nProse.\n");
}

TEST_F(CommandsTest, repairsInvalidTextOnAppending) {
    output({"append", "2024-03-14", "caf\xe9"});
    output({"append", "2024-03-14"}, "\xff");
    EXPECT_EQ(readDay("03-14.md"),
              "# 03-14\n\n## 2024\n\ncaf" + replacementCharacter + "\n\n" + replacementCharacter + "\n");
}

TEST_F(CommandsTest, refusesToAppendNothing) {
    expectWrongUsage(run({"append"}), "nothing to append");
    expectWrongUsage(run({"append", "03-14"}, " \n\t\n"), "nothing to append");
    expectWrongUsage(run({"append", "03-14", " "}, "not read"), "nothing to append");
    EXPECT_FALSE(fs::exists(m_vault));
}

TEST_F(CommandsTest, mergesTwoFiles) {
    m_home.write("mine", "# 03-14\n\n## 2020\n\nSame.\n\n## 2021\n\nMine.\n");
    m_home.write("theirs", "# 03-14\n\n## 2019\n\nNew.\n\n## 2020\n\nSame.\n\nMore.\n\n## 2021\n\nTheirs.\n");
    const Words words = {"merge", m_home / "mine", m_home / "theirs", "--day", "03-14"};
    const std::string start =
        "# 03-14\n\n## 2019\n\nNew.\n\n## 2020\n\nSame.\n\nMore.\n\n## 2021\n\nMine.\n\n";
    EXPECT_EQ(output(words), start + DiaryStore::Options{}.conflictMarker + "\n\nTheirs.\n");

    auto marked = words;
    marked.insert(marked.end(), {"--marker", "-- or --"});
    EXPECT_EQ(output(marked), start + "-- or --\n\nTheirs.\n");
    EXPECT_EQ(m_home.names(), (Names{"mine", "theirs"}));
}

TEST_F(CommandsTest, mergesRepeatedSectionsAndOpenFencesWithoutLoss) {
    m_home.write("mine", "## 2020\nFirst.\n## 2020\nSecond.\n## 2021\n```\nopen\n");
    m_home.write("theirs", "## 2020\nFirst.\n## 2022\ncaf\xe9\n");
    EXPECT_EQ(output({"merge", m_home / "mine", m_home / "theirs", "--day", "2020-03-14"}),
              "# 03-14\n\n## 2020\n\nFirst.\n\nSecond.\n\n## 2021\n\n```\nopen\n```\n\n## 2022\n\ncaf" +
                  replacementCharacter + "\n");
}

TEST_F(CommandsTest, tellsWhichMergeInputCannotBeRead) {
    m_home.write("there", "");
    fs::create_directory(m_home / "folder");
    m_home.write("closed", "");
    fs::permissions(m_home / "closed", fs::perms::none);
    struct Row {
        const char *name;
        const char *error;
    };
    const Row rows[] = {
        {"missing", "No such file or directory"},
        {"folder", "Is a directory"},
        {"closed", "Permission denied"},
        {"there/below", "Not a directory"},
    };
    for (const auto &[name, error] : rows) {
        SCOPED_TRACE(name);
        const auto bad = (m_home / name).string();
        expectFailure(run({"merge", m_home / "there", bad, "--day", "03-14"}), bad + ": " + error);
        expectFailure(run({"merge", bad, m_home / "there", "--day", "03-14"}), bad + ": " + error);
    }
}

TEST_F(CommandsTest, failsWhenItsOutputGoesNowhere) {
    writeDay("03-14.md", "# 03-14\n\n## 2020\n\nx\n");
    m_home.write("file", "x");
    const Words calls[] = {
        {"path", "03-14"},
        {"show", "03-14"},
        {"show", "2020-03-14"},
        {"years", "03-14"},
        {"--help"},
        {"--version"},
        {"merge", m_home / "file", m_home / "file", "--day", "03-14"},
    };
    for (const auto &words : calls) {
        SCOPED_TRACE(::testing::PrintToString(words));
        auto failing = call(words);
        failing.output = ProgramCall::Output::File;
        failing.outputFile = "/dev/full";
        expectFailure(runProgram(failing), "standard output: No space left on device");
        failing.output = ProgramCall::Output::ClosedPipe;
        expectFailure(runProgram(failing), "standard output: Broken pipe");
        failing.output = ProgramCall::Output::Closed;
        expectFailure(runProgram(failing), "standard output: Bad file descriptor");
    }
}

TEST_F(CommandsTest, keepsTheEntryWhenThereIsNoInputToRead) {
    const std::string text = "# 03-14\n\n## 2020\n\nKept.\n";
    writeDay("03-14.md", text);
    for (const Words &words : {Words{"write", "2020-03-14"}, Words{"append", "2020-03-14"}}) {
        auto failing = call(words);
        failing.inputStream = ProgramCall::Stream::Closed;
        expectFailure(runProgram(failing), "standard input: Bad file descriptor");
        EXPECT_EQ(readDay("03-14.md"), text);
    }
}

TEST_F(CommandsTest, savesWithoutAnOutputToWriteTo) {
    auto silent = call({"append", "2020-03-14", "Text."});
    silent.output = ProgramCall::Output::Closed;
    EXPECT_EQ(runProgram(silent).exitCode, 0);
    EXPECT_EQ(readDay("03-14.md"), "# 03-14\n\n## 2020\n\nText.\n");
}

TEST_F(CommandsTest, cannotSaveInAReadOnlyVault) {
    const std::string text = "# 03-14\n\n## 2020\n\nKept.\n";
    writeDay("03-14.md", text);
    fs::permissions(m_vault, fs::perms::owner_read | fs::perms::owner_exec);
    const auto message = (m_vault / "03-14.md").string() + ": Permission denied";
    expectFailure(run({"write", "2020-03-14"}, "New."), message);
    expectFailure(run({"append", "2020-03-14", "New."}), message);
    expectFailure(run({"append", "2020-03-15", "New."}),
                  (m_vault / "03-15.md").string() + ": Permission denied");
    EXPECT_EQ(output({"show", "03-14"}), text);
    fs::permissions(m_vault, fs::perms::owner_all);
    EXPECT_EQ(vaultNames(), Names{"03-14.md"});
    EXPECT_EQ(readDay("03-14.md"), text);
}

TEST_F(CommandsTest, cannotSaveOverAWriteProtectedDay) {
    const std::string text = "# 03-14\n\n## 2020\n\nKept.\n";
    writeDay("03-14.md", text);
    fs::permissions(m_vault / "03-14.md", fs::perms::owner_read);
    expectFailure(run({"append", "2020-03-14", "New."}),
                  (m_vault / "03-14.md").string() + ": Permission denied");
    EXPECT_EQ(readDay("03-14.md"), text);
    EXPECT_EQ(vaultNames(), Names{"03-14.md"});
}

TEST_F(CommandsTest, takesADayThatCannotBeReadForNoEmptyOne) {
    const std::string text = "# 03-14\n\n## 2020\n\nKept.\n";
    writeDay("03-14.md", text);
    fs::permissions(m_vault / "03-14.md", fs::perms::none);
    fs::create_directory(m_vault / "03-15.md");
    const auto denied = (m_vault / "03-14.md").string() + ": Permission denied";
    expectFailure(run({"show", "03-14"}), denied);
    expectFailure(run({"show", "2020-03-14"}), denied);
    expectFailure(run({"years", "03-14"}), denied);
    expectFailure(run({"write", "2020-03-14"}, "New."), denied);
    expectFailure(run({"append", "2020-03-14", "New."}), denied);
    expectFailure(run({"show", "03-15"}), (m_vault / "03-15.md").string() + ": Is a directory");
    fs::permissions(m_vault / "03-14.md", fs::perms::owner_all);
    EXPECT_EQ(readDay("03-14.md"), text);
}

TEST_F(CommandsTest, cannotUseAFileAsItsVault) {
    m_home.write("vault", "a file");
    expectFailure(run({"show", "03-14"}), (m_vault / "03-14.md").string() + ": Not a directory");
    const auto result = run({"append", "text"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.errors, StartsWith("tavelo-cli: " + m_vault.string()));
    EXPECT_THAT(result.errors, ::testing::EndsWith(": Not a directory\n"));
    EXPECT_EQ(m_home.read("vault"), "a file");
}

TEST_F(CommandsTest, tellsAnErrorInOneLineWhateverThePath) {
    m_vault = m_home / "two\nlines\x1b[31m";
    m_home.write(m_vault, "a file");
    const auto errors = run({"show", "03-14"}).errors;
    EXPECT_THAT(errors, ::testing::EndsWith("/two?lines?[31m/03-14.md: Not a directory\n"));
    EXPECT_EQ(errors.find('\n'), errors.size() - 1);
}

} // namespace

} // namespace diary::cli

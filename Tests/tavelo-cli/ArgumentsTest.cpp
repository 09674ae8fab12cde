// SPDX-License-Identifier: MIT
#include "tavelo-cli/Arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace diary::cli {

namespace {

using Words = std::vector<std::string>;
using Action = Arguments::Action;
using ::testing::HasSubstr;

constexpr DiaryDay today{2024, 3, 1};
constexpr DiaryDay newYear{2024, 1, 1};

Arguments parsed(const Words &words, const DiaryDay &day = today) {
    return parseArguments(words, day);
}

// The complaint; empty when there is none.
std::string complaint(const Words &words) {
    try {
        parseArguments(words, today);
    } catch (const UsageError &error) {
        return error.what();
    }
    return {};
}

TEST(Arguments, readADay) {
    struct Row {
        const char *word;
        MonthDay day;
    };
    const Row rows[] = {
        {"03-14", {3, 14}},      {"01-01", {1, 1}},      {"12-31", {12, 31}},      {"02-30", {2, 30}},
        {"2024-03-14", {3, 14}}, {"1000-01-01", {1, 1}}, {"9999-12-31", {12, 31}}, {"2023-02-29", {2, 29}},
        {"today", {3, 1}},       {"yesterday", {2, 29}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.word);
        for (const char *command : {"path", "show", "years"})
            EXPECT_EQ(parsed({command, row.word}).day, row.day);
        EXPECT_EQ(parsed({"append", row.word, "text"}).day, row.day);
        EXPECT_EQ(parsed({"merge", "a", "b", "--day", row.word}).day, row.day);
    }
}

TEST(Arguments, refuseWhatIsNoDay) {
    for (const char *word :
         {"",           "13-01",       "00-10",     "03-00",      "03-32",      "3-14",
          "03-1",       "03_14",       "0314",      "03-14.md",   "-03-14x",    "999-03-14",
          "0999-03-14", "10000-03-14", "2024-3-14", "2024/03-14", "202-403-14", "2024-13-01",
          "+999-03-14", "2024-",       "Today",     "tomorrow",   "03-14 "}) {
        SCOPED_TRACE(word);
        EXPECT_THAT(complaint({"show", word}), HasSubstr("is no day"));
        EXPECT_THAT(complaint({"write", word, "--year", "2024"}), HasSubstr("is no day"));
        EXPECT_THAT(complaint({"merge", "a", "b", "--day", word}), HasSubstr("is no day"));
    }
}

TEST(Arguments, meanTodayWithoutADay) {
    for (const char *command : {"path", "show", "years", "append"}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(parsed({command}).day, today.monthDay());
    }
}

TEST(Arguments, takeTheYearOfShowFromTheOptionOrTheDate) {
    struct Row {
        Words words;
        std::optional<std::int64_t> year;
    };
    const Row rows[] = {
        {{"show"}, std::nullopt},
        {{"show", "03-14"}, std::nullopt},
        {{"show", "today"}, std::nullopt},
        {{"show", "yesterday"}, std::nullopt},
        {{"show", "2020-03-14"}, 2020},
        {{"show", "--year", "2020"}, 2020},
        {{"show", "03-14", "--year=1000"}, 1000},
        {{"show", "--year", "9999", "today"}, 9999},
        {{"show", "2020-03-14", "--year", "2020"}, 2020},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.words));
        EXPECT_EQ(parsed(row.words).year, row.year);
    }
}

TEST(Arguments, takeTheYearOfWriteFromTheOptionOrTheDay) {
    struct Row {
        Words words;
        std::int64_t year;
    };
    const Row rows[] = {
        {{"write", "2020-01-01"}, 2020},
        {{"write", "01-01", "--year", "2021"}, 2021},
        {{"write", "today"}, 2024},
        {{"write", "yesterday"}, 2023},
        {{"write", "today", "--year", "2019"}, 2019},
        {{"write", "2020-01-01", "--year", "2020"}, 2020},
        {{"write", "01-01", "--year", "2021", "--year", "2022"}, 2022},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.words));
        EXPECT_EQ(parsed(row.words, newYear).year, row.year);
    }
}

TEST(Arguments, needADayAndAYearToWrite) {
    EXPECT_THAT(complaint({"write"}), HasSubstr("no day"));
    EXPECT_THAT(complaint({"write", "--year", "2024"}), HasSubstr("no day"));
    EXPECT_THAT(complaint({"write", "03-14"}), HasSubstr("no year"));
}

TEST(Arguments, refuseWhatIsNoYear) {
    for (const char *year : {"", "0", "999", "0999", "10000", "-2024", "+2024", "2024x", " 2024", "20 4"}) {
        SCOPED_TRACE(year);
        EXPECT_THAT(complaint({"show", "--year", year}), HasSubstr("is no year"));
        EXPECT_THAT(complaint({"write", "03-14", "--year", year}), HasSubstr("is no year"));
    }
}

TEST(Arguments, refuseTwoDifferentYears) {
    for (const char *command : {"show", "write"})
        EXPECT_THAT(complaint({command, "2020-03-14", "--year", "2021"}), HasSubstr("different years"));
}

TEST(Arguments, readWhatToAppend) {
    struct Row {
        Words words; // after the command
        MonthDay day;
        std::int64_t year;
        std::optional<std::string> text;
    };
    const MonthDay ofToday = newYear.monthDay();
    const Row rows[] = {
        {{}, ofToday, 2024, std::nullopt},
        {{"today"}, ofToday, 2024, std::nullopt},
        {{"yesterday"}, {12, 31}, 2023, std::nullopt},
        {{"03-14"}, {3, 14}, 2024, std::nullopt},
        {{"2020-03-14"}, {3, 14}, 2020, std::nullopt},
        {{"hello"}, ofToday, 2024, "hello"},
        {{"hello", "two  spaces", "world"}, ofToday, 2024, "hello two  spaces world"},
        {{"03-14", "hello", "world"}, {3, 14}, 2024, "hello world"},
        {{"yesterday", "hello"}, {12, 31}, 2023, "hello"},
        {{"hello", "03-14"}, ofToday, 2024, "hello 03-14"},
        {{"03-14", "03-15"}, {3, 14}, 2024, "03-15"},
        {{"13-14", "x"}, ofToday, 2024, "13-14 x"},
        {{"0999-03-14"}, ofToday, 2024, "0999-03-14"},
        {{"today I saw"}, ofToday, 2024, "today I saw"},
        {{"-", "milk"}, ofToday, 2024, "- milk"},
        {{"- milk"}, ofToday, 2024, "- milk"},
        {{"-5 degrees"}, ofToday, 2024, "-5 degrees"},
        {{"--", "--root", "-x"}, ofToday, 2024, "--root -x"},
        {{"--", "03-14", "--"}, {3, 14}, 2024, "--"},
        {{"", "x"}, ofToday, 2024, " x"},
        {{"caf\xe9"}, ofToday, 2024, "caf\xef\xbf\xbd"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.words));
        Words words{"append"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        const auto arguments = parsed(words, newYear);
        EXPECT_EQ(arguments.day, row.day);
        EXPECT_EQ(arguments.year, row.year);
        EXPECT_EQ(arguments.text, row.text);
    }
}

TEST(Arguments, refuseToAppendNothing) {
    for (const Words &words :
         {Words{"append", ""}, Words{"append", "03-14", " \t", "\n"}, Words{"append", "\xe3\x80\x80"}}) {
        SCOPED_TRACE(::testing::PrintToString(words));
        EXPECT_EQ(complaint(words), "nothing to append");
    }
}

TEST(Arguments, readAMerge) {
    const auto plain = parsed({"merge", "mine.md", "theirs.md", "--day", "03-14"});
    EXPECT_EQ(plain.command, Command::Merge);
    EXPECT_THAT(plain.files, ::testing::ElementsAre("mine.md", "theirs.md"));
    EXPECT_EQ(plain.day, (MonthDay{3, 14}));
    EXPECT_EQ(plain.marker, std::nullopt);

    const auto marked = parsed({"merge", "--marker", "-- or --", "--day=03-14", "--", "-a", "--b"});
    EXPECT_THAT(marked.files, ::testing::ElementsAre("-a", "--b"));
    EXPECT_EQ(marked.marker, "-- or --");
}

TEST(Arguments, needTwoFilesAndADayToMerge) {
    EXPECT_THAT(complaint({"merge", "--day", "03-14"}), HasSubstr("two files"));
    EXPECT_THAT(complaint({"merge", "a", "--day", "03-14"}), HasSubstr("two files"));
    EXPECT_THAT(complaint({"merge", "a", "b"}), HasSubstr("no --day"));
    EXPECT_EQ(complaint({"merge", "a", "b", "c", "--day", "03-14"}), "unexpected argument 'c'");
}

TEST(Arguments, refuseAMarkerThatWouldBeStructure) {
    for (const char *marker :
         {"", "  ", "two\nlines", "two\rlines", "## 2024", "##\t2024 ", "```", "  ```c"}) {
        SCOPED_TRACE(marker);
        EXPECT_THAT(complaint({"merge", "a", "b", "--day", "03-14", "--marker", marker}),
                    HasSubstr("the marker must be"));
    }
    EXPECT_EQ(parsed({"merge", "a", "b", "--day", "03-14", "--marker", "### 2024"}).marker, "### 2024");
}

TEST(Arguments, readTheFolderAnywhereBeforeTheEndOfOptions) {
    for (const Words &words :
         {Words{"--root", "/a b", "path"}, Words{"--root=/a b", "path"}, Words{"path", "--root", "/a b"},
          Words{"--root", "/x", "path", "--root=/a b"}}) {
        SCOPED_TRACE(::testing::PrintToString(words));
        EXPECT_EQ(parsed(words).root, "/a b");
        EXPECT_EQ(parsed(words).command, Command::Path);
    }
    EXPECT_EQ(parsed({"path"}).root, std::nullopt);
    EXPECT_EQ(parsed({"--root", "--help", "path"}).root, "--help");
    EXPECT_EQ(parsed({"--root==x=y", "path"}).root, "=x=y");
}

TEST(Arguments, refuseWrongUsage) {
    struct Row {
        Words words;
        const char *complaint;
    };
    const Row rows[] = {
        {{}, "no command given"},
        {{"--"}, "no command given"},
        {{"--root", "/x"}, "no command given"},
        {{""}, "unknown command ''"},
        {{"paths"}, "unknown command 'paths'"},
        {{"--", "--help"}, "unknown command '--help'"},
        {{"--bogus", "path"}, "unknown option '--bogus'"},
        {{"path", "-x"}, "unknown option '-x'"},
        {{"path", "--help=all"}, "unknown option '--help'"},
        {{"append", "---"}, "unknown option '---'"},
        {{"--root"}, "--root needs a value"},
        {{"show", "--year"}, "--year needs a value"},
        {{"--root", "", "path"}, "--root needs a folder"},
        {{"--root=", "path"}, "--root needs a folder"},
        {{"path", "--year", "2024"}, "path has no option --year"},
        {{"years", "--year=2024"}, "years has no option --year"},
        {{"append", "--year", "2024", "x"}, "append has no option --year"},
        {{"show", "--day", "03-14"}, "show has no option --day"},
        {{"write", "03-14", "--marker", "x"}, "write has no option --marker"},
        {{"merge", "a", "b", "--day", "03-14", "--year", "2024"}, "merge has no option --year"},
        {{"path", "03-14", "03-15"}, "unexpected argument '03-15'"},
        {{"show", "03-14", "2024"}, "unexpected argument '2024'"},
        {{"years", "03-14", ""}, "unexpected argument ''"},
        {{"write", "2024-03-14", "text"}, "unexpected argument 'text'"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.words));
        EXPECT_EQ(complaint(row.words), row.complaint);
    }
}

TEST(Arguments, askForHelpAndTheVersion) {
    struct Row {
        Words words;
        Action action;
        std::optional<Command> command;
    };
    const Row rows[] = {
        {{"--help"}, Action::ShowHelp, std::nullopt},
        {{"--root", "/x", "--help"}, Action::ShowHelp, std::nullopt},
        {{"write", "--help"}, Action::ShowHelp, Command::Write},
        {{"merge", "a", "--help", "--bogus"}, Action::ShowHelp, Command::Merge},
        {{"--version"}, Action::ShowVersion, std::nullopt},
        {{"--version", "--help"}, Action::ShowVersion, std::nullopt},
        {{"path"}, Action::Run, Command::Path},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.words));
        EXPECT_EQ(parsed(row.words).action, row.action);
        EXPECT_EQ(parsed(row.words).command, row.command);
    }
}

TEST(CommandList, explainsEachCommandAndItsOptions) {
    const auto general = helpText(std::nullopt);
    for (const auto &command : commandList()) {
        SCOPED_TRACE(command.name);
        EXPECT_EQ(commandNamed(command.name), command.command);
        EXPECT_THAT(general, HasSubstr("\n  " + std::string(command.name) + " "));
        EXPECT_THAT(general, HasSubstr(std::string(command.summary) + "\n"));
        const auto own = helpText(command.command);
        EXPECT_THAT(own, HasSubstr(std::string(command.name) + " " + std::string(command.synopsis) + "\n"));
        EXPECT_THAT(own, HasSubstr(std::string(command.details)));
        for (const auto option : command.options)
            EXPECT_THAT(std::string(command.synopsis),
                        HasSubstr(std::string(nameOf(option)) + (takesValue(option) ? " " : "]")));
    }
    for (const char *option : {"--root", "--help", "--version"})
        EXPECT_THAT(general, HasSubstr(option));
}

} // namespace

} // namespace diary::cli

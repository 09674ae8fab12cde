// SPDX-License-Identifier: MIT
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace diary::YearSectionParser {

// Found by argument lookup when an expectation fails.
void PrintTo(const Section &section, std::ostream *out) {
    *out << section.year << " header " << section.headerRange.begin << ".." << section.headerRange.end
         << " body " << section.bodyRange.begin << ".." << section.bodyRange.end;
}
void PrintTo(const YearBody &body, std::ostream *out) {
    *out << body.year << ' ' << ::testing::PrintToString(body.body);
}
void PrintTo(const EnsuredSection &ensured, std::ostream *out) {
    *out << ensured.caretUTF16Offset << " in " << ::testing::PrintToString(ensured.text);
}

namespace {

constexpr MonthDay march14{3, 14};
constexpr std::string_view twoYears = "# 03-14\n\n## 2023\n\nfirst\n\n## 2024\n\nsecond\n";

std::vector<std::int64_t> yearsOf(std::string_view text) {
    std::vector<std::int64_t> years;
    for (const auto &section : sections(text))
        years.push_back(section.year);
    return years;
}

using Years = std::vector<std::int64_t>;

TEST(YearSectionParser, knowsYearHeaders) {
    struct Row {
        std::string_view line;
        std::int64_t year;
    };
    const std::vector<Row> rows = {
        {"## 2024", 2024},         {"##\t2024  ", 2024}, {"## 2024\r", 2024}, {"## \t \t2024", 2024},
        {"## 2024 \t\r \r", 2024}, {"## 0000", 0},       {"## 0007", 7},      {"##  9999\t", 9999},
    };
    for (const auto &row : rows)
        EXPECT_EQ(yearHeader(row.line), row.year) << row.line;
}

TEST(YearSectionParser, takesNoOtherLineForAYearHeader) {
    const std::vector<std::string_view> lines = {
        "",
        "#",
        "##",
        "## ",
        "##2024",
        "## 2024 trip",
        "## 24",
        "## 202",
        "## 20245",
        " ## 2024",
        "\t## 2024",
        "### 2024",
        "# 2024",
        "#2024",
        "## 2024.",
        "## -2024",
        "## +2024",
        "## 2024 2025",
        "## 20 24",
        "## 2O24",
        "##\u00A02024",
        "## \u00A02024",
        "## 2024\u00A0",
        "## 2024\n",
        "## 2024\v",
        "## 2024 ##",
        "##\r2024",
        "## \r2024",
        "## 2024\r\n",
        "##\n2024",
        "\uFEFF## 2024",
        "## \u0662\u0660\u0662\u0664",
        "## \uFF12024",
        "## 202\u0664",
        "## 2024\u0301",
        "## 2024 \u0301",
        "## \u03012024",
        "##\u0301 2024",
        "## 2024a",
        "a## 2024",
        "## 2024\r a",
        "## 2024\xE2\x80",
    };
    for (const auto line : lines)
        EXPECT_EQ(yearHeader(line), std::nullopt) << ::testing::PrintToString(line);
}

TEST(YearSectionParser, findsEachSectionWithItsRanges) {
    const std::string_view text = "# 03-14\n\n## 2023\n\nfirst\n\n## 2024\n\nsecond\n";
    const std::vector<Section> expected = {
        {2023, {9, 17}, {17, 25}},
        {2024, {25, 33}, {33, 41}},
    };
    const auto found = sections(text);
    EXPECT_EQ(found, expected);
    EXPECT_EQ(found[0].headerRange.in(text), "## 2023\n");
    EXPECT_EQ(found[0].bodyRange.in(text), "\nfirst\n\n");
    EXPECT_EQ(found[1].bodyRange.in(text), "\nsecond\n");
}

TEST(YearSectionParser, endsTheLastHeaderAtTheEndOfATextWithoutLineBreak) {
    EXPECT_EQ(sections("## 2023\n## 2024"),
              (std::vector<Section>{{2023, {0, 8}, {8, 8}}, {2024, {8, 15}, {15, 15}}}));
}

TEST(YearSectionParser, keepsDocumentOrderAndRepeatedYears) {
    EXPECT_EQ(yearsOf("## 2024\na\n## 2022\nb\n## 2024\nc\n"), (Years{2024, 2022, 2024}));
}

TEST(YearSectionParser, findsNoSectionInATextWithoutHeaders) {
    for (const std::string_view text : {"", "\n", "# 03-14\n", "a ## 2024", "a\n ## 2024\n### 2024\n## 24\n"})
        EXPECT_TRUE(sections(text).empty()) << text;
}

TEST(YearSectionParser, takesWhatPrecedesTheFirstHeaderForThePreamble) {
    EXPECT_EQ(documentPreamble(twoYears), "# 03-14");
    EXPECT_EQ(documentPreamble(" \n\u3000# 03-14\nnote\n\t\n## 2024\n"), "# 03-14\nnote");
    EXPECT_EQ(documentPreamble("## 2024\nbody"), std::nullopt);
    EXPECT_EQ(documentPreamble(" \n\n## 2024\nbody"), std::nullopt);
}

TEST(YearSectionParser, takesAWholeTextWithoutHeadersForThePreamble) {
    EXPECT_EQ(documentPreamble("\n a note \r\n"), "a note");
    EXPECT_EQ(documentPreamble(""), std::nullopt);
    EXPECT_EQ(documentPreamble(" \t\r\n\u2003\u0085"), std::nullopt);
}

TEST(YearSectionParser, readsBodiesTrimmedInDocumentOrder) {
    EXPECT_EQ(sectionBodies(twoYears), (std::vector<YearBody>{{2023, "first"}, {2024, "second"}}));
    EXPECT_EQ(sectionBodies("## 2024\n\n \u00A0 a\n\n b \t\r\n\n## 2022\n \n## 2024\nc"),
              (std::vector<YearBody>{{2024, "a\n\n b"}, {2022, ""}, {2024, "c"}}));
    EXPECT_TRUE(sectionBodies("# 03-14\n").empty());
}

TEST(YearSectionParser, treatsCarriageReturnWithLineFeedAsNoLineEnd) {
    EXPECT_TRUE(sections("# 03-14\r\n\r\n## 2024\r\n\r\nbody\r\n").empty());
    EXPECT_TRUE(sections("## 2024\r\nbody\r\n").empty());
    EXPECT_EQ(documentPreamble("# 03-14\r\n\r\n## 2024\r\n"), "# 03-14\r\n\r\n## 2024");
    EXPECT_EQ(yearsOf("a\r\n## 2023\n## 2024\nb"), Years{2024});
    EXPECT_EQ(yearsOf("## 2023\r\n\n## 2024\n"), Years{2024});
}

TEST(YearSectionParser, endsNoLineAtALoneCarriageReturn) {
    EXPECT_TRUE(sections("a\r## 2024\n").empty());
    EXPECT_EQ(yearsOf("a\n\r## 2023\n## 2024\r"), Years{2024});
    EXPECT_EQ(yearsOf("a\r\r\n## 2024\n"), Years{});
    EXPECT_EQ(yearsOf("a\r\n\n## 2024\n"), Years{2024});
}

TEST(YearSectionParser, hidesHeadersInsideFences) {
    EXPECT_EQ(yearsOf("## 2019\n```\n## 2020\n```\n## 2021\n"), (Years{2019, 2021}));
    EXPECT_EQ(sectionBodies("## 2019\n\n```\n## 2020\n```\n\n## 2021\n"),
              (std::vector<YearBody>{{2019, "```\n## 2020\n```"}, {2021, ""}}));
    EXPECT_EQ(documentPreamble("```\n## 2020\n```\n## 2021\n"), "```\n## 2020\n```");
}

TEST(YearSectionParser, hidesAllHeadersAfterAFenceThatStaysOpen) {
    EXPECT_EQ(yearsOf("## 2019\n```\n## 2020\n\n## 2021\n"), Years{2019});
    EXPECT_EQ(yearsOf("## 2019\n```\na\n```\n```\n## 2020\n"), Years{2019});
}

TEST(YearSectionParser, togglesTheFenceAtAnyLineThatBeginsWithThreeBackticks) {
    for (const std::string_view fence : {"```", "   ```", "                        ```", "```swift", "````",
                                         "``` ## 2020", "  ```\t", "```\r\nmore", "```a```"}) {
        const auto text =
            "## 2019\n" + std::string(fence) + "\n## 2020\n" + std::string(fence) + "\n## 2021\n";
        EXPECT_EQ(yearsOf(text), (Years{2019, 2021})) << fence;
    }
}

TEST(YearSectionParser, togglesTheFenceAtNoOtherLine) {
    for (const std::string_view line : {"``", "\t```", " \t```", "a```", "~~~", "` ``", "\u00A0```", "\r```",
                                        "a\r\n```", "```\u0301", "```\u200D", "  ```\u0903", "> ```"}) {
        const auto text = "## 2019\n" + std::string(line) + "\n## 2020\n";
        EXPECT_EQ(yearsOf(text), (Years{2019, 2020})) << line;
    }
}

TEST(YearSectionParser, opensAFenceInTheFirstLineAndTheLast) {
    EXPECT_TRUE(sections("```\n## 2020\n").empty());
    EXPECT_EQ(yearsOf("## 2020\n```"), Years{2020});
}

TEST(YearSectionParser, reportsTheYearsWithContent) {
    EXPECT_EQ(yearsWithContent(twoYears), (std::set<std::int64_t>{2023, 2024}));
    EXPECT_EQ(yearsWithContent("before\n## 2021\n \t\n\u3000\u2028\r\n\n## 2022\n.\n## 2023\n## 2024"),
              std::set<std::int64_t>{2022});
    EXPECT_EQ(yearsWithContent("## 2022\n\n## 2022\nb\n## 2022\n"), std::set<std::int64_t>{2022});
    EXPECT_EQ(yearsWithContent("## 2022\n\u200B\n"), std::set<std::int64_t>{2022});
    EXPECT_TRUE(yearsWithContent("").empty());
    EXPECT_TRUE(yearsWithContent("a note\n").empty());
}

TEST(YearSectionParser, takesATitleAndEmptyYearHeadersForEmpty) {
    for (const std::string_view text :
         {"", "\n", "# 03-14", "# 03-14\n", "# 03-14\n\n## 2024\n\n", "  # 03-14\t\n \t \n## 2023\n## 2024",
          "## 2024", "# 03-14\n# 03-14\n", "## 2024\r", "\t##\t2024 \n"})
        EXPECT_TRUE(isEffectivelyEmpty(text, "03-14")) << ::testing::PrintToString(text);
}

TEST(YearSectionParser, takesAnIndentedHeaderForEmptyThoughItIsNoSection) {
    const std::string_view text = "# 03-14\n\n   ## 2024\n";
    EXPECT_TRUE(sections(text).empty());
    EXPECT_TRUE(isEffectivelyEmpty(text, "03-14"));
}

TEST(YearSectionParser, takesOneLetterAnywhereForContent) {
    const std::string empty = "# 03-14\n\n## 2024\n\n";
    ASSERT_TRUE(isEffectivelyEmpty(empty, "03-14"));
    for (std::size_t at = 0; at <= empty.size(); ++at)
        EXPECT_FALSE(isEffectivelyEmpty(std::string(empty).insert(at, "x"), "03-14")) << at;
}

TEST(YearSectionParser, takesAnyOtherLineForContent) {
    for (const std::string_view text :
         {"#  03-14", "#03-14", "# 03-15", "# 03-14 x", "# 03-1", "x# 03-14", "## 24", "## 20245", "#", "##",
          "\u00A0", "\r", "\r\n", "# 03-14\r", "# 03-14\r\n", "# 03-14\r\n\r\n## 2024\r\n", "```", "# ",
          "# 03-14\n## 2024\n```\n## 2023"})
        EXPECT_FALSE(isEffectivelyEmpty(text, "03-14")) << ::testing::PrintToString(text);
}

TEST(YearSectionParser, beginsADocumentOverBlankText) {
    const EnsuredSection expected{"# 03-14\n\n## 2024\n\n", 18};
    for (const std::string_view text : {"", "\n", " \t\r\n\n", "\u3000\u2029\u0085"})
        EXPECT_EQ(ensuringSection(2024, march14, text), expected) << ::testing::PrintToString(text);
}

TEST(YearSectionParser, leavesTheTextOfAnExistingSectionWithTheCaretAfterWhatIsWritten) {
    struct Row {
        std::string_view text;
        std::size_t caret;
    };
    const std::vector<Row> rows = {
        {"# 03-14\n\n## 2024\n\nhello\n", 23},
        {"# 03-14\n\n## 2024\n\nhello  \n\u3000\n\n## 2025\n\nx\n", 23},
        {"# 03-14\n\n## 2024\n\n a\n\nb\n", 23},
        {"# 03-14\n\n## 2024\n\n", 17},
        {"# 03-14\n\n## 2024\n \n\n## 2025\n\nx\n", 17},
        {"## 2024", 7},
        {"## 2024\r", 8},
        {"## 2024\n", 8},
        {"## 2024\n\n## 2024\nsecond\n", 8},
        {"## 2024\nfirst\n## 2024\n", 13},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(ensuringSection(2024, march14, row.text),
                  (EnsuredSection{std::string(row.text), row.caret}))
            << row.text;
    }
}

TEST(YearSectionParser, countsTheCaretInUtf16CodeUnits) {
    // An umlaut is one unit, an emoji two, a flag four.
    const std::string existing = "# 03-14 ü😀\n\n## 2024\n\nä😀🇩🇪\n";
    EXPECT_EQ(ensuringSection(2024, march14, existing), (EnsuredSection{existing, 29}));
    EXPECT_EQ(ensuringSection(2023, march14, existing),
              (EnsuredSection{"# 03-14 ü😀\n\n## 2023\n\n\n\n## 2024\n\nä😀🇩🇪\n", 22}));
    EXPECT_EQ(ensuringSection(2025, march14, existing),
              (EnsuredSection{"# 03-14 ü😀\n\n## 2024\n\nä😀🇩🇪\n\n## 2025\n\n", 40}));
}

TEST(YearSectionParser, insertsAYearBetweenItsNeighbours) {
    EXPECT_EQ(ensuringSection(2022, march14, "# 03-14\n\n## 2021\n\nold\n\n## 2023\n\nnew\n"),
              (EnsuredSection{"# 03-14\n\n## 2021\n\nold\n\n## 2022\n\n\n\n## 2023\n\nnew\n", 32}));
}

TEST(YearSectionParser, insertsTheEarliestYearBeforeAllOthers) {
    EXPECT_EQ(ensuringSection(2020, march14, "# 03-14\n\n## 2023\n\nnew\n"),
              (EnsuredSection{"# 03-14\n\n## 2020\n\n\n\n## 2023\n\nnew\n", 18}));
}

TEST(YearSectionParser, insertsTheEarliestYearAtTheStartOfATextWithoutPreamble) {
    EXPECT_EQ(ensuringSection(2020, march14, "## 2023\nnew"),
              (EnsuredSection{"## 2020\n\n\n\n## 2023\nnew", 9}));
    EXPECT_EQ(ensuringSection(2020, march14, " \n\n## 2023\nnew"),
              (EnsuredSection{"## 2020\n\n\n\n## 2023\nnew", 9}));
}

TEST(YearSectionParser, appendsTheLatestYear) {
    EXPECT_EQ(ensuringSection(2025, march14, "# 03-14\n\n## 2023\n\nnew \t\r\n\n\n"),
              (EnsuredSection{"# 03-14\n\n## 2023\n\nnew\n\n## 2025\n\n", 32}));
    EXPECT_EQ(ensuringSection(2025, march14, "## 2023"), (EnsuredSection{"## 2023\n\n## 2025\n\n", 18}));
}

TEST(YearSectionParser, appendsTheFirstYearToAPreamble) {
    EXPECT_EQ(ensuringSection(2024, march14, "# 03-14\n"), (EnsuredSection{"# 03-14\n\n## 2024\n\n", 18}));
    EXPECT_EQ(ensuringSection(2024, march14, "a note"), (EnsuredSection{"a note\n\n## 2024\n\n", 17}));
    EXPECT_EQ(ensuringSection(2024, march14, "# 03-14\r\n\r\n## 2024\r\n"),
              (EnsuredSection{"# 03-14\r\n\r\n## 2024\n\n## 2024\n\n", 29}));
}

TEST(YearSectionParser, insertsAfterTheFirstOfTheNextSmallerYears) {
    EXPECT_EQ(ensuringSection(2023, march14, "## 2022\na\n## 2025\nb\n## 2022\nc\n## 2020\nd\n").text,
              "## 2022\na\n\n## 2023\n\n\n\n## 2025\nb\n## 2022\nc\n## 2020\nd\n");
}

TEST(YearSectionParser, insertsBeforeTheFirstOfTheNextLargerYears) {
    EXPECT_EQ(ensuringSection(2020, march14, "p\n## 2025\na\n## 2022\nb\n## 2024\nc\n## 2022\nd\n").text,
              "p\n## 2025\na\n\n## 2020\n\n\n\n## 2022\nb\n## 2024\nc\n## 2022\nd\n");
}

TEST(YearSectionParser, writesYearsWithoutPaddingEvenThoseItWillNotFindAgain) {
    EXPECT_EQ(ensuringSection(987, march14, "").text, "# 03-14\n\n## 987\n\n");
    EXPECT_EQ(ensuringSection(12345, march14, "## 2024\n").text, "## 2024\n\n## 12345\n\n");
    EXPECT_EQ(ensuringSection(-5, march14, "## 2024\n").text, "## -5\n\n\n\n## 2024\n");
    EXPECT_EQ(replacingBody("lost", 987, march14, ""), "# 03-14\n\n## 987\n\n");
}

TEST(YearSectionParser, replacesTheLastBodyUpToOneLineBreakAtTheEnd) {
    EXPECT_EQ(replacingBody("  hello \n", 2024, march14, "# 03-14\n\n## 2023\n\na\n\n## 2024\n\nold\n\n\n"),
              "# 03-14\n\n## 2023\n\na\n\n## 2024\n\nhello\n");
}

TEST(YearSectionParser, replacesAMiddleBodyWithOneBlankLineBeforeTheNextHeader) {
    EXPECT_EQ(replacingBody("\u3000new\n\nlines\r\n", 2023, march14, twoYears),
              "# 03-14\n\n## 2023\n\nnew\n\nlines\n\n## 2024\n\nsecond\n");
    EXPECT_EQ(replacingBody("b", 2023, march14, "## 2023\na\n## 2024\nc"), "## 2023\n\nb\n\n## 2024\nc");
}

TEST(YearSectionParser, replacesABodyWithNothingByASingleLineBreak) {
    EXPECT_EQ(replacingBody("", 2024, march14, twoYears), "# 03-14\n\n## 2023\n\nfirst\n\n## 2024\n\n");
    EXPECT_EQ(replacingBody(" \n\t", 2023, march14, twoYears), "# 03-14\n\n## 2023\n\n## 2024\n\nsecond\n");
}

TEST(YearSectionParser, replacesTheBodyOfAMissingYear) {
    EXPECT_EQ(replacingBody("hello", 2024, march14, ""), "# 03-14\n\n## 2024\n\nhello\n");
    EXPECT_EQ(replacingBody("hello", 2022, march14, twoYears),
              "# 03-14\n\n## 2022\n\nhello\n\n## 2023\n\nfirst\n\n## 2024\n\nsecond\n");
    EXPECT_EQ(replacingBody("hello", 2025, march14, twoYears),
              std::string(twoYears) + "\n## 2025\n\nhello\n");
    EXPECT_EQ(replacingBody("", 2025, march14, twoYears), std::string(twoYears) + "\n## 2025\n\n");
}

TEST(YearSectionParser, replacesOnlyTheFirstOfRepeatedYears) {
    EXPECT_EQ(replacingBody("new", 2024, march14, "## 2024\na\n## 2024\nb\n"),
              "## 2024\n\nnew\n\n## 2024\nb\n");
}

TEST(YearSectionParser, givesBackTheDocumentWhoseBodiesAreReplacedByThemselves) {
    for (const auto &[year, body] : sectionBodies(twoYears))
        EXPECT_EQ(replacingBody(body, year, march14, twoYears), twoYears);
}

TEST(YearSectionParser, closesAFenceThatATextLeavesOpen) {
    EXPECT_EQ(closingOpenFence("## 2024\n\n```\ncode\n\n"), "## 2024\n\n```\ncode\n```\n");
    EXPECT_EQ(closingOpenFence("```"), "```\n```\n");
    EXPECT_EQ(closingOpenFence("a\n  ```swift\r\n"), "a\n  ```swift\n```\n");
    EXPECT_EQ(closingOpenFence("```\n```\n```\n## 2024"), "```\n```\n```\n## 2024\n```\n");
}

TEST(YearSectionParser, leavesATextWithoutOpenFenceAsItIs) {
    for (const std::string_view text : {"", "\n\n", "## 2024\n\n```\ncode\n```  \n\n", "a ```", "\t```\n",
                                        "```\u0301\n", "```\r\n```\n```"})
        EXPECT_EQ(closingOpenFence(text), text);
}

TEST(YearSectionParser, replacesAPlainEntryAsItReplacesABody) {
    for (const std::string_view entry :
         {"", "hello", " hello\n\n", "a\n```\n## 2020\n```\nb", "## 20\n### 2024"}) {
        for (const std::int64_t year : {2022, 2023, 2024, 2025}) {
            EXPECT_EQ(replacingEntry(entry, year, march14, twoYears),
                      replacingBody(entry, year, march14, twoYears))
                << entry << year;
        }
    }
}

TEST(YearSectionParser, movesHeaderLikeLinesOfAnEntryIn) {
    EXPECT_EQ(replacingEntry("a\n## 2024\nb\n##\t2020 \r\n\n## 2021", 2023, march14, twoYears),
              "# 03-14\n\n## 2023\n\na\n ## 2024\nb\n##\t2020 \r\n\n ## 2021\n\n## 2024\n\nsecond\n");
}

TEST(YearSectionParser, movesAHeaderLikeFirstLineOfAnEntryIn) {
    EXPECT_EQ(replacingEntry("## 2024\nb", 2023, march14, twoYears),
              "# 03-14\n\n## 2023\n\n ## 2024\nb\n\n## 2024\n\nsecond\n");
    EXPECT_EQ(replacingEntry(" \n## 2023", 2023, march14, twoYears),
              "# 03-14\n\n## 2023\n\n ## 2023\n\n## 2024\n\nsecond\n");
    EXPECT_EQ(replacingEntry("## 1999", 2025, march14, ""), "# 03-14\n\n## 2025\n\n ## 1999\n");
}

TEST(YearSectionParser, leavesHeaderLikeLinesInsideAFenceOfAnEntry) {
    EXPECT_EQ(replacingEntry("```\n## 2024\n```\n## 2025", 2023, march14, twoYears),
              "# 03-14\n\n## 2023\n\n```\n## 2024\n```\n ## 2025\n\n## 2024\n\nsecond\n");
}

TEST(YearSectionParser, closesAFenceThatAnEntryLeavesOpen) {
    EXPECT_EQ(replacingEntry("a\n```\n## 2024\n", 2023, march14, twoYears),
              "# 03-14\n\n## 2023\n\na\n```\n## 2024\n```\n\n## 2024\n\nsecond\n");
    EXPECT_EQ(replacingEntry("```", 2024, march14, twoYears),
              "# 03-14\n\n## 2023\n\nfirst\n\n## 2024\n\n```\n```\n");
}

TEST(YearSectionParser, closesAFenceLeftOpenBeforeANewLastSection) {
    EXPECT_EQ(replacingEntry("new", 2024, march14, "# 03-14\n\n## 2023\n\n```\ncode\n"),
              "# 03-14\n\n## 2023\n\n```\ncode\n```\n\n## 2024\n\nnew\n");
    EXPECT_EQ(replacingEntry("new", 2024, march14, "# 03-14\n```\n"),
              "# 03-14\n```\n```\n\n## 2024\n\nnew\n");
    EXPECT_EQ(replacingEntry("new", 2024, march14, "## 2023\n```\n## 2024\n"),
              "## 2023\n```\n## 2024\n```\n\n## 2024\n\nnew\n");
}

TEST(YearSectionParser, leavesAnOpenFenceAfterTheReplacedSectionAlone) {
    const std::string text = "# 03-14\n\n## 2023\n\nfirst\n\n## 2024\n\n```\ncode\n";
    EXPECT_EQ(replacingEntry("new", 2023, march14, text),
              "# 03-14\n\n## 2023\n\nnew\n\n## 2024\n\n```\ncode\n");
    EXPECT_EQ(replacingEntry("new", 2022, march14, text),
              "# 03-14\n\n## 2022\n\nnew\n\n## 2023\n\nfirst\n\n## 2024\n\n```\ncode\n");
}

TEST(YearSectionParser, replacesALastEntryTogetherWithTheFenceThatItLeftOpen) {
    EXPECT_EQ(replacingEntry("new", 2024, march14, "## 2023\n\na\n\n## 2024\n\n```\n## 2025\ncode\n"),
              "## 2023\n\na\n\n## 2024\n\nnew\n");
}

TEST(YearSectionParser, keepsAHeaderWithoutLineBreakAHeaderWhenAnEntryFollows) {
    // A line feed right after the carriage return would be one character with it and end no line.
    const auto text = replacingEntry("new", 2024, march14, "## 2023\n\na\n\n## 2024\r");
    EXPECT_EQ(sectionBodies(text), (std::vector<YearBody>{{2023, "a"}, {2024, "new"}})) << text;
    EXPECT_EQ(replacingEntry("new", 2024, march14, "## 2024"), "## 2024\n\nnew\n");
}

TEST(YearSectionParser, baresNoHeaderBeforeANewSection) {
    // With its carriage return and line feed the last line is no header; a new section takes them away.
    const auto text = replacingEntry("new", 2024, march14, "## 2023\n\na\n## 2020\r\n");
    EXPECT_EQ(sectionBodies(text), (std::vector<YearBody>{{2023, "a\n ## 2020"}, {2024, "new"}})) << text;
    EXPECT_EQ(documentPreamble(replacingEntry("new", 2024, march14, "a\n## 2020\u00A0\n## 2025")),
              "a\n ## 2020");
}

TEST(YearSectionParser, makesABodySelfContained) {
    EXPECT_EQ(selfContained(""), "");
    EXPECT_EQ(selfContained("a\n\n ## 2020\n```\n## 2020\n```"), "a\n\n ## 2020\n```\n## 2020\n```");
    EXPECT_EQ(selfContained("## 2020\n## 2021"), " ## 2020\n ## 2021");
    EXPECT_EQ(selfContained("```\n## 2020"), "```\n## 2020\n```");
}

TEST(YearSectionParser, changesNoOtherYearWhileAFencedBlockIsTyped) {
    const std::string typed =
        "Look:\n```sh\n## 2022 \n## 2024\necho '```'\n```\nDone.\n## 2019\n```\n```\n  ```x\n## 1";
    std::string document =
        "# 03-14\n\n## 2021\n\n```\n## 2020\n```\n\n## 2022\n\nyes\n\n## 2024\n\nlast\n\n```\nopen\n";
    const auto before = sectionBodies(document);
    ASSERT_EQ(before.size(), 3U);
    const std::vector<std::string> others = {std::string(before[0].body), std::string(before[1].body),
                                             std::string(before[2].body)};
    for (std::size_t length = 0; length <= typed.size(); ++length) {
        document = replacingEntry(typed.substr(0, length), 2023, march14, document);
        const auto after = sectionBodies(document);
        ASSERT_EQ(yearsOf(document), (Years{2021, 2022, 2023, 2024})) << document;
        EXPECT_EQ(after[0].body, others[0]);
        EXPECT_EQ(after[1].body, others[1]);
        EXPECT_EQ(after[3].body, others[2]);
        ASSERT_EQ(documentPreamble(document), "# 03-14");
        EXPECT_EQ(replacingEntry(typed.substr(0, length), 2023, march14, document), document);
    }
    EXPECT_TRUE(document.find("\n```sh\n## 2022 \n## 2024\n") != std::string::npos);
}

TEST(YearSectionParser, settlesWhenAnEntryIsReadBackAndSavedAgain) {
    std::string document(twoYears);
    for (const std::string_view typed : {"## 2020\n## 2021\n```\n## 2022", "```", "## 2024"}) {
        document = replacingEntry(typed, 2023, march14, document);
        const std::string readBack(sectionBodies(document).at(0).body);
        EXPECT_EQ(replacingEntry(readBack, 2023, march14, document), document);
    }
}

// Texts made of the pieces that matter to the format, some long enough to fill whole vectors of a search.
class RandomTexts {
public:
    std::string next() {
        static constexpr std::array<std::string_view, 24> pieces = {
            "\n",         "\n",          "\n",          "\n\n",
            "\r\n",       "\r",          " ",           "\t",
            "```",        "\n```",       "\n ```",      "#",
            "## ",        "## 2020",     "\n## 2021\n", "\n## 2022 \n",
            "\n##\t2023", "\n## 2024\r", "`",           "2",
            "0",          "é",           "\u0301",      "plain words in a row, some more of them"};
        std::string text;
        const auto count = m_random() % 16;
        for (std::size_t index = 0; index < count; ++index)
            text += pieces.at(m_random() % pieces.size());
        return text;
    }

    std::size_t below(std::size_t limit) { return m_random() % limit; }

private:
    std::mt19937 m_random{20240314};
};

// The rules of the format word by word, without any search that skips text.
namespace literal {

std::vector<ByteRange> lines(std::string_view text) {
    std::vector<ByteRange> result;
    std::size_t begin = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\n' && (at == 0 || text[at - 1] != '\r')) {
            result.push_back({begin, at + 1});
            begin = at + 1;
        }
    }
    if (begin < text.size())
        result.push_back({begin, text.size()});
    return result;
}

std::optional<std::int64_t> header(std::string_view line) {
    const auto at = [&](std::size_t index) { return index < line.size() ? line[index] : '\0'; };
    if (at(0) != '#' || at(1) != '#' || (at(2) != ' ' && at(2) != '\t'))
        return std::nullopt;
    std::size_t index = 2;
    while (at(index) == ' ' || at(index) == '\t')
        ++index;
    std::int64_t year = 0;
    int digits = 0;
    for (; at(index) >= '0' && at(index) <= '9'; ++index, ++digits)
        year = digits < 4 ? year * 10 + (at(index) - '0') : year;
    if (digits != 4)
        return std::nullopt;
    for (; index < line.size(); ++index) {
        const bool lineFeedFollows = at(index) == '\r' && at(index + 1) == '\n';
        if ((at(index) != ' ' && at(index) != '\t' && at(index) != '\r') || lineFeedFollows)
            return std::nullopt;
    }
    return year;
}

bool isFence(std::string_view line) {
    while (line.starts_with(' '))
        line.remove_prefix(1);
    return line.starts_with("```") && !line.starts_with("```\u0301");
}

std::vector<Section> sections(std::string_view text) {
    std::vector<Section> result;
    bool inFence = false;
    for (const auto &range : lines(text)) {
        auto line = range.in(text);
        if (line.ends_with('\n') && !line.ends_with("\r\n"))
            line.remove_suffix(1);
        if (isFence(line)) {
            inFence = !inFence;
        } else if (const auto year = header(line); year && !inFence) {
            if (!result.empty())
                result.back().bodyRange.end = range.begin;
            result.push_back({*year, range, {range.end, text.size()}});
        }
    }
    return result;
}

} // namespace literal

TEST(YearSectionParser, agreesWithTheLiteralReadingOfRandomTexts) {
    RandomTexts texts;
    std::size_t found = 0;
    for (int round = 0; round < 40000; ++round) {
        const auto text = texts.next();
        const auto expected = literal::sections(text);
        ASSERT_EQ(sections(text), expected) << ::testing::PrintToString(text);
        found += expected.size();
    }
    EXPECT_GT(found, 10000U);
}

TEST(YearSectionParser, agreesWithTheLiteralReadingOfRandomCharacters) {
    static constexpr std::array<std::string_view, 16> characters = {
        "\n", "\n", "\n", "\r", "#", "#", "`", "`", "`", " ", "\t", "2", "0", "0", "a", "é"};
    RandomTexts random;
    for (std::size_t length = 0; length <= 200; ++length) {
        for (int round = 0; round < 60; ++round) {
            std::string text;
            while (text.size() < length)
                text += characters.at(random.below(characters.size()));
            ASSERT_EQ(sections(text), literal::sections(text)) << ::testing::PrintToString(text);
        }
    }
}

TEST(YearSectionParser, neverChangesAnotherYearWhateverIsTypedIntoWhateverText) {
    struct Owned {
        std::int64_t year;
        std::string body;
    };
    // All sections but the first of the year, with the preamble as that of year -1.
    const auto others = [](std::string_view text, std::int64_t year) {
        std::vector<Owned> result = {{-1, std::string(documentPreamble(text).value_or(""))}};
        bool skipped = false;
        for (const auto &[bodyYear, body] : sectionBodies(text)) {
            if (bodyYear == year && !skipped)
                skipped = true;
            else
                result.push_back({bodyYear, std::string(body)});
        }
        return result;
    };
    const auto withoutSpaces = [](std::string_view text) {
        std::string result(text);
        std::erase(result, ' ');
        return result;
    };

    RandomTexts texts;
    int replaced = 0;
    int inserted = 0;
    for (int round = 0; round < 40000; ++round) {
        const auto text = texts.next();
        const auto entry = texts.next();
        const auto year = static_cast<std::int64_t>(2019 + texts.below(8));
        const auto saved = replacingEntry(entry, year, march14, text);
        const auto described = ::testing::PrintToString(entry) + " as " + std::to_string(year) + " into " +
                               ::testing::PrintToString(text) + " gives " + ::testing::PrintToString(saved);

        const auto yearsBefore = yearsOf(text);
        const bool isNew = std::find(yearsBefore.begin(), yearsBefore.end(), year) == yearsBefore.end();
        const bool leavesFenceOpen = closingOpenFence(text) != text;
        ++(isNew ? inserted : replaced);
        const auto before = others(text, year);
        const auto after = others(saved, year);
        ASSERT_EQ(after.size(), before.size()) << described;
        for (std::size_t index = UnicodeText::isBlank(text) ? 1 : 0; index < after.size(); ++index) {
            const auto &was = before[index].body;
            const auto &is = after[index].body;
            ASSERT_EQ(after[index].year, before[index].year) << described;
            // Before a new section a fence may be closed and a line moved in.
            const bool isClosed =
                isNew && leavesFenceOpen && index + 1 == after.size() && is == was + "\n```";
            const bool isMovedIn = isNew && withoutSpaces(is) == withoutSpaces(was);
            ASSERT_TRUE(is == was || isClosed || isMovedIn) << described;
        }

        const auto bodies = sectionBodies(saved);
        const auto own = std::find_if(bodies.begin(), bodies.end(), [&](auto &b) { return b.year == year; });
        ASSERT_NE(own, bodies.end()) << described;
        const auto typed = withoutSpaces(UnicodeText::trimmed(entry));
        const auto kept = withoutSpaces(own->body);
        ASSERT_TRUE(kept == typed || kept == typed + "\n```") << described;
        ASSERT_EQ(replacingEntry(entry, year, march14, saved), saved) << described;
    }
    EXPECT_GT(replaced, 1000);
    EXPECT_GT(inserted, 1000);
}

TEST(YearSectionParser, listsTheYearsWithContentInOrderWhateverTheirOrderInTheText) {
    const std::string text = "## 2024\n\na\n\n## 2022\n\nb\n\n## 2023\n\n\n## 2024\n\nc\n";
    EXPECT_EQ(YearSectionParser::ascendingYearsWithContent(text), (std::vector<std::int64_t>{2022, 2024}));
    EXPECT_EQ(YearSectionParser::yearsWithContent(text), (std::set<std::int64_t>{2022, 2024}));
}

} // namespace
} // namespace diary::YearSectionParser

// SPDX-License-Identifier: MIT
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace diary::YearSectionParser {
namespace {

constexpr MonthDay march14{3, 14};
constexpr std::string_view marker = "<other version>";

std::string merged(std::string_view current, std::string_view other) {
    return mergingDocuments(current, other, march14, marker);
}

std::string folded(std::string_view base, std::string_view current, std::string_view other) {
    return foldingDocuments(base, current, other, march14, marker);
}

// A day file with one body for 2024.
std::string with(std::string_view body) {
    return "# 03-14\n\n## 2024" + (body.empty() ? "" : "\n\n" + std::string(body)) + "\n";
}

TEST(YearSectionMerge, combinesTwoBodiesOfAYear) {
    struct Row {
        std::string_view mine;
        std::string_view theirs;
        std::string_view merged;
    };
    const std::vector<Row> rows = {
        {"same", "same", "same"},
        {"a", "a b", "a b"},
        {"a b", "a", "a b"},
        {"x", "y", "x\n\n<other version>\n\ny"},
        {"", "theirs", "theirs"},
        {"mine", "", "mine"},
        {"", "", ""},
        {"one\ntwo", "one\nthree", "one\ntwo\n\n<other version>\n\none\nthree"},
        {"A", "a", "A\n\n<other version>\n\na"},
        {"ab", "b", "ab\n\n<other version>\n\nb"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(merged(with(row.mine), with(row.theirs)), with(row.merged))
            << row.mine << '|' << row.theirs;
}

TEST(YearSectionMerge, comparesBodiesAfterTrimming) {
    EXPECT_EQ(merged("# 03-14\n## 2024\n\n\n a \n\n", "# 03-14\n## 2024\na\t\r\n"), with("a"));
    EXPECT_EQ(merged("## 2024\na \n", "## 2024\na b\n"), with("a b"));
}

TEST(YearSectionMerge, keepsTheYearsOfEitherSideInAscendingOrder) {
    EXPECT_EQ(merged("# 03-14\n\n## 2024\n\nd\n\n## 2021\n\na\n", "# 03-14\n\n## 2023\n\nc\n\n## 2022\n"),
              "# 03-14\n\n## 2021\n\na\n\n## 2022\n\n## 2023\n\nc\n\n## 2024\n\nd\n");
}

TEST(YearSectionMerge, putsAnEmptyYearDownAsItsHeaderAlone) {
    EXPECT_EQ(merged("# 03-14\n\n## 2023\n\n", "# 03-14\n\n## 2024\n\nx\n"),
              "# 03-14\n\n## 2023\n\n## 2024\n\nx\n");
    EXPECT_EQ(merged("## 2023\n \n", ""), "# 03-14\n\n## 2023\n");
}

TEST(YearSectionMerge, takesTheLastOfRepeatedYearsOfTheCurrentText) {
    EXPECT_EQ(merged("## 2024\nfirst\n## 2024\nlast\n", ""), with("last"));
    EXPECT_EQ(merged("## 2024\nfirst\n## 2024\n", "## 2024\nx\n"), with("x"));
}

TEST(YearSectionMerge, combinesRepeatedYearsOfTheOtherTextOneAfterAnother) {
    EXPECT_EQ(merged("", "## 2024\na\n## 2024\na b\n"), with("a b"));
    EXPECT_EQ(merged("## 2024\nx\n", "## 2024\na\n## 2024\nb\n"),
              with("x\n\n<other version>\n\na\n\n<other version>\n\nb"));
}

TEST(YearSectionMerge, takesTheCurrentPreambleThenTheOthersThenTheTitle) {
    EXPECT_EQ(merged("mine\n\n## 2024\n", "theirs\n## 2024\n"), "mine\n\n## 2024\n");
    EXPECT_EQ(merged(" \n## 2024\n", "\ntheirs\nmore \n\n## 2024\n"), "theirs\nmore\n\n## 2024\n");
    EXPECT_EQ(merged("## 2024\n", "\n## 2024\n"), with(""));
    EXPECT_EQ(merged("", ""), "# 03-14\n");
    EXPECT_EQ(merged("a note\n\n", ""), "a note\n");
}

TEST(YearSectionMerge, hasNoSectionsInATextWithCarriageReturns) {
    EXPECT_EQ(merged("# 03-14\r\n\r\n## 2024\r\n\r\nx\r\n", with("y")),
              "# 03-14\r\n\r\n## 2024\r\n\r\nx\n\n## 2024\n\ny\n");
}

TEST(YearSectionMerge, givesBackAMergedDocumentMergedWithEitherSide) {
    const std::string mine = "# 03-14\n\n## 2022\n\na\n\n## 2024\n\nx\n";
    const std::string theirs = "# 03-14\n\n## 2022\n\na b\n\n## 2023\n\nc\n";
    const auto both = merged(mine, theirs);
    EXPECT_EQ(merged(both, theirs), both);
    EXPECT_EQ(merged(both, mine), both);
}

TEST(YearSectionMerge, tidyingLeavesATidyTextAsItIs) {
    for (const std::string_view text :
         {"", "\n\n", "# 03-14\n", "## 2024\nb\n\n\n## 2022\n a", "x\n## 2024\n```\n## 2024\n```  \n\n"})
        EXPECT_EQ(tidied(text, march14), text);
}

TEST(YearSectionMerge, tidyingClosesAnOpenFence) {
    EXPECT_EQ(tidied("## 2024\n\n\n```\n## 2024\n", march14), "## 2024\n\n\n```\n## 2024\n```\n");
}

TEST(YearSectionMerge, tidyingJoinsRepeatedYearsIntoTheFirstInTheirOrder) {
    EXPECT_EQ(tidied("# 03-14\n## 2024\nb\n\n## 2023\nx\n## 2024\na\n## 2024\nc\n", march14),
              "# 03-14\n\n## 2023\n\nx\n\n## 2024\n\nb\n\na\n\nc\n");
    EXPECT_EQ(tidied("## 2024\na\n## 2024\n```\nb", march14), with("a\n\n```\nb\n```"));
}

TEST(YearSectionMerge, tidyingDropsEmptyAndEqualRepetitions) {
    EXPECT_EQ(tidied("## 2024\n## 2024\na\n", march14), with("a"));
    EXPECT_EQ(tidied("## 2024\na\n## 2024\n\n", march14), with("a"));
    EXPECT_EQ(tidied("## 2024\na\n\n## 2024\n a \n", march14), with("a"));
    EXPECT_EQ(tidied("## 2024\n## 2024\n", march14), with(""));
    EXPECT_EQ(tidied("note\n## 2024\na\n## 2024\nab\n", march14), "note\n\n## 2024\n\na\n\nab\n");
}

TEST(YearSectionMerge, foldsOneBodyByWhoChangedIt) {
    struct Row {
        const char *what;
        std::string_view base;
        std::string_view mine;
        std::string_view theirs;
        std::string_view folded;
    };
    const std::vector<Row> rows = {
        {"nobody", "a", "a", "a", "a"},
        {"only me, more", "a", "a b", "a", "a b"},
        {"only me, other words", "a", "x", "a", "x"},
        {"only me, less", "a\n\nb", "a", "a\n\nb", "a"},
        {"only me, nothing left", "a", "", "a", ""},
        {"only they, more", "a", "a", "a b", "a b"},
        {"only they, other words", "a", "a", "x", "x"},
        {"only they, cut short", "a\n\nb", "a\n\nb", "a", "a\n\nb"},
        {"only they, nothing left", "a", "a", "", "a"},
        {"both the same", "a", "x", "x", "x"},
        {"both added paragraphs", "a", "a\n\nmine", "a\n\ntheirs", "a\n\ntheirs\n\nmine"},
        {"both added lines", "a", "a\nmine", "a\ntheirs", "a\ntheirs\n\nmine"},
        {"both began", "", "mine", "theirs", "theirs\n\nmine"},
        {"both added, mine more", "a", "a\n\nb\n\nc", "a\n\nb", "a\n\nb\n\nc"},
        {"both added, theirs more", "a", "a\n\nb", "a\n\nb\n\nc", "a\n\nb\n\nc"},
        {"both began, mine more", "", "a b", "a", "a b"},
        {"both began, theirs more", "", "a", "a b", "a b"},
        {"I went on in the last line", "a", "ab", "a\n\nc", "ab\n\n<other version>\n\na\n\nc"},
        {"they went on in the last line", "a", "a\n\nc", "ab", "a\n\nc\n\n<other version>\n\nab"},
        {"both went on in the last line", "a", "ab", "ac", "ab\n\n<other version>\n\nac"},
        {"both rewrote", "a", "x", "y", "x\n\n<other version>\n\ny"},
        {"I rewrote, they added", "a", "x", "a\n\ny", "x\n\n<other version>\n\na\n\ny"},
        {"I added, they rewrote", "a", "a\n\nx", "y", "a\n\nx\n\n<other version>\n\ny"},
        {"I rewrote, nothing left of theirs", "a", "x", "", "x"},
        {"nothing left of mine, they rewrote", "a", "", "y", "y"},
        {"I rewrote, they cut it short", "a\n\nb", "a\n\nb\n\nc", "a", "a\n\nb\n\nc"},
        {"I cut it short, they added", "a\n\nb", "a", "a\n\nb\n\nc", "a\n\nb\n\nc"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(folded(with(row.base), with(row.mine), with(row.theirs)), with(row.folded)) << row.what;
}

TEST(YearSectionMerge, foldingKeepsAYearThatOneSideLost) {
    const std::string_view both = "# 03-14\n\n## 2023\n\na\n\n## 2024\n\nb\n";
    EXPECT_EQ(folded(both, "# 03-14\n\n## 2024\n\nb\n", both), both);
    EXPECT_EQ(folded(both, both, "# 03-14\n\n## 2024\n\nb\n"), both);
    EXPECT_EQ(folded(both, both, ""), both);
    EXPECT_EQ(folded(both, "", both), both);
    EXPECT_EQ(folded(both, "", ""), "# 03-14\n");
}

TEST(YearSectionMerge, foldingTakesYearsThatOneSideAdded) {
    EXPECT_EQ(
        folded(with("a"), "# 03-14\n\n## 2022\n\nmine\n\n## 2024\n\na\n", "# 03-14\n\n## 2023\n\ntheirs\n"),
        "# 03-14\n\n## 2022\n\nmine\n\n## 2023\n\ntheirs\n\n## 2024\n\na\n");
    EXPECT_EQ(folded("", with("mine"), "# 03-14\n\n## 2023\n"), "# 03-14\n\n## 2023\n\n## 2024\n\nmine\n");
}

TEST(YearSectionMerge, foldingDecidesForEachYearAlone) {
    EXPECT_EQ(folded("## 2022\na\n## 2023\nb\n## 2024\nc\n", "## 2022\nA\n## 2023\nb\n## 2024\nc\n\nd\n",
                     "## 2022\na\n## 2023\nB\n## 2024\nc\n\ne\n"),
              "# 03-14\n\n## 2022\n\nA\n\n## 2023\n\nB\n\n## 2024\n\nc\n\ne\n\nd\n");
}

TEST(YearSectionMerge, foldsThePreambleLikeABody) {
    struct Row {
        std::string_view base;
        std::string_view mine;
        std::string_view theirs;
        std::string_view folded;
    };
    const std::vector<Row> rows = {
        {"# 03-14", "# 03-14", "# 03-14", "# 03-14"},
        {"# 03-14", "# Pi day", "# 03-14", "# Pi day"},
        {"# 03-14", "# 03-14", "# Pi day", "# Pi day"},
        {"# 03-14", "# 03-14", "", "# 03-14"},
        {"# 03-14", "", "# 03-14", "# 03-14"},
        {"note", "", "note", "# 03-14"},
        {"", "", "", "# 03-14"},
        {"# 03-14", "# 03-14\nmine", "# 03-14\ntheirs", "# 03-14\ntheirs\n\nmine"},
        {"# 03-14", "# Mine", "# Theirs", "# Mine\n\n<other version>\n\n# Theirs"},
    };
    for (const auto &row : rows) {
        const auto document = [](std::string_view preamble) {
            return std::string(preamble) + "\n\n## 2024\n\na\n";
        };
        EXPECT_EQ(folded(document(row.base), document(row.mine), document(row.theirs)),
                  std::string(row.folded) + "\n\n## 2024\n\na\n")
            << row.mine << '|' << row.theirs;
    }
}

TEST(YearSectionMerge, foldingTidiesEachText) {
    EXPECT_EQ(folded("", "## 2024\na\n## 2024\nb\n", "# 03-14\n## 2023\n```\nopen\n"),
              "# 03-14\n\n## 2023\n\n```\nopen\n```\n\n## 2024\n\na\n\nb\n");
    EXPECT_EQ(folded("## 2024\na\n## 2024\nb\n", with("a\n\nb"), with("a\n\nb\n\nc")), with("a\n\nb\n\nc"));
    EXPECT_EQ(folded("## 2024\n```\na\n", "## 2024\n```\na\n```\n", "## 2024\n```\na\n```\n\nb\n"),
              with("```\na\n```\n\nb"));
}

TEST(YearSectionMerge, foldingLetsNoBodyBreakOutOfItsYear) {
    // Trimming takes the space away that keeps these first lines from being headers.
    const std::string mine = "# 03-14\n\n## 2024\n\n ## 2020\nx\n";
    EXPECT_EQ(folded("", mine, ""), mine);
    EXPECT_EQ(folded(mine, mine, "# 03-14\n\n## 2023\n\ny\n"),
              "# 03-14\n\n## 2023\n\ny\n\n## 2024\n\n ## 2020\nx\n");
    EXPECT_EQ(folded(with("a"), with("a\n\n ## 2020\nx"), with("a\n\nb")), with("a\n\nb\n\n ## 2020\nx"));
    EXPECT_EQ(folded(with("a"), with("x"), with(" ## 2020\ny")), with("x\n\n<other version>\n\n ## 2020\ny"));
    EXPECT_EQ(folded("", "\t## 2020\n## 2024\n", ""), " ## 2020\n\n## 2024\n");
}

TEST(YearSectionMerge, foldingLetsNoFenceComeUpWithItsIndentGone) {
    EXPECT_EQ(folded("", "## 2023\n\t```\nx\n## 2024\ny\n", ""),
              "# 03-14\n\n## 2023\n\n```\nx\n```\n\n## 2024\n\ny\n");
}

TEST(YearSectionMerge, foldingKeepsYearsBeforeTheThousandth) {
    const std::string text = "# 03-14\n\n## 0021\n\na\n";
    EXPECT_EQ(folded(text, text, text + "\n## 2024\n\nb\n"), "# 03-14\n\n## 0021\n\na\n\n## 2024\n\nb\n");
}

TEST(YearSectionMerge, tidyingLetsNoBodyBreakOutOfItsYear) {
    EXPECT_EQ(tidied("## 2024\n ## 2020\nx\n## 2024\n", march14), with(" ## 2020\nx"));
    EXPECT_EQ(tidied("## 2024\na\n## 2024\n\n\t## 2020\nx\n", march14), with("a\n\n ## 2020\nx"));
    EXPECT_EQ(tidied("## 2023\n\t```\nx\n## 2024\n## 2024\ny\n", march14),
              "# 03-14\n\n## 2023\n\n```\nx\n```\n\n## 2024\n\ny\n");
}

class RandomDocuments {
public:
    std::string next() {
        static constexpr std::array<std::string_view, 22> pieces = {
            "\n",          "\n\n",        "\r\n",        " ",           "\t",
            "\n```\n",     "```",         "\n\t```",     "a",           "b",
            "\n\nc",       "\n\nd",       "é",           "\r",          "\n ## 2020",
            "\n\t## 2021", "\n## 2020\n", "\n## 2021\n", "\n## 2022\n", "\n## 2022\n\n",
            "\n## 2023\n", "## 2024"};
        std::string text;
        const auto count = m_random() % 14;
        for (std::size_t index = 0; index < count; ++index)
            text += pieces.at(m_random() % pieces.size());
        return text;
    }

private:
    std::mt19937 m_random{31415};
};

std::multiset<std::int64_t> yearsIn(std::string_view text) {
    std::multiset<std::int64_t> years;
    for (const auto &section : sections(text))
        years.insert(section.year);
    return years;
}

std::set<std::int64_t> distinctYearsIn(std::string_view text) {
    const auto years = yearsIn(text);
    return {years.begin(), years.end()};
}

TEST(YearSectionMerge, tidyingRandomTextsKeepsEveryYearOnce) {
    RandomDocuments documents;
    for (int round = 0; round < 30000; ++round) {
        const auto text = documents.next();
        const auto tidy = tidied(text, march14);
        const auto years = distinctYearsIn(text);
        ASSERT_EQ(yearsIn(tidy), (std::multiset<std::int64_t>{years.begin(), years.end()}))
            << ::testing::PrintToString(text) << " gives " << ::testing::PrintToString(tidy);
        ASSERT_EQ(closingOpenFence(tidy), tidy) << ::testing::PrintToString(text);
        ASSERT_EQ(yearsWithContent(tidy), yearsWithContent(text)) << ::testing::PrintToString(text);
        ASSERT_EQ(tidied(tidy, march14), tidy) << ::testing::PrintToString(text);
    }
}

TEST(YearSectionMerge, foldingRandomTextsKeepsTheYearsOfBothSides) {
    RandomDocuments documents;
    for (int round = 0; round < 30000; ++round) {
        const auto base = documents.next();
        const auto mine = documents.next();
        const auto theirs = documents.next();
        const auto result = folded(base, mine, theirs);
        auto years = distinctYearsIn(mine);
        years.merge(distinctYearsIn(theirs));
        ASSERT_EQ(yearsIn(result), (std::multiset<std::int64_t>{years.begin(), years.end()}))
            << ::testing::PrintToString(base) << ", " << ::testing::PrintToString(mine) << ", "
            << ::testing::PrintToString(theirs) << " give " << ::testing::PrintToString(result);
        ASSERT_EQ(tidied(result, march14), result);
        ASSERT_EQ(folded(result, result, result), result) << ::testing::PrintToString(result);
    }
}

TEST(YearSectionMerge, foldingANewTextIntoAnUnchangedOneGivesTheNewBodies) {
    RandomDocuments documents;
    for (int round = 0; round < 10000; ++round) {
        const auto base = tidied(documents.next(), march14);
        const auto mine = tidied(documents.next(), march14);
        const auto result = folded(base, mine, base);
        const auto bodies = sectionBodies(result);
        for (const auto &[year, body] : sectionBodies(mine)) {
            const auto found =
                std::find_if(bodies.begin(), bodies.end(), [&](auto &b) { return b.year == year; });
            ASSERT_NE(found, bodies.end());
            ASSERT_EQ(found->body, UnicodeText::trimmed(selfContained(body)))
                << ::testing::PrintToString(mine) << " gives " << ::testing::PrintToString(result);
        }
    }
}

} // namespace
} // namespace diary::YearSectionParser

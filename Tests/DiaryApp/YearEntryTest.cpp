// SPDX-License-Identifier: MIT
#include <DiaryApp/YearEntry.h>

#include <QTextBoundaryFinder>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

namespace diary {
namespace {

using ::testing::ElementsAre;

struct CountRow {
    const char *name;
    const char *text;
    qsizetype expected;
};

class CharCountTest : public ::testing::TestWithParam<CountRow> {};

TEST_P(CharCountTest, countsCharactersAsPeopleSeeThem) {
    EXPECT_EQ(charCount(QString::fromUtf8(GetParam().text)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    , CharCountTest,
    ::testing::Values(CountRow{"nothing", "", 0},
                      CountRow{"blanksAndLineBreaks", " \t\n\r\n\u00A0\u3000\u2028", 0},
                      CountRow{"words", "two words\nand more", 15},
                      CountRow{"composedLetters", "e\u0301a\u0308\u0323o", 3},
                      CountRow{"han", "今天，下雨了。", 7}, CountRow{"kanaWithMarks", "か\u3099か", 2},
                      CountRow{"hangul", "한국어 \u1112\u1161\u11AB", 4},
                      CountRow{"emoji", "👩‍👩‍👧 🇫🇷🇩🇪 👍🏽", 4},
                      CountRow{"hebrew", "שלום עולם", 8}, CountRow{"pointedHebrew", "שָׁלוֹם", 4},
                      CountRow{"thai", "ที่", 1}, CountRow{"aMarkOnItsOwn", "\u0301", 1}),
    [](const auto &row) { return std::string(row.param.name); });

TEST(CharCount, countsAsTheRulesForClustersDoWhateverTheText) {
    const QString alphabet =
        QString::fromUtf8(
            "ab \n\r\t\u0301\u0308é한\u1161\u11AB今か\u3099ﾞ\u200D👩👍\U0001F3FD🇫ש\u05B8ا\u0600\u00AD。") +
        QChar(0xD83D);
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        QString text;
        for (auto length = random() % 24; length > 0; --length)
            text += alphabet[static_cast<qsizetype>(random() % static_cast<std::size_t>(alphabet.size()))];
        qsizetype expected = 0;
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
        for (qsizetype start = 0, end = finder.toNextBoundary(); end > start;
             start = end, end = finder.toNextBoundary())
            expected += text[start].isSpace() ? 0 : 1;
        ASSERT_EQ(charCount(text), expected) << text.toUtf8().toHex().toStdString();
    }
}

QString repeated(const char *text, int times) {
    return QString::fromUtf8(text).repeated(times);
}

TEST(Excerpt, isTheWholeTextUpToFortySixCharacters) {
    EXPECT_EQ(excerpt(repeated("a", 46)), repeated("a", 46));
    EXPECT_EQ(excerpt(repeated("a", 47)), repeated("a", 46) + QString::fromUtf8("…"));
    EXPECT_EQ(excerpt(repeated("👩‍👩‍👧", 46)), repeated("👩‍👩‍👧", 46));
    EXPECT_EQ(excerpt(repeated("👩‍👩‍👧", 100)),
              repeated("👩‍👩‍👧", 46) + QString::fromUtf8("…"));
    EXPECT_EQ(excerpt(QString()), QString());
}

TEST(Excerpt, hasASpaceForEveryLineBreak) {
    EXPECT_EQ(excerpt(QStringLiteral("one\n\ntwo\r\nthree\rfour\u2028five")),
              QStringLiteral("one  two three four five"));
}

TEST(Excerpt, keepsABlankAtTheBeginning) {
    EXPECT_EQ(excerpt(QStringLiteral("\nword")), QStringLiteral(" word"));
}

TEST(YearEntries, areTheSectionsInTheirOrder) {
    const auto entries =
        yearEntries("# 03-14\n\n## 2023\n\nOlder.\n\n## 2021\n\n \n\n## 2023\n\nAgain, longer.\n");
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0], (YearEntry{2023, QStringLiteral("Older."), 6, QStringLiteral("Older.")}));
    EXPECT_EQ(entries[1], (YearEntry{2021, QString(), 0, QString()}));
    EXPECT_EQ(entries[2],
              (YearEntry{2023, QStringLiteral("Again, longer."), 13, QStringLiteral("Again, longer.")}));
}

TEST(YearEntries, areNoneInAFileWithoutSections) {
    EXPECT_TRUE(yearEntries("").empty());
    EXPECT_TRUE(yearEntries("# 03-14\n\nNo year\n").empty());
}

} // namespace
} // namespace diary

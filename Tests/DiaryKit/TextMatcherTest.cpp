// SPDX-License-Identifier: MIT
#include <DiaryKit/TextMatcher.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace diary {
namespace {

struct Row {
    std::string query;
    std::string text;
    bool isFound;
    CaseRules rules = CaseRules::Default;
};

bool finds(const Row &row, Equivalence equivalence = Equivalence::Canonical) {
    return TextMatcher(row.query, row.rules, equivalence).find(row.text).has_value();
}

TEST(TextMatcher, comparesWithoutRegardToCase) {
    const std::vector<Row> rows = {
        {"Café", "un café noir", true},  {"CAFÉ", "un café noir", true},
        {"дождь", "ДОЖДЬ", true},        {"ΛΌΓΟΣ", "λόγος", true}, // the final sigma is a sigma
        {"λόγος", "ΛΌΓΟΣ", true},        {"strasse", "Die Straße", true},
        {"STRAẞE", "Strasse", true},     {"office", "the oﬃce", true},
        {"kelvin", "\u212Aelvin", true}, {"sand", "\u017Fand", true},
        {"图书", "去图书馆", true},      {"שלום", "אמר שלום לכולם", true},
        {"مرحبا", "قال مرحبا", true},    {"👩‍👩‍👧", "the 👩‍👩‍👧 came", true},
        {"cafe", "café", false},         {"rain", "ran in", false},
    };
    for (const auto &row : rows)
        EXPECT_EQ(finds(row), row.isFound) << row.query << " in " << row.text;
}

TEST(TextMatcher, takesComposedAndDecomposedLettersAsTheSame) {
    const std::vector<Row> rows = {
        {"caf\u00E9", "cafe\u0301", true},
        {"cafe\u0301", "caf\u00E9", true},
        {"CAFE\u0301", "café noir", true},
        {"\u1EAD", "a\u0323\u0302", true}, // two marks, both apart
        {"\u1EAD", "\u00E2\u0323", true},  // one of them composed, the other after it
        {"\u00C5ngstr\u00F6m", "\u212Bngstro\u0308m", true},
        {"\uD55C\uAE00", "\u1112\u1161\u11AB\u1100\u1173\u11AF", true}, // Hangul
        {"й", "и\u0306", true},
        {"\u0915\u093C", "\u0958", true}, // a letter that is never composed
        {"豈", "\uF900", true},           // a compatibility ideograph
    };
    for (const auto &row : rows)
        EXPECT_EQ(finds(row), row.isFound) << row.query << " in " << row.text;
}

TEST(TextMatcher, keepsLettersWithOtherMarksApart) {
    const std::vector<Row> rows = {
        {"e", "\u00E9", false}, {"e", "e\u0301", false}, {"cafe", "cafe\u0301", false},
        {"и", "й", false},      {"и", "и\u0306", false}, {"a\u0323", "a\u0323\u0302", false},
        {"하", "한", false},    {"e", "e\u0301e", true},
    };
    for (const auto &row : rows)
        EXPECT_EQ(finds(row), row.isFound) << row.query << " in " << row.text;
}

TEST(TextMatcher, doesNotMatchHalfOfACharacterThatFoldsToSeveral) {
    EXPECT_FALSE(finds({"as", "aß", false}));
    EXPECT_FALSE(finds({"sa", "ßa", false}));
    EXPECT_TRUE(finds({"ass", "aß", true}));
    EXPECT_FALSE(finds({"f", "ﬁ", false}));
    EXPECT_TRUE(finds({"s", "ßs", true}));
}

TEST(TextMatcher, keepsTurkicDottedAndDotlessIApart) {
    const std::vector<Row> rows = {
        {"ısparta", "ISPARTA", true, CaseRules::Turkic},   {"isparta", "ISPARTA", false, CaseRules::Turkic},
        {"istanbul", "İSTANBUL", true, CaseRules::Turkic}, {"İstanbul", "istanbul", true, CaseRules::Turkic},
        {"isparta", "ISPARTA", true, CaseRules::Default},  {"ısparta", "ISPARTA", false, CaseRules::Default},
    };
    for (const auto &row : rows)
        EXPECT_EQ(finds(row), row.isFound) << row.query << " in " << row.text;
}

TEST(TextMatcher, comparesCodePointsAsWrittenWhenAsked) {
    EXPECT_TRUE(finds({"CAFÉ", "café", true}, Equivalence::CodePoints));
    EXPECT_TRUE(finds({"strasse", "Straße", true}, Equivalence::CodePoints));
    EXPECT_FALSE(finds({"caf\u00E9", "cafe\u0301", false}, Equivalence::CodePoints));
    EXPECT_TRUE(finds({"cafe", "cafe\u0301", true}, Equivalence::CodePoints));
}

TEST(TextMatcher, tellsWhereTheFirstMatchLies) {
    const std::string text = "Über die Straße, straße";
    const auto match = TextMatcher("STRASSE", CaseRules::Default, Equivalence::Canonical).find(text);
    ASSERT_TRUE(match);
    EXPECT_EQ(match->in(text), "Straße");
}

TEST(TextMatcher, tellsWhereEveryMatchLiesWithoutOverlaps) {
    const auto matches = [](std::string_view query, const std::string &text) {
        std::vector<std::string> found;
        for (const auto &range : TextMatcher(query, CaseRules::Default, Equivalence::Canonical).findAll(text))
            found.push_back(std::to_string(range.begin) + " " + std::string(range.in(text)));
        return found;
    };
    EXPECT_EQ(matches("strasse", "Straße, STRASSE"), (std::vector<std::string>{"0 Straße", "9 STRASSE"}));
    EXPECT_EQ(matches("aa", "aaaaa"), (std::vector<std::string>{"0 aa", "2 aa"}));
    EXPECT_EQ(matches("\u00E9", "e\u0301 e \u00C9"), (std::vector<std::string>{"0 e\u0301", "6 \u00C9"}));
    EXPECT_TRUE(matches("b", "aaaaa").empty());
    EXPECT_TRUE(matches("", "aaaaa").empty());
}

TEST(TextMatcher, findsNothingForAnEmptyQueryOrInAnEmptyText) {
    EXPECT_FALSE(finds({"", "text", false}));
    EXPECT_FALSE(finds({"text", "", false}));
    EXPECT_FALSE(finds({"longer than the text", "text", false}));
}

TEST(TextMatcher, survivesInvalidBytesAndEndlessMarks) {
    EXPECT_TRUE(finds({"after", "\xC3\x28\xFF\xE2\x84 after", true}));
    EXPECT_FALSE(finds({"x", "\xF0\x9F\x98", false}));
    std::string marks = "e";
    for (int index = 0; index < 20'000; ++index)
        marks += "\u0301";
    EXPECT_FALSE(finds({"x", marks, false}));
    EXPECT_TRUE(finds({"x", marks + "x", true}));
}

} // namespace
} // namespace diary

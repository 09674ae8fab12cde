// SPDX-License-Identifier: MIT
#include <DiaryKit/SearchFilter.h>
#include <DiaryKit/TextMatcher.h>

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <random>
#include <string>
#include <vector>

namespace diary {
namespace {

SearchFilter filterFor(const std::string &query, CaseRules rules = CaseRules::Default) {
    return {folded(query, rules, Equivalence::Canonical), rules};
}

std::string utf8(const icu::UnicodeString &text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

// The text in every form a file may hold it in.
std::vector<std::string> spellings(const icu::UnicodeString &text) {
    UErrorCode status = U_ZERO_ERROR;
    const auto *nfc = icu::Normalizer2::getNFCInstance(status);
    const auto *nfd = icu::Normalizer2::getNFDInstance(status);
    std::vector<std::string> forms;
    const auto english = icu::Locale::getEnglish();
    for (const auto &cased :
         {text, icu::UnicodeString(text).toUpper(english), icu::UnicodeString(text).toLower(english),
          icu::UnicodeString(text).toTitle(nullptr, english)}) {
        forms.push_back(utf8(cased));
        forms.push_back(utf8(nfc->normalize(cased, status)));
        forms.push_back(utf8(nfd->normalize(cased, status)));
    }
    return forms;
}

// The filter may pass too much, never too little.
void expectNeverTooLittle(const icu::UnicodeString &word, CaseRules rules) {
    const auto forms = spellings(word);
    const TextMatcher matcher(forms.front(), rules, Equivalence::Canonical);
    const auto filter = filterFor(forms.front(), rules);
    for (const auto &form : forms) {
        const auto text = "some words " + form + " and more words, enough to fill a few vectors of bytes";
        ASSERT_TRUE(!matcher.find(text) || filter.mayContain(text)) << forms.front() << " as " << form;
    }
}

TEST(SearchFilter, passesEverySpellingOfEveryLetterWithCaseOrParts) {
    UErrorCode status = U_ZERO_ERROR;
    const auto *nfd = icu::Normalizer2::getNFDInstance(status);
    for (UChar32 c = 0x21; c < 0x2FA20; ++c) {
        const bool isHangul = c >= 0xAC00 && c <= 0xD7A3;
        const bool isPlainIdeograph = c >= 0x20000 && c < 0x2F800;
        // Of the eleven thousand Hangul syllables, which all work alike, some.
        if ((c >= 0xD800 && c < 0xE000) || isPlainIdeograph || (isHangul && c % 97 != 0))
            continue;
        const icu::UnicodeString letter(c);
        const bool matters = u_hasBinaryProperty(c, UCHAR_CASED) ||
                             u_hasBinaryProperty(c, UCHAR_CHANGES_WHEN_CASEMAPPED) ||
                             !nfd->isNormalized(letter, status) || c % 101 == 0;
        if (!matters)
            continue;
        expectNeverTooLittle(letter, CaseRules::Default);
        // The Turkic rules differ in the letter i alone.
        if (c < 0x250)
            expectNeverTooLittle(letter, CaseRules::Turkic);
        if (::testing::Test::HasFatalFailure())
            return;
    }
}

TEST(SearchFilter, passesEverySpellingOfWords) {
    for (const auto *word :
         {"Straße", "STRASSE", "office",   "ﬃ",      "task", "Kelvin", "ſt", "Ångström", "λόγος", "ΛΌΓΟΣ",
          "дождь",  "йод",     "Việt Nam", "Nguyễn", "한글", "図書館", "豈", "İstanbul", "ıssız", "ŉ",
          "ǰ",      "क़लम",     "שׁלום",     "é",      "ss",   "fi",     "i",  "I"})
        for (const auto rules : {CaseRules::Default, CaseRules::Turkic})
            expectNeverTooLittle(icu::UnicodeString::fromUTF8(word), rules);
}

TEST(SearchFilter, passesRandomTextsThatMatch) {
    const std::vector<std::string> pieces = {
        "s",       "S", "ſ", "ß", "ẞ", "st", "ﬆ", "k", "K", "\u212A",  "e",  "é",
        "e\u0301", "f", "i", "ﬁ", "I", "İ",  "ı", "и", "й", "и\u0306", "한", "\u1112\u1161\u11AB",
        "a",       "x", " "};
    std::mt19937 random(7);
    const auto make = [&](std::size_t length) {
        std::string text;
        for (std::size_t index = 0; index < length; ++index)
            text += pieces[random() % pieces.size()];
        return text;
    };
    int matches = 0;
    for (int round = 0; round < 5'000; ++round) {
        const auto query = make(1 + random() % 3);
        const auto text = make(random() % 90);
        if (!TextMatcher(query, CaseRules::Default, Equivalence::Canonical).find(text))
            continue;
        ++matches;
        ASSERT_TRUE(filterFor(query).mayContain(text)) << '"' << query << "\" in \"" << text << '"';
    }
    EXPECT_GT(matches, 1'000);
}

TEST(SearchFilter, turnsAwayTextsWithoutTheQuery) {
    const std::string english =
        "The morning walk with coffee and rain on the garden, letters from Anna until late.";
    for (const auto *query : {"zephyr", "дождь", "图书馆", "한글", "qx", "Größe", "Zoë"})
        EXPECT_FALSE(filterFor(query).mayContain(english)) << query;
}

TEST(SearchFilter, findsAPairAtEveryPlaceOfATextOfAnyLength) {
    const auto filter = filterFor("xy");
    for (std::size_t length = 2; length < 200; ++length) {
        for (std::size_t place = 0; place + 2 <= length; ++place) {
            std::string text(length, '.');
            text.replace(place, 2, place % 2 ? "Xy" : "xY");
            ASSERT_TRUE(filter.mayContain(text)) << length << " at " << place;
        }
        EXPECT_FALSE(filter.mayContain(std::string(length, '.')));
    }
}

TEST(SearchFilter, passesEverythingWhenAnInvalidByteMayBeMeant) {
    EXPECT_TRUE(filterFor("\uFFFD").mayContain("\xFF"));
}

} // namespace
} // namespace diary

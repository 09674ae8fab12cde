// SPDX-License-Identifier: MIT
#include <DiaryKit/UnicodeText.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace diary::UnicodeText {
namespace {

constexpr char32_t lastCharacter = 0x10FFFF;

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

std::string utf8(char32_t c) {
    const auto byte = [](char32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
    if (c < 0x80)
        return {byte(c)};
    if (c < 0x800)
        return {byte(0xC0 | c >> 6U), byte(0x80 | (c & 0x3FU))};
    if (c < 0x10000)
        return {byte(0xE0 | c >> 12U), byte(0x80 | (c >> 6U & 0x3FU)), byte(0x80 | (c & 0x3FU))};
    return {byte(0xF0 | c >> 18U), byte(0x80 | (c >> 12U & 0x3FU)), byte(0x80 | (c >> 6U & 0x3FU)),
            byte(0x80 | (c & 0x3FU))};
}

// The Unicode property White_Space.
const std::set<char32_t> whitespace = {0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,   0xA0,   0x1680,
                                       0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007, 0x2008,
                                       0x2009, 0x200A, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};

const std::set<char32_t> lineBreaks = {0x0A, 0x0B, 0x0C, 0x0D, 0x85, 0x2028, 0x2029};

TEST(UnicodeText, trimsExactlyTheWhitespaceCharacters) {
    for (char32_t c = 0; c <= lastCharacter; ++c) {
        if (isSurrogate(c))
            continue;
        const auto character = utf8(c);
        const bool isWhitespace = whitespace.contains(c);
        ASSERT_EQ(trimmed(character + "x" + character), isWhitespace ? "x" : character + "x" + character)
            << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(withoutTrailingWhitespace(character + "x" + character),
                  isWhitespace ? character + "x" : character + "x" + character)
            << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(isBlank(character), isWhitespace) << std::hex << static_cast<unsigned>(c);
    }
}

TEST(UnicodeText, trimsAnyMixtureOfWhitespace) {
    EXPECT_EQ(trimmed(" \t\r\n\v\f\u0085\u00A0\u3000a \u2028 b\u2029\u202F \n"), "a \u2028 b");
    EXPECT_EQ(withoutTrailingWhitespace(" a\u3000\r\n"), " a");
    EXPECT_EQ(trimmed(" \u3000\n"), "");
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(withoutTrailingWhitespace(""), "");
    EXPECT_EQ(trimmed("\u200B \uFEFF"), "\u200B \uFEFF");
}

TEST(UnicodeText, trimsUpToAnInvalidSequence) {
    EXPECT_EQ(trimmed(" \xFF "), "\xFF");
    EXPECT_EQ(trimmed(" \x80 x \xE3\x80 "), "\x80 x \xE3\x80");
    EXPECT_EQ(withoutTrailingWhitespace("\x80\x80"), "\x80\x80");
}

TEST(UnicodeText, isBlankWithNothingButWhitespace) {
    EXPECT_TRUE(isBlank(""));
    EXPECT_TRUE(isBlank(" \r\n\u3000\u2029"));
    EXPECT_FALSE(isBlank(" \n.\n "));
    EXPECT_FALSE(isBlank("\u200B"));
    EXPECT_FALSE(isBlank("\xFF"));
    EXPECT_FALSE(isBlank(std::string_view("\0", 1)));
}

TEST(UnicodeText, dropsExactlyTheLineBreaksAtTheStart) {
    for (char32_t c = 0; c <= lastCharacter; ++c) {
        if (isSurrogate(c))
            continue;
        const auto text = utf8(c) + "x" + utf8(c);
        ASSERT_EQ(withoutLeadingLineBreaks(text), lineBreaks.contains(c) ? "x" + utf8(c) : text)
            << std::hex << static_cast<unsigned>(c);
    }
    EXPECT_EQ(withoutLeadingLineBreaks("\r\n\v\f\u0085\u2028\u2029\n \nx"), " \nx");
    EXPECT_EQ(withoutLeadingLineBreaks("\n\n"), "");
    EXPECT_EQ(withoutLeadingLineBreaks(""), "");
    EXPECT_EQ(withoutLeadingLineBreaks("\n\xE2\x80"), "\xE2\x80");
}

TEST(UnicodeText, countsUtf16CodeUnits) {
    EXPECT_EQ(utf16Length(""), 0U);
    EXPECT_EQ(utf16Length("abc\r\n"), 5U);
    EXPECT_EQ(utf16Length("äöü"), 3U);
    EXPECT_EQ(utf16Length("日本"), 2U);
    EXPECT_EQ(utf16Length("😀"), 2U);
    EXPECT_EQ(utf16Length("🇩🇪"), 4U);
    EXPECT_EQ(utf16Length("e\u0301"), 2U);
    EXPECT_EQ(utf16Length("👩‍👩‍👧"), 8U);
    for (char32_t c = 0; c <= lastCharacter; ++c) {
        if (isSurrogate(c))
            continue;
        ASSERT_EQ(utf16Length(utf8(c)), c > 0xFFFF ? 2U : 1U) << std::hex << static_cast<unsigned>(c);
    }
}

TEST(UnicodeText, acceptsEveryCharacter) {
    for (char32_t c = 0; c <= lastCharacter; ++c) {
        const auto text = "12345" + utf8(c) + "x";
        ASSERT_EQ(isValid(text), !isSurrogate(c)) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(repaired(text) == text, !isSurrogate(c)) << std::hex << static_cast<unsigned>(c);
    }
    EXPECT_TRUE(isValid(""));
    EXPECT_EQ(repaired(""), "");
    EXPECT_EQ(repaired(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(UnicodeText, replacesEachMaximalPartOfACharacterByOneMark) {
    struct Row {
        std::string_view bytes;
        std::string_view repaired;
    };
    const std::vector<Row> rows = {
        // Bytes that begin no character.
        {"\x80", "\uFFFD"},
        {"\xBF\xBF", "\uFFFD\uFFFD"},
        {"\xFE\xFF", "\uFFFD\uFFFD"},
        {"\xF5\x80\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        // Characters cut short, at the end and by others.
        {"\xC3", "\uFFFD"},
        {"\xE2\x82", "\uFFFD"},
        {"\xF0\x9F\x98", "\uFFFD"},
        {"\xC3x", "\uFFFDx"},
        {"\xE2\x82x", "\uFFFDx"},
        {"\xF0\x9F\x98x", "\uFFFDx"},
        {"\xF0\x9Fx", "\uFFFDx"},
        {"\xE2\x82\xC3\xA9", "\uFFFDé"},
        {"\xE2\xE2\x82\xAC", "\uFFFD€"},
        // Overlong forms, surrogates and what lies beyond the last character.
        {"\xC0\x80", "\uFFFD\uFFFD"},
        {"\xC1\xBF", "\uFFFD\uFFFD"},
        {"\xE0\x80\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xE0\x9F\xBF", "\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x80\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xED\xA0\xBD\xED\xB8\x80", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        // The examples of the Unicode standard, tables 3-8 to 3-11.
        {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"
                                                 "A\uFFFD\uFFFD"
                                                 "B"},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", "\uFFFD\uFFFD\uFFFD\uFFFDA"},
        // Among text that fills the words compared at once.
        {"0123456789\xFFmnopqrstuvwxyz\xE2\x82 end", "0123456789\uFFFDmnopqrstuvwxyz\uFFFD end"},
        {"é€😀\xC3", "é€😀\uFFFD"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(repaired(std::string(row.bytes)), row.repaired) << ::testing::PrintToString(row.bytes);
        EXPECT_FALSE(isValid(row.bytes)) << ::testing::PrintToString(row.bytes);
        EXPECT_TRUE(isValid(row.repaired)) << ::testing::PrintToString(row.bytes);
    }
}

TEST(UnicodeText, findsAnInvalidByteAtEveryOffset) {
    for (std::size_t size = 1; size <= 40; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            std::string text(size, 'a');
            text[at] = '\x80';
            ASSERT_FALSE(isValid(text)) << size << ' ' << at;
            ASSERT_EQ(repaired(text), std::string(at, 'a') + "\uFFFD" + std::string(size - at - 1, 'a'));
        }
    }
}

TEST(UnicodeText, leavesARepairedTextAsItIs) {
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second), '\x9F', '\x98',
                                       'x'};
            const auto once = repaired(bytes);
            ASSERT_TRUE(isValid(once)) << ::testing::PrintToString(bytes);
            ASSERT_EQ(repaired(once), once) << ::testing::PrintToString(bytes);
            ASSERT_EQ(isValid(bytes), once == bytes) << ::testing::PrintToString(bytes);
            ASSERT_TRUE(once.ends_with('x'));
        }
    }
}

TEST(UnicodeText, knowsCharactersThatJoinTheOneBefore) {
    for (const std::string_view text :
         {"\u0301", "\u0301abc", "\u200D", "\u200C", "\uFE0F", "\u0903", "\U0001F3FD"})
        EXPECT_TRUE(beginsWithExtendingCharacter(text)) << text;
    for (const std::string_view text :
         {"", "a", "\n", "`", "é", "a\u0301", "日", "😀", "\u00A0", "\u200B", "\x80", "\xCC"})
        EXPECT_FALSE(beginsWithExtendingCharacter(text)) << text;
}

} // namespace
} // namespace diary::UnicodeText

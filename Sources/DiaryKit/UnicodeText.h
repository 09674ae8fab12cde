// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Unicode facts about UTF-8 text. Whitespace is the Unicode property White_Space, which includes line
// breaks, the no-break spaces and the ideographic space.
namespace diary::UnicodeText {

// The text with each invalid sequence replaced by U+FFFD, one for each maximal part of a character
// (Unicode, section 3.9). Valid text is moved through at memory speed.
std::string repaired(std::string bytes);

bool isValid(std::string_view bytes);

// Without the whitespace at its end, or at both.
std::string_view withoutTrailingWhitespace(std::string_view text);
std::string_view trimmed(std::string_view text);

// Without the line breaks at its start: U+000A to U+000D, U+0085, U+2028 and U+2029, not spaces.
std::string_view withoutLeadingLineBreaks(std::string_view text);

// True when there is nothing but whitespace.
bool isBlank(std::string_view text);

// True when the text starts with a character that joins the one before it (a combining mark, a joiner).
bool beginsWithExtendingCharacter(std::string_view text);

// Length in UTF-16 code units.
std::size_t utf16Length(std::string_view text);

} // namespace diary::UnicodeText

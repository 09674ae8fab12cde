// SPDX-License-Identifier: MIT
#include <DiaryKit/UnicodeText.h>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace diary::UnicodeText {

namespace {

const std::uint8_t *bytesOf(std::string_view text) {
    return reinterpret_cast<const std::uint8_t *>(text.data());
}

std::size_t asciiPrefix(std::string_view text, std::size_t from) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t at = from;
    for (; at + sizeof(std::uint64_t) <= text.size(); at += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, sizeof word);
        if ((word & highBits) != 0)
            break;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80)
        ++at;
    return at;
}

// Offset of the first invalid sequence, or the size when there is none.
std::size_t firstInvalid(std::string_view text) {
    const auto *bytes = bytesOf(text);
    const auto size = static_cast<std::int64_t>(text.size());
    for (std::int64_t at = 0; at < size;) {
        at = static_cast<std::int64_t>(asciiPrefix(text, static_cast<std::size_t>(at)));
        if (at >= size)
            break;
        const auto start = at;
        UChar32 character = 0;
        U8_NEXT(bytes, at, size, character);
        if (character < 0)
            return static_cast<std::size_t>(start);
    }
    return text.size();
}

bool isLineBreak(UChar32 c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

// Asked nearly always of a line break or a letter of ASCII, which need no table.
bool isWhitespace(UChar32 c) {
    if (c < 0x80)
        return c == ' ' || (c >= '\t' && c <= '\r');
    return u_isUWhiteSpace(c) != 0;
}

UChar32 firstCharacter(std::string_view text, std::size_t &length) {
    const auto *bytes = bytesOf(text);
    std::int64_t at = 0;
    UChar32 character = 0;
    U8_NEXT(bytes, at, static_cast<std::int64_t>(text.size()), character);
    length = static_cast<std::size_t>(at);
    return character;
}

} // namespace

std::string repaired(std::string bytes) {
    const auto invalid = firstInvalid(bytes);
    if (invalid == bytes.size())
        return bytes;

    std::string result(bytes, 0, invalid);
    result.reserve(bytes.size() + 16);
    const auto *source = bytesOf(bytes);
    const auto size = static_cast<std::int64_t>(bytes.size());
    for (auto at = static_cast<std::int64_t>(invalid); at < size;) {
        const auto start = at;
        UChar32 character = 0;
        U8_NEXT(source, at, size, character);
        if (character < 0)
            result += "\xEF\xBF\xBD";
        else
            result.append(bytes, static_cast<std::size_t>(start), static_cast<std::size_t>(at - start));
    }
    return result;
}

bool isValid(std::string_view bytes) {
    return firstInvalid(bytes) == bytes.size();
}

std::string_view withoutTrailingWhitespace(std::string_view text) {
    while (!text.empty()) {
        // ICU steps back with 32-bit offsets, so it is shown the last character's bytes alone.
        const auto window = text.substr(text.size() - std::min<std::size_t>(text.size(), U8_MAX_LENGTH));
        const auto *bytes = bytesOf(window);
        auto start = static_cast<std::int32_t>(window.size());
        UChar32 character = 0;
        U8_PREV(bytes, 0, start, character);
        if (!isWhitespace(character))
            break;
        text.remove_suffix(window.size() - static_cast<std::size_t>(start));
    }
    return text;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty()) {
        std::size_t length = 0;
        const auto character = firstCharacter(text, length);
        if (!isWhitespace(character))
            break;
        text.remove_prefix(length);
    }
    return withoutTrailingWhitespace(text);
}

std::string_view withoutLeadingLineBreaks(std::string_view text) {
    while (!text.empty()) {
        std::size_t length = 0;
        if (!isLineBreak(firstCharacter(text, length)))
            break;
        text.remove_prefix(length);
    }
    return text;
}

bool isBlank(std::string_view text) {
    return withoutTrailingWhitespace(text).empty();
}

bool beginsWithExtendingCharacter(std::string_view text) {
    if (text.empty() || static_cast<unsigned char>(text.front()) < 0x80)
        return false;
    std::size_t length = 0;
    const auto character = firstCharacter(text, length);
    if (character < 0)
        return false;
    switch (u_getIntPropertyValue(character, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_EXTEND:
    case U_GCB_SPACING_MARK:
    case U_GCB_ZWJ:
        return true;
    default:
        return false;
    }
}

std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        // Each character counts once, at its first byte; those outside the basic plane need a pair.
        if ((byte & 0xC0U) != 0x80U)
            units += byte >= 0xF0U ? 2 : 1;
    }
    return units;
}

} // namespace diary::UnicodeText

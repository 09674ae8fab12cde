// SPDX-License-Identifier: MIT
#include <DiaryKit/CaseFolding.h>

#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <array>
#include <cstring>

namespace diary {

namespace {

using Utf16 = std::u16string;

// Runs one of ICU's functions that write UTF-16 and tell the length they need.
template <typename Transform>
Utf16 transformed(const Utf16 &text, Transform transform) {
    Utf16 result(text.size() + 16, u'\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const auto length = transform(text, result.data(), static_cast<std::int32_t>(result.size()), status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            result.resize(static_cast<std::size_t>(length) + 1);
            continue;
        }
        if (U_FAILURE(status))
            return text;
        result.resize(static_cast<std::size_t>(length));
        return result;
    }
}

Utf16 composed(const Utf16 &text) {
    UErrorCode status = U_ZERO_ERROR;
    const auto *nfc = unorm2_getNFCInstance(&status);
    return transformed(
        text, [&](const Utf16 &source, char16_t *target, std::int32_t room, UErrorCode &error) {
            return unorm2_normalize(nfc, source.data(), static_cast<std::int32_t>(source.size()), target,
                                    room, &error);
        });
}

std::uint32_t foldOptions(CaseRules rules) {
    return rules == CaseRules::Turkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
}

Utf16 caseFolded(const Utf16 &text, CaseRules rules) {
    return transformed(
        text, [&](const Utf16 &source, char16_t *target, std::int32_t room, UErrorCode &error) {
            return u_strFoldCase(target, room, source.data(), static_cast<std::int32_t>(source.size()),
                                 foldOptions(rules), &error);
        });
}

Utf16 toUtf16(std::u32string_view text) {
    Utf16 result;
    result.reserve(text.size());
    std::array<char16_t, 2> units{};
    for (const char32_t c : text) {
        std::size_t length = 0;
        U16_APPEND_UNSAFE(units, length, c);
        result.append(units.data(), length);
    }
    return result;
}

std::u32string toUtf32(const Utf16 &text) {
    std::u32string result(text.size(), U'\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF32(reinterpret_cast<UChar32 *>(result.data()), static_cast<std::int32_t>(result.size()),
                 &length, text.data(), static_cast<std::int32_t>(text.size()), &status);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

} // namespace

CaseRules userCaseRules() {
    const char *locale = uloc_getDefault();
    const bool isTurkic = std::strncmp(locale, "tr", 2) == 0 || std::strncmp(locale, "az", 2) == 0;
    const bool isWholeCode = std::strlen(locale) == 2 || locale[2] == '_';
    return isTurkic && isWholeCode ? CaseRules::Turkic : CaseRules::Default;
}

std::u32string folded(std::u32string_view text, CaseRules rules, Equivalence equivalence) {
    auto units = toUtf16(text);
    if (equivalence == Equivalence::CodePoints)
        return toUtf32(caseFolded(units, rules));
    // Folding may leave a text that is no longer composed.
    return toUtf32(composed(caseFolded(composed(units), rules)));
}

std::u32string folded(std::string_view utf8, CaseRules rules, Equivalence equivalence) {
    std::u32string text;
    const auto length = static_cast<std::int64_t>(utf8.size());
    for (std::int64_t at = 0; at < length;) {
        UChar32 c = 0;
        U8_NEXT_OR_FFFD(reinterpret_cast<const std::uint8_t *>(utf8.data()), at, length, c);
        text += static_cast<char32_t>(c);
    }
    return folded(text, rules, equivalence);
}

char32_t foldedAlone(char32_t character, CaseRules rules) {
    return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(character), foldOptions(rules)));
}

bool mayFoldToSeveral(char32_t c) {
    return c == 0xDF || c == 0x130 || c == 0x149 || c == 0x1F0 || c == 0x390 || c == 0x3B0 || c == 0x587 ||
           (c >= 0x1E96 && c <= 0x1E9E) || (c >= 0x1F50 && c <= 0x1FFC) || (c >= 0xFB00 && c <= 0xFB17);
}

} // namespace diary

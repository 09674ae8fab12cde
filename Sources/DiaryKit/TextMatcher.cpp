// SPDX-License-Identifier: MIT
#include <DiaryKit/TextMatcher.h>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf8.h>

namespace diary {

namespace {

// A letter with more marks than this is cut, as Unicode's stream-safe text format does (UAX #15), so that a
// hostile text cannot make a search quadratic.
constexpr std::size_t longestUnit = 31;

const UNormalizer2 *nfc() {
    static const UNormalizer2 *const instance = [] {
        UErrorCode status = U_ZERO_ERROR;
        return unorm2_getNFCInstance(&status);
    }();
    return instance;
}

bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

char32_t decode(std::string_view text, std::size_t &at) {
    auto position = static_cast<std::int64_t>(at);
    UChar32 c = 0;
    U8_NEXT_OR_FFFD(reinterpret_cast<const std::uint8_t *>(text.data()), position,
                    static_cast<std::int64_t>(text.size()), c);
    at = static_cast<std::size_t>(position);
    return static_cast<char32_t>(c);
}

// True when what comes next cannot join the character before it.
bool beginsUnit(std::string_view rest) {
    if (rest.empty() || isAscii(rest.front()))
        return true;
    std::size_t at = 0;
    return unorm2_hasBoundaryBefore(nfc(), static_cast<UChar32>(decode(rest, at)));
}

} // namespace

TextMatcher::TextMatcher(std::string_view query, CaseRules rules, Equivalence equivalence)
    : m_rules(rules), m_equivalence(equivalence), m_query(folded(query, rules, equivalence)) {
    if (!m_query.empty())
        findStartBytes();
}

void TextMatcher::findStartBytes() {
    const auto allow = [this](char32_t c) {
        if (c < 0x80)
            m_mayStart[c] = true;
    };
    // The first character may stand decomposed in the text, beginning with its base letter.
    std::array<char16_t, 8> decomposition{};
    UErrorCode status = U_ZERO_ERROR;
    const auto length =
        unorm2_getDecomposition(unorm2_getNFDInstance(&status), static_cast<UChar32>(m_query[0]),
                                decomposition.data(), decomposition.size(), &status);
    const char32_t first = length > 0 && U_SUCCESS(status) ? decomposition[0] : m_query[0];
    for (const char32_t c : {m_query[0], first}) {
        allow(c);
        if (c >= 'a' && c <= 'z')
            allow(c - 'a' + 'A');
        if (c == U'ı')
            allow('I');
    }
    // A letter outside ASCII may fold to anything.
    for (std::size_t lead = 0x80; lead < m_mayStart.size(); ++lead)
        m_mayStart[lead] = lead >= 0xC2 || m_query[0] == 0xFFFD;
}

char32_t TextMatcher::foldedAscii(char c) const {
    if (c < 'A' || c > 'Z')
        return static_cast<char32_t>(c);
    if (c == 'I' && m_rules == CaseRules::Turkic)
        return U'ı';
    return static_cast<char32_t>(c - 'A' + 'a');
}

// True when the character folds by itself, to one character, whatever follows it.
bool TextMatcher::standsAlone(char32_t character, std::string_view rest) const {
    if (mayFoldToSeveral(character))
        return false;
    if (m_equivalence == Equivalence::CodePoints)
        return true;
    return beginsUnit(rest) &&
           u_getIntPropertyValue(static_cast<UChar32>(character), UCHAR_NFC_QUICK_CHECK) == UNORM_YES;
}

bool TextMatcher::matchFolded(std::u32string_view unit, std::size_t &matched) const {
    if (m_query.compare(matched, unit.size(), unit) != 0)
        return false;
    matched += unit.size();
    return true;
}

// Compares one character of the text, with all that belongs to it, and steps over it.
bool TextMatcher::matchUnit(std::string_view text, std::size_t &at, std::size_t &matched) const {
    if (isAscii(text[at]) &&
        (m_equivalence == Equivalence::CodePoints || at + 1 == text.size() || isAscii(text[at + 1])))
        return foldedAscii(text[at++]) == m_query[matched++];

    const auto begin = at;
    const char32_t character = decode(text, at);
    if (standsAlone(character, text.substr(at)))
        return foldedAlone(character, m_rules) == m_query[matched++];
    if (m_equivalence == Equivalence::Canonical) {
        for (std::size_t count = 1; count < longestUnit && !beginsUnit(text.substr(at)); ++count)
            decode(text, at);
    }
    return matchFolded(folded(text.substr(begin, at - begin), m_rules, m_equivalence), matched);
}

std::optional<std::size_t> TextMatcher::matchEnd(std::string_view text, std::size_t begin) const {
    auto at = begin;
    std::size_t matched = 0;
    while (matched < m_query.size()) {
        if (at == text.size() || !matchUnit(text, at, matched))
            return std::nullopt;
    }
    return at;
}

std::optional<ByteRange> TextMatcher::find(std::string_view text) const {
    if (m_query.empty())
        return std::nullopt;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!m_mayStart[static_cast<unsigned char>(text[at])])
            continue;
        if (const auto end = matchEnd(text, at))
            return ByteRange{at, *end};
    }
    return std::nullopt;
}

std::vector<ByteRange> TextMatcher::findAll(std::string_view text) const {
    std::vector<ByteRange> matches;
    std::size_t from = 0;
    while (const auto match = find(text.substr(from))) {
        matches.push_back({from + match->begin, from + match->end});
        from += match->end;
    }
    return matches;
}

} // namespace diary

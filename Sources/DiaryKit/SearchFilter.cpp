// SPDX-License-Identifier: MIT
#include <DiaryKit/SearchFilter.h>

#include <unicode/uchar.h>
#include <unicode/uniset.h>
#include <unicode/unorm2.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <optional>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace diary {

// The ways one character of the query may stand in a text.
struct SearchFilter::Letter {
    // Plain spellings are single code points of one length in UTF-8 that nothing else is equivalent to.
    bool isPlain = true;
    std::vector<std::string>
        spellings; // the plain ones, or when not plain all of them; the first is the query's
    std::vector<std::string> others; // rare spellings of a plain letter that have another length
    bool isComplete = true;          // false when there are spellings that are not listed
};

// One byte of a run of plain letters.
struct SearchFilter::Column {
    std::uint8_t value = 0;
    std::uint8_t mask = 0;
    std::size_t letter = 0;
};

namespace {

// How often a byte is found among a thousand of a diary in any language, roughly. Only the order matters.
int frequency(std::uint8_t byte) {
    switch (byte) {
    case ' ':
        return 120;
    case 'e':
        return 80;
    case 'a':
    case 'n':
    case 't':
    case 'o':
    case 'i':
        return 55;
    case 's':
    case 'r':
        return 45;
    case 'h':
    case 'l':
    case 'd':
    case 'u':
        return 30;
    case 'c':
    case 'm':
        return 20;
    case 'w':
    case 'f':
    case 'g':
    case 'p':
    case 'y':
    case 'b':
        return 14;
    case 'v':
    case 'k':
    case ',':
    case '.':
    case '\n':
        return 8;
    case 0xD0:
    case 0xD1:
        return 40;
    case 0xE3:
    case 0xE4:
    case 0xE5:
    case 0xE6:
    case 0xE7:
    case 0xE8:
    case 0xE9:
        return 25;
    case 0xC3:
        return 15;
    default:
        return byte >= 0x80 && byte < 0xC0 ? 12 : 3;
    }
}

int frequency(std::uint8_t value, std::uint8_t mask) {
    // Capitals are rare; other bits that are not looked at let other bytes through.
    const auto folded = static_cast<std::uint8_t>(value | 0x20U);
    const bool isLetterCase = mask == 0x20 && folded >= 'a' && folded <= 'z';
    return isLetterCase ? frequency(folded) : frequency(value) << std::popcount(mask);
}

std::string utf8(char32_t c) {
    std::string bytes;
    icu::UnicodeString(static_cast<UChar32>(c)).toUTF8String(bytes);
    return bytes;
}

std::u32string codePoints(const icu::UnicodeString &text) {
    std::u32string result;
    for (std::int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1))
        result += static_cast<char32_t>(text.char32At(at));
    return result;
}

std::string utf8(std::u32string_view text) {
    std::string bytes;
    for (const char32_t c : text)
        bytes += utf8(c);
    return bytes;
}

std::u32string decomposed(char32_t c) {
    UErrorCode status = U_ZERO_ERROR;
    std::array<char16_t, 32> units{};
    const auto length =
        unorm2_getDecomposition(unorm2_getNFDInstance(&status), static_cast<UChar32>(c), units.data(),
                                static_cast<std::int32_t>(units.size()), &status);
    if (length <= 0 || U_FAILURE(status))
        return {c};
    return codePoints(icu::UnicodeString(units.data(), length));
}

// A Hangul syllable of three parts, with the first two composed. Its arithmetic is Unicode's (section 3.12).
std::optional<std::string> syllableWithFinal(char32_t c) {
    constexpr char32_t firstSyllable = 0xAC00;
    constexpr char32_t lastSyllable = 0xD7A3;
    constexpr char32_t finals = 28;
    constexpr char32_t beforeFirstFinal = 0x11A7;
    if (c < firstSyllable || c > lastSyllable || (c - firstSyllable) % finals == 0)
        return std::nullopt;
    const char32_t final = (c - firstSyllable) % finals;
    return utf8(c - final) + utf8(beforeFirstFinal + final);
}

// All single characters that fold to this one.
std::u32string caseVariants(char32_t folded, CaseRules rules) {
    if (rules == CaseRules::Turkic && folded == U'i')
        return U"iİ";
    if (rules == CaseRules::Turkic && folded == U'ı')
        return U"ıI";
    icu::UnicodeSet closure(static_cast<UChar32>(folded), static_cast<UChar32>(folded));
    closure.closeOver(USET_CASE_INSENSITIVE);
    std::u32string variants{folded};
    for (std::int32_t index = 0; index < closure.size(); ++index) {
        const auto c = closure.charAt(index);
        if (c >= 0 && static_cast<char32_t>(c) != folded)
            variants += static_cast<char32_t>(c);
    }
    return variants;
}

// Where the characters lie that composing a text replaces by others: the Kelvin sign, the compatibility
// ideographs, and what is excluded from composition. Unicode's stability policy keeps them there.
constexpr std::array<std::pair<char32_t, char32_t>, 20> recomposedRanges{
    {{0x340, 0x343},   {0x374, 0x374},   {0x37E, 0x37E},     {0x387, 0x387},   {0x958, 0x95F},
     {0x9DC, 0x9DF},   {0xA33, 0xA36},   {0xA59, 0xA5E},     {0xB5C, 0xB5D},   {0xF43, 0xFB9},
     {0x1F71, 0x1F7D}, {0x1FBB, 0x1FFD}, {0x2000, 0x2001},   {0x2126, 0x212B}, {0x2329, 0x232A},
     {0x2ADC, 0x2ADC}, {0xFB1D, 0xFB4E}, {0x1D15E, 0x1D1C0}, {0xF900, 0xFAD9}, {0x2F800, 0x2FA1D}}};

// The characters that fold to several, by the ranges of mayFoldToSeveral.
constexpr std::array<std::pair<char32_t, char32_t>, 10> expandingRanges{{{0xDF, 0xDF},
                                                                         {0x130, 0x130},
                                                                         {0x149, 0x149},
                                                                         {0x1F0, 0x1F0},
                                                                         {0x390, 0x390},
                                                                         {0x3B0, 0x3B0},
                                                                         {0x587, 0x587},
                                                                         {0x1E96, 0x1E9E},
                                                                         {0x1F50, 0x1FFC},
                                                                         {0xFB00, 0xFB17}}};

// A character of the text that stands for one character of the query, or for several.
struct Substitute {
    char32_t character;
    std::size_t begin; // the letters of the query that it stands for
    std::size_t end;
};

std::vector<Substitute> substitutes(std::u32string_view query, CaseRules rules) {
    std::vector<Substitute> found;
    const auto look = [&](char32_t c) {
        const auto text = folded(std::u32string_view(&c, 1), rules, Equivalence::Canonical);
        for (auto at = query.find(text); at != std::u32string_view::npos; at = query.find(text, at + 1))
            found.push_back({c, at, at + text.size()});
    };
    for (const auto &[first, last] : expandingRanges) {
        for (char32_t c = first; c <= last; ++c)
            look(c);
    }
    const auto isIdeograph = [](char32_t c) { return c >= 0x2E80; };
    const bool hasIdeographs = std::any_of(query.begin(), query.end(), isIdeograph);
    for (const auto &[first, last] : recomposedRanges) {
        const bool holdsIdeographs = first == 0xF900 || first == 0x2F800;
        if (holdsIdeographs && !hasIdeographs)
            continue;
        for (char32_t c = first; c <= last; ++c) {
            if (u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_NFC_QUICK_CHECK) == UNORM_NO)
                look(c);
        }
    }
    return found;
}

SearchFilter::BytePair exactPair(std::string_view literal) {
    return {static_cast<std::uint8_t>(literal.front()), 0, static_cast<std::uint8_t>(literal.back()), 0,
            literal.size() - 1};
}

void addUnique(std::vector<SearchFilter::BytePair> &patterns, const SearchFilter::BytePair &pair) {
    if (std::find(patterns.begin(), patterns.end(), pair) == patterns.end())
        patterns.push_back(pair);
}

} // namespace

SearchFilter::SearchFilter(std::u32string_view foldedQuery, CaseRules rules) {
    std::vector<Letter> letters(foldedQuery.size());
    for (std::size_t index = 0; index < letters.size(); ++index) {
        auto &letter = letters[index];
        const auto self = utf8(foldedQuery[index]);
        UErrorCode status = U_ZERO_ERROR;
        // A character that composes with its neighbours may be part of another in the text.
        const bool mayJoin = !unorm2_hasBoundaryBefore(unorm2_getNFCInstance(&status),
                                                       static_cast<UChar32>(foldedQuery[index]));
        // Invalid bytes are read as this character.
        const bool isReplacement = foldedQuery[index] == 0xFFFD;
        letter.isComplete = !mayJoin && !isReplacement;
        for (const char32_t variant : caseVariants(foldedQuery[index], rules)) {
            const auto parts = decomposed(variant);
            const auto spelling = utf8(variant);
            if (parts.size() > 1) {
                letter.isPlain = false;
                // The base letter's other case too: not every capital has a composed form (ǰ).
                for (const char32_t base : caseVariants(foldedAlone(parts.front(), rules), rules))
                    letter.spellings.push_back(utf8(base) + utf8(std::u32string_view(parts).substr(1)));
                if (const auto halfComposed = syllableWithFinal(variant))
                    letter.spellings.push_back(*halfComposed);
                else // Of three parts, the first two may be composed or in another order.
                    letter.isComplete = letter.isComplete && parts.size() == 2;
            }
            if (spelling.size() == self.size())
                letter.spellings.push_back(spelling);
            else
                letter.others.push_back(spelling);
        }
        letter.isPlain = letter.isPlain && letter.isComplete;
    }
    for (const auto &[character, begin, end] : substitutes(foldedQuery, rules)) {
        for (auto index = begin; index < end; ++index)
            letters[index].others.push_back(utf8(character));
    }

    usePlainRuns(letters);
    if (m_patterns.empty())
        useOneLetter(letters);
}

// Takes the two rarest bytes of a run of plain letters; the distance between them is the same in every
// spelling.
void SearchFilter::usePlainRuns(const std::vector<Letter> &letters) {
    constexpr std::size_t farthest = 48;
    constexpr int costOfPattern = 60;

    int best = std::numeric_limits<int>::max();
    std::pair<std::size_t, std::size_t> bestLetters;
    BytePair bestPair;
    std::vector<Column> run;
    const auto considerPairs = [&] {
        for (std::size_t i = 0; i < run.size(); ++i) {
            for (std::size_t j = i; j < std::min(run.size(), i + farthest); ++j) {
                const int one = frequency(run[i].value, run[i].mask);
                int score = i == j ? one * 100 : one * frequency(run[j].value, run[j].mask);
                for (auto index = run[i].letter; index <= run[j].letter; ++index)
                    score += costOfPattern * static_cast<int>(letters[index].others.size());
                if (score < best) {
                    best = score;
                    bestLetters = {run[i].letter, run[j].letter};
                    bestPair = {run[i].value, run[i].mask, run[j].value, run[j].mask, j - i};
                }
            }
        }
        run.clear();
    };
    for (std::size_t index = 0; index < letters.size(); ++index) {
        if (!letters[index].isPlain) {
            considerPairs();
            continue;
        }
        const auto &spellings = letters[index].spellings;
        for (std::size_t byte = 0; byte < spellings.front().size(); ++byte) {
            Column column{static_cast<std::uint8_t>(spellings.front()[byte]), 0, index};
            for (const auto &spelling : spellings)
                column.mask |=
                    static_cast<std::uint8_t>(column.value ^ static_cast<std::uint8_t>(spelling[byte]));
            column.value |= column.mask;
            run.push_back(column);
        }
    }
    considerPairs();
    if (best == std::numeric_limits<int>::max())
        return;

    m_patterns.push_back(bestPair);
    for (auto index = bestLetters.first; index <= bestLetters.second; ++index) {
        for (const auto &other : letters[index].others)
            addUnique(m_patterns, exactPair(other));
    }
}

// Takes all spellings of one letter, when they are known.
void SearchFilter::useOneLetter(const std::vector<Letter> &letters) {
    const auto fewest =
        std::min_element(letters.begin(), letters.end(), [](const Letter &a, const Letter &b) {
            const auto count = [](const Letter &letter) {
                return letter.isComplete ? letter.spellings.size() + letter.others.size()
                                         : std::numeric_limits<std::size_t>::max();
            };
            return count(a) < count(b);
        });
    if (fewest == letters.end() || !fewest->isComplete)
        return;
    for (const auto *list : {&fewest->spellings, &fewest->others}) {
        for (const auto &spelling : *list)
            addUnique(m_patterns, exactPair(spelling));
    }
}

bool SearchFilter::contains(std::string_view text, const BytePair &pair) {
    if (text.size() <= pair.distance)
        return false;
    const std::size_t starts = text.size() - pair.distance;
    const char *data = text.data();
    std::size_t at = 0;
#ifdef __SSE2__
    constexpr std::size_t lanes = 16;
    const auto all = [](std::uint8_t byte) { return _mm_set1_epi8(static_cast<char>(byte)); };
    const __m128i first = all(pair.first);
    const __m128i firstMask = all(pair.firstMask);
    const __m128i second = all(pair.second);
    const __m128i secondMask = all(pair.secondMask);
    const auto matches = [&](const char *where) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(where));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(where + pair.distance));
        return _mm_and_si128(_mm_cmpeq_epi8(_mm_or_si128(a, firstMask), first),
                             _mm_cmpeq_epi8(_mm_or_si128(b, secondMask), second));
    };
    for (; at + 4 * lanes <= starts; at += 4 * lanes) {
        const __m128i any =
            _mm_or_si128(_mm_or_si128(matches(data + at), matches(data + at + lanes)),
                         _mm_or_si128(matches(data + at + 2 * lanes), matches(data + at + 3 * lanes)));
        if (_mm_movemask_epi8(any) != 0)
            return true;
    }
#endif
    for (; at < starts; ++at) {
        if ((static_cast<std::uint8_t>(data[at]) | pair.firstMask) == pair.first &&
            (static_cast<std::uint8_t>(data[at + pair.distance]) | pair.secondMask) == pair.second)
            return true;
    }
    return false;
}

bool SearchFilter::mayContain(std::string_view text) const {
    return m_patterns.empty() || std::any_of(m_patterns.begin(), m_patterns.end(),
                                             [&](const BytePair &pair) { return contains(text, pair); });
}

} // namespace diary

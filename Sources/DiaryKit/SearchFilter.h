// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/CaseFolding.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace diary {

// Turns away texts that cannot contain a query, at memory speed and without decoding them.
//
// Never turns away a text in which TextMatcher (with canonical equivalence) would find the query: every way
// to write the part of the query that is looked for is known beforehand, in either case, composed or not, as
// ſ, K, ß or ﬁ. What passes still needs the matcher. Immutable, so that several threads may share one.
class SearchFilter {
public:
    // The query as TextMatcher folded it.
    SearchFilter(std::u32string_view foldedQuery, CaseRules rules);

    bool mayContain(std::string_view text) const;

    // Two bytes at a fixed distance; bits of a mask are not looked at. One byte alone has distance 0.
    struct BytePair {
        std::uint8_t first = 0;
        std::uint8_t firstMask = 0;
        std::uint8_t second = 0;
        std::uint8_t secondMask = 0;
        std::size_t distance = 0;

        bool operator==(const BytePair &) const = default;
    };

    // A text may contain the query when any of these is in it; with none, any text may.
    const std::vector<BytePair> &patterns() const { return m_patterns; }

    static bool contains(std::string_view text, const BytePair &pair);

private:
    struct Column;
    struct Letter;

    void usePlainRuns(const std::vector<Letter> &letters);
    void useOneLetter(const std::vector<Letter> &letters);

    std::vector<BytePair> m_patterns;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/ByteRange.h>
#include <DiaryKit/CaseFolding.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace diary {

// Finds a query in UTF-8 text without regard to case.
//
// A match covers whole characters of the text: "as" is not found in "aß" although that folds to "ass", and
// under canonical equivalence "e" is not found in an "é" of two code points. Immutable, so that several
// threads may share one.
class TextMatcher {
public:
    TextMatcher(std::string_view query, CaseRules rules, Equivalence equivalence);

    // The first match; none for an empty query.
    std::optional<ByteRange> find(std::string_view text) const;
    // Every match, in order; of two that overlap the first.
    std::vector<ByteRange> findAll(std::string_view text) const;

    // The query as it is compared.
    const std::u32string &foldedQuery() const { return m_query; }

private:
    void findStartBytes();
    std::optional<std::size_t> matchEnd(std::string_view text, std::size_t begin) const;
    bool matchUnit(std::string_view text, std::size_t &at, std::size_t &matched) const;
    bool matchFolded(std::u32string_view unit, std::size_t &matched) const;
    char32_t foldedAscii(char c) const;
    bool standsAlone(char32_t character, std::string_view rest) const;

    CaseRules m_rules;
    Equivalence m_equivalence;
    std::u32string m_query;
    std::array<bool, 256> m_mayStart{}; // bytes that a match can begin with
};

} // namespace diary

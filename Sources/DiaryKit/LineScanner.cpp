// SPDX-License-Identifier: MIT
#include <DiaryKit/LineScanner.h>

#include <bit>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace diary {

namespace {

bool isCandidateByte(char c) {
    return c == '#' || c == '`' || c == ' ';
}

#ifdef __SSE2__
__m128i load(const char *at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
}

// A lane is set where a line break is followed by one of the candidate bytes.
__m128i breaksBeforeCandidates(const char *at) {
    const __m128i breaks = _mm_cmpeq_epi8(load(at), _mm_set1_epi8('\n'));
    const __m128i next = load(at + 1);
    const __m128i candidates = _mm_or_si128(
        _mm_or_si128(_mm_cmpeq_epi8(next, _mm_set1_epi8('#')), _mm_cmpeq_epi8(next, _mm_set1_epi8('`'))),
        _mm_cmpeq_epi8(next, _mm_set1_epi8(' ')));
    return _mm_and_si128(breaks, candidates);
}
#endif

} // namespace

std::size_t LineScanner::findBreakBeforeCandidate(std::size_t from) const {
    std::size_t at = from;
#ifdef __SSE2__
    constexpr std::size_t lanes = 16;
    // Two vectors a round; each looks one byte past its own end.
    for (; at + 2 * lanes + 1 <= m_text.size(); at += 2 * lanes) {
        const __m128i first = breaksBeforeCandidates(m_text.data() + at);
        const __m128i second = breaksBeforeCandidates(m_text.data() + at + lanes);
        if (_mm_movemask_epi8(_mm_or_si128(first, second)) == 0)
            continue;
        const auto mask = static_cast<unsigned>(_mm_movemask_epi8(first)) |
                          static_cast<unsigned>(_mm_movemask_epi8(second)) << lanes;
        return at + static_cast<std::size_t>(std::countr_zero(mask));
    }
#endif
    for (; at + 1 < m_text.size(); ++at) {
        if (m_text[at] == '\n' && isCandidateByte(m_text[at + 1]))
            return at;
    }
    return npos;
}

std::size_t LineScanner::nextCandidate() {
    if (!m_started) {
        m_started = true;
        if (!m_text.empty() && isCandidateByte(m_text.front()))
            return 0;
    }
    while (m_position < m_text.size()) {
        const auto lineBreak = findBreakBeforeCandidate(m_position);
        if (lineBreak == npos)
            break;
        m_position = lineBreak + 1;
        if (lineBreak == 0 || m_text[lineBreak - 1] != '\r')
            return m_position;
    }
    m_position = m_text.size();
    return npos;
}

std::string_view LineScanner::lineAt(std::size_t begin, std::size_t &end) const {
    std::size_t searchFrom = begin;
    for (;;) {
        const auto lineBreak = m_text.find('\n', searchFrom);
        if (lineBreak == npos) {
            end = m_text.size();
            return m_text.substr(begin);
        }
        if (lineBreak == begin || m_text[lineBreak - 1] != '\r') {
            end = lineBreak + 1;
            return m_text.substr(begin, lineBreak - begin);
        }
        searchFrom = lineBreak + 1;
    }
}

} // namespace diary

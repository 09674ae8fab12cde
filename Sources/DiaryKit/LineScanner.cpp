// SPDX-License-Identifier: MIT
#include <DiaryKit/LineScanner.h>

namespace diary {

bool LineScanner::beginsLine(std::size_t at) const {
    return at == 0 || (m_text[at - 1] == '\n' && (at == 1 || m_text[at - 2] != '\r'));
}

std::size_t LineScanner::find(Mark &mark) const {
    if (!mark.isFresh) {
        // string_view::find for one byte is memchr, which no loop of our own would beat.
        mark.position = m_text.find(mark.byte, mark.position);
        mark.isFresh = true;
    }
    return mark.position;
}

std::size_t LineScanner::nextCandidate() {
    for (;;) {
        const auto hash = find(m_hash);
        const auto backtick = find(m_backtick);
        auto &mark = hash < backtick ? m_hash : m_backtick;
        const auto at = mark.position;
        if (at == npos)
            return npos;
        // Only the first of several in a row can begin a line.
        mark.position = at + 1;
        while (mark.position < m_text.size() && m_text[mark.position] == mark.byte)
            ++mark.position;
        mark.isFresh = false;

        auto begin = at;
        while (mark.byte == '`' && begin > 0 && m_text[begin - 1] == ' ')
            --begin;
        if (beginsLine(begin))
            return begin;
    }
}

std::string_view LineScanner::lineAt(std::size_t begin, std::size_t &end) const {
    for (auto lineBreak = m_text.find('\n', begin); lineBreak != npos;
         lineBreak = m_text.find('\n', lineBreak + 1)) {
        if (lineBreak == begin || m_text[lineBreak - 1] != '\r') {
            end = lineBreak + 1;
            return m_text.substr(begin, lineBreak - begin);
        }
    }
    end = m_text.size();
    return m_text.substr(begin);
}

} // namespace diary

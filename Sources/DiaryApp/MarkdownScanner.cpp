// SPDX-License-Identifier: MIT
#include <DiaryApp/MarkdownScanner.h>

#include <QChar>

#include <unicode/uchar.h>

#include <algorithm>
#include <array>

// The rules, as regular expressions in which ^ and $ stand for the ends of a line, of which there may be
// several in one of ours. They are matched by hand: each needs one look ahead at most, since what stands
// between two marks excludes the mark.
//
//   quote     ^>.*$
//   list      ^[ \t]*(?:[-*+]|\d+\.)[ ]
//   heading   ^(#{1,6}) (.*)$
//   year      ^## +\d{4}[ \t]*$
//   bold      \*\*[^*\n]+\*\*|__[^_\n]+__
//   italic    (?<![\w*])\*[^*\n]+\*(?![\w*])|(?<![\w_])_[^_\n]+_(?![\w_])
//   code      `[^`\n]+`
//   strike    ~~[^~\n]+~~
//   rule      ^ {0,3}(?:-{3,}|\*{3,}|_{3,}) *$
//   link      \[([^\]\n]*)\]\(([^)\n]+)\)

namespace diary::MarkdownScanner {

namespace {

struct Range {
    qsizetype start;
    qsizetype end;
};

bool endsLine(char16_t unit) {
    return (unit >= u'\n' && unit <= u'\r') || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

// What parts the lines of fences: a vertical tab or a form feed does not.
bool endsFenceLine(char16_t unit) {
    return endsLine(unit) && unit != u'\v' && unit != u'\f';
}

bool isBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t';
}

bool isDigit(char32_t character) {
    return u_isdigit(static_cast<UChar32>(character));
}

// Letters, marks, digits, connectors and joiners, as Unicode's annex on regular expressions has it.
bool isWord(char32_t character) {
    const auto codePoint = static_cast<UChar32>(character);
    constexpr auto categories = U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
    return u_isUAlphabetic(codePoint) || (U_GET_GC_MASK(codePoint) & categories) != 0 ||
           character == 0x200C || character == 0x200D;
}

// Which characters with a meaning are in a line, so that most rules need not look at it.
class Marks {
public:
    explicit Marks(QStringView line) {
        for (const QChar character : line) {
            const char16_t unit = character.unicode();
            if (unit < flags.size())
                m_found |= flags[unit];
            else if (endsLine(unit))
                m_found |= LineEnd;
        }
    }

    bool hasEmphasis() const { return m_found & Emphasis; }
    bool hasBacktick() const { return m_found & Backtick; }
    bool hasTilde() const { return m_found & Tilde; }
    bool hasBracket() const { return m_found & Bracket; }
    bool hasLineEnd() const { return m_found & LineEnd; }

private:
    enum Flag : std::uint8_t { Emphasis = 1, Backtick = 2, Tilde = 4, Bracket = 8, LineEnd = 16 };

    static constexpr std::array<std::uint8_t, 128> flags = [] {
        std::array<std::uint8_t, 128> result{};
        result['*'] = result['_'] = Emphasis;
        result['`'] = Backtick;
        result['~'] = Tilde;
        result['['] = Bracket;
        result['\n'] = result['\v'] = result['\f'] = result['\r'] = LineEnd;
        return result;
    }();

    std::uint8_t m_found = 0;
};

constexpr Look fencedLook = {Face::Mono, Ink::Source, true, false};

class LineScan {
public:
    LineScan(QStringView line, State before) : m_line(line), m_marks(line) { findFences(before); }

    Line result() {
        Line result;
        result.state = m_state;
        if (m_line.isEmpty())
            return result;
        const bool isFenced =
            m_fences.size() == 1 && m_fences.front().start == 0 && m_fences.front().end == m_line.size();
        if (!isFenced)
            styleText();
        styleFences();
        appendRuns(result.runs);
        return result;
    }

private:
    using Change = void (*)(Look &);

    char16_t at(qsizetype index) const { return m_line[index].unicode(); }
    bool holds(qsizetype index, char16_t unit) const { return index < m_line.size() && at(index) == unit; }
    qsizetype next(char16_t unit, qsizetype from) const { return m_line.indexOf(QChar(unit), from); }

    // The characters beside a position; a line end beyond the ends of the line.
    char32_t characterBefore(qsizetype index) const {
        if (index == 0)
            return U'\n';
        const QChar last = m_line[index - 1];
        if (last.isLowSurrogate() && index > 1 && m_line[index - 2].isHighSurrogate())
            return QChar::surrogateToUcs4(m_line[index - 2], last);
        return last.unicode();
    }
    char32_t characterAt(qsizetype index) const {
        if (index >= m_line.size())
            return U'\n';
        const QChar first = m_line[index];
        if (first.isHighSurrogate() && index + 1 < m_line.size() && m_line[index + 1].isLowSurrogate())
            return QChar::surrogateToUcs4(first, m_line[index + 1]);
        return first.unicode();
    }

    // Calls with each part between line ends; the second range includes the line end.
    template <typename Action>
    void forEachPart(bool (*isEnd)(char16_t), Action action) const {
        if (!m_marks.hasLineEnd()) {
            action(Range{0, m_line.size()}, Range{0, m_line.size()});
            return;
        }
        qsizetype start = 0;
        for (qsizetype index = 0; index < m_line.size(); ++index) {
            if (isEnd(at(index))) {
                action(Range{start, index}, Range{start, index + 1});
                start = index + 1;
            }
        }
        action(Range{start, m_line.size()}, Range{start, m_line.size()});
    }

    void findFences(State before) {
        m_state = before;
        qsizetype opened = 0;
        if (m_marks.hasBacktick()) {
            forEachPart(endsFenceLine, [&](Range part, Range withEnd) {
                qsizetype start = part.start;
                while (start < part.end && isBlank(at(start)))
                    ++start;
                if (!m_line.sliced(start, part.end - start).startsWith(u"```"))
                    return;
                m_fenceLines.push_back(part);
                if (m_state == State::Fenced) {
                    m_fences.push_back({opened, withEnd.end});
                    m_state = State::Text;
                } else {
                    opened = part.start;
                    m_state = State::Fenced;
                }
            });
        }
        if (m_state == State::Fenced)
            m_fences.push_back({opened, m_line.size()});
    }

    bool touchesFence(Range range) const {
        const auto fence = std::upper_bound(m_fences.begin(), m_fences.end(), range.start,
                                            [](qsizetype start, Range each) { return start < each.end; });
        return fence != m_fences.end() && fence->start < range.end;
    }

    template <typename LookChange>
    void paint(Range range, LookChange change) {
        if (m_looks.empty())
            m_looks.resize(static_cast<std::size_t>(m_line.size()));
        const auto first = m_looks.begin();
        std::for_each(first + range.start, first + range.end, change);
    }
    void paintInk(Range range, Ink ink) {
        paint(range, [ink](Look &look) { look.ink = ink; });
    }
    void paintFace(Range range, Face face) {
        paint(range, [face](Look &look) { look.face = face; });
    }
    void paintMarks(Range match, qsizetype length) {
        paintInk({match.start, match.start + length}, Ink::Faint);
        paintInk({match.end - length, match.end}, Ink::Faint);
    }

    // Later rules win over earlier ones where both say something.
    void styleText() {
        forEachPart(endsLine, [this](Range part, Range) {
            if (part.start == part.end)
                return;
            styleQuote(part);
            styleListMark(part);
            styleHeading(part);
            styleYearHeading(part);
        });
        if (m_marks.hasEmphasis()) {
            styleBold();
            styleItalic();
        }
        if (m_marks.hasBacktick())
            styleCode();
        if (m_marks.hasTilde())
            styleStrike();
        forEachPart(endsLine, [this](Range part, Range) { styleRule(part); });
        if (m_marks.hasBracket())
            styleLinks();
    }

    void styleQuote(Range part) {
        if (at(part.start) == u'>' && !touchesFence(part))
            paintInk(part, Ink::Muted);
    }

    void styleListMark(Range part) {
        qsizetype index = part.start;
        while (index < part.end && isBlank(at(index)))
            ++index;
        if (index == part.end)
            return;
        if (const char16_t unit = at(index); unit == u'-' || unit == u'*' || unit == u'+') {
            ++index;
        } else {
            const auto digits = index;
            while (index < part.end && isDigit(characterAt(index)))
                index += characterAt(index) > 0xFFFF ? 2 : 1;
            if (index == digits || !holds(index, u'.'))
                return;
            ++index;
        }
        const Range mark = {part.start, index + 1};
        if (holds(index, u' ') && !touchesFence(mark))
            paintInk(mark, Ink::Muted);
    }

    void styleHeading(Range part) {
        qsizetype index = part.start;
        while (index < part.end && at(index) == u'#')
            ++index;
        const auto level = index - part.start;
        if (level < 1 || level > 6 || !holds(index, u' ') || touchesFence(part))
            return;
        paintFace(part, static_cast<Face>(static_cast<int>(Face::Heading1) + static_cast<int>(level) - 1));
        paintInk({part.start, index}, Ink::Faint);
    }

    void styleYearHeading(Range part) {
        qsizetype index = part.start;
        if (!holds(index, u'#') || !holds(index + 1, u'#') || !holds(index + 2, u' '))
            return;
        index += 2;
        while (index < part.end && at(index) == u' ')
            ++index;
        for (int digit = 0; digit < 4; ++digit) {
            if (!isDigit(characterAt(index)))
                return;
            index += characterAt(index) > 0xFFFF ? 2 : 1;
        }
        while (index < part.end && isBlank(at(index)))
            ++index;
        if (index == part.end && !touchesFence(part))
            paintInk(part, Ink::Accent);
    }

    // The next of the two marks of emphasis.
    qsizetype nextEmphasis(qsizetype from) const {
        while (from < m_line.size() && at(from) != u'*' && at(from) != u'_')
            ++from;
        return from;
    }

    void styleBold() {
        for (qsizetype index = nextEmphasis(0); index < m_line.size(); index = nextEmphasis(index)) {
            const char16_t mark = at(index);
            const auto match = doubled(mark, index);
            if (match.end == match.start) {
                ++index;
                continue;
            }
            if (!touchesFence(match)) {
                paintFace(match, Face::Bold);
                paintMarks(match, 2);
            }
            index = match.end;
        }
    }

    // A pair of doubled marks that begins here, with anything but the mark between; empty when there is none.
    Range doubled(char16_t mark, qsizetype start) const {
        if (!holds(start + 1, mark))
            return {start, start};
        const auto close = next(mark, start + 2);
        const bool isPair = close > start + 2 && holds(close + 1, mark);
        return {start, isPair ? close + 2 : start};
    }

    void styleItalic() {
        for (qsizetype index = nextEmphasis(0); index < m_line.size(); index = nextEmphasis(index)) {
            const char16_t mark = at(index);
            const auto isPartOfText = [mark](char32_t character) {
                return character == mark || isWord(character);
            };
            const auto close = isPartOfText(characterBefore(index)) ? -1 : next(mark, index + 1);
            if (close <= index + 1 || isPartOfText(characterAt(close + 1))) {
                ++index;
                continue;
            }
            if (const Range match = {index, close + 1}; !touchesFence(match)) {
                paintFace(match, Face::Italic);
                paintMarks(match, 1);
            }
            index = close + 1;
        }
    }

    void styleCode() {
        for (qsizetype start = next(u'`', 0); start >= 0;) {
            const auto close = next(u'`', start + 1);
            if (close <= start + 1) {
                start = close; // the next backtick may open, or there is none
                continue;
            }
            if (const Range match = {start, close + 1}; !touchesFence(match)) {
                paint(match, [](Look &look) { look = {Face::Mono, Ink::Accent, true, false}; });
                paintMarks(match, 1);
            }
            start = next(u'`', close + 1);
        }
    }

    void styleStrike() {
        for (qsizetype start = next(u'~', 0); start >= 0;) {
            const auto match = doubled(u'~', start);
            if (match.end == match.start) {
                start = next(u'~', start + 1);
                continue;
            }
            if (!touchesFence(match)) {
                paint(match, [](Look &look) {
                    look.ink = Ink::Muted;
                    look.isStruck = true;
                });
                paintMarks(match, 2);
            }
            start = next(u'~', match.end);
        }
    }

    void styleRule(Range part) {
        qsizetype index = part.start;
        while (index < part.end && index < part.start + 3 && at(index) == u' ')
            ++index;
        if (index == part.end)
            return;
        const char16_t mark = at(index);
        if (mark != u'-' && mark != u'*' && mark != u'_')
            return;
        const auto first = index;
        while (index < part.end && at(index) == mark)
            ++index;
        if (index < first + 3)
            return;
        while (index < part.end && at(index) == u' ')
            ++index;
        if (index == part.end && !touchesFence(part))
            paintInk(part, Ink::Faint);
    }

    void styleLinks() {
        // What closes is the same for all brackets before it, and is looked for once.
        qsizetype bracket = 0;
        qsizetype parenthesis = 0;
        for (qsizetype start = next(u'[', 0); start >= 0;) {
            if (bracket <= start)
                bracket = next(u']', start + 1);
            if (bracket < 0)
                return;
            const auto target = bracket + 2;
            if (!holds(bracket + 1, u'(')) {
                start = next(u'[', start + 1);
                continue;
            }
            if (parenthesis < target)
                parenthesis = next(u')', target);
            if (parenthesis < 0)
                return;
            if (parenthesis == target) {
                start = next(u'[', start + 1);
                continue;
            }
            if (const Range match = {start, parenthesis + 1}; !touchesFence(match)) {
                paintInk({start + 1, bracket}, Ink::Accent);
                paintInk({target, parenthesis}, Ink::Faint);
            }
            start = next(u'[', parenthesis + 1);
        }
    }

    // No rule has styled any of these characters.
    void styleFences() {
        for (const auto &fence : m_fences)
            paint(fence, [](Look &look) { look = fencedLook; });
        for (const auto &line : m_fenceLines)
            paintInk(line, Ink::Faint);
    }

    void appendRuns(std::vector<Run> &runs) const {
        if (m_looks.empty()) {
            runs.push_back({0, m_line.size(), {}});
            return;
        }
        for (auto first = m_looks.begin(); first != m_looks.end();) {
            const auto last =
                std::find_if(first, m_looks.end(), [&](const Look &look) { return look != *first; });
            runs.push_back({first - m_looks.begin(), last - first, *first});
            first = last;
        }
    }

    QStringView m_line;
    Marks m_marks;
    State m_state = State::Text;
    // Within the line, in order and apart from each other.
    std::vector<Range> m_fences;
    std::vector<Range> m_fenceLines;
    std::vector<Look> m_looks; // one a character; empty when all are plain
};

} // namespace

Line scan(QStringView line, State before) {
    return LineScan(line, before).result();
}

} // namespace diary::MarkdownScanner

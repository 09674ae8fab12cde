// SPDX-License-Identifier: MIT
#include <DiaryApp/SimpleScripts.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/YearEntry.h>
#include <DiaryKit/YearSectionParser.h>

#include <QTextBoundaryFinder>

#include <algorithm>

namespace diary {

namespace {

constexpr qsizetype excerptLength = 46;
constexpr qsizetype likelyExcerptUnits = 128;

// Whether the code unit is a character of its own beside any other such unit, so that between two of them no
// rules for grapheme clusters need to be asked. Most of what people write is of this kind.
bool standsAlone(QChar unit) {
    const char16_t c = unit.unicode();
    const auto isWithin = [c](char16_t first, char16_t last) { return c >= first && c <= last; };
    return (isOfSimpleScript(unit) && c != u'\r') || isWithin(0x05D0, 0x05EA) // Hebrew
           || isWithin(0x0620, 0x064A);                                       // Arabic
}

bool isLineBreak(QChar unit) {
    const char16_t c = unit.unicode();
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

qsizetype charCountByClusters(QStringView text) {
    qsizetype count = 0;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    for (qsizetype start = 0, end = finder.toNextBoundary(); end > start;
         start = end, end = finder.toNextBoundary())
        count += text[start].isSpace() ? 0 : 1;
    return count;
}

} // namespace

qsizetype charCount(QStringView text) {
    const auto isSafeBreakAfter = [text](qsizetype at) {
        return standsAlone(text[at]) && (at + 1 == text.size() || standsAlone(text[at + 1]));
    };
    qsizetype count = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (standsAlone(text[at])) {
            // Each is looked at once: the count is shown with every key that is typed.
            for (; at + 1 < text.size() && standsAlone(text[at + 1]); ++at)
                count += text[at].isSpace() ? 0 : 1;
        }
        if (isSafeBreakAfter(at)) {
            count += text[at].isSpace() ? 0 : 1;
            continue;
        }
        const auto start = at;
        while (at + 1 < text.size() && !isSafeBreakAfter(at))
            ++at;
        count += charCountByClusters(text.sliced(start, at + 1 - start));
    }
    return count;
}

QString excerpt(QStringView text) {
    QString line;
    qsizetype characters = 0;
    // Finding boundaries costs the whole text it is given, of which only the beginning is wanted.
    qsizetype known = std::min(text.size(), likelyExcerptUnits);
    while (true) {
        line.clear();
        characters = 0;
        qsizetype start = 0;
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), known);
        while (start < known && characters < excerptLength) {
            const auto end = finder.toNextBoundary();
            // A carriage return and its line feed are one character.
            line += isLineBreak(text[start]) ? QStringView(u" ") : text.sliced(start, end - start);
            start = end;
            ++characters;
        }
        if (known == text.size())
            return start < text.size() ? line + QChar(0x2026) : line;
        // The last character found may go on where the finder could not see.
        if (start < known)
            return line + QChar(0x2026);
        known = std::min(text.size(), known * 2);
    }
}

std::vector<YearEntry> yearEntries(std::string_view dayFile) {
    std::vector<YearEntry> entries;
    for (const auto &[year, bodyText] : YearSectionParser::sectionBodies(dayFile)) {
        const auto body = toQString(bodyText);
        entries.push_back({.year = year,
                           .body = body,
                           .charCount = charCount(body),
                           .excerpt = QStringView(body).trimmed().isEmpty() ? QString() : excerpt(body)});
    }
    return entries;
}

} // namespace diary

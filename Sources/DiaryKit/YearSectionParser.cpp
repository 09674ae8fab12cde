// SPDX-License-Identifier: MIT
#include <DiaryKit/LineScanner.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>

namespace diary::YearSectionParser {

namespace {

using UnicodeText::trimmed;

bool isSpaceOrTab(char c) {
    return c == ' ' || c == '\t';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isFenceLine(std::string_view line) {
    constexpr std::string_view fence = "```";
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    // A combining mark after it would make the third backtick another character.
    return line.starts_with(fence) && !UnicodeText::beginsWithExtendingCharacter(line.substr(fence.size()));
}

// Walks the lines that matter, telling fence lines and the year headers outside fences. Returns whether a
// fence is still open at the end.
template <typename OnHeader>
bool scanHeaders(std::string_view text, OnHeader onHeader) {
    LineScanner scanner(text);
    bool inFence = false;
    for (auto begin = scanner.nextCandidate(); begin != LineScanner::npos; begin = scanner.nextCandidate()) {
        std::size_t end = 0;
        if (text[begin] == '#') {
            if (inFence)
                continue;
            const auto line = scanner.lineAt(begin, end);
            if (const auto year = yearHeader(line))
                onHeader(*year, ByteRange{begin, end});
        } else if (isFenceLine(scanner.lineAt(begin, end))) {
            inFence = !inFence;
        }
    }
    return inFence;
}

bool hasOpenFence(std::string_view text) {
    return scanHeaders(text, [](std::int64_t, ByteRange) {});
}

// Where a section of `year` goes in a text that has none.
std::size_t insertionPoint(std::int64_t year, std::string_view text, const std::vector<Section> &all) {
    const Section *before = nullptr;
    const Section *after = nullptr;
    for (const auto &section : all) {
        if (section.year < year && (!before || section.year > before->year))
            before = &section;
        if (section.year > year && (!after || section.year < after->year))
            after = &section;
    }
    if (before)
        return before->bodyRange.end;
    return after ? after->headerRange.begin : text.size();
}

const Section *firstSection(std::int64_t year, const std::vector<Section> &all) {
    const auto found = std::find_if(all.begin(), all.end(), [=](const Section &s) { return s.year == year; });
    return found == all.end() ? nullptr : &*found;
}

// replacingBody for a body that is trimmed already, or begins with a space that must stay.
std::string replacingTrimmedBody(std::string_view content, std::int64_t year, MonthDay monthDay,
                                 std::string_view text) {
    auto document = ensuringSection(year, monthDay, text).text;
    const auto all = sections(document);
    const auto *section = firstSection(year, all);
    if (!section)
        return document;

    const auto [begin, end] = section->bodyRange;
    std::string replacement = "\n";
    if (!content.empty())
        replacement.append(content).append(end == document.size() ? "\n" : "\n\n");
    return document.replace(begin, end - begin, replacement);
}

// The text, changed where replacingTrimmedBody would otherwise make a header of another line, or miss its
// own.
std::string preparedFor(std::int64_t year, std::string_view text) {
    const auto all = sections(text);
    if (const auto *section = firstSection(year, all)) {
        // A carriage return after the last header would be one character with the line break that the body
        // begins with, and end no line.
        if (section->headerRange.end == text.size() && !text.ends_with('\n'))
            return std::string(UnicodeText::withoutTrailingWhitespace(text)) + "\n";
        return std::string(text);
    }

    const auto point = insertionPoint(year, text, all);
    // Only the end of the text can lie inside a fence: a header that was recognised does not.
    if (point == text.size() && hasOpenFence(text))
        return closingOpenFence(text);
    // A last line such as "## 2020\r\n" is a header only without the whitespace that is removed there.
    const auto bared = sections(UnicodeText::withoutTrailingWhitespace(text.substr(0, point)));
    const bool isNew = !bared.empty() && std::none_of(all.begin(), all.end(), [&](const Section &section) {
        return section.headerRange.begin == bared.back().headerRange.begin;
    });
    std::string prepared(text);
    return isNew ? prepared.insert(bared.back().headerRange.begin, 1, ' ') : prepared;
}

} // namespace

std::optional<std::int64_t> yearHeader(std::string_view line) {
    constexpr std::size_t yearDigits = 4;
    if (line.size() < 7 || !line.starts_with("##") || !isSpaceOrTab(line[2]))
        return std::nullopt;
    std::size_t at = 3;
    while (at < line.size() && isSpaceOrTab(line[at]))
        ++at;
    const auto digits = at;
    std::int64_t year = 0;
    for (; at < line.size() && isDigit(line[at]); ++at) {
        if (at == digits + yearDigits)
            return std::nullopt;
        year = year * 10 + (line[at] - '0');
    }
    if (at != digits + yearDigits)
        return std::nullopt;
    // A carriage return with its line feed is a character of its own, and not one that may follow.
    const auto mayFollow = [](char c) { return isSpaceOrTab(c) || c == '\r'; };
    return std::all_of(line.begin() + static_cast<std::ptrdiff_t>(at), line.end(), mayFollow)
               ? std::optional(year)
               : std::nullopt;
}

std::vector<Section> sections(std::string_view text) {
    constexpr std::size_t usualCount = 64;
    std::vector<Section> result;
    result.reserve(usualCount);
    scanHeaders(text, [&](std::int64_t year, ByteRange header) {
        if (!result.empty())
            result.back().bodyRange.end = header.begin;
        result.push_back({year, header, {header.end, text.size()}});
    });
    return result;
}

std::vector<YearBody> sectionBodies(std::string_view text) {
    const auto all = sections(text);
    std::vector<YearBody> bodies;
    bodies.reserve(all.size());
    for (const auto &section : all)
        bodies.push_back({section.year, trimmed(section.bodyRange.in(text))});
    return bodies;
}

std::optional<std::string_view> documentPreamble(std::string_view text) {
    const auto all = sections(text);
    const auto preamble = trimmed(all.empty() ? text : text.substr(0, all.front().headerRange.begin));
    if (preamble.empty())
        return std::nullopt;
    return preamble;
}

std::vector<std::int64_t> ascendingYearsWithContent(std::string_view text) {
    std::vector<std::int64_t> years;
    for (const auto &section : sections(text)) {
        if (!UnicodeText::isBlank(section.bodyRange.in(text)))
            years.push_back(section.year);
    }
    // As the diary writes them, they are in order already.
    if (!std::is_sorted(years.begin(), years.end()))
        std::sort(years.begin(), years.end());
    years.erase(std::unique(years.begin(), years.end()), years.end());
    return years;
}

std::set<std::int64_t> yearsWithContent(std::string_view text) {
    const auto years = ascendingYearsWithContent(text);
    return {years.begin(), years.end()};
}

bool isEffectivelyEmpty(std::string_view text, std::string_view title) {
    const LineScanner lines(text);
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t next = 0;
        auto line = lines.lineAt(begin, next);
        begin = next;
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        line = line.substr(0, line.find_last_not_of(" \t") + 1);
        const bool isTitle =
            line.size() == title.size() + 2 && line.starts_with("# ") && line.ends_with(title);
        if (!line.empty() && !isTitle && !yearHeader(line))
            return false;
    }
    return true;
}

EnsuredSection ensuringSection(std::int64_t year, MonthDay monthDay, std::string_view text) {
    const auto header = "## " + std::to_string(year) + "\n\n";
    if (UnicodeText::isBlank(text)) {
        auto document = "# " + monthDay.headerTitle() + "\n\n" + header;
        const auto caret = document.size(); // ASCII only, so bytes are code units.
        return {std::move(document), caret};
    }

    const auto all = sections(text);
    if (const auto *existing = firstSection(year, all)) {
        const auto written = UnicodeText::withoutTrailingWhitespace(existing->bodyRange.in(text));
        const auto caret = existing->bodyRange.begin + written.size();
        return {std::string(text), UnicodeText::utf16Length(text.substr(0, caret))};
    }

    const auto point = insertionPoint(year, text, all);
    const auto before = UnicodeText::withoutTrailingWhitespace(text.substr(0, point));
    const auto after = UnicodeText::withoutLeadingLineBreaks(text.substr(point));
    std::string document(before);
    if (!before.empty())
        document += "\n\n";
    document += header;
    const auto caret = UnicodeText::utf16Length(document);
    if (!after.empty())
        document.append("\n\n").append(after);
    return {std::move(document), caret};
}

std::string replacingBody(std::string_view body, std::int64_t year, MonthDay monthDay,
                          std::string_view text) {
    return replacingTrimmedBody(trimmed(body), year, monthDay, text);
}

std::string replacingEntry(std::string_view entry, std::int64_t year, MonthDay monthDay,
                           std::string_view text) {
    return replacingTrimmedBody(selfContained(trimmed(entry)), year, monthDay, preparedFor(year, text));
}

std::string selfContained(std::string_view body) {
    std::string result;
    result.reserve(body.size() + 8);
    std::size_t copied = 0;
    const bool open = scanHeaders(body, [&](std::int64_t, ByteRange header) {
        result.append(body, copied, header.begin - copied);
        result += ' ';
        copied = header.begin;
    });
    result.append(body, copied);
    if (open)
        result += "\n```";
    return result;
}

std::string closingOpenFence(std::string_view text) {
    if (!hasOpenFence(text))
        return std::string(text);
    return std::string(UnicodeText::withoutTrailingWhitespace(text)) + "\n```\n";
}

} // namespace diary::YearSectionParser

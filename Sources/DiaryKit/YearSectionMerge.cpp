// SPDX-License-Identifier: MIT
//
// The part of YearSectionParser that combines versions of one day file.

#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>
#include <map>

namespace diary::YearSectionParser {

namespace {

using UnicodeText::trimmed;

using YearMap = std::map<std::int64_t, std::string>;

std::string document(std::string_view preamble, const YearMap &years, std::size_t leastDigits = 1) {
    std::string text(preamble);
    for (const auto &[year, body] : years) {
        const auto digits = std::to_string(year);
        text.append("\n\n## ").append(leastDigits - std::min(leastDigits, digits.size()), '0').append(digits);
        if (!body.empty())
            text.append("\n\n").append(body);
    }
    return text += "\n";
}

// The same when the bodies come from texts that nobody has checked: trimming alone can turn the indented
// first line of a body into a header or a fence, and a year before 1000 is one only with its zeros.
std::string selfContainedDocument(std::string_view preamble, const YearMap &years) {
    YearMap checked;
    for (const auto &[year, body] : years)
        checked.emplace(year, selfContained(body));
    constexpr std::size_t headerDigits = 4;
    return document(selfContained(preamble), checked, headerDigits);
}

std::string firstPreamble(std::string_view current, std::string_view other, MonthDay monthDay) {
    if (const auto mine = documentPreamble(current))
        return std::string(*mine);
    if (const auto theirs = documentPreamble(other))
        return std::string(*theirs);
    return "# " + monthDay.headerTitle();
}

std::string mergedBody(std::string_view mine, std::string_view theirs, std::string_view conflictMarker) {
    if (mine.starts_with(theirs))
        return std::string(mine);
    if (theirs.starts_with(mine))
        return std::string(theirs);
    std::string both(mine);
    return both.append("\n\n").append(conflictMarker).append("\n\n").append(theirs);
}

// One body a year; the bodies of a repeated year joined in their order.
YearMap joinedBodies(std::string_view text) {
    YearMap years;
    for (const auto &[year, body] : sectionBodies(text)) {
        auto &joined = years[year];
        if (joined.empty())
            joined = body;
        else if (!body.empty() && joined != body)
            joined.append("\n\n").append(body);
    }
    return years;
}

bool repeatsYear(std::string_view text) {
    std::set<std::int64_t> seen;
    const auto all = sections(text);
    return std::any_of(all.begin(), all.end(), [&](const Section &s) { return !seen.insert(s.year).second; });
}

// What `extended` adds to `text` when it only goes on with new lines after it.
std::optional<std::string_view> addedLines(std::string_view text, std::string_view extended) {
    if (!extended.starts_with(text))
        return std::nullopt;
    const auto added = extended.substr(text.size());
    if (text.empty() || added.starts_with('\n'))
        return trimmed(added);
    return std::nullopt;
}

std::string foldedBody(std::string_view base, std::string_view mine, std::string_view theirs,
                       std::string_view conflictMarker) {
    if (theirs == base || mine == theirs)
        return std::string(mine);
    if (mine == base)
        return std::string(mine.starts_with(theirs) ? mine : theirs);
    const auto mineAdded = addedLines(base, mine);
    const auto theirsAdded = addedLines(base, theirs);
    if (mineAdded && theirsAdded && !mine.starts_with(theirs) && !theirs.starts_with(mine))
        return std::string(theirs).append("\n\n").append(*mineAdded);
    return mergedBody(mine, theirs, conflictMarker);
}

std::string_view bodyIn(const YearMap &years, std::int64_t year) {
    const auto found = years.find(year);
    return found == years.end() ? std::string_view{} : std::string_view{found->second};
}

} // namespace

std::string mergingDocuments(std::string_view current, std::string_view other, MonthDay monthDay,
                             std::string_view conflictMarker) {
    YearMap years;
    for (const auto &[year, body] : sectionBodies(current))
        years[year] = body;
    for (const auto &[year, theirs] : sectionBodies(other)) {
        const auto [entry, isNew] = years.try_emplace(year, theirs);
        if (!isNew)
            entry->second = mergedBody(entry->second, theirs, conflictMarker);
    }
    return document(firstPreamble(current, other, monthDay), years);
}

std::string tidied(std::string_view text, MonthDay monthDay) {
    auto closed = closingOpenFence(text);
    if (!repeatsYear(closed))
        return closed;
    return selfContainedDocument(firstPreamble(closed, {}, monthDay), joinedBodies(closed));
}

std::string foldingDocuments(std::string_view base, std::string_view current, std::string_view other,
                             MonthDay monthDay, std::string_view conflictMarker) {
    const auto baseText = tidied(base, monthDay);
    const auto currentText = tidied(current, monthDay);
    const auto otherText = tidied(other, monthDay);
    const auto baseYears = joinedBodies(baseText);
    auto years = joinedBodies(currentText);
    for (const auto &[year, theirs] : joinedBodies(otherText)) {
        const auto [entry, isNew] = years.try_emplace(year, theirs);
        if (!isNew)
            entry->second = foldedBody(bodyIn(baseYears, year), entry->second, theirs, conflictMarker);
    }

    const auto preamble =
        foldedBody(documentPreamble(baseText).value_or(""), documentPreamble(currentText).value_or(""),
                   documentPreamble(otherText).value_or(""), conflictMarker);
    return selfContainedDocument(preamble.empty() ? "# " + monthDay.headerTitle() : preamble, years);
}

} // namespace diary::YearSectionParser

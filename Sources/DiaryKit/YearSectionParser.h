// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/ByteRange.h>
#include <DiaryKit/DiaryDay.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The one authority on the format of a day file: a preamble (`# 03-14`), then a section per year.
//
// Pure functions over UTF-8 text, which need not be a file the program wrote. Offsets are bytes, except
// where a name says otherwise. A line ends at "\n"; "\r\n" is one character and ends no line, so a text
// with such line ends has no sections. docs/day-file-format.md describes the format for its owners.
namespace diary::YearSectionParser {

// One year header with what follows it. Two headers of one year are two sections.
struct Section {
    std::int64_t year = 0;
    ByteRange headerRange; // the header line with its line break
    ByteRange bodyRange;   // up to the next header line or the end of the text

    bool operator==(const Section &) const = default;
};

struct YearBody {
    std::int64_t year = 0;
    std::string_view body; // trimmed; a view into the text that was parsed

    bool operator==(const YearBody &) const = default;
};

struct EnsuredSection {
    std::string text;
    std::size_t caretUTF16Offset = 0;

    bool operator==(const EnsuredSection &) const = default;
};

// The year of a header line such as `## 2024`, given without its line break; none for any other line.
std::optional<std::int64_t> yearHeader(std::string_view line);

// In document order. Header-like lines inside ``` fences are body text.
std::vector<Section> sections(std::string_view text);
std::vector<YearBody> sectionBodies(std::string_view text);

// What stands before the first section, trimmed; none when that is blank.
std::optional<std::string_view> documentPreamble(std::string_view text);

// The years whose sections hold anything but whitespace.
std::set<std::int64_t> yearsWithContent(std::string_view text);

// The same, each once and ascending, for those who ask of hundreds of files.
std::vector<std::int64_t> ascendingYearsWithContent(std::string_view text);

// True when every line is blank, the title line "# " + `title`, or a year header.
bool isEffectivelyEmpty(std::string_view text, std::string_view title);

// The text with a section of `year`, inserted in ascending order unless there is one. The caret is where
// writing would go on.
EnsuredSection ensuringSection(std::int64_t year, MonthDay monthDay, std::string_view text);

// The text with the trimmed `body` in the first section of `year`, which is added when missing. The body must
// not break out of its section: for what people type, use replacingEntry.
std::string replacingBody(std::string_view body, std::int64_t year, MonthDay monthDay, std::string_view text);

// As replacingBody, for any text at all: an entry never changes, hides or ends up in another year's section.
// A line of it that would pass for a year header is moved in by one space, a ``` fence that it leaves open is
// closed, and so is one that `text` leaves open before the place where a new section goes.
std::string replacingEntry(std::string_view entry, std::int64_t year, MonthDay monthDay,
                           std::string_view text);

// The trimmed `body` as it can stand in a section without being taken for structure: header-like lines moved
// in, an open fence closed.
std::string selfContained(std::string_view body);

// The text, with the ``` fence closed that it leaves open, if any: an open fence hides all later headers.
std::string closingOpenFence(std::string_view text);

// Combines two versions of a day file year by year. Where both have different texts for a year and neither
// begins with the other, both are kept with `conflictMarker` between them. Of several sections of one year
// in `current` the last one counts, an open fence hides what follows, and trimming may bare a header that was
// indented: use foldingDocuments where that may matter.
std::string mergingDocuments(std::string_view current, std::string_view other, MonthDay monthDay,
                             std::string_view conflictMarker);

// The text with one section a year (repeated ones joined into the first, in their order) and no open fence.
// A text that is so already comes back as it is.
std::string tidied(std::string_view text, MonthDay monthDay);

// Combines two documents that were both made from `base`, as mergingDocuments does, but lets the base tell
// who changed a year: what only one side changed is taken from that side, and where both only added
// paragraphs to the same text, both additions stand, `other`'s first. No section is ever dropped, and a
// year that `other` merely lost or cut short is kept: a half-written file looks just like that.
std::string foldingDocuments(std::string_view base, std::string_view current, std::string_view other,
                             MonthDay monthDay, std::string_view conflictMarker);

} // namespace diary::YearSectionParser

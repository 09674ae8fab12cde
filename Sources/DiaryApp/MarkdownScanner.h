// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <compare>
#include <cstdint>
#include <vector>

// Decides how Markdown looks while it is written, one line at a time. The text itself is never changed.
//
// A line is what stands between two `\n`. Only whether a fenced block is open passes from a line to the next:
// every other mark must be closed on its own line. Other characters that end a line, such as the line
// separator U+2028, may stand within a line: headings, lists and fences begin after them too, while bold and
// the like run across them.
//
// Time is proportional to the length of the line, whatever stands there.
namespace diary::MarkdownScanner {

enum class State : std::uint8_t { Text, Fenced };

enum class Face : std::uint8_t {
    Body,
    Bold,
    Italic,
    Mono,
    Heading1,
    Heading2,
    Heading3,
    Heading4,
    Heading5,
    Heading6
};

enum class Ink : std::uint8_t {
    Base,
    Accent, // links, code and the headings of years
    Source, // fenced blocks
    Muted,  // quotes, the marks of lists and what is struck out
    Faint   // marks that should recede
};

// How one character looks.
struct Look {
    Face face = Face::Body;
    Ink ink = Ink::Base;
    bool isTinted = false; // on the ground of code
    bool isStruck = false;

    auto operator<=>(const Look &) const = default;
};

// Characters in a row that look the same, counted in UTF-16 units.
struct Run {
    qsizetype start = 0;
    qsizetype length = 0;
    Look look;

    bool operator==(const Run &) const = default;
};

struct Line {
    // From the line's first character to its last without gaps, neighbours differing.
    std::vector<Run> runs;
    State state = State::Text; // behind the line
};

Line scan(QStringView line, State before);

} // namespace diary::MarkdownScanner

// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace diary {

// Finds the few lines that can matter to the day file's structure without looking at the others.
//
// A year header begins with '#', a fence with '`' or with spaces before it. Entries are long paragraphs, so
// the search for a line break followed by one of these three bytes passes whole texts at memory speed.
class LineScanner {
public:
    explicit LineScanner(std::string_view text) : m_text(text) {}

    // Offset of the next line that begins with '#', '`' or ' ', or npos. "\r\n" ends no line.
    std::size_t nextCandidate();

    // The line that starts at `begin`, without its line break; `end` receives the start of the next line.
    std::string_view lineAt(std::size_t begin, std::size_t &end) const;

    static constexpr std::size_t npos = std::string_view::npos;

private:
    std::size_t findBreakBeforeCandidate(std::size_t from) const;

    std::string_view m_text;
    std::size_t m_position = 0; // where the search for the next line break goes on
    bool m_started = false;
};

} // namespace diary

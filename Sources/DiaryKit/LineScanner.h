// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace diary {

// Finds the few lines that can matter to the day file's structure without looking at the others.
//
// A year header begins with '#', a fence with '`' after any number of spaces. Both bytes are rare in entries,
// so looking for them alone passes whole texts at memory speed.
class LineScanner {
public:
    explicit LineScanner(std::string_view text) : m_text(text) {}

    // Offset of the next line that begins with '#', or with '`' after spaces; npos when there is none. "\r\n"
    // ends no line.
    std::size_t nextCandidate();

    // The line that starts at `begin`, without its line break; `end` receives the start of the next line.
    std::string_view lineAt(std::size_t begin, std::size_t &end) const;

    static constexpr std::size_t npos = std::string_view::npos;

private:
    // One of the two bytes, and where it was found last.
    struct Mark {
        char byte;
        std::size_t position = 0;
        bool isFresh = false; // looked for, and not yet passed
    };

    std::size_t find(Mark &mark) const;
    bool beginsLine(std::size_t at) const;

    std::string_view m_text;
    Mark m_hash{'#'};
    Mark m_backtick{'`'};
};

} // namespace diary

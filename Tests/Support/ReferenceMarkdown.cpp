// SPDX-License-Identifier: MIT
#include "ReferenceMarkdown.h"

#include <unicode/regex.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

namespace diary::testing {

namespace {

using MarkdownScanner::Face;
using MarkdownScanner::Ink;
using MarkdownScanner::Look;

struct Range {
    qsizetype start;
    qsizetype end;
};

enum class Anchors { AtLines, AtText };

class Expression {
public:
    explicit Expression(const char *pattern, Anchors anchors = Anchors::AtText) {
        UErrorCode error = U_ZERO_ERROR;
        const std::uint32_t flags = anchors == Anchors::AtLines ? UREGEX_MULTILINE : 0;
        m_matcher = std::make_unique<icu::RegexMatcher>(icu::UnicodeString::fromUTF8(pattern), flags, error);
        if (U_FAILURE(error))
            throw std::runtime_error(u_errorName(error));
    }

    // Calls with the groups of each match; group 0 is all of it.
    void forEachMatch(const icu::UnicodeString &text,
                      const std::function<void(const std::vector<Range> &)> &action) {
        m_matcher->reset(text);
        UErrorCode error = U_ZERO_ERROR;
        while (m_matcher->find(error)) {
            std::vector<Range> groups;
            for (int32_t group = 0; group <= m_matcher->groupCount(); ++group)
                groups.push_back({m_matcher->start(group, error), m_matcher->end(group, error)});
            action(groups);
        }
        if (U_FAILURE(error))
            throw std::runtime_error(u_errorName(error));
    }

private:
    std::unique_ptr<icu::RegexMatcher> m_matcher;
};

struct Fences {
    std::vector<Range> blocks;
    std::vector<Range> lines;
};

Fences fences(const QString &text) {
    Fences result;
    std::optional<qsizetype> opened;
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = start;
        while (end < text.size() && !QStringLiteral("\n\r\u0085\u2028\u2029").contains(text[end]))
            ++end;
        qsizetype next = std::min(end + 1, text.size());
        if (end < text.size() && QStringView(text).sliced(end).startsWith(u"\r\n"))
            ++next;
        qsizetype content = start;
        while (content < end && (text[content] == QLatin1Char(' ') || text[content] == QLatin1Char('\t')))
            ++content;
        if (QStringView(text).sliced(content, end - content).startsWith(u"```")) {
            result.lines.push_back({start, end});
            if (opened) {
                result.blocks.push_back({*opened, next});
                opened.reset();
            } else {
                opened = start;
            }
        }
        start = next;
    }
    if (opened)
        result.blocks.push_back({*opened, text.size()});
    return result;
}

} // namespace

std::vector<Look> referenceLooks(const QString &text) {
    static Expression quote("^>.*$", Anchors::AtLines);
    static Expression list("^[ \\t]*(?:[-*+]|\\d+\\.) ", Anchors::AtLines);
    static Expression heading("^(#{1,6}) (.*)$", Anchors::AtLines);
    static Expression yearHeading("^## +\\d{4}[ \\t]*$", Anchors::AtLines);
    static Expression bold("\\*\\*[^*\\n]+\\*\\*|__[^_\\n]+__");
    static Expression italic("(?<![\\w*])\\*[^*\\n]+\\*(?![\\w*])|(?<![\\w_])_[^_\\n]+_(?![\\w_])");
    static Expression code("`[^`\\n]+`");
    static Expression strike("~~[^~\\n]+~~");
    static Expression rule("^ {0,3}(?:-{3,}|\\*{3,}|_{3,}) *$", Anchors::AtLines);
    static Expression link("\\[([^\\]\\n]*)\\]\\(([^)\\n]+)\\)");

    std::vector<Look> looks(static_cast<std::size_t>(text.size()));
    const auto change = [&](Range range, const std::function<void(Look &)> &action) {
        std::for_each(looks.begin() + range.start, looks.begin() + range.end, action);
    };
    const auto ink = [&](Range range, Ink value) { change(range, [&](Look &look) { look.ink = value; }); };
    const auto face = [&](Range range, Face value) { change(range, [&](Look &look) { look.face = value; }); };
    const auto ends = [&](Range range, qsizetype length) {
        ink({range.start, range.start + length}, Ink::Faint);
        ink({range.end - length, range.end}, Ink::Faint);
    };

    const auto fenced = fences(text);
    for (const auto &block : fenced.blocks)
        change(block, [](Look &look) { look = {Face::Mono, Ink::Source, true, false}; });
    for (const auto &line : fenced.lines)
        ink(line, Ink::Faint);

    const icu::UnicodeString whole(reinterpret_cast<const char16_t *>(text.utf16()),
                                   static_cast<int32_t>(text.size()));
    const auto style = [&](Expression &expression,
                           const std::function<void(const std::vector<Range> &)> &apply) {
        expression.forEachMatch(whole, [&](const std::vector<Range> &groups) {
            const bool isFenced =
                std::any_of(fenced.blocks.begin(), fenced.blocks.end(), [&](const Range &block) {
                    return std::max(block.start, groups[0].start) < std::min(block.end, groups[0].end);
                });
            if (!isFenced)
                apply(groups);
        });
    };
    using Groups = const std::vector<Range> &;
    style(quote, [&](Groups groups) { ink(groups[0], Ink::Muted); });
    style(list, [&](Groups groups) { ink(groups[0], Ink::Muted); });
    style(heading, [&](Groups groups) {
        const auto level = std::clamp<qsizetype>(groups[1].end - groups[1].start, 1, 6);
        const Face faces[] = {Face::Heading1, Face::Heading2, Face::Heading3,
                              Face::Heading4, Face::Heading5, Face::Heading6};
        face(groups[0], faces[level - 1]);
        ink(groups[1], Ink::Faint);
    });
    style(yearHeading, [&](Groups groups) { ink(groups[0], Ink::Accent); });
    style(bold, [&](Groups groups) {
        face(groups[0], Face::Bold);
        ends(groups[0], 2);
    });
    style(italic, [&](Groups groups) {
        face(groups[0], Face::Italic);
        ends(groups[0], 1);
    });
    style(code, [&](Groups groups) {
        face(groups[0], Face::Mono);
        ink(groups[0], Ink::Accent);
        change(groups[0], [](Look &look) { look.isTinted = true; });
        ends(groups[0], 1);
    });
    style(strike, [&](Groups groups) {
        change(groups[0], [](Look &look) { look.isStruck = true; });
        ink(groups[0], Ink::Muted);
        ends(groups[0], 2);
    });
    style(rule, [&](Groups groups) { ink(groups[0], Ink::Faint); });
    style(link, [&](Groups groups) {
        ink(groups[1], Ink::Accent);
        ink(groups[2], Ink::Faint);
    });
    return looks;
}

} // namespace diary::testing

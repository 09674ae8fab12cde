// SPDX-License-Identifier: MIT
//
// What must hold for any text at all when day files are read, changed and combined. The input is a byte that
// chooses a year, then an entry and three day files, separated by 0xFF, which is no part of UTF-8.

#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace diary;
using namespace diary::YearSectionParser;
using diary::UnicodeText::trimmed;

constexpr MonthDay piDay{3, 14};
constexpr std::string_view marker = "*— marker —*";
constexpr std::string_view closingFence = "\n```";

using Bodies = std::map<std::int64_t, std::string>;

void print(const char *name, std::string_view text) {
    std::fprintf(stderr, "%s: \"", name);
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte == '\n')
            std::fputs("\\n", stderr);
        else if (byte < ' ' || byte >= 127)
            std::fprintf(stderr, "\\%03o", byte);
        else
            std::fputc(c, stderr);
    }
    std::fputs("\"\n", stderr);
}

// Ends the process when the claim is false.
void check(bool claim, const char *what,
           std::initializer_list<std::pair<const char *, std::string_view>> texts) {
    if (claim)
        return;
    std::fprintf(stderr, "violated: %s\n", what);
    for (const auto &[name, text] : texts)
        print(name, text);
    std::abort();
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin <= text.size();) {
        const auto end = std::min(text.find('\n', begin), text.size());
        lines.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

bool holdsEveryLine(std::string_view text, std::string_view body) {
    const auto lines = linesOf(body);
    return std::all_of(lines.begin(), lines.end(),
                       [&](const auto &line) { return text.find(trimmed(line)) != std::string_view::npos; });
}

bool hasOpenFence(std::string_view text) {
    return closingOpenFence(text) != text;
}

void checkSections(std::string_view text) {
    const auto all = sections(text);
    const auto bodies = sectionBodies(text);
    check(all.size() == bodies.size(), "as many bodies as sections", {{"text", text}});
    std::set<std::int64_t> years;
    for (std::size_t index = 0; index < all.size(); ++index) {
        const auto &[year, header, body] = all[index];
        auto line = header.in(text);
        check(line.ends_with('\n') || header.end == text.size(), "a header is a line", {{"text", text}});
        check(header.begin == 0 || text[header.begin - 1] == '\n', "a header starts a line",
              {{"text", text}});
        line.remove_suffix(line.ends_with('\n') ? 1 : 0);
        check(yearHeader(line) == year, "a header tells its year", {{"text", text}});
        check(body.begin == header.end, "a body follows its header", {{"text", text}});
        check(body.end == (index + 1 < all.size() ? all[index + 1].headerRange.begin : text.size()),
              "a body ends at the next header", {{"text", text}});
        check(bodies[index] == YearBody{year, trimmed(body.in(text))}, "bodies are trimmed",
              {{"text", text}});
        if (!bodies[index].body.empty())
            years.insert(year);
    }
    check(yearsWithContent(text) == years, "years with content", {{"text", text}});
    check(!isEffectivelyEmpty(std::string(text) + "\nx", piDay.headerTitle()), "a letter is content",
          {{"text", text}});
}

void checkSelfContained(std::string_view entry) {
    const auto body = selfContained(entry);
    check(sections(body).empty(), "no header in an entry", {{"entry", entry}});
    check(!hasOpenFence(body), "no open fence in an entry", {{"entry", entry}});
    const auto before = linesOf(entry);
    auto after = linesOf(body);
    if (after.size() == before.size() + 1 && after.back() == "```")
        after.pop_back();
    check(std::equal(before.begin(), before.end(), after.begin(), after.end(),
                     [](const std::string &was, const std::string &is) {
                         return is == was || (yearHeader(was) && is == " " + was);
                     }),
          "an entry's lines stay, or move in by one space", {{"entry", entry}, {"body", body}});
}

// The same body, or one that was made harmless: a fence closed, or a last line moved in that is a header
// without the white space after it.
bool keepsBody(std::string_view before, std::string_view after, bool mayClose) {
    if (before == after || (mayClose && after == std::string(before).append(closingFence)))
        return true;
    const auto lastLine = before.rfind('\n') + 1;
    return yearHeader(before.substr(lastLine)) &&
           after == std::string(before.substr(0, lastLine)) + " " + std::string(before.substr(lastLine));
}

void checkReplacing(std::string_view entry, std::int64_t year, std::string_view text) {
    const auto result = replacingEntry(entry, year, piDay, text);
    const auto show = {
        std::pair<const char *, std::string_view>{"entry", entry}, {"text", text}, {"result", result}};
    const bool wasOpen = hasOpenFence(text);

    auto before = sectionBodies(text);
    auto after = sectionBodies(result);
    const auto isOfYear = [&](const YearBody &body) { return body.year == year; };
    const auto replaced = std::find_if(after.begin(), after.end(), isOfYear);
    check(replaced != after.end(), "the year is there", show);
    check(replaced->body == trimmed(selfContained(trimmed(entry))), "what was written is read", show);
    const auto old = std::find_if(before.begin(), before.end(), isOfYear);
    const bool isNew = old == before.end();
    if (!isNew)
        check(old - before.begin() == replaced - after.begin(), "the first section of the year", show);
    after.erase(replaced);
    if (!isNew)
        before.erase(old);
    check(before.size() == after.size(), "no other section comes or goes", show);
    for (std::size_t index = 0; index < before.size(); ++index) {
        check(before[index].year == after[index].year, "the sections keep their order", show);
        check(
            keepsBody(before[index].body, after[index].body, isNew && wasOpen && index + 1 == before.size()),
            "other entries stay", show);
    }

    const auto preamble = documentPreamble(text);
    const auto newPreamble = documentPreamble(result);
    if (preamble)
        check(newPreamble && keepsBody(*preamble, *newPreamble, isNew && wasOpen), "the preamble stays",
              show);
    else
        check(!newPreamble || *newPreamble == "# 03-14", "nothing comes before the sections", show);

    check(replacingEntry(entry, year, piDay, result) == result, "replacing twice is replacing once", show);
}

void checkTidied(std::string_view text) {
    const auto result = tidied(text, piDay);
    const auto show = {std::pair<const char *, std::string_view>{"text", text}, {"result", result}};
    check(!hasOpenFence(result), "a tidy text has no open fence", show);
    check(tidied(result, piDay) == result, "tidying twice is tidying once", show);
    std::set<std::int64_t> years;
    for (const auto &section : sections(result))
        check(years.insert(section.year).second, "a tidy text has one section a year", show);
    for (const auto &[year, body] : sectionBodies(text)) {
        check(years.contains(year), "tidying keeps every year", show);
        check(holdsEveryLine(result, body), "tidying keeps every line", show);
    }
}

Bodies bodiesOf(std::string_view text) {
    Bodies bodies;
    for (const auto &[year, body] : sectionBodies(text))
        bodies[year] = body;
    return bodies;
}

void checkMerging(std::string_view current, std::string_view other) {
    const auto mine = tidied(current, piDay);
    const auto theirs = tidied(other, piDay);
    const auto result = mergingDocuments(mine, theirs, piDay, marker);
    const auto show = {
        std::pair<const char *, std::string_view>{"mine", mine}, {"theirs", theirs}, {"result", result}};
    for (const auto &side : {bodiesOf(mine), bodiesOf(theirs)}) {
        for (const auto &[year, body] : side) {
            check(result.find("## " + std::to_string(year)) != std::string::npos, "merging keeps every year",
                  show);
            check(holdsEveryLine(result, body), "merging keeps every line", show);
        }
    }
}

// The one body that folding must give, or none when both have to be in it.
std::optional<std::string> foldedBody(std::string_view base, std::optional<std::string> mine,
                                      std::optional<std::string> theirs) {
    if (!mine)
        return theirs;
    if (!theirs || theirs == base || theirs == mine)
        return mine;
    if (mine == base)
        return mine->starts_with(*theirs) ? mine : theirs;
    return std::nullopt;
}

void checkFolding(std::string_view base, std::string_view current, std::string_view other) {
    const auto result = foldingDocuments(base, current, other, piDay, marker);
    const auto show = {std::pair<const char *, std::string_view>{"base", base},
                       {"current", current},
                       {"other", other},
                       {"result", result}};
    check(tidied(result, piDay) == result, "folding gives a tidy text", show);

    auto baseBodies = bodiesOf(tidied(base, piDay));
    const auto mine = bodiesOf(tidied(current, piDay));
    const auto theirs = bodiesOf(tidied(other, piDay));
    auto folded = bodiesOf(result);
    std::set<std::int64_t> years;
    for (const auto &side : {mine, theirs}) {
        for (const auto &[year, body] : side)
            years.insert(year);
    }
    check(folded.size() == years.size(), "folding makes up no year", show);
    for (const auto year : years) {
        check(folded.contains(year), "folding keeps every year", show);
        const auto sideBody = [year](const Bodies &side) {
            const auto found = side.find(year);
            return found == side.end() ? std::nullopt : std::optional(found->second);
        };
        const auto mineBody = sideBody(mine);
        const auto theirBody = sideBody(theirs);
        if (const auto expected = foldedBody(baseBodies[year], mineBody, theirBody))
            check(folded[year] == trimmed(selfContained(*expected)), "folding takes the changed side", show);
        else
            check(holdsEveryLine(folded[year], *mineBody) && holdsEveryLine(folded[year], *theirBody),
                  "folding keeps both changed sides", show);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::int64_t year = 2018 + data[0] % 8;
    std::vector<std::string> texts;
    std::string piece;
    for (std::size_t index = 1; index < size; ++index) {
        if (data[index] == 0xFF && texts.size() < 3)
            texts.push_back(std::exchange(piece, {}));
        else
            piece += static_cast<char>(data[index]);
    }
    texts.push_back(piece);
    texts.resize(4);
    for (auto &text : texts) {
        text = diary::UnicodeText::repaired(std::move(text));
        check(diary::UnicodeText::isValid(text), "repaired text is valid", {{"text", text}});
    }

    const auto &[entry, base, current, other] = std::tie(texts[0], texts[1], texts[2], texts[3]);
    for (const auto &text : texts) {
        checkSections(text);
        checkSelfContained(trimmed(text));
        checkTidied(text);
        checkReplacing(entry, year, text);
    }
    checkMerging(current, other);
    checkMerging(base, current);
    checkFolding(base, current, other);
    checkFolding(base, replacingEntry(entry, year, piDay, base), other);
    return 0;
}

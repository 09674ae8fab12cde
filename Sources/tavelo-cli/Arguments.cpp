// SPDX-License-Identifier: MIT
#include "Arguments.h"

#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <string_view>
#include <system_error>
#include <utility>

namespace diary::cli {

namespace {

using OptionValues = std::map<Option, std::string>;
using Operands = std::vector<std::string>;

std::string inQuotes(std::string_view word) {
    return "'" + std::string(word) + "'";
}

// A dash alone, or before a space or a digit, begins a list item or a number of someone's text.
bool looksLikeOption(std::string_view word) {
    if (word.size() < 2 || word[0] != '-')
        return false;
    const char next = word[1];
    return next == '-' || (next >= 'a' && next <= 'z') || (next >= 'A' && next <= 'Z');
}

// Four digits, from 1000: a year section is written with as many digits as the year has, and read with four.
std::optional<std::int64_t> parseYear(std::string_view word) {
    constexpr std::size_t digits = 4;
    if (word.size() != digits || word.front() == '0' ||
        word.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    std::int64_t year = 0;
    for (const char digit : word)
        year = year * 10 + (digit - '0');
    return year;
}

std::int64_t requiredYear(std::string_view word) {
    if (const auto year = parseYear(word))
        return *year;
    throw UsageError(inQuotes(word) + " is no year from 1000 to 9999");
}

struct DayWord {
    MonthDay day;
    std::optional<std::int64_t> writtenYear; // of YYYY-MM-DD
    std::optional<std::int64_t> year;        // of today and yesterday too
};

DayWord dated(const DiaryDay &day) {
    return {.day = day.monthDay(), .writtenYear = std::nullopt, .year = day.year};
}

std::optional<DayWord> parseDay(std::string_view word, const DiaryDay &today) {
    if (word == "today")
        return dated(today);
    if (word == "yesterday")
        return dated(today.advanced(-1));

    std::optional<std::int64_t> year;
    constexpr std::size_t monthDayLength = 5;
    if (word.size() > monthDayLength) {
        const auto front = word.substr(0, word.size() - monthDayLength);
        if (!front.ends_with('-'))
            return std::nullopt;
        year = parseYear(front.substr(0, front.size() - 1));
        if (!year)
            return std::nullopt;
        word.remove_prefix(front.size());
    }
    const auto day = MonthDay::parse(std::string(word) + ".md");
    if (!day)
        return std::nullopt;
    return DayWord{.day = *day, .writtenYear = year, .year = year};
}

DayWord requiredDay(std::string_view word, const DiaryDay &today) {
    if (const auto day = parseDay(word, today))
        return *day;
    throw UsageError(inQuotes(word) + " is no day (MM-DD, YYYY-MM-DD from year 1000, today or yesterday)");
}

void requireAtMost(std::size_t count, const Operands &operands) {
    if (operands.size() > count)
        throw UsageError("unexpected argument " + inQuotes(operands[count]));
}

// The only operand that most commands have.
DayWord dayOperand(const Operands &operands, const DiaryDay &today) {
    requireAtMost(1, operands);
    return operands.empty() ? dated(today) : requiredDay(operands.front(), today);
}

std::optional<std::int64_t> yearOption(const OptionValues &values, const DayWord &day) {
    const auto given = values.find(Option::Year);
    if (given == values.end())
        return std::nullopt;
    const auto year = requiredYear(given->second);
    if (day.writtenYear.value_or(year) != year)
        throw UsageError("the day and --year name different years");
    return year;
}

void readShow(Arguments &arguments, const Operands &operands, const OptionValues &values,
              const DiaryDay &today) {
    const auto day = dayOperand(operands, today);
    arguments.day = day.day;
    arguments.year = yearOption(values, day);
    if (!arguments.year)
        arguments.year = day.writtenYear;
}

void readWrite(Arguments &arguments, const Operands &operands, const OptionValues &values,
               const DiaryDay &today) {
    // Replacing is not for a day that nobody named.
    if (operands.empty())
        throw UsageError("no day given");
    const auto day = dayOperand(operands, today);
    arguments.day = day.day;
    arguments.year = yearOption(values, day);
    if (!arguments.year)
        arguments.year = day.year;
    if (!arguments.year)
        throw UsageError("no year given: it takes --year, or a day such as 2024-" + day.day.headerTitle());
}

void readAppend(Arguments &arguments, const Operands &operands, const DiaryDay &today) {
    auto firstWord = operands.begin();
    auto day = dated(today);
    if (!operands.empty()) {
        if (const auto named = parseDay(operands.front(), today)) {
            day = *named;
            ++firstWord;
        }
    }
    arguments.day = day.day;
    arguments.year = day.year.value_or(today.year);
    if (firstWord == operands.end())
        return;

    std::string text = *firstWord;
    std::for_each(std::next(firstWord), operands.end(), [&](const auto &word) { text += " " + word; });
    text = UnicodeText::repaired(std::move(text));
    if (UnicodeText::isBlank(text))
        throw UsageError("nothing to append");
    arguments.text = std::move(text);
}

// As a line between two texts it must not be taken for structure.
std::string requiredMarker(std::string_view given) {
    auto marker = UnicodeText::repaired(std::string(given));
    if (UnicodeText::isBlank(marker) || marker.find_first_of("\r\n") != std::string::npos ||
        YearSectionParser::yearHeader(marker) || YearSectionParser::closingOpenFence(marker) != marker)
        throw UsageError("the marker must be one line that is no year header and no code fence");
    return marker;
}

void readMerge(Arguments &arguments, const Operands &operands, const OptionValues &values,
               const DiaryDay &today) {
    requireAtMost(2, operands);
    if (operands.size() < 2)
        throw UsageError("two files are needed");
    arguments.files.assign(operands.begin(), operands.end());
    const auto day = values.find(Option::Day);
    if (day == values.end())
        throw UsageError("no --day given");
    arguments.day = requiredDay(day->second, today).day;
    if (const auto marker = values.find(Option::Marker); marker != values.end())
        arguments.marker = requiredMarker(marker->second);
}

// The first `limit` of a search stop it early, so any number that fits will do.
int requiredLimit(std::string_view word) {
    int limit = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), limit);
    if (error != std::errc() || end != word.data() + word.size() || limit < 1)
        throw UsageError(inQuotes(word) + " is no limit from 1");
    return limit;
}

void readSearch(Arguments &arguments, const Operands &operands, const OptionValues &values) {
    if (operands.empty())
        throw UsageError("no query given");
    // As words of one sentence, so that quotes are seldom needed.
    arguments.query = operands.front();
    std::for_each(std::next(operands.begin()), operands.end(),
                  [&](const auto &word) { arguments.query += " " + word; });
    arguments.query = UnicodeText::repaired(std::move(arguments.query));
    if (UnicodeText::isBlank(arguments.query))
        throw UsageError("no query given");
    if (const auto limit = values.find(Option::Limit); limit != values.end())
        arguments.limit = requiredLimit(limit->second);
}

void readCommand(Arguments &arguments, const Operands &operands, const OptionValues &values,
                 const DiaryDay &today) {
    switch (*arguments.command) {
    case Command::Path:
    case Command::Years:
        arguments.day = dayOperand(operands, today).day;
        break;
    case Command::Show:
        readShow(arguments, operands, values, today);
        break;
    case Command::Write:
        readWrite(arguments, operands, values, today);
        break;
    case Command::Append:
        readAppend(arguments, operands, today);
        break;
    case Command::Merge:
        readMerge(arguments, operands, values, today);
        break;
    case Command::Search:
        readSearch(arguments, operands, values);
        break;
    case Command::Stats:
    case Command::Random:
    case Command::Check:
        requireAtMost(0, operands);
        break;
    case Command::Resolve:
        for (const auto &operand : operands)
            arguments.days.push_back(requiredDay(operand, today).day);
        break;
    }
    arguments.isJson = values.contains(Option::Json);
}

void requireAccepted(const OptionValues &values, const CommandDescription &command) {
    for (const auto &[option, value] : values) {
        const auto &accepted = command.options;
        if (option != Option::Root && std::find(accepted.begin(), accepted.end(), option) == accepted.end())
            throw UsageError(std::string(command.name) + " has no option " + std::string(nameOf(option)));
    }
}

Command requiredCommand(std::string_view word) {
    if (const auto command = commandNamed(word))
        return *command;
    throw UsageError("unknown command " + inQuotes(word));
}

} // namespace

Arguments parseArguments(const std::vector<std::string> &words, const DiaryDay &today) {
    Arguments arguments;
    OptionValues values;
    Operands operands;
    bool optionsEnded = false;
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (optionsEnded || !looksLikeOption(*word)) {
            if (arguments.command)
                operands.push_back(*word);
            else
                arguments.command = requiredCommand(*word);
            continue;
        }
        if (*word == "--") {
            optionsEnded = true;
            continue;
        }
        if (*word == "--help" || *word == "--version") {
            arguments.action =
                *word == "--help" ? Arguments::Action::ShowHelp : Arguments::Action::ShowVersion;
            return arguments;
        }

        const auto equals = word->find('=');
        const auto name = word->substr(0, equals);
        const auto option = optionNamed(name);
        if (!option)
            throw UsageError("unknown option " + inQuotes(name));
        if (!takesValue(*option)) {
            if (equals != std::string::npos)
                throw UsageError(name + " takes no value");
            values.insert_or_assign(*option, std::string());
        } else if (equals != std::string::npos)
            values.insert_or_assign(*option, word->substr(equals + 1));
        else if (++word != words.end())
            values.insert_or_assign(*option, *word);
        else
            throw UsageError(name + " needs a value");
    }

    if (!arguments.command)
        throw UsageError("no command given");
    requireAccepted(values, description(*arguments.command));
    if (const auto root = values.find(Option::Root); root != values.end()) {
        if (root->second.empty())
            throw UsageError("--root needs a folder");
        arguments.root = root->second;
    }
    readCommand(arguments, operands, values, today);
    return arguments;
}

} // namespace diary::cli

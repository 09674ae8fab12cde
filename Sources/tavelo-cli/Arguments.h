// SPDX-License-Identifier: MIT
#pragma once

#include "CommandList.h"

#include <DiaryKit/DiaryDay.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace diary::cli {

// What a call of the program asks for.
struct Arguments {
    enum class Action { Run, ShowHelp, ShowVersion };

    Action action = Action::Run;
    std::optional<Command> command; // always there to run; with help, the one to explain
    std::optional<std::filesystem::path> root;
    MonthDay day;
    std::optional<std::int64_t> year;         // always there for `write` and `append`
    std::optional<std::string> text;          // for `append`, not blank; none: standard input
    std::vector<std::filesystem::path> files; // for `merge`: the current one, the other
    std::optional<std::string> marker;
    std::string query;          // for `search`, not blank
    int limit = 200;            // for `search`, at least 1
    bool isJson = false;        // for `search` and `stats`
    std::vector<MonthDay> days; // for `resolve`; none: all

    bool operator==(const Arguments &) const = default;
};

// The call makes no sense. The message is one short clause, without a full stop.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Takes the program's arguments, without its name, apart. Options may stand anywhere before "--", also as
// --option=value; of one given twice the last counts. Invalid UTF-8 in texts is repaired, but not in paths.
// Throws UsageError.
Arguments parseArguments(const std::vector<std::string> &words, const DiaryDay &today);

} // namespace diary::cli

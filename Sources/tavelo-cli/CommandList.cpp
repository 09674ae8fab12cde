// SPDX-License-Identifier: MIT
#include "CommandList.h"

#include <algorithm>
#include <array>
#include <utility>

namespace diary::cli {

namespace {

constexpr std::array<std::pair<Option, std::string_view>, 6> optionNames = {{
    {Option::Root, "--root"},
    {Option::Year, "--year"},
    {Option::Day, "--day"},
    {Option::Marker, "--marker"},
    {Option::Limit, "--limit"},
    {Option::Json, "--json"},
}};

constexpr std::string_view introduction = R"(Usage: tavelo-cli [--root DIR] COMMAND ...

Reads and writes a diary: a folder of Markdown files, one for each day of the
calendar, with a section for each year.

Commands:
)";

constexpr std::string_view conventions = R"(
DAY is MM-DD, YYYY-MM-DD, today or yesterday; without it, today. Years go from
1000 to 9999.

Options:
  --root DIR  the diary's folder; without it, the one that the environment
              variable DIARY_ROOT names, else the one set in Tavelo
  --help      print this, or with a command what there is to know about it
  --version   print the version
  --          end of options: what follows may begin with a dash

Exit status: 0 when all went well, 1 when something failed, 2 for wrong usage.
)";

} // namespace

const std::vector<CommandDescription> &commandList() {
    static const std::vector<CommandDescription> commands = {
        {.command = Command::Path,
         .name = "path",
         .synopsis = "[DAY]",
         .summary = "print the path of a day's file",
         .details = "Prints the path of the day's file, whether there is one or not.\n",
         .options = {}},
        {.command = Command::Show,
         .name = "show",
         .synopsis = "[DAY] [--year YYYY]",
         .summary = "print a day, or one year's entry",
         .details = "Prints the day's file; for a day without one, its title. With a year, given by the\n"
                    "option or in the day, prints that year's entry alone, and nothing when there is\n"
                    "none.\n",
         .options = {Option::Year}},
        {.command = Command::Years,
         .name = "years",
         .synopsis = "[DAY]",
         .summary = "print the years that have an entry",
         .details = "Prints the years that have an entry on the day, the first one first, one a line.\n",
         .options = {}},
        {.command = Command::Write,
         .name = "write",
         .synopsis = "DAY [--year YYYY]",
         .summary = "replace one year's entry by standard input",
         .details = "Replaces the entry by what comes from standard input; nothing but whitespace\n"
                    "empties it. MM-DD needs the option --year.\n",
         .options = {Option::Year}},
        {.command = Command::Append,
         .name = "append",
         .synopsis = "[DAY] [TEXT...]",
         .summary = "add a paragraph to an entry",
         .details = "Adds a paragraph to the entry of the day's year, for MM-DD of this year. The text\n"
                    "is that of the arguments, joined by spaces, or without any that of standard\n"
                    "input. The first argument is the day only if it reads as one.\n",
         .options = {}},
        {.command = Command::Merge,
         .name = "merge",
         .synopsis = "CURRENT OTHER --day MM-DD [--marker TEXT]",
         .summary = "print what two versions of a day's file make together",
         .details = "Prints a document with the entries of both files. Where they have different texts\n"
                    "for a year and neither begins with the other, both are kept with the marker\n"
                    "between them, a line of its own. No file is changed.\n",
         .options = {Option::Day, Option::Marker}},
        {.command = Command::Search,
         .name = "search",
         .synopsis = "QUERY [--limit N] [--json]",
         .summary = "find entries by their words",
         .details = "Prints day, year and a snippet of each entry that contains the query, in the order\n"
                    "of the calendar, 200 at most unless --limit says otherwise. Upper and lower case\n"
                    "are the same. With --json, a list of {\"day\",\"year\",\"snippet\"}. Days that are\n"
                    "not on this machine are named on standard error.\n",
         .options = {Option::Limit, Option::Json}},
        {.command = Command::Stats,
         .name = "stats",
         .synopsis = "[--json]",
         .summary = "print how much the diary holds",
         .details = "Prints the number of days with an entry, the first year, the number of files and\n"
                    "the years. With --json also how many years each day has.\n",
         .options = {Option::Json}},
        {.command = Command::Random,
         .name = "random",
         .synopsis = "",
         .summary = "print a day that has an entry, drawn at random",
         .details = "Prints a day that has an entry in any year, as MM-DD. Fails when there is none.\n",
         .options = {}},
        {.command = Command::Check,
         .name = "check",
         .synopsis = "",
         .summary = "tell what is not as it should be in the folder",
         .details = "Prints, file by file: conflict copies, files that are not on this machine, invalid\n"
                    "UTF-8, CR LF line ends that hide the years, years with several sections, code\n"
                    "fences that are never closed, unknown files that look like days, and what a killed\n"
                    "process left behind. Changes nothing. Exit status 1 when there is anything.\n",
         .options = {}},
        {.command = Command::Resolve,
         .name = "resolve",
         .synopsis = "[DAY...]",
         .summary = "merge the conflict copies of sync tools",
         .details = "Merges the copies that sync tools left of these days, or of all, into their files,\n"
                    "and moves them out of the diary's folder. Prints the days that it merged. Fails\n"
                    "when copies are left that could not be merged.\n",
         .options = {}},
    };
    return commands;
}

const CommandDescription &description(Command command) {
    const auto &all = commandList();
    return *std::find_if(all.begin(), all.end(), [=](const auto &one) { return one.command == command; });
}

std::optional<Command> commandNamed(std::string_view name) {
    for (const auto &one : commandList()) {
        if (one.name == name)
            return one.command;
    }
    return std::nullopt;
}

std::optional<Option> optionNamed(std::string_view name) {
    for (const auto &[option, optionName] : optionNames) {
        if (optionName == name)
            return option;
    }
    return std::nullopt;
}

std::string_view nameOf(Option option) {
    return std::find_if(optionNames.begin(), optionNames.end(),
                        [=](const auto &one) { return one.first == option; })
        ->second;
}

bool takesValue(Option option) {
    return option != Option::Json;
}

std::string helpText(std::optional<Command> command) {
    std::string text;
    if (command) {
        const auto &one = description(*command);
        text.append("Usage: tavelo-cli [--root DIR] ").append(one.name).append(" ").append(one.synopsis);
        text.append("\n\n").append(one.details);
        return text.append("\n'tavelo-cli --help' says what a DAY is and which diary is used.\n");
    }
    text = introduction;
    constexpr std::size_t nameWidth = 8;
    for (const auto &one : commandList()) {
        std::string name(one.name);
        name.resize(std::max(nameWidth, name.size() + 1), ' ');
        text.append("  ").append(name).append(one.summary).append("\n");
    }
    return text.append(conventions);
}

} // namespace diary::cli

// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace diary::cli {

enum class Command { Path, Show, Years, Write, Append, Merge, Search, Stats, Random, Check, Resolve };

// Root goes with every command. All but Json take a value.
enum class Option { Root, Year, Day, Marker, Limit, Json };

struct CommandDescription {
    Command command = Command::Path;
    std::string_view name;
    std::string_view synopsis; // what follows the name
    std::string_view summary;  // for the list of commands
    std::string_view details;  // for the command's own help; ends with a line break
    std::vector<Option> options;
};

const std::vector<CommandDescription> &commandList();
const CommandDescription &description(Command command);

std::optional<Command> commandNamed(std::string_view name);
// With its two dashes.
std::optional<Option> optionNamed(std::string_view name);
std::string_view nameOf(Option option);
bool takesValue(Option option);

// What --help prints: for one command, or for the program.
std::string helpText(std::optional<Command> command);

} // namespace diary::cli

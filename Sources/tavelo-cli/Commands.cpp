// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "StandardStreams.h"
#include "VaultCommands.h"

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <string>
#include <string_view>
#include <system_error>

namespace diary::cli {

namespace {

namespace fs = std::filesystem;

// The day's text. The store shows the bare title for a file that it cannot read, which a window can explain;
// here it would look like an empty day.
std::string loadedText(DiaryStore &store, MonthDay day) {
    auto text = store.loadText(day);
    if (text == DiaryStore::defaultText(day)) {
        std::error_code error;
        const auto file = store.fileURL(day);
        if (!readWholeFile(file, error) && error != std::errc::no_such_file_or_directory)
            throw fs::filesystem_error("read", file, error);
    }
    return text;
}

// Of a text with one section a year.
std::string_view entryOf(std::int64_t year, std::string_view text) {
    for (const auto &[sectionYear, body] : YearSectionParser::sectionBodies(text)) {
        if (sectionYear == year)
            return body;
    }
    return {};
}

void path(const Arguments &arguments) {
    writeStandardOutput(DiaryStore(vaultOf(arguments)).fileURL(arguments.day).string() + "\n");
}

void show(const Arguments &arguments) {
    DiaryStore store(vaultOf(arguments));
    const auto text = loadedText(store, arguments.day);
    if (!arguments.year) {
        writeStandardOutput(text);
        return;
    }
    const auto tidy = YearSectionParser::tidied(text, arguments.day);
    const auto entry = entryOf(*arguments.year, tidy);
    if (!entry.empty())
        writeStandardOutput(std::string(entry) + "\n");
}

void years(const Arguments &arguments) {
    DiaryStore store(vaultOf(arguments));
    std::string lines;
    for (const auto year : YearSectionParser::yearsWithContent(loadedText(store, arguments.day)))
        lines += std::to_string(year) + "\n";
    writeStandardOutput(lines);
}

void write(const Arguments &arguments) {
    // Read to its end first: the shorter the time between loading and saving, the less there is to fold.
    const auto entry = UnicodeText::repaired(readStandardInput());
    DiaryStore store(vaultOf(arguments));
    const auto text = YearSectionParser::tidied(loadedText(store, arguments.day), arguments.day);
    if (UnicodeText::isBlank(entry) && entryOf(*arguments.year, text).empty())
        return;
    store.save(YearSectionParser::replacingEntry(entry, *arguments.year, arguments.day, text), arguments.day);
}

void append(const Arguments &arguments) {
    const auto given = arguments.text ? *arguments.text : UnicodeText::repaired(readStandardInput());
    const auto paragraph = UnicodeText::trimmed(given);
    if (paragraph.empty())
        throw UsageError("nothing to append");
    DiaryStore store(vaultOf(arguments));
    const auto text = YearSectionParser::tidied(loadedText(store, arguments.day), arguments.day);
    std::string entry(entryOf(*arguments.year, text));
    if (!entry.empty())
        entry += "\n\n";
    entry += paragraph;
    store.save(YearSectionParser::replacingEntry(entry, *arguments.year, arguments.day, text), arguments.day);
}

void merge(const Arguments &arguments) {
    const auto readTidied = [&](const fs::path &file) {
        return YearSectionParser::tidied(UnicodeText::repaired(readInput(file)), arguments.day);
    };
    const auto current = readTidied(arguments.files.at(0));
    const auto other = readTidied(arguments.files.at(1));
    const auto marker = arguments.marker.value_or(DiaryStore::Options{}.conflictMarker);
    writeStandardOutput(YearSectionParser::mergingDocuments(current, other, arguments.day, marker));
}

} // namespace

bool run(const Arguments &arguments) {
    switch (*arguments.command) {
    case Command::Path:
        path(arguments);
        break;
    case Command::Show:
        show(arguments);
        break;
    case Command::Years:
        years(arguments);
        break;
    case Command::Write:
        write(arguments);
        break;
    case Command::Append:
        append(arguments);
        break;
    case Command::Merge:
        merge(arguments);
        break;
    case Command::Search:
        search(arguments);
        break;
    case Command::Stats:
        stats(arguments);
        break;
    case Command::Random:
        random(arguments);
        break;
    case Command::Check:
        return check(arguments);
    case Command::Resolve:
        return resolve(arguments);
    }
    return true;
}

} // namespace diary::cli

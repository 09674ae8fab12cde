// SPDX-License-Identifier: MIT
#include "VaultCommands.h"

#include "StandardStreams.h"

#include <DiaryKit/Defaults.h>
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/VaultCheck.h>
#include <DiaryKit/VaultFileName.h>
#include <DiaryKit/VaultLocation.h>

#include <nlohmann/json.hpp>

#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

namespace diary::cli {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// A folder that is not there yet is an empty diary; one that cannot be listed must not pass for one.
void requireListable(const fs::path &vault) {
    std::error_code error;
    const fs::directory_iterator entries(vault, error);
    if (error && error != std::errc::no_such_file_or_directory)
        throw fs::filesystem_error("list", vault, error);
}

void writeJson(const Json &json) {
    writeStandardOutput(json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
}

Json titles(const std::set<MonthDay> &days) {
    auto list = Json::array();
    for (const auto day : days)
        list.push_back(day.headerTitle());
    return list;
}

void tellAwaitingDownload(const std::set<MonthDay> &days) {
    if (days.empty())
        return;
    std::string message = "not on this machine:";
    for (const auto day : days)
        message += " " + day.headerTitle();
    reportError(message);
}

Json asJson(const DiaryStore::ArchiveSnapshot &snapshot) {
    auto heatCounts = Json::object();
    for (const auto &[day, count] : snapshot.heatCounts)
        heatCounts[day.headerTitle()] = count;
    const auto &earliest = snapshot.overview.earliestYear;
    return {{"daysWithContent", snapshot.overview.daysWithContent},
            {"earliestYear", earliest ? Json(*earliest) : Json()},
            {"fileCount", snapshot.overview.fileCount},
            {"contentYears", snapshot.contentYears},
            {"heatCounts", heatCounts},
            {"awaitingDownload", titles(snapshot.awaitingDownload)}};
}

std::string asText(const DiaryStore::ArchiveSnapshot &snapshot) {
    const auto &[daysWithContent, earliestYear, fileCount] = snapshot.overview;
    auto text = "days with an entry: " + std::to_string(daysWithContent) + "\n";
    if (earliestYear)
        text += "first year: " + std::to_string(*earliestYear) + "\n";
    text += "files: " + std::to_string(fileCount) + "\nyears:";
    for (const auto year : snapshot.contentYears)
        text += " " + std::to_string(year);
    return text + "\n";
}

std::string_view describe(VaultFinding::Kind kind) {
    switch (kind) {
    case VaultFinding::Kind::Placeholder:
        return "not on this machine";
    case VaultFinding::Kind::ConflictCopy:
        return "conflict copy, not merged yet ('tavelo-cli resolve' merges it)";
    case VaultFinding::Kind::Lookalike:
        return "looks like a day, but is not read";
    case VaultFinding::Kind::Unreadable:
        return "cannot be read";
    case VaultFinding::Kind::InvalidUtf8:
        return "is not valid UTF-8";
    case VaultFinding::Kind::CarriageReturns:
        return "lines end with CR LF, so that no year is found";
    case VaultFinding::Kind::RepeatedYear:
        return "year with several sections";
    case VaultFinding::Kind::OpenFence:
        return "a code fence is never closed, which hides what follows";
    case VaultFinding::Kind::AbandonedSave:
        return "left by a save that was killed";
    }
    return "";
}

std::set<MonthDay> daysWithCopies(const fs::path &vault) {
    std::set<MonthDay> days;
    for (const auto &finding : checkVault(vault)) {
        if (finding.kind == VaultFinding::Kind::ConflictCopy)
            days.insert(VaultFileName::classify(finding.fileName).monthDay);
    }
    return days;
}

} // namespace

fs::path vaultOf(const Arguments &arguments) {
    return arguments.root ? *arguments.root : VaultLocation::chosen(Defaults());
}

void search(const Arguments &arguments) {
    const auto vault = vaultOf(arguments);
    requireListable(vault);
    const auto result = DiaryStore::search(vault, DiaryStore::dayFiles(vault), arguments.query,
                                           arguments.limit, LinuxCloudFiles());
    if (arguments.isJson) {
        auto list = Json::array();
        for (const auto &[day, year, snippet] : result.hits)
            list.push_back({{"day", day.headerTitle()}, {"year", year}, {"snippet", snippet}});
        writeJson(list);
    } else {
        std::string lines;
        for (const auto &[day, year, snippet] : result.hits)
            lines.append(day.headerTitle())
                .append(" ")
                .append(std::to_string(year))
                .append("  ")
                .append(snippet) += "\n";
        writeStandardOutput(lines);
    }
    tellAwaitingDownload(result.awaitingDownload);
}

void stats(const Arguments &arguments) {
    const auto vault = vaultOf(arguments);
    requireListable(vault);
    const auto snapshot = DiaryStore::scanArchive(vault, {}, LinuxCloudFiles()).snapshot;
    if (arguments.isJson)
        return writeJson(asJson(snapshot));
    writeStandardOutput(asText(snapshot));
    tellAwaitingDownload(snapshot.awaitingDownload);
}

void random(const Arguments &arguments) {
    const auto vault = vaultOf(arguments);
    requireListable(vault);
    const auto day = DiaryStore(vault).randomDayWithContent();
    if (!day)
        throw std::runtime_error("no day has an entry");
    writeStandardOutput(day->headerTitle() + "\n");
}

bool check(const Arguments &arguments) {
    const auto findings = checkVault(vaultOf(arguments));
    std::string lines;
    for (const auto &[fileName, kind, detail] : findings) {
        lines.append(fileName).append(": ").append(describe(kind));
        lines += detail.empty() ? "\n" : ": " + detail + "\n";
    }
    writeStandardOutput(lines);
    return findings.empty();
}

bool resolve(const Arguments &arguments) {
    const auto vault = vaultOf(arguments);
    const auto withCopies = daysWithCopies(vault);
    const auto wanted = arguments.days.empty()
                            ? withCopies
                            : std::set<MonthDay>(arguments.days.begin(), arguments.days.end());
    const DiaryStore::Options options;
    DiaryStore store(vault, options);
    bool isAllMerged = true;
    for (const auto day : wanted) {
        if (store.resolveConflicts(day, options.conflictMarker))
            writeStandardOutput(day.headerTitle() + "\n");
    }
    for (const auto day : daysWithCopies(vault)) {
        if (!wanted.contains(day))
            continue;
        reportError(day.headerTitle() + ": conflict copies could not be merged");
        isAllMerged = false;
    }
    return isAllMerged;
}

} // namespace diary::cli

// SPDX-License-Identifier: MIT
//
// The part of DiaryStore that deals with sync tools: placeholders and conflict copies.

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>

namespace diary {

namespace {

namespace fs = std::filesystem;
using Status = CloudFiles::DownloadingStatus;

void requestUnlessCurrent(const CloudFiles &cloudFiles, const fs::path &file) {
    const auto status = cloudFiles.downloadingStatus(file);
    if (status == Status::NotDownloaded || status == Status::Downloaded)
        cloudFiles.startDownloading(file);
}

// True when an earlier merge put every entry of `other` behind the marker already, so that a copy that could
// not be moved away is not merged again and again.
bool isMergedAlready(std::string_view current, std::string_view other, std::string_view conflictMarker) {
    const auto mine = YearSectionParser::sectionBodies(current);
    const auto theirs = YearSectionParser::sectionBodies(other);
    return std::all_of(theirs.begin(), theirs.end(), [&](const YearSectionParser::YearBody &version) {
        const auto merged = std::string(conflictMarker).append("\n\n").append(version.body);
        return std::any_of(mine.begin(), mine.end(), [&](const YearSectionParser::YearBody &entry) {
            return entry.year == version.year && (entry.body.starts_with(version.body) ||
                                                  entry.body.find(merged) != std::string_view::npos);
        });
    });
}

// A copy from a system with other line ends has no sections as it stands, and its entries would be passed
// over.
std::string withLineFeeds(std::string text) {
    if (YearSectionParser::sections(text).empty()) {
        for (auto at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n", at))
            text.erase(at, 1);
    }
    return text;
}

} // namespace

void DiaryStore::nudgeDownloadIfEvicted(const fs::path &file) const {
    requestUnlessCurrent(*m_options.cloudFiles, file);
}

bool DiaryStore::startDownloadIfNeeded(const fs::path &file) const {
    if (m_options.cloudFiles->downloadingStatus(file) != Status::NotDownloaded)
        return false;
    m_options.cloudFiles->startDownloading(file);
    return true;
}

void DiaryStore::warmEvictedFiles() const {
    m_options.executor->runInBackground(Executor::Priority::Utility,
                                        [root = m_rootURL, cloudFiles = m_options.cloudFiles] {
                                            for (const auto monthDay : dayFiles(root))
                                                requestUnlessCurrent(*cloudFiles, root / monthDay.fileName());
                                        });
}

bool DiaryStore::hasConflicts(MonthDay monthDay) const {
    return !m_options.cloudFiles->unresolvedConflictVersions(fileURL(monthDay)).empty();
}

bool DiaryStore::resolveConflicts(MonthDay monthDay, std::string_view conflictMarker) {
    const auto file = fileURL(monthDay);
    const auto versions = m_options.cloudFiles->unresolvedConflictVersions(file);
    // What the placeholder stands for is not here to be merged with.
    if (versions.empty() || startDownloadIfNeeded(file))
        return false;

    const auto loaded = loadText(monthDay);
    auto merged = YearSectionParser::tidied(loaded, monthDay);
    for (const auto &version : versions) {
        std::error_code error;
        auto bytes = readWholeFile(version, error);
        if (!bytes)
            continue;
        const auto other =
            YearSectionParser::tidied(withLineFeeds(UnicodeText::repaired(std::move(*bytes))), monthDay);
        if (!isMergedAlready(merged, other, conflictMarker))
            merged = YearSectionParser::mergingDocuments(merged, other, monthDay, conflictMarker);
    }
    try {
        if (merged != loaded)
            save(merged, monthDay);
    } catch (const fs::filesystem_error &) {
        return false;
    }
    // Only now that their texts are safe.
    for (const auto &version : versions)
        m_options.cloudFiles->markResolved(version);
    return true;
}

} // namespace diary

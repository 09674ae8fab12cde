// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/VaultCheck.h>
#include <DiaryKit/VaultFileName.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>
#include <map>

namespace diary {

namespace {

namespace fs = std::filesystem;
using Kind = VaultFinding::Kind;

// A year header that would be one if its line ended with a line feed alone.
bool hidesYearsBehindCarriageReturns(std::string_view text) {
    if (text.find("\r\n") == std::string_view::npos)
        return false;
    std::string unixText;
    std::remove_copy(text.begin(), text.end(), std::back_inserter(unixText), '\r');
    return YearSectionParser::sections(text).size() < YearSectionParser::sections(unixText).size();
}

void checkContent(const std::string &name, std::string_view text, std::vector<VaultFinding> &findings) {
    if (!UnicodeText::isValid(text))
        findings.push_back({name, Kind::InvalidUtf8, {}});
    if (hidesYearsBehindCarriageReturns(text))
        findings.push_back({name, Kind::CarriageReturns, {}});
    std::map<std::int64_t, int> sections;
    for (const auto &section : YearSectionParser::sections(text)) {
        if (++sections[section.year] == 2)
            findings.push_back({name, Kind::RepeatedYear, std::to_string(section.year)});
    }
    if (YearSectionParser::closingOpenFence(text) != text)
        findings.push_back({name, Kind::OpenFence, {}});
}

void checkDayFile(const fs::path &file, std::vector<VaultFinding> &findings) {
    const auto name = file.filename().string();
    if (LinuxCloudFiles().downloadingStatus(file) == CloudFiles::DownloadingStatus::NotDownloaded) {
        findings.push_back({name, Kind::Placeholder, {}});
        return;
    }
    std::error_code error;
    if (const auto bytes = readWholeFile(file, error))
        checkContent(name, *bytes, findings);
    else
        findings.push_back({name, Kind::Unreadable, error.message()});
}

} // namespace

std::vector<VaultFinding> checkVault(const fs::path &folder) {
    std::vector<VaultFinding> findings;
    if (!fs::exists(folder))
        return findings;
    for (const auto &entry : fs::directory_iterator(folder)) {
        const auto name = entry.path().filename().string();
        const auto abandoned = targetOfAbandonedTemporary(name);
        if (abandoned && MonthDay::parse(*abandoned))
            findings.push_back({name, Kind::AbandonedSave, {}});
        switch (VaultFileName::classify(name).kind) {
        case VaultFileName::Kind::DayFile:
            checkDayFile(entry.path(), findings);
            break;
        case VaultFileName::Kind::Placeholder:
            findings.push_back({name, Kind::Placeholder, {}});
            break;
        case VaultFileName::Kind::ConflictCopy:
            findings.push_back({name, Kind::ConflictCopy, {}});
            break;
        case VaultFileName::Kind::Lookalike:
            findings.push_back({name, Kind::Lookalike, {}});
            break;
        case VaultFileName::Kind::Other:
            break;
        }
    }
    std::stable_sort(findings.begin(), findings.end(),
                     [](const VaultFinding &a, const VaultFinding &b) { return a.fileName < b.fileName; });
    return findings;
}

} // namespace diary

// SPDX-License-Identifier: MIT
//
// The part of DiaryStore that writes. Other programs write the same files without asking, so a save never
// trusts an earlier look: it swaps the new file in, sees what came out, and folds in what it did not know.

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <list>
#include <utility>

namespace diary {

namespace {

namespace fs = std::filesystem;

// How many times in a row another program may change the file during one save. Each round keeps a temporary
// file, and PreparedFile has 36 names for them.
constexpr int foldRounds = 32;

// How many displaced files of one day stay open until they are looked at again.
constexpr std::size_t displacedFilesKept = 8;

// A placeholder in the file's place holds one blank.
constexpr std::size_t placeholderSize = 1;

// Saving over a placeholder would destroy the content that it stands for, on every machine.
[[noreturn]] void failOverPlaceholder(const fs::path &file) {
    throw fs::filesystem_error("save", file, std::error_code(EAGAIN, std::system_category()));
}

bool sameEntries(std::string_view one, std::string_view other) {
    return YearSectionParser::sectionBodies(one) == YearSectionParser::sectionBodies(other) &&
           YearSectionParser::documentPreamble(one) == YearSectionParser::documentPreamble(other);
}

bool holdsEntry(const std::vector<YearSectionParser::YearBody> &kept,
                const YearSectionParser::YearBody &wanted) {
    return wanted.body.empty() || std::any_of(kept.begin(), kept.end(), [&](const auto &body) {
               return body.year == wanted.year && body.body.find(wanted.body) != std::string_view::npos;
           });
}

// `left` without the entries that are to be found in the same year of `kept`.
std::string entriesMissingIn(std::string_view kept, std::string_view left, MonthDay monthDay) {
    const auto keptBodies = YearSectionParser::sectionBodies(kept);
    std::string missing(YearSectionParser::documentPreamble(left).value_or(""));
    for (const auto &body : YearSectionParser::sectionBodies(left)) {
        if (!holdsEntry(keptBodies, body))
            missing = YearSectionParser::replacingEntry(body.body, body.year, monthDay, missing);
    }
    return missing;
}

// True when every entry of `left` is to be found in the same year of `kept`.
bool holdsAllOf(std::string_view kept, std::string_view left) {
    if (const auto preamble = YearSectionParser::documentPreamble(left)) {
        if (YearSectionParser::documentPreamble(kept).value_or("").find(*preamble) == std::string_view::npos)
            return false;
    }
    const auto keptBodies = YearSectionParser::sectionBodies(kept);
    const auto leftBodies = YearSectionParser::sectionBodies(left);
    return std::all_of(leftBodies.begin(), leftBodies.end(),
                       [&](const auto &wanted) { return holdsEntry(keptBodies, wanted); });
}

} // namespace

std::string DiaryStore::folded(std::string_view base, std::string_view mine, std::string_view theirs,
                               MonthDay monthDay) const {
    return YearSectionParser::foldingDocuments(
        UnicodeText::repaired(std::string(base)), UnicodeText::repaired(std::string(mine)),
        UnicodeText::repaired(std::string(theirs)), monthDay, m_options.conflictMarker);
}

std::string DiaryStore::withYearsOfEmptiedFile(std::string_view text, MonthDay monthDay) const {
    const bool emptied = m_seen && m_seen->monthDay == monthDay && m_seen->bytes && m_seen->bytes->empty() &&
                         !m_lastContent.empty();
    // The file's last content as both base and other side gives back every year that the text lacks.
    return emptied ? folded(m_lastContent, text, m_lastContent, monthDay) : std::string(text);
}

// The save before this one may have been overwritten before it was looked at again. This text was then made
// from what stood there instead, and nothing else remembers the one that is gone.
std::string DiaryStore::withOverwrittenSave(std::string text, MonthDay monthDay) const {
    const auto recent = m_recentSaves.find(monthDay);
    const auto &loaded = m_seen->bytes;
    if (recent == m_recentSaves.end() || !loaded || loaded->empty() || *loaded == recent->second.text)
        return text;
    if (holdsAllOf(text, recent->second.text))
        return text;
    const auto missing = entriesMissingIn(text, recent->second.text, monthDay);
    const auto mended = folded(recent->second.base, missing, *loaded, monthDay);
    return sameEntries(mended, *loaded) ? text : folded(*loaded, text, mended, monthDay);
}

DiaryStore::Saved DiaryStore::save(std::string_view text, MonthDay monthDay) {
    if (!m_seen || m_seen->monthDay != monthDay)
        loadText(monthDay);

    if (YearSectionParser::isEffectivelyEmpty(text, monthDay.headerTitle()) &&
        isMissing(fileURL(monthDay), monthDay))
        return {std::string(text), std::nullopt};

    auto whole = withOverwrittenSave(withYearsOfEmptiedFile(text, monthDay), monthDay);
    auto saved = writeDayFile(m_seen->bytes, std::move(whole), monthDay);
    m_seen = Seen{monthDay, saved.text};
    m_lastContent = {};
    return saved;
}

DiaryStore::Saved DiaryStore::writeDayFile(std::optional<std::string> base, std::string text,
                                           MonthDay monthDay) {
    if (startDownloadIfNeeded(fileURL(monthDay)))
        failOverPlaceholder(fileURL(monthDay));
    createFoldersDurably(m_rootURL);
    sweepAbandonedTemporaries();
    auto saved = writeFolding(resolvingLinks(fileURL(monthDay)), std::move(base), std::move(text), monthDay);
    if (m_knownFiles)
        m_knownFiles->insert(monthDay);
    m_awaitingDownload.erase(monthDay);
    m_yearCache[monthDay] = {*saved.modificationDate,
                             YearSectionParser::ascendingYearsWithContent(saved.text)};
    return saved;
}

DiaryStore::Saved DiaryStore::writeFolding(const fs::path &target, std::optional<std::string> base,
                                           std::string text, MonthDay monthDay) {
    RecentSave recent{.base = base.value_or(std::string()), .text = {}, .displaced = {}};
    const FolderTurn turn(target.parent_path());
    // What is known to have changed is folded in beforehand, so that the file never goes without it.
    std::error_code error;
    if (auto current = readWholeFile(target, error); current && !current->empty() && current != base) {
        auto both = folded(base.value_or(std::string()), text, *current, monthDay);
        if (!sameEntries(both, text))
            text = std::move(both);
        base = std::move(current);
    }
    // Every displaced file stays until the result is safe: a crash in between loses none of them.
    std::list<PreparedFile> installed;
    try {
        for (int round = 0;; ++round) {
            if (round == foldRounds)
                throw fs::filesystem_error("save", target, std::error_code(EBUSY, std::system_category()));
            auto &prepared = installed.emplace_back(target, text);
            auto displaced =
                prepared.install(base ? PreparedFile::Expecting::File : PreparedFile::Expecting::Nothing);
            if (!displaced)
                break;
            if (displaced->size() <= placeholderSize && startDownloadIfNeeded(prepared.temporaryPath()))
                failOverPlaceholder(target);
            const bool expected = displaced == base || *displaced == text;
            recent.displaced.push_back({*displaced, prepared.takeDisplaced()});
            // A file that was emptied, or cut off before its first byte, has nothing to say.
            if (expected || displaced->empty())
                break;
            auto both = folded(base.value_or(std::string()), text, *displaced, monthDay);
            if (sameEntries(both, text))
                break;
            base = std::exchange(text, std::move(both));
        }
    } catch (...) {
        // What the last swap took out is what the others know: it goes back.
        std::any_of(installed.rbegin(), installed.rend(), [](PreparedFile &file) { return file.putBack(); });
        throw;
    }
    const auto &last = installed.back();
    last.syncFolder();

    recent.text = text;
    auto &remembered = m_recentSaves[monthDay];
    recent.displaced.insert(recent.displaced.begin(), std::move_iterator(remembered.displaced.begin()),
                            std::move_iterator(remembered.displaced.end()));
    if (recent.displaced.size() > displacedFilesKept)
        recent.displaced.erase(recent.displaced.begin(), recent.displaced.end() - displacedFilesKept);
    remembered = std::move(recent);
    return {std::move(text), last.modificationTime()};
}

bool DiaryStore::repairIfOverwritten(MonthDay monthDay, const RecentSave &recent) {
    auto current = readDayFile(fileURL(monthDay), monthDay);
    if (!current)
        return false; // Taken away on purpose, for all that can be told.

    std::string text = *current;
    if (text != recent.text)
        text = folded(recent.base, recent.text, text, monthDay);
    for (const auto &[bytes, file] : recent.displaced) {
        // Someone who had opened the old file before it was swapped out may have written to it since.
        std::error_code error;
        const auto late = readWholeFile(file.get(), error);
        if (late && !late->empty() && *late != bytes)
            text = folded(bytes, text, *late, monthDay);
    }
    if (sameEntries(text, *current))
        return false;
    // What was last loaded stays remembered: the next save may still be based on it.
    writeDayFile(std::move(current), std::move(text), monthDay);
    return true;
}

std::set<MonthDay> DiaryStore::repairOverwrittenSaves() {
    std::set<MonthDay> mended;
    for (const auto &[monthDay, recent] : std::exchange(m_recentSaves, {})) {
        try {
            if (repairIfOverwritten(monthDay, recent))
                mended.insert(monthDay);
        } catch (const fs::filesystem_error &) {
            // The text is in the editor or in another program's copy; the next save of the day tries again.
        }
    }
    return mended;
}

void DiaryStore::sweepAbandonedTemporaries() {
    if (m_swept)
        return;
    std::error_code listError;
    for (fs::directory_iterator entry(m_rootURL, listError), end; !listError && entry != end;
         entry.increment(listError)) {
        const auto &path = entry->path();
        const auto target = targetOfAbandonedTemporary(path.filename().string());
        if (!target || !MonthDay::parse(*target))
            continue;
        std::error_code error;
        const auto left = readWholeFile(path, error);
        if (error == std::errc::is_a_directory)
            continue;
        const auto kept = readWholeFile(m_rootURL / *target, error);
        if (left && (left->empty() || (kept && holdsAllOf(*kept, *left))))
            fs::remove(path, error);
        else
            moveIntoFolder(path, *m_options.stateFolder / "resolved", *target);
    }
    // Tried again at the next save when the folder could not be listed to its end.
    m_swept = !listError;
}

} // namespace diary

// SPDX-License-Identifier: MIT
//
// The part of DiaryStore that writes. Other programs write the same files without asking, so a save never
// trusts an earlier look: it swaps the new file in, sees what came out, and folds in what it did not know.

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>
#include <cerrno>
#include <list>
#include <utility>

namespace diary {

namespace {

namespace fs = std::filesystem;

// How many times in a row another program may change the file during one save.
constexpr int foldRounds = 100;

bool sameEntries(std::string_view one, std::string_view other) {
    return YearSectionParser::sectionBodies(one) == YearSectionParser::sectionBodies(other) &&
           YearSectionParser::documentPreamble(one) == YearSectionParser::documentPreamble(other);
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

DiaryStore::Saved DiaryStore::save(std::string_view text, MonthDay monthDay) {
    const auto target = resolvingLinks(fileURL(monthDay));
    if (!m_seen || m_seen->monthDay != monthDay)
        loadText(monthDay);

    std::error_code error;
    const bool exists = fs::exists(target, error) || expectsFile(monthDay);
    if (!exists && YearSectionParser::isEffectivelyEmpty(text, monthDay.headerTitle()))
        return {std::string(text), std::nullopt};

    fs::create_directories(m_rootURL);
    sweepAbandonedTemporaries();
    auto saved = writeFolding(target, m_seen->bytes, withYearsOfEmptiedFile(text, monthDay), monthDay);

    m_seen = Seen{monthDay, saved.text};
    m_lastContent = saved.text;
    if (m_knownFiles)
        m_knownFiles->insert(monthDay);
    m_awaitingDownload.erase(monthDay);
    m_yearCache[monthDay] = {*saved.modificationDate, YearSectionParser::yearsWithContent(saved.text)};
    return saved;
}

DiaryStore::Saved DiaryStore::writeFolding(const fs::path &target, std::optional<std::string> base,
                                           std::string text, MonthDay monthDay) {
    RecentSave recent{.base = base.value_or(std::string()), .text = {}, .displaced = {}, .displacedFile = {}};
    // Every displaced file stays until the result is safe: a crash in between loses none of them.
    std::list<PreparedFile> installed;
    try {
        for (int round = 0;; ++round) {
            if (round == foldRounds)
                throw fs::filesystem_error("save", target, std::error_code(EBUSY, std::system_category()));
            auto &prepared = installed.emplace_back(target, text);
            auto displaced =
                prepared.install(base ? PreparedFile::Expecting::File : PreparedFile::Expecting::Nothing);
            const bool expected = !displaced || displaced == base || *displaced == text;
            recent.displaced = std::move(displaced).value_or(std::string());
            // A file that was emptied, or cut off before its first byte, has nothing to say.
            if (expected || recent.displaced.empty())
                break;
            auto both = folded(base.value_or(std::string()), text, recent.displaced, monthDay);
            if (sameEntries(both, text))
                break;
            base = std::move(text);
            text = std::move(both);
        }
    } catch (...) {
        // What the last swap took out is what the others know: it goes back.
        std::any_of(installed.rbegin(), installed.rend(), [](PreparedFile &file) { return file.putBack(); });
        throw;
    }
    auto &last = installed.back();
    last.syncFolder();

    recent.text = text;
    recent.displacedFile = last.takeDisplaced();
    m_recentSaves.insert_or_assign(monthDay, std::move(recent));
    return {std::move(text), last.modificationTime()};
}

bool DiaryStore::repairIfOverwritten(MonthDay monthDay, const RecentSave &recent) {
    std::error_code error;
    auto current = readWholeFile(fileURL(monthDay), error);
    if (!current)
        return false; // Taken away on purpose, for all that can be told.

    std::string text = *current;
    if (text != recent.text)
        text = folded(recent.base, recent.text, text, monthDay);
    if (recent.displacedFile) {
        // Someone who had opened the old file before it was swapped out may have written to it since.
        const auto late = readWholeFile(recent.displacedFile.get(), error);
        if (late && !late->empty() && *late != recent.displaced)
            text = folded(recent.displaced, text, *late, monthDay);
    }
    if (sameEntries(text, *current))
        return false;
    m_seen = Seen{monthDay, std::move(current)};
    save(text, monthDay);
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
    if (std::exchange(m_swept, true))
        return;
    std::error_code error;
    for (const auto &entry : fs::directory_iterator(m_rootURL, error)) {
        const auto target = targetOfAbandonedTemporary(entry.path().filename().string());
        if (!target || !MonthDay::parse(*target))
            continue;
        const auto left = readWholeFile(entry.path(), error);
        const auto kept = readWholeFile(m_rootURL / *target, error);
        const auto bodies =
            YearSectionParser::sectionBodies(left ? std::string_view(*left) : std::string_view());
        const bool nothingNew =
            left && std::all_of(bodies.begin(), bodies.end(), [&](const auto &entryOfYear) {
                return kept && kept->find(entryOfYear.body) != std::string::npos;
            });
        if (nothingNew)
            fs::remove(entry.path(), error);
        else
            moveIntoFolder(entry.path(), *m_options.stateFolder / "resolved", *target);
    }
}

} // namespace diary

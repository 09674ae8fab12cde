// SPDX-License-Identifier: MIT
#include <DiaryApp/EditingSession.h>
#include <DiaryApp/Text.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace diary {

EditingSession::EditingSession(DiaryStore &store, Clock &clock)
    : m_store(store),
      m_clock(clock),
      m_currentMonthDay(clock.today().monthDay()),
      m_viewedYear(clock.today().year),
      m_journalTimer(clock.makeTimer([this] { writeJournal(); })),
      m_saveTimer(clock.makeTimer([this] { flushSaveIfDirty(); })),
      m_remoteRefreshTimer(clock.makeTimer([this] { performRemoteRefresh(); })),
      m_repairTimer(clock.makeTimer([this] { repairOverwrittenSaves(); })) {}

bool EditingSession::canEdit() const {
    const bool hasDay = m_viewedYear != currentYear() || m_currentMonthDay.weekday(m_viewedYear).has_value();
    // Another number makes no header line, so its section could not be found again.
    const bool hasHeader = m_viewedYear >= 1000 && m_viewedYear <= 9999;
    return hasDay && hasHeader;
}

QString EditingSession::body(std::int64_t ofYear) const {
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), [ofYear](const YearEntry &candidate) {
        return candidate.year == ofYear;
    });
    return entry != m_entries.end() ? entry->body : QString();
}

void EditingSession::resolveConflicts() {
    // The copy is merged with what is typed, not with what was saved before it.
    if (hasUnsavedText() && (!m_store.hasConflicts(m_currentMonthDay) || !flushSaveIfDirty()))
        return;
    if (m_store.resolveConflicts(m_currentMonthDay, m_store.conflictMarker()) && onMergedConflicts)
        onMergedConflicts();
}

void EditingSession::load() {
    // Asked before reading: a change that comes in between is then noticed by the next refresh.
    m_loadedModificationDate = m_store.modificationDate(m_currentMonthDay);
    setRawText(m_store.loadText(m_currentMonthDay));
    m_draft = body(m_viewedYear);
}

void EditingSession::setRawText(std::string text) {
    m_rawText = std::move(text);
    m_entries = yearEntries(m_rawText);
}

// Before another entry takes its place: what cannot be saved now is set aside.
void EditingSession::leaveEntry() {
    if (!flushSaveIfDirty() && m_isDirty)
        m_unsavedEntries.push_back({m_currentMonthDay, m_viewedYear, body(m_viewedYear), m_draft});
}

// After the day or the year changed and its text was loaded: a draft that was set aside comes back.
void EditingSession::showEntry() {
    const auto unsaved =
        std::find_if(m_unsavedEntries.begin(), m_unsavedEntries.end(), [&](const UnsavedEntry &entry) {
            return entry.monthDay == m_currentMonthDay && entry.year == m_viewedYear;
        });
    const bool wasSetAside = unsaved != m_unsavedEntries.end();
    if (wasSetAside) {
        m_draft = unsaved->text;
        m_unsavedEntries.erase(unsaved);
    }
    setDirty(wasSetAside);
}

void EditingSession::open(MonthDay monthDay) {
    leaveEntry();
    m_currentMonthDay = monthDay;
    m_viewedYear = currentYear();
    resolveConflicts();
    load();
    showEntry();
    render(allParts());
    showFromTop();
}

void EditingSession::pickYear(std::int64_t year) {
    if (year == m_viewedYear)
        return;
    leaveEntry();
    m_viewedYear = year;
    m_draft = body(year);
    showEntry();
    render(Parts{} | Part::Sidebar | Part::Entry | Part::Rail | Part::Status);
    showFromTop();
}

void EditingSession::toggleSourceView() {
    flushSaveIfDirty();
    m_showSource = !m_showSource;
    render(Parts{} | Part::Entry | Part::TopBar);
    showFromTop();
}

void EditingSession::draftChanged(const QString &text) {
    m_draft = text;
    setDirty(true);
    render(Parts{} | Part::Rail | Part::Status | Part::TopBar);
    m_saveTimer->start(saveDelay);
    // Not again: it fires while one types on.
    if (m_journal && !m_journalTimer->isActive())
        m_journalTimer->start(journalInterval);
}

std::vector<EditingSession::UnsavedEntry> EditingSession::unsavedEntries() const {
    auto entries = m_unsavedEntries;
    if (m_isDirty)
        entries.push_back({m_currentMonthDay, m_viewedYear, body(m_viewedYear), m_draft});
    return entries;
}

void EditingSession::writeJournal() {
    std::vector<DraftJournal::Draft> drafts;
    for (const auto &entry : unsavedEntries())
        drafts.push_back({entry.monthDay, entry.year, toUtf8(entry.base), toUtf8(entry.text)});
    if (!drafts.empty())
        m_journal->write(drafts);
}

bool EditingSession::flushSaveIfDirty() {
    m_saveTimer->stop();
    const bool othersSaved = saveUnsavedEntries();
    const bool draftSaved = saveDraft();
    if (othersSaved && draftSaved) {
        m_didReportSaveError = false;
        m_journalTimer->stop();
        if (m_journal)
            m_journal->clear();
    }
    return othersSaved && draftSaved;
}

// None when that failed. `asked` receives the text that was to be saved, which the saved one differs from
// when others' changes were folded in.
std::optional<DiaryStore::Saved> EditingSession::saveEntry(MonthDay monthDay, std::int64_t year,
                                                           const QString &text, std::string &asked) {
    try {
        asked = YearSectionParser::replacingEntry(toUtf8(text), year, monthDay, m_store.loadText(monthDay));
        auto saved = m_store.save(asked, monthDay);
        m_repairTimer->start(repairDelay);
        return saved;
    } catch (const std::filesystem::filesystem_error &error) {
        reportSaveError(error);
        return std::nullopt;
    }
}

// Each is tried, so that one bad file does not hold up the others.
bool EditingSession::saveUnsavedEntries() {
    bool changedShownFile = false;
    const auto saved = std::erase_if(m_unsavedEntries, [&](const UnsavedEntry &entry) {
        std::string asked;
        const auto result = saveEntry(entry.monthDay, entry.year, entry.text, asked);
        if (!result)
            return false;
        if (entry.monthDay == m_currentMonthDay) {
            setRawText(result->text);
            changedShownFile = true;
        }
        return true;
    });
    if (saved > 0)
        setDirty(m_isDirty);
    if (changedShownFile)
        reloadFromDisk();
    return m_unsavedEntries.empty();
}

bool EditingSession::saveDraft() {
    if (!m_isDirty)
        return true;
    std::string asked;
    const auto saved = saveEntry(m_currentMonthDay, m_viewedYear, m_draft, asked);
    if (!saved)
        return false;
    setRawText(saved->text);
    m_loadedModificationDate = saved->modificationDate;
    setDirty(false);
    auto parts = Parts{} | Part::Sidebar | Part::Rail;
    if (m_rawText != asked) {
        // Someone else wrote into this very entry in the same moment; the editor shows what is now there.
        if (const auto now = body(m_viewedYear); asked.find(toUtf8(now)) == std::string::npos) {
            m_draft = now;
            parts = allParts();
        }
    }
    render(parts);
    return true;
}

void EditingSession::reportSaveError(const std::filesystem::filesystem_error &error) {
    if (std::exchange(m_didReportSaveError, true) || !onSaveError)
        return;
    onSaveError(systemText(error));
}

void EditingSession::rescueUnsavedText(const std::filesystem::path &folder) const {
    bool allRescued = true;
    for (const auto &[monthDay, year, base, text] : unsavedEntries()) {
        const auto stem = std::to_string(year) + "-" + monthDay.headerTitle();
        const auto bytes = toUtf8(text);
        try {
            auto file = folder / (stem + ".md");
            std::error_code error;
            auto present = readWholeFile(file, error);
            for (int number = 2; std::filesystem::exists(file) && present != bytes; ++number) {
                file = folder / (stem + " " + std::to_string(number) + ".md");
                present = readWholeFile(file, error);
            }
            if (present != bytes)
                replaceFileDurably(file, bytes);
        } catch (const std::filesystem::filesystem_error &error) {
            std::fprintf(stderr, "tavelo: %s\n", error.what());
            allRescued = false;
        }
    }
    // One place is enough, and this is the one that the user is told of.
    if (m_journal && allRescued) {
        m_journalTimer->stop();
        m_journal->clear();
    }
}

void EditingSession::scheduleRemoteRefresh() {
    m_remoteRefreshTimer->start(remoteRefreshDelay);
}

void EditingSession::performRemoteRefresh() {
    m_remoteRefreshTimer->stop();
    m_store.invalidateCaches();
    render(Part::Sidebar);
    resolveConflicts();
    if (m_store.modificationDate(m_currentMonthDay) == m_loadedModificationDate)
        return;
    // Before the editor takes over what stands there: it may have been written by someone who did not know of
    // the last save.
    if (!m_store.repairOverwrittenSaves().empty())
        m_repairTimer->start(repairDelay);
    reloadFromDisk();
}

void EditingSession::reloadFromDisk() {
    // Unsaved typing wins; the next save keeps what changed in other years.
    if (m_isDirty)
        return;
    load();
    render(allParts());
}

void EditingSession::repairOverwrittenSaves() {
    const auto mended = m_store.repairOverwrittenSaves();
    if (mended.empty())
        return;
    m_repairTimer->start(repairDelay);
    if (mended.contains(m_currentMonthDay))
        reloadFromDisk();
}

void EditingSession::calendarDayChanged() {
    render(m_isDirty ? Parts{} | Part::Sidebar | Part::TopBar | Part::Status : allParts());
}

void EditingSession::setDirty(bool dirty) {
    m_isDirty = dirty;
    if (onDirtyChanged)
        onDirtyChanged(hasUnsavedText());
}

void EditingSession::render(Parts parts) const {
    if (onRender)
        onRender(parts);
}

void EditingSession::showFromTop() const {
    if (onShowFromTop)
        onShowFromTop();
}

} // namespace diary

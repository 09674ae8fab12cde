// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>
#include <DiaryApp/DraftJournal.h>
#include <DiaryApp/YearEntry.h>
#include <DiaryKit/DiaryStore.h>

#include <QFlags>
#include <QString>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace diary {

// Which day and year are being edited, and how the draft gets to the day file without harming other years.
//
// The session edits one year of one day file. It never writes back a remembered file: a save reads the file
// afresh and replaces that year alone, so what others wrote into other years survives. Main thread only; the
// store and the clock must outlive it.
class EditingSession {
public:
    enum class Part {
        TopBar = 1,
        Sidebar = 2,
        Entry = 4,
        Rail = 8,
        Status = 16,
    };
    using Parts = QFlags<Part>;
    static constexpr Parts allParts() {
        return Parts{} | Part::TopBar | Part::Sidebar | Part::Entry | Part::Rail | Part::Status;
    }

    static constexpr std::chrono::milliseconds saveDelay{1000};
    static constexpr std::chrono::milliseconds remoteRefreshDelay{300};
    // How long after a save to look whether another program wrote over it.
    static constexpr std::chrono::milliseconds repairDelay{1500};

    // How often at most unsaved text is written to the journal while it is typed without a pause.
    static constexpr std::chrono::milliseconds journalInterval{800};

    EditingSession(DiaryStore &store, Clock &clock);
    EditingSession(const EditingSession &) = delete;
    EditingSession &operator=(const EditingSession &) = delete;

    std::function<void(Parts)> onRender;
    // Another day or year is shown: the page starts at its top, ready for typing.
    std::function<void()> onShowFromTop;
    // Whether there is unsaved text.
    std::function<void(bool)> onDirtyChanged;
    // Copies of the day that a sync tool had left were merged into it.
    std::function<void()> onMergedConflicts;
    // With the system's own text; once per run of failures.
    std::function<void(const QString &)> onSaveError;

    MonthDay currentMonthDay() const { return m_currentMonthDay; }
    std::int64_t viewedYear() const { return m_viewedYear; }
    std::int64_t currentYear() const { return m_clock.today().year; }
    // The day file as last read or written, and its sections.
    const std::string &rawText() const { return m_rawText; }
    const std::vector<YearEntry> &entries() const { return m_entries; }
    const QString &draft() const { return m_draft; }
    bool isDirty() const { return m_isDirty; }
    bool hasUnsavedText() const { return m_isDirty || !m_unsavedEntries.empty(); }
    bool showSource() const { return m_showSource; }
    DiaryStore &store() const { return m_store; }

    // 29 February of a common year, as this year's entry, cannot be written, nor can a year that does not
    // have four digits.
    bool canEdit() const;

    // The body of the first section of the year in the loaded file; empty when there is none.
    QString body(std::int64_t ofYear) const;

    // Shows a day, in the current year. What was being edited is saved first.
    void open(MonthDay monthDay);
    void openToday() { open(m_clock.today().monthDay()); }
    void step(std::int64_t days) { open(m_currentMonthDay.advanced(days)); }

    void pickYear(std::int64_t year);
    void toggleSourceView();

    // The editor's text changed. It is saved one second after the last change.
    void draftChanged(const QString &text);

    // Saves now if there is anything to save. False when that failed: the draft is kept, also when another
    // day is opened meanwhile, and tried again with the next edit, navigation or flush.
    bool flushSaveIfDirty();

    // Unsaved text is written down there from now on.
    void keepJournal(DraftJournal journal) { m_journal = std::move(journal); }

    // Writes what is unsaved to files of their own in the folder, one an entry, and none for a text that is
    // there already. For the way out of a process that cannot save; a failure here has nowhere left to go.
    void rescueUnsavedText(const std::filesystem::path &folder) const;

    // Something in the vault may have changed: looks again shortly, once for a burst of calls, or at once.
    void scheduleRemoteRefresh();
    void performRemoteRefresh();

    // Midnight passed. The editor is left alone while there is an unsaved draft.
    void calendarDayChanged();

private:
    // A draft whose saving failed and that is no longer shown.
    struct UnsavedEntry {
        MonthDay monthDay;
        std::int64_t year = 0;
        QString base; // the entry that was typed on
        QString text;
    };

    void resolveConflicts();
    void load();
    void setRawText(std::string text);
    void leaveEntry();
    void showEntry();
    bool saveDraft();
    bool saveUnsavedEntries();
    std::optional<DiaryStore::Saved> saveEntry(MonthDay monthDay, std::int64_t year, const QString &text,
                                               std::string &asked);
    void reportSaveError(const std::filesystem::filesystem_error &error);
    void reloadFromDisk();
    void repairOverwrittenSaves();
    void setDirty(bool dirty);
    std::vector<UnsavedEntry> unsavedEntries() const;
    void writeJournal();
    void render(Parts parts) const;
    void showFromTop() const;

    DiaryStore &m_store;
    Clock &m_clock;
    MonthDay m_currentMonthDay;
    std::int64_t m_viewedYear;
    std::string m_rawText;
    std::vector<YearEntry> m_entries; // of m_rawText: taken apart once a load, not once a letter
    QString m_draft;                  // body of the viewed year in m_rawText unless dirty
    bool m_showSource = false;
    bool m_isDirty = false;
    // The file's date when it was last read or written here; none when there was no file.
    std::optional<DiaryStore::FileTime> m_loadedModificationDate;
    bool m_didReportSaveError = false;
    std::vector<UnsavedEntry> m_unsavedEntries;
    std::optional<DraftJournal> m_journal;
    std::unique_ptr<Timer> m_journalTimer;
    std::unique_ptr<Timer> m_saveTimer;
    std::unique_ptr<Timer> m_remoteRefreshTimer;
    std::unique_ptr<Timer> m_repairTimer;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/EntryView.h>
#include <DiaryApp/SidebarView.h>
#include <DiaryApp/StatusBarView.h>
#include <DiaryApp/TopBarView.h>
#include <DiaryApp/YearEntry.h>
#include <DiaryApp/YearRailView.h>
#include <DiaryKit/DiaryDay.h>
#include <DiaryKit/DiaryStore.h>

#include <QString>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

namespace diary {

class EditingSession;

// What the window shows of the editing session, as values. Borrows from the session: valid until that
// changes.
struct DayState {
    MonthDay monthDay;
    std::int64_t viewedYear = 0;
    std::int64_t currentYear = 0;
    std::span<const YearEntry> entries; // of the day file, in its order
    std::string_view rawText;           // the day file
    QString draft;                      // the viewed year's text as it is being edited
    bool canEdit = true;
    bool showSource = false;
    bool showGapYears = true;

    static DayState of(const EditingSession &session);
};

// From the state to what the views show. Pure, but for the language in use.
namespace DayModels {

EntryView::Model entry(const DayState &state);
YearRailView::Model rail(const DayState &state, const std::function<void(std::int64_t)> &pickYear);
// Without statistics, as long as they are being read, no day is marked.
SidebarView::Model sidebar(const DayState &state, MonthDay today,
                           const std::optional<DiaryStore::ArchiveSnapshot> &statistics);
TopBarView::Model topBar(const DayState &state);
StatusBarView::Model statusBar(const DayState &state, const std::filesystem::path &dayFile);

// The written entries of other years than the current one, newest first.
std::vector<const YearEntry *> pastEntries(const DayState &state);

// "3 years ago"; empty for this year and those to come.
QString agoText(std::int64_t year, std::int64_t currentYear);

} // namespace DayModels

} // namespace diary

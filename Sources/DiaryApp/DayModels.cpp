// SPDX-License-Identifier: MIT
#include <DiaryApp/DayModels.h>
#include <DiaryApp/EditingSession.h>
#include <DiaryApp/Formatters.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>

#include <QStringList>

#include <algorithm>
#include <set>

namespace diary {

namespace {

constexpr std::int64_t yearsToAdd = 15;

QString trimmedOfSpacesAndTabs(QStringView text) {
    const auto isBlank = [](QChar c) {
        return c == QLatin1Char('\t') || c.category() == QChar::Separator_Space;
    };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text.toString();
}

// The text of the current year, as it is being edited if it is the one that is viewed.
QString currentYearText(const DayState &state) {
    if (state.viewedYear == state.currentYear)
        return state.draft;
    const auto entry =
        std::find_if(state.entries.begin(), state.entries.end(),
                     [&](const YearEntry &candidate) { return candidate.year == state.currentYear; });
    return entry != state.entries.end() ? entry->body : QString();
}

EntryView::Model::Block block(const DayState &state) {
    EntryView::Model::Block block;
    const bool isCurrent = state.viewedYear == state.currentYear;
    block.mark = QString::number(state.viewedYear);
    if (!state.canEdit) {
        const bool isMissingDay = !state.monthDay.weekday(state.viewedYear).has_value();
        block.markColor = Theme::faint();
        block.kind = EntryView::Model::Block::Empty{
            isMissingDay ? L("NoLeapDayThisYear") : L("The year %d cannot be written.", state.viewedYear)};
        return block;
    }
    block.markColor = isCurrent ? Theme::accent() : Theme::pastText();
    block.ago = isCurrent ? L("This year") : DayModels::agoText(state.viewedYear, state.currentYear);
    block.kind =
        EntryView::Model::Block::Editor{.draft = state.draft,
                                        .placeholder = L("Write about this day in %d…", state.viewedYear),
                                        .textColor = isCurrent ? Theme::inkStrong() : Theme::pastText()};
    return block;
}

// The years between the oldest entry and this one that have none.
std::optional<QString> gapLine(const DayState &state, const std::vector<const YearEntry *> &past) {
    if (!state.showGapYears || state.showSource || past.empty())
        return std::nullopt;
    std::set<std::int64_t> written;
    for (const auto *entry : past)
        written.insert(entry->year);
    QStringList missing;
    for (auto year = state.currentYear - 1; year > *written.begin(); --year) {
        if (!written.contains(year))
            missing += QString::number(year);
    }
    if (missing.isEmpty())
        return std::nullopt;
    return L("GapLine", missing.join(QStringLiteral(" · ")));
}

YearRailView::Card currentYearCard(const DayState &state) {
    const auto text = currentYearText(state).trimmed();
    const bool isViewed = state.viewedYear == state.currentYear;
    YearRailView::Card card;
    card.year = state.currentYear;
    card.yearColor = Theme::accent();
    card.meta = L("%d chars", charCount(text));
    card.snippet = text.isEmpty() ? L("Not written yet") : excerpt(text);
    card.snippetColor = Theme::railTextActive();
    card.ago = L("This year · writing");
    card.background = isViewed ? Theme::cardBgActive() : Theme::cardBg();
    card.border = isViewed ? Theme::accent() : Theme::cardBorder();
    return card;
}

YearRailView::Card pastCard(const DayState &state, const YearEntry &entry) {
    const bool isViewed = state.viewedYear == entry.year;
    YearRailView::Card card;
    card.year = entry.year;
    card.yearColor = Theme::railYear();
    card.meta = L("%d chars", entry.charCount);
    card.snippet = entry.excerpt.isEmpty() ? L("Not written yet") : entry.excerpt;
    card.snippetColor = Theme::railSnippet();
    card.ago = DayModels::agoText(entry.year, state.currentYear);
    card.background = isViewed ? Theme::cardBgActive() : Theme::cardBg();
    card.border = isViewed ? Theme::cardBorderActive() : Theme::cardBorder();
    return card;
}

} // namespace

DayState DayState::of(const EditingSession &session) {
    return {.monthDay = session.currentMonthDay(),
            .viewedYear = session.viewedYear(),
            .currentYear = session.currentYear(),
            .entries = session.entries(),
            .rawText = session.rawText(),
            .draft = session.draft(),
            .canEdit = session.canEdit(),
            .showSource = session.showSource(),
            .showGapYears = Settings::shared().showGapYears()};
}

namespace DayModels {

std::vector<const YearEntry *> pastEntries(const DayState &state) {
    std::vector<const YearEntry *> past;
    for (const auto &entry : state.entries) {
        if (entry.year != state.currentYear && !entry.body.isEmpty())
            past.push_back(&entry);
    }
    std::stable_sort(past.begin(), past.end(),
                     [](const auto *left, const auto *right) { return left->year > right->year; });
    return past;
}

QString agoText(std::int64_t year, std::int64_t currentYear) {
    return year < currentYear ? L("%d years ago", currentYear - year) : QString();
}

EntryView::Model entry(const DayState &state) {
    const auto past = pastEntries(state);
    EntryView::Model model;
    model.fileName = toQString(state.monthDay.fileName());
    model.ordinal = L("Day %d / %d", state.monthDay.ordinal(state.viewedYear),
                      state.monthDay.daysInYear(state.viewedYear));
    model.dayKey = toQString(state.monthDay.headerTitle());
    if (const auto weekday = state.monthDay.weekday(state.viewedYear))
        model.weekdayName = Formatters::context().weekdayName(*weekday);
    model.subtitle = L("This file has %d past-year sections", past.size());
    model.block = block(state);
    model.gapLine = gapLine(state, past);
    if (state.showSource)
        model.sourceText = state.rawText.empty() ? L("(empty file)") : toQString(state.rawText);
    return model;
}

YearRailView::Model rail(const DayState &state, const std::function<void(std::int64_t)> &pickYear) {
    auto past = pastEntries(state);
    // The year that is being edited has a card also while it is empty or new.
    YearEntry viewed{.year = state.viewedYear, .body = state.draft, .excerpt = {}};
    const bool isListed = std::any_of(past.begin(), past.end(),
                                      [&](const auto *entry) { return entry->year == state.viewedYear; });
    if (state.viewedYear != state.currentYear && !isListed) {
        viewed.charCount = charCount(viewed.body);
        viewed.excerpt = viewed.body.trimmed().isEmpty() ? QString() : excerpt(viewed.body);
        const auto place = std::find_if(past.begin(), past.end(),
                                        [&](const auto *entry) { return entry->year < state.viewedYear; });
        past.insert(place, &viewed);
    }

    YearRailView::Model model;
    std::set<std::int64_t> listed{state.currentYear};
    model.cards.push_back(currentYearCard(state));
    for (const auto *entry : past) {
        listed.insert(entry->year);
        model.cards.push_back(pastCard(state, *entry));
    }
    for (auto &card : model.cards)
        card.onClick = [pickYear, year = card.year] { pickYear(year); };

    if (past.empty()) {
        model.footer = L("This day is still empty");
    } else {
        const auto earliest = past.back()->year;
        model.footer = L("Spanning %d years · earliest %d", state.currentYear - earliest + 1, earliest);
    }

    const bool isLeapDay = state.monthDay == MonthDay{2, 29};
    for (auto year = state.currentYear - 1; year >= state.currentYear - yearsToAdd; --year) {
        if (!listed.contains(year) && (!isLeapDay || MonthDay::isLeapYear(year)))
            model.addYears.push_back(year);
    }
    model.onAddYear = pickYear;
    return model;
}

SidebarView::Model sidebar(const DayState &state, MonthDay today,
                           const std::optional<DiaryStore::ArchiveSnapshot> &statistics) {
    SidebarView::Model model;
    model.monthTitle = Formatters::context().monthName(state.monthDay.month);
    model.month = state.monthDay.month;
    model.year = state.viewedYear;
    model.selectedDay = state.monthDay.day;
    if (statistics) {
        for (const auto &[day, years] : statistics->heatCounts) {
            if (day.month == state.monthDay.month)
                model.daysWithContent.insert(day.day);
        }
        model.overview = statistics->overview;
    }
    model.todayText = toQString(today.headerTitle());
    model.week = Formatters::week(QLocale::system());
    model.names = Formatters::context();
    return model;
}

TopBarView::Model topBar(const DayState &state) {
    const bool isWritten = !trimmedOfSpacesAndTabs(currentYearText(state)).isEmpty();
    return {.fileName = toQString(state.monthDay.fileName()),
            .sectionCount = L("%d year sections", pastEntries(state).size() + (isWritten ? 1 : 0)),
            .sourceLabel = state.showSource ? L("Reader") : L("Source")};
}

StatusBarView::Model statusBar(const DayState &state, const std::filesystem::path &dayFile) {
    return {.path = abbreviatingHome(dayFile),
            .status = L("Viewing ## %d · %d chars", state.viewedYear, charCount(state.draft))};
}

} // namespace DayModels

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Formatters.h>
#include <DiaryKit/DiaryStore.h>

#include <QString>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>

class QLabel;
class QVBoxLayout;

namespace diary {

class ChromeButton;
class DayGridView;
class ElidedLabel;
class HoverView;
class TodayButton;

// The column at the side of the main window: the calendar of the month, the way back to today, the vault's
// figures and the ways to find a day.
class SidebarView : public QWidget {
    Q_OBJECT

public:
    struct Model {
        QString monthTitle;
        std::int64_t month = 1;
        std::int64_t year = 1;
        std::int64_t selectedDay = 1;
        std::set<std::int64_t> daysWithContent;
        std::optional<DiaryStore::Overview> overview; // none while the files are still being read
        QString todayText;                            // today's date as on the button
        Formatters::Week week;
        Formatters::Context names;
    };

    explicit SidebarView(QWidget *parent = nullptr);

    std::function<void()> onPreviousMonth;
    std::function<void()> onNextMonth;
    std::function<void()> onShowYearOverview;
    std::function<void()> onShowSearch;
    std::function<void()> onShowSettings;

    DayGridView *gridView() const { return m_gridView; }
    TodayButton *todayButton() const { return m_todayButton; }

    using QWidget::update;
    void update(const Model &model);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    using Intent = std::function<void()> SidebarView::*;

    std::function<void()> forwarding(Intent intent);
    QWidget *buildMonthHeader();
    QLabel *addStatistic(QVBoxLayout *layout, const QString &label, const QString &valueName);
    QWidget *buildIconBar();

    ChromeButton *m_previousMonth = nullptr;
    ChromeButton *m_nextMonth = nullptr;
    HoverView *m_monthButton = nullptr;
    ElidedLabel *m_monthLabel = nullptr;
    DayGridView *m_gridView = nullptr;
    TodayButton *m_todayButton = nullptr;
    QLabel *m_statDaysValue = nullptr;
    QLabel *m_statEarliestValue = nullptr;
    QLabel *m_statFilesValue = nullptr;
};

} // namespace diary

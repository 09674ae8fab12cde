// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Formatters.h>
#include <DiaryKit/DiaryStore.h>

#include <QRect>
#include <QString>
#include <QWidget>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>

namespace diary {

class ChromeButton;
class DayGridView;
class ElidedLabel;
class HoverView;
class IconButton;
class TodayButton;

// What the parts take.
struct SidebarMetrics {
    QSize previousMonth;
    QSize monthButton;
    QSize nextMonth;
    int gridHeight = 0;
    int todayHeight = 0;
    std::array<QSize, 3> statLabels;
    std::array<QSize, 3> statValues;
    QSize icon;
};

struct SidebarLayout {
    static constexpr int width = 236;
    static constexpr int sideInset = 18;

    QRect previousMonth;
    QRect monthButton; // in the middle of the row; as wide as there is room between the arrows
    QRect nextMonth;
    QRect grid;
    QRect today;
    QRect upperDivider;
    std::array<QRect, 3> statLabels; // give way where the value needs the room
    std::array<QRect, 3> statValues;
    QRect lowerDivider; // keeps its distance from the bottom, as the icons do
    std::array<QRect, 3> icons;
    QRect edge; // the line towards the page
    int minimumHeight = 0;
};

// For reading from left to right.
SidebarLayout layoutSidebar(const SidebarMetrics &metrics, QSize sidebar);

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
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    using Intent = std::function<void()> SidebarView::*;
    struct Statistic {
        ElidedLabel *label;
        ElidedLabel *value;
    };

    std::function<void()> forwarding(Intent intent);
    void buildMonthHeader();
    Statistic makeStatistic(const QString &label, const char *valueName);
    IconButton *makeIcon(const char *name, const char *symbol, const QString &label, Intent intent);
    SidebarLayout currentLayout() const;
    QRect mirrored(const QRect &rectangle) const;
    void layOut();

    ChromeButton *m_previousMonth = nullptr;
    HoverView *m_monthButton = nullptr;
    ElidedLabel *m_monthLabel = nullptr;
    ChromeButton *m_nextMonth = nullptr;
    DayGridView *m_gridView = nullptr;
    TodayButton *m_todayButton = nullptr;
    std::array<Statistic, 3> m_statistics{};
    std::array<IconButton *, 3> m_icons{};
};

} // namespace diary

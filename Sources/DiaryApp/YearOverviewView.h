// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Formatters.h>
#include <DiaryKit/DiaryStore.h>

#include <QWidget>

#include <array>
#include <functional>
#include <map>
#include <optional>

class QLabel;

namespace diary {

class MonthCard;

// All days of the year, month by month, the darker the more years have an entry. The arrow keys lead from
// month to month as if all were one.
class YearOverviewView : public QWidget {
    Q_OBJECT

public:
    struct Figures {
        std::map<MonthDay, int> counts; // how many years have content; days without any may be left out
        int daysWithContent = 0;
    };
    struct Model {
        std::optional<Figures> figures; // none while the files are still being read
        Formatters::Context names;
    };

    explicit YearOverviewView(QWidget *parent = nullptr);

    std::function<void(MonthDay)> onPick;

    using QWidget::update;
    void update(const Model &model);

    // Gives the day the keyboard.
    void focusDay(MonthDay monthDay);

    // Of a fixed width.
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *buildMonths();
    QWidget *buildLegend();
    void walk(std::size_t fromMonth, Qt::Key key, int day);

    std::array<MonthCard *, 12> m_cards{};
    QLabel *m_legend = nullptr;
    QLabel *m_summary = nullptr;
    QLabel *m_footnote = nullptr;
};

} // namespace diary

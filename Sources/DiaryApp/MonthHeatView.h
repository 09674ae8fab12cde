// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayCellsView.h>
#include <DiaryApp/Formatters.h>
#include <DiaryKit/DiaryDay.h>

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace diary {

// Seven columns over the whole width, the first of the month where reading begins whatever its weekday: the
// squares stand for all years.
std::vector<QRectF> layoutMonthHeat(int dayCount, double width,
                                    Qt::LayoutDirection direction = Qt::LeftToRight);
int monthHeatHeight(int dayCount);

// The days of a month, the darker the more years have an entry. 29 February is outlined.
class MonthHeatView : public DayCellsView {
    Q_OBJECT

public:
    struct Model {
        std::int64_t month = 1;
        std::map<MonthDay, int> counts; // years with content; days without any may be left out
        bool areCountsKnown = true;     // not yet while the files are still being read
        Formatters::Context names;
    };

    explicit MonthHeatView(QWidget *parent = nullptr);

    std::function<void(MonthDay)> onPick;
    // An arrow key leads from this day into another month.
    std::function<void(Qt::Key, int day)> onWalkOut;

    using QWidget::update;
    void update(const Model &model);

    std::vector<QRectF> cells() const override;
    QString cellName(int day) const override;
    void press(int day) override;

    QSize sizeHint() const override;

protected:
    void walkOut(Qt::Key key, int day) override;
    bool isMirrored() const override { return isRightToLeft(); }

    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int countOf(int day) const;
    // The day's name and how many years have it.
    QStringList description(int day) const;

    Model m_model;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayCellsView.h>
#include <DiaryApp/Formatters.h>

#include <QRectF>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <vector>

namespace diary {

struct DayGridLayout {
    static constexpr int headerHeight = 16;
    static constexpr int headerGap = 6;
    static constexpr int gap = 3;
    static constexpr int cellHeight = 30;
    static constexpr int rows = 6;
    static constexpr int height = headerHeight + headerGap + (rows - 1) * (cellHeight + gap) + cellHeight;

    std::vector<QRectF> weekdays; // from the first weekday on
    std::vector<QRectF> days;     // from the first of the month on
};

// Seven columns over the whole width. From right to left, weekdays and days run that way together.
DayGridLayout layoutDayGrid(int dayCount, int leadingBlanks, double width,
                            Qt::LayoutDirection direction = Qt::LeftToRight);

// How many places stay empty before the first of the month. Weekdays count from 1 (Sunday) to 7 (Saturday).
int leadingBlanks(std::int64_t month, std::int64_t year, int firstWeekday);

// The days of a month, by weekday: the days with content are dark and have a dot, the selected one lies on a
// dark ground. February has 29 days whatever the year, as there is a day file for the 29th.
class DayGridView : public DayCellsView {
    Q_OBJECT

public:
    struct Model {
        std::int64_t month = 1;
        std::int64_t year = 1; // decides on which weekdays the days fall
        std::int64_t selectedDay = 1;
        std::set<std::int64_t> daysWithContent;
        Formatters::Week week;
        Formatters::Context names;
    };

    explicit DayGridView(QWidget *parent = nullptr);

    // The view itself changes nothing: who is called answers with another model.
    std::function<void(int day)> onSelectDay;
    // Page Up (-1) and Page Down (1).
    std::function<void(int by)> onStepMonth;

    using QWidget::update;
    void update(const Model &model);

    const Model &model() const { return m_model; }
    std::optional<int> hoveredDay() const { return m_hoveredDay; }

    std::vector<QRectF> cells() const override;
    QString cellName(int day) const override;
    bool isSelected(int day) const override;
    void press(int day) override;

    QSize sizeHint() const override;

protected:
    bool isMirrored() const override { return isRightToLeft(); }

    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    DayGridLayout currentLayout() const;
    void setPointer(std::optional<QPointF> pointer);
    void paintDay(QPainter &painter, const QRectF &cell, int day) const;

    Model m_model;
    std::optional<QPointF> m_pointer;
    std::optional<int> m_hoveredDay; // the one under the pointer
};

} // namespace diary

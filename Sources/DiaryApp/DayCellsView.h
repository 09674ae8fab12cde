// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QRectF>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <optional>
#include <vector>

namespace diary {

// The days of one month as cells in seven columns, each of them a button: the base of the month calendar and
// of the heat map.
//
// A cell is pressed with the mouse, by Return, Enter or Space on the day that the arrow keys have come to, or
// by an assistive technology, for which each day is a child of its own. The view takes the keyboard by Tab
// only, so that a click leaves the caret where it is.
class DayCellsView : public QWidget {
    Q_OBJECT

public:
    static constexpr int columns = 7;

    // The cell of each day, the first of the month at index 0.
    virtual std::vector<QRectF> cells() const = 0;
    // What a screen reader says.
    virtual QString cellName(int day) const = 0;
    virtual bool isSelected(int) const { return false; }
    // As a click does. May destroy the view.
    virtual void press(int day) = 0;

    int dayCount() const { return static_cast<int>(cells().size()); }
    // None between the cells.
    std::optional<int> dayAt(const QPointF &point) const;

    // The day that the keyboard acts on.
    int cursorDay() const { return m_cursorDay; }
    void setCursorDay(int day);

protected:
    explicit DayCellsView(QWidget *parent);

    // In February always 29.
    static int daysInMonth(std::int64_t month);

    // An arrow key leads from this day out of the month.
    virtual void walkOut(Qt::Key, int) {}
    // Whether the days run from right to left.
    virtual bool isMirrored() const { return false; }

    // For assistive technologies, around a change of what the cells show: `change` brings it about.
    template <typename Change>
    void changeCells(int newDayCount, Change change) {
        const auto before = beginChange(newDayCount);
        change();
        endChange(before);
    }

    // Tells assistive technologies of a day, when there are any.
    virtual void announce(int day, QAccessible::Event type);

    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    struct CellState {
        QString name;
        bool isSelected;
    };
    std::vector<CellState> beginChange(int newDayCount);
    void endChange(const std::vector<CellState> &before);
    void announceFocus();
    void walk(Qt::Key key, int by);

    int m_cursorDay = 1;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/Localization.h>
#include <DiaryApp/MonthHeatView.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace diary {

namespace {

constexpr int squareHeight = 14;
constexpr int gap = 4;
constexpr double cornerRadius = 3;
constexpr double leapDayLineWidth = 1.5;
constexpr double focusRingWidth = 2;
constexpr int preferredWidth = 184;

void strokeInside(QPainter &painter, const QRectF &square, const QColor &color, double width) {
    const double inset = width / 2;
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(square.adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius);
}

} // namespace

std::vector<QRectF> layoutMonthHeat(int dayCount, double width, Qt::LayoutDirection direction) {
    constexpr int columns = DayCellsView::columns;
    const double squareWidth = std::max(0.0, (width - (columns - 1) * gap) / columns);
    std::vector<QRectF> squares;
    for (int index = 0; index < dayCount; ++index) {
        const int column = index % columns;
        const int place = direction == Qt::RightToLeft ? columns - 1 - column : column;
        squares.emplace_back(place * (squareWidth + gap), (index / columns) * (squareHeight + gap),
                             squareWidth, squareHeight);
    }
    return squares;
}

int monthHeatHeight(int dayCount) {
    constexpr int columns = DayCellsView::columns;
    const int rows = (dayCount + columns - 1) / columns;
    return rows * squareHeight + (rows - 1) * gap;
}

MonthHeatView::MonthHeatView(QWidget *parent) : DayCellsView(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void MonthHeatView::update(const Model &model) {
    changeCells(daysInMonth(model.month), [&] { m_model = model; });
    setCursorDay(cursorDay());
    setAccessibleName(m_model.names.monthName(m_model.month));
    updateGeometry();
    update();
}

std::vector<QRectF> MonthHeatView::cells() const {
    return layoutMonthHeat(daysInMonth(m_model.month), width(), layoutDirection());
}

QString MonthHeatView::cellName(int day) const {
    return description(day).join(QStringLiteral(", "));
}

void MonthHeatView::press(int day) {
    // A copy, as the view may be gone before the action ends.
    if (const auto action = onPick)
        action(MonthDay{m_model.month, day});
}

QSize MonthHeatView::sizeHint() const {
    return {preferredWidth, monthHeatHeight(daysInMonth(m_model.month))};
}

void MonthHeatView::walkOut(Qt::Key key, int day) {
    if (const auto action = onWalkOut)
        action(key, day);
}

bool MonthHeatView::event(QEvent *event) {
    if (event->type() != QEvent::ToolTip)
        return DayCellsView::event(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const auto day = dayAt(help->pos());
    if (!day) {
        QToolTip::hideText();
        event->ignore();
        return true;
    }
    // The rectangle takes the tip away when the pointer leaves the square.
    const auto square = cells()[static_cast<std::size_t>(*day - 1)].toAlignedRect();
    QToolTip::showText(help->globalPos(), description(*day).join(QLatin1Char('\n')), this, square);
    return true;
}

void MonthHeatView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto &shades = Theme::heatShades();
    const auto squares = cells();
    for (std::size_t index = 0; index < squares.size(); ++index) {
        const int day = static_cast<int>(index) + 1;
        const auto shade = std::min(static_cast<std::size_t>(std::max(0, countOf(day))), shades.size() - 1);
        paintFilledBox(painter, squares[index], cornerRadius, shades[shade]);
        if (m_model.month == 2 && day == 29)
            strokeInside(painter, squares[index], Theme::accent(), leapDayLineWidth);
        // Not in the accent colour, which is the leap day's.
        if (hasFocus() && cursorDay() == day)
            strokeInside(painter, squares[index], Theme::inkStrong(), focusRingWidth);
    }
}

int MonthHeatView::countOf(int day) const {
    const auto found = m_model.counts.find(MonthDay{m_model.month, day});
    return found == m_model.counts.end() ? 0 : found->second;
}

QStringList MonthHeatView::description(int day) const {
    QStringList parts = {m_model.names.dayName(m_model.month, day)};
    if (m_model.areCountsKnown)
        parts.append(L("Years written: %d", countOf(day)));
    return parts;
}

} // namespace diary

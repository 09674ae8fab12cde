// SPDX-License-Identifier: MIT
#include <DiaryApp/DayGridView.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>
#include <DiaryKit/DiaryDay.h>

#include <QEnterEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace diary {

namespace {

constexpr double cornerRadius = 6;
constexpr double numberRaise = 2.5; // makes room for the dot
constexpr double dotDiameter = 3;
constexpr double dotAboveBottom = 7; // its upper edge
constexpr float dotOpacityOnPill = 0.6F;
constexpr int preferredWidth = 200;

} // namespace

DayGridLayout layoutDayGrid(int dayCount, int leadingBlanks, double width, Qt::LayoutDirection direction) {
    constexpr int columns = DayCellsView::columns;
    const double columnWidth =
        std::max(0.0, (width - (columns - 1) * DayGridLayout::gap) / static_cast<double>(columns));
    const auto left = [&](int column) {
        const int place = direction == Qt::RightToLeft ? columns - 1 - column : column;
        return place * (columnWidth + DayGridLayout::gap);
    };
    DayGridLayout layout;
    for (int column = 0; column < columns; ++column)
        layout.weekdays.emplace_back(left(column), 0, columnWidth, DayGridLayout::headerHeight);
    for (int index = leadingBlanks; index < leadingBlanks + dayCount; ++index) {
        const int top = DayGridLayout::headerHeight + DayGridLayout::headerGap +
                        (index / columns) * (DayGridLayout::cellHeight + DayGridLayout::gap);
        layout.days.emplace_back(left(index % columns), top, columnWidth, DayGridLayout::cellHeight);
    }
    return layout;
}

int leadingBlanks(std::int64_t month, std::int64_t year, int firstWeekday) {
    constexpr int columns = DayCellsView::columns;
    return (MonthDay{month, 1}.weekday(year).value_or(1) - firstWeekday + columns) % columns;
}

DayGridView::DayGridView(QWidget *parent) : DayCellsView(parent) {
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFixedHeight(DayGridLayout::height);
}

void DayGridView::update(const Model &model) {
    const bool isElsewhere = model.month != m_model.month || model.selectedDay != m_model.selectedDay;
    changeCells(daysInMonth(model.month), [&] { m_model = model; });
    // What has the keyboard follows the selection, or else stays where the user walked to.
    if (isElsewhere || cursorDay() > dayCount())
        setCursorDay(static_cast<int>(m_model.selectedDay));
    setAccessibleName(m_model.names.monthName(m_model.month) + QLatin1Char(' ') +
                      QString::number(m_model.year));
    setPointer(m_pointer);
    update();
}

std::vector<QRectF> DayGridView::cells() const {
    return currentLayout().days;
}

QString DayGridView::cellName(int day) const {
    QStringList parts;
    if (const auto weekday = MonthDay{m_model.month, day}.weekday(m_model.year))
        parts.append(m_model.names.weekdayName(*weekday));
    parts.append(m_model.names.dayName(m_model.month, day));
    if (m_model.daysWithContent.contains(day))
        parts.append(L("A11yHasContent"));
    return parts.join(QStringLiteral(", "));
}

bool DayGridView::isSelected(int day) const {
    return day == m_model.selectedDay;
}

void DayGridView::press(int day) {
    // A copy, as the view may be gone before the action ends.
    if (const auto action = onSelectDay)
        action(day);
}

QSize DayGridView::sizeHint() const {
    return {preferredWidth, DayGridLayout::height};
}

DayGridLayout DayGridView::currentLayout() const {
    return layoutDayGrid(daysInMonth(m_model.month),
                         leadingBlanks(m_model.month, m_model.year, m_model.week.firstWeekday), width(),
                         layoutDirection());
}

void DayGridView::setPointer(std::optional<QPointF> pointer) {
    m_pointer = pointer;
    const auto day = pointer ? dayAt(*pointer) : std::nullopt;
    if (day == m_hoveredDay)
        return;
    m_hoveredDay = day;
    update();
}

void DayGridView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto layout = currentLayout();

    painter.setFont(Theme::mono(10));
    painter.setPen(Theme::statLabel());
    const auto symbolCount =
        std::min(layout.weekdays.size(), static_cast<std::size_t>(m_model.week.symbols.size()));
    for (std::size_t column = 0; column < symbolCount; ++column)
        painter.drawText(layout.weekdays[column], Qt::AlignCenter,
                         m_model.week.symbols[static_cast<qsizetype>(column)]);

    painter.setFont(Theme::mono(11.5));
    for (std::size_t index = 0; index < layout.days.size(); ++index)
        paintDay(painter, layout.days[index], static_cast<int>(index) + 1);
}

void DayGridView::paintDay(QPainter &painter, const QRectF &cell, int day) const {
    const bool hasContent = m_model.daysWithContent.contains(day);
    if (isSelected(day)) {
        paintFilledBox(painter, cell, cornerRadius, Theme::pillBg());
    } else if (m_hoveredDay == day) {
        painter.setPen(QPen(Theme::gridHoverOutline(), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(cell.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    }

    painter.setPen(isSelected(day) ? Theme::pillText() : hasContent ? Theme::ink() : Theme::ghostDay());
    painter.drawText(cell.translated(0, -numberRaise), Qt::AlignCenter,
                     QStringLiteral("%1").arg(day, 2, 10, QLatin1Char('0')));

    if (hasContent) {
        auto color = Theme::accent();
        if (isSelected(day)) {
            color = Theme::pillText();
            color.setAlphaF(dotOpacityOnPill);
        }
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(QRectF(cell.center().x() - dotDiameter / 2, cell.bottom() - dotAboveBottom,
                                   dotDiameter, dotDiameter));
    }

    if (hasFocus() && cursorDay() == day)
        paintFocusRing(painter, cell, cornerRadius);
}

void DayGridView::mouseMoveEvent(QMouseEvent *event) {
    setPointer(event->position());
}

void DayGridView::enterEvent(QEnterEvent *event) {
    setPointer(event->position());
}

void DayGridView::leaveEvent(QEvent *) {
    setPointer(std::nullopt);
}

void DayGridView::resizeEvent(QResizeEvent *) {
    setPointer(m_pointer);
}

void DayGridView::keyPressEvent(QKeyEvent *event) {
    const bool isPage = event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
    if (!isPage || !onStepMonth || (event->modifiers() & ~Qt::KeypadModifier)) {
        DayCellsView::keyPressEvent(event);
        return;
    }
    const auto action = onStepMonth;
    action(event->key() == Qt::Key_PageUp ? -1 : 1);
}

} // namespace diary

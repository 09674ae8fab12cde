// SPDX-License-Identifier: MIT
#include <DiaryApp/QuietScrollBar.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>

#include <QAbstractScrollArea>
#include <QEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace diary {

namespace {

constexpr int smallestThumb = 28;
constexpr int endMargin = 3;
constexpr double restingWidth = 4;
constexpr double hoveredWidth = 6;

} // namespace

QRect layoutScrollThumb(const ScrollThumbMetrics &metrics) {
    const int range = metrics.maximum - metrics.minimum;
    const int track = metrics.track.height() - 2 * endMargin;
    if (range <= 0 || track <= 0)
        return {};
    const auto proportional = qint64{track} * metrics.pageStep / (qint64{range} + metrics.pageStep);
    const int length = std::clamp(static_cast<int>(proportional), std::min(smallestThumb, track), track);
    const auto offset = qint64{track - length} * (metrics.value - metrics.minimum) / range;
    return {0, endMargin + static_cast<int>(offset), metrics.track.width(), length};
}

QuietScrollBar::QuietScrollBar(QAbstractScrollArea *area)
    : QScrollBar(Qt::Vertical, area), m_area(area), m_source(area->verticalScrollBar()) {
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    area->installEventFilter(this);
    connect(m_source, &QScrollBar::rangeChanged, this, &QuietScrollBar::followArea);
    connect(m_source, &QScrollBar::valueChanged, this, &QuietScrollBar::setValue);
    connect(this, &QScrollBar::valueChanged, m_source, &QScrollBar::setValue);
    followArea();
}

QRect QuietScrollBar::thumbRect() const {
    // The area tells of a new page step by no signal.
    return layoutScrollThumb(
        {size(), m_source->minimum(), m_source->maximum(), m_source->pageStep(), m_source->value()});
}

bool QuietScrollBar::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_area && (event->type() == QEvent::Resize || event->type() == QEvent::Show))
        followArea();
    return QScrollBar::eventFilter(watched, event);
}

void QuietScrollBar::followArea() {
    setRange(m_source->minimum(), m_source->maximum());
    setPageStep(m_source->pageStep());
    setSingleStep(m_source->singleStep());
    setValue(m_source->value());
    setGeometry(m_area->width() - thickness, 0, thickness, m_area->height());
    setVisible(maximum() > minimum());
    raise();
}

void QuietScrollBar::paintEvent(QPaintEvent *) {
    const QRectF thumb = thumbRect();
    if (thumb.isEmpty())
        return;
    const bool isActive = underMouse() || m_dragOffset;
    const double width = isActive ? hoveredWidth : restingWidth;
    QPainter painter(this);
    paintFilledBox(painter,
                   QRectF(thumb.left() + (thumb.width() - width) / 2, thumb.top(), width, thumb.height()),
                   width / 2, isActive ? Theme::cardBorderActive() : Theme::cardBorderHover());
}

void QuietScrollBar::enterEvent(QEnterEvent *event) {
    QScrollBar::enterEvent(event);
    update();
}

void QuietScrollBar::leaveEvent(QEvent *event) {
    QScrollBar::leaveEvent(event);
    update();
}

void QuietScrollBar::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    const int y = event->position().toPoint().y();
    const auto thumb = thumbRect();
    if (y < thumb.top()) {
        setValue(value() - m_source->pageStep());
    } else if (y > thumb.bottom()) {
        setValue(value() + m_source->pageStep());
    } else {
        m_dragOffset = y - thumb.top();
        update();
    }
}

void QuietScrollBar::mouseMoveEvent(QMouseEvent *event) {
    if (!m_dragOffset)
        return;
    const int room = height() - 2 * endMargin - thumbRect().height();
    if (room <= 0)
        return;
    const int top = std::clamp(event->position().toPoint().y() - *m_dragOffset - endMargin, 0, room);
    setValue(minimum() + static_cast<int>(qint64{maximum() - minimum()} * top / room));
}

void QuietScrollBar::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    m_dragOffset.reset();
    update();
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>

#include <QPainter>

namespace diary {

namespace {

constexpr double borderWidth = 1;
constexpr double focusRingWidth = 2;

void paintBox(QPainter &painter, const QRectF &bounds, double cornerRadius, const QPen &pen,
              const QBrush &brush) {
    // A line lies to both sides of its path.
    const double inset = pen.style() == Qt::NoPen ? 0 : pen.widthF() / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(pen);
    painter.setBrush(brush);
    painter.drawRoundedRect(bounds.adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                            cornerRadius - inset);
    painter.restore();
}

} // namespace

void paintFilledBox(QPainter &painter, const QRectF &bounds, double cornerRadius, const QColor &fill) {
    paintBox(painter, bounds, cornerRadius, Qt::NoPen, fill);
}

void paintBorderedBox(QPainter &painter, const QRectF &bounds, double cornerRadius, const QColor &fill,
                      const QColor &border) {
    paintBox(painter, bounds, cornerRadius, QPen(border, borderWidth), fill);
}

void paintFocusRing(QPainter &painter, const QRectF &bounds, double cornerRadius) {
    paintBox(painter, bounds, cornerRadius, QPen(Theme::accent(), focusRingWidth), Qt::NoBrush);
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace diary {

// Boxes with round corners and smooth edges. Each lies inside its bounds, whose corners have the given
// radius. The painter stays as it was.

void paintFilledBox(QPainter &painter, const QRectF &bounds, double cornerRadius, const QColor &fill);
// With a border of one logical pixel.
void paintBorderedBox(QPainter &painter, const QRectF &bounds, double cornerRadius, const QColor &fill,
                      const QColor &border);
// Around what has the keyboard.
void paintFocusRing(QPainter &painter, const QRectF &bounds, double cornerRadius);

} // namespace diary

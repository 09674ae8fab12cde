// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <QWidget>

namespace diary::testing {

// The widget with its children as they look on a screen with this many pixels for each logical one. Enlarged,
// even thin letters have pixels that are wholly of their colour.
inline QImage pictureOf(QWidget &widget, int ratio = 4) {
    QImage picture(widget.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    widget.render(&picture, {}, {}, QWidget::DrawChildren);
    return picture;
}

// The number of the picture's pixels of this very colour, inside the logical rectangle.
inline int pixelsOf(const QColor &color, const QImage &picture, const QRect &where) {
    const auto ratio = static_cast<int>(picture.devicePixelRatio());
    const auto area = QRect(where.topLeft() * ratio, where.size() * ratio) & picture.rect();
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            count += picture.pixel(x, y) == color.rgba();
    }
    return count;
}

// All pixels of the logical rectangle.
inline bool isFilledWith(const QColor &color, const QImage &picture, const QRect &where) {
    const auto ratio = static_cast<int>(picture.devicePixelRatio());
    return pixelsOf(color, picture, where) == where.width() * where.height() * ratio * ratio;
}

} // namespace diary::testing

// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QSize>
#include <QString>

class QPainter;

namespace diary {

// One line of text of one style, for views that paint themselves. Whatever would break the line shows as a
// blank.
struct TextLine {
    QString text;
    QFont font;
    Qt::TextElideMode elideMode = Qt::ElideRight;

    // Whole pixels that hold all of the text.
    QSize naturalSize() const;
    // From the top of the line to its baseline.
    int ascent() const;
    // What is to be read at this width.
    QString shownText(int width) const;

    // At the rectangle's left edge, in the middle of its height.
    void paint(QPainter &painter, const QRect &rect, const QColor &color) const;
};

} // namespace diary

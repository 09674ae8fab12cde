// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QSize>
#include <QString>

class QPainter;

namespace diary {

// The text with a blank for each character that would break the line: file names and entries may hold
// anything. All other characters keep their places.
QString onOneLine(QString text);

// One line of text of one style, for views that paint themselves.
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

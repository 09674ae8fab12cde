// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QString>
#include <QTextLayout>

#include <memory>
#include <vector>

class QPainter;

namespace diary {

// A text of one style, laid out to a width, for views that paint themselves.
//
// Each paragraph reads in its own direction and starts at the side where that begins. A word that is longer
// than the width breaks anywhere. Lines stand on whole pixels.
class TextBlock {
public:
    struct Style {
        QFont font;
        double lineSpacing = 0;        // pixels between the lines of a paragraph
        double lineHeightMultiple = 1; // of the line's own height; what is added lies above the line
        double paragraphSpacing = 0;   // pixels between paragraphs

        bool operator==(const Style &) const = default;
    };

    void set(const QString &text, const Style &style);
    // Cheap when neither text nor width changed since.
    void layOut(double width);

    const QString &text() const { return m_text; }
    // Of the last layout. An empty text is one line high.
    double height() const { return m_height; }
    // Of the longest line.
    double naturalWidth() const { return m_naturalWidth; }
    int lineCount() const;
    // The part of the width that a line covers, from its left edge. Lines count through all paragraphs.
    QRectF lineRect(int line) const;

    void paint(QPainter &painter, const QPointF &topLeft, const QColor &color) const;

private:
    QString m_text;
    Style m_style;
    std::vector<std::unique_ptr<QTextLayout>> m_paragraphs;
    double m_width = -1; // none yet
    double m_height = 0;
    double m_naturalWidth = 0;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QTextLayout>
#include <QTextOption>

#include <memory>
#include <vector>

class QPainter;

namespace diary {

// A paragraph that reads in its own direction and begins at the side where that begins. A word that is wider
// than the line breaks anywhere.
QTextOption wrappingOption(const QString &paragraph);

// A text of one style, laid out to a width, for views that paint themselves.
//
// Paragraphs end at `\n` or U+2029; each has its own direction. All lines are equally high, as high as the
// highest of them, and stand on whole pixels.
class TextBlock {
public:
    // Lengths are in logical pixels.
    struct Style {
        QFont font;
        double lineSpacing = 0;        // from each line to the next
        double lineHeightMultiple = 1; // of the lines' own height; what is added lies above each line
        double paragraphSpacing = 0;   // between paragraphs, beside the line spacing
        bool wraps = true;             // else a paragraph is one line, as wide as it needs

        bool operator==(const Style &) const = default;
    };

    struct Line {
        QString text;
        QRectF rect; // the text's own, within the block

        bool operator==(const Line &) const = default;
    };

    void set(const QString &text, const Style &style);
    // Cheap when neither text nor width changed since.
    void layOut(double width);

    // All of these tell of the last layout. An empty text is one line.
    double height() const { return m_height; }
    double naturalWidth() const { return m_naturalWidth; } // of the longest line
    double firstBaseline() const { return m_firstBaseline; }
    std::vector<Line> lines() const;

    void paint(QPainter &painter, const QPointF &topLeft, const QColor &color) const;

private:
    void breakIntoLines();
    void stackLines();

    QString m_text;
    Style m_style;
    std::vector<std::unique_ptr<QTextLayout>> m_paragraphs;
    double m_width = -1; // none yet
    double m_ascent = 0; // of every line, as the next
    double m_descent = 0;
    double m_height = 0;
    double m_naturalWidth = 0;
    double m_firstBaseline = 0;
};

} // namespace diary

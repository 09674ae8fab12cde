// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QTextLayout>
#include <QTextOption>

#include <chrono>
#include <cstddef>
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
//
// Of a long text that wraps, only the beginning is laid out at once, and then what is painted. Its height is
// an estimate until layOutMore() has been through the rest.
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

    bool isHeightEstimated() const { return m_isHeightEstimated; }
    // Goes on for about so long.
    void layOutMore(std::chrono::milliseconds limit);

    // All of these tell of the last layout. An empty text is one line.
    double height() const { return m_height; }
    double naturalWidth() const { return m_naturalWidth; } // of the longest line that was laid out
    double firstBaseline() const;
    std::vector<Line> lines() const;

    // Only what can reach into the exposed part of the painter's plane. It is laid out first where it was not
    // yet, which leaves the height as it was.
    void paint(QPainter &painter, const QPointF &topLeft, const QColor &color, const QRectF &exposed);
    void paint(QPainter &painter, const QPointF &topLeft, const QColor &color);

private:
    struct Paragraph {
        qsizetype start = 0; // in the text
        qsizetype length = 0;
        qsizetype firstLine = 0;             // the number of lines above; only of those that were laid out
        std::unique_ptr<QTextLayout> layout; // none where nobody looks: it costs far more than the text
    };

    enum class Keep { Always, IfLong };

    std::unique_ptr<QTextLayout> brokenIntoLines(const Paragraph &paragraph) const;
    void takeFonts();
    void takeLineHeights(const QTextLayout &layout);
    void layOutNext(Keep keep);
    void stackLines(const QTextLayout &layout) const;
    std::size_t paragraphAt(double y) const;
    void forgetAllBut(std::size_t first, std::size_t end);
    double lineHeight() const;
    double topOf(std::size_t paragraph, qsizetype firstLine) const;
    double heightOf(qsizetype lineCount) const;
    qsizetype estimatedLineCount() const;

    QString m_text;
    Style m_style;
    std::vector<Paragraph> m_paragraphs;
    std::size_t m_laidOut = 0;       // so many paragraphs from the first
    qsizetype m_lineCount = 0;       // of these
    double m_textWidth = 0;          // of all their lines together
    std::vector<std::size_t> m_seen; // paragraphs behind the beginning whose layouts were kept for painting
    double m_width = -1;             // none yet
    double m_leastAscent = 0;        // what the fonts of a long text need
    double m_leastDescent = 0;
    double m_ascent = 0; // of every line, as the next
    double m_descent = 0;
    double m_height = 0;
    bool m_isHeightEstimated = false;
    double m_naturalWidth = 0;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QLabel>

#include <memory>
#include <vector>

namespace diary {

// A text with exactly its own font and colour: plain, not selectable, read out as static text.
//
// Every paragraph (they end at `\n`) begins on the side of its own writing direction, unless the label is
// centred or right-aligned. All lines are equally high: as high as the highest of them.
class ThemeLabel : public QLabel {
    Q_OBJECT

public:
    // Lengths are in logical pixels.
    struct Style {
        QFont font;
        QColor color;
        double lineSpacing = 0; // from each line to the next
        double lineHeightMultiple =
            1;                       // of the height that the font asks for; what is added is above the text
        double paragraphSpacing = 0; // between paragraphs, beside the line spacing
        bool wraps = false;          // at the label's width, inside a word where the word alone is wider
        int maximumLines = 0;        // 0 for any number; the last line shown then ends in an ellipsis
        // Where a line that does not fit is shortened. ElideNone also keeps a label that does not wrap from
        // being narrower than its text.
        Qt::TextElideMode elideMode = Qt::ElideNone;

        bool operator==(const Style &) const = default;
    };

    ThemeLabel(const QString &text, const Style &style, QWidget *parent = nullptr);
    ~ThemeLabel() override;

    const Style &textStyle() const { return m_style; }
    void setTextStyle(const Style &style);
    void setColor(const QColor &color);

    // From the top of the label to the line on which the first line's letters stand.
    double firstBaseline() const;

    struct Line {
        QString text;
        QRectF rect; // the text's own, within the label
        bool operator==(const Line &) const = default;
    };
    // As shown at the label's size.
    std::vector<Line> lines() const;

    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    class Layout;

    const Layout &layoutFor(double width) const;
    QPointF textOrigin(const Layout &layout) const;

    Style m_style;
    mutable std::unique_ptr<Layout> m_layout; // the last one asked for
};

// A label of one line, or of as many as the text has, that takes the room its text needs. The kern is added
// after every character, in logical pixels.
ThemeLabel *themeLabel(const QString &text, QFont font, const QColor &color, double kern,
                       QWidget *parent = nullptr);

} // namespace diary

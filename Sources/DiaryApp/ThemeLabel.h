// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/TextBlock.h>

#include <QColor>
#include <QFont>
#include <QLabel>

#include <vector>

namespace diary {

// A text with exactly its own font and colour: plain, not selectable, read out as static text. Every
// paragraph begins on the side of its own writing direction.
//
// A long text that wraps is painted before all of it is laid out. Its height is estimated until then, and
// told anew when it is known.
class ThemeLabel : public QLabel {
    Q_OBJECT

public:
    // Lengths are in logical pixels, and mean what they mean to a TextBlock.
    struct Style {
        QFont font;
        QColor color;
        double lineSpacing = 0;
        double lineHeightMultiple = 1;
        double paragraphSpacing = 0;
        bool wraps = false; // at the label's width; else the label is never narrower than its text

        bool operator==(const Style &) const = default;
    };

    ThemeLabel(const QString &text, const Style &style, QWidget *parent = nullptr);

    const Style &textStyle() const { return m_style; }
    void setTextStyle(const Style &style);
    void setColor(const QColor &color);

    // From the top of the label to the line on which the first line's letters stand.
    double firstBaseline() const;
    // As shown at the label's size.
    std::vector<TextBlock::Line> lines() const;

    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TextBlock &laidOut(double width) const;
    void layOutRest();
    // Of the text at the label's size, which stands in the middle of its height.
    QPointF origin() const;

    Style m_style;
    mutable TextBlock m_block;    // at the width asked for last
    mutable TextBlock m_unbroken; // where the text wraps: as wide as it needs, which hints are about
    bool m_isLayingOutRest = false;
};

// A label of one line, or of as many as the text has, that takes the room its text needs. The kern is added
// after every character, in logical pixels.
ThemeLabel *themeLabel(const QString &text, QFont font, const QColor &color, double kern,
                       QWidget *parent = nullptr);

} // namespace diary

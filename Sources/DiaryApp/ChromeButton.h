// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/HoverView.h>
#include <DiaryApp/TextLine.h>

#include <QColor>
#include <QFont>

namespace diary {

// A button that is only its text, on a rounded ground while the pointer is over it. It is as large as its
// text and the padding, and changes its size with the text.
class ChromeButton : public HoverView {
    Q_OBJECT

public:
    struct Style {
        QFont font;
        QColor normalColor;
        QColor hoverColor;
        int horizontalPadding = 0; // both sides together
        int verticalPadding = 0;   // above and below together
    };

    ChromeButton(const QString &text, const Style &style, QWidget *parent = nullptr);

    const QString &text() const { return m_text; }
    // Also the accessible name, unless another one was set.
    void setText(const QString &text);

    // The text's own rectangle.
    QRect labelRect() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TextLine line() const;

    Style m_style;
    QString m_text;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/TextLine.h>

#include <QColor>
#include <QFont>
#include <QLabel>

namespace diary {

// One line of text that is shortened with an ellipsis when it does not fit; its tool tip then tells the
// whole.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    ElidedLabel(const QFont &font, const QColor &color, Qt::TextElideMode mode, QWidget *parent = nullptr);

    void setAppearance(const QFont &font, const QColor &color, Qt::TextElideMode mode);
    const QColor &color() const { return m_color; }
    // What is to be read at the present width.
    QString shownText() const;
    // Of the whole text.
    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    TextLine line() const;

    QColor m_color;
    Qt::TextElideMode m_mode;
};

} // namespace diary

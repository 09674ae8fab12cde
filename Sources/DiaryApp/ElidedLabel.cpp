// SPDX-License-Identifier: MIT
#include <DiaryApp/ElidedLabel.h>

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace diary {

ElidedLabel::ElidedLabel(const QFont &font, const QColor &color, Qt::TextElideMode mode, QWidget *parent)
    : QLabel(parent), m_color(color), m_mode(mode) {
    setTextFormat(Qt::PlainText);
    setFont(font);
}

void ElidedLabel::setAppearance(const QFont &font, const QColor &color, Qt::TextElideMode mode) {
    m_color = color;
    m_mode = mode;
    setFont(font);
    update();
}

QString ElidedLabel::shownText() const {
    return line().shownText(width());
}

QSize ElidedLabel::sizeHint() const {
    return line().naturalSize();
}

bool ElidedLabel::event(QEvent *event) {
    if (event->type() != QEvent::ToolTip)
        return QLabel::event(event);
    if (sizeHint().width() > width())
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text().toHtmlEscaped(), this);
    else
        event->ignore();
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    line().paint(painter, rect(), m_color);
}

TextLine ElidedLabel::line() const {
    return {text(), font(), m_mode};
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/ThemeBox.h>

#include <QPaintEvent>
#include <QPainter>

namespace diary {

ThemeBox::ThemeBox(const QColor &color, QWidget *parent) : QWidget(parent) {
    setColor(color);
}

void ThemeBox::setColor(const QColor &color) {
    m_color = color;
    // Lets what lies beneath be left out.
    setAttribute(Qt::WA_OpaquePaintEvent, color.alpha() == 255);
    update();
}

void ThemeBox::paintEvent(QPaintEvent *event) {
    QPainter(this).fillRect(event->rect(), m_color);
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/RuleView.h>

#include <QPainter>

namespace diary {

RuleView::RuleView(const QColor &color, Qt::Orientation orientation, QWidget *parent)
    : QWidget(parent), m_color(color) {
    if (orientation == Qt::Horizontal)
        setFixedHeight(1);
    else
        setFixedWidth(1);
}

void RuleView::paintEvent(QPaintEvent *) {
    QPainter(this).fillRect(rect(), m_color);
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/IconButton.h>
#include <DiaryApp/Symbols.h>
#include <DiaryApp/Theme.h>

#include <QPainter>

namespace diary {

namespace {

constexpr QSize buttonSize{34, 26};
// Whole pixels, so that straight lines stay sharp.
constexpr QPoint symbolCentre{17, 13};
constexpr double cornerRadius = 6;

} // namespace

IconButton::IconButton(const QString &symbolName, const QString &label, QWidget *parent)
    : HoverView(parent), m_outline(symbolOutline(symbolName)) {
    setFixedSize(buttonSize);
    setToolTip(label);
    setAccessibleName(label);
}

QSize IconButton::sizeHint() const {
    return buttonSize;
}

void IconButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintHoverBackground(painter, cornerRadius);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(symbolCentre);
    painter.fillPath(m_outline, !isEnabled()  ? Theme::placeholder()
                                : isHovered() ? Theme::inkTitle()
                                              : Theme::chevron());
    painter.resetTransform();
    paintFocusRing(painter, rect(), cornerRadius);
}

} // namespace diary

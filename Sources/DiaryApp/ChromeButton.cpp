// SPDX-License-Identifier: MIT
#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/Theme.h>

#include <QPainter>

namespace diary {

namespace {

constexpr double cornerRadius = 5;

} // namespace

ChromeButton::ChromeButton(const QString &text, const Style &style, QWidget *parent)
    : HoverView(parent), m_style(style) {
    setFont(m_style.font);
    setText(text);
    setFixedSize(ChromeButton::sizeHint());
}

void ChromeButton::setText(const QString &text) {
    if (text == m_text)
        return;
    if (accessibleName() == m_text)
        setAccessibleName(text);
    m_text = text;
    setFixedSize(ChromeButton::sizeHint());
    update();
}

QRect ChromeButton::labelRect() const {
    return {QPoint(m_style.horizontalPadding / 2, m_style.verticalPadding / 2), line().naturalSize()};
}

QSize ChromeButton::sizeHint() const {
    return line().naturalSize() + QSize(m_style.horizontalPadding, m_style.verticalPadding);
}

void ChromeButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintHoverBackground(painter, cornerRadius);
    const auto color = !isEnabled()  ? Theme::placeholder()
                       : isHovered() ? m_style.hoverColor
                                     : m_style.normalColor;
    line().paint(painter, labelRect(), color);
    paintFocusRing(painter, rect(), cornerRadius);
}

TextLine ChromeButton::line() const {
    return {m_text, m_style.font};
}

} // namespace diary

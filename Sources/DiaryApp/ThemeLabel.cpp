// SPDX-License-Identifier: MIT
#include <DiaryApp/ThemeLabel.h>

#include <QPaintEvent>
#include <QPainter>
#include <QTimer>

#include <chrono>
#include <cmath>
#include <utility>

namespace diary {

namespace {

constexpr double unlimited = 1 << 22; // wider than any label; greater numbers overflow in the text engine
// Less than a frame, so that nobody waits for an idle moment to end.
constexpr std::chrono::milliseconds idleSlice{4};

} // namespace

ThemeLabel::ThemeLabel(const QString &text, const Style &style, QWidget *parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setText(text);
    setTextStyle(style);
}

void ThemeLabel::setTextStyle(const Style &style) {
    m_style = style;
    setFont(style.font);
    setWordWrap(style.wraps);
    updateGeometry();
    update();
}

void ThemeLabel::setColor(const QColor &color) {
    m_style.color = color;
    update();
}

TextBlock &ThemeLabel::laidOut(double width) const {
    auto &block = m_style.wraps && width == unlimited ? m_unbroken : m_block;
    block.set(text(), {.font = m_style.font,
                       .lineSpacing = m_style.lineSpacing,
                       .lineHeightMultiple = m_style.lineHeightMultiple,
                       .paragraphSpacing = m_style.paragraphSpacing,
                       .wraps = m_style.wraps});
    block.layOut(width);
    return block;
}

QPointF ThemeLabel::origin() const {
    return {0, std::floor((height() - laidOut(width()).height()) / 2)};
}

double ThemeLabel::firstBaseline() const {
    return origin().y() + laidOut(width()).firstBaseline();
}

std::vector<TextBlock::Line> ThemeLabel::lines() const {
    auto lines = laidOut(width()).lines();
    for (auto &line : lines)
        line.rect.translate(origin());
    return lines;
}

bool ThemeLabel::hasHeightForWidth() const {
    return m_style.wraps;
}

int ThemeLabel::heightForWidth(int width) const {
    return static_cast<int>(std::ceil(laidOut(width).height()));
}

QSize ThemeLabel::sizeHint() const {
    auto &block = laidOut(unlimited);
    block.layOutMore(std::chrono::hours(1));
    return {static_cast<int>(std::ceil(block.naturalWidth())), static_cast<int>(std::ceil(block.height()))};
}

QSize ThemeLabel::minimumSizeHint() const {
    const auto size = sizeHint();
    return m_style.wraps ? QSize(0, size.height()) : size;
}

void ThemeLabel::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    laidOut(width()).paint(painter, origin(), m_style.color, event->rect());
    if (m_block.isHeightEstimated() && !std::exchange(m_isLayingOutRest, true))
        QTimer::singleShot(0, this, &ThemeLabel::layOutRest);
}

// In idle moments, once there is something to look at.
void ThemeLabel::layOutRest() {
    auto &block = laidOut(width());
    if (block.isHeightEstimated())
        block.layOutMore(idleSlice);
    m_isLayingOutRest = block.isHeightEstimated();
    if (m_isLayingOutRest) {
        QTimer::singleShot(0, this, &ThemeLabel::layOutRest);
    } else {
        updateGeometry();
        update();
    }
}

ThemeLabel *themeLabel(const QString &text, QFont font, const QColor &color, double kern, QWidget *parent) {
    font.setLetterSpacing(QFont::AbsoluteSpacing, kern);
    ThemeLabel::Style style;
    style.font = font;
    style.color = color;
    return new ThemeLabel(text, style, parent);
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/TextBlock.h>

#include <QPainter>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace diary {

namespace {

QTextOption optionFor(const QString &paragraph) {
    const bool isRightToLeft = paragraph.isRightToLeft();
    QTextOption option(isRightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    option.setTextDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}

} // namespace

void TextBlock::set(const QString &text, const Style &style) {
    // A text that was never set has no paragraph yet, not even an empty one.
    if (text == m_text && style == m_style && !m_paragraphs.empty())
        return;
    m_text = text;
    m_style = style;
    m_width = -1;
    m_paragraphs.clear();
    auto lines = text;
    lines.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    for (const auto &paragraph : lines.split(QLatin1Char('\n'))) {
        auto layout = std::make_unique<QTextLayout>(paragraph, style.font);
        layout->setTextOption(optionFor(paragraph));
        layout->setCacheEnabled(true);
        m_paragraphs.push_back(std::move(layout));
    }
}

void TextBlock::layOut(double width) {
    width = std::max(width, 1.0);
    if (width == m_width)
        return;
    m_width = width;
    m_naturalWidth = 0;
    double y = 0;
    for (const auto &paragraph : m_paragraphs) {
        if (paragraph != m_paragraphs.front())
            y += m_style.paragraphSpacing;
        paragraph->beginLayout();
        for (auto line = paragraph->createLine(); line.isValid(); line = paragraph->createLine()) {
            if (line.lineNumber() > 0)
                y += m_style.lineSpacing;
            line.setLineWidth(width);
            const double height = std::round(line.height() * m_style.lineHeightMultiple);
            line.setPosition({0, y + height - line.height()});
            y += height;
            m_naturalWidth = std::max(m_naturalWidth, line.naturalTextWidth());
        }
        paragraph->endLayout();
    }
    m_height = y;
}

int TextBlock::lineCount() const {
    int count = 0;
    for (const auto &paragraph : m_paragraphs)
        count += paragraph->lineCount();
    return count;
}

QRectF TextBlock::lineRect(int line) const {
    for (const auto &paragraph : m_paragraphs) {
        if (line < paragraph->lineCount())
            return paragraph->lineAt(line).naturalTextRect();
        line -= paragraph->lineCount();
    }
    return {};
}

void TextBlock::paint(QPainter &painter, const QPointF &topLeft, const QColor &color) const {
    painter.setPen(color);
    for (const auto &paragraph : m_paragraphs)
        paragraph->draw(&painter, topLeft);
}

} // namespace diary

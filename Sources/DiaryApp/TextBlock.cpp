// SPDX-License-Identifier: MIT
#include <DiaryApp/TextBlock.h>

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace diary {

QTextOption wrappingOption(const QString &paragraph) {
    const bool isRightToLeft = paragraph.isRightToLeft();
    QTextOption option(isRightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    option.setTextDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}

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
        auto option = wrappingOption(paragraph);
        if (!style.wraps)
            option.setWrapMode(QTextOption::ManualWrap);
        auto layout = std::make_unique<QTextLayout>(paragraph, style.font);
        layout->setTextOption(option);
        layout->setCacheEnabled(true);
        m_paragraphs.push_back(std::move(layout));
    }
}

void TextBlock::layOut(double width) {
    width = std::max(width, 1.0);
    if (width == m_width)
        return;
    m_width = width;
    breakIntoLines();
    stackLines();
}

void TextBlock::breakIntoLines() {
    const QFontMetricsF metrics(m_style.font);
    m_ascent = metrics.ascent();
    m_descent = metrics.descent();
    m_naturalWidth = 0;
    for (const auto &paragraph : m_paragraphs) {
        paragraph->beginLayout();
        for (auto line = paragraph->createLine(); line.isValid(); line = paragraph->createLine()) {
            line.setLineWidth(m_width);
            m_ascent = std::max(m_ascent, line.ascent());
            m_descent = std::max(m_descent, line.descent());
            m_naturalWidth = std::max(m_naturalWidth, line.naturalTextWidth());
        }
        paragraph->endLayout();
    }
    // Whole pixels keep the letters of all lines equally sharp.
    m_ascent = std::ceil(m_ascent);
    m_descent = std::ceil(m_descent);
}

void TextBlock::stackLines() {
    const double lineHeight = std::round((m_ascent + m_descent) * m_style.lineHeightMultiple);
    m_firstBaseline = lineHeight - m_descent;
    double baseline = m_firstBaseline;
    for (const auto &paragraph : m_paragraphs) {
        for (int index = 0; index < paragraph->lineCount(); ++index) {
            auto line = paragraph->lineAt(index);
            line.setPosition({0, baseline - line.ascent()});
            m_height = baseline + m_descent;
            baseline += lineHeight + m_style.lineSpacing;
        }
        baseline += m_style.paragraphSpacing;
    }
}

std::vector<TextBlock::Line> TextBlock::lines() const {
    std::vector<Line> lines;
    for (const auto &paragraph : m_paragraphs) {
        for (int index = 0; index < paragraph->lineCount(); ++index) {
            const auto line = paragraph->lineAt(index);
            const double top = line.y() + line.ascent() - m_ascent;
            lines.push_back(
                {paragraph->text().mid(line.textStart(), line.textLength()),
                 QRectF(line.naturalTextRect().left(), top, line.naturalTextWidth(), m_ascent + m_descent)});
        }
    }
    return lines;
}

void TextBlock::paint(QPainter &painter, const QPointF &topLeft, const QColor &color) const {
    painter.setPen(color);
    for (const auto &paragraph : m_paragraphs)
        paragraph->draw(&painter, topLeft);
}

} // namespace diary

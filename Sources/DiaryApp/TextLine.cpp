// SPDX-License-Identifier: MIT
#include <DiaryApp/TextLine.h>

#include <QFontMetrics>
#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace diary {

namespace {

int widthOf(const QString &line, const QFont &font) {
    return static_cast<int>(std::ceil(QFontMetricsF(font).horizontalAdvance(line)));
}

} // namespace

QString onOneLine(QString text) {
    const auto breaks = [](QChar character) {
        return character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
               character == QChar::ParagraphSeparator;
    };
    // Looked for first, as writing copies the text.
    for (qsizetype index = 0; index < text.size(); ++index) {
        if (breaks(text.at(index)))
            text[index] = QLatin1Char(' ');
    }
    return text;
}

QSize TextLine::naturalSize() const {
    return {widthOf(onOneLine(text), font), QFontMetrics(font).height()};
}

int TextLine::ascent() const {
    return QFontMetrics(font).ascent();
}

QString TextLine::shownText(int width) const {
    const auto line = onOneLine(text);
    return widthOf(line, font) <= width ? line : QFontMetrics(font).elidedText(line, elideMode, width);
}

void TextLine::paint(QPainter &painter, const QRect &rect, const QColor &color) const {
    const QFontMetrics metrics(font);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(rect.left(), rect.top() + (rect.height() - metrics.height()) / 2 + metrics.ascent(),
                     shownText(rect.width()));
}

} // namespace diary

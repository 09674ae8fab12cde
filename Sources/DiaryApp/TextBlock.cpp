// SPDX-License-Identifier: MIT
#include <DiaryApp/TextBlock.h>

#include <QFontMetricsF>
#include <QPainter>
#include <QStringView>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>

namespace diary {

namespace {

// In UTF-16 units; more than any window shows.
constexpr qsizetype longText = 10'000;
// What a few windows show.
constexpr std::size_t mostSeen = 500;
constexpr char32_t codePoints = 0x110000;

bool endsParagraph(QChar unit) {
    return unit == QLatin1Char('\n') || unit == QChar::ParagraphSeparator;
}

bool isMark(char32_t character) {
    const auto category = QChar::category(character);
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_SpacingCombining ||
           category == QChar::Mark_Enclosing;
}

// Finds each character of a text once for each script that it is shaped in. A character that belongs to no
// script is shaped in the one before it, at the beginning of a paragraph in the one behind it.
class CharactersByScript {
public:
    explicit CharactersByScript(QStringView text) {
        for (qsizetype index = 0; index < text.size(); ++index) {
            const QChar unit = text[index];
            if (endsParagraph(unit)) {
                startParagraph();
            } else if (!unit.isSurrogate()) {
                take(unit.unicode());
            } else if (unit.isHighSurrogate() && index + 1 < text.size() &&
                       text[index + 1].isLowSurrogate()) {
                take(QChar::surrogateToUcs4(unit, text[index + 1]));
                ++index;
            }
        }
        startParagraph();
    }

    // One for each script, whose own characters come first.
    std::vector<QString> texts() const {
        std::vector<QString> texts;
        for (const auto &[script, found] : m_found) {
            QString own;
            QString others;
            for (const char32_t character : found.characters)
                (QChar::script(character) == script ? own : others) +=
                    QStringView(QChar::fromUcs4(character));
            texts.push_back(own + others);
        }
        return texts;
    }

private:
    struct Found {
        std::u32string characters;
        std::vector<bool> holds = std::vector<bool>(codePoints);
    };

    void startParagraph() {
        for (const char32_t character : m_leading)
            note(character);
        m_leading.clear();
        m_script = QChar::Script_Common;
        m_present = nullptr;
    }

    void take(char32_t character) {
        const auto script = scriptOf(character);
        if (script > QChar::Script_Common && script != m_script &&
            (m_script == QChar::Script_Common || !isMark(character))) {
            m_script = script;
            m_present = nullptr;
            for (const char32_t leading : m_leading)
                note(leading);
            m_leading.clear();
        }
        if (m_script == QChar::Script_Common)
            m_leading.push_back(character);
        else
            note(character);
    }

    void note(char32_t character) {
        if (!m_present)
            m_present = &m_found[m_script];
        if (!m_present->holds[character]) {
            m_present->holds[character] = true;
            m_present->characters.push_back(character);
        }
    }

    static QChar::Script scriptOf(char32_t character) {
        if (character >= 0x80)
            return QChar::script(character);
        const bool isLetter =
            (character >= U'a' && character <= U'z') || (character >= U'A' && character <= U'Z');
        return isLetter ? QChar::Script_Latin : QChar::Script_Common;
    }

    std::map<QChar::Script, Found> m_found;
    Found *m_present = nullptr; // of the present script
    QChar::Script m_script = QChar::Script_Common;
    std::u32string m_leading; // of the paragraph, while none of its scripts is known
};

} // namespace

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
    qsizetype start = 0;
    for (qsizetype index = 0; index < text.size(); ++index) {
        if (endsParagraph(text[index])) {
            m_paragraphs.push_back({.start = start, .length = index - start, .layout = {}});
            start = index + 1;
        }
    }
    m_paragraphs.push_back({.start = start, .length = text.size() - start, .layout = {}});
    takeFonts();
}

// All lines are as high as the highest, which in a long text may be one that nobody sees for now.
void TextBlock::takeFonts() {
    const QFontMetricsF metrics(m_style.font);
    m_ascent = std::ceil(metrics.ascent());
    m_descent = std::ceil(metrics.descent());
    if (m_style.wraps && m_text.size() > longText) {
        for (const auto &sample : CharactersByScript(m_text).texts()) {
            QTextLayout layout(sample, m_style.font);
            layout.beginLayout();
            for (auto line = layout.createLine(); line.isValid(); line = layout.createLine())
                line.setLineWidth(1 << 20);
            layout.endLayout();
            takeLineHeights(layout);
        }
    }
    m_leastAscent = m_ascent;
    m_leastDescent = m_descent;
}

// Whole pixels keep the letters of all lines equally sharp.
void TextBlock::takeLineHeights(const QTextLayout &layout) {
    for (int index = 0; index < layout.lineCount(); ++index) {
        const auto line = layout.lineAt(index);
        m_ascent = std::max(m_ascent, std::ceil(line.ascent()));
        m_descent = std::max(m_descent, std::ceil(line.descent()));
    }
}

void TextBlock::layOut(double width) {
    width = std::max(width, 1.0);
    if (width == m_width)
        return;
    m_width = width;
    m_laidOut = 0;
    m_lineCount = 0;
    m_textWidth = 0;
    m_naturalWidth = 0;
    m_ascent = m_leastAscent;
    m_descent = m_leastDescent;
    m_seen.clear();
    for (auto &paragraph : m_paragraphs)
        paragraph.layout.reset();
    while (m_laidOut < m_paragraphs.size() && (!m_style.wraps || m_paragraphs[m_laidOut].start < longText))
        layOutNext(Keep::Always);
    m_isHeightEstimated = m_laidOut < m_paragraphs.size();
    m_height = heightOf(m_isHeightEstimated ? estimatedLineCount() : m_lineCount);
}

void TextBlock::layOutMore(std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (m_laidOut < m_paragraphs.size()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return;
        layOutNext(Keep::IfLong);
    }
    m_isHeightEstimated = false;
    m_height = heightOf(m_lineCount);
}

std::unique_ptr<QTextLayout> TextBlock::brokenIntoLines(const Paragraph &paragraph) const {
    const auto text = m_text.mid(paragraph.start, paragraph.length);
    auto option = wrappingOption(text);
    if (!m_style.wraps)
        option.setWrapMode(QTextOption::ManualWrap);
    auto layout = std::make_unique<QTextLayout>(text, m_style.font);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    for (auto line = layout->createLine(); line.isValid(); line = layout->createLine())
        line.setLineWidth(m_width);
    layout->endLayout();
    return layout;
}

void TextBlock::layOutNext(Keep keep) {
    auto &paragraph = m_paragraphs[m_laidOut];
    paragraph.firstLine = m_lineCount;
    paragraph.layout = brokenIntoLines(paragraph);
    takeLineHeights(*paragraph.layout);
    m_lineCount += paragraph.layout->lineCount();
    for (int index = 0; index < paragraph.layout->lineCount(); ++index) {
        const double width = paragraph.layout->lineAt(index).naturalTextWidth();
        m_naturalWidth = std::max(m_naturalWidth, width);
        m_textWidth += width;
    }
    // Where one paragraph is long it also takes long.
    if (keep == Keep::IfLong && paragraph.length < longText)
        paragraph.layout.reset();
    else if (paragraph.start >= longText)
        m_seen.push_back(m_laidOut);
    ++m_laidOut;
}

double TextBlock::lineHeight() const {
    return std::round((m_ascent + m_descent) * m_style.lineHeightMultiple);
}

double TextBlock::firstBaseline() const {
    return lineHeight() - m_descent;
}

double TextBlock::topOf(std::size_t paragraph, qsizetype firstLine) const {
    return static_cast<double>(firstLine) * (lineHeight() + m_style.lineSpacing) +
           static_cast<double>(paragraph) * m_style.paragraphSpacing;
}

double TextBlock::heightOf(qsizetype lineCount) const {
    return topOf(m_paragraphs.size() - 1, lineCount - 1) + lineHeight();
}

// As if the rest of the text were like its beginning.
qsizetype TextBlock::estimatedLineCount() const {
    const double advance = m_textWidth / static_cast<double>(m_paragraphs[m_laidOut].start);
    qsizetype lineCount = m_lineCount;
    for (auto index = m_laidOut; index < m_paragraphs.size(); ++index) {
        const double width = static_cast<double>(m_paragraphs[index].length) * advance;
        lineCount += std::max(static_cast<qsizetype>(std::ceil(width / m_width)), qsizetype{1});
    }
    return lineCount;
}

// Within their paragraph.
void TextBlock::stackLines(const QTextLayout &layout) const {
    for (int index = 0; index < layout.lineCount(); ++index) {
        auto line = layout.lineAt(index);
        line.setPosition({0, firstBaseline() + topOf(0, index) - line.ascent()});
    }
}

std::vector<TextBlock::Line> TextBlock::lines() const {
    std::vector<Line> lines;
    for (std::size_t number = 0; number < m_paragraphs.size(); ++number) {
        const double top = topOf(number, static_cast<qsizetype>(lines.size()));
        const auto layout = brokenIntoLines(m_paragraphs[number]);
        stackLines(*layout);
        for (int index = 0; index < layout->lineCount(); ++index) {
            const auto line = layout->lineAt(index);
            lines.push_back({layout->text().mid(line.textStart(), line.textLength()),
                             QRectF(line.naturalTextRect().left(), top + line.y() + line.ascent() - m_ascent,
                                    line.naturalTextWidth(), m_ascent + m_descent)});
        }
    }
    return lines;
}

void TextBlock::paint(QPainter &painter, const QPointF &topLeft, const QColor &color, const QRectF &exposed) {
    // Letters may reach out of their line.
    const double reach = 2 * lineHeight();
    const auto clip = exposed.adjusted(0, -reach, 0, reach);
    const double top = clip.top() - topLeft.y();
    const double bottom = clip.bottom() - topLeft.y();
    while (m_laidOut < m_paragraphs.size() && topOf(m_laidOut, m_lineCount) < bottom)
        layOutNext(topOf(m_laidOut, m_lineCount) < top ? Keep::IfLong : Keep::Always);
    const auto first = paragraphAt(top);
    auto number = first;
    painter.setPen(color);
    for (; number < m_laidOut; ++number) {
        auto &paragraph = m_paragraphs[number];
        const double y = topOf(number, paragraph.firstLine);
        if (y > bottom)
            break;
        if (!paragraph.layout) {
            paragraph.layout = brokenIntoLines(paragraph);
            m_seen.push_back(number);
        }
        stackLines(*paragraph.layout);
        paragraph.layout->draw(&painter, topLeft + QPointF(0, y), {}, clip);
    }
    forgetAllBut(first, number);
}

void TextBlock::paint(QPainter &painter, const QPointF &topLeft, const QColor &color) {
    paint(painter, topLeft, color, {topLeft, QSizeF(m_width, m_height)});
}

// The last of those laid out that does not begin below.
std::size_t TextBlock::paragraphAt(double y) const {
    std::size_t low = 0;
    std::size_t high = m_laidOut;
    while (high - low > 1) {
        const auto middle = low + (high - low) / 2;
        (topOf(middle, m_paragraphs[middle].firstLine) <= y ? low : high) = middle;
    }
    return low;
}

void TextBlock::forgetAllBut(std::size_t first, std::size_t end) {
    if (m_seen.size() <= mostSeen)
        return;
    std::erase_if(m_seen, [&](std::size_t number) {
        if ((number >= first && number < end) || m_paragraphs[number].length >= longText)
            return false;
        m_paragraphs[number].layout.reset();
        return true;
    });
}

} // namespace diary

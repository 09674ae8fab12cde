// SPDX-License-Identifier: MIT
#include <DiaryApp/MarkdownHighlighter.h>
#include <DiaryApp/Theme.h>

#include <QTextDocument>

namespace diary {

namespace {

using MarkdownScanner::Face;
using MarkdownScanner::Ink;
using MarkdownScanner::Look;
using MarkdownScanner::State;

} // namespace

MarkdownHighlighter::MarkdownHighlighter(const QFont &baseFont, const QColor &baseColor,
                                         QTextDocument *document)
    : QSyntaxHighlighter(document), m_baseFont(baseFont), m_baseColor(baseColor) {
    if (!document->isEmpty())
        rehighlight();
}

void MarkdownHighlighter::highlightBlock(const QString &text) {
    // Before the first line and in lines never visited it is -1.
    const bool isFenced = previousBlockState() == static_cast<int>(State::Fenced);
    const auto line = MarkdownScanner::scan(text, isFenced ? State::Fenced : State::Text);
    for (const auto &run : line.runs)
        setFormat(static_cast<int>(run.start), static_cast<int>(run.length), format(run.look));
    setCurrentBlockState(static_cast<int>(line.state));
}

const QTextCharFormat &MarkdownHighlighter::format(const Look &look) {
    const auto [found, isNew] = m_formats.try_emplace(look);
    auto &format = found->second;
    if (!isNew)
        return format;
    if (look.face != Face::Body)
        format.setFont(font(look.face), QTextCharFormat::FontPropertiesSpecifiedOnly);
    format.setForeground(color(look.ink));
    if (look.isTinted)
        format.setBackground(Theme::hoverBg());
    if (look.isStruck)
        format.setFontStrikeOut(true);
    return format;
}

QFont MarkdownHighlighter::font(Face face) const {
    const auto heading = [this](int larger) {
        auto font = Theme::serif(m_baseFont.pixelSize() + larger);
        font.setBold(true);
        return font;
    };
    auto font = m_baseFont;
    switch (face) {
    case Face::Body:
        break;
    case Face::Bold:
        font.setBold(true);
        break;
    case Face::Italic:
        font.setItalic(true);
        break;
    case Face::Mono:
        return Theme::code(m_baseFont.pixelSize() - 2);
    case Face::Heading1:
        return heading(6);
    case Face::Heading2:
        return heading(4);
    case Face::Heading3:
        return heading(2);
    case Face::Heading4:
    case Face::Heading5:
    case Face::Heading6:
        return heading(0);
    }
    return font;
}

QColor MarkdownHighlighter::color(Ink ink) const {
    switch (ink) {
    case Ink::Base:
        return m_baseColor;
    case Ink::Accent:
        return Theme::accent();
    case Ink::Source:
        return Theme::inkSource();
    case Ink::Muted:
        return Theme::daySubText();
    case Ink::Faint:
        return Theme::faint();
    }
    return m_baseColor;
}

} // namespace diary

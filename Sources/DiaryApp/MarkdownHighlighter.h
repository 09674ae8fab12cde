// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/MarkdownScanner.h>

#include <QColor>
#include <QFont>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>

#include <map>

namespace diary {

// Shows the Markdown in a document while it is typed: headings larger, emphasis bold or italic, code on a
// ground of its own, and the marks themselves dimmed. Belongs to the document.
//
// The looks are additional formats of the lines' layouts: the text, its undo history and its own formats do
// not know of them. Plain text keeps the document's own font, which should be the base font. After each
// change the changed lines are styled again, and those after them as far as a code fence was opened or
// closed.
class MarkdownHighlighter : public QSyntaxHighlighter {
    Q_OBJECT

public:
    // What the document holds already is styled at once, and reported as changed like with `rehighlight`.
    MarkdownHighlighter(const QFont &baseFont, const QColor &baseColor, QTextDocument *document);

    // The format that stands for a look.
    const QTextCharFormat &format(const MarkdownScanner::Look &look);

protected:
    void highlightBlock(const QString &text) override;

private:
    QFont font(MarkdownScanner::Face face) const;
    QColor color(MarkdownScanner::Ink ink) const;

    QFont m_baseFont;
    QColor m_baseColor;
    std::map<MarkdownScanner::Look, QTextCharFormat> m_formats; // those used so far
};

} // namespace diary

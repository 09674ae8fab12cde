// SPDX-License-Identifier: MIT
#include "Support/ReferenceMarkdown.h"

#include <DiaryApp/MarkdownHighlighter.h>
#include <DiaryApp/Theme.h>

#include <QPlainTextDocumentLayout>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

namespace diary {
namespace {

using MarkdownScanner::Face;
using MarkdownScanner::Ink;
using MarkdownScanner::Look;

constexpr int baseSize = 17;
const QColor baseColor(1, 2, 3);

// Tells how many lines were styled.
class CountingHighlighter : public MarkdownHighlighter {
public:
    using MarkdownHighlighter::MarkdownHighlighter;

    int takeCount() { return std::exchange(m_count, 0); }

protected:
    void highlightBlock(const QString &text) override {
        ++m_count;
        MarkdownHighlighter::highlightBlock(text);
    }

private:
    int m_count = 0;
};

class MarkdownHighlighterTest : public ::testing::Test {
protected:
    MarkdownHighlighterTest() {
        m_document.setDefaultFont(Theme::serif(baseSize));
        // A document without a layout reports no changes.
        m_document.setDocumentLayout(new QPlainTextDocumentLayout(&m_document));
    }

    void setText(const char *text) { m_document.setPlainText(QString::fromUtf8(text)); }

    QTextCursor cursorAt(int position, int anchor = -1) {
        QTextCursor cursor(&m_document);
        cursor.setPosition(anchor < 0 ? position : anchor);
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        return cursor;
    }

    // What the layout adds to a character.
    QTextCharFormat formatAt(int position) const {
        const auto block = m_document.findBlock(position);
        QTextCharFormat result;
        for (const auto &range : block.layout()->formats()) {
            const int at = position - block.position();
            if (at >= range.start && at < range.start + range.length)
                result.merge(range.format);
        }
        return result;
    }

    // One format for each character; those that end a line are left out.
    std::vector<QTextCharFormat> formats() const {
        std::vector<QTextCharFormat> result;
        for (auto block = m_document.begin(); block.isValid(); block = block.next()) {
            for (int at = 0; at + 1 < block.length(); ++at)
                result.push_back(formatAt(block.position() + at));
        }
        return result;
    }

    std::vector<QTextCharFormat> referenceFormats() {
        auto text = m_document.toRawText();
        text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
        const auto looks = testing::referenceLooks(text);
        std::vector<QTextCharFormat> result;
        for (std::size_t at = 0; at < looks.size(); ++at) {
            if (text[static_cast<qsizetype>(at)] != QLatin1Char('\n'))
                result.push_back(m_highlighter.format(looks[at]));
        }
        return result;
    }

    QTextDocument m_document;
    CountingHighlighter m_highlighter{Theme::serif(baseSize), baseColor, &m_document};
};

TEST_F(MarkdownHighlighterTest, hasAFormatForEveryFace) {
    const auto serif = Theme::serif(baseSize);
    const struct {
        Face face;
        QStringList families;
        int size;
        int weight;
        bool isItalic;
    } rows[] = {
        {Face::Bold, serif.families(), 17, QFont::Bold, false},
        {Face::Italic, serif.families(), 17, QFont::Normal, true},
        {Face::Mono, Theme::code(15).families(), 15, QFont::Normal, false},
        {Face::Heading1, serif.families(), 23, QFont::Bold, false},
        {Face::Heading2, serif.families(), 21, QFont::Bold, false},
        {Face::Heading3, serif.families(), 19, QFont::Bold, false},
        {Face::Heading4, serif.families(), 17, QFont::Bold, false},
        {Face::Heading5, serif.families(), 17, QFont::Bold, false},
        {Face::Heading6, serif.families(), 17, QFont::Bold, false},
    };
    for (const auto &row : rows) {
        const auto font = m_highlighter.format({row.face, Ink::Base, false, false}).font();
        const auto number = static_cast<int>(row.face);
        EXPECT_EQ(font.families(), row.families) << number;
        EXPECT_EQ(font.pixelSize(), row.size) << number;
        EXPECT_EQ(font.weight(), row.weight) << number;
        EXPECT_EQ(font.italic(), row.isItalic) << number;
    }
    EXPECT_FALSE(m_highlighter.format({}).hasProperty(QTextFormat::FontFamilies));
}

TEST_F(MarkdownHighlighterTest, hasAColourForEveryInk) {
    const struct {
        Ink ink;
        QColor color;
    } rows[] = {{Ink::Base, baseColor},
                {Ink::Accent, Theme::accent()},
                {Ink::Source, Theme::inkSource()},
                {Ink::Muted, Theme::daySubText()},
                {Ink::Faint, Theme::faint()}};
    for (const auto &[ink, color] : rows)
        EXPECT_EQ(m_highlighter.format({Face::Body, ink, false, false}).foreground().color(), color);
}

TEST_F(MarkdownHighlighterTest, tintsAndStrikes) {
    EXPECT_EQ(m_highlighter.format({Face::Mono, Ink::Accent, true, false}).background().color(),
              Theme::hoverBg());
    EXPECT_EQ(m_highlighter.format({}).background().style(), Qt::NoBrush);
    EXPECT_TRUE(m_highlighter.format({Face::Body, Ink::Muted, false, true}).fontStrikeOut());
    EXPECT_FALSE(m_highlighter.format({}).fontStrikeOut());
}

TEST_F(MarkdownHighlighterTest, stylesWhatIsThereBeforeIt) {
    QTextDocument document;
    document.setPlainText(QStringLiteral("# a\n**b**"));
    const MarkdownHighlighter highlighter(Theme::serif(baseSize), baseColor, &document);
    EXPECT_EQ(document.begin().layout()->formats().size(), 2);
    EXPECT_EQ(document.lastBlock().layout()->formats().size(), 3);
}

TEST_F(MarkdownHighlighterTest, leavesNoStylesBehind) {
    QTextDocument document;
    document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
    document.setPlainText(QStringLiteral("# a\n**b**"));
    {
        const MarkdownHighlighter highlighter(Theme::serif(baseSize), baseColor, &document);
        EXPECT_FALSE(document.begin().layout()->formats().isEmpty());
    }
    EXPECT_TRUE(document.begin().layout()->formats().isEmpty());
    EXPECT_EQ(document.toPlainText(), QStringLiteral("# a\n**b**"));
}

TEST_F(MarkdownHighlighterTest, stylesAWholeText) {
    setText("# Head *slant*\n\n> quote\n- item `code` ~~gone~~\n## 2024\n```\nfenced **x**\n```\n[a](b) "
            "---\n---");
    EXPECT_EQ(formats(), referenceFormats());
    EXPECT_TRUE(formatAt(0).fontWeight() == QFont::Bold);
}

TEST_F(MarkdownHighlighterTest, restylesABoldWordWhileTypingWithinIt) {
    setText("a **bold** word");
    cursorAt(6).insertText(QStringLiteral("*"));
    EXPECT_EQ(formatAt(5).fontWeight(), QFont::Normal);
    EXPECT_EQ(formats(), referenceFormats());
    cursorAt(7).deletePreviousChar();
    EXPECT_EQ(formatAt(5).fontWeight(), QFont::Bold);
    EXPECT_EQ(formats(), referenceFormats());
}

TEST_F(MarkdownHighlighterTest, stylesOnlyTheChangedLine) {
    setText("one\ntwo **b**\nthree\n```\nfour\n```\nfive");
    m_highlighter.takeCount();
    cursorAt(5).insertText(QStringLiteral("x"));
    EXPECT_EQ(m_highlighter.takeCount(), 1);
    cursorAt(5).deleteChar();
    EXPECT_LE(m_highlighter.takeCount(), 2);
}

TEST_F(MarkdownHighlighterTest, stylesTheLinesBehindAFenceThatOpensOrCloses) {
    setText("one\ntwo\nthree\nfour");
    m_highlighter.takeCount();
    cursorAt(0).insertText(QStringLiteral("```"));
    EXPECT_EQ(m_highlighter.takeCount(), 4);
    EXPECT_EQ(formats(), referenceFormats());
    EXPECT_EQ(formatAt(m_document.lastBlock().position()).foreground().color(), Theme::inkSource());

    // Only as far as the fence.
    cursorAt(m_document.findBlockByNumber(2).position()).insertText(QStringLiteral("```"));
    EXPECT_EQ(formats(), referenceFormats());
    m_highlighter.takeCount();
    cursorAt(0).deleteChar();
    EXPECT_EQ(formats(), referenceFormats());
    EXPECT_EQ(formatAt(3).foreground().color(), baseColor);
}

TEST_F(MarkdownHighlighterTest, runsOnceForItsOwnStyling) {
    setText("# a\n**b**\n```\nc");
    m_highlighter.takeCount();
    m_highlighter.rehighlight();
    EXPECT_EQ(m_highlighter.takeCount(), 4);
}

TEST_F(MarkdownHighlighterTest, keepsItsStylesWhenOnlyFormatsChange) {
    setText("a **bold** word");
    const auto before = formats();
    QTextCharFormat format;
    format.setFontUnderline(true);
    cursorAt(8, 3).mergeCharFormat(format);
    EXPECT_EQ(formats(), before);
}

TEST_F(MarkdownHighlighterTest, isNotInTheTextOrItsHistory) {
    setText("plain");
    EXPECT_FALSE(m_document.isUndoAvailable());
    m_document.setModified(false);
    m_highlighter.rehighlight();
    EXPECT_FALSE(m_document.isModified());

    const QSignalSpy changes(&m_document, &QTextDocument::contentsChanged);
    cursorAt(0).insertText(QStringLiteral("**a** "));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(m_document.availableUndoSteps(), 1);
    EXPECT_EQ(cursorAt(3).charFormat(), QTextCharFormat());
    m_document.undo();
    EXPECT_EQ(m_document.toPlainText(), QStringLiteral("plain"));
    EXPECT_FALSE(m_document.isUndoAvailable());
    EXPECT_EQ(formats(), referenceFormats());
    m_document.redo();
    EXPECT_EQ(m_document.toPlainText(), QStringLiteral("**a** plain"));
    EXPECT_EQ(formats(), referenceFormats());
}

TEST_F(MarkdownHighlighterTest, stylesWhatIsTypedIntoAnEditor) {
    QPlainTextEdit editor;
    auto *highlighter = new MarkdownHighlighter(Theme::serif(baseSize), baseColor, editor.document());
    QTest::keyClicks(&editor, QStringLiteral("# Title"));
    const auto ranges = editor.document()->begin().layout()->formats();
    ASSERT_EQ(ranges.size(), 2);
    EXPECT_EQ(ranges[1].format, highlighter->format({Face::Heading1, Ink::Base, false, false}));
    EXPECT_EQ(ranges[1].length, 6);
}

// The state before the joined line stays as it was; only the one behind it changes.
TEST_F(MarkdownHighlighterTest, leavesAFenceThatGoesWhenLinesAreJoined) {
    setText("ab\n```\nxx\ny");
    auto cursor = cursorAt(8, 1);
    ASSERT_EQ(cursor.selectedText().size(), 7);
    cursor.removeSelectedText();
    EXPECT_EQ(m_document.toPlainText(), QStringLiteral("ax\ny"));
    EXPECT_EQ(formats(), referenceFormats());
}

TEST_F(MarkdownHighlighterTest, staysRightThroughRandomEdits) {
    const char *const pieces[] = {"```", "\n```\n", "\n", "\n", "a",      "**b**", "*", "_",   "`",
                                  "# ",  "\n> q",   "x",  "~~", "[a](b)", "\n\n",  " ", "\n- "};
    // NOLINTNEXTLINE(bugprone-random-generator-seed): the same edits in every run.
    std::mt19937 random(45000);
    const auto below = [&](int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); };
    for (int round = 0; round < 3000; ++round) {
        const int last = m_document.characterCount() - 1;
        switch (below(last > 60 ? 3 : 6)) {
        case 0:
        case 1: {
            const int from = below(last + 1);
            cursorAt(std::min(last, from + below(12)), from).removeSelectedText();
            break;
        }
        case 2:
            if (below(2) == 0)
                m_document.undo();
            else
                m_document.redo();
            break;
        default: {
            QString text;
            for (int count = below(4); count >= 0; --count)
                text += QString::fromUtf8(pieces[below(static_cast<int>(std::size(pieces)))]);
            const int from = below(last + 1);
            auto cursor = cursorAt(below(3) == 0 ? std::min(last, from + below(8)) : from, from);
            cursor.insertText(text);
        }
        }
        ASSERT_EQ(formats(), referenceFormats())
            << "round " << round << ": " << m_document.toPlainText().toStdString();
    }
}

} // namespace
} // namespace diary

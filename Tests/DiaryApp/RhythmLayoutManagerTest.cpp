// SPDX-License-Identifier: MIT
#include <DiaryApp/MarkdownHighlighter.h>
#include <DiaryApp/RhythmLayoutManager.h>
#include <DiaryApp/Theme.h>

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace diary {
namespace {

constexpr double fontSize = 16.5;
constexpr int rhythm = 34;

// A styled text on the rhythm of the editor, without a widget.
struct Page {
    explicit Page(const QString &text = QString(), int width = 400) {
        document.setDefaultFont(Theme::serif(fontSize));
        document.setDocumentMargin(0);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        document.setDefaultTextOption(option);
        layout = new RhythmLayoutManager(&document);
        layout->setFixedLineHeight(rhythm);
        layout->setCaretColor(Theme::accent());
        layout->setSelectionColor(Theme::selectionBg());
        document.setDocumentLayout(layout);
        highlighter = new MarkdownHighlighter(Theme::serif(fontSize), Theme::ink(), &document);
        document.setPlainText(text);
        document.setPageSize(QSizeF(width, -1));
    }

    QTextCursor select(int from, int to) {
        QTextCursor cursor(&document);
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        return cursor;
    }

    // The lines' baselines in the page, top to bottom.
    std::vector<double> baselines() const {
        std::vector<double> result;
        for (auto block = document.begin(); block.isValid(); block = block.next()) {
            for (int at = 0; at < block.layout()->lineCount(); ++at) {
                const auto line = block.layout()->lineAt(at);
                result.push_back(block.layout()->position().y() + line.y() + line.ascent());
            }
        }
        return result;
    }

    QImage picture(const QAbstractTextDocumentLayout::PaintContext &context, double ratio = 1) {
        const QSizeF size = layout->documentSize();
        QImage image((size * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::white);
        QPainter painter(&image);
        layout->draw(&painter, context);
        return image;
    }

    QTextDocument document;
    RhythmLayoutManager *layout;
    MarkdownHighlighter *highlighter;
};

QAbstractTextDocumentLayout::PaintContext plainContext() {
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, Qt::black);
    context.cursorPosition = -1;
    return context;
}

// The columns of the rectangle that hold a pixel of the colour; empty when none does.
QRect boundsOf(const QColor &color, const QImage &image) {
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == color.rgba())
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

QRect inkOf(const QImage &image, const QRect &where) {
    QRect bounds;
    for (int y = where.top(); y <= where.bottom(); ++y) {
        for (int x = where.left(); x <= where.right(); ++x) {
            if (qGray(image.pixel(x, y)) < 128)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

void expectSameAsFresh(const Page &page) {
    auto text = page.document.toRawText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    const Page fresh(text, static_cast<int>(page.document.pageSize().width()));
    EXPECT_EQ(page.layout->documentSize(), fresh.layout->documentSize());
    auto mine = page.document.begin();
    auto theirs = fresh.document.begin();
    for (; mine.isValid() && theirs.isValid(); mine = mine.next(), theirs = theirs.next()) {
        ASSERT_EQ(page.layout->blockBoundingRect(mine), fresh.layout->blockBoundingRect(theirs))
            << mine.blockNumber();
        ASSERT_EQ(mine.layout()->lineCount(), theirs.layout()->lineCount()) << mine.blockNumber();
        for (int at = 0; at < mine.layout()->lineCount(); ++at) {
            const auto mineLine = mine.layout()->lineAt(at);
            const auto theirLine = theirs.layout()->lineAt(at);
            ASSERT_EQ(mineLine.textStart(), theirLine.textStart());
            ASSERT_EQ(mineLine.y(), theirLine.y());
            const int position = mine.position() + mineLine.textStart();
            ASSERT_EQ(page.layout->lineRect(position), fresh.layout->lineRect(position));
        }
    }
    EXPECT_EQ(mine.isValid(), theirs.isValid());
}

// What stands at the end of an undo is told by a document twice as well; the sum has to be right at any time.
void expectStackedBoxes(const Page &page) {
    double y = 0;
    for (auto block = page.document.begin(); block.isValid(); block = block.next()) {
        ASSERT_EQ(page.layout->blockBoundingRect(block).top(), y);
        for (int at = 0; at < block.layout()->lineCount(); ++at)
            y += page.layout->lineRect(block.position() + block.layout()->lineAt(at).textStart()).height();
    }
    EXPECT_EQ(page.layout->documentSize().height(), y);
}

TEST(RhythmLayoutManager, hasNoRhythmAtFirst) {
    QTextDocument document(QStringLiteral("text"));
    document.setDefaultFont(Theme::serif(fontSize));
    auto *layout = new RhythmLayoutManager(&document);
    EXPECT_EQ(layout->fixedLineHeight(), 0);
    document.setDocumentLayout(layout);
    document.setPageSize(QSizeF(400, -1));
    const QFontMetricsF metrics(document.defaultFont());
    EXPECT_EQ(layout->documentSize().height(), std::ceil(metrics.ascent() + metrics.descent()));
}

TEST(RhythmLayoutManager, givesEveryLineABoxOfTheSameHeight) {
    const QString texts[] = {
        QStringLiteral("plain"),
        QStringLiteral("**bold** *slanted* `code` ~~gone~~ [a](b)"),
        QStringLiteral("今日は天気がいい"),
        QStringLiteral("שלום עולם"),
        QStringLiteral("🙂 emoji 👩‍👩‍👧‍👦"),
        QStringLiteral("- list\n> quote\n```\nfence\n```\n---"),
        QStringLiteral("\n\n"),
        QStringLiteral("line\u2028separator"),
        QStringLiteral("long enough to need more than one line of the page ").repeated(9),
    };
    for (const auto &text : texts) {
        const Page page(text);
        for (int at = 0; at < page.document.characterCount(); ++at)
            EXPECT_EQ(page.layout->lineRect(at).height(), rhythm) << qPrintable(text) << at;
        expectStackedBoxes(page);
    }
}

TEST(RhythmLayoutManager, givesMoreOnlyToAFontThatNeedsMore) {
    Page page(QStringLiteral("one\ntwo"));
    page.layout->setFixedLineHeight(10);
    const QFontMetricsF metrics(page.document.defaultFont());
    EXPECT_EQ(page.layout->documentSize().height(), 2 * std::ceil(metrics.ascent() + metrics.descent()));
}

TEST(RhythmLayoutManager, centresTheGlyphsInTheirBox) {
    const Page page(QStringLiteral("one\n# heading\nthree"));
    const auto centre = [&](const QFont &font, double baseline) {
        const QFontMetricsF metrics(font);
        return baseline - metrics.ascent() + (metrics.ascent() + metrics.descent()) / 2;
    };
    const auto baselines = page.baselines();
    ASSERT_EQ(baselines.size(), 3U);
    auto heading = Theme::serif(QFontInfo(Theme::serif(fontSize)).pixelSize() + 6);
    heading.setBold(true);
    EXPECT_NEAR(centre(Theme::serif(fontSize), baselines[0]), 0.5 * rhythm, 0.5);
    EXPECT_NEAR(centre(heading, baselines[1]), 1.5 * rhythm, 0.6);
    EXPECT_NEAR(centre(Theme::serif(fontSize), baselines[2]), 2.5 * rhythm, 0.5);
}

TEST(RhythmLayoutManager, leavesASpareHeightOfOnePixelAboveTheText) {
    for (const int spare : {1, 2, 3, 8}) {
        Page page(QStringLiteral("text"));
        const QFontMetricsF metrics(page.document.defaultFont());
        const double natural = metrics.ascent() + metrics.descent();
        page.layout->setFixedLineHeight(natural + spare);
        const double above = spare > 1 ? spare / 2.0 : spare;
        EXPECT_EQ(page.baselines().front(), std::round(above + metrics.ascent())) << spare;
    }
}

TEST(RhythmLayoutManager, keepsTheBaselineWhereAnotherScriptStandsInTheLine) {
    const Page page(QStringLiteral("plain\nplain 今日は\n今日は\nплаin\n🙂"));
    const auto baselines = page.baselines();
    for (std::size_t at = 0; at < baselines.size(); ++at)
        EXPECT_EQ(baselines[at], baselines[0] + rhythm * static_cast<double>(at)) << at;
}

TEST(RhythmLayoutManager, makesAnEmptyLastLineAsTallAsAWrittenOne) {
    EXPECT_EQ(Page().layout->documentSize().height(), rhythm);
    EXPECT_EQ(Page(QStringLiteral("one")).layout->documentSize().height(), rhythm);
    const Page page(QStringLiteral("one\n"));
    EXPECT_EQ(page.layout->documentSize().height(), 2 * rhythm);
    EXPECT_EQ(page.layout->caretRect(4).center().y(), page.layout->caretRect(0).center().y() + rhythm);
    EXPECT_EQ(page.layout->caretRect(4).height(), page.layout->caretRect(0).height());
}

TEST(RhythmLayoutManager, drawsACaretAsHighAsTheText) {
    const Page page(QStringLiteral("one\n# heading"));
    const auto heightFor = [](const QFont &font) {
        const QFontMetricsF metrics(font);
        return std::ceil(metrics.ascent() + metrics.descent()) + 2;
    };
    const auto body = Theme::serif(fontSize);
    auto heading = Theme::serif(QFontInfo(body).pixelSize() + 6);
    heading.setBold(true);
    EXPECT_EQ(page.layout->caretRect(0).height(), heightFor(body));
    EXPECT_EQ(page.layout->caretRect(3).height(), heightFor(body));
    // Before the first character of the paragraph as well as behind any other.
    EXPECT_EQ(page.layout->caretRect(4).height(), heightFor(heading));
    EXPECT_EQ(page.layout->caretRect(9).height(), heightFor(heading));
    EXPECT_GT(heightFor(heading), heightFor(body));
    for (const int at : {0, 3, 4, 9})
        EXPECT_NEAR(page.layout->caretRect(at).center().y(), page.layout->lineRect(at).center().y(), 0.5);
}

TEST(RhythmLayoutManager, paintsTheCaretWhereItIs) {
    Page page(QStringLiteral("one\n# heading\n"));
    for (const int at : {0, 2, 3, 4, 9, 14}) {
        auto context = plainContext();
        context.cursorPosition = at;
        EXPECT_EQ(boundsOf(Theme::accent(), page.picture(context)), page.layout->caretRect(at).toRect())
            << at;
    }
    EXPECT_TRUE(boundsOf(Theme::accent(), page.picture(plainContext())).isNull());
}

TEST(RhythmLayoutManager, keepsTheCaretInsideThePage) {
    const Page page(QStringLiteral("W").repeated(300), 120);
    for (int at = 0; at < page.document.characterCount(); ++at) {
        EXPECT_GE(page.layout->caretRect(at).left(), 0);
        EXPECT_LE(page.layout->caretRect(at).right(), 120);
    }
}

TEST(RhythmLayoutManager, paintsASelectionOverTheWholeBox) {
    Page page(QStringLiteral("one two\nthree"));
    auto context = plainContext();
    context.selections.append({page.select(4, 7), {}});
    const auto bounds = boundsOf(Theme::selectionBg(), page.picture(context));
    EXPECT_EQ(bounds.top(), 0);
    EXPECT_EQ(bounds.height(), rhythm);
    EXPECT_NEAR(bounds.left(), page.layout->caretRect(4).left(), 1);
    EXPECT_NEAR(bounds.right(), page.layout->caretRect(7).left(), 1);
}

TEST(RhythmLayoutManager, paintsTheSelectedLineBreakToo) {
    Page page(QStringLiteral("one\n\nthree"));
    auto context = plainContext();
    context.selections.append({page.select(3, 5), {}});
    const auto image = page.picture(context);
    const int end = static_cast<int>(page.layout->caretRect(3).left());
    EXPECT_EQ(image.pixel(end + 3, rhythm / 2), Theme::selectionBg().rgba());
    EXPECT_EQ(image.pixel(3, rhythm + rhythm / 2), Theme::selectionBg().rgba());
    EXPECT_EQ(image.pixelColor(3, 2 * rhythm + 1), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(end - 6, 1), QColor(Qt::white));
}

TEST(RhythmLayoutManager, startsARightToLeftParagraphAtTheRight) {
    Page page(QStringLiteral("left\nשלום"));
    const auto image = page.picture(plainContext());
    EXPECT_LT(inkOf(image, {0, 0, 400, rhythm}).right(), 100);
    EXPECT_GT(inkOf(image, {0, rhythm, 400, rhythm}).left(), 300);
    // The caret goes from right to left.
    EXPECT_GE(page.layout->caretRect(5).left(), 396);
    EXPECT_LT(page.layout->caretRect(7).left(), page.layout->caretRect(6).left());
    EXPECT_EQ(page.layout->hitTest({398, 1.5 * rhythm}, Qt::FuzzyHit), 5);
}

TEST(RhythmLayoutManager, paintsASelectionOfBothDirectionsInPieces) {
    Page page(QStringLiteral("abc שלום def"));
    auto context = plainContext();
    // The first two Hebrew letters are those at the right of the word.
    context.selections.append({page.select(4, 6), {}});
    const auto bounds = boundsOf(Theme::selectionBg(), page.picture(context));
    const auto line = page.document.begin().layout()->lineAt(0);
    EXPECT_NEAR(bounds.left(), line.cursorToX(5, QTextLine::Trailing), 1);
    EXPECT_NEAR(bounds.right(), line.cursorToX(8), 1);

    context.selections = {{page.select(2, 6), {}}};
    const auto image = page.picture(context);
    const int between = static_cast<int>(line.cursorToX(6, QTextLine::Trailing)) + 1;
    EXPECT_EQ(image.pixelColor(between, 1), QColor(Qt::white));
    EXPECT_EQ(image.pixel(static_cast<int>(line.cursorToX(2)) + 2, 1), Theme::selectionBg().rgba());
}

TEST(RhythmLayoutManager, paintsSelectedBlanksAndTabs) {
    Page page(QStringLiteral("a\tb  c"));
    auto context = plainContext();
    context.selections.append({page.select(0, 6), {}});
    const auto image = page.picture(context);
    const int end = static_cast<int>(page.layout->caretRect(6).left());
    EXPECT_GT(end, 80);
    for (int x = 0; x < end; ++x)
        EXPECT_EQ(image.pixel(x, 1), Theme::selectionBg().rgba()) << x;
}

TEST(RhythmLayoutManager, findsTheCharacterThatWasPointedAt) {
    const Page page(QStringLiteral("first line\nsecond\n\nlast"));
    for (int at = 0; at < page.document.characterCount(); ++at) {
        const auto caret = page.layout->caretRect(at);
        EXPECT_EQ(page.layout->hitTest({caret.left(), page.layout->lineRect(at).center().y()}, Qt::FuzzyHit),
                  at);
        // Anywhere in the box of the line.
        EXPECT_EQ(page.layout->hitTest({caret.left(), page.layout->lineRect(at).top()}, Qt::FuzzyHit), at);
        EXPECT_EQ(
            page.layout->hitTest({caret.left(), page.layout->lineRect(at).bottom() - 0.5}, Qt::FuzzyHit), at);
    }
}

TEST(RhythmLayoutManager, findsTheNearestCharacterOutsideTheText) {
    const Page page(QStringLiteral("first line\nsecond"));
    EXPECT_EQ(page.layout->hitTest({-20, 5}, Qt::FuzzyHit), 0);
    EXPECT_EQ(page.layout->hitTest({390, 5}, Qt::FuzzyHit), 10);
    EXPECT_EQ(page.layout->hitTest({390, -50}, Qt::FuzzyHit), 10);
    EXPECT_EQ(page.layout->hitTest({5, 500}, Qt::FuzzyHit), 17);
    EXPECT_EQ(page.layout->hitTest({1, 5}, Qt::ExactHit), 0);
    EXPECT_EQ(page.layout->hitTest({390, 5}, Qt::ExactHit), -1);
    EXPECT_EQ(page.layout->hitTest({5, 500}, Qt::ExactHit), -1);
    EXPECT_EQ(page.layout->hitTest({5, -1}, Qt::ExactHit), -1);
}

TEST(RhythmLayoutManager, laysOutAnewOnlyWhatChanged) {
    Page page(QStringLiteral("a paragraph\n").repeated(50));
    QSignalSpy updates(page.layout, &QAbstractTextDocumentLayout::update);
    QSignalSpy sizes(page.layout, &QAbstractTextDocumentLayout::documentSizeChanged);
    QTextCursor cursor(page.document.findBlockByNumber(20));
    cursor.insertText(QStringLiteral("x"));
    ASSERT_EQ(updates.size(), 1);
    EXPECT_EQ(updates[0][0].toRectF(), page.layout->blockBoundingRect(cursor.block()));
    EXPECT_EQ(sizes.size(), 0);
    cursor.insertBlock();
    EXPECT_EQ(sizes.size(), 1);
    EXPECT_GE(updates.last()[0].toRectF().bottom(), page.layout->documentSize().height());
}

TEST(RhythmLayoutManager, doesNothingWhenTheWidthIsTheSame) {
    Page page(QStringLiteral("a paragraph\n").repeated(50));
    QSignalSpy updates(page.layout, &QAbstractTextDocumentLayout::update);
    page.document.setPageSize(QSizeF(400, 30));
    EXPECT_EQ(updates.size(), 0);
    page.document.setPageSize(QSizeF(100, 30));
    EXPECT_EQ(updates.size(), 1);
    expectSameAsFresh(page);
}

TEST(RhythmLayoutManager, takesANewFontAndANewTabWidth) {
    Page page(QStringLiteral("a\tparagraph\n").repeated(5));
    const double before = page.layout->caretRect(4).left();
    auto option = page.document.defaultTextOption();
    option.setTabStopDistance(200);
    page.document.setDefaultTextOption(option);
    EXPECT_GT(page.layout->caretRect(4).left(), before + 50);
    page.document.setDefaultFont(Theme::serif(60));
    EXPECT_GT(page.layout->documentSize().height(), 6 * rhythm);
}

TEST(RhythmLayoutManager, clipsNothingOfHugeTexts) {
    const QString texts[] = {
        QStringLiteral("A word and another. ").repeated(45'000 / 20),
        QStringLiteral("l").repeated(5'000),
        QStringLiteral("An ordinary paragraph, as most of a diary is written.\n").repeated(100'000 / 54),
    };
    for (const auto &text : texts) {
        const Page page(text, 568);
        expectStackedBoxes(page);
        for (auto block = page.document.begin(); block.isValid(); block = block.next()) {
            for (int at = 0; at < block.layout()->lineCount(); ++at)
                ASSERT_LE(block.layout()->lineAt(at).naturalTextWidth(), 568 + 12); // blanks may hang out
        }
    }
}

TEST(RhythmLayoutManager, putsAllLinesOnOneGridAtEveryPixelRatio) {
    for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
        Page page(QStringLiteral("HH\nHH\nHH\nHH\nHH"));
        const auto image = page.picture(plainContext(), ratio);
        const int first = inkOf(image, QRect(0, 0, image.width(), static_cast<int>(rhythm * ratio))).bottom();
        for (int line = 1; line < 5; ++line) {
            const QRect box(0, static_cast<int>(std::round(rhythm * ratio * line)), image.width(),
                            static_cast<int>(rhythm * ratio));
            EXPECT_NEAR(inkOf(image, box).bottom(), first + rhythm * ratio * line, ratio == 1.25 ? 1 : 0)
                << ratio << " line " << line;
        }
    }
}

TEST(RhythmLayoutManager, countsTheComposedTextInHitsAndCaret) {
    Page page(QStringLiteral("one two"));
    auto *layout = page.document.begin().layout();
    QTextCursor cursor(&page.document);
    cursor.setPosition(3);
    cursor.beginEditBlock();
    layout->setPreeditArea(3, QStringLiteral("COMPOSED"));
    cursor.endEditBlock();
    const auto line = layout->lineAt(0);
    const double y = rhythm / 2.0;
    EXPECT_EQ(page.layout->hitTest({line.cursorToX(1), y}, Qt::FuzzyHit), 1);
    EXPECT_EQ(page.layout->hitTest({line.cursorToX(7), y}, Qt::FuzzyHit), 3);
    EXPECT_EQ(page.layout->hitTest({line.cursorToX(11 + 2), y}, Qt::FuzzyHit), 5);
    auto context = plainContext();
    context.cursorPosition = -(4 + 2); // behind the fourth composed character
    EXPECT_NEAR(boundsOf(Theme::accent(), page.picture(context)).left(), line.cursorToX(7), 1);
}

TEST(RhythmLayoutManager, looksLikeAFreshLayoutAfterAnyEdits) {
    const QString pieces[] = {QStringLiteral("word "),
                              QStringLiteral("\n"),
                              QStringLiteral("```\n"),
                              QStringLiteral("# heading "),
                              QStringLiteral("`"),
                              QStringLiteral("**bold** "),
                              QStringLiteral("שלום "),
                              QStringLiteral("今日"),
                              QStringLiteral("a long paragraph that needs several lines ").repeated(4),
                              QStringLiteral("\n\n- list\n\u2028x")};
    for (unsigned seed = 1; seed <= 6; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&random](int limit) {
            return std::uniform_int_distribution<>(0, limit - 1)(random);
        };
        Page page(QStringLiteral("start\n\nparagraph ").repeated(10));
        page.document.setUndoRedoEnabled(true);
        QTextCursor cursor(&page.document);
        for (int step = 0; step < 120; ++step) {
            const int length = page.document.characterCount();
            const int at = below(length);
            const int action = below(10);
            if (action < 5) {
                cursor.setPosition(at);
                cursor.insertText(pieces[static_cast<std::size_t>(below(std::size(pieces)))]);
            } else if (action < 7) {
                page.select(at, std::min(length - 1, at + below(40))).removeSelectedText();
            } else if (action == 7) {
                page.document.undo();
            } else if (action == 8) {
                page.document.redo();
            } else {
                page.document.setPageSize(QSizeF(200 + 50 * below(5), -1));
            }
            expectSameAsFresh(page);
            expectStackedBoxes(page);
            if (::testing::Test::HasFailure())
                FAIL() << "seed " << seed << ", step " << step;
        }
    }
}

// Letters so narrow that they take one line, and two as code, where all letters are equally wide.
QString manyParagraphs() {
    return (QString(60, QLatin1Char('i')) + QLatin1Char('\n')).repeated(1000);
}

// At the beginning, so that all that follows becomes code.
void openFence(Page &page) {
    QTextCursor cursor(&page.document);
    cursor.insertText(QStringLiteral("```\n"));
}

bool isCaughtUp(const Page &page) {
    for (auto block = page.document.begin(); block.isValid(); block = block.next()) {
        if (block.layout()->lineCount() == 0)
            return false;
    }
    return true;
}

TEST(RhythmLayoutManager, catchesUpWithStylingFarBelowInIdleMoments) {
    Page page(manyParagraphs(), 400);
    const double before = page.layout->documentSize().height();
    openFence(page);
    const double atOnce = page.layout->documentSize().height();
    EXPECT_TRUE(QTest::qWaitFor([&] { return isCaughtUp(page); }));
    EXPECT_GT(atOnce, before + 34 * 50);
    EXPECT_NE(atOnce, page.layout->documentSize().height());
    expectSameAsFresh(page);
}

TEST(RhythmLayoutManager, catchesUpBeforeItTellsWhereALineIs) {
    Page page(manyParagraphs(), 400);
    openFence(page);
    const Page fresh(QStringLiteral("```\n") + manyParagraphs(), 400);
    const int position = page.document.findBlockByNumber(900).position() + 70;
    EXPECT_EQ(page.layout->lineRect(position), fresh.layout->lineRect(position));
    const QPointF point(40, fresh.layout->documentSize().height() - 100);
    EXPECT_EQ(page.layout->hitTest(point, Qt::FuzzyHit), fresh.layout->hitTest(point, Qt::FuzzyHit));
    expectSameAsFresh(page);
}

TEST(RhythmLayoutManager, catchesUpWithWhatChangesMeanwhile) {
    Page page(manyParagraphs(), 400);
    openFence(page);
    QTextCursor cursor(page.document.findBlockByNumber(600));
    cursor.insertText(QStringLiteral("Between.\n"));
    cursor.setPosition(page.document.findBlockByNumber(300).position());
    cursor.setPosition(page.document.findBlockByNumber(320).position(), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    page.document.undo();
    page.document.undo();
    page.document.undo();
    EXPECT_TRUE(QTest::qWaitFor([&] { return isCaughtUp(page); }));
    expectSameAsFresh(page);
}

} // namespace
} // namespace diary

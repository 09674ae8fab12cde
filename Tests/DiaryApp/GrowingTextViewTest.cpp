// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/MarkdownHighlighter.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPaintEvent>
#include <QRegion>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <memory>
#include <random>

namespace diary {
namespace {

using testing::isFilledWith;
using testing::pictureOf;
using testing::pixelsOf;

constexpr double fontSize = 16.5;
constexpr int rhythm = 34;
constexpr int width = 400;
const QColor textColor(1, 2, 3);

// Counts what is left to the page around the text.
class PageAround : public QWidget {
public:
    int pageKeys = 0;

protected:
    void keyPressEvent(QKeyEvent *event) override {
        pageKeys += event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
    }
};

class PaintedArea : public QObject {
public:
    explicit PaintedArea(QWidget *widget) : m_widget(widget) { widget->installEventFilter(this); }

    QRegion area;

protected:
    bool eventFilter(QObject *object, QEvent *event) override {
        if (object == m_widget && event->type() == QEvent::Paint)
            area += static_cast<QPaintEvent *>(event)->region();
        return false;
    }

private:
    QWidget *m_widget;
};

// A styled editor with the keyboard, between two fields.
class GrowingTextViewTest : public ::testing::Test {
protected:
    GrowingTextViewTest() {
        view->setHighlighter(
            std::make_unique<MarkdownHighlighter>(Theme::serif(fontSize), textColor, view->document()));
        view->onTextChanged = [this](const QString &text) { changes.append(text); };
        auto *layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(before);
        layout->addWidget(view);
        layout->addWidget(after);
        layout->addStretch();
        window.resize(width, 500);
        window.show();
        window.activateWindow();
        view->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        QCoreApplication::processEvents();
    }

    void type(const char *text) { QTest::keyClicks(view, QString::fromUtf8(text)); }

    void paste(QMimeData *data) {
        QApplication::clipboard()->setMimeData(data);
        QTest::keyClick(view, Qt::Key_V, Qt::ControlModifier);
    }

    void moveCaretTo(int position) {
        auto cursor = view->textCursor();
        cursor.setPosition(position);
        view->setTextCursor(cursor);
    }

    void compose(const QString &text, int caret, const QString &commit = QString()) {
        QList<QInputMethodEvent::Attribute> attributes;
        if (!text.isEmpty())
            attributes.append({QInputMethodEvent::Cursor, caret, 1, {}});
        QInputMethodEvent event(text, attributes);
        event.setCommitString(commit);
        QApplication::sendEvent(view, &event);
    }

    QImage onScreen() { return window.screen()->grabWindow(window.winId()).toImage(); }

    QPoint pointAt(int position) {
        auto cursor = view->textCursor();
        cursor.setPosition(position);
        return view->cursorRect(cursor).center() + QPoint(1, 0);
    }

    // The weight that a character is shown with.
    QFont::Weight weightAt(int position) const {
        const auto block = view->document()->findBlock(position);
        auto weight = QFont::Normal;
        for (const auto &range : block.layout()->formats()) {
            const int at = position - block.position();
            if (at >= range.start && at < range.start + range.length)
                weight = range.format.font().weight();
        }
        return weight;
    }

    int heightOf(const QString &text) {
        view->setText(text);
        return view->heightForWidth(width);
    }

    PageAround window;
    QLineEdit *before = new QLineEdit;
    GrowingTextView *view = GrowingTextView::make(fontSize, textColor);
    QLineEdit *after = new QLineEdit;
    QStringList changes;
};

TEST(GrowingTextView, roundsTheLineHeightToAWholePixel) {
    const struct {
        double fontSize;
        int lineHeight;
    } rows[] = {{16.5, 34}, {17, 35}, {16, 33}, {10, 21}, {20, 41}};
    for (const auto &row : rows) {
        const std::unique_ptr<GrowingTextView> view(GrowingTextView::make(row.fontSize, textColor));
        EXPECT_EQ(view->fixedLineHeight(), row.lineHeight) << row.fontSize;
        view->setText(QStringLiteral("a\nb\nc\nd\n"));
        EXPECT_EQ(view->heightForWidth(width), 5 * row.lineHeight + 4) << row.fontSize;
    }
}

TEST(GrowingTextView, isPlainAndScrollsNothing) {
    const std::unique_ptr<GrowingTextView> view(GrowingTextView::make(fontSize, textColor));
    EXPECT_FALSE(view->acceptRichText());
    EXPECT_TRUE(view->isUndoRedoEnabled());
    EXPECT_EQ(view->autoFormatting(), QTextEdit::AutoNone);
    EXPECT_EQ(view->document()->documentMargin(), 0);
    EXPECT_EQ(view->frameWidth(), 0);
    EXPECT_FALSE(view->isInert());
    EXPECT_FALSE(view->onTextChanged);
    EXPECT_FALSE(view->onCaretMoved);
    EXPECT_EQ(view->text(), QString());
}

TEST_F(GrowingTextViewTest, isAtLeastAsHighAsTwoLines) {
    EXPECT_EQ(heightOf(QString()), 76);
    EXPECT_EQ(heightOf(QStringLiteral("one")), 76);
    EXPECT_EQ(heightOf(QStringLiteral("one\ntwo")), 76);
    EXPECT_EQ(heightOf(QStringLiteral("one\ntwo\n")), 3 * rhythm + 4);
    EXPECT_EQ(heightOf(QStringLiteral("one\ntwo\nthree\nfour")), 4 * rhythm + 4);
    EXPECT_EQ(view->sizeHint().height(), 4 * rhythm + 4);
    EXPECT_EQ(view->minimumSizeHint().height(), 76);
}

TEST_F(GrowingTextViewTest, growsAndShrinksWithWhatIsTyped) {
    type("one");
    QTest::keyClick(view, Qt::Key_Return);
    QTest::keyClick(view, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(view->height(), 3 * rhythm + 4);
    QTest::keyClick(view, Qt::Key_Backspace);
    QCoreApplication::processEvents();
    EXPECT_EQ(view->height(), 76);
    EXPECT_EQ(view->verticalScrollBar()->maximum(), 0);
}

TEST_F(GrowingTextViewTest, isHigherWhereItIsNarrower) {
    view->setText(QStringLiteral("some words that need two lines or more of the page ").repeated(4));
    const int wide = view->heightForWidth(width);
    EXPECT_GT(view->heightForWidth(width / 2), wide);
    EXPECT_EQ(view->heightForWidth(width), wide);
    window.resize(width / 2, 900);
    QCoreApplication::processEvents();
    EXPECT_EQ(view->height(), view->heightForWidth(width / 2));
    EXPECT_GT(view->height(), wide);
    // A new height alone changes nothing.
    const int height = view->sizeHint().height();
    window.resize(width / 2, 950);
    QCoreApplication::processEvents();
    EXPECT_EQ(view->sizeHint().height(), height);
}

TEST_F(GrowingTextViewTest, givesBackEveryCharacterThatWasSet) {
    const QString texts[] = {
        QStringLiteral("plain"),
        QStringLiteral("two\n\n\nparagraphs\n"),
        QStringLiteral("no-break\u00A0space and narrow\u202Fno-break space"),
        QStringLiteral("🙂 👩‍👩‍👧‍👦 𠮷"),
        QStringLiteral("שלום, مرحبا"),
        QStringLiteral("  blanks \t at the ends  "),
        QStringLiteral("line\u2028separator"),
        QString(),
    };
    for (const auto &text : texts) {
        view->setText(text);
        EXPECT_EQ(view->text(), text);
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(changes.isEmpty());
}

TEST_F(GrowingTextViewTest, tellsEveryChangeOnce) {
    view->setText(QStringLiteral("no-break\u00A0"));
    view->moveCursor(QTextCursor::End);
    type("ab");
    QTest::keyClick(view, Qt::Key_Return);
    EXPECT_EQ(changes, QStringList({QStringLiteral("no-break\u00A0a"), QStringLiteral("no-break\u00A0ab"),
                                    QStringLiteral("no-break\u00A0ab\n")}));
}

TEST_F(GrowingTextViewTest, tellsNothingOfStylingOrCaret) {
    view->setText(QStringLiteral("**bold**\n```\ncode"));
    view->setHighlighter(
        std::make_unique<MarkdownHighlighter>(Theme::serif(fontSize), textColor, view->document()));
    QCoreApplication::processEvents();
    view->moveCursor(QTextCursor::End);
    view->selectAll();
    EXPECT_TRUE(changes.isEmpty());
    // A fence restyles everything below, in the same change.
    moveCaretTo(0);
    type("```");
    EXPECT_EQ(changes.size(), 3);
}

TEST_F(GrowingTextViewTest, undoesAndRedoesTypingAsOneAction) {
    view->setText(QStringLiteral("kept "));
    view->moveCursor(QTextCursor::End);
    type("**gone**");
    QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(view->text(), QStringLiteral("kept "));
    EXPECT_EQ(changes.last(), QStringLiteral("kept "));
    EXPECT_FALSE(view->document()->isUndoAvailable());
    QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(view->text(), QStringLiteral("kept **gone**"));
    EXPECT_EQ(changes.size(), 8 + 2);
    EXPECT_EQ(weightAt(8), QFont::Bold);
}

TEST_F(GrowingTextViewTest, startsANewUndoHistoryWithAnotherText) {
    type("typed");
    view->setText(QStringLiteral("other"));
    EXPECT_FALSE(view->document()->isUndoAvailable());
    QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(view->text(), QStringLiteral("other"));
}

TEST_F(GrowingTextViewTest, keepsTheUndoHistoryWhenTheSameTextIsSet) {
    type("typed");
    view->setText(QStringLiteral("typed"));
    QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(view->text(), QString());
}

TEST_F(GrowingTextViewTest, keepsTheCaretWhenTheTextIsReplaced) {
    view->setText(QStringLiteral("a long text"));
    moveCaretTo(7);
    view->setText(QStringLiteral("a longer text"));
    EXPECT_EQ(view->textCursor().position(), 7);
    view->setText(QStringLiteral("short"));
    EXPECT_EQ(view->textCursor().position(), 5);
}

TEST_F(GrowingTextViewTest, typesPlainTextWhateverStandsBeside) {
    view->setText(QStringLiteral("**bold**"));
    view->moveCursor(QTextCursor::End);
    type(" x");
    EXPECT_EQ(weightAt(3), QFont::Bold);
    EXPECT_EQ(weightAt(9), QFont::Normal);
    EXPECT_EQ(view->textCursor().charFormat().fontWeight(), QFont::Normal);
    moveCaretTo(4);
    EXPECT_NE(view->currentCharFormat().fontWeight(), QFont::Bold);
}

TEST_F(GrowingTextViewTest, pastesPlainTextOnly) {
    auto *data = new QMimeData;
    data->setHtml(QStringLiteral("<h1>Big</h1><b>bold</b>"));
    data->setText(QStringLiteral("Big\r\nbold\u00A0end\rx"));
    paste(data);
    EXPECT_EQ(changes, QStringList(QStringLiteral("Big\nbold\u00A0end\nx")));
    for (auto block = view->document()->begin(); block.isValid(); block = block.next()) {
        EXPECT_FALSE(block.charFormat().font().bold());
        EXPECT_EQ(block.blockFormat().headingLevel(), 0);
    }
    QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(view->text(), QString());
}

TEST_F(GrowingTextViewTest, pastesNothingWithoutText) {
    auto *image = new QMimeData;
    image->setImageData(QImage(4, 4, QImage::Format_RGB32));
    paste(image);
    auto *html = new QMimeData;
    html->setHtml(QStringLiteral("<b>bold</b>"));
    paste(html);
    EXPECT_EQ(view->text(), QString());
    EXPECT_TRUE(changes.isEmpty());
}

TEST_F(GrowingTextViewTest, copiesPlainTextWithEveryCharacter) {
    view->setText(QStringLiteral("**no-break\u00A0space**\nline\u2028end"));
    view->selectAll();
    QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
    const auto *data = QApplication::clipboard()->mimeData();
    EXPECT_EQ(data->text(), view->text());
    EXPECT_FALSE(data->hasHtml());
    QTest::keyClick(view, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(view->text(), QString());
}

TEST_F(GrowingTextViewTest, takesADroppedText) {
    view->setText(QStringLiteral("one two"));
    QMimeData data;
    data.setText(QStringLiteral("dropped "));
    data.setHtml(QStringLiteral("<b>dropped</b>"));
    const auto where = pointAt(4);
    QDragEnterEvent enter(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &drop);
    EXPECT_EQ(changes, QStringList(QStringLiteral("one dropped two")));
}

TEST_F(GrowingTextViewTest, breaksAParagraphWithShiftReturnToo) {
    type("a");
    QTest::keyClick(view, Qt::Key_Return, Qt::ShiftModifier);
    type("b");
    EXPECT_EQ(view->text(), QStringLiteral("a\nb"));
}

TEST_F(GrowingTextViewTest, movesWordByWord) {
    view->setText(QStringLiteral("one two three"));
    view->moveCursor(QTextCursor::End);
    QTest::keyClick(view, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(view->textCursor().position(), 8);
    QTest::keyClick(view, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(view->textCursor().position(), 4);
    QTest::keyClick(view, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(view->textCursor().position(), 8);
}

TEST_F(GrowingTextViewTest, movesLineByLineThroughWrappedText) {
    view->setText(QStringLiteral("some words that need lines of the page ").repeated(5));
    moveCaretTo(3);
    const int top = view->caretRect().top();
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(view->caretRect().top(), top + rhythm);
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(view->caretRect().top(), top + 2 * rhythm);
    QTest::keyClick(view, Qt::Key_Up);
    QTest::keyClick(view, Qt::Key_Up);
    EXPECT_EQ(view->textCursor().position(), 3);
}

TEST_F(GrowingTextViewTest, typesTabsAndLeavesByShiftTabAndControlTab) {
    QTest::keyClick(view, Qt::Key_Tab);
    EXPECT_EQ(view->text(), QStringLiteral("\t"));
    EXPECT_TRUE(view->hasFocus());
    QTest::keyClick(view, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(before->hasFocus());
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_TRUE(after->hasFocus());
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(before->hasFocus());
    EXPECT_EQ(view->text(), QStringLiteral("\t"));
}

TEST_F(GrowingTextViewTest, leavesPageKeysAndWheelToThePage) {
    view->setText(QStringLiteral("line\n").repeated(40));
    QTest::keyClick(view, Qt::Key_PageDown);
    QTest::keyClick(view, Qt::Key_PageUp);
    EXPECT_EQ(window.pageKeys, 2);
    EXPECT_EQ(view->textCursor().position(), 0);
    QWheelEvent wheel({50, 50}, view->mapToGlobal(QPointF(50, 50)), {0, -120}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view->viewport(), &wheel);
    EXPECT_FALSE(wheel.isAccepted());
}

TEST_F(GrowingTextViewTest, putsTheCaretWhereItIsClicked) {
    view->setText(QStringLiteral("first\nsecond\nthird\nfourth"));
    QCoreApplication::processEvents();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, pointAt(9));
    EXPECT_EQ(view->textCursor().position(), 9);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, {width - 10, rhythm / 2});
    EXPECT_EQ(view->textCursor().position(), 5);
    // In the box of the line, above its glyphs.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, {pointAt(14).x(), 2 * rhythm + 1});
    EXPECT_EQ(view->textCursor().position(), 14);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, {3, view->height() - 1});
    EXPECT_EQ(view->textCursor().position(), view->text().size());
}

TEST_F(GrowingTextViewTest, selectsWordsAndParagraphsByClicks) {
    view->setText(QStringLiteral("one **two** three\nnext"));
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, pointAt(7));
    EXPECT_EQ(view->textCursor().selectedText(), QStringLiteral("two"));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, pointAt(7));
    EXPECT_EQ(view->textCursor().selectionStart(), 0);
    EXPECT_EQ(view->textCursor().selectionEnd(), 18); // with the line break
}

TEST_F(GrowingTextViewTest, paintsItsColours) {
    view->setText(QStringLiteral("II\n"));
    view->moveCursor(QTextCursor::End);
    QCoreApplication::processEvents();
    const auto picture = pictureOf(*view->viewport());
    EXPECT_GT(pixelsOf(textColor, picture, {0, 0, 40, rhythm}), 0);
    EXPECT_TRUE(isFilledWith(Theme::accent(), picture, view->caretRect()));
    EXPECT_EQ(pixelsOf(Theme::accent(), picture, view->rect()),
              view->caretRect().width() * view->caretRect().height() * 16);
    view->selectAll();
    EXPECT_TRUE(isFilledWith(Theme::selectionBg(), pictureOf(*view->viewport()), {0, 0, 4, 4}));
    EXPECT_GT(pixelsOf(textColor, pictureOf(*view->viewport()), {0, 0, 40, rhythm}), 0);
}

// What stands on the screen, painted piece by piece, is what is painted as a whole.
TEST_F(GrowingTextViewTest, leavesNoTraceOfACaretOrASelection) {
    view->setText(QStringLiteral("one two three\n# heading\nfour"));
    view->moveCursor(QTextCursor::End);
    QCoreApplication::processEvents();
    QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
    QCoreApplication::processEvents();
    QTest::keyClick(view, Qt::Key_Home, Qt::ControlModifier);
    QCoreApplication::processEvents();
    const auto pieces = onScreen();
    window.repaint();
    EXPECT_EQ(pieces, onScreen());
}

TEST_F(GrowingTextViewTest, leavesNoTraceOfWhatWasThereBefore) {
    const QString pieces[] = {QStringLiteral("word "),
                              QStringLiteral("\n"),
                              QStringLiteral("\n```\n"),
                              QStringLiteral("\n# Ågj heading\n"),
                              QStringLiteral("**bold** "),
                              QStringLiteral("`code` "),
                              QStringLiteral("שלום "),
                              QStringLiteral("日記"),
                              QStringLiteral("ก็ที่ปิ่น "),
                              QStringLiteral("😀"),
                              QStringLiteral("Z\u0310\u0352\u0352\u0352\u0352\u0323\u0323\u0323\u0323 "),
                              QStringLiteral("a paragraph that needs several lines ").repeated(3)};
    const int keys[] = {Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Up,   Qt::Key_Down,
                        Qt::Key_Left,      Qt::Key_Right,  Qt::Key_Home, Qt::Key_End};
    const int flashTime = QApplication::cursorFlashTime();
    QApplication::setCursorFlashTime(0);
    window.resize(width, 900);
    for (unsigned seed = 1; seed <= 3; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&random](std::size_t limit) {
            return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
        };
        view->setText(QStringLiteral("start\n\nparagraph gj ").repeated(4));
        for (int step = 0; step < 150; ++step) {
            const auto action = below(10);
            if (action < 3) {
                view->textCursor().insertText(pieces[below(std::size(pieces))]);
            } else if (action < 7) {
                const auto modifiers = below(3) == 0 ? Qt::ShiftModifier : Qt::NoModifier;
                QTest::keyClick(view, static_cast<Qt::Key>(keys[below(std::size(keys))]), modifiers);
            } else if (action == 7) {
                moveCaretTo(static_cast<int>(below(static_cast<std::size_t>(view->text().size()) + 1)));
            } else if (action == 8) {
                QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
            } else {
                compose(QStringLiteral("にほん"), 1);
                QCoreApplication::processEvents();
                compose(QString(), 0, below(2) == 0 ? QStringLiteral("日本") : QString());
            }
            QCoreApplication::processEvents();
            const auto painted = onScreen();
            window.repaint();
            ASSERT_EQ(painted, onScreen()) << "seed " << seed << ", step " << step;
        }
    }
    QApplication::setCursorFlashTime(flashTime);
}

// So that a key costs no more than its own line.
TEST_F(GrowingTextViewTest, paintsTheLineThatChangedAndNoOther) {
    view->setText(QStringLiteral("above\nhere\nbelow\n"));
    moveCaretTo(8);
    QCoreApplication::processEvents();
    window.repaint();
    PaintedArea painted(view->viewport());
    type("x");
    QCoreApplication::processEvents();
    EXPECT_FALSE(painted.area.isEmpty());
    EXPECT_GE(painted.area.boundingRect().top(), rhythm - 1);
    EXPECT_LE(painted.area.boundingRect().bottom(), 2 * rhythm);
    // Letters that may stand out of their line are painted wherever they reach.
    view->setText(QStringLiteral("above\nhe\u0310re\nbelow\n"));
    moveCaretTo(8);
    QCoreApplication::processEvents();
    painted.area = {};
    type("x");
    QCoreApplication::processEvents();
    EXPECT_LE(painted.area.boundingRect().top(), 0);
    EXPECT_GE(painted.area.boundingRect().bottom(), 3 * rhythm - 1);
}

TEST_F(GrowingTextViewTest, showsATextThatIsBeingComposed) {
    view->setText(QStringLiteral("**bold** end"));
    moveCaretTo(12);
    changes.clear();
    compose(QStringLiteral("にほ"), 1);
    compose(QStringLiteral("にほん"), 1);
    EXPECT_EQ(view->document()->begin().layout()->preeditAreaText(), QStringLiteral("にほん"));
    EXPECT_TRUE(changes.isEmpty());
    EXPECT_EQ(view->text(), QStringLiteral("**bold** end"));
    EXPECT_EQ(weightAt(4), QFont::Bold);
    // Behind the first composed character.
    const auto line = view->document()->begin().layout()->lineAt(0);
    EXPECT_EQ(view->caretRect().left(), std::round(line.cursorToX(13)));
    EXPECT_EQ(view->inputMethodQuery(Qt::ImCursorRectangle).toRect(), view->caretRect());

    compose(QString(), 0, QStringLiteral("日本"));
    EXPECT_EQ(changes, QStringList(QStringLiteral("**bold** end日本")));
    EXPECT_EQ(weightAt(4), QFont::Bold);
    EXPECT_EQ(view->caretRect().left(),
              std::round(view->document()->begin().layout()->lineAt(0).cursorToX(14)));
}

TEST_F(GrowingTextViewTest, forgetsAComposedTextThatIsGivenUp) {
    view->setText(QStringLiteral("**bold** end"));
    moveCaretTo(4);
    compose(QStringLiteral("abc"), 3);
    compose(QString(), 0);
    QCoreApplication::processEvents();
    EXPECT_TRUE(changes.isEmpty());
    EXPECT_EQ(weightAt(3), QFont::Bold);
    EXPECT_FALSE(view->document()->isUndoAvailable());
}

TEST_F(GrowingTextViewTest, tellsTheInputMethodWhereTheCaretIs) {
    view->setText(QStringLiteral("one\n# heading"));
    for (const int at : {0, 3, 5, 12}) {
        moveCaretTo(at);
        EXPECT_EQ(view->inputMethodQuery(Qt::ImCursorRectangle).toRect(), view->caretRect());
    }
    EXPECT_TRUE(view->inputMethodQuery(Qt::ImEnabled).toBool());
    EXPECT_EQ(view->inputMethodQuery(Qt::ImSurroundingText).toString(), QStringLiteral("# heading"));
}

TEST_F(GrowingTextViewTest, tellsWhereTheCaretWent) {
    QRect last;
    view->onCaretMoved = [&last](const QRect &rect) { last = rect; };
    type("ab");
    EXPECT_EQ(last, view->caretRect());
    QTest::keyClick(view, Qt::Key_Return);
    EXPECT_EQ(last, view->caretRect());
    EXPECT_GT(last.top(), rhythm);
    // Only the user's own.
    last = QRect();
    view->setText(QStringLiteral("another"));
    EXPECT_TRUE(last.isNull());
}

TEST_F(GrowingTextViewTest, isNotThereForAnyoneWhenInert) {
    view->setText(QStringLiteral("inert"));
    view->setInert(true);
    EXPECT_TRUE(view->isInert());
    EXPECT_FALSE(view->hasFocus());
    EXPECT_EQ(view->focusPolicy(), Qt::NoFocus);
    EXPECT_NE(window.childAt(view->geometry().center()), view);
    EXPECT_NE(window.childAt(view->geometry().center()), view->viewport());
    const std::unique_ptr<GrowingTextView> label(GrowingTextView::make(fontSize, textColor));
    label->setInert(true);
    label->setText(QStringLiteral("inert"));
    auto *accessible = QAccessible::queryAccessibleInterface(label.get());
    EXPECT_TRUE(accessible->state().invisible);
    EXPECT_FALSE(accessible->textInterface());
    EXPECT_EQ(accessible->text(QAccessible::Name), QString());
}

TEST_F(GrowingTextViewTest, tellsAssistiveTechnologiesTextAndPlaces) {
    view->setText(QStringLiteral("one two\n# heading\nשלום"));
    QCoreApplication::processEvents();
    auto *accessible = QAccessible::queryAccessibleInterface(view);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::EditableText);
    auto *text = accessible->textInterface();
    ASSERT_TRUE(text);
    EXPECT_EQ(text->characterCount(), view->text().size());
    EXPECT_EQ(text->text(0, text->characterCount()), view->text());
    moveCaretTo(5);
    EXPECT_EQ(text->cursorPosition(), 5);
    for (const int at : {0, 1, 5, 8, 10, 14, 18, 20}) {
        const auto rect = text->characterRect(at).translated(-view->mapToGlobal(QPoint()));
        EXPECT_GE(rect.top(), rhythm * view->document()->findBlock(at).blockNumber()) << at;
        EXPECT_LE(rect.bottom(), rhythm * (view->document()->findBlock(at).blockNumber() + 1)) << at;
        if (at < 18) {
            auto cursor = view->textCursor();
            cursor.setPosition(at);
            EXPECT_NEAR(rect.left(), view->cursorRect(cursor).left(), 1) << at;
            const QPoint inside = text->characterRect(at).center() - QPoint(rect.width() / 4, 0);
            EXPECT_EQ(text->offsetAtPoint(inside), at);
        }
    }
}

TEST_F(GrowingTextViewTest, staysQuickWithHugeTexts) {
    const QString texts[] = {QStringLiteral("A word and another. ").repeated(45'000 / 20),
                             QStringLiteral("l").repeated(5'000),
                             QStringLiteral("An ordinary paragraph of a diary.\n").repeated(100'000 / 34)};
    for (const auto &text : texts) {
        view->setText(text);
        EXPECT_EQ(view->text(), text);
        QCoreApplication::processEvents();
        EXPECT_EQ(view->height(), view->heightForWidth(width));
        moveCaretTo(static_cast<int>(text.size()) - 1);
        EXPECT_LE(view->caretRect().bottom(), view->height());
        EXPECT_GE(view->caretRect().bottom(), view->height() - 3 * rhythm);
        type("x");
    }
    EXPECT_EQ(changes.size(), 3);
}

} // namespace
} // namespace diary

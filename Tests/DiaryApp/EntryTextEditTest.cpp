// SPDX-License-Identifier: MIT
#include <DiaryApp/EntryTextEdit.h>

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMimeData>
#include <QPixmap>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <gtest/gtest.h>

namespace diary {
namespace {

// An editor with the keyboard, in a window of its own.
class EntryTextEditTest : public ::testing::Test {
protected:
    EntryTextEditTest() {
        edit.onTextChanged = [this](const QString &text) { changes.append(text); };
        edit.resize(400, 300);
        edit.show();
        edit.activateWindow();
        edit.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&edit));
    }

    void paste(QMimeData *data) {
        QApplication::clipboard()->setMimeData(data);
        QTest::keyClick(&edit, Qt::Key_V, Qt::ControlModifier);
    }

    EntryTextEdit edit;
    QStringList changes;
};

QString manyLines() {
    return QString(QStringLiteral("line\n")).repeated(200);
}

TEST_F(EntryTextEditTest, givesBackEveryCharacterThatWasSet) {
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
        edit.setText(text);
        EXPECT_EQ(edit.text(), text);
    }
    EXPECT_TRUE(changes.isEmpty());
}

TEST_F(EntryTextEditTest, tellsWhatWasTyped) {
    edit.setText(QStringLiteral("no-break\u00A0"));
    edit.moveCursor(QTextCursor::End);
    QTest::keyClicks(&edit, QStringLiteral("ab"));
    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_EQ(changes, QStringList({QStringLiteral("no-break\u00A0a"), QStringLiteral("no-break\u00A0ab"),
                                    QStringLiteral("no-break\u00A0ab\n")}));
}

TEST_F(EntryTextEditTest, undoesAndRedoesTyping) {
    edit.setText(QStringLiteral("kept "));
    edit.moveCursor(QTextCursor::End);
    QTest::keyClicks(&edit, QStringLiteral("gone"));
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.text(), QStringLiteral("kept "));
    EXPECT_EQ(changes.last(), QStringLiteral("kept "));
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit.text(), QStringLiteral("kept gone"));
}

TEST_F(EntryTextEditTest, startsANewUndoHistoryWithAnotherText) {
    QTest::keyClicks(&edit, QStringLiteral("typed"));
    edit.setText(QStringLiteral("other"));
    EXPECT_FALSE(edit.document()->isUndoAvailable());
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.text(), QStringLiteral("other"));
}

TEST_F(EntryTextEditTest, keepsTheUndoHistoryWhenTheSameTextIsSet) {
    QTest::keyClicks(&edit, QStringLiteral("typed"));
    edit.setText(QStringLiteral("typed"));
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.text(), QString());
}

TEST_F(EntryTextEditTest, keepsCaretAndPageWhenTheTextIsReplaced) {
    edit.setText(manyLines());
    auto cursor = edit.textCursor();
    cursor.setPosition(333);
    edit.setTextCursor(cursor);
    edit.verticalScrollBar()->setValue(40);
    edit.setText(manyLines() + QStringLiteral("and more"));
    EXPECT_EQ(edit.textCursor().position(), 333);
    EXPECT_EQ(edit.verticalScrollBar()->value(), 40);

    edit.setText(QStringLiteral("short"));
    EXPECT_EQ(edit.textCursor().position(), 5);
    EXPECT_EQ(edit.verticalScrollBar()->value(), 0);
}

TEST_F(EntryTextEditTest, pastesPlainTextOnly) {
    auto *data = new QMimeData;
    data->setHtml(QStringLiteral("<h1>Big</h1><b>bold</b>"));
    data->setText(QStringLiteral("Big\nbold\u00A0end"));
    paste(data);
    EXPECT_EQ(edit.text(), QStringLiteral("Big\nbold\u00A0end"));
    for (auto block = edit.document()->begin(); block.isValid(); block = block.next()) {
        EXPECT_FALSE(block.charFormat().font().bold());
        EXPECT_EQ(block.blockFormat().headingLevel(), 0);
    }
    EXPECT_EQ(changes.last(), QStringLiteral("Big\nbold\u00A0end"));
}

TEST_F(EntryTextEditTest, pastesNothingWithoutText) {
    auto *image = new QMimeData;
    image->setImageData(QImage(4, 4, QImage::Format_RGB32));
    paste(image);
    auto *html = new QMimeData;
    html->setHtml(QStringLiteral("<b>bold</b>"));
    paste(html);
    EXPECT_EQ(edit.text(), QString());
    EXPECT_TRUE(changes.isEmpty());
}

TEST_F(EntryTextEditTest, followsTheCaretToTheEndOfALongPaste) {
    auto *data = new QMimeData;
    data->setText(manyLines());
    paste(data);
    EXPECT_TRUE(edit.viewport()->rect().contains(edit.cursorRect().center()));
}

TEST_F(EntryTextEditTest, movesWordByWord) {
    edit.setText(QStringLiteral("one two three"));
    edit.moveCursor(QTextCursor::End);
    QTest::keyClick(&edit, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(edit.textCursor().position(), 8);
    QTest::keyClick(&edit, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(edit.textCursor().position(), 4);
    QTest::keyClick(&edit, Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(edit.textCursor().position(), 8);
}

TEST(EntryTextEdit, letsShiftTabLeaveButTypesTabs) {
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *before = new QLineEdit;
    auto *edit = new EntryTextEdit;
    layout->addWidget(before);
    layout->addWidget(edit);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    edit->setFocus();

    QTest::keyClick(edit, Qt::Key_Tab);
    EXPECT_EQ(edit->text(), QStringLiteral("\t"));
    EXPECT_TRUE(edit->hasFocus());
    QTest::keyClick(edit, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(before->hasFocus());
    EXPECT_EQ(edit->text(), QStringLiteral("\t"));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/EntryView.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/PhotoGalleryView.h>
#include <DiaryApp/PhotoTileView.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QAccessible>
#include <QApplication>
#include <QInputMethodEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace diary {
namespace {

using testing::pictureOf;
using testing::pixelsOf;

using Model = EntryView::Model;
using Block = Model::Block;

Model pageOf(decltype(Block::kind) kind) {
    Model model;
    model.fileName = QStringLiteral("03-14.md");
    model.ordinal = QStringLiteral("Day 74 / 366");
    model.dayKey = QStringLiteral("03-14");
    model.weekdayName = QStringLiteral("Saturday");
    model.subtitle = QStringLiteral("Spanning 9 years");
    model.block.mark = QStringLiteral("2026");
    model.block.markColor = Theme::accent();
    model.block.ago = QStringLiteral("This year");
    model.block.kind = std::move(kind);
    return model;
}

Model editorPage(const QString &draft) {
    return pageOf(Block::Editor{
        .draft = draft, .placeholder = QStringLiteral("Write about this day"), .textColor = Theme::ink()});
}

Model sourcePage(const QString &source) {
    auto model = editorPage(QStringLiteral("draft"));
    model.gapLine = QStringLiteral("gap");
    model.sourceText = source;
    return model;
}

std::vector<DayPhoto> somePhotos(std::size_t count) {
    std::vector<DayPhoto> photos(count);
    for (std::size_t index = 0; index < count; ++index)
        photos[index].filename = QStringLiteral("IMG_%1.HEIC").arg(index);
    return photos;
}

class EntryViewTest : public ::testing::Test {
protected:
    EntryViewTest() { view.resize(852, 700); }

    void show(const Model &model) {
        view.update(model);
        view.show();
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
        view.takeKeyboard();
        QCoreApplication::processEvents();
    }

    template <typename Widget = ThemeLabel>
    Widget *find(const char *name) const {
        return view.findChild<Widget *>(QLatin1String(name));
    }

    int scrolled() const { return view.scrollView()->verticalScrollBar()->value(); }

    QRect caretInWindow() const {
        const auto caret = view.textView()->caretRect();
        return {view.textView()->mapTo(&view, caret.topLeft()), caret.size()};
    }

    void expectCaretInSight() const {
        EXPECT_GE(caretInWindow().top(), 0);
        EXPECT_LT(caretInWindow().bottom(), view.height());
    }

    EntryView view;
};

TEST_F(EntryViewTest, showsTheDayWithAnEditor) {
    show(editorPage(QStringLiteral("draft")));
    EXPECT_EQ(find("fileName")->text(), QStringLiteral("03-14.MD"));
    EXPECT_EQ(find("ordinal")->text(), QStringLiteral("Day 74 / 366"));
    EXPECT_EQ(find("dayKey")->text(), QStringLiteral("03-14"));
    EXPECT_EQ(find("weekday")->text(), QStringLiteral("Saturday"));
    EXPECT_EQ(find("subtitle")->text(), QStringLiteral("Spanning 9 years"));
    EXPECT_EQ(find("mark")->text(), QStringLiteral("2026"));
    EXPECT_EQ(find("ago")->text(), QStringLiteral("This year"));
    ASSERT_TRUE(view.textView());
    EXPECT_EQ(view.textView()->text(), QStringLiteral("draft"));
    EXPECT_FALSE(view.placeholderLabel()->isVisible());
    EXPECT_FALSE(find("gapLine")->isVisible());
    EXPECT_FALSE(find("source")->isVisible());
    EXPECT_FALSE(view.onDraftChanged);
    EXPECT_FALSE(view.onPreviousDay);
    EXPECT_FALSE(view.onNextDay);
}

TEST_F(EntryViewTest, placesEverythingByTheLayout) {
    auto model = editorPage(QStringLiteral("draft"));
    model.gapLine = QStringLiteral("No entry in 2020");
    show(model);
    const auto *column = find<QWidget>("column");
    EXPECT_EQ(column->geometry().left(), 92);
    EXPECT_EQ(column->width(), 668);
    EXPECT_EQ(find("fileName")->geometry().topLeft(), QPoint(0, 0));
    EXPECT_EQ(find("ordinal")->geometry().right(), 667);
    EXPECT_EQ(find("mark")->geometry().right() + 1, 76);
    EXPECT_EQ(find("ago")->geometry().right() + 1, 76);
    EXPECT_EQ(view.textView()->geometry().left(), 100);
    EXPECT_EQ(view.textView()->width(), 568);
    EXPECT_EQ(view.textView()->height(), 76);
    EXPECT_EQ(find("mark")->y(), view.textView()->y() + 6);
    EXPECT_EQ(view.placeholderLabel()->geometry(), view.textView()->geometry());
    EXPECT_EQ(find("gapLine")->geometry().topLeft(),
              view.textView()->geometry().bottomLeft() + QPoint(0, 1 + 44));
    EXPECT_EQ(column->height(), find("gapLine")->geometry().bottom() + 1);
    EXPECT_EQ(find<ChromeButton>("previousDay")->geometry().center().y(),
              find("weekday")->geometry().center().y());
}

TEST_F(EntryViewTest, endsAtTheBlockWithoutAGapLine) {
    show(editorPage(QStringLiteral("line\n").repeated(40)));
    EXPECT_EQ(find<QWidget>("column")->height(), view.textView()->geometry().bottom() + 1);
    EXPECT_EQ(find<QWidget>("documentView")->height(), 40 + find<QWidget>("column")->height() + 140);
}

TEST_F(EntryViewTest, showsThePhotosBetweenTheTextAndTheGapLine) {
    auto model = editorPage(QStringLiteral("line\n").repeated(8));
    model.gapLine = QStringLiteral("No entry in 2020");
    show(model);
    auto *gallery = view.galleryView();
    const int before = find("gapLine")->y();
    EXPECT_EQ(gallery->height(), 0);
    gallery->setPhotos(somePhotos(4), QStringLiteral("Photos"));
    const int below = view.textView()->geometry().bottom() + 1;
    EXPECT_EQ(gallery->geometry(), QRect(0, below, 668, gallery->heightForWidth(668)));
    EXPECT_GT(gallery->height(), 300);
    EXPECT_EQ(find("gapLine")->y(), below + gallery->height() + 44);
    EXPECT_EQ(find<QWidget>("documentView")->height(), 40 + find<QWidget>("column")->height() + 140);
    // They move with the text that grows.
    QTest::keyClick(view.textView(), Qt::Key_Return);
    EXPECT_GT(gallery->y(), below);
    EXPECT_EQ(gallery->y(), view.textView()->geometry().bottom() + 1);
    QTest::keyClick(view.textView(), Qt::Key_Backspace);
    gallery->setPhotos({}, std::nullopt);
    EXPECT_EQ(find("gapLine")->y(), before);
}

TEST_F(EntryViewTest, keepsThePhotosFromOneUpdateToTheNext) {
    show(editorPage(QStringLiteral("draft")));
    view.galleryView()->setPhotos(somePhotos(2), QStringLiteral("Photos"));
    const auto tiles = view.galleryView()->tileViews();
    view.update(sourcePage(QStringLiteral("## 2026")));
    EXPECT_FALSE(view.galleryView()->isVisible());
    EXPECT_EQ(find<QWidget>("column")->height(), find("source")->geometry().bottom() + 1);
    view.update(pageOf(Block::Empty{QStringLiteral("Nothing here")}));
    EXPECT_TRUE(view.galleryView()->isVisible());
    EXPECT_EQ(view.galleryView()->tileViews(), tiles);
}

TEST_F(EntryViewTest, goesFromTheEditorToThePhotosByTab) {
    show(editorPage(QString()));
    view.galleryView()->setPhotos(somePhotos(2), QStringLiteral("Photos"));
    // An editor that came later than the photos, too.
    view.update(pageOf(Block::Empty{QStringLiteral("Nothing here")}));
    view.update(editorPage(QString()));
    view.takeKeyboard();
    const auto &tiles = view.galleryView()->tileViews();
    const auto step = [this](Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(view.window(), key, modifiers);
        return QApplication::focusWidget();
    };
    auto *next = view.textView()->nextInFocusChain();
    while (!(next->focusPolicy() & Qt::TabFocus) || !next->isVisible())
        next = next->nextInFocusChain();
    EXPECT_EQ(next, tiles[0]);
    tiles[0]->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(step(Qt::Key_Tab, {}), tiles[1]);
    EXPECT_EQ(step(Qt::Key_Backtab, Qt::ShiftModifier), tiles[0]);
    EXPECT_EQ(step(Qt::Key_Backtab, Qt::ShiftModifier), view.textView());
}

TEST_F(EntryViewTest, scrollsToThePhotoThatGetsTheKeyboard) {
    view.resize(852, 420);
    show(editorPage(QStringLiteral("line\n").repeated(20)));
    view.galleryView()->setPhotos(somePhotos(9), QStringLiteral("Photos"));
    const auto &tiles = view.galleryView()->tileViews();
    const auto isInSight = [this](const QWidget *tile) {
        const int top = tile->mapTo(&view, QPoint()).y();
        return top >= 0 && top + tile->height() <= view.height();
    };
    EXPECT_EQ(scrolled(), 0);
    tiles[0]->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(isInSight(tiles[0]));
    for (int step = 0; step < 8; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_TRUE(isInSight(QApplication::focusWidget())) << step;
    }
    EXPECT_TRUE(tiles[8]->hasFocus());
    QTest::keyClick(tiles[8], Qt::Key_Home);
    EXPECT_TRUE(isInSight(tiles[0]));
}

TEST_F(EntryViewTest, leavesTheCaretWhereItIsWhenTheSpaceBetweenPhotosIsClicked) {
    show(editorPage(QStringLiteral("one\ntwo")));
    view.galleryView()->setPhotos(somePhotos(1), QStringLiteral("Photos"));
    view.textView()->moveCursor(QTextCursor::Start);
    const QPoint beside(500, 100);
    testing::pressAt(*view.galleryView(), beside);
    testing::releaseAt(*view.galleryView(), beside);
    EXPECT_EQ(view.textView()->textCursor().position(), 0);
    // Above the photos is paper still.
    const QPoint above(500, 10);
    testing::pressAt(*view.galleryView(), above);
    testing::releaseAt(*view.galleryView(), above);
    EXPECT_EQ(view.textView()->textCursor().position(), 7);
}

TEST_F(EntryViewTest, keepsItsMarginsInANarrowWindow) {
    view.resize(500, 600);
    show(editorPage(QStringLiteral("some words that need two lines or more of the page ").repeated(4)));
    EXPECT_EQ(find<QWidget>("column")->geometry().left(), 56);
    EXPECT_EQ(find<QWidget>("column")->width(), 500 - 112);
    EXPECT_EQ(view.textView()->width(), 500 - 112 - 100);
    const int narrow = view.textView()->height();
    view.resize(900, 600);
    QCoreApplication::processEvents();
    EXPECT_EQ(find<QWidget>("column")->geometry().left(), 116);
    EXPECT_LT(view.textView()->height(), narrow);
}

TEST_F(EntryViewTest, alignsTheYearWhateverItsWidth) {
    auto model = editorPage(QString());
    for (const char *mark : {"1", "987", "12026"}) {
        model.block.mark = QLatin1String(mark);
        view.update(model);
        EXPECT_EQ(find("mark")->geometry().right() + 1, 76) << mark;
        EXPECT_EQ(view.textView()->x(), 100) << mark;
    }
}

TEST_F(EntryViewTest, showsOnlyHeaderAndTextInSourceMode) {
    show(sourcePage(QStringLiteral("## 2026\nraw")));
    EXPECT_EQ(find("source")->text(), QStringLiteral("## 2026\nraw"));
    EXPECT_TRUE(find("source")->isVisible());
    EXPECT_TRUE(find("fileName")->isVisible());
    for (const char *name :
         {"dayKey", "weekday", "previousDay", "nextDay", "subtitle", "mark", "ago", "gapLine"})
        EXPECT_FALSE(find<QWidget>(name)->isVisible()) << name;
    EXPECT_FALSE(view.textView());
    EXPECT_FALSE(view.placeholderLabel());
    EXPECT_EQ(find<QWidget>("column")->height(), find("source")->geometry().bottom() + 1);
    view.update(editorPage(QStringLiteral("draft")));
    EXPECT_TRUE(view.textView()->isVisible());
    EXPECT_FALSE(find("source")->isVisible());
}

TEST_F(EntryViewTest, showsPastTextWithSpaceBetweenItsParagraphs) {
    show(pageOf(Block::Past{{QStringLiteral("one"), QStringLiteral("two")}}));
    const auto *note = find("note");
    ASSERT_TRUE(note);
    EXPECT_EQ(note->text(), QStringLiteral("one\ntwo"));
    EXPECT_EQ(note->textStyle().color, Theme::pastText());
    EXPECT_EQ(note->textStyle().paragraphSpacing, 16);
    EXPECT_EQ(note->textStyle().lineSpacing, 11);
    EXPECT_FALSE(view.textView());
    EXPECT_EQ(note->geometry().left(), 100);
}

TEST_F(EntryViewTest, showsANoteForAnEmptyDay) {
    show(pageOf(Block::Empty{QStringLiteral("Nothing here")}));
    EXPECT_EQ(find("note")->text(), QStringLiteral("Nothing here"));
    EXPECT_EQ(find("note")->textStyle().color, Theme::emptyText());
    EXPECT_EQ(find("note")->textStyle().paragraphSpacing, 0);
}

TEST_F(EntryViewTest, paintsPaperAndInk) {
    show(editorPage(QStringLiteral("IIII")));
    auto picture = pictureOf(view);
    EXPECT_EQ(picture.pixel(4, 4), Theme::paper().rgba());
    const auto colored = [&](const QWidget *widget, const QColor &color) {
        return pixelsOf(color, picture, {widget->mapTo(&view, QPoint()), widget->size()});
    };
    EXPECT_GT(colored(find("dayKey"), Theme::inkStrong()), 0);
    EXPECT_GT(colored(find("mark"), Theme::accent()), 0);
    EXPECT_GT(colored(view.textView(), Theme::ink()), 0);
    EXPECT_EQ(colored(view.textView(), Theme::placeholder()), 0);
    view.update(editorPage(QString()));
    picture = pictureOf(view);
    EXPECT_EQ(colored(view.textView(), Theme::ink()), 0);
    EXPECT_GT(colored(view.textView(), Theme::placeholder()), 0);
}

TEST_F(EntryViewTest, hidesThePlaceholderWhileThereIsText) {
    show(editorPage(QString()));
    EXPECT_TRUE(view.placeholderLabel()->isVisible());
    EXPECT_EQ(view.placeholderLabel()->text(), QStringLiteral("Write about this day"));
    const int height = view.textView()->height();
    QTest::keyClicks(view.textView(), QStringLiteral("x"));
    EXPECT_FALSE(view.placeholderLabel()->isVisible());
    EXPECT_EQ(view.textView()->height(), height);
    QTest::keyClick(view.textView(), Qt::Key_Backspace);
    EXPECT_TRUE(view.placeholderLabel()->isVisible());
}

TEST_F(EntryViewTest, hidesThePlaceholderWhileTextIsComposed) {
    show(editorPage(QString()));
    QInputMethodEvent compose(QStringLiteral("にほ"), {});
    QApplication::sendEvent(view.textView(), &compose);
    EXPECT_FALSE(view.placeholderLabel()->isVisible());
    QInputMethodEvent giveUp;
    QApplication::sendEvent(view.textView(), &giveUp);
    EXPECT_TRUE(view.placeholderLabel()->isVisible());
}

TEST_F(EntryViewTest, neverStylesThePlaceholder) {
    auto model = editorPage(QString());
    std::get<Block::Editor>(model.block.kind).placeholder = QStringLiteral("# **Write**");
    show(model);
    EXPECT_TRUE(view.placeholderLabel()->document()->begin().layout()->formats().isEmpty());
    EXPECT_TRUE(view.placeholderLabel()->isInert());
}

TEST_F(EntryViewTest, clicksThroughThePlaceholder) {
    show(editorPage(QString()));
    view.textView()->clearFocus();
    testing::pressAt(*view.placeholderLabel(), {30, 20});
    testing::releaseAt(*view.placeholderLabel(), {30, 20});
    EXPECT_TRUE(view.textView()->hasFocus());
}

TEST_F(EntryViewTest, tellsWhatIsTyped) {
    show(editorPage(QStringLiteral("a")));
    QStringList drafts;
    view.onDraftChanged = [&drafts](const QString &text) { drafts.append(text); };
    view.textView()->moveCursor(QTextCursor::End);
    QTest::keyClicks(view.textView(), QStringLiteral("bc"));
    view.update(editorPage(QStringLiteral("other")));
    EXPECT_EQ(drafts, QStringList({QStringLiteral("ab"), QStringLiteral("abc")}));
}

TEST_F(EntryViewTest, keepsCaretHistoryAndKeyboardOfAnEditorThatGoesOn) {
    show(editorPage(QStringLiteral("one ")));
    auto *editor = view.textView();
    editor->moveCursor(QTextCursor::End);
    QTest::keyClicks(editor, QStringLiteral("two"));
    editor->moveCursor(QTextCursor::Left);
    auto model = editorPage(QStringLiteral("one two"));
    model.subtitle = QStringLiteral("another");
    view.update(model);
    EXPECT_EQ(view.textView(), editor);
    EXPECT_EQ(editor->textCursor().position(), 6);
    EXPECT_TRUE(editor->hasFocus());
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor->text(), QStringLiteral("one "));
}

TEST_F(EntryViewTest, looksLikeAFreshPageAfterEveryUpdate) {
    auto gap = editorPage(QStringLiteral("# heading\n**bold**"));
    gap.gapLine = QStringLiteral("No entry in 2020");
    const Model models[] = {editorPage(QStringLiteral("draft")),
                            pageOf(Block::Past{{QStringLiteral("one"), QStringLiteral("two")}}),
                            editorPage(QString()),
                            sourcePage(QStringLiteral("## 2026\nraw\n").repeated(30)),
                            pageOf(Block::Empty{QStringLiteral("Nothing here")}),
                            gap,
                            sourcePage(QString()),
                            editorPage(QStringLiteral("line\n").repeated(50))};
    for (const auto &model : models) {
        view.update(model);
        EntryView fresh;
        fresh.resize(view.size());
        fresh.update(model);
        EXPECT_TRUE(pictureOf(view, 1) == pictureOf(fresh, 1)) << &model - models;
        EXPECT_EQ(view.textView() == nullptr, fresh.textView() == nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(EntryViewTest, startsAnEntryFromItsTop) {
    show(editorPage(QStringLiteral("line\n").repeated(60)));
    QTest::keyClicks(view.textView(), QStringLiteral("x"));
    view.scrollView()->verticalScrollBar()->setValue(300);
    view.update(editorPage(QStringLiteral("x") + QStringLiteral("line\n").repeated(60)));
    EXPECT_EQ(scrolled(), 300);
    view.startEntry();
    QCoreApplication::processEvents();
    EXPECT_EQ(scrolled(), 0);
    EXPECT_TRUE(view.textView()->textCursor().atEnd());
    EXPECT_FALSE(view.textView()->document()->isUndoAvailable());
    EXPECT_TRUE(view.textView()->hasFocus());
}

TEST_F(EntryViewTest, keepsTheCaretInSight) {
    view.resize(852, 420);
    show(editorPage(QStringLiteral("line\n").repeated(30)));
    auto *editor = view.textView();
    editor->moveCursor(QTextCursor::End);
    expectCaretInSight();
    for (int line = 0; line < 6; ++line) {
        QTest::keyClick(editor, Qt::Key_Return);
        QTest::keyClicks(editor, QStringLiteral("typed"));
        expectCaretInSight();
    }
    for (int line = 0; line < 36; ++line) {
        QTest::keyClick(editor, Qt::Key_Up);
        expectCaretInSight();
    }
    for (int line = 0; line < 30; ++line) {
        QTest::keyClick(editor, Qt::Key_Down, Qt::ShiftModifier);
        expectCaretInSight();
    }
    // Typing after the page was scrolled away comes back.
    view.scrollView()->verticalScrollBar()->setValue(0);
    QTest::keyClicks(editor, QStringLiteral("x"));
    expectCaretInSight();
    view.scrollView()->verticalScrollBar()->setValue(view.scrollView()->verticalScrollBar()->maximum());
    QTest::keyClick(editor, Qt::Key_Delete);
    expectCaretInSight();
}

TEST_F(EntryViewTest, doesNotMoveThePageBelowAClick) {
    view.resize(852, 420);
    show(editorPage(QStringLiteral("line\n").repeated(30)));
    view.scrollView()->verticalScrollBar()->setValue(100);
    auto *editor = view.textView();
    // In the lowest line that is in sight as a whole.
    const QPoint inWindow(200, view.height() - 20);
    testing::pressAt(view, inWindow);
    EXPECT_NEAR(scrolled(), 100, 20);
    testing::releaseAt(view, inWindow);
    EXPECT_TRUE(editor->hasFocus());
    EXPECT_FALSE(editor->textCursor().hasSelection());
}

TEST_F(EntryViewTest, putsTheCaretBehindTheTextByAClickBelowIt) {
    show(editorPage(QStringLiteral("one\ntwo")));
    auto *editor = view.textView();
    editor->clearFocus();
    const QPoint below(400, editor->mapTo(&view, QPoint(0, editor->height())).y() + 100);
    testing::pressAt(view, below);
    testing::releaseAt(view, below);
    EXPECT_TRUE(editor->hasFocus());
    EXPECT_EQ(editor->textCursor().position(), 7);
    // Beside and above the text nothing happens.
    editor->moveCursor(QTextCursor::Start);
    editor->clearFocus();
    for (const QPoint &elsewhere : {QPoint(20, 300), QPoint(400, 20), QPoint(840, 650)}) {
        testing::pressAt(view, elsewhere);
        testing::releaseAt(view, elsewhere);
    }
    EXPECT_EQ(editor->textCursor().position(), 0);
}

TEST_F(EntryViewTest, scrollsByPageKeysWhileTheEditorHasTheKeyboard) {
    show(editorPage(QStringLiteral("line\n").repeated(80)));
    QTest::keyClick(view.textView(), Qt::Key_PageDown);
    const int page = scrolled();
    EXPECT_GT(page, 300);
    QTest::keyClick(view.textView(), Qt::Key_PageDown);
    EXPECT_GT(scrolled(), page);
    QTest::keyClick(view.textView(), Qt::Key_PageUp);
    QTest::keyClick(view.textView(), Qt::Key_PageUp);
    EXPECT_EQ(scrolled(), 0);
    EXPECT_EQ(view.textView()->textCursor().position(), 0);
}

TEST_F(EntryViewTest, scrollsTheSourceByKeyboard) {
    show(sourcePage(QStringLiteral("line\n").repeated(200)));
    auto *page = view.scrollView();
    EXPECT_TRUE(page->hasFocus());
    const int maximum = page->verticalScrollBar()->maximum();
    EXPECT_GT(maximum, 1000);
    QTest::keyClick(page, Qt::Key_Down);
    EXPECT_GT(scrolled(), 0);
    EXPECT_LT(scrolled(), 100);
    QTest::keyClick(page, Qt::Key_Up);
    EXPECT_EQ(scrolled(), 0);
    QTest::keyClick(page, Qt::Key_PageDown);
    EXPECT_GT(scrolled(), 300);
    QTest::keyClick(page, Qt::Key_End);
    EXPECT_EQ(scrolled(), maximum);
    QTest::keyClick(page, Qt::Key_Home);
    EXPECT_EQ(scrolled(), 0);
}

TEST_F(EntryViewTest, growsAsHighAsALongSource) {
    // The rest is longer than the beginning suggests.
    const auto text =
        QStringLiteral("line\n").repeated(3'000) + QStringLiteral("long line ").repeated(20'000);
    show(sourcePage(text));
    const auto *source = find("source");
    EXPECT_TRUE(QTest::qWaitFor([&] { return source->lines().back().rect.bottom() == source->height(); }));
    EXPECT_EQ(find<QWidget>("column")->height(), source->geometry().bottom() + 1);
    EXPECT_EQ(scrolled(), 0);
}

TEST_F(EntryViewTest, staysAtTheEndOfALongSourceWhileItsHeightBecomesKnown) {
    const auto text =
        QStringLiteral("line\n").repeated(3'000) + QStringLiteral("long line ").repeated(20'000);
    view.show();
    view.update(sourcePage(text));
    auto *bar = view.scrollView()->verticalScrollBar();
    const int guessed = bar->maximum();
    QTest::keyClick(view.scrollView(), Qt::Key_End);
    EXPECT_EQ(scrolled(), guessed);
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->maximum() != guessed; }));
    EXPECT_EQ(scrolled(), bar->maximum());
}

TEST_F(EntryViewTest, turnsDaysByChevrons) {
    show(editorPage(QString()));
    int previous = 0;
    int next = 0;
    // Nobody listens yet.
    QTest::mouseClick(find<ChromeButton>("previousDay"), Qt::LeftButton);
    view.onPreviousDay = [&previous] { ++previous; };
    view.onNextDay = [&next] { ++next; };
    QTest::mouseClick(find<ChromeButton>("previousDay"), Qt::LeftButton);
    QTest::mouseClick(find<ChromeButton>("nextDay"), Qt::LeftButton);
    EXPECT_EQ(previous, 1);
    EXPECT_EQ(next, 1);
    QTest::keyClick(find<ChromeButton>("previousDay"), Qt::Key_Space);
    QTest::keyClick(find<ChromeButton>("nextDay"), Qt::Key_Return);
    EXPECT_EQ(previous, 2);
    EXPECT_EQ(next, 2);
    // The clicks left the keyboard where it was.
    EXPECT_TRUE(view.textView()->hasFocus());
    QTest::keyClick(view.textView(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(find<ChromeButton>("nextDay")->hasFocus());
}

TEST_F(EntryViewTest, namesItsControls) {
    show(editorPage(QString()));
    const auto *previous = QAccessible::queryAccessibleInterface(find<QWidget>("previousDay"));
    EXPECT_EQ(previous->text(QAccessible::Name), QStringLiteral("Previous Day"));
    EXPECT_EQ(previous->role(), QAccessible::Button);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(find<QWidget>("nextDay"))->text(QAccessible::Name),
              QStringLiteral("Next Day"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(view.textView())->text(QAccessible::Name),
              QStringLiteral("2026"));
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(view.placeholderLabel())->state().invisible);
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/BlankWindow.h>
#include <DiaryApp/MainWindowLayout.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/WindowFrame.h>

#include <QApplication>
#include <QImage>
#include <QMainWindow>
#include <QMenuBar>
#include <QPainter>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace diary {
namespace {

// As it comes out in eight bits a channel.
QColor painted(const QColor &color) {
    QPixmap pixel(1, 1);
    QPainter(&pixel).fillRect(pixel.rect(), color);
    return pixel.toImage().pixelColor(0, 0);
}

class BlankWindowTest : public ::testing::Test {
protected:
    void makeBlank() {
        blank = std::make_unique<BlankWindow>(QStringLiteral("03-14.md[*]"), clock);
        blank->onWaiting = [this] { ++waits; };
        blank->onReady = [this] { ++readies; };
    }
    void show() {
        makeBlank();
        blank->show();
    }
    bool becomesReady() {
        return QTest::qWaitFor([this] { return readies > 0; });
    }

    testing::TemporaryFolder folder;
    testing::ScopedEnvironment state{"XDG_STATE_HOME", folder / "state"};
    testing::FakeClock clock{{2025, 3, 14}};
    int waits = 0;
    int readies = 0;
    std::unique_ptr<BlankWindow> blank;
};

TEST_F(BlankWindowTest, showsBarsColumnsAndPaper) {
    show();
    const QImage picture = blank->window()->grab().toImage();
    const auto colorAt = [&](int x, int y) { return picture.pixelColor(x, y); };
    const QColor bar = painted(Theme::bar());
    const QColor panel = painted(Theme::panel());
    const QColor paper = painted(Theme::paper());
    const int middle = picture.height() / 2;
    EXPECT_EQ(colorAt(0, 0), bar);
    EXPECT_EQ(colorAt(0, picture.height() - 1), bar);
    EXPECT_EQ(colorAt(0, middle), panel);
    EXPECT_EQ(colorAt(235, middle), panel);
    EXPECT_EQ(colorAt(236, middle), paper);
    EXPECT_EQ(colorAt(1087, middle), paper);
    EXPECT_EQ(colorAt(1088, middle), panel);
    EXPECT_EQ(colorAt(1359, middle), panel);
    EXPECT_EQ(colorAt(600, picture.height() - 28), paper);
    EXPECT_EQ(colorAt(600, picture.height() - 27), bar);
}

TEST_F(BlankWindowTest, isAsHighAsTheFilledWindowGiveOrTakeAFewPixels) {
    show();
    QMainWindow filled;
    filled.menuBar()->addMenu(QStringLiteral("Diary"));
    const int height = MainWindowLayout::initialSize.height() + filled.menuBar()->sizeHint().height();
    EXPECT_LE(std::abs(blank->window()->height() - height), 3);
    EXPECT_EQ(blank->window()->width(), 1360);
    EXPECT_TRUE(blank->isAsFirstMade(*blank->window()));
    blank->window()->resize(1200, 700);
    EXPECT_FALSE(blank->isAsFirstMade(*blank->window()));
}

TEST_F(BlankWindowTest, standsWhereTheWindowWasLeft) {
    makeBlank();
    blank->window()->setGeometry(30, 40, 1200, 700);
    WindowFrame::remember(*blank->window());
    show();
    EXPECT_FALSE(blank->isAsFirstMade(*blank->window()));
    EXPECT_EQ(blank->window()->geometry(), QRect(30, 40, 1200, 700));
    EXPECT_EQ(blank->window()->windowTitle(), QStringLiteral("03-14.md[*]"));
}

TEST_F(BlankWindowTest, isReadyOnceAfterItsFirstPicture) {
    show();
    EXPECT_EQ(readies, 0);
    EXPECT_TRUE(becomesReady());
    blank->window()->repaint();
    QApplication::processEvents();
    clock.advance(BlankWindow::usualWait + BlankWindow::longestWait);
    EXPECT_EQ(readies, 1);
    EXPECT_EQ(waits, 0);
}

TEST_F(BlankWindowTest, leavesTimeForOtherWorkWhenItsPictureTakesLong) {
    show();
    clock.advance(BlankWindow::usualWait);
    EXPECT_EQ(waits, 1);
    EXPECT_EQ(readies, 0);
    EXPECT_TRUE(becomesReady());
    EXPECT_EQ(waits, 1);
}

TEST_F(BlankWindowTest, isReadyWithoutAPictureInTheEnd) {
    show();
    clock.advance(BlankWindow::usualWait + BlankWindow::longestWait);
    EXPECT_EQ(waits, 1);
    EXPECT_EQ(readies, 1);
    // The picture comes after all.
    QApplication::processEvents();
    blank->window()->repaint();
    QApplication::processEvents();
    EXPECT_EQ(readies, 1);
}

TEST_F(BlankWindowTest, isReadyAlsoWhenItsWindowWasTaken) {
    show();
    const auto window = blank->take();
    EXPECT_EQ(blank->window(), nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(becomesReady());
}

TEST_F(BlankWindowTest, mayBeGoneBeforeItsPicture) {
    show();
    const auto window = blank->take();
    blank.reset();
    QApplication::processEvents();
    clock.advance(BlankWindow::usualWait + BlankWindow::longestWait);
    EXPECT_EQ(waits + readies, 0);
}

TEST_F(BlankWindowTest, handsOnWhatIsTypedIntoItOnce) {
    show();
    const auto window = blank->take();
    QTest::keyClicks(window.get(), QStringLiteral("Ahead"));
    QTest::keyClick(window.get(), Qt::Key_Return);
    QPlainTextEdit editor;
    blank->catchUp(&editor, *window);
    blank->catchUp(&editor, *window);
    EXPECT_EQ(editor.toPlainText(), QStringLiteral("Ahead\n"));
    EXPECT_TRUE(window->isVisible());
}

TEST_F(BlankWindowTest, closesOnlyWhenWhatIsTypedIsHandedOn) {
    show();
    const auto window = blank->take();
    QTest::keyClicks(window.get(), QStringLiteral("Last words"));
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    QPlainTextEdit editor;
    blank->catchUp(&editor, *window);
    EXPECT_EQ(editor.toPlainText(), QStringLiteral("Last words"));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(BlankWindowTest, dropsWhatIsTypedWhereThereIsNoEditor) {
    show();
    const auto window = blank->take();
    QTest::keyClicks(window.get(), QStringLiteral("For nobody"));
    blank->catchUp(nullptr, *window);
    EXPECT_TRUE(window->isVisible());
}

} // namespace
} // namespace diary

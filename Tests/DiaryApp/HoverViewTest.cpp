// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/HoverView.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace diary {
namespace {

using testing::movePointerTo;
using testing::pictureOf;
using testing::pixelsOf;

class RecordingView : public HoverView {
public:
    using HoverView::HoverView;

    int hoverChanges = 0;

protected:
    void hoverDidChange() override { ++hoverChanges; }
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        paintFocusRing(painter, rect(), 5);
    }
};

// A view in the middle of an active window.
class HoverViewTest : public ::testing::Test {
protected:
    HoverViewTest() {
        window.resize(200, 120);
        view.setGeometry(50, 40, 100, 40);
        view.onClick = [this] { ++clicks; };
        EXPECT_TRUE(testing::showActive(window));
    }

    void moveInsideWindow(QPoint position) { movePointerTo(window, position); }

    QWidget window;
    RecordingView view{&window};
    int clicks = 0;
};

TEST_F(HoverViewTest, isHoveredWhileThePointerIsOverIt) {
    EXPECT_FALSE(view.isHovered());
    movePointerTo(view);
    EXPECT_TRUE(view.isHovered());
    EXPECT_EQ(view.hoverChanges, 1);
    moveInsideWindow({10, 10});
    EXPECT_FALSE(view.isHovered());
    EXPECT_EQ(view.hoverChanges, 2);
}

TEST_F(HoverViewTest, tellsOfNoChangeWhileThePointerStaysOver) {
    movePointerTo(view, {10, 10});
    movePointerTo(view, {20, 10});
    EXPECT_EQ(view.hoverChanges, 1);
}

TEST_F(HoverViewTest, isHoveredOnlyWhileTheWindowIsActive) {
    movePointerTo(view);
    QWidget other;
    other.setGeometry(500, 500, 50, 50);
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_FALSE(view.isHovered());
    movePointerTo(view, {20, 20});
    EXPECT_FALSE(view.isHovered());

    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_TRUE(view.isHovered());
}

TEST_F(HoverViewTest, isNotHoveredWhileDisabled) {
    movePointerTo(view);
    view.setEnabled(false);
    EXPECT_FALSE(view.isHovered());
}

TEST_F(HoverViewTest, isNoLongerHoveredWhenItShrinksAwayFromThePointer) {
    movePointerTo(view, {80, 20});
    ASSERT_TRUE(view.isHovered());
    view.resize(60, 40);
    EXPECT_FALSE(view.isHovered());
    movePointerTo(view, {40, 20});
    EXPECT_TRUE(view.isHovered());
    view.resize(50, 40);
    EXPECT_TRUE(view.isHovered());
}

TEST_F(HoverViewTest, reachesAsFarAsItsNewSize) {
    view.resize(140, 60);
    movePointerTo(view, {130, 55});
    EXPECT_TRUE(view.isHovered());
}

TEST_F(HoverViewTest, forgetsThePointerUntilItMoves) {
    movePointerTo(view);
    view.forgetPointer();
    EXPECT_FALSE(view.isHovered());
    movePointerTo(view, {20, 20});
    EXPECT_TRUE(view.isHovered());
}

TEST_F(HoverViewTest, startsUnhoveredWhenItIsShownAgain) {
    movePointerTo(view);
    view.hide();
    EXPECT_FALSE(view.isHovered());
}

TEST_F(HoverViewTest, isClickedByAReleaseInside) {
    QTest::mousePress(&view, Qt::LeftButton, {}, {10, 10});
    EXPECT_EQ(clicks, 0);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {90, 30});
    EXPECT_EQ(clicks, 1);
}

TEST_F(HoverViewTest, isNotClickedByAReleaseOutside) {
    QTest::mousePress(&view, Qt::LeftButton, {}, {10, 10});
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {10, 41});
    EXPECT_EQ(clicks, 0);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {10, 10});
    EXPECT_EQ(clicks, 0);
}

TEST_F(HoverViewTest, isClickedAfterDraggingOutAndBack) {
    testing::pressAt(view, {10, 10});
    testing::dragTo(view, {10, 60});
    EXPECT_FALSE(view.isHovered());
    testing::dragTo(view, {10, 20});
    EXPECT_TRUE(view.isHovered());
    testing::releaseAt(view, {10, 20});
    EXPECT_EQ(clicks, 1);
    testing::pressAt(view, {10, 10});
    testing::dragTo(view, {10, 60});
    testing::releaseAt(view, {10, 60});
    EXPECT_EQ(clicks, 1);
}

TEST_F(HoverViewTest, isClickedByTheLeftButtonOnly) {
    QTest::mouseClick(&view, Qt::RightButton);
    QTest::mouseClick(&view, Qt::MiddleButton);
    EXPECT_EQ(clicks, 0);
}

TEST_F(HoverViewTest, forgetsAPressThatIsNoLongerMeant) {
    QTest::mousePress(&view, Qt::LeftButton);
    view.forgetPress();
    QTest::mouseRelease(&view, Qt::LeftButton);
    EXPECT_EQ(clicks, 0);

    QTest::mousePress(&view, Qt::LeftButton);
    view.hide();
    view.show();
    QTest::mouseRelease(&view, Qt::LeftButton);
    EXPECT_EQ(clicks, 0);
}

TEST_F(HoverViewTest, doesNothingWithoutAnAction) {
    view.onClick = nullptr;
    QTest::mouseClick(&view, Qt::LeftButton);
    EXPECT_EQ(clicks, 0);
}

TEST_F(HoverViewTest, mayBeDestroyedByItsAction) {
    const QPointer<HoverView> doomed = new HoverView(&window);
    doomed->show();
    doomed->onClick = [this, doomed] {
        ++clicks;
        delete doomed.data();
    };
    doomed->click();
    EXPECT_TRUE(doomed.isNull());
    EXPECT_EQ(clicks, 1);
}

TEST_F(HoverViewTest, isPressedByReturnEnterAndSpace) {
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Return);
    QTest::keyClick(&view, Qt::Key_Enter, Qt::KeypadModifier);
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(clicks, 3);
    QTest::keyClick(&view, Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_A);
    EXPECT_EQ(clicks, 3);
}

TEST_F(HoverViewTest, isPressedOnceByAKeyHeldDown) {
    view.setFocus();
    QTest::keyPress(&view, Qt::Key_Return);
    for (int repeat = 0; repeat < 3; ++repeat) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(&view, &event);
        EXPECT_TRUE(event.isAccepted());
    }
    EXPECT_EQ(clicks, 1);
}

TEST_F(HoverViewTest, takesTheKeyboardByTabButNotByAClick) {
    QLineEdit edit(&window);
    edit.show();
    QWidget::setTabOrder(&edit, &view);
    edit.setFocus();
    QTest::mouseClick(&view, Qt::LeftButton);
    EXPECT_TRUE(edit.hasFocus());
    QTest::keyClick(&edit, Qt::Key_Tab);
    EXPECT_TRUE(view.hasFocus());
}

TEST_F(HoverViewTest, hasARingWhileItHasTheKeyboard) {
    EXPECT_EQ(pixelsOf(Theme::accent(), pictureOf(view), view.rect()), 0);
    view.setFocus();
    const auto picture = pictureOf(view);
    for (const auto &edge :
         {QRect(20, 0, 60, 2), QRect(20, 38, 60, 2), QRect(0, 10, 2, 20), QRect(98, 10, 2, 20)})
        EXPECT_TRUE(testing::isFilledWith(Theme::accent(), picture, edge)) << edge.x() << ' ' << edge.y();
    EXPECT_EQ(pixelsOf(Theme::accent(), picture, view.rect().adjusted(4, 4, -4, -4)), 0);
    view.clearFocus();
    EXPECT_EQ(pixelsOf(Theme::accent(), pictureOf(view), view.rect()), 0);
}

TEST_F(HoverViewTest, isAButtonForAssistiveTechnologies) {
    view.setAccessibleName(QStringLiteral("Press me"));
    auto *accessible = QAccessible::queryAccessibleInterface(&view);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Press me"));
    EXPECT_EQ(accessible->rect(), QRect(view.mapToGlobal(QPoint()), view.size()));
    EXPECT_TRUE(accessible->state().focusable);
    EXPECT_FALSE(accessible->state().hasPopup);

    auto *actions = accessible->actionInterface();
    ASSERT_TRUE(actions);
    ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicks, 1);
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(view.hasFocus());
    EXPECT_EQ(clicks, 1);
}

TEST_F(HoverViewTest, offersNoPressWhileDisabled) {
    view.setEnabled(false);
    auto *actions = QAccessible::queryAccessibleInterface(&view)->actionInterface();
    EXPECT_FALSE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicks, 0);
}

} // namespace
} // namespace diary

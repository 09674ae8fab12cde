// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/PhotoPreviewPanel.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QTest>
#include <QWheelEvent>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PhotoPreviewPanelTest : public ::testing::Test {
protected:
    PhotoPreviewPanelTest() {
        window.resize(1360, 840);
        field.setGeometry(20, 20, 200, 30);
        EXPECT_TRUE(testing::showActive(window));
        field.setFocus();
        panel->onShow = [this](std::size_t index) {
            wished.push_back(index);
            show(index, panel->model().count);
        };
        panel->onClose = [this] { ++closeWishes; };
        panel->onClosed = [this] { ++closed; };
    }

    void show(std::size_t index, std::size_t count = 5) const {
        panel->update({.image = photo,
                       .proportions = photo.size(),
                       .enlarging = PhotoEnlarging::ToFill,
                       .title = QStringLiteral("IMG_%1.jpg").arg(index),
                       .index = index,
                       .count = count,
                       .hasFile = true});
    }
    void open(std::size_t index, std::size_t count = 5) const {
        show(index, count);
        panel->zoomIn(tile());
        ASSERT_TRUE(panel->isOpen());
    }
    QRect tile() const { return {window.mapToGlobal(QPoint(300, 600)), QSize(150, 100)}; }

    template <typename Widget = QWidget>
    Widget *part(const char *name) const {
        return panel->findChild<Widget *>(QLatin1String(name));
    }
    // To whatever has the keyboard.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void clickAt(const QPoint &position) const {
        testing::pressAt(*panel, position);
        testing::releaseAt(*panel, position);
    }

    const QImage photo = [] {
        QImage image(600, 400, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        return image;
    }();
    QWidget window;
    QLineEdit field{&window};
    PhotoPreviewPanel *panel = new PhotoPreviewPanel(&window);
    std::vector<std::size_t> wished;
    int closeWishes = 0;
    int closed = 0;
};

TEST_F(PhotoPreviewPanelTest, showsNothingUntilItIsOpened) {
    show(0);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(panel->isOpen());
    EXPECT_TRUE(field.hasFocus());
}

TEST_F(PhotoPreviewPanelTest, coversTheWholePageAlsoWhenItGrows) {
    open(0);
    EXPECT_EQ(panel->geometry(), window.rect());
    window.resize(1500, 900);
    EXPECT_TRUE(QTest::qWaitFor([&] { return panel->size() == QSize(1500, 900); }));
    EXPECT_EQ(part("photo")->geometry(), panel->currentLayout().picture);
}

TEST_F(PhotoPreviewPanelTest, showsThePictureInItsPlaceOnADimmedPage) {
    window.setStyleSheet(QStringLiteral("background: white"));
    open(2);
    const auto layout = panel->currentLayout();
    const auto picture = testing::pictureOf(window, 1);
    EXPECT_TRUE(testing::isFilledWith(Qt::darkCyan, picture, layout.picture));
    EXPECT_TRUE(
        testing::isFilledWith(Theme::cardBgActive(), picture,
                              {layout.pictureArea.topLeft(), layout.picture.bottomLeft() - QPoint(1, 0)}));
    const auto corner = picture.pixelColor(2, 2);
    EXPECT_LT(corner.lightness(), 200);
    EXPECT_GT(corner.lightness(), 80);
}

TEST_F(PhotoPreviewPanelTest, showsAsManyPixelsAsTheScreenHas) {
    open(0);
    const auto shown = part<QLabel>("photo")->pixmap();
    EXPECT_EQ(shown.size(),
              (QSizeF(panel->currentLayout().picture.size()) * shown.devicePixelRatio()).toSize());
}

TEST_F(PhotoPreviewPanelTest, tellsTitleAndPosition) {
    open(1, 7);
    EXPECT_EQ(part<QLabel>("photoTitle")->text(), QStringLiteral("IMG_1.jpg"));
    EXPECT_EQ(part<QLabel>("photoPosition")->text(), QStringLiteral("2 / 7"));
}

TEST_F(PhotoPreviewPanelTest, stepsWithItsKeys) {
    open(1);
    for (const auto key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_End,
                           Qt::Key_Home, Qt::Key_Down, Qt::Key_Up})
        press(key);
    EXPECT_THAT(wished, ElementsAre(2, 1, 2, 1, 4, 0, 1, 0));
}

TEST_F(PhotoPreviewPanelTest, stepsTheOtherWayFromRightToLeft) {
    panel->setLayoutDirection(Qt::RightToLeft);
    open(1);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    press(Qt::Key_Right);
    EXPECT_THAT(wished, ElementsAre(2, 3, 2));
}

TEST_F(PhotoPreviewPanelTest, stepsWithItsButtonsAndStopsAtBothEnds) {
    open(0, 2);
    EXPECT_FALSE(part("previousPhoto")->isEnabled());
    QTest::mouseClick(part("nextPhoto"), Qt::LeftButton);
    EXPECT_FALSE(part("nextPhoto")->isEnabled());
    press(Qt::Key_Right);
    press(Qt::Key_End);
    QTest::mouseClick(part("previousPhoto"), Qt::LeftButton);
    press(Qt::Key_Left);
    EXPECT_THAT(wished, ElementsAre(1, 0));
}

TEST_F(PhotoPreviewPanelTest, offersNoStepsForASinglePhoto) {
    open(0, 1);
    EXPECT_FALSE(part("previousPhoto")->isVisible());
    EXPECT_FALSE(part("nextPhoto")->isVisible());
    EXPECT_FALSE(part("photoPosition")->isVisible());
    for (const auto key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_Home, Qt::Key_End})
        press(key);
    EXPECT_THAT(wished, IsEmpty());
}

TEST_F(PhotoPreviewPanelTest, asksToBeClosedByItsKeysAndItsButton) {
    open(0);
    press(Qt::Key_Escape);
    press(Qt::Key_Space);
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(closeWishes, 3);
    QTest::mouseClick(part("closePreview"), Qt::LeftButton);
    EXPECT_EQ(closeWishes, 4);
}

TEST_F(PhotoPreviewPanelTest, staysOpenWhileTheKeyThatOpenedItIsHeld) {
    open(0);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Space, {}, QStringLiteral(" "), true);
    QApplication::sendEvent(panel, &held);
    EXPECT_EQ(closeWishes, 0);
}

TEST_F(PhotoPreviewPanelTest, asksToBeClosedByAClickBesideThePicture) {
    open(0);
    const auto layout = panel->currentLayout();
    clickAt(layout.picture.center());
    clickAt({layout.bar.left() + 2, layout.bar.center().y()});
    EXPECT_EQ(closeWishes, 0);
    clickAt({5, 5});
    clickAt(layout.pictureArea.topLeft() - QPoint(4, -40));
    EXPECT_EQ(closeWishes, 2);
    testing::pressAt(*panel, {5, 5});
    testing::releaseAt(*panel, layout.picture.center());
    testing::pressAt(*panel, layout.picture.center());
    testing::releaseAt(*panel, {5, 5});
    EXPECT_EQ(closeWishes, 2);
}

TEST_F(PhotoPreviewPanelTest, givesTheKeyboardBackWhereItWas) {
    open(0);
    EXPECT_TRUE(panel->hasFocus());
    press(Qt::Key_Tab);
    panel->zoomOut(tile());
    EXPECT_TRUE(field.hasFocus());
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(closed, 1);
}

TEST_F(PhotoPreviewPanelTest, givesTheKeyboardToNobodyWhenNobodyHadIt) {
    field.clearFocus();
    open(0);
    panel->dismiss();
    EXPECT_EQ(window.focusWidget(), nullptr);
}

TEST_F(PhotoPreviewPanelTest, outlivesTheOneWhoHadTheKeyboard) {
    auto other = std::make_unique<QLineEdit>(&window);
    other->show();
    other->setFocus();
    open(0);
    other.reset();
    panel->zoomOut(tile());
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(panel->hasFocus());
}

TEST_F(PhotoPreviewPanelTest, keepsTheTabKeyInside) {
    open(1);
    std::vector<QString> forward;
    for (int step = 0; step < 7; ++step) {
        press(Qt::Key_Tab);
        forward.push_back(QApplication::focusWidget()->objectName());
    }
    EXPECT_THAT(forward,
                ElementsAre(QStringLiteral("previousPhoto"), QStringLiteral("nextPhoto"),
                            QStringLiteral("openInViewer"), QStringLiteral("showInFolder"),
                            QStringLiteral("closePreview"), QString(), QStringLiteral("previousPhoto")));
    press(Qt::Key_Tab, Qt::ShiftModifier);
    press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), part("closePreview"));
}

TEST_F(PhotoPreviewPanelTest, pressesTheButtonThatHasTheKeyboard) {
    int opened = 0;
    int revealed = 0;
    panel->onOpenInViewer = [&] { ++opened; };
    panel->onShowInFolder = [&] { ++revealed; };
    open(0, 1);
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(revealed, 1);
    EXPECT_EQ(closeWishes, 0);
}

TEST_F(PhotoPreviewPanelTest, keepsTheKeyboardWhenItsButtonHasNothingMoreToDo) {
    open(0, 2);
    part("nextPhoto")->setFocus();
    press(Qt::Key_Space);
    EXPECT_THAT(wished, ElementsAre(1));
    EXPECT_TRUE(panel->hasFocus());
}

TEST_F(PhotoPreviewPanelTest, letsNoShortcutOfTheWindowThroughButTheOneThatQuits) {
    int stepped = 0;
    int quits = 0;
    const auto shortcut = [this](const QKeySequence &keys, int &count) {
        QObject::connect(new QShortcut(keys, &window), &QShortcut::activated, &window, [&count] { ++count; });
    };
    shortcut(Qt::CTRL | Qt::Key_Left, stepped);
    shortcut(Qt::ALT | Qt::Key_Left, stepped);
    shortcut(Qt::CTRL | Qt::Key_W, stepped);
    shortcut(Qt::Key_Escape, stepped);
    shortcut(Qt::CTRL | Qt::Key_Q, quits);
    const auto pressAll = [] {
        press(Qt::Key_Left, Qt::ControlModifier);
        press(Qt::Key_Left, Qt::AltModifier);
        press(Qt::Key_W, Qt::ControlModifier);
        press(Qt::Key_Escape);
        press(Qt::Key_Q, Qt::ControlModifier);
    };
    open(1);
    pressAll();
    press(Qt::Key_Tab);
    pressAll();
    EXPECT_EQ(stepped, 0);
    EXPECT_EQ(quits, 2);
    EXPECT_THAT(wished, IsEmpty());
    panel->dismiss();
    field.clearFocus();
    window.setFocus();
    pressAll();
    EXPECT_EQ(stepped, 4);
    EXPECT_EQ(quits, 3);
}

TEST_F(PhotoPreviewPanelTest, keepsTheWheelFromThePage) {
    open(0);
    QWheelEvent wheel({300, 300}, panel->mapToGlobal(QPointF(300, 300)), {0, -40}, {0, -120}, Qt::NoButton,
                      {}, Qt::NoScrollPhase, false);
    wheel.ignore();
    QApplication::sendEvent(panel, &wheel);
    EXPECT_TRUE(wheel.isAccepted());
}

TEST_F(PhotoPreviewPanelTest, tellsWhatItIs) {
    open(1);
    const auto name = [](QWidget *widget) {
        return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
    };
    const auto *dialog = QAccessible::queryAccessibleInterface(panel);
    EXPECT_EQ(dialog->role(), QAccessible::Dialog);
    EXPECT_TRUE(dialog->state().modal);
    EXPECT_EQ(name(panel), QStringLiteral("IMG_1.jpg, 2 / 5"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(part("photo"))->role(), QAccessible::Graphic);
    EXPECT_EQ(name(part("photo")), QStringLiteral("IMG_1.jpg"));
    EXPECT_EQ(name(part("previousPhoto")), QStringLiteral("Previous Photo"));
    EXPECT_EQ(name(part("nextPhoto")), QStringLiteral("Next Photo"));
    EXPECT_EQ(name(part("openInViewer")), QStringLiteral("Open in Image Viewer"));
    EXPECT_EQ(name(part("showInFolder")), QStringLiteral("Show in Folder"));
    EXPECT_EQ(name(part("closePreview")), QStringLiteral("Close"));
}

TEST_F(PhotoPreviewPanelTest, zoomsOutOfItsTileAndBack) {
    panel->setZoomDuration(200ms);
    show(1);
    panel->zoomIn(tile());
    EXPECT_TRUE(panel->isZooming());
    EXPECT_TRUE(panel->isOpen());
    EXPECT_FALSE(part("photo")->isVisible());
    // At its beginning the picture stands on the tile.
    const auto start = testing::pictureOf(*panel, 1);
    EXPECT_TRUE(testing::isFilledWith(Qt::darkCyan, start, QRect(301, 601, 148, 98)));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !panel->isZooming(); }));
    EXPECT_TRUE(panel->isOpen());
    EXPECT_TRUE(part("photo")->isVisible());

    panel->zoomOut(tile());
    EXPECT_TRUE(panel->isZooming());
    EXPECT_FALSE(panel->isOpen());
    EXPECT_TRUE(field.hasFocus());
    EXPECT_EQ(closed, 0);
    EXPECT_TRUE(QTest::qWaitFor([this] { return closed == 1; }));
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(PhotoPreviewPanelTest, opensAgainWhileItCloses) {
    panel->setZoomDuration(200ms);
    show(1);
    panel->zoomIn(tile());
    panel->zoomOut({});
    open(2);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !panel->isZooming(); }));
    EXPECT_TRUE(panel->isOpen());
    EXPECT_TRUE(panel->hasFocus());
    EXPECT_EQ(closed, 0);
    panel->dismiss();
    EXPECT_TRUE(field.hasFocus());
    EXPECT_EQ(closed, 1);
}

TEST_F(PhotoPreviewPanelTest, endsItsZoomWhenThePageChangesItsSize) {
    panel->setZoomDuration(3600s);
    show(1);
    panel->zoomIn(tile());
    window.resize(1200, 800);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !panel->isZooming(); }));
    EXPECT_TRUE(panel->isOpen());
}

TEST_F(PhotoPreviewPanelTest, closesOnceHoweverOftenItIsTold) {
    open(0);
    panel->zoomOut(tile());
    panel->zoomOut(tile());
    panel->dismiss();
    EXPECT_EQ(closed, 1);
}

TEST_F(PhotoPreviewPanelTest, takesABetterPictureWhileItZooms) {
    panel->setZoomDuration(3600s);
    show(1);
    panel->zoomIn(tile());
    auto better = panel->model();
    better.image = QImage(1200, 800, QImage::Format_RGB32);
    better.image.fill(Qt::red);
    panel->update(better);
    EXPECT_TRUE(panel->isZooming());
    EXPECT_TRUE(testing::isFilledWith(Qt::red, testing::pictureOf(*panel, 1), QRect(301, 601, 148, 98)));
}

} // namespace
} // namespace diary

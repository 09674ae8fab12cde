// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QFontMetrics>
#include <QTest>

#include <gtest/gtest.h>

namespace diary {
namespace {

using testing::movePointerTo;
using testing::pictureOf;
using testing::pixelsOf;

class ChromeButtonTest : public ::testing::Test {
protected:
    ChromeButtonTest() {
        window.resize(300, 100);
        button.move(40, 40);
        EXPECT_TRUE(testing::showActive(window));
    }

    QWidget window;
    ChromeButton::Style style{Theme::system(12), Theme::chromeText(), Theme::inkTitle(), 18, 10};
    ChromeButton button{QStringLiteral("Random Day"), style, &window};
};

TEST_F(ChromeButtonTest, isAsLargeAsItsTextAndThePadding) {
    const auto label = button.labelRect();
    EXPECT_EQ(button.size(), label.size() + QSize(18, 10));
    EXPECT_EQ(label.topLeft(), QPoint(9, 5));
    EXPECT_EQ(label.height(), QFontMetrics(style.font).height());
    EXPECT_GE(label.width(), QFontMetricsF(style.font).horizontalAdvance(button.text()));
    EXPECT_LT(label.width(), QFontMetricsF(style.font).horizontalAdvance(button.text()) + 1);
}

TEST_F(ChromeButtonTest, isPaleWhileItCannotBePressed) {
    button.setEnabled(false);
    const auto picture = pictureOf(button);
    EXPECT_GT(pixelsOf(Theme::placeholder(), picture, button.rect()), 0);
    EXPECT_EQ(pixelsOf(Theme::chromeText(), picture, button.rect()), 0);
}

TEST_F(ChromeButtonTest, growsAndShrinksWithItsText) {
    const int width = button.width();
    button.setText(QStringLiteral("Random Day of the Year"));
    EXPECT_GT(button.width(), width);
    button.setText(QStringLiteral("Random Day"));
    EXPECT_EQ(button.width(), width);
}

TEST_F(ChromeButtonTest, hasItsNormalColourAndNoGroundAtRest) {
    const auto picture = pictureOf(button);
    EXPECT_GT(pixelsOf(Theme::chromeText(), picture, button.labelRect()), 0);
    EXPECT_EQ(pixelsOf(Theme::inkTitle(), picture, button.rect()), 0);
    EXPECT_EQ(pixelsOf(Theme::hoverBg(), picture, button.rect()), 0);
}

TEST_F(ChromeButtonTest, hasItsHoverColourOnARoundedGroundUnderThePointer) {
    movePointerTo(button);
    const auto picture = pictureOf(button);
    EXPECT_GT(pixelsOf(Theme::inkTitle(), picture, button.labelRect()), 0);
    EXPECT_EQ(pixelsOf(Theme::chromeText(), picture, button.rect()), 0);
    EXPECT_TRUE(testing::isFilledWith(Theme::hoverBg(), picture, {10, 0, button.width() - 20, 4}));
    // The corner is cut by a circle of 5 pixels.
    EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
    EXPECT_EQ(picture.pixel(2 * 4, 2 * 4), Theme::hoverBg().rgba());
    EXPECT_EQ(picture.pixel(5 * 4, 0), Theme::hoverBg().rgba());
}

TEST_F(ChromeButtonTest, keepsTheHoverColourWhenItsTextChangesUnderThePointer) {
    movePointerTo(button);
    button.setText(QStringLiteral("Reader of Days"));
    EXPECT_TRUE(button.isHovered());
    EXPECT_GT(pixelsOf(Theme::inkTitle(), pictureOf(button), button.labelRect()), 0);
    EXPECT_EQ(pixelsOf(Theme::chromeText(), pictureOf(button), button.rect()), 0);
}

TEST_F(ChromeButtonTest, isNamedAfterItsTextUnlessItHasAnotherName) {
    const auto *accessible = QAccessible::queryAccessibleInterface(&button);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Random Day"));
    button.setText(QStringLiteral("›"));
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("›"));
    button.setAccessibleName(QStringLiteral("Next Day"));
    button.setText(QStringLiteral("»"));
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Next Day"));
}

TEST_F(ChromeButtonTest, isClickedByReleasingInsideOnly) {
    int clicks = 0;
    button.onClick = [&] { ++clicks; };
    testing::pressAt(button, {5, 5});
    testing::dragTo(button, {-5, 5});
    testing::releaseAt(button, {-5, 5});
    EXPECT_EQ(clicks, 0);
    testing::pressAt(button, {5, 5});
    testing::dragTo(button, {-5, 5});
    testing::dragTo(button, {8, 8});
    testing::releaseAt(button, {8, 8});
    EXPECT_EQ(clicks, 1);
}

} // namespace
} // namespace diary

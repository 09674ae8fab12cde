// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/IconButton.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

namespace diary {
namespace {

using testing::pictureOf;
using testing::pixelsOf;

class IconButtonTest : public ::testing::Test {
protected:
    IconButtonTest() {
        window.resize(200, 100);
        button.move(40, 40);
        EXPECT_TRUE(testing::showActive(window));
    }

    QWidget window;
    IconButton button{QStringLiteral("square.grid.3x3"), QStringLiteral("Year Calendar"), &window};
};

TEST_F(IconButtonTest, hasItsSize) {
    EXPECT_EQ(button.size(), QSize(34, 26));
}

TEST_F(IconButtonTest, drawsItsSymbolInTheMiddle) {
    for (const int ratio : {1, 2}) {
        const auto picture = pictureOf(button, ratio);
        EXPECT_EQ(pixelsOf(Theme::chevron(), picture, button.rect()), 9 * 12 * ratio * ratio);
        EXPECT_EQ(pixelsOf(Theme::chevron(), picture, {10, 6, 14, 14}), 9 * 12 * ratio * ratio);
    }
}

TEST_F(IconButtonTest, darkensOnAGroundUnderThePointer) {
    EXPECT_EQ(pixelsOf(Theme::hoverBg(), pictureOf(button, 1), button.rect()), 0);
    testing::movePointerTo(button);
    const auto picture = pictureOf(button, 1);
    EXPECT_EQ(pixelsOf(Theme::inkTitle(), picture, button.rect()), 9 * 12);
    EXPECT_EQ(pixelsOf(Theme::chevron(), picture, button.rect()), 0);
    EXPECT_TRUE(testing::isFilledWith(Theme::hoverBg(), picture, {6, 0, 22, 6}));
    EXPECT_NE(picture.pixel(0, 0), Theme::hoverBg().rgba());
}

TEST_F(IconButtonTest, isPaleWhileItCannotBePressed) {
    button.setEnabled(false);
    EXPECT_EQ(pixelsOf(Theme::placeholder(), pictureOf(button, 1), button.rect()), 9 * 12);
}

TEST_F(IconButtonTest, tellsWhatItIs) {
    EXPECT_EQ(button.toolTip(), QStringLiteral("Year Calendar"));
    const auto *accessible = QAccessible::queryAccessibleInterface(&button);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Year Calendar"));
}

TEST_F(IconButtonTest, isPressedFromTheKeyboard) {
    int clicks = 0;
    button.onClick = [&] { ++clicks; };
    button.setFocus(Qt::TabFocusReason);
    EXPECT_GT(pixelsOf(Theme::accent(), pictureOf(button, 1), button.rect()), 0);
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_EQ(clicks, 1);
}

} // namespace
} // namespace diary

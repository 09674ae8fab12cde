// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/Theme.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace diary {
namespace {

class SettingsButtonTest : public ::testing::Test {
protected:
    void SetUp() override {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(button);
        layout->addWidget(other);
        QObject::connect(button, &QPushButton::clicked, &window, [this] { ++clicks; });
        ASSERT_TRUE(testing::showActive(window));
    }

    QWidget window;
    SettingsButton *button = new SettingsButton(QStringLiteral("Fish & Chips…"));
    SettingsButton *other = new SettingsButton(QStringLiteral("Other"));
    int clicks = 0;
};

TEST_F(SettingsButtonTest, isPressedByMouseSpaceReturnAndAssistiveTechnologies) {
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(clicks, 1);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_EQ(clicks, 2);
    QTest::keyClick(button, Qt::Key_Return);
    QTest::keyClick(button, Qt::Key_Enter);
    EXPECT_EQ(clicks, 4);
    auto *accessible = QAccessible::queryAccessibleInterface(button);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Fish & Chips…"));
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([this] { return clicks == 5; }));
}

TEST_F(SettingsButtonTest, takesAnAmpersandAsItStands) {
    EXPECT_EQ(button->text(), QStringLiteral("Fish && Chips…"));
    EXPECT_TRUE(button->shortcut().isEmpty());
}

TEST_F(SettingsButtonTest, showsThatItHasTheKeyboard) {
    const auto without = testing::pictureOf(*button);
    EXPECT_EQ(testing::pixelsOf(Theme::accent(), without, button->rect()), 0);
    button->setFocus(Qt::TabFocusReason);
    EXPECT_GT(testing::pixelsOf(Theme::accent(), testing::pictureOf(*button), button->rect()), 0);
}

TEST_F(SettingsButtonTest, isPaleWhileItCannotBePressed) {
    button->setEnabled(false);
    const auto picture = testing::pictureOf(*button);
    EXPECT_EQ(testing::pixelsOf(Theme::ink(), picture, button->rect()), 0);
    EXPECT_GT(testing::pixelsOf(Theme::faint(), picture, button->rect()), 0);
}

TEST_F(SettingsButtonTest, hasRoomForItsTextAndNeedsLess) {
    EXPECT_GT(button->sizeHint().width(),
              QFontMetrics(button->font()).horizontalAdvance(button->accessibleName()));
    EXPECT_LT(button->minimumSizeHint().width(), button->sizeHint().width());
    EXPECT_EQ(button->minimumSizeHint().height(), button->sizeHint().height());
}

TEST(SettingsMenu, letsTheWheelPass) {
    SettingsMenu menu({QStringLiteral("A"), QStringLiteral("B")});
    menu.show();
    QWheelEvent event(QPointF(5, 5), menu.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&menu, &event);
    EXPECT_EQ(menu.currentIndex(), 0);
    EXPECT_FALSE(event.isAccepted());
}

TEST(SettingsMenu, opensWithReturnAndSpace) {
    SettingsMenu menu({QStringLiteral("A"), QStringLiteral("B")});
    ASSERT_TRUE(testing::showActive(menu));
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        QTest::keyClick(&menu, key);
        EXPECT_TRUE(menu.view()->isVisible());
        menu.hidePopup();
    }
}

} // namespace
} // namespace diary

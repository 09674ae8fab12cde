// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/AddYearCardView.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

namespace diary {
namespace {

using testing::movePointerTo;
using testing::pictureOf;
using testing::pixelsOf;

class AddYearCardViewTest : public ::testing::Test {
protected:
    AddYearCardViewTest() {
        window.resize(300, 120);
        card.setGeometry(20, 20, 255, AddYearCardView::cardHeight);
        card.update(model({2023, 2025, 2021}));
        EXPECT_TRUE(testing::showActive(window));
    }

    AddYearCardView::Model model(std::vector<std::int64_t> years) {
        return {QStringLiteral("Add a past year"), std::move(years),
                [this](std::int64_t year) { picked.push_back(year); }};
    }
    QMenu *menu() { return card.findChild<QMenu *>(); }
    bool menuIsGone() {
        return QTest::qWaitFor([this] { return menu() == nullptr; });
    }

    std::vector<std::int64_t> picked;
    QWidget window;
    AddYearCardView card{&window};
};

TEST_F(AddYearCardViewTest, listsTheYearsInTheOrderGiven) {
    QTest::mouseClick(&card, Qt::LeftButton);
    ASSERT_TRUE(menu());
    QStringList titles;
    for (const auto *action : menu()->actions())
        titles.append(action->text());
    EXPECT_EQ(titles, QStringList({QStringLiteral("2023"), QStringLiteral("2025"), QStringLiteral("2021")}));
    EXPECT_EQ(menu()->font(), Theme::mono(13));
}

TEST_F(AddYearCardViewTest, opensTheMenuBelowItselfWithNothingChosen) {
    QTest::mouseClick(&card, Qt::LeftButton);
    ASSERT_TRUE(menu());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu()));
    EXPECT_EQ(menu()->pos(), card.mapToGlobal(QPoint(0, 46 + 4)));
    EXPECT_EQ(menu()->activeAction(), nullptr);
}

TEST_F(AddYearCardViewTest, picksByMouse) {
    QTest::mouseClick(&card, Qt::LeftButton);
    ASSERT_TRUE(menu());
    QTest::mouseClick(menu(), Qt::LeftButton, {}, menu()->actionGeometry(menu()->actions().at(1)).center());
    EXPECT_EQ(picked, std::vector<std::int64_t>{2025});
    EXPECT_TRUE(menuIsGone());
}

TEST_F(AddYearCardViewTest, picksByKeyboard) {
    card.setFocus();
    QTest::keyClick(&card, Qt::Key_Space);
    ASSERT_TRUE(menu());
    QTest::keyClick(menu(), Qt::Key_Down);
    QTest::keyClick(menu(), Qt::Key_Down);
    QTest::keyClick(menu(), Qt::Key_Down);
    QTest::keyClick(menu(), Qt::Key_Return);
    EXPECT_EQ(picked, std::vector<std::int64_t>{2021});
    EXPECT_TRUE(menuIsGone());
    EXPECT_EQ(window.focusWidget(), &card);
}

TEST_F(AddYearCardViewTest, picksNothingWhenTheMenuIsLeft) {
    QTest::mouseClick(&card, Qt::LeftButton);
    ASSERT_TRUE(menu());
    QTest::keyClick(menu(), Qt::Key_Escape);
    EXPECT_TRUE(menuIsGone());
    EXPECT_TRUE(picked.empty());
}

TEST_F(AddYearCardViewTest, mayBeUpdatedByThePick) {
    auto changing = model({2023, 2025});
    changing.onPick = [this](std::int64_t year) {
        picked.push_back(year);
        card.update(model({2025}));
    };
    card.update(changing);
    card.click();
    ASSERT_TRUE(menu());
    QTest::keyClick(menu(), Qt::Key_Down);
    QTest::keyClick(menu(), Qt::Key_Return);
    EXPECT_EQ(picked, std::vector<std::int64_t>{2023});
    EXPECT_TRUE(menuIsGone());
}

TEST_F(AddYearCardViewTest, closesAMenuOfOtherYears) {
    card.click();
    ASSERT_TRUE(menu());
    card.update(model({2023, 2025, 2021}));
    EXPECT_TRUE(menu()->isVisible());
    card.update(model({2025}));
    EXPECT_TRUE(menuIsGone());
}

TEST_F(AddYearCardViewTest, showsItsTitleInTheMiddleAfterAPlus) {
    const auto label = card.labelRect();
    EXPECT_NEAR(label.center().x(), card.rect().center().x(), 1);
    EXPECT_NEAR(label.center().y(), card.rect().center().y(), 1);
    const QFontMetricsF metrics(Theme::system(12.5, Theme::Weight::Medium));
    EXPECT_EQ(label.width(), std::ceil(metrics.horizontalAdvance(QStringLiteral("\uFF0B  Add a past year"))));
    card.resize(100, 46);
    EXPECT_EQ(card.labelRect().width(), 100 - 32);
}

TEST_F(AddYearCardViewTest, isDashedAndPaleAtRest) {
    const auto picture = pictureOf(card);
    EXPECT_GT(pixelsOf(Theme::faint(), picture, card.labelRect()), 0);
    // Four on, three off along the upper edge: 4/7 of 210 pixels, each drawn as 16.
    EXPECT_NEAR(pixelsOf(Theme::cardBorder(), picture, {20, 0, 210, 1}), 1920, 16 * 8);
    EXPECT_EQ(pixelsOf(Theme::cardBorder(), picture, {20, 1, 210, 44}), 0);
}

TEST_F(AddYearCardViewTest, darkensUnderThePointer) {
    movePointerTo(card);
    const auto picture = pictureOf(card);
    EXPECT_GT(pixelsOf(Theme::inkMed(), picture, card.labelRect()), 0);
    EXPECT_EQ(pixelsOf(Theme::faint(), picture, card.rect()), 0);
    EXPECT_GT(pixelsOf(Theme::cardBorderActive(), picture, {20, 0, 210, 1}), 0);
    EXPECT_EQ(pixelsOf(Theme::cardBorder(), picture, card.rect()), 0);
}

TEST_F(AddYearCardViewTest, isAButtonWithAMenuForAssistiveTechnologies) {
    auto *accessible = QAccessible::queryAccessibleInterface(&card);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Add a past year"));
    EXPECT_TRUE(accessible->state().hasPopup);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(menu());
}

} // namespace
} // namespace diary

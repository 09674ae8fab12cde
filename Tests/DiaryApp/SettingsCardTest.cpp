// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"

#include <DiaryApp/SettingsCard.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QCheckBox>
#include <QLabel>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace diary {
namespace {

constexpr int cardWidth = 496;

TEST(SettingsRows, standOnOneLineWhicheverIsHigher) {
    const auto layout = layoutSettingsRows(
        {{.labelHeight = 16, .labelBaseline = 12, .controlHeight = 24, .controlBaseline = 17},
         {.labelHeight = 32, .labelBaseline = 13, .controlHeight = 14, .controlBaseline = 11},
         {.controlHeight = 20, .controlBaseline = 15}});
    ASSERT_EQ(layout.rows.size(), 3U);
    EXPECT_EQ(layout.rows[0].labelTop, 5);
    EXPECT_EQ(layout.rows[0].controlTop, 0);
    EXPECT_EQ(layout.rows[1].labelTop, 24 + 10);
    EXPECT_EQ(layout.rows[1].controlTop, 24 + 10 + 2);
    EXPECT_EQ(layout.rows[2].controlTop, 24 + 10 + 32 + 10);
    EXPECT_EQ(layout.height, 24 + 10 + 32 + 10 + 20);
}

TEST(SettingsRows, takeNoRoomWhileTheyAreHidden) {
    const SettingsRowMetrics row{.controlHeight = 20, .controlBaseline = 15};
    auto hidden = row;
    hidden.isVisible = false;
    EXPECT_EQ(layoutSettingsRows({row, hidden, row}).height, 50);
    EXPECT_EQ(layoutSettingsRows({hidden, row}).height, 20);
    EXPECT_EQ(layoutSettingsRows({hidden}).height, 0);
}

class SettingsCardTest : public ::testing::Test {
protected:
    SettingsCard card{QStringLiteral("Writing"), cardWidth};
};

TEST_F(SettingsCardTest, hasItsTitleInCapitalsAboveTheBox) {
    const auto *title = card.findChild<ThemeLabel *>(QStringLiteral("cardTitle"));
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->text(), QLatin1String("WRITING"));
    EXPECT_EQ(title->font(), Theme::mono(10));
    EXPECT_EQ(title->textStyle().color, Theme::sectionHead());
    EXPECT_EQ(card.boxRect().top(), title->geometry().bottom() + 1 + 6);
    EXPECT_EQ(card.boxRect().width(), cardWidth);
    EXPECT_EQ(card.boxRect().bottom(), card.rect().bottom());
}

TEST_F(SettingsCardTest, paintsABoxWithABorder) {
    card.addRow({}, new QCheckBox);
    card.show();
    const auto picture = testing::pictureOf(card);
    const auto box = card.boxRect();
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBorder(), picture, {box.left(), box.center().y(), 1, 1}));
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBg(), picture, {box.left() + 2, box.center().y(), 10, 1}));
    // Round corners.
    EXPECT_EQ(testing::pixelsOf(Theme::cardBorder(), picture, {box.topLeft(), QSize(2, 2)}), 0);
}

TEST_F(SettingsCardTest, alignsLabelsAtTheTrailingEdgeOfTheirColumn) {
    auto *menu = new SettingsMenu({QStringLiteral("A")});
    card.addRow(QStringLiteral("Font"), menu);
    auto *label = card.findChild<SettingsRowLabel *>();
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->geometry().left(), 14);
    EXPECT_EQ(label->width(), 84);
    EXPECT_EQ(menu->x(), 14 + 84 + 14);
    card.show();
    const auto picture = testing::pictureOf(card);
    const QRect leadingHalf(label->x(), label->y(), 42, label->height());
    const QRect trailingEdge(label->x() + 76, label->y(), 8, label->height());
    EXPECT_EQ(testing::pixelsOf(Theme::ink(), picture, leadingHalf), 0);
    EXPECT_GT(testing::pixelsOf(Theme::ink(), picture, trailingEdge), 0);
}

TEST_F(SettingsCardTest, standsLabelAndControlOnOneBaseline) {
    auto *menu = new SettingsMenu({QStringLiteral("A")});
    card.addRow(QStringLiteral("A label of several words"), menu);
    const auto *label = card.findChild<SettingsRowLabel *>();
    EXPECT_GT(label->height(), menu->height());
    EXPECT_NEAR(label->y() + label->firstBaseline(), menu->y() + firstBaseline(*menu), 0.5);
}

TEST_F(SettingsCardTest, namesTheControlByItsLabel) {
    auto *menu = new SettingsMenu({QStringLiteral("A")});
    card.addRow(QStringLiteral("Body Font"), menu);
    EXPECT_EQ(card.findChild<SettingsRowLabel *>()->buddy(), menu);
    EXPECT_EQ(menu->accessibleName(), QLatin1String("Body Font"));
}

TEST_F(SettingsCardTest, isAsHighAsItsRows) {
    const int empty = card.height();
    auto *box = new QCheckBox(QStringLiteral("A"));
    card.addRow({}, box);
    const int one = card.height();
    EXPECT_EQ(one, empty + box->height());
    auto *other = new QCheckBox(QStringLiteral("B"));
    card.addRow({}, other);
    EXPECT_EQ(card.height(), one + 10 + other->height());
    other->hide();
    card.layOut();
    EXPECT_EQ(card.height(), one);
}

} // namespace
} // namespace diary

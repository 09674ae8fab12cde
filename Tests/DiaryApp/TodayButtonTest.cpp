// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/TodayButton.h>

#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

namespace diary {
namespace {

using testing::isFilledWith;
using testing::pictureOf;
using testing::pixelsOf;

TEST(TodayButtonLayout, putsBothTextsInTheMiddleOnOneBaseline) {
    const TodayButtonMetrics metrics{
        .title = {80, 18}, .titleAscent = 14, .date = {40, 16}, .dateAscent = 13};
    const auto layout = layoutTodayButton(metrics, {200, 34});
    EXPECT_EQ(layout.title, QRect(36, 8, 80, 18));
    EXPECT_EQ(layout.date, QRect(124, 9, 40, 16));
}

TEST(TodayButtonLayout, letsTheTitleGiveWayAndKeepsTheDateWhole) {
    const TodayButtonMetrics metrics{
        .title = {300, 18}, .titleAscent = 14, .date = {40, 18}, .dateAscent = 14};
    const auto layout = layoutTodayButton(metrics, {200, 34});
    EXPECT_EQ(layout.title, QRect(10, 8, 132, 18));
    EXPECT_EQ(layout.date, QRect(150, 8, 40, 18));
    EXPECT_EQ(layoutTodayButton(metrics, {20, 34}).title.width(), 0);
}

class TodayButtonTest : public ::testing::Test {
protected:
    TodayButtonTest() {
        window.resize(300, 100);
        button.setGeometry(50, 30, 200, 34);
        button.update({QStringLiteral("Back to Today"), QStringLiteral("03-14")});
        EXPECT_TRUE(testing::showActive(window));
    }

    ElidedLabel *label(const char *name) { return button.findChild<ElidedLabel *>(QLatin1String(name)); }

    QWidget window;
    TodayButton button{&window};
};

TEST_F(TodayButtonTest, showsTitleAndDate) {
    EXPECT_EQ(label("titleLabel")->shownText(), QStringLiteral("Back to Today"));
    EXPECT_EQ(label("dateLabel")->shownText(), QStringLiteral("03-14"));
    const auto picture = pictureOf(button);
    EXPECT_GT(pixelsOf(Theme::ink(), picture, label("titleLabel")->geometry()), 0);
    EXPECT_GT(pixelsOf(Theme::inkMed(), picture, label("dateLabel")->geometry()), 0);
    EXPECT_EQ(label("dateLabel")->geometry().left() - label("titleLabel")->geometry().right() - 1, 8);
    button.update({QStringLiteral("Heute"), QStringLiteral("12-31")});
    EXPECT_EQ(label("titleLabel")->shownText(), QStringLiteral("Heute"));
    EXPECT_EQ(label("dateLabel")->shownText(), QStringLiteral("12-31"));
}

TEST_F(TodayButtonTest, tellsAShortenedTitleInItsTip) {
    EXPECT_EQ(button.toolTip(), QString());
    const auto title = QStringLiteral("Back to the one and only present day");
    button.update({title, QStringLiteral("03-14")});
    EXPECT_NE(label("titleLabel")->shownText(), title);
    EXPECT_EQ(label("dateLabel")->shownText(), QStringLiteral("03-14"));
    EXPECT_EQ(button.toolTip(), title);
}

TEST_F(TodayButtonTest, changesGroundAndBorderUnderThePointer) {
    const QRect ground(10, 2, 15, 30);
    const QRect border(10, 0, 180, 1);
    auto picture = pictureOf(button);
    EXPECT_TRUE(isFilledWith(Theme::cardBg(), picture, ground));
    EXPECT_TRUE(isFilledWith(Theme::cardBorder(), picture, border));
    testing::movePointerTo(button);
    picture = pictureOf(button);
    EXPECT_TRUE(isFilledWith(Theme::cardBgActive(), picture, ground));
    EXPECT_TRUE(isFilledWith(Theme::cardBorderHover(), picture, border));
    EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
    testing::movePointerTo(window, {10, 10});
    EXPECT_TRUE(isFilledWith(Theme::cardBg(), pictureOf(button), ground));
}

TEST_F(TodayButtonTest, isClickedOnItsLabelsToo) {
    int clicks = 0;
    button.onClick = [&] { ++clicks; };
    const auto onDate = label("dateLabel")->geometry().center();
    testing::pressAt(button, onDate);
    testing::releaseAt(button, onDate);
    EXPECT_EQ(clicks, 1);
}

TEST_F(TodayButtonTest, isAButtonNamedByItsTitle) {
    const auto *accessible = QAccessible::queryAccessibleInterface(&button);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Back to Today"));
    EXPECT_EQ(accessible->text(QAccessible::Description), QStringLiteral("03-14"));
}

TEST_F(TodayButtonTest, hasTheDateBeforeTheTitleWhereReadingRunsThatWay) {
    button.setLayoutDirection(Qt::RightToLeft);
    EXPECT_LT(label("dateLabel")->geometry().right(), label("titleLabel")->geometry().left());
}

} // namespace
} // namespace diary

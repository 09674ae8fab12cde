// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/MonthHeatView.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace diary {
namespace {

using testing::isFilledWith;
using testing::pictureOf;
using testing::pixelsOf;

TEST(MonthHeatLayout, putsTheFirstAtTheTopLeftAndSevenDaysInARow) {
    for (const double width : {164.0, 184.0, 201.5}) {
        const auto squares = layoutMonthHeat(31, width);
        ASSERT_EQ(squares.size(), 31U);
        const double squareWidth = (width - 24) / 7;
        for (std::size_t index = 0; index < squares.size(); ++index) {
            const QRectF expected(static_cast<double>(index % 7) * (squareWidth + 4),
                                  static_cast<double>(index / 7) * 18, squareWidth, 14);
            EXPECT_EQ(squares[index], expected) << width << ' ' << index;
        }
        EXPECT_NEAR(squares[6].right(), width, 1e-9);
    }
}

TEST(MonthHeatLayout, isAsHighAsTheRowsOfTheMonth) {
    const std::pair<int, int> rows[] = {{29, 86}, {30, 86}, {31, 86}, {28, 68}, {7, 14}, {8, 32}};
    for (const auto &[days, height] : rows) {
        EXPECT_EQ(monthHeatHeight(days), height);
        EXPECT_EQ(layoutMonthHeat(days, 164).back().bottom(), height);
    }
}

TEST(MonthHeatLayout, runsFromRightToLeftWhereReadingDoes) {
    const auto squares = layoutMonthHeat(29, 164, Qt::RightToLeft);
    EXPECT_EQ(squares[0], QRectF(144, 0, 20, 14));
    EXPECT_EQ(squares[6], QRectF(0, 0, 20, 14));
    EXPECT_EQ(squares[28], QRectF(144, 72, 20, 14));
}

class MonthHeatViewTest : public ::testing::Test {
protected:
    MonthHeatViewTest() {
        model.month = 2;
        model.counts = {{{2, 1}, 1}, {{2, 2}, 2}, {{2, 3}, 3}, {{2, 4}, 5}, {{2, 5}, 200}, {{3, 6}, 3}};
        window.resize(300, 200);
        view.setGeometry(20, 20, 164, 86);
        view.update(model);
        view.onPick = [this](MonthDay day) { picked.push_back(day); };
        EXPECT_TRUE(testing::showActive(window));
    }

    QRect square(int day) const { return view.cells()[static_cast<std::size_t>(day - 1)].toRect(); }
    QRect inside(int day) const { return square(day).adjusted(3, 3, -3, -3); }
    QString nameOf(int day) {
        return QAccessible::queryAccessibleInterface(&view)->child(day - 1)->text(QAccessible::Name);
    }
    // What is shown for a pointer that rests there; none for nothing.
    QString tipAt(const QPoint &point) {
        QToolTip::hideText();
        QHelpEvent help(QEvent::ToolTip, point, view.mapToGlobal(point));
        QCoreApplication::sendEvent(&view, &help);
        return help.isAccepted() ? QToolTip::text() : QString();
    }

    QWidget window;
    MonthHeatView::Model model;
    MonthHeatView view{&window};
    std::vector<MonthDay> picked;
};

TEST_F(MonthHeatViewTest, shadesADayByTheNumberOfItsYears) {
    const auto picture = pictureOf(view);
    const auto &shades = Theme::heatShades();
    const std::pair<int, std::size_t> rows[] = {{1, 1}, {2, 2}, {3, 3}, {4, 3}, {5, 3}, {6, 0}, {29, 0}};
    for (const auto &[day, shade] : rows)
        EXPECT_TRUE(isFilledWith(shades.at(shade), picture, inside(day))) << day;
}

TEST_F(MonthHeatViewTest, roundsTheSquares) {
    const auto picture = pictureOf(view);
    EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
    EXPECT_EQ(picture.pixel(12, 0), Theme::heatShades()[1].rgba());
    EXPECT_EQ(picture.pixel(0, 12), Theme::heatShades()[1].rgba());
    EXPECT_EQ(qAlpha(picture.pixel(22 * 4, 7 * 4)), 0);
}

TEST_F(MonthHeatViewTest, hasTwentyNineDaysInFebruaryAndOutlinesTheLast) {
    ASSERT_EQ(view.dayCount(), 29);
    const auto leapDay = square(29);
    const QRect upperEdge(leapDay.left() + 4, leapDay.top(), 12, 1);
    const QRect leftEdge(leapDay.left(), leapDay.top() + 4, 1, 6);
    for (const int years : {0, 1}) {
        model.counts[{2, 29}] = years;
        view.update(model);
        const auto picture = pictureOf(view);
        EXPECT_TRUE(isFilledWith(Theme::accent(), picture, upperEdge));
        EXPECT_TRUE(isFilledWith(Theme::accent(), picture, leftEdge));
        EXPECT_TRUE(
            isFilledWith(Theme::heatShades().at(static_cast<std::size_t>(years)), picture, inside(29)));
        EXPECT_EQ(pixelsOf(Theme::accent(), picture, {0, 0, 164, 72}), 0);
    }
    model.month = 3;
    view.update(model);
    EXPECT_EQ(pixelsOf(Theme::accent(), pictureOf(view), view.rect()), 0);
}

TEST_F(MonthHeatViewTest, putsTheFirstOfEveryMonthAtTheTopLeft) {
    for (std::int64_t month = 1; month <= 12; ++month) {
        model.month = month;
        view.update(model);
        EXPECT_EQ(view.cells().front(), QRectF(0, 0, 20, 14)) << month;
        EXPECT_EQ(view.sizeHint().height(), 86) << month;
    }
}

TEST_F(MonthHeatViewTest, tellsTheDayThatWasPressed) {
    QTest::mouseClick(&view, Qt::LeftButton, {}, square(29).center());
    QTest::mouseClick(&view, Qt::LeftButton, {}, square(9).topLeft());
    EXPECT_EQ(picked, (std::vector{MonthDay{2, 29}, MonthDay{2, 9}}));
}

TEST_F(MonthHeatViewTest, takesNoPressBetweenTheSquares) {
    QTest::mouseClick(&view, Qt::LeftButton, {}, square(1).topRight() + QPoint(2, 5));
    QTest::mouseClick(&view, Qt::LeftButton, {}, square(1).bottomLeft() + QPoint(5, 2));
    QTest::mouseClick(&view, Qt::LeftButton, {}, square(29).topRight() + QPoint(10, 5));
    EXPECT_TRUE(picked.empty());
}

TEST_F(MonthHeatViewTest, ringsTheDayThatTheKeyboardCameToAndPicksIt) {
    EXPECT_EQ(pixelsOf(Theme::inkStrong(), pictureOf(view), view.rect()), 0);
    view.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&view, Qt::Key_Down);
    const auto ringed = square(8);
    const auto picture = pictureOf(view);
    EXPECT_TRUE(isFilledWith(Theme::inkStrong(), picture, {ringed.left() + 4, ringed.top(), 12, 2}));
    EXPECT_EQ(pixelsOf(Theme::inkStrong(), picture, square(1)), 0);
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(picked, std::vector{(MonthDay{2, 8})});
}

TEST_F(MonthHeatViewTest, saysWhereAnArrowLeadsOutOfTheMonth) {
    std::optional<std::pair<Qt::Key, int>> walk;
    view.onWalkOut = [&](Qt::Key key, int day) { walk = {key, day}; };
    QTest::keyClick(&view, Qt::Key_End);
    EXPECT_EQ(walk, std::nullopt);
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_EQ(walk, (std::pair{Qt::Key_Right, 29}));
}

TEST_F(MonthHeatViewTest, namesEachDayWithTheNumberOfItsYears) {
    EXPECT_EQ(nameOf(5), QStringLiteral("February 5, Years written: 200"));
    EXPECT_EQ(nameOf(29), QStringLiteral("February 29, Years written: 0"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&view)->text(QAccessible::Name),
              QStringLiteral("February"));
    QAccessible::queryAccessibleInterface(&view)->child(28)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    EXPECT_EQ(picked, std::vector{(MonthDay{2, 29})});
}

TEST_F(MonthHeatViewTest, namesNoNumberBeforeItIsKnown) {
    model.areCountsKnown = false;
    model.counts.clear();
    view.update(model);
    EXPECT_EQ(nameOf(5), QStringLiteral("February 5"));
}

TEST_F(MonthHeatViewTest, explainsASquareInItsTip) {
    EXPECT_EQ(tipAt(square(4).center()), QStringLiteral("February 4\nYears written: 5"));
    EXPECT_EQ(tipAt(square(6).center()), QStringLiteral("February 6\nYears written: 0"));
    EXPECT_EQ(tipAt(square(4).topRight() + QPoint(2, 5)), QString());
    QToolTip::hideText();
}

TEST_F(MonthHeatViewTest, runsFromRightToLeftWhereReadingDoes) {
    view.setLayoutDirection(Qt::RightToLeft);
    QTest::mouseClick(&view, Qt::LeftButton, {}, {160, 5});
    EXPECT_EQ(picked, std::vector{(MonthDay{2, 1})});
    QTest::keyClick(&view, Qt::Key_Left);
    EXPECT_EQ(view.cursorDay(), 2);
}

} // namespace
} // namespace diary

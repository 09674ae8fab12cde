// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/DayGridView.h>
#include <DiaryApp/Theme.h>
#include <DiaryKit/DiaryDay.h>

#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

namespace diary {
namespace {

using testing::movePointerTo;
using testing::pictureOf;
using testing::pixelsOf;

constexpr int sunday = 1;
constexpr int monday = 2;
constexpr int saturday = 7;

QStringList symbols() {
    return QStringLiteral("S M T W T F S").split(QLatin1Char(' '));
}

TEST(DayGridLayout, fillsTheWidthWithSevenColumns) {
    for (const double width : {200.0, 201.0, 256.5, 18.0}) {
        const auto layout = layoutDayGrid(31, 0, width);
        ASSERT_EQ(layout.weekdays.size(), 7U);
        EXPECT_DOUBLE_EQ(layout.weekdays.front().left(), 0);
        EXPECT_NEAR(layout.weekdays.back().right(), width, 1e-9);
        for (std::size_t column = 0; column < 7; ++column) {
            const QRectF expected(static_cast<double>(column) * ((width - 18) / 7 + 3), 0, (width - 18) / 7,
                                  16);
            EXPECT_EQ(layout.weekdays[column], expected) << width;
        }
    }
}

TEST(DayGridLayout, putsEachDayBelowItsWeekday) {
    struct Row {
        int blanks;
        int day;
        int column;
        double top;
    };
    const Row rows[] = {
        {0, 1, 0, 22}, {0, 7, 6, 22},   {0, 8, 0, 55},   {0, 31, 2, 154}, {6, 1, 6, 22},
        {6, 2, 0, 55}, {6, 29, 6, 154}, {6, 30, 0, 187}, {6, 31, 1, 187}, {3, 15, 3, 88},
    };
    for (const auto &row : rows) {
        const auto layout = layoutDayGrid(31, row.blanks, 200);
        EXPECT_EQ(layout.days[static_cast<std::size_t>(row.day - 1)],
                  QRectF(row.column * 29, row.top, 26, 30))
            << row.blanks << ' ' << row.day;
    }
}

TEST(DayGridLayout, isSixRowsHighWhateverTheMonthNeeds) {
    EXPECT_EQ(DayGridLayout::height, 217);
    EXPECT_EQ(layoutDayGrid(31, 6, 200).days.back().bottom(), 217);
    EXPECT_EQ(layoutDayGrid(29, 0, 200).days.back().bottom(), 184);
}

TEST(DayGridLayout, runsFromRightToLeftTogetherWithTheWeekdays) {
    const auto layout = layoutDayGrid(31, 2, 200, Qt::RightToLeft);
    EXPECT_EQ(layout.weekdays.front(), QRectF(174, 0, 26, 16));
    EXPECT_EQ(layout.weekdays.back(), QRectF(0, 0, 26, 16));
    EXPECT_EQ(layout.days.front(), QRectF(116, 22, 26, 30));
    EXPECT_EQ(layout.days[5], QRectF(174, 55, 26, 30));
}

TEST(DayGridLayout, hasCellsWithoutWidthWhereThereIsNoRoom) {
    for (const auto &day : layoutDayGrid(29, 3, 10).days)
        EXPECT_EQ(day.width(), 0);
}

TEST(DayGrid, leavesBlanksBeforeTheFirstOfTheMonth) {
    struct Row {
        std::int64_t month;
        std::int64_t year;
        int firstWeekday;
        int blanks;
    };
    const Row rows[] = {
        // March 2026 begins on a Sunday.
        {3, 2026, sunday, 0},
        {3, 2026, monday, 6},
        {3, 2026, saturday, 1},
        {4, 2026, sunday, 3},
        {4, 2026, monday, 2},
        {2, 2024, monday, 3},
        {2, 2023, monday, 2},
        // August 2026 begins on a Saturday.
        {8, 2026, sunday, 6},
        {8, 2026, saturday, 0},
        {1, 1900, monday, 0},
        {1, -1, monday, 4},
    };
    for (const auto &row : rows)
        EXPECT_EQ(leadingBlanks(row.month, row.year, row.firstWeekday), row.blanks)
            << row.month << '/' << row.year << ' ' << row.firstWeekday;
}

TEST(DayGrid, leavesFewerThanAWeekOfBlanksForAllMonthsAndWeeks) {
    for (std::int64_t year = 1995; year <= 2040; ++year) {
        for (std::int64_t month = 1; month <= 12; ++month) {
            for (int first = sunday; first <= saturday; ++first) {
                const int blanks = leadingBlanks(month, year, first);
                // The weekday above the first of the month is its own.
                EXPECT_EQ((first - 1 + blanks) % 7 + 1, MonthDay({month, 1}).weekday(year));
                EXPECT_TRUE(blanks >= 0 && blanks <= 6);
            }
        }
    }
}

// March 2026 from Sunday on, with entries on the 2nd and the 14th, which is selected.
class DayGridViewTest : public ::testing::Test {
protected:
    DayGridViewTest() {
        model.month = 3;
        model.year = 2026;
        model.selectedDay = 14;
        model.daysWithContent = {2, 14};
        model.week = {symbols(), sunday};
        window.resize(300, 300);
        view.setGeometry(20, 20, 200, 217);
        view.update(model);
        view.onSelectDay = [this](int day) { picked.push_back(day); };
        EXPECT_TRUE(testing::showActive(window));
    }

    QRect cell(int day) const { return view.cells()[static_cast<std::size_t>(day - 1)].toRect(); }
    void show() { view.update(model); }
    QString nameOf(int day) {
        return QAccessible::queryAccessibleInterface(&view)->child(day - 1)->text(QAccessible::Name);
    }

    QWidget window;
    DayGridView::Model model;
    DayGridView view{&window};
    std::vector<int> picked;
};

TEST_F(DayGridViewTest, showsTheDaysOfTheMonthInTheCycle) {
    const std::pair<std::int64_t, int> rows[] = {{1, 31}, {4, 30}, {12, 31}};
    for (const auto &[month, days] : rows) {
        model.month = month;
        show();
        EXPECT_EQ(view.dayCount(), days);
    }
}

TEST_F(DayGridViewTest, showsTwentyNineDaysOfFebruaryInEveryYear) {
    model.month = 2;
    for (const std::int64_t year : {2023, 2024, 1900, 2000}) {
        model.year = year;
        show();
        EXPECT_EQ(view.dayCount(), 29) << year;
    }
}

TEST_F(DayGridViewTest, usesTheSixthRowForALongMonthThatBeginsLate) {
    model.week.firstWeekday = monday;
    show();
    EXPECT_EQ(cell(1), QRect(174, 22, 26, 30));
    EXPECT_EQ(cell(30), QRect(0, 187, 26, 30));
    EXPECT_EQ(view.height(), 217);
    model.month = 2;
    show();
    EXPECT_EQ(view.height(), 217);
    EXPECT_EQ(view.sizeHint().height(), 217);
}

TEST_F(DayGridViewTest, tellsTheDayThatWasPressedAndChangesNothingItself) {
    QTest::mouseClick(&view, Qt::LeftButton, {}, cell(20).center());
    EXPECT_EQ(picked, std::vector{20});
    EXPECT_TRUE(view.isSelected(14));
    EXPECT_FALSE(view.isSelected(20));
}

TEST_F(DayGridViewTest, takesNoPressInGapsHeaderOrBlanks) {
    model.week.firstWeekday = saturday;
    show();
    for (const auto &point : {QPoint(10, 8), cell(1).bottomLeft() + QPoint(3, 2),
                              cell(3).topRight() + QPoint(2, 3), QPoint(10, 30), QPoint(190, 200)})
        QTest::mouseClick(&view, Qt::LeftButton, {}, point);
    EXPECT_EQ(picked, std::vector<int>{});
}

TEST_F(DayGridViewTest, hoversTheDayUnderThePointer) {
    movePointerTo(view, cell(5).center());
    EXPECT_EQ(view.hoveredDay(), 5);
    movePointerTo(view, cell(6).center());
    EXPECT_EQ(view.hoveredDay(), 6);
}

TEST_F(DayGridViewTest, hoversNothingInAGapNorOutside) {
    movePointerTo(view, cell(5).center());
    movePointerTo(view, cell(5).topRight() + QPoint(2, 10));
    EXPECT_EQ(view.hoveredDay(), std::nullopt);
    movePointerTo(view, cell(5).center());
    movePointerTo(window, {290, 290});
    EXPECT_EQ(view.hoveredDay(), std::nullopt);
}

TEST_F(DayGridViewTest, hoversWhatComesToLieUnderThePointer) {
    movePointerTo(view, cell(8).center());
    model.week.firstWeekday = monday;
    show();
    EXPECT_EQ(view.hoveredDay(), 2);
    view.resize(100, 217);
    movePointerTo(view, {1, 60});
    ASSERT_EQ(view.hoveredDay(), 2);
}

TEST_F(DayGridViewTest, outlinesTheHoveredDay) {
    const auto upperEdge = QRect(cell(5).left() + 8, cell(5).top(), 10, 1);
    EXPECT_EQ(pixelsOf(Theme::gridHoverOutline(), pictureOf(view), cell(5)), 0);
    movePointerTo(view, cell(5).center());
    const auto picture = pictureOf(view);
    EXPECT_TRUE(testing::isFilledWith(Theme::gridHoverOutline(), picture, upperEdge));
    EXPECT_EQ(pixelsOf(Theme::gridHoverOutline(), picture, cell(6)), 0);
}

TEST_F(DayGridViewTest, outlinesNoHoveredDayThatIsSelected) {
    movePointerTo(view, cell(14).center());
    EXPECT_EQ(view.hoveredDay(), 14);
    EXPECT_EQ(pixelsOf(Theme::gridHoverOutline(), pictureOf(view), view.rect()), 0);
}

TEST_F(DayGridViewTest, showsTheSelectedDayOnARoundedPill) {
    const auto picture = pictureOf(view);
    const auto selected = cell(14);
    EXPECT_TRUE(
        testing::isFilledWith(Theme::pillBg(), picture, {selected.left() + 8, selected.top(), 10, 4}));
    EXPECT_TRUE(
        testing::isFilledWith(Theme::pillBg(), picture, {selected.left(), selected.top() + 8, 3, 14}));
    EXPECT_GT(pixelsOf(Theme::pillText(), picture, selected), 0);
    EXPECT_EQ(qAlpha(picture.pixel(selected.topLeft() * 4)), 0);
    EXPECT_EQ(pixelsOf(Theme::pillBg(), picture, cell(13)), 0);
}

TEST_F(DayGridViewTest, showsDaysWithContentInInkWithADot) {
    const auto picture = pictureOf(view);
    const auto written = cell(2);
    EXPECT_GT(pixelsOf(Theme::ink(), picture, written), 0);
    EXPECT_EQ(pixelsOf(Theme::ghostDay(), picture, written), 0);
    // The dot of 3 pixels in the middle, from 7 above the bottom.
    const QRect dot(written.left() + 11, written.bottom() + 1 - 7, 4, 3);
    EXPECT_GT(pixelsOf(Theme::accent(), picture, dot), 60);
    EXPECT_EQ(pixelsOf(Theme::accent(), picture, written), pixelsOf(Theme::accent(), picture, dot));

    EXPECT_GT(pixelsOf(Theme::ghostDay(), picture, cell(3)), 0);
    EXPECT_EQ(pixelsOf(Theme::ink(), picture, cell(3)), 0);
    EXPECT_EQ(pixelsOf(Theme::accent(), picture, cell(3)), 0);
}

TEST_F(DayGridViewTest, mutesTheDotOnThePill) {
    const auto selected = cell(14);
    const QPoint dot((selected.left() + 13) * 4, (selected.bottom() + 1 - 6) * 4 + 2);
    const auto color = QColor(pictureOf(view).pixel(dot));
    const auto mixed = [](int over, int under) { return qRound(over * 0.6 + under * 0.4); };
    EXPECT_NEAR(color.red(), mixed(Theme::pillText().red(), Theme::pillBg().red()), 2);
    EXPECT_NEAR(color.blue(), mixed(Theme::pillText().blue(), Theme::pillBg().blue()), 2);
    model.daysWithContent = {2};
    show();
    EXPECT_EQ(pictureOf(view).pixel(dot), Theme::pillBg().rgba());
}

TEST_F(DayGridViewTest, writesTheWeekdaysAbove) {
    EXPECT_GT(pixelsOf(Theme::statLabel(), pictureOf(view), {0, 0, 26, 16}), 0);
    model.week.symbols = QStringList{QString(), QStringLiteral("M")};
    show();
    EXPECT_EQ(pixelsOf(Theme::statLabel(), pictureOf(view), {0, 0, 26, 16}), 0);
    EXPECT_GT(pixelsOf(Theme::statLabel(), pictureOf(view), {29, 0, 26, 16}), 0);
    EXPECT_EQ(pixelsOf(Theme::statLabel(), pictureOf(view), {58, 0, 142, 16}), 0);
}

TEST_F(DayGridViewTest, startsTheKeyboardOnTheSelectedDayAndRingsIt) {
    EXPECT_EQ(pixelsOf(Theme::accent(), pictureOf(view), cell(15)), 0);
    view.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(view.cursorDay(), 14);
    QTest::keyClick(&view, Qt::Key_Right);
    const auto ringed = cell(15);
    EXPECT_TRUE(
        testing::isFilledWith(Theme::accent(), pictureOf(view), {ringed.left() + 8, ringed.top(), 10, 2}));
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(picked, std::vector{15});
    view.clearFocus();
    EXPECT_EQ(pixelsOf(Theme::accent(), pictureOf(view), ringed), 0);
}

TEST_F(DayGridViewTest, movesTheKeyboardWithTheSelectionOnly) {
    view.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&view, Qt::Key_Home);
    // Another day was written meanwhile.
    model.daysWithContent.insert(9);
    show();
    EXPECT_EQ(view.cursorDay(), 1);
    model.selectedDay = 15;
    show();
    EXPECT_EQ(view.cursorDay(), 15);
    QTest::keyClick(&view, Qt::Key_End);
    model.month = 4;
    show();
    EXPECT_EQ(view.cursorDay(), 15);
}

TEST_F(DayGridViewTest, turnsThePageToAnotherMonth) {
    std::vector<int> steps;
    view.onStepMonth = [&](int by) { steps.push_back(by); };
    QTest::keyClick(&view, Qt::Key_PageUp);
    QTest::keyClick(&view, Qt::Key_PageDown);
    QTest::keyClick(&view, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(steps, (std::vector{-1, 1}));
}

TEST_F(DayGridViewTest, namesEachDayByWeekdayNameAndContent) {
    EXPECT_EQ(nameOf(14), QStringLiteral("Saturday, March 14, has an entry"));
    EXPECT_EQ(nameOf(15), QStringLiteral("Sunday, March 15"));
    model.daysWithContent = {15};
    show();
    EXPECT_EQ(nameOf(15), QStringLiteral("Sunday, March 15, has an entry"));
    EXPECT_EQ(nameOf(14), QStringLiteral("Saturday, March 14"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&view)->text(QAccessible::Name),
              QStringLiteral("March 2026"));
}

TEST_F(DayGridViewTest, namesTheLeapDayOfACommonYearWithoutAWeekday) {
    model.month = 2;
    model.year = 2023;
    show();
    EXPECT_EQ(nameOf(28), QStringLiteral("Tuesday, February 28"));
    EXPECT_EQ(nameOf(29), QStringLiteral("February 29"));
    model.year = 2024;
    show();
    EXPECT_EQ(nameOf(29), QStringLiteral("Thursday, February 29"));
}

TEST_F(DayGridViewTest, namesTheDaysInTheLanguageOfTheModel) {
    model.names = Formatters::Context(QStringLiteral("de"), QLocale(QLocale::German));
    show();
    EXPECT_EQ(nameOf(15), QStringLiteral("Sonntag, 15. März"));
}

TEST_F(DayGridViewTest, runsFromRightToLeftWhereReadingDoes) {
    view.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(cell(1), QRect(174, 22, 26, 30));
    movePointerTo(view, {187, 40});
    EXPECT_EQ(view.hoveredDay(), 1);
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_EQ(view.cursorDay(), 13);
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/Pointer.h"

#include <DiaryApp/DayCellsView.h>

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace diary {
namespace {

using Announcements = std::vector<std::pair<QAccessible::Event, QString>>;

// As if an assistive technology listened.
class Listening {
public:
    Listening() { QAccessible::setActive(true); }
    Listening(const Listening &) = delete;
    Listening &operator=(const Listening &) = delete;
    ~Listening() { QAccessible::setActive(false); }
};

// Ten days, or as many as wanted, in cells of 8 by 8 that lie 2 apart.
class TenDaysView : public DayCellsView {
public:
    explicit TenDaysView(QWidget *parent) : DayCellsView(parent) {}

    std::vector<int> presses;
    std::vector<std::pair<Qt::Key, int>> walksOut;
    Announcements announcements;
    bool mirrored = false;

    Announcements takeAnnouncements() { return std::exchange(announcements, {}); }

    std::vector<QRectF> cells() const override {
        std::vector<QRectF> cells;
        for (int index = 0; index < m_count; ++index)
            cells.emplace_back((index % columns) * 10, (index / columns) * 10, 8, 8);
        return cells;
    }
    QString cellName(int day) const override { return m_prefix + QString::number(day); }
    bool isSelected(int day) const override { return day == m_selected; }
    void press(int day) override { presses.push_back(day); }

    void change(const QString &prefix, int count, int selected) {
        changeCells(count, [&] {
            m_prefix = prefix;
            m_count = count;
            m_selected = selected;
        });
    }

protected:
    void walkOut(Qt::Key key, int day) override { walksOut.emplace_back(key, day); }
    bool isMirrored() const override { return mirrored; }
    void announce(int day, QAccessible::Event type) override {
        DayCellsView::announce(day, type);
        announcements.emplace_back(type, cellName(day));
    }

private:
    QString m_prefix = QStringLiteral("Day ");
    int m_count = 10;
    int m_selected = 4;
};

class DayCellsViewTest : public ::testing::Test {
protected:
    DayCellsViewTest() {
        window.resize(200, 100);
        view->setGeometry(20, 30, 70, 20);
        EXPECT_TRUE(testing::showActive(window));
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(view.get(), key, modifiers);
    }
    QAccessibleInterface *accessible() { return QAccessible::queryAccessibleInterface(view.get()); }

    QWidget window;
    std::unique_ptr<TenDaysView> view = std::make_unique<TenDaysView>(&window);
};

TEST_F(DayCellsViewTest, findsTheDayUnderAPoint) {
    struct Row {
        QPointF point;
        std::optional<int> day;
    };
    const Row rows[] = {
        {{0, 0}, 1},  {{7.9, 7.9}, 1}, {{8, 0}, {}},   {{0, 8}, {}},   {{9, 5}, {}},  {{10, 0}, 2},
        {{65, 5}, 7}, {{0, 10}, 8},    {{25, 15}, 10}, {{35, 15}, {}}, {{-1, 0}, {}}, {{5, 25}, {}},
    };
    for (const auto &row : rows)
        EXPECT_EQ(view->dayAt(row.point), row.day) << row.point.x() << ' ' << row.point.y();
}

TEST_F(DayCellsViewTest, isPressedByTheLeftButtonAtOnce) {
    QTest::mousePress(view.get(), Qt::LeftButton, {}, {24, 4});
    EXPECT_EQ(view->presses, std::vector{3});
    QTest::mouseRelease(view.get(), Qt::LeftButton, {}, {24, 4});
    EXPECT_EQ(view->presses, std::vector{3});
    EXPECT_EQ(view->cursorDay(), 3);
}

TEST_F(DayCellsViewTest, isNotPressedBetweenTheCellsOrByAnotherButton) {
    QTest::mouseClick(view.get(), Qt::LeftButton, {}, {29, 4});
    QTest::mouseClick(view.get(), Qt::LeftButton, {}, {45, 14});
    QTest::mouseClick(view.get(), Qt::RightButton, {}, {24, 4});
    QTest::mouseClick(view.get(), Qt::MiddleButton, {}, {24, 4});
    EXPECT_TRUE(view->presses.empty());
}

TEST_F(DayCellsViewTest, takesTheKeyboardByTabButNotByAClick) {
    QLineEdit edit(&window);
    edit.show();
    edit.setFocus();
    QTest::mouseClick(view.get(), Qt::LeftButton, {}, {24, 4});
    EXPECT_TRUE(edit.hasFocus());
    QTest::keyClick(&edit, Qt::Key_Tab);
    EXPECT_TRUE(view->hasFocus());
}

TEST_F(DayCellsViewTest, isWalkedByTheArrowKeys) {
    struct Row {
        int from;
        Qt::Key key;
        int to;
    };
    const Row rows[] = {
        {1, Qt::Key_Right, 2}, {7, Qt::Key_Right, 8}, {8, Qt::Key_Left, 7}, {2, Qt::Key_Down, 9},
        {9, Qt::Key_Up, 2},    {5, Qt::Key_Home, 1},  {5, Qt::Key_End, 10}, {10, Qt::Key_End, 10},
    };
    for (const auto &row : rows) {
        view->setCursorDay(row.from);
        press(row.key);
        EXPECT_EQ(view->cursorDay(), row.to) << row.from;
    }
    EXPECT_TRUE(view->walksOut.empty());
    EXPECT_TRUE(view->presses.empty());
}

TEST_F(DayCellsViewTest, isWalkedTheOtherWayRoundWhereTheDaysRunFromRightToLeft) {
    view->mirrored = true;
    press(Qt::Key_Left);
    EXPECT_EQ(view->cursorDay(), 2);
    press(Qt::Key_Right);
    EXPECT_EQ(view->cursorDay(), 1);
    press(Qt::Key_Right);
    EXPECT_EQ(view->walksOut, (std::vector{std::pair{Qt::Key_Right, 1}}));
}

TEST_F(DayCellsViewTest, staysWhereAnArrowLeadsOutAndSaysSo) {
    const std::pair<Qt::Key, int> rows[] = {
        {Qt::Key_Left, 1}, {Qt::Key_Up, 7}, {Qt::Key_Right, 10}, {Qt::Key_Down, 4}};
    for (const auto &[key, day] : rows) {
        view->setCursorDay(day);
        press(key);
        EXPECT_EQ(view->cursorDay(), day);
        ASSERT_FALSE(view->walksOut.empty());
        EXPECT_EQ(view->walksOut.back(), (std::pair{key, day}));
    }
}

TEST_F(DayCellsViewTest, isPressedByReturnEnterAndSpace) {
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        press(Qt::Key_Right);
        press(key);
    }
    EXPECT_EQ(view->presses, (std::vector{2, 3, 4}));
    press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(view->presses.size(), 4U);
}

TEST_F(DayCellsViewTest, isPressedOnceByAKeyHeldDown) {
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
    QCoreApplication::sendEvent(view.get(), &held);
    EXPECT_TRUE(view->presses.empty());
    EXPECT_TRUE(held.isAccepted());
}

TEST_F(DayCellsViewTest, leavesOtherKeysToTheWindow) {
    const std::pair<Qt::Key, Qt::KeyboardModifiers> rows[] = {{Qt::Key_Left, Qt::AltModifier},
                                                              {Qt::Key_Right, Qt::ControlModifier},
                                                              {Qt::Key_Return, Qt::ShiftModifier},
                                                              {Qt::Key_Escape, Qt::NoModifier},
                                                              {Qt::Key_A, Qt::NoModifier}};
    for (const auto &[key, modifiers] : rows) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(view.get(), &event);
        EXPECT_FALSE(event.isAccepted()) << key;
    }
    EXPECT_EQ(view->cursorDay(), 1);
    EXPECT_TRUE(view->presses.empty());
}

TEST_F(DayCellsViewTest, keepsTheCursorWithinTheMonth) {
    view->setCursorDay(99);
    EXPECT_EQ(view->cursorDay(), 10);
    view->setCursorDay(-1);
    EXPECT_EQ(view->cursorDay(), 1);
}

TEST_F(DayCellsViewTest, hasAButtonForEachDayForAssistiveTechnologies) {
    auto *grid = accessible();
    ASSERT_EQ(grid->childCount(), 10);
    for (int index = 0; index < 10; ++index) {
        auto *day = grid->child(index);
        ASSERT_TRUE(day && day->isValid());
        EXPECT_EQ(day->role(), QAccessible::Button);
        EXPECT_EQ(day->text(QAccessible::Name), QStringLiteral("Day %1").arg(index + 1));
        EXPECT_EQ(day->parent(), grid);
        EXPECT_EQ(day->window(), window.windowHandle());
        EXPECT_EQ(day->childCount(), 0);
        EXPECT_EQ(grid->indexOfChild(day), index);
        EXPECT_EQ(grid->child(index), day);
    }
    EXPECT_EQ(grid->child(10), nullptr);
    EXPECT_EQ(grid->child(-1), nullptr);
}

TEST_F(DayCellsViewTest, tellsAssistiveTechnologiesWhereTheDaysAre) {
    auto *ninth = accessible()->child(8);
    EXPECT_EQ(ninth->rect(), QRect(view->mapToGlobal(QPoint(10, 10)), QSize(8, 8)));
    const auto centre = ninth->rect().center();
    EXPECT_EQ(accessible()->childAt(centre.x(), centre.y()), ninth);
    const auto gap = view->mapToGlobal(QPoint(9, 4));
    EXPECT_EQ(accessible()->childAt(gap.x(), gap.y()), nullptr);
}

TEST_F(DayCellsViewTest, tellsAssistiveTechnologiesTheStateOfTheDays) {
    auto *grid = accessible();
    EXPECT_TRUE(grid->child(3)->state().selected);
    EXPECT_FALSE(grid->child(2)->state().selected);
    EXPECT_TRUE(grid->child(0)->state().focusable);
    EXPECT_FALSE(grid->child(0)->state().focused);
    EXPECT_EQ(grid->focusChild(), nullptr);
    view->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(grid->child(0)->state().focused);
    EXPECT_FALSE(grid->child(1)->state().focused);
    EXPECT_EQ(grid->focusChild(), grid->child(0));
    view->setEnabled(false);
    EXPECT_TRUE(grid->child(0)->state().disabled);
    EXPECT_FALSE(grid->child(0)->state().focusable);
    view->hide();
    EXPECT_TRUE(grid->child(0)->state().invisible);
}

TEST_F(DayCellsViewTest, isPressedAndFocusedByAssistiveTechnologies) {
    auto *actions = accessible()->child(5)->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_EQ(actions->actionNames(), QStringList({QAccessibleActionInterface::pressAction(),
                                                   QAccessibleActionInterface::setFocusAction()}));
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(view->presses, std::vector{6});
    EXPECT_FALSE(view->hasFocus());
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(view->hasFocus());
    EXPECT_EQ(view->cursorDay(), 6);
    EXPECT_EQ(view->presses, std::vector{6});

    view->setEnabled(false);
    EXPECT_TRUE(actions->actionNames().isEmpty());
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(view->presses, std::vector{6});
}

TEST_F(DayCellsViewTest, saysWhichDayTheKeyboardCameTo) {
    const Listening listening;
    view->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(view->takeAnnouncements(), (Announcements{{QAccessible::Focus, QStringLiteral("Day 1")}}));
    press(Qt::Key_Down);
    EXPECT_EQ(view->takeAnnouncements(), (Announcements{{QAccessible::Focus, QStringLiteral("Day 8")}}));
    view->clearFocus();
    view->setCursorDay(2);
    EXPECT_EQ(view->takeAnnouncements(), Announcements());
}

TEST_F(DayCellsViewTest, saysWhatChanged) {
    const Listening listening;
    view->change(QStringLiteral("Day "), 10, 5);
    EXPECT_EQ(view->takeAnnouncements(),
              (Announcements{{QAccessible::StateChanged, QStringLiteral("Day 4")},
                             {QAccessible::StateChanged, QStringLiteral("Day 5")}}));
    view->change(QStringLiteral("Day "), 8, 5);
    EXPECT_EQ(view->takeAnnouncements(),
              (Announcements{{QAccessible::ObjectDestroyed, QStringLiteral("Day 9")},
                             {QAccessible::ObjectDestroyed, QStringLiteral("Day 10")}}));
    view->change(QStringLiteral("Day "), 10, 5);
    EXPECT_EQ(view->takeAnnouncements(),
              (Announcements{{QAccessible::ObjectCreated, QStringLiteral("Day 9")},
                             {QAccessible::ObjectCreated, QStringLiteral("Day 10")}}));
    view->change(QStringLiteral("Night "), 10, 5);
    const auto renamed = view->takeAnnouncements();
    ASSERT_EQ(renamed.size(), 10U);
    EXPECT_EQ(renamed.front(), (std::pair{QAccessible::NameChanged, QStringLiteral("Night 1")}));
    view->change(QStringLiteral("Night "), 10, 5);
    EXPECT_EQ(view->takeAnnouncements(), Announcements());
}

TEST_F(DayCellsViewTest, saysNothingWhenNobodyListens) {
    view->setFocus(Qt::TabFocusReason);
    view->change(QStringLiteral("Night "), 8, 5);
    EXPECT_EQ(view->takeAnnouncements(), Announcements());
}

TEST_F(DayCellsViewTest, hasNoMoreOfADayThatIsGone) {
    auto *tenth = accessible()->child(9);
    view->change(QStringLiteral("Day "), 9, 4);
    EXPECT_FALSE(tenth->isValid());
    EXPECT_TRUE(tenth->state().invalid);
    EXPECT_EQ(tenth->rect(), QRect());
    EXPECT_EQ(tenth->text(QAccessible::Name), QString());
    tenth->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(view->presses.empty());
    view->change(QStringLiteral("Day "), 10, 4);
    EXPECT_TRUE(tenth->isValid());
}

TEST_F(DayCellsViewTest, takesItsDaysAlongWhenItGoes) {
    auto *grid = accessible();
    const auto id = QAccessible::uniqueId(grid->child(0));
    ASSERT_NE(QAccessible::accessibleInterface(id), nullptr);
    view.reset();
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/GridNavigation.h>

#include <QKeyEvent>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>

namespace diary {
namespace {

std::optional<std::size_t> target(Qt::Key key, std::size_t item, std::size_t count, std::size_t columns,
                                  Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    return gridTarget(QKeyEvent(QEvent::KeyPress, key, modifiers), item, count, columns);
}

// Rows of three, the last one of two.
TEST(GridNavigation, goesToTheNeighbours) {
    EXPECT_EQ(target(Qt::Key_Left, 4, 8, 3), 3U);
    EXPECT_EQ(target(Qt::Key_Right, 4, 8, 3), 5U);
    EXPECT_EQ(target(Qt::Key_Up, 4, 8, 3), 1U);
    EXPECT_EQ(target(Qt::Key_Down, 4, 8, 3), 7U);
}

TEST(GridNavigation, goesOnInTheNextRow) {
    EXPECT_EQ(target(Qt::Key_Right, 2, 8, 3), 3U);
    EXPECT_EQ(target(Qt::Key_Left, 3, 8, 3), 2U);
}

TEST(GridNavigation, staysAtTheEdges) {
    EXPECT_EQ(target(Qt::Key_Left, 0, 8, 3), 0U);
    EXPECT_EQ(target(Qt::Key_Up, 2, 8, 3), 2U);
    EXPECT_EQ(target(Qt::Key_Right, 7, 8, 3), 7U);
    EXPECT_EQ(target(Qt::Key_Down, 6, 8, 3), 6U);
}

TEST(GridNavigation, goesToTheEndOfALastRowThatIsShorter) {
    EXPECT_EQ(target(Qt::Key_Down, 5, 8, 3), 7U);
}

TEST(GridNavigation, goesToTheFirstAndTheLast) {
    EXPECT_EQ(target(Qt::Key_Home, 5, 8, 3), 0U);
    EXPECT_EQ(target(Qt::Key_End, 5, 8, 3), 7U);
}

TEST(GridNavigation, knowsNoSidesInOneColumn) {
    EXPECT_EQ(target(Qt::Key_Down, 1, 3, 1), 2U);
    EXPECT_EQ(target(Qt::Key_Down, 2, 3, 1), 2U);
    EXPECT_EQ(target(Qt::Key_Up, 1, 3, 1), 0U);
    EXPECT_EQ(target(Qt::Key_Left, 1, 3, 1), std::nullopt);
    EXPECT_EQ(target(Qt::Key_Right, 1, 3, 1), std::nullopt);
}

TEST(GridNavigation, leavesOtherKeysAlone) {
    EXPECT_EQ(target(Qt::Key_Tab, 1, 8, 3), std::nullopt);
    EXPECT_EQ(target(Qt::Key_Left, 1, 8, 3, Qt::AltModifier), std::nullopt);
    EXPECT_EQ(target(Qt::Key_Left, 1, 8, 3, Qt::KeypadModifier), 0U);
}

} // namespace
} // namespace diary

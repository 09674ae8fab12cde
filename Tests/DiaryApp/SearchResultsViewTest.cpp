// SPDX-License-Identifier: MIT
#include <DiaryApp/SearchResultsView.h>
#include <DiaryApp/Text.h>

#include <QApplication>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace diary {
namespace {

TEST(SearchStackLayout, setsTheRowsBelowEachOther) {
    struct Row {
        std::vector<int> heights;
        std::vector<QRect> rows;
        int height;
    };
    const std::vector<Row> rows = {
        {{}, {}, 12},
        {{50}, {{8, 4, 432, 50}}, 62},
        {{50, 66, 50}, {{8, 4, 432, 50}, {8, 56, 432, 66}, {8, 124, 432, 50}}, 182},
    };
    for (const auto &row : rows) {
        const auto layout = layoutSearchStack(row.heights, 448);
        EXPECT_EQ(layout.rows, row.rows);
        EXPECT_EQ(layout.height, row.height);
    }
}

class SearchResultsViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        view.resize(448, 460);
        view.onPick = [this](std::size_t index) { picked = index; };
        view.onLeave = [this] { left = true; };
        view.show();
        view.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    void update(int rows, const std::string &snippet = "word") {
        SearchResultsView::Model model;
        for (int index = 0; index < rows; ++index)
            model.rows.push_back(SearchRowView::Model::of({{1, 1}, 1000 + index, snippet}, "word"));
        view.update(model);
    }

    // Those that can be seen when scrolled to, from the top.
    std::vector<SearchRowView *> rows() const {
        std::vector<SearchRowView *> shown;
        for (auto *row : view.findChildren<SearchRowView *>()) {
            if (row->isVisible())
                shown.push_back(row);
        }
        return shown;
    }
    std::string title(std::size_t index) const { return toUtf8(rows().at(index)->model().title); }

    bool waitForRows(std::size_t count) const {
        return QTest::qWaitFor([&] { return rows().size() == count; });
    }
    static void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    std::optional<std::size_t> focused() const {
        const auto all = rows();
        for (std::size_t index = 0; index < all.size(); ++index) {
            if (all[index]->hasFocus())
                return index;
        }
        return std::nullopt;
    }
    bool isInView(std::size_t index) const {
        const auto *row = rows().at(index);
        const auto inViewport = QRect(row->mapTo(view.viewport(), QPoint(0, 0)), row->size());
        return view.viewport()->rect().contains(inViewport);
    }

    SearchResultsView view;
    std::optional<std::size_t> picked;
    bool left = false;
};

TEST_F(SearchResultsViewTest, showsTheFirstRowsAtOnceAndAllSoon) {
    update(200);
    const auto atOnce = rows();
    ASSERT_GE(atOnce.size(), 10U);
    EXPECT_LT(atOnce.size(), 200U);
    EXPECT_GT(atOnce.back()->y(), view.height());
    ASSERT_TRUE(waitForRows(200));
    for (std::size_t index = 0; index < 200; ++index)
        ASSERT_EQ(title(index), "01-01 · " + std::to_string(1000 + index));
    EXPECT_EQ(rows().front()->geometry().topLeft(), QPoint(8, 4));
    EXPECT_EQ(rows().front()->width(), 432);
    for (std::size_t index = 1; index < 200; ++index)
        ASSERT_EQ(rows()[index]->y(), rows()[index - 1]->geometry().bottom() + 3);
    const auto *stack = view.widget();
    EXPECT_EQ(stack->height(), rows().back()->geometry().bottom() + 1 + 8);
}

TEST_F(SearchResultsViewTest, forgetsRowsThatWereStillToComeWhenOthersAreShown) {
    update(200);
    update(3, "another word");
    EXPECT_EQ(rows().size(), 3U);
    EXPECT_TRUE(QTest::qWaitFor([this] { return view.findChildren<SearchRowView *>().size() == 3; }));
    QApplication::processEvents();
    EXPECT_EQ(view.findChildren<SearchRowView *>().size(), 3);
    EXPECT_EQ(toUtf8(rows().front()->model().snippet), "another word");
    update(0);
    EXPECT_TRUE(rows().empty());
}

TEST_F(SearchResultsViewTest, startsAgainFromTheTop) {
    update(200);
    ASSERT_TRUE(waitForRows(200));
    view.verticalScrollBar()->setValue(2000);
    update(100);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
}

TEST_F(SearchResultsViewTest, givesTheKeyboardToARowWhenThereIsOne) {
    EXPECT_FALSE(view.focusFirstRow());
    update(1);
    EXPECT_TRUE(view.focusFirstRow());
    EXPECT_EQ(focused(), 0U);
}

TEST_F(SearchResultsViewTest, walksWithTheKeys) {
    update(200);
    ASSERT_TRUE(waitForRows(200));
    view.focusFirstRow();
    const auto perPage =
        static_cast<std::size_t>(view.viewport()->height() / (rows()[1]->y() - rows()[0]->y()));
    struct Row {
        Qt::Key key;
        std::size_t focused;
    };
    const std::vector<Row> steps = {
        {Qt::Key_Down, 1},       {Qt::Key_Down, 2},
        {Qt::Key_Up, 1},         {Qt::Key_PageDown, 1 + perPage},
        {Qt::Key_PageUp, 1},     {Qt::Key_PageUp, 0},
        {Qt::Key_End, 199},      {Qt::Key_Down, 199},
        {Qt::Key_PageDown, 199}, {Qt::Key_PageUp, 199 - perPage},
        {Qt::Key_Home, 0},       {Qt::Key_PageUp, 0},
    };
    for (const auto &step : steps) {
        press(step.key);
        ASSERT_EQ(focused(), step.focused) << step.key;
        EXPECT_TRUE(isInView(step.focused)) << step.key;
    }
    EXPECT_FALSE(left);
}

TEST_F(SearchResultsViewTest, reachesTheLastRowBeforeAllHaveCome) {
    update(200);
    view.focusFirstRow();
    press(Qt::Key_End);
    EXPECT_EQ(focused(), 199U);
    EXPECT_TRUE(isInView(199));
}

TEST_F(SearchResultsViewTest, isLeftByUpFromTheFirstRow) {
    update(3);
    view.focusFirstRow();
    press(Qt::Key_Down);
    press(Qt::Key_Up);
    EXPECT_FALSE(left);
    press(Qt::Key_Up);
    EXPECT_TRUE(left);
}

TEST_F(SearchResultsViewTest, leavesOtherKeysToTheWindow) {
    update(3);
    view.focusFirstRow();
    press(Qt::Key_F5);
    EXPECT_EQ(focused(), 0U);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(focused(), 0U);
}

TEST_F(SearchResultsViewTest, tellsTheRowThatWasClicked) {
    update(3);
    QTest::mouseClick(rows()[2], Qt::LeftButton);
    EXPECT_EQ(picked, 2U);
}

TEST_F(SearchResultsViewTest, tellsTheRowThatEnterIsPressedIn) {
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        picked.reset();
        update(3);
        view.focusFirstRow();
        press(Qt::Key_Down);
        press(key);
        EXPECT_EQ(picked, 1U) << key;
    }
}

TEST_F(SearchResultsViewTest, survivesNewRowsOutOfAClick) {
    update(3);
    view.onPick = [this](std::size_t) { update(0); };
    QTest::mouseClick(rows()[2], Qt::LeftButton);
    EXPECT_TRUE(rows().empty());
}

TEST_F(SearchResultsViewTest, keepsTheKeyboardInTheRowsWhenTheyAreReplaced) {
    update(3);
    view.focusFirstRow();
    press(Qt::Key_Down);
    update(2);
    EXPECT_EQ(focused(), 0U);
    EXPECT_FALSE(left);
    update(0);
    EXPECT_TRUE(left);
}

TEST_F(SearchResultsViewTest, laysTheRowsOutAnewAtAnotherWidth) {
    update(5, "a snippet with the word that is long enough for two lines in a view of this width");
    const int wide = rows().front()->height();
    view.resize(900, 460);
    EXPECT_TRUE(QTest::qWaitFor([this] { return rows().front()->width() == 884; }));
    EXPECT_LT(rows().front()->height(), wide);
    EXPECT_EQ(rows()[1]->y(), rows()[0]->geometry().bottom() + 3);
}

} // namespace
} // namespace diary

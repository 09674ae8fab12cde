// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/QuietScrollBar.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QScrollArea>
#include <QTest>

#include <gtest/gtest.h>

namespace diary {
namespace {

class QuietScrollBarTest : public ::testing::Test {
protected:
    QuietScrollBarTest() {
        area.resize(200, 300);
        area.setFrameShape(QFrame::NoFrame);
        content->resize(200, 900);
        area.setWidget(content);
        bar = new QuietScrollBar(&area);
        EXPECT_TRUE(testing::showActive(area));
    }

    int scrolledTo() const { return area.verticalScrollBar()->value(); }

    QScrollArea area;
    QWidget *content = new QWidget;
    QuietScrollBar *bar = nullptr;
};

TEST(QuietScrollBarLayout, measuresTheThumbByThePage) {
    const struct {
        ScrollThumbMetrics metrics;
        QRect thumb;
    } rows[] = {
        {{{8, 306}, 0, 600, 300, 0}, {0, 3, 8, 100}},
        {{{8, 306}, 0, 600, 300, 300}, {0, 103, 8, 100}},
        {{{8, 306}, 0, 600, 300, 600}, {0, 203, 8, 100}},
        // Large enough to be taken hold of.
        {{{8, 306}, 0, 1000000, 300, 1000000}, {0, 275, 8, 28}},
        {{{8, 26}, 0, 1000, 20, 500}, {0, 3, 8, 20}},
        // Nothing to scroll.
        {{{8, 306}, 0, 0, 300, 0}, {}},
        {{{8, 0}, 0, 10, 300, 0}, {}},
    };
    for (const auto &[metrics, thumb] : rows)
        EXPECT_EQ(layoutScrollThumb(metrics), thumb) << metrics.maximum << ' ' << metrics.value;
}

TEST_F(QuietScrollBarTest, liesOverTheTrailingEdgeAndTakesNoRoom) {
    EXPECT_EQ(bar->geometry(), QRect(192, 0, 8, 300));
    EXPECT_EQ(area.viewport()->width(), 200);
    area.resize(250, 400);
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->geometry() == QRect(242, 0, 8, 400); }));
}

TEST_F(QuietScrollBarTest, isGoneWhileThereIsNothingToScroll) {
    EXPECT_TRUE(bar->isVisible());
    content->resize(200, 200);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !bar->isVisible(); }));
    content->resize(200, 500);
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->isVisible(); }));
}

TEST_F(QuietScrollBarTest, followsTheArea) {
    area.verticalScrollBar()->setValue(300);
    EXPECT_EQ(bar->value(), 300);
    EXPECT_NEAR(bar->thumbRect().center().y(), 150, 1);
}

TEST_F(QuietScrollBarTest, scrollsByDraggingTheThumb) {
    const auto grip = bar->thumbRect().center();
    testing::pressAt(*bar, grip);
    testing::dragTo(*bar, grip + QPoint(0, 50));
    EXPECT_NEAR(scrolledTo(), 150, 6);
    // As far as it goes, and the pointer may leave the bar.
    testing::dragTo(*bar, {-40, 299});
    EXPECT_EQ(scrolledTo(), 600);
    testing::dragTo(*bar, grip);
    EXPECT_EQ(scrolledTo(), 0);
    testing::releaseAt(*bar, grip);
    testing::dragTo(*bar, grip + QPoint(0, 50));
    EXPECT_EQ(scrolledTo(), 0);
}

TEST_F(QuietScrollBarTest, scrollsByAPageBesideTheThumb) {
    QTest::mouseClick(bar, Qt::LeftButton, {}, {4, 280});
    EXPECT_EQ(scrolledTo(), 300);
    QTest::mouseClick(bar, Qt::LeftButton, {}, {4, 280});
    EXPECT_EQ(scrolledTo(), 600);
    QTest::mouseClick(bar, Qt::LeftButton, {}, {4, 10});
    EXPECT_EQ(scrolledTo(), 300);
}

TEST_F(QuietScrollBarTest, darkensAndWidensUnderThePointer) {
    const auto thumb = bar->thumbRect().adjusted(0, 10, 0, -10);
    auto picture = testing::pictureOf(*bar, 1);
    EXPECT_EQ(testing::pixelsOf(Theme::cardBorderHover(), picture, thumb), 4 * thumb.height());
    testing::movePointerTo(*bar, {4, 200});
    picture = testing::pictureOf(*bar, 1);
    EXPECT_EQ(testing::pixelsOf(Theme::cardBorderActive(), picture, thumb), 6 * thumb.height());
    EXPECT_EQ(testing::pixelsOf(Theme::cardBorderHover(), picture, bar->rect()), 0);
}

TEST_F(QuietScrollBarTest, isAScrollBarForAssistiveTechnologies) {
    auto *accessible = QAccessible::queryAccessibleInterface(bar);
    EXPECT_EQ(accessible->role(), QAccessible::ScrollBar);
    EXPECT_EQ(accessible->valueInterface()->maximumValue().toInt(), 600);
}

} // namespace
} // namespace diary

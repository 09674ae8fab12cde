// SPDX-License-Identifier: MIT
#include <DiaryApp/MainWindowLayout.h>

#include <gtest/gtest.h>

namespace diary {
namespace {

TEST(MainWindowLayout, standsBarsAndColumnsAroundThePage) {
    const auto layout = layoutMainWindow(MainWindowLayout::initialSize);
    EXPECT_EQ(layout.topBar, QRect(0, 0, 1360, 46));
    EXPECT_EQ(layout.sidebar, QRect(0, 46, 236, 767));
    EXPECT_EQ(layout.entryView, QRect(236, 46, 852, 767));
    EXPECT_EQ(layout.yearRail, QRect(1088, 46, 272, 767));
    EXPECT_EQ(layout.statusBar, QRect(0, 813, 1360, 27));
}

TEST(MainWindowLayout, givesThePageWhatTheColumnsLeave) {
    EXPECT_EQ(layoutMainWindow(MainWindowLayout::minimumSize).entryView, QRect(236, 46, 572, 547));
    EXPECT_EQ(layoutMainWindow({3000, 2000}).entryView, QRect(236, 46, 2492, 1927));
}

} // namespace
} // namespace diary

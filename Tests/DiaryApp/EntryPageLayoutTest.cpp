// SPDX-License-Identifier: MIT
#include <DiaryApp/EntryView.h>

#include <gtest/gtest.h>

namespace diary {
namespace {

// Round figures for every text.
EntryPageMetrics someMetrics() {
    EntryPageMetrics metrics;
    metrics.fileName = {80, 14};
    metrics.ordinal = {110, 14};
    metrics.dayKey = {140, 60};
    metrics.dayKeyBaseline = 48;
    metrics.weekday = {70, 24};
    metrics.weekdayBaseline = 18;
    metrics.previousDay = {20, 22};
    metrics.nextDay = {21, 22};
    metrics.subtitleHeight = 16;
    metrics.mark = {32, 17};
    metrics.ago = {40, 13};
    metrics.content = [](int width) { return 200000 / width; };
    return metrics;
}

TEST(EntryPageLayout, standsInAColumnOfReadingWidth) {
    const auto page = layoutEntryPage(someMetrics(), 852);
    EXPECT_EQ(page.column, QRect(92, 40, 668, page.column.height()));
    EXPECT_EQ(page.pageHeight, 40 + page.column.height() + 140);
}

TEST(EntryPageLayout, shrinksInANarrowWindowAndKeepsItsMargins) {
    for (const int width : {779, 700, 572, 400}) {
        const auto page = layoutEntryPage(someMetrics(), width);
        EXPECT_EQ(page.column.left(), 56) << width;
        EXPECT_EQ(page.column.width(), width - 112) << width;
    }
    EXPECT_EQ(layoutEntryPage(someMetrics(), 780).column.width(), 668);
    EXPECT_EQ(layoutEntryPage(someMetrics(), 1400).column, QRect(366, 40, 668, 561));
}

TEST(EntryPageLayout, placesTheHeader) {
    const auto page = layoutEntryPage(someMetrics(), 852);
    EXPECT_EQ(page.fileName, QRect(0, 0, 80, 14));
    EXPECT_EQ(page.ordinal, QRect(558, 0, 110, 14));
    EXPECT_EQ(page.rule, QRect(0, 24, 668, 1));
}

TEST(EntryPageLayout, placesTheHeadersTextsOnOneBaseline) {
    auto metrics = someMetrics();
    metrics.fileNameBaseline = 11;
    metrics.ordinalBaseline = 13;
    const auto page = layoutEntryPage(metrics, 852);
    EXPECT_EQ(page.fileName.y(), 2);
    EXPECT_EQ(page.ordinal.y(), 0);
    EXPECT_EQ(page.rule.y(), 2 + 14 + 10);
}

TEST(EntryPageLayout, placesTheTitleWithBothTextsOnOneBaseline) {
    const auto page = layoutEntryPage(someMetrics(), 852);
    EXPECT_EQ(page.dayKey, QRect(0, 25 + 44, 140, 60));
    EXPECT_EQ(page.weekday, QRect(158, 69 + 48 - 18, 70, 24));
    EXPECT_EQ(page.previousDay, QRect(158 + 70 + 16, 100, 20, 22));
    EXPECT_EQ(page.nextDay, QRect(244 + 20 + 2, 100, 21, 22));
    EXPECT_EQ(page.subtitle, QRect(0, 129 + 12, 668, 16));
}

TEST(EntryPageLayout, alignsTheYearToTheRightWhateverItsWidth) {
    auto metrics = someMetrics();
    for (const int width : {32, 50, 76}) {
        metrics.mark.setWidth(width);
        const auto page = layoutEntryPage(metrics, 852);
        EXPECT_EQ(page.mark.x() + page.mark.width(), 76);
        EXPECT_EQ(page.mark.y(), page.content.y() + 6);
        EXPECT_EQ(page.ago.x() + page.ago.width(), 76);
        EXPECT_EQ(page.ago.y(), page.mark.y() + 17 + 5);
        EXPECT_EQ(page.content, QRect(100, 157 + 52, 568, 200000 / 568));
    }
}

TEST(EntryPageLayout, endsWithTheContentOrWithTheYearsNote) {
    auto metrics = someMetrics();
    EXPECT_EQ(layoutEntryPage(metrics, 852).column.height(), 209 + 352);
    metrics.content = [](int) { return 10; };
    EXPECT_EQ(layoutEntryPage(metrics, 852).column.height(), 209 + 6 + 17 + 5 + 13);
}

TEST(EntryPageLayout, alignsTheGapLineWithTheContent) {
    auto metrics = someMetrics();
    metrics.gapLine = [](int width) { return 10000 / width; };
    const auto page = layoutEntryPage(metrics, 852);
    EXPECT_EQ(page.gapLine, QRect(100, 209 + 352 + 44, 568, 10000 / 568));
    EXPECT_EQ(page.column.height(), 605 + 17);
}

TEST(EntryPageLayout, placesThePhotosBelowTheBlockAndAboveTheGapLine) {
    auto metrics = someMetrics();
    metrics.gallery = [](int width) { return width / 4; };
    auto page = layoutEntryPage(metrics, 852);
    EXPECT_EQ(page.gallery, QRect(0, 209 + 352, 668, 167));
    EXPECT_EQ(page.column.height(), 561 + 167);
    metrics.gapLine = [](int) { return 30; };
    page = layoutEntryPage(metrics, 852);
    EXPECT_EQ(page.gapLine.y(), 561 + 167 + 44);
    EXPECT_EQ(page.column.height(), page.gapLine.y() + 30);
}

TEST(EntryPageLayout, leavesNoRoomForPhotosThatAreNotThere) {
    auto metrics = someMetrics();
    metrics.gapLine = [](int) { return 30; };
    const auto without = layoutEntryPage(metrics, 852);
    metrics.gallery = [](int) { return 0; };
    const auto page = layoutEntryPage(metrics, 852);
    EXPECT_EQ(page.gapLine, without.gapLine);
    EXPECT_EQ(page.pageHeight, without.pageHeight);
    EXPECT_EQ(page.gallery.height(), 0);
}

TEST(EntryPageLayout, showsOnlyTheHeaderAndTheTextInSourceMode) {
    auto metrics = someMetrics();
    metrics.gapLine = [](int) { return 50; };
    metrics.source = [](int width) { return 2 * width; };
    const auto page = layoutEntryPage(metrics, 852);
    EXPECT_EQ(page.source, QRect(0, 25 + 36, 668, 1336));
    EXPECT_EQ(page.column.height(), 61 + 1336);
    EXPECT_TRUE(page.dayKey.isNull());
    EXPECT_TRUE(page.content.isNull());
    EXPECT_TRUE(page.gallery.isNull());
    EXPECT_TRUE(page.gapLine.isNull());
}

TEST(EntryPageLayout, givesATextSomeWidthHoweverNarrowTheWindow) {
    for (const int width : {0, 60, 112, 212}) {
        const auto page = layoutEntryPage(someMetrics(), width);
        EXPECT_GE(page.content.width(), 1) << width;
    }
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/EntryView.h>

#include <algorithm>

namespace diary {

namespace {

constexpr int topMargin = 40;
constexpr int bottomMargin = 140;

int bottomOf(const QRect &rect) {
    return rect.y() + rect.height();
}

int columnWidth(int pageWidth) {
    return std::clamp(pageWidth - 2 * EntryPageLayout::sideMargin, EntryPageLayout::contentInset + 1,
                      EntryPageLayout::widestColumn);
}

QRect centredOn(const QRect &row, int x, QSize size) {
    return {QPoint(x, row.y() + (row.height() - size.height()) / 2), size};
}

void placeHeader(EntryPageLayout &page, const EntryPageMetrics &metrics, int width) {
    // On one baseline, also where one of them has letters that stand higher.
    const int baseline = std::max(metrics.fileNameBaseline, metrics.ordinalBaseline);
    page.fileName = {QPoint(0, baseline - metrics.fileNameBaseline), metrics.fileName};
    page.ordinal = {QPoint(width - metrics.ordinal.width(), baseline - metrics.ordinalBaseline),
                    metrics.ordinal};
    page.rule = {0, bottomOf(page.fileName) + 10, width, 1};
}

void placeTitle(EntryPageLayout &page, const EntryPageMetrics &metrics, int width) {
    page.dayKey = {QPoint(0, bottomOf(page.rule) + 44), metrics.dayKey};
    const int baseline = page.dayKey.y() + metrics.dayKeyBaseline;
    page.weekday = {QPoint(metrics.dayKey.width() + 18, baseline - metrics.weekdayBaseline), metrics.weekday};
    page.previousDay =
        centredOn(page.weekday, page.weekday.x() + page.weekday.width() + 16, metrics.previousDay);
    page.nextDay =
        centredOn(page.weekday, page.previousDay.x() + page.previousDay.width() + 2, metrics.nextDay);
    page.subtitle = {0, bottomOf(page.dayKey) + 12, width, metrics.subtitleHeight};
}

// Returns the lower end.
int placeBlock(EntryPageLayout &page, const EntryPageMetrics &metrics, int width) {
    const int top = bottomOf(page.subtitle) + 52;
    const int contentWidth = width - EntryPageLayout::contentInset;
    page.mark = {QPoint(EntryPageLayout::gutter - metrics.mark.width(), top + 6), metrics.mark};
    page.ago = {QPoint(EntryPageLayout::gutter - metrics.ago.width(), bottomOf(page.mark) + 5), metrics.ago};
    page.content = {EntryPageLayout::contentInset, top, contentWidth, metrics.content(contentWidth)};
    return std::max(bottomOf(page.content), bottomOf(page.ago));
}

} // namespace

int entryContentWidth(int pageWidth) {
    return columnWidth(pageWidth) - EntryPageLayout::contentInset;
}

EntryPageLayout layoutEntryPage(const EntryPageMetrics &metrics, int pageWidth) {
    EntryPageLayout page;
    const int width = columnWidth(pageWidth);
    placeHeader(page, metrics, width);
    int bottom = 0;
    if (metrics.source) {
        page.source = {0, bottomOf(page.rule) + 36, width, metrics.source(width)};
        bottom = bottomOf(page.source);
    } else {
        placeTitle(page, metrics, width);
        bottom = placeBlock(page, metrics, width);
        page.gallery = {0, bottom, width, metrics.gallery ? metrics.gallery(width) : 0};
        bottom = bottomOf(page.gallery);
        if (metrics.gapLine) {
            const int gapWidth = width - EntryPageLayout::contentInset;
            page.gapLine = {EntryPageLayout::contentInset, bottom + 44, gapWidth, metrics.gapLine(gapWidth)};
            bottom = bottomOf(page.gapLine);
        }
    }
    page.column = {(pageWidth - width) / 2, topMargin, width, bottom};
    page.pageHeight = topMargin + bottom + bottomMargin;
    return page;
}

} // namespace diary

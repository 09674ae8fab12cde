// SPDX-License-Identifier: MIT
#include <DiaryApp/MainWindowLayout.h>

namespace diary {

MainWindowLayout layoutMainWindow(QSize contentView) {
    using Layout = MainWindowLayout;
    const int middleHeight = contentView.height() - Layout::topBarHeight - Layout::statusBarHeight;
    const int railX = contentView.width() - Layout::yearRailWidth;
    const auto column = [&](int x, int width) { return QRect(x, Layout::topBarHeight, width, middleHeight); };
    return {.topBar = {0, 0, contentView.width(), Layout::topBarHeight},
            .sidebar = column(0, Layout::sidebarWidth),
            .entryView = column(Layout::sidebarWidth, railX - Layout::sidebarWidth),
            .yearRail = column(railX, Layout::yearRailWidth),
            .statusBar = {0, contentView.height() - Layout::statusBarHeight, contentView.width(),
                          Layout::statusBarHeight}};
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QSize>

namespace diary {

// Where the five views stand in the content view, which is everything below the menu bar.
struct MainWindowLayout {
    static constexpr QSize initialSize{1360, 840};
    static constexpr QSize minimumSize{1080, 620};
    static constexpr int topBarHeight = 46;
    static constexpr int statusBarHeight = 27;
    static constexpr int sidebarWidth = 236;
    static constexpr int yearRailWidth = 272;

    QRect topBar;
    QRect sidebar;
    QRect entryView;
    QRect yearRail;
    QRect statusBar;
};

MainWindowLayout layoutMainWindow(QSize contentView);

} // namespace diary

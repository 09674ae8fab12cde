// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPalette>

#include <array>

// The one palette: a warm, paper-like light scheme, whatever the desktop's own. Main thread only.
//
// Names stand for roles. Some share a value and stay separate all the same, to be adjusted separately.
namespace diary::Theme {

QColor accent();
QColor paper();
QColor panel();
QColor bar();
QColor border();
QColor borderSoft();
QColor cardBorder();
QColor cardBorderHover();
QColor cardBorderActive();
QColor cardBg();
QColor cardBgActive();
QColor hoverBg();
QColor gridHoverOutline();
QColor inkStrong();
QColor ink();
QColor inkTitle();
QColor inkMed();
QColor inkSource();
QColor serifAside();
QColor pastText();
QColor chromeText();
QColor chevron();
QColor railSnippet();
QColor statLabel();
QColor statusText();
QColor railFoot();
QColor daySubText();
QColor sectionHead();
QColor emptyText();
QColor agoText();
QColor faint();
QColor ghostDay();
QColor placeholder();
QColor selectionBg();
QColor pillBg();
QColor pillText();
QColor railTextActive();
QColor railYear();

// From no writing to the most writing.
const std::array<QColor, 4> &heatShades();

// For the widgets that are not painted by hand.
QPalette palette();

} // namespace diary::Theme

// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

#include <array>

// The one palette and the fonts: a warm, paper-like light scheme, whatever the desktop's own. Main thread
// only.
//
// Names of colours stand for roles. Some share a value and stay separate all the same, to be adjusted
// separately.
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

enum class Weight { Regular, Medium };

// The fonts. Sizes are in logical pixels and are rounded to whole ones, as the fonts are loaded in whole
// pixels. Letter spacing is in logical pixels. All are cheap enough to be asked for while painting.

// The diary's own text: the family of the user's choice, else the built-in serif. Looked up at each call.
QFont serif(double size);
// Names, numbers and source text.
QFont mono(double size, Weight weight = Weight::Regular, double letterSpacing = 0);
// Code within the diary's own text.
QFont code(double size);
// Labels and buttons.
QFont system(double size, Weight weight = Weight::Regular);

// For the widgets that are not painted by hand: the desktop's own, named by the family that it means, so that
// it is loaded once with that of the labels. Main thread, to be set before there are widgets.
QFont application();

// The code of the language that the interface speaks, which decides how Han characters are drawn in the fonts
// made from now on. Without one, or with a language that has none, the user's locale decides.
void setInterfaceLanguage(const QString &code);

// For the widgets that are not painted by hand.
QPalette palette();

} // namespace diary::Theme

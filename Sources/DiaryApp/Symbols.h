// SPDX-License-Identifier: MIT
#pragma once

#include <QPainterPath>
#include <QString>

namespace diary {

// The outline of one of the application's own symbols, to be filled with a colour: about 13 pixels large,
// with its centre at the origin. Straight lines lie on whole pixels when the origin does. Empty for a name
// that is not known.
//
// Names: magnifyingglass, square.grid.3x3, gearshape, chevron.left, chevron.right, xmark.
QPainterPath symbolOutline(const QString &name);

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <QRectF>

class QPainter;

namespace diary {

// A soft black shadow below a box with round corners.
struct BoxShadow {
    double opacity = 0; // where the box is
    double radius = 0;  // how soft it is, in logical pixels
    int offset = 0;     // downwards

    // How far it reaches beyond the box, in whole pixels.
    int reach() const;
};

// Paints what lies outside the box. Costs little where the box has whole pixels and is larger than its
// corners and the shadow's: these are kept as images, by shadow and scale. The painter stays as it was. Main
// thread only.
void paintBoxShadow(QPainter &painter, const QRect &box, double cornerRadius, const BoxShadow &shadow);

} // namespace diary

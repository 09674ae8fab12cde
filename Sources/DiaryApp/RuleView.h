// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/ThemeBox.h>

namespace diary {

// A hairline: one logical pixel thick, as long as its place.
class RuleView : public ThemeBox {
    Q_OBJECT

public:
    explicit RuleView(const QColor &color, Qt::Orientation orientation = Qt::Horizontal,
                      QWidget *parent = nullptr);
};

} // namespace diary

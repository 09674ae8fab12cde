// SPDX-License-Identifier: MIT
#include <DiaryApp/RuleView.h>

namespace diary {

RuleView::RuleView(const QColor &color, Qt::Orientation orientation, QWidget *parent)
    : ThemeBox(color, parent) {
    if (orientation == Qt::Horizontal)
        setFixedHeight(1);
    else
        setFixedWidth(1);
}

} // namespace diary

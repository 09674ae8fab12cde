// SPDX-License-Identifier: MIT
#include <DiaryApp/GridNavigation.h>

#include <QKeyEvent>

#include <algorithm>

namespace diary {

std::optional<std::size_t> gridTarget(const QKeyEvent &event, std::size_t item, std::size_t count,
                                      std::size_t columns) {
    if (event.modifiers() & ~Qt::KeypadModifier)
        return std::nullopt;
    const auto last = count - 1;
    switch (event.key()) {
    case Qt::Key_Left:
        if (columns == 1)
            return std::nullopt;
        return item > 0 ? item - 1 : 0;
    case Qt::Key_Right:
        if (columns == 1)
            return std::nullopt;
        return std::min(item + 1, last);
    case Qt::Key_Up:
        return item >= columns ? item - columns : item;
    case Qt::Key_Down:
        // To the end of a last row that is shorter.
        return item / columns < last / columns ? std::min(item + columns, last) : item;
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return last;
    default:
        return std::nullopt;
    }
}

} // namespace diary

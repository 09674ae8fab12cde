// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>

class QKeyEvent;

namespace diary {

// The item that a key leads to from one of a grid's items, which are counted row by row; the item itself at
// the edge. None for a key that leads nowhere in any grid of so many columns, or that is held with others.
std::optional<std::size_t> gridTarget(const QKeyEvent &event, std::size_t item, std::size_t count,
                                      std::size_t columns);

} // namespace diary

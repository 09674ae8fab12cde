// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

namespace diary {

// Does the work of each index from 0 to `count` - 1 once, on several threads that take the next index in
// order, and returns when all are done. Each thread asks `makeWorker` for its own worker. A worker that
// returns false ends the loop: indices not yet taken are left out. Neither may throw.
void runInParallel(std::size_t count, const std::function<std::function<bool(std::size_t)>()> &makeWorker);

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

// Size, place and state of a window, remembered from one start to the next under the window's object name.
// Best effort: what cannot be written or read is no news. Main thread only.
namespace diary::WindowFrame {

void remember(const QWidget &window);

// False when nothing is remembered. A place that is on no screen any more is mended.
bool restore(QWidget &window);

} // namespace diary::WindowFrame

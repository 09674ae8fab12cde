// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace diary {

// Name, version, licence and libraries, over the window.
void showAboutBox(QWidget *window);

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/ApplicationStart.h>
#include <DiaryApp/WindowStyle.h>

#include <QApplication>

namespace diary {

ApplicationStart::ApplicationStart() {
    // Chosen before the application object, so that the desktop's own style is never loaded.
    QApplication::setStyle(new WindowStyle);
}

} // namespace diary

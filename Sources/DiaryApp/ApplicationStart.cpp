// SPDX-License-Identifier: MIT
#include <DiaryApp/ApplicationStart.h>
#include <DiaryApp/WindowStyle.h>

#include <QApplication>

#include <malloc.h>

namespace diary {

ApplicationStart::ApplicationStart() {
    // Two heaps for all threads, instead of one for each of a dozen: near a megabyte.
    mallopt(M_ARENA_MAX, 2);
    // Chosen before the application object, so that the desktop's own style is never loaded.
    QApplication::setStyle(new WindowStyle);
}

} // namespace diary

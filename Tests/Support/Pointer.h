// SPDX-License-Identifier: MIT
#pragma once

#include <QCursor>
#include <QPoint>
#include <QTest>
#include <QWidget>
#include <QWindow>

namespace diary::testing {

// Moves the mouse's pointer over the widget, as a hand would; what follows from it arrives with the events.
inline void movePointerTo(const QWidget &widget, const QPoint &position) {
    QCursor::setPos(widget.mapToGlobal(position));
    QCoreApplication::processEvents();
}

inline void movePointerTo(const QWidget &widget) {
    movePointerTo(widget, widget.rect().center());
}

// A press, a drag and a release as a screen reports them: the widget that was pressed gets what follows.
inline void pressAt(const QWidget &widget, const QPoint &position) {
    QTest::mousePress(widget.window()->windowHandle(), Qt::LeftButton, {},
                      widget.mapTo(widget.window(), position));
}

inline void dragTo(const QWidget &widget, const QPoint &position) {
    QTest::mouseMove(widget.window()->windowHandle(), widget.mapTo(widget.window(), position));
}

inline void releaseAt(const QWidget &widget, const QPoint &position) {
    QTest::mouseRelease(widget.window()->windowHandle(), Qt::LeftButton, {},
                        widget.mapTo(widget.window(), position));
}

// An active window in which nothing has the keyboard, with the pointer over none of what the test shows.
inline bool showActive(QWidget &window) {
    // Before the window is there: one that appears below the pointer is entered.
    QCursor::setPos(-100, -100);
    QCoreApplication::processEvents();
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window))
        return false;
    if (auto *focused = window.focusWidget())
        focused->clearFocus();
    return true;
}

} // namespace diary::testing

// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdlib>

namespace diary::benchmarks {

// Ends the process as soon as a window has been painted, so that the process's life is the time from its
// start to what the user sees first.
class ExitAfterFirstPaint : public QObject {
public:
    ExitAfterFirstPaint() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::Paint && widget && widget->isWindow()) {
            qApp->removeEventFilter(this);
            // After the painting that this event is the beginning of.
            QTimer::singleShot(0, [] { std::_Exit(0); });
        }
        return false;
    }
};

} // namespace diary::benchmarks

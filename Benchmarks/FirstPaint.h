// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QEvent>
#include <QString>
#include <QWidget>

#include <cstdlib>
#include <utility>

namespace diary::benchmarks {

// Ends the process as soon as a window has been painted, or the widget of that name, so that the process's
// life is the time from its start to what the user sees first.
class ExitAfterFirstPaint : public QObject {
public:
    explicit ExitAfterFirstPaint(QString name = {}) : m_name(std::move(name)) {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::Paint && widget && isMeant(*widget)) {
            qApp->removeEventFilter(this);
            // After the painting that this event is the beginning of.
            QMetaObject::invokeMethod(
                qApp, [] { std::_Exit(0); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    bool isMeant(const QWidget &widget) const {
        return m_name.isEmpty() ? widget.isWindow() : widget.objectName() == m_name;
    }

    QString m_name;
};

} // namespace diary::benchmarks

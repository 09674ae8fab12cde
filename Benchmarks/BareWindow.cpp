// SPDX-License-Identifier: MIT
//
// The least that a Qt program can do: an empty window of the diary's size, shown and left.

#include "FirstPaint.h"

#include <QApplication>
#include <QMainWindow>

int main(int argc, char *argv[]) {
    QApplication::setStyle(QStringLiteral("fusion"));
    const QApplication application(argc, argv);
    const diary::benchmarks::ExitAfterFirstPaint exit;
    QMainWindow window;
    window.resize(1360, 840);
    window.show();
    return QApplication::exec();
}

// SPDX-License-Identifier: MIT
//
// The least that a Qt program can do: a window of the diary's size, shown and left. It is empty, or with the
// argument "text" an editor with a line in it and a menu.

#include "FirstPaint.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>

#include <string_view>

int main(int argc, char *argv[]) {
    QApplication::setStyle(QStringLiteral("fusion"));
    const QApplication application(argc, argv);
    const diary::benchmarks::ExitAfterFirstPaint exit;
    QMainWindow window;
    if (argc > 1 && std::string_view(argv[1]) == "text") {
        window.menuBar()->addMenu(QStringLiteral("File"));
        window.setCentralWidget(new QPlainTextEdit(QStringLiteral("A line of text")));
    }
    window.resize(1360, 840);
    window.show();
    return QApplication::exec();
}

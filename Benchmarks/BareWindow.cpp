// SPDX-License-Identifier: MIT
//
// The least that a Qt program can do: a window of the diary's size, shown and left. It is empty, or with the
// argument "text" an editor with a line in it and a menu. With the argument "stay" it is not left.

#include "FirstPaint.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>

#include <optional>
#include <string_view>

int main(int argc, char *argv[]) {
    const std::string_view argument = argc > 1 ? argv[1] : "";
    QApplication::setStyle(QStringLiteral("fusion"));
    const QApplication application(argc, argv);
    std::optional<diary::benchmarks::ExitAfterFirstPaint> exit;
    if (argument != "stay")
        exit.emplace();
    QMainWindow window;
    if (argument == "text") {
        window.menuBar()->addMenu(QStringLiteral("File"));
        window.setCentralWidget(new QPlainTextEdit(QStringLiteral("A line of text")));
    }
    window.resize(1360, 840);
    window.show();
    return QApplication::exec();
}

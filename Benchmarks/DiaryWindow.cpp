// SPDX-License-Identifier: MIT
//
// The diary as it starts, left as soon as it is shown.

#include "FirstPaint.h"

#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/ApplicationStart.h>
#include <DiaryApp/FileManager.h>

#include <QApplication>

int main(int argc, char *argv[]) {
    const diary::ApplicationStart start;
    const QApplication application(argc, argv);
    const diary::benchmarks::ExitAfterFirstPaint exit;
    diary::SystemClock clock;
    diary::DesktopFileManager fileManager;
    diary::AppDelegate delegate(clock, fileManager);
    QTimer::singleShot(0, &delegate, [&delegate] { delegate.applicationDidFinishLaunching(); });
    return QApplication::exec();
}

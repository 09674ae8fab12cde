// SPDX-License-Identifier: MIT
#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/Clock.h>
#include <DiaryApp/FileManager.h>

#include <QApplication>
#include <QTimer>

#include <cstdio>
#include <string_view>

int main(int argc, char *argv[]) {
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (argument == "--version") {
            std::puts("tavelo " TAVELO_VERSION);
            return 0;
        }
        if (argument == "--help") {
            std::puts(
                "Usage: tavelo [Qt options]\n\nOpens the diary. DIARY_ROOT names another folder for it.\n"
                "tavelo-cli works on the same diary from a terminal.");
            return 0;
        }
    }

    // Chosen before the application object, so that the desktop's own style is never loaded.
    QApplication::setStyle(QStringLiteral("fusion"));
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tavelo"));
    QApplication::setApplicationDisplayName(QStringLiteral("Tavelo"));
    QApplication::setApplicationVersion(QStringLiteral(TAVELO_VERSION));

    // Closing the main window ends the program, whatever else is open.
    QApplication::setQuitOnLastWindowClosed(false);

    diary::SystemClock clock;
    diary::DesktopFileManager fileManager;
    diary::AppDelegate delegate(clock, fileManager);
    QTimer::singleShot(0, &delegate, &diary::AppDelegate::applicationDidFinishLaunching);
    return QApplication::exec();
}

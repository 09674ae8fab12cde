// SPDX-License-Identifier: MIT
#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/Clock.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/PhotoModule.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/UpdateChecker.h>
#include <DiaryApp/UpdateModule.h>

#include <QApplication>
#include <QTimer>

#include <cstdio>
#include <filesystem>
#include <string_view>
#include <utility>

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
    const std::filesystem::path programFolder = diary::toUtf8(QApplication::applicationDirPath());
    auto photoFolders = diary::PhotoModule::userFolders();
    photoFolders.added = diary::Settings::shared().photoFolders();
    diary::UpdateChecker updates(clock, diary::Settings::shared(), diary::UpdateModule::parts(),
                                 diary::UpdateChecker::surroundings());
    diary::AppDelegate delegate(
        clock, fileManager,
        {.updates = &updates, .photos = diary::PhotoModule::find(programFolder, std::move(photoFolders))});
    QTimer::singleShot(0, &delegate, &diary::AppDelegate::applicationDidFinishLaunching);
    return QApplication::exec();
}

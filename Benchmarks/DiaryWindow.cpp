// SPDX-License-Identifier: MIT
//
// The diary as it starts, left as soon as its window is shown, or with the argument "day" as soon as the day
// is. With the argument "alone" it is left likewise, and has no photos and no updates.

#include "FirstPaint.h"

#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/ApplicationStart.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/PhotoModule.h>
#include <DiaryApp/PhotoSource.h>
#include <DiaryApp/ProgramModule.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/UpdateChecker.h>
#include <DiaryApp/UpdateModule.h>

#include <QApplication>
#include <QTimer>

#include <optional>
#include <string_view>
#include <utility>

int main(int argc, char *argv[]) {
    const diary::ApplicationStart start;
    const QApplication application(argc, argv);
    const std::string_view argument = argc > 1 ? argv[1] : "";
    const diary::benchmarks::ExitAfterFirstPaint exit(argument.empty() ? QString()
                                                                       : QStringLiteral("entryView"));
    diary::SystemClock clock;
    diary::DesktopFileManager fileManager;
    diary::AppServices services;
    std::optional<diary::UpdateChecker> updates;
    if (argument != "alone") {
        updates.emplace(clock, diary::Settings::shared(), diary::UpdateModule::parts(),
                        diary::UpdateChecker::surroundings());
        services.updates = &*updates;
        services.photos = diary::PhotoModule::find(diary::programFolder(), diary::PhotoModule::userFolders());
    }
    diary::AppDelegate delegate(clock, fileManager, std::move(services));
    QTimer::singleShot(0, &delegate, [&delegate] { delegate.launch(); });
    return QApplication::exec();
}

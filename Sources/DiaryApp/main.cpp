// SPDX-License-Identifier: MIT
#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/ApplicationStart.h>
#include <DiaryApp/Clock.h>
#include <DiaryApp/DesktopActivation.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/LaunchRequest.h>
#include <DiaryApp/PhotoModule.h>
#include <DiaryApp/ProgramModule.h>
#include <DiaryApp/SelfTest.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/UpdateChecker.h>
#include <DiaryApp/UpdateModule.h>

#include <QApplication>
#include <QIcon>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <exception>
#include <optional>
#include <utility>

namespace {

using namespace std::chrono_literals;
using diary::CommandLine;

constexpr int wrongUsage = 2;
// A start that takes longer is none.
constexpr auto longestSelfTest = 60s;

constexpr const char *help =
    "Usage: tavelo [OPTION...]\n"
    "\n"
    "Opens the diary, or brings its window to the front.\n"
    "\n"
    "Options:\n"
    "  --today      show today's page\n"
    "  --search     show the search window\n"
    "  --self-test  start on an empty diary in a temporary folder, print a line\n"
    "               when the window has been painted, and end\n"
    "  --help       print this\n"
    "  --version    print the version\n"
    "\n"
    "Qt's own options are understood too. The environment variable DIARY_ROOT names\n"
    "another folder for the diary. tavelo-cli works on the same diary from a\n"
    "terminal.\n";

int openDiary(int argc, char **argv, diary::SelfTest *selfTest) {
    const diary::ApplicationStart start;
    // Before the application object: some desktops are told once.
    QApplication::setDesktopFileName(QLatin1String(diary::DesktopActivation::applicationId));
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tavelo"));
    QApplication::setApplicationDisplayName(QStringLiteral("Tavelo"));
    QApplication::setApplicationVersion(QStringLiteral(TAVELO_VERSION));

    // Once more, without what was Qt's.
    const auto line = diary::parseCommandLine(argc, argv);
    if (!line.unknown.isEmpty()) {
        std::fprintf(stderr, "tavelo: unknown argument '%s' (see tavelo --help)\n",
                     line.unknown.first().constData());
        return wrongUsage;
    }

    // Closing the main window ends the program, whatever else is open.
    QApplication::setQuitOnLastWindowClosed(false);

    diary::SystemClock clock;
    diary::DesktopFileManager fileManager;
    auto photoFolders = diary::PhotoModule::userFolders();
    photoFolders.added = diary::Settings::shared().photoFolders();
    diary::UpdateChecker updates(clock, diary::Settings::shared(), diary::UpdateModule::parts(),
                                 diary::UpdateChecker::surroundings());
    diary::AppDelegate delegate(
        clock, fileManager,
        {.updates = &updates,
         .photos = diary::PhotoModule::find(diary::programFolder(), std::move(photoFolders))});
    diary::DesktopActivation activation;
    activation.onLaunch = [&delegate](const auto &request) { delegate.answerLaunch(request); };
    delegate.onFirstPainted = [&] {
        if (selfTest) {
            selfTest->reportReady(TAVELO_VERSION);
            delegate.terminate();
            return;
        }
        // Wayland finds the icon by the name of the desktop file. To find it here takes some 20 ms.
        if (QGuiApplication::platformName() == QLatin1String("xcb"))
            QApplication::setWindowIcon(
                QIcon::fromTheme(QLatin1String(diary::DesktopActivation::applicationId)));
        activation.start();
    };
    if (selfTest)
        QTimer::singleShot(longestSelfTest, &application, [] { QCoreApplication::exit(1); });
    QTimer::singleShot(0, &delegate, [&delegate, action = line.action] { delegate.launch(action); });
    return QApplication::exec();
}

int testItself(int argc, char **argv) {
    try {
        diary::SelfTest selfTest;
        return selfTest.exitCode(openDiary(argc, argv, &selfTest));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "tavelo: %s\n", error.what());
        return 1;
    }
}

} // namespace

int main(int argc, char *argv[]) {
    switch (diary::parseCommandLine(argc, argv).task) {
    case CommandLine::Task::PrintVersion:
        std::puts("tavelo " TAVELO_VERSION);
        return 0;
    case CommandLine::Task::PrintHelp:
        std::fputs(help, stdout);
        return 0;
    case CommandLine::Task::TestItself:
        return testItself(argc, argv);
    case CommandLine::Task::OpenDiary:
        break;
    }
    return openDiary(argc, argv, nullptr);
}

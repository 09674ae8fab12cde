// SPDX-License-Identifier: MIT
#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/DebugScenario.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/QtExecutor.h>
#include <DiaryApp/TerminationSignals.h>
#include <DiaryApp/Theme.h>
#include <DiaryKit/Defaults.h>
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/UserDirectories.h>
#include <DiaryKit/VaultLocation.h>

#include <QApplication>
#include <QMainWindow>

namespace diary {

AppDelegate::AppDelegate(Clock &clock) : m_clock(clock), m_executor(std::make_unique<QtExecutor>()) {
    connect(qApp, &QGuiApplication::applicationStateChanged, this, &AppDelegate::applicationStateChanged);
    connect(qApp, &QCoreApplication::aboutToQuit, this, &AppDelegate::applicationShouldTerminate);
    // The session manager goes on with the log-out only after this returns.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this,
        [this](QSessionManager &) { applicationShouldTerminate(); }, Qt::DirectConnection);
}

AppDelegate::~AppDelegate() = default;

std::unique_ptr<DiaryStore> AppDelegate::makeStore(Executor &executor) {
    DiaryStore::Options options;
    options.executor = &executor;
    return std::make_unique<DiaryStore>(VaultLocation::chosen(Defaults()), std::move(options));
}

void AppDelegate::applicationDidFinishLaunching() {
    QApplication::setPalette(Theme::palette());

    m_terminationSignals = std::make_unique<TerminationSignals>([this] { terminate(); });
    m_mainWindowController = std::make_unique<MainWindowController>(makeStore(*m_executor), m_clock);

    const bool isScenario = qEnvironmentVariableIsSet("DIARY_SCREENSHOT");
    const bool comesToFront = !isScenario || qEnvironmentVariableIsSet("DIARY_ACTIVATE");
    auto *window = m_mainWindowController->window();
    window->setAttribute(Qt::WA_ShowWithoutActivating, !comesToFront);
    m_mainWindowController->showWindow();
    if (comesToFront) {
        window->raise();
        window->activateWindow();
    }
    if (isScenario)
        runDebugScenario(*this);
}

void AppDelegate::applicationStateChanged(Qt::ApplicationState state) {
    if (!m_mainWindowController)
        return;
    if (state != Qt::ApplicationActive) {
        m_mainWindowController->session().flushSaveIfDirty();
        return;
    }
    m_mainWindowController->session().performRemoteRefresh();
    m_mainWindowController->store().warmEvictedFiles();
}

void AppDelegate::applicationShouldTerminate() {
    if (!m_mainWindowController)
        return;
    auto &session = m_mainWindowController->session();
    if (!session.flushSaveIfDirty())
        session.rescueUnsavedText(UserDirectories::state() / "rescued");
}

void AppDelegate::terminate() {
    applicationShouldTerminate();
    QCoreApplication::exit();
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>

#include <QObject>

#include <memory>

class QSessionManager;

namespace diary {

class DiaryStore;
class Executor;
class MainWindowController;
class QtExecutor;
class TerminationSignals;

// The application's life: start-up, the main window, and a flush on every way out. Main thread only; needs a
// QApplication, and the clock must outlive it.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    explicit AppDelegate(Clock &clock);
    ~AppDelegate() override;

    void applicationDidFinishLaunching();

    // Over the folder that DIARY_ROOT, the settings or the default rule name.
    static std::unique_ptr<DiaryStore> makeStore(Executor &executor);

    MainWindowController *mainWindowController() const { return m_mainWindowController.get(); }

    // Saves the draft. What cannot be saved is put into the rescue folder, so that it outlives the process.
    void applicationShouldTerminate();

    // Ends the program by the ordinary road, without asking any window.
    void terminate();

private:
    void applicationStateChanged(Qt::ApplicationState state);

    Clock &m_clock;
    std::unique_ptr<QtExecutor> m_executor;
    std::unique_ptr<MainWindowController> m_mainWindowController;
    std::unique_ptr<TerminationSignals> m_terminationSignals;
};

} // namespace diary

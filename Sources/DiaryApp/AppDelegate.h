// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>

#include <QObject>

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace diary {

class DiaryStore;
class Executor;
class FileManager;
class MainWindowController;
class PhotoModule;
class PhotoSource;
class QtExecutor;
class TerminationSignals;
class VaultClaim;

// The application's life: start-up, the main window and what replaces it, and a flush on every way out. Main
// thread only; needs a QApplication. The clock and the file manager must outlive it.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    AppDelegate(Clock &clock, FileManager &fileManager);
    ~AppDelegate() override;

    // When another process shows the same vault already, its window comes to the front and this process ends.
    void applicationDidFinishLaunching();

    // Over the folder that DIARY_ROOT, the settings or the default rule name.
    static std::unique_ptr<DiaryStore> makeStore(Executor &executor);

    // None before start-up.
    MainWindowController *mainWindowController() const { return m_mainWindowController.get(); }

    // None where the photo module is not installed.
    PhotoSource *photoSource() const;

    // A new window over the vault that the settings now name, on the same day of the calendar; the old one
    // is saved and closed.
    void rebuildMainWindow();

    // Every text is looked up again, in the language that the settings now name.
    void applyLanguageChange();

    // Saves the draft. What cannot be saved is put into the rescue folder, so that it outlives the process.
    void applicationShouldTerminate();

    // Ends the program by the ordinary road, without asking any window.
    void terminate();

private:
    void applicationStateChanged(Qt::ApplicationState state);
    bool claimVault();
    std::unique_ptr<MainWindowController> makeMainWindow();
    void showMainWindow();
    void maybeShowOnboarding();
    void finishOnboarding(const std::filesystem::path &vault);
    void tellOfRescuedTexts();

    Clock &m_clock;
    FileManager &m_fileManager;
    // Before the queue, which still asks it while the work there ends.
    std::unique_ptr<PhotoModule> m_photoModule;
    std::unique_ptr<QtExecutor> m_photoQueue;
    std::unique_ptr<QtExecutor> m_executor;
    std::optional<std::filesystem::path> m_claimedVault;
    std::unique_ptr<VaultClaim> m_claim;
    std::unique_ptr<MainWindowController> m_mainWindowController;
    // Closed, and soon gone.
    std::vector<std::unique_ptr<MainWindowController>> m_retired;
    std::unique_ptr<TerminationSignals> m_terminationSignals;
};

} // namespace diary

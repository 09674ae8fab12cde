// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>
#include <DiaryApp/FontConfiguration.h>
#include <DiaryApp/LaunchRequest.h>
#include <DiaryApp/PhotoSource.h>

#include <QObject>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QMainWindow;

namespace diary {

class BlankWindow;
class DiaryStore;
class Executor;
class FileManager;
class FolderChooser;
class MainWindowController;
class QtExecutor;
class SettingsWindowController;
class TerminationSignals;
class Updates;
class VaultClaim;

// What the program can do without.
struct AppServices {
    FolderChooser *folderChooser = nullptr; // none for the desktop's own
    // Opens a link in the program for it; false when there is none.
    std::function<bool(const QUrl &)> openUrl = nullptr;
    Updates *updates = nullptr;
    std::unique_ptr<PhotoSource> photos = nullptr;
};

// The application's life: start-up, the main window and what replaces it, and a flush on every way out. Main
// thread only; needs a QApplication. What it is made from must outlive it.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    AppDelegate(Clock &clock, FileManager &fileManager, AppServices services = {});
    ~AppDelegate() override;

    // What main() begins with: shows the window blank, and fills it after its first picture by
    // applicationDidFinishLaunching. A scripted run has no blank window.
    void launch(LaunchAction action = LaunchAction::Show);

    // When another process shows the same vault already, its window comes to the front, does what this launch
    // was to do, and this process ends.
    void applicationDidFinishLaunching(LaunchAction action = LaunchAction::Show);

    // What another launch asks for: the window in front, on the page or with the window that it wants. While
    // the window is still blank, as soon as it is filled.
    void answerLaunch(const LaunchRequest &request);

    // Once, after the first window has been painted with the diary in it; never in a scripted run. For what
    // would make the start slower.
    std::function<void()> onFirstPainted;

    // Over the folder that DIARY_ROOT, the settings or the default rule name.
    static std::unique_ptr<DiaryStore> makeStore(Executor &executor);

    // None before start-up.
    MainWindowController *mainWindowController() const { return m_mainWindowController.get(); }

    // None before it is first shown.
    SettingsWindowController *settingsWindowController() const { return m_settingsWindowController.get(); }
    void showSettings();

    // A check that the user asked for; its result is told in an alert.
    void checkForUpdates();

    // A new window over the vault that the settings now name, on the same day of the calendar; the old one
    // is saved and closed.
    void rebuildMainWindow();

    // Every text is looked up again, in the language that the settings now name.
    void applyLanguageChange();

    // Saves the draft. What cannot be saved is put into the rescue folder, so that it outlives the process.
    void applicationShouldTerminate();

    // The last thing before the process ends.
    void applicationWillTerminate();

    // Ends the program by the ordinary road, without asking any window.
    void terminate();

private:
    void applicationStateChanged(Qt::ApplicationState state);
    static void prepareAppearance();
    bool claimVault(LaunchAction action = LaunchAction::Show);
    void showBlankWindow(LaunchAction action);
    void makeFirstMainWindow();
    void fill(const BlankWindow &blankWindow);
    void perform(LaunchAction action);
    std::unique_ptr<MainWindowController> makeMainWindow(std::unique_ptr<QMainWindow> window = nullptr);
    void showMainWindow();
    void observeUpdates();
    void keepSettingsInFront();
    void maybeShowOnboarding();
    void finishOnboarding(const std::filesystem::path &vault);
    void tellOfRescuedTexts();

    Clock &m_clock;
    FileManager &m_fileManager;
    // The photos come before the queue, which still asks them while the work there ends.
    AppServices m_services;
    std::unique_ptr<FolderChooser> m_folderChooser;
    std::unique_ptr<QtExecutor> m_photoQueue;
    std::unique_ptr<QtExecutor> m_executor;
    std::optional<std::filesystem::path> m_claimedVault;
    std::unique_ptr<VaultClaim> m_claim;
    std::unique_ptr<FontConfiguration::EarlyListing> m_fontFamilies;
    std::unique_ptr<BlankWindow> m_blankWindow; // until the main window takes its place
    std::vector<LaunchRequest> m_postponedLaunches;
    std::unique_ptr<MainWindowController> m_mainWindowController;
    // Closed, and soon gone.
    std::vector<std::unique_ptr<MainWindowController>> m_retired;
    std::unique_ptr<SettingsWindowController> m_settingsWindowController;
    std::unique_ptr<Timer> m_updateTimer;
    bool m_isCheckingForUpdates = false;
    std::unique_ptr<TerminationSignals> m_terminationSignals;
};

} // namespace diary

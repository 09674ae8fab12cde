// SPDX-License-Identifier: MIT
#include <DiaryApp/AboutBox.h>
#include <DiaryApp/Alert.h>
#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/BlankWindow.h>
#include <DiaryApp/CloudDriveName.h>
#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryApp/DebugScenario.h>
#include <DiaryApp/DraftJournal.h>
#include <DiaryApp/FeedbackMail.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/FolderChooser.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/MainMenu.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/PhotoPreviewController.h>
#include <DiaryApp/PhotoSource.h>
#include <DiaryApp/QtExecutor.h>
#include <DiaryApp/RescuedTexts.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SettingsWindowController.h>
#include <DiaryApp/TerminationSignals.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/UpdateNotices.h>
#include <DiaryApp/Updates.h>
#include <DiaryApp/VaultClaim.h>
#include <DiaryApp/WindowFrame.h>
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/VaultLocation.h>

#include <QApplication>
#include <QDesktopServices>
#include <QMainWindow>
#include <QPointer>

#include <chrono>
#include <thread>
#include <utility>

namespace diary {

namespace {

using namespace std::chrono_literals;

// How long another process may take from its start to listening.
constexpr auto longestStart = 5s;
constexpr auto pauseBetweenKnocks = 50ms;

// Keeps the first request to the network out of the start.
constexpr auto firstUpdateCheckDelay = 5s;

bool comesToFront() {
    return !isDebugScenario() || qEnvironmentVariableIsSet("DIARY_ACTIVATE");
}

std::filesystem::path chosenVault() {
    return VaultLocation::chosen(Settings::shared().defaults());
}

// What the desktop gave this process to take the focus with.
QByteArray activationToken() {
    const auto token = qgetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

} // namespace

AppDelegate::AppDelegate(Clock &clock, FileManager &fileManager, AppServices services)
    : m_clock(clock),
      m_fileManager(fileManager),
      m_services(std::move(services)),
      m_photoQueue(std::make_unique<QtExecutor>(1)),
      m_executor(std::make_unique<QtExecutor>()) {
    if (!m_services.folderChooser) {
        m_folderChooser = std::make_unique<DesktopFolderChooser>();
        m_services.folderChooser = m_folderChooser.get();
    }
    if (!m_services.openUrl)
        m_services.openUrl = [](const QUrl &url) { return QDesktopServices::openUrl(url); };
    if (m_services.photos)
        m_services.photos->onChange = [this] {
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (m_mainWindowController)
                        m_mainWindowController->photosDidChange();
                },
                Qt::QueuedConnection);
        };
    connect(qApp, &QGuiApplication::applicationStateChanged, this, &AppDelegate::applicationStateChanged);
    connect(qApp, &QCoreApplication::aboutToQuit, this, &AppDelegate::applicationWillTerminate);
    // The session manager goes on with the log-out only after this returns.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this,
        [this](QSessionManager &) { applicationShouldTerminate(); }, Qt::DirectConnection);
}

AppDelegate::~AppDelegate() = default;

std::unique_ptr<DiaryStore> AppDelegate::makeStore(Executor &executor) {
    DiaryStore::Options options;
    options.conflictMarker = toUtf8(L("ConflictMarker"));
    options.executor = &executor;
    return std::make_unique<DiaryStore>(chosenVault(), std::move(options));
}

void AppDelegate::prepareAppearance() {
    QApplication::setPalette(Theme::palette());
    Theme::setInterfaceLanguage(Localization::bundle().language());
}

void AppDelegate::launch(LaunchAction action) {
    prepareAppearance();
    if (isDebugScenario())
        applicationDidFinishLaunching(action);
    else if (claimVault(action))
        showBlankWindow(action);
    else
        QCoreApplication::exit();
}

void AppDelegate::showBlankWindow(LaunchAction action) {
    m_fontFamilies = std::make_unique<FontConfiguration::EarlyListing>();
    const auto today = toQString(m_clock.today().monthDay().fileName());
    m_blankWindow = std::make_unique<BlankWindow>(MainWindowController::windowTitle(today), m_clock);
    m_blankWindow->onWaiting = [this] { makeFirstMainWindow(); };
    m_blankWindow->onReady = [this, action] { applicationDidFinishLaunching(action); };
    m_blankWindow->show();
}

void AppDelegate::makeFirstMainWindow() {
    if (!m_mainWindowController)
        m_mainWindowController = makeMainWindow(m_blankWindow ? m_blankWindow->take() : nullptr);
}

void AppDelegate::applicationDidFinishLaunching(LaunchAction action) {
    // Else the fonts that the views were made with would be looked for once more.
    if (!m_blankWindow)
        prepareAppearance();
    // A scripted run writes what it is told to and takes a picture; it may look at a vault in use.
    if (!isDebugScenario() && !claimVault(action)) {
        QCoreApplication::exit();
        return;
    }

    m_terminationSignals = std::make_unique<TerminationSignals>([this] { terminate(); });
    makeFirstMainWindow();
    const auto blankWindow = std::exchange(m_blankWindow, nullptr);
    if (!isDebugScenario())
        m_mainWindowController->onFirstPainted = [this] {
            if (onFirstPainted)
                onFirstPainted();
        };
    if (blankWindow)
        fill(*blankWindow);
    else
        showMainWindow();
    perform(action);
    bool isSearch = action == LaunchAction::Search;
    for (const auto &request : std::exchange(m_postponedLaunches, {})) {
        answerLaunch(request);
        isSearch |= request.action == LaunchAction::Search;
    }
    if (isDebugScenario())
        runDebugScenario(*this);
    observeUpdates();
    tellOfRescuedTexts();
    maybeShowOnboarding();
    // What was typed to be searched for does not belong into the diary.
    if (blankWindow)
        blankWindow->catchUp(isSearch ? nullptr : m_mainWindowController->textView(),
                             *m_mainWindowController->window());
}

// The window stays where the user has it by now.
void AppDelegate::fill(const BlankWindow &blankWindow) {
    auto *window = m_mainWindowController->window();
    m_mainWindowController->showWindow();
    if (!window->isActiveWindow() && !window->isMinimized()) {
        window->raise();
        window->activateWindow();
    } else {
        // It was for this start, and must not be used for a window that is opened later.
        qunsetenv("XDG_ACTIVATION_TOKEN");
    }
    if (blankWindow.isAsFirstMade(*window))
        m_mainWindowController->takeInitialSize();
}

// False when another process has the vault's window and was asked to show it.
bool AppDelegate::claimVault(LaunchAction action) {
    const auto vault = chosenVault();
    if (m_claimedVault == vault)
        return true;
    const auto deadline = std::chrono::steady_clock::now() + longestStart;
    do {
        if (auto claim = VaultClaim::take(vault)) {
            claim->onKnock = [this](const LaunchRequest &request) { answerLaunch(request); };
            m_claim = std::move(claim);
            m_claimedVault = vault;
            return true;
        }
        if (VaultClaim::knock(vault, {.action = action, .activationToken = activationToken()}))
            return false;
        std::this_thread::sleep_for(pauseBetweenKnocks);
    } while (std::chrono::steady_clock::now() < deadline);
    return false;
}

void AppDelegate::answerLaunch(const LaunchRequest &request) {
    if (m_blankWindow) {
        m_postponedLaunches.push_back(request);
        return;
    }
    if (!m_mainWindowController)
        return;
    qputenv("XDG_ACTIVATION_TOKEN", request.activationToken);
    m_mainWindowController->bringToFront();
    perform(request.action);
}

void AppDelegate::perform(LaunchAction action) {
    switch (action) {
    case LaunchAction::Show:
        break;
    case LaunchAction::Today:
        m_mainWindowController->session().openToday();
        break;
    case LaunchAction::Search:
        m_mainWindowController->showSearch();
        break;
    }
}

std::unique_ptr<MainWindowController> AppDelegate::makeMainWindow(std::unique_ptr<QMainWindow> window) {
    MenuActions actions;
    actions.showSettings = [this] { showSettings(); };
    actions.checkForUpdates = [this] { checkForUpdates(); };
    actions.quit = [this] { terminate(); };
    auto store = makeStore(*m_executor);
    std::optional<DraftJournal> journal;
    // Of another process's vault, another process keeps the journal.
    if (m_claim && m_claimedVault == store->rootURL()) {
        journal = DraftJournal::ofVault(store->rootURL());
        restoreDrafts(*journal, *store);
    }
    auto controller = std::make_unique<MainWindowController>(
        std::move(store), m_clock, m_fileManager, std::move(actions),
        std::make_unique<DayPhotoLibrary>(m_services.photos.get(), m_photoQueue.get()),
        std::make_unique<PhotoPreviewController>(m_fileManager, *m_executor, m_services.photos.get()),
        std::move(window));
    if (journal)
        controller->session().keepJournal(*journal);
    controller->onClose = [this, window = controller.get()] {
        if (window == m_mainWindowController.get())
            terminate();
    };
    return controller;
}

void AppDelegate::showMainWindow() {
    auto *window = m_mainWindowController->window();
    window->setAttribute(Qt::WA_ShowWithoutActivating, !comesToFront());
    m_mainWindowController->showWindow();
    if (comesToFront()) {
        window->raise();
        window->activateWindow();
    }
}

void AppDelegate::rebuildMainWindow() {
    auto &old = m_retired.emplace_back(m_mainWindowController.release());
    if (old && !old->session().flushSaveIfDirty())
        old->session().rescueUnsavedText(RescuedTexts::folder());
    const bool isHere = isDebugScenario() || claimVault();

    m_mainWindowController = makeMainWindow();
    if (old) {
        m_mainWindowController->session().open(old->session().currentMonthDay());
        m_mainWindowController->window()->restoreGeometry(old->window()->saveGeometry());
    }
    showMainWindow();
    if (old)
        old->window()->close();
    // Not at once: this may be the answer to an alert of that window.
    QMetaObject::invokeMethod(
        this, [this] { m_retired.clear(); }, Qt::QueuedConnection);
    if (!isHere)
        showAlert(m_mainWindowController->window(),
                  {.icon = QMessageBox::Warning, .message = L("Tavelo is already open on this diary.")});
    tellOfRescuedTexts();
}

void AppDelegate::applyLanguageChange() {
    Localization::setBundle(Localization::resolveBundle());
    Theme::setInterfaceLanguage(Localization::bundle().language());
    rebuildMainWindow();
    if (m_settingsWindowController)
        m_settingsWindowController->rebuildContent();
}

void AppDelegate::showSettings() {
    if (!m_settingsWindowController) {
        m_settingsWindowController = std::make_unique<SettingsWindowController>(
            Settings::shared(),
            SettingsWindowController::Services{.folderChooser = *m_services.folderChooser,
                                               .executor = *m_executor,
                                               .openUrl = m_services.openUrl,
                                               .updates = m_services.updates,
                                               .photos = m_services.photos.get(),
                                               .feedbackAddress = FeedbackMail::address()});
        m_settingsWindowController->onLanguageChanged = [this] {
            applyLanguageChange();
            keepSettingsInFront();
        };
        m_settingsWindowController->onVaultChanged = [this] {
            rebuildMainWindow();
            keepSettingsInFront();
        };
        m_settingsWindowController->onReadingChanged = [this] { m_mainWindowController->renderEntry(); };
        m_settingsWindowController->onSaveBeforeCopying = [this] {
            return m_mainWindowController->session().flushSaveIfDirty();
        };
    }
    m_settingsWindowController->window()->setAttribute(Qt::WA_ShowWithoutActivating, !comesToFront());
    m_settingsWindowController->showWindow();
}

// The new main window came to the front, while it is the settings that are being used.
void AppDelegate::keepSettingsInFront() {
    if (m_settingsWindowController->window()->isVisible())
        m_settingsWindowController->showWindow();
}

void AppDelegate::observeUpdates() {
    if (!m_services.updates)
        return;
    m_services.updates->observeDownloading(this, [this](const QString &version) {
        m_mainWindowController->flash(UpdateNotices::downloading(version));
    });
    m_services.updates->observeReady(this, [this](const QString &version) {
        m_mainWindowController->flash(UpdateNotices::ready(version));
    });
    m_updateTimer = m_clock.makeTimer([this] {
        if (const auto outcome = m_services.updates->takeOutcome())
            m_mainWindowController->flash(UpdateNotices::outcome(*outcome));
        m_services.updates->checkIfDue();
    });
    m_updateTimer->start(firstUpdateCheckDelay);
}

void AppDelegate::checkForUpdates() {
    // One answer is enough for whoever asks twice.
    if (std::exchange(m_isCheckingForUpdates, true))
        return;
    const auto tell = [self = QPointer(this)](const Updates::CheckResult &result) {
        if (!self)
            return;
        self->m_isCheckingForUpdates = false;
        const auto *updates = self->m_services.updates;
        showAlert(self->m_mainWindowController->window(),
                  UpdateNotices::alert(result, updates && updates->isSupported(),
                                       QApplication::applicationVersion()));
    };
    if (m_services.updates)
        m_services.updates->runCheck(tell);
    else
        tell(Updates::Failed{});
}

void AppDelegate::maybeShowOnboarding() {
    const bool isAskedFor = qEnvironmentVariableIsSet("DIARY_VIEW_ONBOARD");
    const bool isScripted = isDebugScenario() || qEnvironmentVariableIsSet("DIARY_ROOT");
    if (!isAskedFor && (isScripted || !Settings::shared().needsOnboarding()))
        return;
    const auto drive = cloudDriveName();
    const auto cloudVault = VaultLocation::cloudVault();
    showAlert(m_mainWindowController->window(),
              {.icon = QMessageBox::Question,
               .message = L("OnboardTitle"),
               .informativeText = L("OnboardInfo", drive),
               .buttons = {L("OnboardICloud", drive), L("OnboardLocal")},
               .onAnswer = [this, cloudVault](int button) {
                   finishOnboarding(button == 0 && cloudVault ? *cloudVault : VaultLocation::localVault());
               }});
}

void AppDelegate::finishOnboarding(const std::filesystem::path &vault) {
    std::error_code error;
    // Should it fail, the first save says so.
    std::filesystem::create_directories(vault, error);
    try {
        Settings::shared().setVaultPath(vault);
        Settings::shared().setHasOnboarded(true);
    } catch (const std::filesystem::filesystem_error &failure) {
        showAlert(m_mainWindowController->window(),
                  {.icon = QMessageBox::Warning, .message = toQString(failure.what())});
        return;
    }
    rebuildMainWindow();
}

void AppDelegate::tellOfRescuedTexts() {
    if (!RescuedTexts::haveNews())
        return;
    showAlert(
        m_mainWindowController->window(),
        {.icon = QMessageBox::Information,
         .message = L("Tavelo could not save this text to the diary when it was last closed. It is kept "
                      "in this folder:"),
         .informativeText = pathToQString(RescuedTexts::folder()),
         .buttons = {L("Show Folder"), L("OK")},
         .onAnswer = [this](int button) {
             RescuedTexts::markAsTold();
             if (button == 0)
                 m_fileManager.openFolder(RescuedTexts::folder());
         }});
}

void AppDelegate::applicationStateChanged(Qt::ApplicationState state) {
    // What is read while the window is blank is new.
    if (!m_mainWindowController || m_blankWindow)
        return;
    if (state != Qt::ApplicationActive) {
        m_mainWindowController->session().flushSaveIfDirty();
        return;
    }
    if (m_services.updates)
        m_services.updates->checkIfDue();
    m_mainWindowController->lookAgain();
}

void AppDelegate::applicationShouldTerminate() {
    if (!m_mainWindowController)
        return;
    auto &session = m_mainWindowController->session();
    if (!session.flushSaveIfDirty())
        session.rescueUnsavedText(RescuedTexts::folder());
}

void AppDelegate::applicationWillTerminate() {
    applicationShouldTerminate();
    if (m_services.updates)
        m_services.updates->installPendingUpdate();
}

void AppDelegate::terminate() {
    applicationShouldTerminate();
    if (m_mainWindowController && !isDebugScenario())
        WindowFrame::remember(*m_mainWindowController->window());
    QCoreApplication::exit();
}

} // namespace diary

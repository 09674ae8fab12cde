// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/FakeFileManager.h"
#include "Support/FakeFolderChooser.h"
#include "Support/FakeUpdates.h"
#include "Support/ManualExecutor.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/BlankWindow.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/SettingsWindowController.h>
#include <DiaryApp/StatusBarView.h>
#include <DiaryApp/VaultClaim.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedEnvironment;

// A home folder of its own for each test.
class AppDelegateTest : public ::testing::Test {
protected:
    // The settings' place is found once, before this test had a folder of its own.
    void TearDown() override {
        std::error_code error;
        std::filesystem::remove(Settings::shared().defaults().path(), error);
    }

    testing::TemporaryFolder folder;
    testing::FakeClock clock{{2025, 3, 14}};
    testing::FakeFileManager fileManager;
    testing::ManualExecutor executor;
    ScopedEnvironment home{"HOME", folder / "home"};
    ScopedEnvironment config{"XDG_CONFIG_HOME", folder / "config"};
    ScopedEnvironment state{"XDG_STATE_HOME", folder / "state"};
    ScopedEnvironment runtime{"XDG_RUNTIME_DIR", folder / "run"};
    ScopedEnvironment root{"DIARY_ROOT", std::nullopt};
    ScopedEnvironment onboard{"DIARY_VIEW_ONBOARD", std::nullopt};
};

TEST_F(AppDelegateTest, opensTheVaultInTheDocumentsFolderByDefault) {
    EXPECT_EQ(AppDelegate::makeStore(executor)->rootURL(), folder / "home/Documents/Diary");
}

TEST_F(AppDelegateTest, opensTheVaultOfTheSettings) {
    Settings::shared().setVaultPath(folder / "elsewhere");
    EXPECT_EQ(AppDelegate::makeStore(executor)->rootURL(), folder / "elsewhere");
}

TEST_F(AppDelegateTest, prefersTheVaultOfTheEnvironmentAndRemembersNothingOfIt) {
    Settings::shared().setVaultPath(folder / "elsewhere");
    {
        const ScopedEnvironment here("DIARY_ROOT", "~/as it stands");
        EXPECT_EQ(AppDelegate::makeStore(executor)->rootURL(), "~/as it stands");
    }
    EXPECT_EQ(AppDelegate::makeStore(executor)->rootURL(), folder / "elsewhere");
}

TEST_F(AppDelegateTest, makesNothingOnDiskUntilSomethingIsWritten) {
    {
        AppDelegate delegate(clock, fileManager);
        EXPECT_EQ(delegate.mainWindowController(), nullptr);
        delegate.applicationDidFinishLaunching();
        EXPECT_TRUE(delegate.mainWindowController()->window()->isVisible());
        delegate.applicationShouldTerminate();
    }
    EXPECT_THAT(folder.names(), ElementsAre("run"));
}

TEST_F(AppDelegateTest, canBeAskedToTerminateBeforeItHasAWindow) {
    AppDelegate delegate(clock, fileManager);
    delegate.applicationShouldTerminate();
    emit qApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_THAT(folder.names(), IsEmpty());
}

// The program, started over the vault folder "vault".
class RunningAppDelegateTest : public AppDelegateTest {
protected:
    void makeDelegate() {
        delegate = std::make_unique<AppDelegate>(
            clock, fileManager,
            AppServices{
                .folderChooser = &chooser, .openUrl = nullptr, .updates = &updates, .photos = nullptr});
    }
    void start(LaunchAction action = LaunchAction::Show) {
        makeDelegate();
        delegate->applicationDidFinishLaunching(action);
    }
    void type(const char *text) const {
        QTest::keyClicks(delegate->mainWindowController()->textView(), QString::fromUtf8(text));
    }

    QMessageBox *alert() const {
        auto *window = delegate->mainWindowController()->window();
        return window->findChild<QMessageBox *>(QStringLiteral("alert"));
    }
    void press(const char *button) const {
        for (auto *candidate : alert()->buttons()) {
            if (candidate->text().remove(QLatin1Char('&')) == QLatin1String(button))
                candidate->click();
        }
    }
    static std::ptrdiff_t visibleMainWindows() {
        const auto windows = QApplication::topLevelWidgets();
        return std::count_if(windows.begin(), windows.end(), [](const QWidget *window) {
            return window->isVisible() && qobject_cast<const QMainWindow *>(window);
        });
    }

    // Runs the event loop, in which the action is to end the program; gives up after a while.
    template <typename Action>
    int runUntilEndedBy(Action action) {
        QTimer::singleShot(0, delegate.get(), action);
        QTimer::singleShot(10s, delegate.get(), [] { QCoreApplication::exit(-1); });
        QApplication::setQuitOnLastWindowClosed(true);
        const int exitCode = QApplication::exec();
        QApplication::setQuitOnLastWindowClosed(false);
        return exitCode;
    }

    testing::FakeFolderChooser chooser;
    testing::FakeUpdates updates;
    ScopedEnvironment root{"DIARY_ROOT", folder / "vault"};
    std::unique_ptr<AppDelegate> delegate;
};

TEST_F(RunningAppDelegateTest, savesWhenItTerminates) {
    start();
    type("Saved");
    delegate->applicationShouldTerminate();
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nSaved\n");
    EXPECT_THAT(folder.names(), ElementsAre("run", "vault"));
}

TEST_F(RunningAppDelegateTest, endsTheProgramWithTheTextSaved) {
    start();
    type("Saved");
    EXPECT_EQ(runUntilEndedBy([this] { delegate->terminate(); }), 0);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nSaved\n");
}

TEST_F(RunningAppDelegateTest, endsWithItsWindow) {
    start();
    type("Saved");
    EXPECT_EQ(runUntilEndedBy([this] { delegate->mainWindowController()->window()->close(); }), 0);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nSaved\n");
}

TEST_F(RunningAppDelegateTest, rescuesWhatItCannotSaveHoweverItEnds) {
    folder.write("vault", "in the way");
    start();
    type("Rescued");
    EXPECT_EQ(runUntilEndedBy([this] { delegate->mainWindowController()->window()->close(); }), 0);
    EXPECT_THAT(folder.names("state/tavelo/rescued"), ElementsAre("2025-03-14.md"));
    EXPECT_EQ(folder.read("state/tavelo/rescued/2025-03-14.md"), "Rescued");

    EXPECT_EQ(runUntilEndedBy([this] { delegate->terminate(); }), 0);
    EXPECT_THAT(folder.names("state/tavelo/rescued"), ElementsAre("2025-03-14.md"));
}

TEST_F(RunningAppDelegateTest, savesWhenAnotherProgramComesToTheFront) {
    start();
    type("Saved");
    emit qApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nSaved\n");
}

TEST_F(RunningAppDelegateTest, savesWhenTheDesktopLogsOut) {
    start();
    type("Saved");
    // Only the desktop can make a session manager; nobody looks into this one.
    alignas(std::max_align_t) std::array<char, 64> sessionManager{};
    emit qApp->commitDataRequest(reinterpret_cast<QSessionManager &>(sessionManager));
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nSaved\n");
}

TEST_F(RunningAppDelegateTest, speaksAnotherLanguageAtOnceWithTheTextSaved) {
    const ScopedEnvironment language("DIARY_LANGUAGE", "de");
    start();
    delegate->mainWindowController()->session().open({5, 1});
    type("Gesichert");
    const auto menuTitles = [this] {
        QStringList titles;
        for (const auto *entry : delegate->mainWindowController()->window()->menuBar()->actions())
            titles += entry->text().remove(QLatin1Char('&'));
        return titles;
    };
    delegate->applyLanguageChange();
    EXPECT_TRUE(menuTitles().contains(QStringLiteral("Bearbeiten")));
    {
        const ScopedEnvironment other("DIARY_LANGUAGE", "fr");
        delegate->applyLanguageChange();
    }
    EXPECT_TRUE(menuTitles().contains(QStringLiteral("Édition")));
    EXPECT_EQ(folder.read("vault/05-01.md"), "# 05-01\n\n## 2025\n\nGesichert\n");
    EXPECT_EQ(delegate->mainWindowController()->session().currentMonthDay(), (MonthDay{5, 1}));
    {
        const ScopedEnvironment english("DIARY_LANGUAGE", "en");
        delegate->applyLanguageChange();
    }
}

TEST_F(RunningAppDelegateTest, looksForChangesWhenItComesToTheFront) {
    start();
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\nFrom another device\n");
    emit qApp->applicationStateChanged(Qt::ApplicationActive);
    EXPECT_EQ(delegate->mainWindowController()->textView()->text(), QStringLiteral("From another device"));
}

TEST_F(RunningAppDelegateTest, opensTheSameDayInTheNewWindowWithTheTextSaved) {
    start();
    auto *old = delegate->mainWindowController();
    old->session().open({5, 1});
    type("Saved");
    delegate->rebuildMainWindow();
    EXPECT_NE(delegate->mainWindowController(), old);
    EXPECT_EQ(delegate->mainWindowController()->session().currentMonthDay(), (MonthDay{5, 1}));
    EXPECT_EQ(delegate->mainWindowController()->textView()->text(), QStringLiteral("Saved"));
    EXPECT_EQ(folder.read("vault/05-01.md"), "# 05-01\n\n## 2025\n\nSaved\n");
    EXPECT_TRUE(delegate->mainWindowController()->window()->isVisible());
    EXPECT_EQ(visibleMainWindows(), 1);
}

TEST_F(RunningAppDelegateTest, keepsTheTextThatCannotBeSavedWhenTheWindowIsRebuilt) {
    folder.write("vault", "in the way");
    start();
    type("Rescued");
    delegate->rebuildMainWindow();
    EXPECT_EQ(folder.read("state/tavelo/rescued/2025-03-14.md"), "Rescued");
    EXPECT_NE(alert(), nullptr);
}

TEST_F(RunningAppDelegateTest, opensTheVaultThatTheSettingsNameWhenTheWindowIsRebuilt) {
    start();
    const ScopedEnvironment other("DIARY_ROOT", folder / "other");
    delegate->rebuildMainWindow();
    EXPECT_EQ(delegate->mainWindowController()->store().rootURL(), folder / "other");
    // The vault that was left is free for others, the new one is not.
    EXPECT_NE(VaultClaim::take(folder / "vault"), nullptr);
    EXPECT_EQ(VaultClaim::take(folder / "other"), nullptr);
}

TEST_F(RunningAppDelegateTest, comesToTheFrontWhenItIsLaunchedAgain) {
    start();
    auto *window = delegate->mainWindowController()->window();
    window->showMinimized();
    ASSERT_TRUE(window->isMinimized());
    EXPECT_TRUE(VaultClaim::knock(folder / "vault", {}));
    EXPECT_TRUE(QTest::qWaitFor([window] { return !window->isMinimized(); }));
}

TEST_F(RunningAppDelegateTest, goesToTodayWhenItIsLaunchedForIt) {
    start();
    auto &session = delegate->mainWindowController()->session();
    const auto today = session.currentMonthDay();
    session.step(3);
    EXPECT_TRUE(VaultClaim::knock(folder / "vault", {.action = LaunchAction::Today, .activationToken = {}}));
    EXPECT_TRUE(QTest::qWaitFor([&] { return session.currentMonthDay() == today; }));
}

TEST_F(RunningAppDelegateTest, staysOnItsDayWhenItIsLaunchedAgain) {
    start();
    auto &session = delegate->mainWindowController()->session();
    session.step(3);
    const auto day = session.currentMonthDay();
    delegate->mainWindowController()->window()->showMinimized();
    delegate->answerLaunch({});
    EXPECT_FALSE(delegate->mainWindowController()->window()->isMinimized());
    EXPECT_EQ(session.currentMonthDay(), day);
}

TEST_F(RunningAppDelegateTest, showsTheSearchWindowWhenItIsLaunchedForIt) {
    const auto isSearching = [] {
        const auto windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [](const QWidget *window) {
            return window->isVisible() && window->objectName() == QLatin1String("DiarySearchWindow");
        });
    };
    start();
    EXPECT_FALSE(isSearching());
    EXPECT_TRUE(VaultClaim::knock(folder / "vault", {.action = LaunchAction::Search, .activationToken = {}}));
    EXPECT_TRUE(QTest::qWaitFor(isSearching));
    delegate.reset();
    EXPECT_FALSE(isSearching());
    start(LaunchAction::Search);
    EXPECT_TRUE(isSearching());
}

TEST_F(RunningAppDelegateTest, answersNoLaunchBeforeItHasAWindow) {
    makeDelegate();
    delegate->answerLaunch({.action = LaunchAction::Search, .activationToken = {}});
    EXPECT_EQ(delegate->mainWindowController(), nullptr);
}

TEST_F(RunningAppDelegateTest, tellsOnceThatTheFirstWindowIsPainted) {
    makeDelegate();
    int times = 0;
    delegate->onFirstPainted = [&] { ++times; };
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(times, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return times == 1; }));
    delegate->rebuildMainWindow();
    delegate->mainWindowController()->window()->repaint();
    QApplication::processEvents();
    EXPECT_EQ(times, 1);
}

// The start with a blank window

class BlankStartTest : public RunningAppDelegateTest {
protected:
    void launch(LaunchAction action = LaunchAction::Show) {
        makeDelegate();
        delegate->launch(action);
    }
    static QMainWindow *shownWindow() {
        for (auto *window : QApplication::topLevelWidgets()) {
            if (auto *mainWindow = qobject_cast<QMainWindow *>(window); mainWindow && window->isVisible())
                return mainWindow;
        }
        return nullptr;
    }
    bool isFilled() const {
        const auto *controller = delegate->mainWindowController();
        return controller && controller->contentView()->isVisible();
    }
    bool getsFilled() const {
        return QTest::qWaitFor([this] { return isFilled(); });
    }
};

TEST_F(BlankStartTest, showsItsWindowBeforeTheDiaryIsInIt) {
    launch();
    auto *window = shownWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->windowTitle(), QStringLiteral("03-14.md[*]"));
    EXPECT_EQ(delegate->mainWindowController(), nullptr);
    ASSERT_TRUE(getsFilled());
    EXPECT_EQ(delegate->mainWindowController()->window(), window);
    EXPECT_EQ(window->size() - QSize(0, window->menuBar()->height()), QSize(1360, 840));
    type("Saved");
    delegate->applicationShouldTerminate();
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nSaved\n");
}

TEST_F(BlankStartTest, makesTheDiaryWhileTheDesktopTakesItsTimeForTheWindow) {
    launch();
    clock.advance(BlankWindow::usualWait);
    ASSERT_NE(delegate->mainWindowController(), nullptr);
    EXPECT_FALSE(isFilled());
    emit qApp->applicationStateChanged(Qt::ApplicationActive);
    EXPECT_TRUE(getsFilled());
    EXPECT_EQ(shownWindow(), delegate->mainWindowController()->window());
}

TEST_F(BlankStartTest, fillsItsWindowAlsoWhereItHasNoPicture) {
    launch();
    clock.advance(BlankWindow::usualWait + BlankWindow::longestWait);
    EXPECT_TRUE(isFilled());
}

TEST_F(BlankStartTest, standsWhereItWasLeft) {
    launch();
    ASSERT_TRUE(getsFilled());
    delegate->mainWindowController()->window()->setGeometry(30, 40, 1200, 700);
    EXPECT_EQ(runUntilEndedBy([this] { delegate->terminate(); }), 0);
    delegate.reset();
    launch();
    EXPECT_EQ(shownWindow()->geometry(), QRect(30, 40, 1200, 700));
    ASSERT_TRUE(getsFilled());
    EXPECT_EQ(shownWindow()->geometry(), QRect(30, 40, 1200, 700));
}

TEST_F(BlankStartTest, doesWhatItIsLaunchedForWhenItIsFilled) {
    folder.write("vault/01-02.md", "# 01-02\n");
    launch(LaunchAction::Search);
    const auto isSearching = [] {
        const auto windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [](const QWidget *window) {
            return window->isVisible() && window->objectName() == QLatin1String("DiarySearchWindow");
        });
    };
    EXPECT_FALSE(isSearching());
    ASSERT_TRUE(getsFilled());
    EXPECT_TRUE(isSearching());
}

TEST_F(BlankStartTest, keepsWhatIsTypedForTheSearchOutOfTheDiary) {
    launch(LaunchAction::Search);
    QTest::keyClicks(shownWindow(), QStringLiteral("heron"));
    ASSERT_TRUE(getsFilled());
    EXPECT_EQ(delegate->mainWindowController()->textView()->text(), QString());
}

TEST_F(BlankStartTest, answersAnotherLaunchWhenItIsFilled) {
    launch();
    clock.advance(BlankWindow::usualWait);
    delegate->mainWindowController()->session().open({5, 6});
    delegate->answerLaunch({.action = LaunchAction::Today, .activationToken = {}});
    EXPECT_EQ(delegate->mainWindowController()->session().currentMonthDay(), (MonthDay{5, 6}));
    ASSERT_TRUE(getsFilled());
    EXPECT_EQ(delegate->mainWindowController()->session().currentMonthDay(), (MonthDay{3, 14}));
}

TEST_F(BlankStartTest, losesNoKeyThatIsPressedBeforeItIsFilled) {
    launch();
    QTest::keyClicks(shownWindow(), QStringLiteral("Be"));
    clock.advance(BlankWindow::usualWait);
    QTest::keyClicks(shownWindow(), QStringLiteral("fore"));
    ASSERT_TRUE(getsFilled());
    type(" and after");
    delegate->applicationShouldTerminate();
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nBefore and after\n");
}

TEST_F(BlankStartTest, endsWithTheTextSavedWhenItIsClosedBeforeItIsFilled) {
    launch();
    QTest::keyClicks(shownWindow(), QStringLiteral("Last words"));
    EXPECT_EQ(runUntilEndedBy([] { shownWindow()->close(); }), 0);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nLast words\n");
}

TEST_F(BlankStartTest, keepsTheSizeThatTheDesktopGivesItBeforeItIsFilled) {
    launch();
    auto *window = shownWindow();
    window->resize(1500, 900);
    ASSERT_TRUE(getsFilled());
    EXPECT_EQ(window->size(), QSize(1500, 900));
    delegate.reset();

    launch();
    window = shownWindow();
    window->showMaximized();
    ASSERT_TRUE(getsFilled());
    EXPECT_TRUE(window->isMaximized());
    // The screen here is small.
    EXPECT_LT(window->width(), 1360);
}

TEST_F(BlankStartTest, doesNothingForAnActivationBeforeItIsFilled) {
    launch();
    clock.advance(BlankWindow::usualWait);
    ASSERT_NE(delegate->mainWindowController(), nullptr);
    emit qApp->applicationStateChanged(Qt::ApplicationActive);
    EXPECT_EQ(updates.dueChecks, 0);
    ASSERT_TRUE(getsFilled());
}

TEST_F(BlankStartTest, staysMinimizedWhenItIsMinimizedBeforeItIsFilled) {
    launch();
    auto *window = shownWindow();
    window->showMinimized();
    clock.advance(BlankWindow::usualWait + BlankWindow::longestWait);
    EXPECT_TRUE(isFilled());
    EXPECT_TRUE(window->isMinimized());
}

TEST_F(BlankStartTest, hasNoBlankWindowInAScriptedRun) {
    const ScopedEnvironment scripted("DIARY_SCREENSHOT", folder / "page.png");
    launch();
    EXPECT_TRUE(isFilled());
}

TEST_F(BlankStartTest, showsNothingWhenAnotherProcessShowsTheVault) {
    const auto claim = VaultClaim::take(folder / "vault");
    int knocks = 0;
    claim->onKnock = [&](const LaunchRequest &) { ++knocks; };
    launch();
    EXPECT_EQ(shownWindow(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return knocks == 1; }));
}

TEST_F(RunningAppDelegateTest, handsItsActionToTheProcessThatShowsTheVault) {
    const auto claim = VaultClaim::take(folder / "vault");
    std::vector<LaunchAction> actions;
    claim->onKnock = [&](const LaunchRequest &request) { actions.push_back(request.action); };
    start(LaunchAction::Search);
    EXPECT_EQ(delegate->mainWindowController(), nullptr);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !actions.empty(); }));
    EXPECT_EQ(actions, std::vector{LaunchAction::Search});
}

TEST_F(RunningAppDelegateTest, endsAtOnceWhenAnotherProcessShowsTheVault) {
    const auto claim = VaultClaim::take(folder / "vault");
    int knocks = 0;
    claim->onKnock = [&](const LaunchRequest &) { ++knocks; };
    start();
    EXPECT_EQ(delegate->mainWindowController(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return knocks == 1; }));
}

TEST_F(RunningAppDelegateTest, tellsOnceWhereTheTextsAreThatWereRescued) {
    folder.write("state/tavelo/rescued/2025-03-13.md", "Rescued");
    start();
    ASSERT_NE(alert(), nullptr);
    EXPECT_TRUE(alert()->informativeText().contains(QString::fromStdString(folder / "state/tavelo/rescued")));
    press("Show Folder");
    EXPECT_EQ(fileManager.opened, std::vector{folder / "state/tavelo/rescued"});
    delegate.reset();
    start();
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(RunningAppDelegateTest, tellsAgainOfRescuedTextsUntilItIsAnswered) {
    folder.write("state/tavelo/rescued/2025-03-13.md", "Rescued");
    start();
    ASSERT_NE(alert(), nullptr);
    delegate.reset();
    start();
    EXPECT_NE(alert(), nullptr);
}

TEST_F(RunningAppDelegateTest, noticesMidnight) {
    start();
    clock.setToday({2025, 3, 15});
    EXPECT_EQ(delegate->mainWindowController()->session().currentMonthDay(), (MonthDay{3, 14}));
    delegate->mainWindowController()->session().openToday();
    EXPECT_EQ(delegate->mainWindowController()->session().currentMonthDay(), (MonthDay{3, 15}));
}

// Settings

class SettingsActionTest : public RunningAppDelegateTest {
protected:
    void SetUp() override {
        start();
        chooseFromMenu("Settings…");
    }
    void TearDown() override {
        RunningAppDelegateTest::TearDown();
        Localization::setBundle(Localization::resolveBundle());
    }

    void chooseFromMenu(const char *key) const {
        auto *entry =
            delegate->mainWindowController()->window()->findChild<QAction *>(QString::fromUtf8(key));
        ASSERT_NE(entry, nullptr);
        entry->trigger();
    }
    template <typename Widget>
    Widget *part(const char *name) const {
        return delegate->settingsWindowController()->contentView()->findChild<Widget *>(QLatin1String(name));
    }

    ScopedEnvironment root{"DIARY_ROOT", std::nullopt};
};

TEST_F(SettingsActionTest, showsOneSettingsWindowAgainAndAgain) {
    auto *settings = delegate->settingsWindowController();
    ASSERT_NE(settings, nullptr);
    EXPECT_TRUE(settings->window()->isVisible());
    settings->window()->close();
    QTest::mouseClick(
        delegate->mainWindowController()->window()->findChild<QWidget *>(QStringLiteral("settingsButton")),
        Qt::LeftButton);
    EXPECT_EQ(delegate->settingsWindowController(), settings);
    EXPECT_TRUE(settings->window()->isVisible());
}

TEST_F(SettingsActionTest, speaksAnotherLanguageEverywhereAtOnce) {
    type("Kept");
    auto *language = part<SettingsMenu>("language");
    language->setFocus();
    for (int step = 0; step < 6; ++step)
        QTest::keyClick(part<SettingsMenu>("language"), Qt::Key_Down);
    EXPECT_EQ(Settings::shared().languageOverride(), QStringLiteral("de"));
    EXPECT_EQ(delegate->settingsWindowController()->window()->windowTitle(), QLatin1String("Einstellungen"));
    const auto menus = delegate->mainWindowController()->window()->menuBar()->actions();
    EXPECT_TRUE(std::any_of(menus.begin(), menus.end(), [](const QAction *entry) {
        return entry->text().remove(QLatin1Char('&')) == QLatin1String("Bearbeiten");
    }));
    EXPECT_EQ(folder.read("home/Documents/Diary/03-14.md"), "# 03-14\n\n## 2025\n\nKept\n");
    // The settings are still what is being used.
    EXPECT_TRUE(QTest::qWaitForWindowActive(delegate->settingsWindowController()->window()));
}

TEST_F(SettingsActionTest, opensTheVaultThatIsChosen) {
    part<SettingsButton>("chooseVault")->click();
    chooser.pick(folder / "other");
    EXPECT_EQ(delegate->mainWindowController()->store().rootURL(), folder / "other");
}

TEST_F(SettingsActionTest, copiesTheDiaryWithWhatWasJustTyped) {
    type("Kept");
    ASSERT_TRUE(delegate->mainWindowController()->session().flushSaveIfDirty());
    type(" too");
    part<SettingsButton>("chooseVault")->click();
    chooser.pick(folder / "other");
    auto *question = delegate->settingsWindowController()->window()->findChild<QMessageBox *>();
    ASSERT_NE(question, nullptr);
    question->buttons().first()->click();
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return delegate->mainWindowController()->store().rootURL() == folder / "other"; }));
    EXPECT_EQ(folder.read("other/03-14.md"), "# 03-14\n\n## 2025\n\nKept too\n");
    EXPECT_EQ(delegate->mainWindowController()->textView()->text(), QStringLiteral("Kept too"));
}

TEST_F(SettingsActionTest, showsTheEntryInAnotherSizeAtOnce) {
    const auto before = delegate->mainWindowController()->textView()->font().pixelSize();
    auto *size = part<SettingsMenu>("fontSize");
    size->setFocus();
    QTest::keyClick(size, Qt::Key_Down);
    EXPECT_GT(delegate->mainWindowController()->textView()->font().pixelSize(), before);
}

// Updates

TEST_F(RunningAppDelegateTest, looksForUpdatesAMomentAfterTheStartAndWhenItComesToTheFront) {
    start();
    EXPECT_EQ(updates.dueChecks, 0);
    clock.advance(4999ms);
    EXPECT_EQ(updates.dueChecks, 0);
    clock.advance(1ms);
    EXPECT_EQ(updates.dueChecks, 1);
    emit qApp->applicationStateChanged(Qt::ApplicationActive);
    EXPECT_EQ(updates.dueChecks, 2);
}

TEST_F(RunningAppDelegateTest, tellsOfUpdatesInTheStatusBar) {
    start();
    const auto shown = [this] {
        auto *window = delegate->mainWindowController()->window();
        return window->findChild<StatusBarView *>()->findChild<QLabel *>(QStringLiteral("leftLabel"))->text();
    };
    updates.tellDownloading(QStringLiteral("1.3.0"));
    EXPECT_EQ(shown(), QStringLiteral("Downloading Tavelo 1.3.0…"));
    updates.tellReady(QStringLiteral("1.3.0"));
    EXPECT_TRUE(shown().startsWith(QStringLiteral("Tavelo 1.3.0 is ready")));
    delegate.reset();
    updates.tellReady(QStringLiteral("1.4.0"));
}

TEST_F(RunningAppDelegateTest, installsWhatIsReadyOnceWhenItEndsWithTheTextSaved) {
    start();
    type("Saved");
    EXPECT_EQ(updates.installations, 0);
    EXPECT_EQ(runUntilEndedBy([this] { delegate->terminate(); }), 0);
    EXPECT_EQ(updates.installations, 1);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nSaved\n");
}

TEST_F(RunningAppDelegateTest, tellsOnceWhatBecameOfTheLastUpdate) {
    using Outcome = UpdateStaging::Outcome;
    start();
    const auto shown = [this] {
        auto *window = delegate->mainWindowController()->window();
        return window->findChild<StatusBarView *>()->findChild<QLabel *>(QStringLiteral("leftLabel"))->text();
    };
    updates.outcome = Outcome{.kind = Outcome::Kind::Kept, .version = "1.3.0", .reason = "no space"};
    clock.advance(5s);
    EXPECT_EQ(shown(), QStringLiteral("Tavelo 1.3.0 could not be installed; nothing has changed"));
    EXPECT_EQ(updates.outcome, std::nullopt);
    delegate.reset();

    start();
    updates.outcome = Outcome{.kind = Outcome::Kind::Installed, .version = "1.3.0", .reason = {}};
    clock.advance(5s);
    EXPECT_EQ(shown(), QStringLiteral("Tavelo 1.3.0 is installed"));
}

TEST_F(RunningAppDelegateTest, tellsTheResultOfACheckThatTheUserAskedFor) {
    start();
    delegate->checkForUpdates();
    delegate->checkForUpdates();
    ASSERT_EQ(updates.completions.size(), 1U);
    EXPECT_EQ(alert(), nullptr);
    updates.answer(Updates::UpdateFound{QStringLiteral("1.3.0")});
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->text(), QStringLiteral("A new version is available"));
    press("OK");
    delegate->checkForUpdates();
    EXPECT_EQ(updates.completions.size(), 1U);
    delegate.reset();
    updates.answer(Updates::UpToDate{});
}

// A machine with a cloud drive and no diary yet.
class OnboardingTest : public RunningAppDelegateTest {
protected:
    void SetUp() override { std::filesystem::create_directories(folder / "home/Nextcloud"); }

    ScopedEnvironment root{"DIARY_ROOT", std::nullopt};
    ScopedEnvironment screenshot{"DIARY_SCREENSHOT", std::nullopt};
};

TEST_F(OnboardingTest, asksOnceAndTakesTheDrive) {
    start();
    ASSERT_NE(alert(), nullptr);
    alert()->buttons().first()->click();
    EXPECT_EQ(delegate->mainWindowController()->store().rootURL(), folder / "home/Nextcloud/Diary");
    EXPECT_TRUE(std::filesystem::is_directory(folder / "home/Nextcloud/Diary"));
    EXPECT_EQ(Settings::shared().vaultPath(), folder / "home/Nextcloud/Diary");
    EXPECT_TRUE(QTest::qWaitFor([this] { return alert() == nullptr; }));
    delegate.reset();

    Settings::shared().setVaultPath(std::nullopt);
    std::filesystem::remove(folder / "home/Nextcloud/Diary");
    start();
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(OnboardingTest, takesTheFolderOfThisComputerForEveryOtherAnswer) {
    start();
    ASSERT_NE(alert(), nullptr);
    QTest::keyClick(alert(), Qt::Key_Escape);
    EXPECT_EQ(delegate->mainWindowController()->store().rootURL(), folder / "home/Documents/Diary");
    EXPECT_TRUE(std::filesystem::is_directory(folder / "home/Documents/Diary"));
    EXPECT_FALSE(Settings::shared().needsOnboarding());
}

TEST_F(OnboardingTest, choosesNothingWhenTheProgramEndsBeforeTheAnswer) {
    start();
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(runUntilEndedBy([this] { delegate->terminate(); }), 0);
    delegate.reset();
    EXPECT_TRUE(Settings::shared().needsOnboarding());
    EXPECT_FALSE(std::filesystem::exists(folder / "home/Documents"));
}

TEST_F(OnboardingTest, asksNothingWhenTheVaultIsGiven) {
    const ScopedEnvironment given("DIARY_ROOT", folder / "vault");
    start();
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(OnboardingTest, asksWheneverItIsToldTo) {
    const ScopedEnvironment given("DIARY_ROOT", folder / "vault");
    const ScopedEnvironment asked("DIARY_VIEW_ONBOARD", "");
    start();
    EXPECT_NE(alert(), nullptr);
}

TEST_F(OnboardingTest, goesOnWhenTheFolderCannotBeMade) {
    folder.write("home/Nextcloud/Diary", "in the way");
    start();
    ASSERT_NE(alert(), nullptr);
    alert()->buttons().first()->click();
    EXPECT_EQ(Settings::shared().vaultPath(), folder / "home/Nextcloud/Diary");
    EXPECT_EQ(delegate->mainWindowController()->store().rootURL(), folder / "home/Nextcloud/Diary");
}

} // namespace
} // namespace diary

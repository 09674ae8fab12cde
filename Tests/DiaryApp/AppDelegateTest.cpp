// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/ManualExecutor.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/EntryTextEdit.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryKit/Defaults.h>

#include <QApplication>
#include <QMainWindow>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace diary {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedEnvironment;

// A home folder of its own for each test.
class AppDelegateTest : public ::testing::Test {
protected:
    testing::TemporaryFolder folder;
    testing::FakeClock clock{{2025, 3, 14}};
    testing::ManualExecutor executor;
    ScopedEnvironment home{"HOME", folder / "home"};
    ScopedEnvironment config{"XDG_CONFIG_HOME", folder / "config"};
    ScopedEnvironment state{"XDG_STATE_HOME", folder / "state"};
    ScopedEnvironment root{"DIARY_ROOT", std::nullopt};
};

TEST_F(AppDelegateTest, opensTheVaultInTheDocumentsFolderByDefault) {
    EXPECT_EQ(AppDelegate::makeStore(executor)->rootURL(), folder / "home/Documents/Diary");
}

TEST_F(AppDelegateTest, opensTheVaultOfTheSettings) {
    Defaults().set("vaultPath", (folder / "elsewhere").string());
    EXPECT_EQ(AppDelegate::makeStore(executor)->rootURL(), folder / "elsewhere");
}

TEST_F(AppDelegateTest, prefersTheVaultOfTheEnvironmentAndRemembersNothingOfIt) {
    Defaults().set("vaultPath", (folder / "elsewhere").string());
    {
        const ScopedEnvironment here("DIARY_ROOT", "~/as it stands");
        EXPECT_EQ(AppDelegate::makeStore(executor)->rootURL(), "~/as it stands");
    }
    EXPECT_EQ(AppDelegate::makeStore(executor)->rootURL(), folder / "elsewhere");
}

TEST_F(AppDelegateTest, makesNothingOnDiskUntilSomethingIsWritten) {
    {
        AppDelegate delegate(clock);
        EXPECT_EQ(delegate.mainWindowController(), nullptr);
        delegate.applicationDidFinishLaunching();
        EXPECT_TRUE(delegate.mainWindowController()->window()->isVisible());
        delegate.applicationShouldTerminate();
    }
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(AppDelegateTest, canBeAskedToTerminateBeforeItHasAWindow) {
    AppDelegate delegate(clock);
    delegate.applicationShouldTerminate();
    emit qApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_THAT(folder.names(), IsEmpty());
}

// The program, started over the vault folder "vault".
class RunningAppDelegateTest : public AppDelegateTest {
protected:
    void start() {
        delegate = std::make_unique<AppDelegate>(clock);
        delegate->applicationDidFinishLaunching();
    }
    void type(const char *text) const {
        QTest::keyClicks(delegate->mainWindowController()->textView(), QString::fromUtf8(text));
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

    ScopedEnvironment root{"DIARY_ROOT", folder / "vault"};
    std::unique_ptr<AppDelegate> delegate;
};

TEST_F(RunningAppDelegateTest, savesWhenItTerminates) {
    start();
    type("Saved");
    delegate->applicationShouldTerminate();
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nSaved\n");
    EXPECT_THAT(folder.names(), ElementsAre("vault"));
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

TEST_F(RunningAppDelegateTest, looksForChangesWhenItComesToTheFront) {
    start();
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\nFrom another device\n");
    emit qApp->applicationStateChanged(Qt::ApplicationActive);
    EXPECT_EQ(delegate->mainWindowController()->textView()->text(), QStringLiteral("From another device"));
}

} // namespace
} // namespace diary

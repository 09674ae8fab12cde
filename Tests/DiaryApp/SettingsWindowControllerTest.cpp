// SPDX-License-Identifier: MIT
#include "Support/FakeFolderChooser.h"
#include "Support/FakeUpdates.h"
#include "Support/ManualExecutor.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SettingsCard.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/SettingsWindowController.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QMessageBox>
#include <QSysInfo>
#include <QTest>
#include <QUrlQuery>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

namespace diary {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedEnvironment;
using Status = PhotoSource::AuthorizationStatus;

// Answers when it is told to.
class FakePhotos : public PhotoSource {
public:
    AuthorizationStatus authorizationStatus() const override { return status; }
    void requestAuthorization(std::function<void(AuthorizationStatus)> handler) override {
        handlers.push_back(std::move(handler));
    }
    std::vector<Asset> assets(LocalTime, LocalTime, std::size_t) override { return {}; }
    void requestImage(const std::string &, QSize, std::function<void(QImage)>) override {}
    void requestFullImage(const std::string &, QSize,
                          std::function<void(std::optional<FullImage>)>) override {}
    Progress progress() const override { return {}; }
    void setAddedFolders(std::vector<fs::path> folders) override { added = std::move(folders); }

    void answer(AuthorizationStatus found) {
        status = found;
        for (const auto &handler : std::exchange(handlers, {}))
            handler(found);
    }

    AuthorizationStatus status = AuthorizationStatus::NotDetermined;
    std::vector<std::function<void(AuthorizationStatus)>> handlers;
    std::vector<fs::path> added;
};

// A home folder of its own for each test, in which there is nothing.
class SettingsWindowTest : public ::testing::Test {
protected:
    void SetUp() override { QApplication::setApplicationVersion(QStringLiteral("1.2.0")); }
    void TearDown() override {
        QApplication::setApplicationVersion({});
        qunsetenv("DIARY_LANGUAGE");
        Localization::setBundle(Localization::resolveBundle());
    }

    void open() {
        controller = std::make_unique<SettingsWindowController>(
            settings, SettingsWindowController::Services{.folderChooser = chooser,
                                                         .executor = executor,
                                                         .openUrl =
                                                             [this](const QUrl &url) {
                                                                 opened.push_back(url);
                                                                 return canOpen;
                                                             },
                                                         .updates = hasUpdates ? &updates : nullptr,
                                                         .photos = hasPhotos ? &photos : nullptr,
                                                         .feedbackAddress = address});
        controller->onLanguageChanged = [this] {
            told += "language ";
            controller->rebuildContent();
        };
        controller->onVaultChanged = [this] { told += "vault "; };
        controller->onReadingChanged = [this] { told += "reading "; };
        controller->onSaveBeforeCopying = [this] {
            told += "save ";
            return canSave;
        };
        controller->showWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(controller->window()));
    }

    template <typename Widget = QWidget>
    Widget *part(const char *name) const {
        auto *found = controller->contentView()->findChild<Widget *>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    SettingsMenu *menu(const char *name) const { return part<SettingsMenu>(name); }
    SettingsButton *button(const char *name) const { return part<SettingsButton>(name); }
    QString text(const char *name) const { return part<QLabel>(name)->text(); }

    // As someone with a keyboard does.
    void press(const char *name) const {
        part(name)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(part(name), Qt::Key_Space);
    }
    void pick(const char *name, int index) const {
        auto *widget = menu(name);
        widget->setFocus(Qt::TabFocusReason);
        const int steps = index - widget->currentIndex();
        for (int step = 0; step < std::abs(steps); ++step)
            QTest::keyClick(menu(name), steps > 0 ? Qt::Key_Down : Qt::Key_Up);
    }

    QMessageBox *alert() const {
        for (auto *box : controller->window()->findChildren<QMessageBox *>(QStringLiteral("alert"))) {
            if (box->isVisible())
                return box;
        }
        return nullptr;
    }
    void answer(const char *buttonText) const {
        ASSERT_NE(alert(), nullptr);
        for (auto *candidate : alert()->buttons()) {
            if (candidate->text().remove(QLatin1Char('&')) == QLatin1String(buttonText)) {
                candidate->click();
                return;
            }
        }
        ADD_FAILURE() << "no button " << buttonText;
    }

    std::string stored() const { return folder.read("config/settings.json"); }
    bool isStored(const char *key) const {
        return fs::exists(folder / "config/settings.json") && stored().find(key) != std::string::npos;
    }
    // From here on the settings file cannot be written.
    void breakSettings() const {
        fs::remove_all(folder / "config");
        folder.write("config", "in the way");
    }

    testing::TemporaryFolder folder;
    ScopedEnvironment home{"HOME", folder / "home"};
    ScopedEnvironment config{"XDG_CONFIG_HOME", folder / "no config"};
    ScopedEnvironment state{"XDG_STATE_HOME", folder / "state"};
    ScopedEnvironment root{"DIARY_ROOT", std::nullopt};
    Settings settings{Defaults(folder / "config/settings.json")};
    testing::FakeFolderChooser chooser;
    testing::FakeUpdates updates;
    testing::ManualExecutor executor;
    FakePhotos photos;
    QString address = QStringLiteral("feedback@example.org");
    bool hasUpdates = true;
    bool hasPhotos = true;
    bool canOpen = true;
    bool canSave = true;
    std::vector<QUrl> opened;
    std::string told; // by the callbacks
    std::unique_ptr<SettingsWindowController> controller;
};

// The window

TEST_F(SettingsWindowTest, hasFiveCardsBelowEachOther) {
    open();
    const auto cards = controller->contentView()->findChildren<SettingsCard *>();
    QStringList titles;
    int top = 22;
    for (const auto *card : cards) {
        titles += card->findChild<ThemeLabel *>(QStringLiteral("cardTitle"))->text();
        EXPECT_EQ(card->x(), 22);
        EXPECT_EQ(card->width(), 540 - 44);
        EXPECT_EQ(card->y(), top);
        top += card->height() + 18;
    }
    EXPECT_EQ(titles, (QStringList{QStringLiteral("GENERAL"), QStringLiteral("DIARY FOLDER"),
                                   QStringLiteral("WRITING"), QStringLiteral("PHOTOS"),
                                   QStringLiteral("UPDATES & FEEDBACK")}));
    EXPECT_EQ(controller->contentView()->size(), QSize(540, top - 18 + 22));
}

TEST_F(SettingsWindowTest, isAWindowOfFixedSizeOnPaper) {
    open();
    auto *window = controller->window();
    EXPECT_EQ(window->windowTitle(), QLatin1String("Settings"));
    EXPECT_EQ(window->minimumSize(), window->maximumSize());
    EXPECT_EQ(window->width(), 540);
    EXPECT_EQ(window->palette().color(QPalette::Window), Theme::paper());
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(window->windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
}

TEST_F(SettingsWindowTest, scrollsWhereTheScreenIsTooLow) {
    open();
    const int screen = controller->window()->screen()->availableGeometry().height();
    EXPECT_LE(controller->window()->height(), screen);
    EXPECT_EQ(controller->window()->height(), std::min(controller->contentView()->height(), screen - 40));
    // What has the keyboard is always seen.
    auto *last = button("sendFeedback");
    part("autoUpdate")->setFocus();
    while (controller->window()->focusWidget() != last)
        QTest::keyClick(controller->window()->focusWidget(), Qt::Key_Tab);
    EXPECT_TRUE(
        controller->window()->rect().contains(last->mapTo(controller->window(), last->rect().center())));
}

TEST_F(SettingsWindowTest, closesWithEscapeAndControlWAndKeepsItsContent) {
    open();
    const auto *content = controller->contentView();
    QTest::keyClick(controller->window(), Qt::Key_Escape);
    EXPECT_FALSE(controller->window()->isVisible());
    controller->showWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(controller->window()));
    QTest::keyClick(controller->window(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(controller->window()->isVisible());
    controller->showWindow();
    EXPECT_EQ(controller->contentView(), content);
}

TEST_F(SettingsWindowTest, isGoneThroughFromTopToBottomByTab) {
    settings.setVaultPath(folder / "vault");
    settings.setPhotoFolders({folder / "pictures"});
    fs::create_directories(folder / "home/Nextcloud");
    open();
    menu("language")->setFocus();
    QStringList names;
    for (int count = 0; count < 14; ++count) {
        names += controller->window()->focusWidget()->objectName();
        QTest::keyClick(controller->window()->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(names.join(u' '),
              QStringLiteral("language chooseVault useCloudVault resetVault bodyFont fontSize showGapYears "
                             "showPhotos addPhotoFolder removePhotoFolder0 autoUpdate checkForUpdates "
                             "sendFeedback language"));
}

TEST_F(SettingsWindowTest, tellsScreenReadersWhatEveryControlIs) {
    settings.setPhotoFolders({folder / "pictures"});
    open();
    int controls = 0;
    for (const auto *widget : controller->contentView()->findChildren<QWidget *>()) {
        if (widget->focusPolicy() == Qt::NoFocus || widget->window() != controller->window())
            continue;
        ++controls;
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
        EXPECT_FALSE(widget->accessibleDescription().isEmpty()) << widget->objectName().toStdString();
    }
    EXPECT_GE(controls, 13);
    for (const auto *label : controller->contentView()->findChildren<SettingsRowLabel *>())
        EXPECT_NE(label->buddy(), nullptr) << label->text().toStdString();
}

TEST_F(SettingsWindowTest, fitsInEveryLanguage) {
    settings.setPhotoFolders({folder / "pictures"});
    fs::create_directories(folder / "home/Nextcloud");
    for (const auto &code : Localization::supported()) {
        qputenv("DIARY_LANGUAGE", code.toUtf8());
        Localization::setBundle(Localization::resolveBundle());
        open();
        for (const auto status :
             {Status::NotDetermined, Status::Denied, Status::Limited, Status::Authorized}) {
            photos.answer(status);
            QCoreApplication::processEvents();
            for (const auto *card : controller->contentView()->findChildren<SettingsCard *>()) {
                for (const auto *widget : card->findChildren<QWidget *>()) {
                    if (widget->objectName() == QLatin1String("cardTitle") || !widget->isVisible() ||
                        widget->window() != controller->window())
                        continue;
                    const QRect room = card->boxRect().adjusted(14, 14, -14, -14);
                    const QRect place(widget->mapTo(card, QPoint()), widget->size());
                    EXPECT_TRUE(room.contains(place))
                        << code.toStdString() << ": " << widget->objectName().toStdString();
                    if (const auto *small = qobject_cast<const SettingsButton *>(widget)) {
                        EXPECT_EQ(small->width(), small->sizeHint().width())
                            << code.toStdString() << ": " << small->text().toStdString();
                    }
                }
            }
        }
    }
}

TEST_F(SettingsWindowTest, keepsTheKeyboardWhereItWasWhenItIsRebuilt) {
    open();
    part("showPhotos")->setFocus();
    controller->rebuildContent();
    EXPECT_EQ(controller->window()->focusWidget(), part("showPhotos"));
}

// General

TEST_F(SettingsWindowTest, offersTheLanguagesUnderTheirOwnNames) {
    open();
    QStringList choices;
    for (int index = 0; index < menu("language")->count(); ++index)
        choices += menu("language")->itemText(index);
    EXPECT_EQ(choices, QStringList{QStringLiteral("System Default")} + Localization::displayNames());
    EXPECT_EQ(menu("language")->currentIndex(), 0);
}

TEST_F(SettingsWindowTest, selectsTheStoredLanguageAndTheSystemsForOneThatIsNotOffered) {
    settings.setLanguageOverride(QStringLiteral("fr"));
    open();
    EXPECT_EQ(menu("language")->currentText(), QStringLiteral("Français"));
    settings.setLanguageOverride(QStringLiteral("pt"));
    controller->rebuildContent();
    EXPECT_EQ(menu("language")->currentIndex(), 0);
}

TEST_F(SettingsWindowTest, storesTheLanguageThatIsChosen) {
    open();
    pick("language", 2);
    EXPECT_EQ(settings.languageOverride(), QStringLiteral("zh-Hans"));
    EXPECT_EQ(told, "language language ");
    EXPECT_EQ(menu("language")->currentText(), QStringLiteral("简体中文"));
}

TEST_F(SettingsWindowTest, removesTheOverrideForTheSystemsLanguageEvenWhileTheEnvironmentForcesOne) {
    qputenv("DIARY_LANGUAGE", "de");
    settings.setLanguageOverride(QStringLiteral("en"));
    open();
    EXPECT_EQ(menu("language")->currentIndex(), 1);
    pick("language", 0);
    EXPECT_FALSE(isStored("languageOverride"));
    EXPECT_EQ(told, "language ");
    EXPECT_EQ(menu("language")->currentIndex(), 0);
    EXPECT_EQ(Localization::effectiveLanguage(), QLatin1String("de"));
}

TEST_F(SettingsWindowTest, speaksAnotherLanguageWhenItIsRebuilt) {
    open();
    qputenv("DIARY_LANGUAGE", "de");
    Localization::setBundle(Localization::resolveBundle());
    controller->rebuildContent();
    EXPECT_EQ(controller->window()->windowTitle(), QLatin1String("Einstellungen"));
    EXPECT_EQ(menu("fontSize")->accessibleName(), L("Editor Font Size"));
    EXPECT_NE(L("Editor Font Size"), QLatin1String("Editor Font Size"));
}

// The diary's folder

TEST_F(SettingsWindowTest, showsTheFolderWithATildeForTheHomeFolder) {
    open();
    EXPECT_EQ(text("vaultPath"), QLatin1String("~/Documents/Diary"));
    for (const auto &[path, shown] : {std::pair{folder / "home", std::string("~")},
                                      std::pair{folder / "homely", (folder / "homely").string()}}) {
        settings.setVaultPath(path);
        controller->rebuildContent();
        EXPECT_EQ(text("vaultPath").toStdString(), shown);
    }
    EXPECT_EQ(part<QLabel>("vaultPath")->font(), Theme::mono(11));
}

TEST_F(SettingsWindowTest, shortensALongPathInTheMiddle) {
    settings.setVaultPath(folder / std::string(200, 'x') / "end");
    open();
    const auto shown = part<ElidedLabel>("vaultPath")->shownText();
    EXPECT_TRUE(shown.contains(QChar(0x2026)));
    EXPECT_TRUE(shown.endsWith(QLatin1String("/end")));
    EXPECT_EQ(controller->window()->width(), 540);
}

TEST_F(SettingsWindowTest, enablesTheCloudDriveOnlyWhereThereIsOneAndTheResetOnlyForAStoredFolder) {
    open();
    EXPECT_FALSE(button("useCloudVault")->isEnabled());
    EXPECT_EQ(button("useCloudVault")->text(), QLatin1String("Cloud Drive"));
    EXPECT_FALSE(button("resetVault")->isEnabled());
    EXPECT_TRUE(button("chooseVault")->isEnabled());
    fs::create_directories(folder / "home/Nextcloud");
    settings.setVaultPath(folder / "vault");
    controller->rebuildContent();
    EXPECT_TRUE(button("useCloudVault")->isEnabled());
    EXPECT_EQ(button("useCloudVault")->text(), QLatin1String("Nextcloud"));
    EXPECT_TRUE(button("resetVault")->isEnabled());
}

TEST_F(SettingsWindowTest, asksForAFolderStartingAtThePresentOne) {
    open();
    press("chooseVault");
    settings.setVaultPath(folder / "vault");
    press("chooseVault");
    ASSERT_EQ(chooser.requests.size(), 2U);
    EXPECT_EQ(chooser.requests[0].startingAt, folder / "home/Documents/Diary");
    EXPECT_EQ(chooser.requests[1].startingAt, folder / "vault");
    EXPECT_EQ(chooser.requests[1].title, QStringLiteral("Choose the Diary Folder"));
    // Nothing was picked.
    EXPECT_EQ(told, "");
    EXPECT_EQ(settings.vaultPath(), folder / "vault");
}

TEST_F(SettingsWindowTest, usesTheFolderThatIsPicked) {
    open();
    press("chooseVault");
    chooser.pick(folder / "日記");
    EXPECT_EQ(settings.vaultPath(), folder / "日記");
    EXPECT_EQ(told, "vault ");
    EXPECT_EQ(text("vaultPath").toStdString(), (folder / "日記").string());
    EXPECT_TRUE(button("resetVault")->isEnabled());
}

TEST_F(SettingsWindowTest, makesTheFolderInTheCloudDrive) {
    fs::create_directories(folder / "home/Nextcloud");
    open();
    press("useCloudVault");
    EXPECT_TRUE(fs::is_directory(folder / "home/Nextcloud/Diary"));
    EXPECT_EQ(settings.vaultPath(), folder / "home/Nextcloud/Diary");
    EXPECT_EQ(told, "vault ");
    EXPECT_EQ(text("vaultPath"), QLatin1String("~/Nextcloud/Diary"));
}

TEST_F(SettingsWindowTest, goesOnWhenTheFolderInTheCloudDriveCannotBeMade) {
    folder.write("home/Nextcloud/Diary", "in the way");
    open();
    press("useCloudVault");
    EXPECT_EQ(settings.vaultPath(), folder / "home/Nextcloud/Diary");
    EXPECT_EQ(told, "vault ");
}

TEST_F(SettingsWindowTest, usesNoCloudDriveThatHasGone) {
    fs::create_directories(folder / "home/Nextcloud");
    open();
    fs::remove(folder / "home/Nextcloud");
    press("useCloudVault");
    EXPECT_EQ(settings.vaultPath(), std::nullopt);
    EXPECT_EQ(told, "");
    EXPECT_FALSE(button("useCloudVault")->isEnabled());
}

TEST_F(SettingsWindowTest, goesBackToTheDefaultFolder) {
    settings.setVaultPath(folder / "vault");
    open();
    press("resetVault");
    EXPECT_FALSE(isStored("vaultPath"));
    EXPECT_EQ(told, "vault ");
    EXPECT_EQ(text("vaultPath"), QLatin1String("~/Documents/Diary"));
    EXPECT_FALSE(button("resetVault")->isEnabled());
}

// Copying the diary

class CopyingDiaryTest : public SettingsWindowTest {
protected:
    void SetUp() override {
        SettingsWindowTest::SetUp();
        folder.write("old/03-14.md", "# 03-14\n\n## 2019\n\nA heron\n");
        folder.write("old/12-31.md", "# 12-31\n");
        settings.setVaultPath(folder / "old");
        open();
        press("chooseVault");
    }
};

TEST_F(CopyingDiaryTest, isOfferedForAFolderWithoutADiary) {
    chooser.pick(folder / "new");
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(alert()->informativeText().contains(QString::fromStdString(folder / "new")));
    EXPECT_EQ(settings.vaultPath(), folder / "old");
    EXPECT_EQ(told, "");
}

TEST_F(CopyingDiaryTest, isNotOfferedForAFolderWithADiary) {
    folder.write("new/01-01.md", "");
    chooser.pick(folder / "new");
    EXPECT_EQ(alert(), nullptr);
    EXPECT_EQ(settings.vaultPath(), folder / "new");
}

TEST_F(CopyingDiaryTest, isNotOfferedForTheSameFolder) {
    chooser.pick(folder / "old");
    EXPECT_EQ(alert(), nullptr);
    EXPECT_EQ(told, "vault ");
}

TEST_F(CopyingDiaryTest, leavesEverythingAsItIsWhenCancelled) {
    chooser.pick(folder / "new");
    QTest::keyClick(alert(), Qt::Key_Escape);
    EXPECT_EQ(settings.vaultPath(), folder / "old");
    EXPECT_EQ(told, "");
    EXPECT_FALSE(fs::exists(folder / "new"));
}

TEST_F(CopyingDiaryTest, startsEmptyWhenWanted) {
    chooser.pick(folder / "new");
    answer("Start Empty");
    EXPECT_EQ(settings.vaultPath(), folder / "new");
    EXPECT_EQ(told, "vault ");
    EXPECT_THAT(folder.names("new"), IsEmpty());
}

TEST_F(CopyingDiaryTest, usesTheNewFolderWhenAllIsThere) {
    chooser.pick(folder / "new");
    answer("Copy Diary");
    EXPECT_EQ(told, "save ");
    EXPECT_EQ(text("vaultHint"), QStringLiteral("Copying the diary…"));
    EXPECT_FALSE(button("chooseVault")->isEnabled());
    EXPECT_FALSE(button("resetVault")->isEnabled());
    executor.runBackground();
    EXPECT_EQ(settings.vaultPath(), folder / "old");
    executor.runMain();
    EXPECT_EQ(settings.vaultPath(), folder / "new");
    EXPECT_EQ(told, "save save vault ");
    EXPECT_THAT(folder.names("new"), ElementsAre("03-14.md", "12-31.md"));
    EXPECT_EQ(folder.read("new/03-14.md"), folder.read("old/03-14.md"));
    EXPECT_EQ(text("vaultPath").toStdString(), (folder / "new").string());
    EXPECT_TRUE(button("chooseVault")->isEnabled());
    EXPECT_NE(text("vaultHint"), QStringLiteral("Copying the diary…"));
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(CopyingDiaryTest, copiesAgainWhatWasWrittenMeanwhile) {
    chooser.pick(folder / "new");
    answer("Copy Diary");
    executor.runBackground();
    controller->onSaveBeforeCopying = [this] {
        folder.write("old/03-14.md", "# 03-14\n\n## 2019\n\nA stork\n");
        controller->onSaveBeforeCopying = nullptr;
        return true;
    };
    executor.runMain();
    EXPECT_EQ(settings.vaultPath(), folder / "old");
    executor.runBackground();
    executor.runMain();
    EXPECT_EQ(settings.vaultPath(), folder / "new");
    EXPECT_EQ(folder.read("new/03-14.md"), "# 03-14\n\n## 2019\n\nA stork\n");
}

TEST_F(CopyingDiaryTest, doesNotBeginWithATextThatCannotBeSaved) {
    canSave = false;
    chooser.pick(folder / "new");
    answer("Copy Diary");
    EXPECT_TRUE(executor.background.empty());
    EXPECT_NE(alert(), nullptr);
    EXPECT_EQ(settings.vaultPath(), folder / "old");
}

TEST_F(CopyingDiaryTest, tellsAnErrorAndStaysWhereItWas) {
    chooser.pick(folder / "new");
    answer("Copy Diary");
    folder.write("new", "in the way");
    executor.runBackground();
    executor.runMain();
    ASSERT_NE(alert(), nullptr);
    EXPECT_TRUE(alert()->informativeText().contains(QStringLiteral("Not a directory")));
    EXPECT_EQ(settings.vaultPath(), folder / "old");
    EXPECT_EQ(told, "save ");
    EXPECT_TRUE(button("chooseVault")->isEnabled());
}

TEST_F(CopyingDiaryTest, tellsOfDaysThatAreOnlyInTheCloud) {
    folder.write("old/.06-01.md.icloud", "");
    chooser.pick(folder / "new");
    answer("Copy Diary");
    executor.runBackground();
    executor.runMain();
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->informativeText(), QStringLiteral("Days not yet downloaded: 1"));
    EXPECT_EQ(settings.vaultPath(), folder / "old");
    EXPECT_FALSE(fs::exists(folder / "new"));
}

TEST_F(CopyingDiaryTest, takesTheCopyBackWhenTheSettingCannotBeSaved) {
    chooser.pick(folder / "new");
    answer("Copy Diary");
    executor.runBackground();
    breakSettings();
    executor.runMain();
    EXPECT_NE(alert(), nullptr);
    EXPECT_FALSE(fs::exists(folder / "new"));
    EXPECT_THAT(folder.names("old"), ElementsAre("03-14.md", "12-31.md"));
    EXPECT_EQ(told, "save save ");
}

TEST_F(CopyingDiaryTest, leavesNothingWhenTheProgramEndsMeanwhile) {
    chooser.pick(folder / "new");
    answer("Copy Diary");
    controller.reset();
    executor.runBackground();
    executor.runMain();
    EXPECT_FALSE(fs::exists(folder / "new"));
    EXPECT_EQ(settings.vaultPath(), folder / "old");
}

TEST_F(CopyingDiaryTest, isOfferedForTheCloudDriveAndTheDefaultFolderToo) {
    fs::create_directories(folder / "home/Nextcloud");
    controller->rebuildContent();
    press("useCloudVault");
    answer("Copy Diary");
    executor.runBackground();
    executor.runMain();
    EXPECT_EQ(settings.vaultPath(), folder / "home/Nextcloud/Diary");
    EXPECT_EQ(folder.names("home/Nextcloud/Diary"), folder.names("old"));

    settings.setVaultPath(folder / "old");
    fs::remove_all(folder / "home/Nextcloud");
    controller->rebuildContent();
    press("resetVault");
    answer("Copy Diary");
    executor.runBackground();
    executor.runMain();
    EXPECT_EQ(settings.vaultPath(), std::nullopt);
    EXPECT_EQ(folder.names("home/Documents/Diary"), folder.names("old"));
}

// Writing

TEST_F(SettingsWindowTest, selectsThePresetNearTheStoredSizeAndStandardForAnyOther) {
    open();
    const std::pair<double, const char *> rows[] = {
        {14.5, "Small"}, {14.45, "Small"}, {14.7, "Standard"}, {16.5, "Standard"}, {17, "Standard"},
        {19, "Large"},   {19.05, "Large"}, {19.2, "Standard"}, {3, "Standard"}};
    for (const auto &[points, shown] : rows) {
        settings.setEditorFontSize(points);
        controller->rebuildContent();
        EXPECT_EQ(menu("fontSize")->currentText(), QLatin1String(shown)) << points;
    }
}

TEST_F(SettingsWindowTest, storesTheStandardSizeWhenItIsChosenInPlaceOfAnother) {
    settings.setEditorFontSize(17);
    open();
    EXPECT_EQ(menu("fontSize")->currentText(), QLatin1String("Standard"));
    // From the menu, since it is selected already.
    menu("fontSize")->setFocus();
    QTest::keyClick(menu("fontSize"), Qt::Key_Return);
    QTest::keyClick(menu("fontSize")->view(), Qt::Key_Return);
    EXPECT_EQ(settings.editorFontSize(), 16.5);
    EXPECT_EQ(told, "reading ");
}

TEST_F(SettingsWindowTest, storesTheSizesOfThePresets) {
    open();
    pick("fontSize", 0);
    EXPECT_EQ(settings.editorFontSize(), 14.5);
    pick("fontSize", 2);
    EXPECT_EQ(settings.editorFontSize(), 19.0);
    EXPECT_EQ(told, "reading reading reading ");
}

TEST_F(SettingsWindowTest, showsTheDefaultForAFontThatIsNotInstalledAndKeepsTheStoredOne) {
    settings.setBodyFontFamily(QStringLiteral("No Such Serif"));
    open();
    EXPECT_EQ(menu("bodyFont")->currentText(), QStringLiteral("Default (Serif)"));
    EXPECT_EQ(settings.bodyFontFamily(), QStringLiteral("No Such Serif"));
    menu("bodyFont")->setFocus();
    QTest::keyClick(menu("bodyFont"), Qt::Key_Return);
    QTest::keyClick(menu("bodyFont")->view(), Qt::Key_Return);
    EXPECT_FALSE(isStored("bodyFontFamily"));
    EXPECT_EQ(told, "reading ");
}

TEST_F(SettingsWindowTest, offersEachInstalledFontInItsOwnTypeface) {
    open();
    const auto families = Settings::availableBodyFonts();
    ASSERT_EQ(menu("bodyFont")->count(), families.size() + 1);
    for (int index = 1; index <= families.size(); ++index) {
        EXPECT_EQ(menu("bodyFont")->itemText(index), families[index - 1]);
        EXPECT_EQ(menu("bodyFont")->itemData(index, Qt::FontRole).value<QFont>().family(),
                  families[index - 1]);
        pick("bodyFont", index);
        EXPECT_EQ(settings.bodyFontFamily(), families[index - 1]);
    }
}

TEST_F(SettingsWindowTest, storesTheStateOfEveryCheckBox) {
    open();
    for (const char *name : {"showGapYears", "showPhotos", "autoUpdate"}) {
        EXPECT_TRUE(part<QCheckBox>(name)->isChecked()) << name;
        press(name);
        EXPECT_EQ(settings.defaults().boolean(name), false) << name;
        press(name);
        EXPECT_EQ(settings.defaults().boolean(name), true) << name;
    }
    // What is only for the updater needs no new page.
    EXPECT_EQ(told, "reading reading reading reading ");
    settings.setShowGapYears(false);
    controller->rebuildContent();
    EXPECT_FALSE(part<QCheckBox>("showGapYears")->isChecked());
}

TEST_F(SettingsWindowTest, tellsWhenASettingCannotBeSavedAndGoesBack) {
    open();
    breakSettings();
    press("showPhotos");
    ASSERT_NE(alert(), nullptr);
    EXPECT_TRUE(alert()->informativeText().contains(QStringLiteral("Not a directory")));
    EXPECT_TRUE(part<QCheckBox>("showPhotos")->isChecked());
    answer("OK");

    for (const char *name : {"language", "fontSize"}) {
        const int before = menu(name)->currentIndex();
        pick(name, before + 1);
        EXPECT_EQ(menu(name)->currentIndex(), before) << name;
        answer("OK");
    }
    press("chooseVault");
    chooser.pick(folder / "vault");
    EXPECT_EQ(text("vaultPath"), QLatin1String("~/Documents/Diary"));
    answer("OK");
    EXPECT_EQ(told, "");
}

// Photos

TEST_F(SettingsWindowTest, tellsTheAccessToPhotosAsSoonAsItIsKnown) {
    open();
    const std::pair<Status, const char *> rows[] = {{Status::NotDetermined, "No pictures folder"},
                                                    {Status::Restricted, "Not readable"},
                                                    {Status::Denied, "Not readable"},
                                                    {Status::Limited, "Only some folders"},
                                                    {Status::Authorized, "Allowed"}};
    for (const auto &[status, shown] : rows) {
        photos.status = status;
        controller->rebuildContent();
        EXPECT_EQ(text("photoAccess"), QLatin1String(shown));
    }
    photos.status = Status::NotDetermined;
    controller->rebuildContent();
    photos.answer(Status::Authorized);
    QCoreApplication::processEvents();
    EXPECT_EQ(text("photoAccess"), QStringLiteral("Allowed"));
}

TEST_F(SettingsWindowTest, mayGoBeforeTheAccessToPhotosIsKnown) {
    open();
    controller.reset();
    photos.answer(Status::Authorized);
    QCoreApplication::processEvents();
}

TEST_F(SettingsWindowTest, addsAndRemovesFoldersOfPhotos) {
    open();
    for (const auto &added : {folder / "a", folder / "b", folder / "a", folder / "home/Pictures"}) {
        press("addPhotoFolder");
        EXPECT_EQ(chooser.requests.back().startingAt, folder / "home/Pictures");
        chooser.pick(added);
    }
    EXPECT_THAT(settings.photoFolders(), ElementsAre(folder / "a", folder / "b"));
    EXPECT_EQ(photos.added, settings.photoFolders());
    QStringList shown;
    for (const auto *label : part("photoFolders")->findChildren<ElidedLabel *>())
        shown += label->text();
    EXPECT_EQ(shown, (QStringList{QStringLiteral("~/Pictures"), QString::fromStdString(folder / "a"),
                                  QString::fromStdString(folder / "b")}));
    press("removePhotoFolder0");
    EXPECT_THAT(settings.photoFolders(), ElementsAre(folder / "b"));
    EXPECT_EQ(photos.added, settings.photoFolders());
    EXPECT_EQ(told, "reading reading reading ");
}

TEST_F(SettingsWindowTest, saysSoWherePhotosCannotBeShown) {
    hasPhotos = false;
    open();
    EXPECT_TRUE(text("photoAccess").contains(QStringLiteral("cannot be shown")));
    EXPECT_EQ(controller->contentView()->findChild<QWidget *>(QStringLiteral("addPhotoFolder")), nullptr);
}

// Updates and feedback

TEST_F(SettingsWindowTest, showsTheVersion) {
    open();
    EXPECT_EQ(text("version"), QStringLiteral("Tavelo 1.2.0"));
    EXPECT_EQ(part<QLabel>("version")->font(), Theme::mono(12));
    QApplication::setApplicationVersion({});
    controller->rebuildContent();
    EXPECT_EQ(text("version"), QStringLiteral("Tavelo"));
}

TEST_F(SettingsWindowTest, standsEveryLabelOnTheLineOfItsControl) {
    open();
    const auto *card = part<SettingsCard>("updatesCard");
    const auto *label = card->findChildren<SettingsRowLabel *>().last();
    EXPECT_EQ(label->buddy(), button("sendFeedback"));
    const auto top = [card](const QWidget *widget) { return widget->mapTo(card, QPoint()).y(); };
    EXPECT_NEAR(top(label) + label->firstBaseline(),
                top(button("sendFeedback")) + firstBaseline(*button("sendFeedback")), 1);
}

TEST_F(SettingsWindowTest, hidesTheRowOfAnEmptyStatusAndShrinksToFit) {
    open();
    const int small = controller->contentView()->height();
    EXPECT_TRUE(part("updateStatus")->isHidden());
    controller->setUpdateStatus(QStringLiteral("News"));
    EXPECT_TRUE(part("updateStatus")->isVisible());
    const int large = controller->contentView()->height();
    EXPECT_EQ(large, small + part("updateStatus")->height() + 10);
    controller->setUpdateStatus(QStringLiteral("News ").repeated(60));
    EXPECT_GT(controller->contentView()->height(), large);
    controller->setUpdateStatus({});
    EXPECT_TRUE(part("updateStatus")->isHidden());
    EXPECT_EQ(controller->contentView()->height(), small);
    EXPECT_TRUE(part("checkForUpdates")->isVisible());
}

TEST_F(SettingsWindowTest, startsWithTheStateOfTheUpdater) {
    updates.downloading = QStringLiteral("1.3.0");
    open();
    EXPECT_EQ(text("updateStatus"), QStringLiteral("Downloading Tavelo 1.3.0…"));
    updates.pending = QStringLiteral("1.3.0");
    controller->rebuildContent();
    EXPECT_TRUE(text("updateStatus").startsWith(QStringLiteral("Tavelo 1.3.0 is ready")));
}

TEST_F(SettingsWindowTest, followsTheUpdater) {
    open();
    updates.tellDownloading(QStringLiteral("1.3.0"));
    EXPECT_EQ(text("updateStatus"), QStringLiteral("Downloading Tavelo 1.3.0…"));
    updates.tellReady(QStringLiteral("1.3.0"));
    EXPECT_TRUE(text("updateStatus").startsWith(QStringLiteral("Tavelo 1.3.0 is ready")));
    controller.reset();
    updates.tellReady(QStringLiteral("1.4.0"));
}

TEST_F(SettingsWindowTest, tellsTheResultOfACheck) {
    struct Row {
        Updates::CheckResult result;
        bool isSupported;
        QString shown;
    };
    const Row rows[] = {
        {Updates::UpToDate{}, true, L("UpToDateTitle")},
        {Updates::UpdateFound{QStringLiteral("1.3.0")}, true,
         L("UpdateReadyNotice", QStringLiteral("1.3.0"))},
        {Updates::Failed{}, true, L("UpdateFailedTitle")},
        {Updates::Failed{}, false, L("UpdateUnsupportedInfo")},
    };
    open();
    for (const auto &row : rows) {
        updates.supported = row.isSupported;
        press("checkForUpdates");
        EXPECT_FALSE(button("checkForUpdates")->isEnabled());
        EXPECT_EQ(text("updateStatus"), QStringLiteral("Checking…"));
        ASSERT_EQ(updates.completions.size(), 1U);
        updates.answer(row.result);
        EXPECT_TRUE(button("checkForUpdates")->isEnabled());
        EXPECT_EQ(text("updateStatus"), row.shown);
        // Where it was before.
        EXPECT_EQ(controller->window()->focusWidget(), button("checkForUpdates"));
    }
}

TEST_F(SettingsWindowTest, goesOnCheckingWhenItIsRebuilt) {
    open();
    press("checkForUpdates");
    controller->rebuildContent();
    EXPECT_FALSE(button("checkForUpdates")->isEnabled());
    EXPECT_EQ(text("updateStatus"), QStringLiteral("Checking…"));
    updates.answer(Updates::UpToDate{});
    EXPECT_TRUE(button("checkForUpdates")->isEnabled());
    EXPECT_EQ(text("updateStatus"), L("UpToDateTitle"));
}

TEST_F(SettingsWindowTest, mayGoDuringACheck) {
    open();
    press("checkForUpdates");
    controller.reset();
    updates.answer(Updates::UpToDate{});
}

TEST_F(SettingsWindowTest, saysSoWhereTheProgramCannotUpdateItself) {
    hasUpdates = false;
    open();
    press("checkForUpdates");
    EXPECT_EQ(text("updateStatus"), L("UpdateUnsupportedInfo"));
    EXPECT_TRUE(button("checkForUpdates")->isEnabled());
}

TEST_F(SettingsWindowTest, opensAMessageForFeedback) {
    open();
    press("sendFeedback");
    ASSERT_EQ(opened.size(), 1U);
    EXPECT_EQ(opened.front().path(), address);
    const QUrlQuery query(opened.front());
    EXPECT_EQ(query.queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded),
              QStringLiteral("Tavelo 1.2.0 Feedback"));
    EXPECT_TRUE(query.queryItemValue(QStringLiteral("body"), QUrl::FullyDecoded)
                    .endsWith(QStringLiteral("Tavelo 1.2.0 · ") + QSysInfo::prettyProductName()));
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(SettingsWindowTest, tellsTheAddressWhenNoMailProgramOpens) {
    canOpen = false;
    open();
    press("sendFeedback");
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->informativeText(), address);
}

TEST_F(SettingsWindowTest, saysSoWhereThereIsNoAddressForFeedback) {
    address.clear();
    open();
    EXPECT_FALSE(button("sendFeedback")->isEnabled());
    EXPECT_TRUE(text("feedbackHint").contains(QStringLiteral("without an address")));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/FolderChooser.h>
#include <DiaryApp/PhotoSource.h>
#include <DiaryApp/Updates.h>
#include <DiaryKit/Executor.h>

#include <QObject>
#include <QString>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

class QCheckBox;
class QScrollArea;
class QWidget;

namespace diary {

class Settings;
class SettingsButton;
class SettingsCard;
class SettingsMenu;
class ThemeLabel;
class VaultMove;

// The small window in which the preferences are changed. Every control writes at once, and says so through a
// callback. Main thread only; what it is made from must outlive it.
class SettingsWindowController : public QObject {
    Q_OBJECT

public:
    struct Services {
        FolderChooser &folderChooser;
        Executor &executor;
        // Opens a link in the program for it; false when there is none.
        std::function<bool(const QUrl &)> openUrl;
        Updates *updates = nullptr;    // none where the program cannot update itself
        PhotoSource *photos = nullptr; // none where photos cannot be shown
        QString feedbackAddress = {};  // may be empty
    };

    SettingsWindowController(Settings &settings, Services services);
    ~SettingsWindowController() override;

    std::function<void()> onLanguageChanged;
    std::function<void()> onVaultChanged;
    std::function<void()> onReadingChanged;
    // Before the diary is copied: saves what was typed, and returns false when that failed.
    std::function<bool()> onSaveBeforeCopying;

    QWidget *window() const { return m_window.get(); }
    // All of it, whatever is scrolled.
    QWidget *contentView() const;

    // In the middle of the screen at first; with the keyboard and in front where the window may come there.
    void showWindow();

    // Anew from the settings, in the language in use. The keyboard stays where it is.
    void rebuildContent();

    void setUpdateStatus(const QString &text);

private:
    void addShortcuts();
    QWidget *buildContent();
    SettingsCard *generalCard();
    SettingsCard *vaultCard();
    SettingsCard *writingCard();
    SettingsCard *photosCard();
    SettingsCard *updatesCard();
    QWidget *photoFolderList(int width);
    QCheckBox *checkBox(const char *key, bool isOn, std::function<void(bool)> change);
    void fitWindow();

    bool store(const std::function<void()> &change);
    void tell(const QString &message, const QString &informativeText);

    void changeLanguage(int index);
    void changeFontFamily(int index);
    void changeFontSize(int index);
    void readingChanged();

    std::filesystem::path vault() const;
    void chooseVault();
    void useCloudVault();
    void resetVault();
    void changeVault(const std::filesystem::path &folder, const std::function<void()> &store);
    void switchVault(const std::function<void()> &store);
    void copyVault(const std::filesystem::path &folder, const std::function<void()> &store);
    void copyInBackground();
    void finishCopying(const QString &systemError);

    void refreshPhotoAccess();
    void addPhotoFolder();
    void setPhotoFolders(const std::vector<std::filesystem::path> &folders);

    void checkForUpdates();
    void finishCheck(const Updates::CheckResult &result, bool givesKeyboardBack);
    void sendFeedback();

    Settings &m_settings;
    Services m_services;
    std::unique_ptr<QWidget> m_window;
    QScrollArea *m_scrollArea = nullptr;

    // Parts of the present content.
    std::vector<SettingsCard *> m_cards;
    ThemeLabel *m_photoAccessLabel = nullptr;
    ThemeLabel *m_updateStatusLabel = nullptr;
    SettingsButton *m_updateCheckButton = nullptr;

    // While the diary is being copied to another folder.
    struct Copying {
        std::shared_ptr<VaultMove> move; // used by one thread at a time
        std::function<void()> store;     // what remains to be done
        std::stop_source stop;
    };
    std::optional<Copying> m_copying;
    bool m_isChecking = false;
    bool m_wasShown = false;
};

} // namespace diary

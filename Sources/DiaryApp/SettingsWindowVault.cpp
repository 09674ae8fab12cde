// SPDX-License-Identifier: MIT
//
// The part of SettingsWindowController that puts the diary elsewhere.

#include <DiaryApp/Alert.h>
#include <DiaryApp/CloudDriveName.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/FolderChooser.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SettingsCard.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/SettingsParts.h>
#include <DiaryApp/SettingsWindowController.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>
#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/VaultLocation.h>
#include <DiaryKit/VaultMove.h>

#include <QPointer>

#include <system_error>
#include <utility>

namespace diary {

namespace fs = std::filesystem;

SettingsCard *SettingsWindowController::vaultCard() {
    auto *card = named(new SettingsCard(L("Diary Folder"), settingsCardWidth), "vaultCard");
    auto *path = named(pathLabel(vault()), "vaultPath");
    path->setToolTip(pathToQString(vault()).toHtmlEscaped());

    auto *choose = named(new SettingsButton(L("Choose…")), "chooseVault");
    describe(choose, L("Choose the Diary Folder"));
    connect(choose, &QPushButton::clicked, this, &SettingsWindowController::chooseVault);

    auto *cloud = named(new SettingsButton(cloudDriveName()), "useCloudVault");
    const auto cloudVault = VaultLocation::cloudVault();
    if (cloudVault)
        describe(cloud, abbreviatingHome(*cloudVault));
    connect(cloud, &QPushButton::clicked, this, &SettingsWindowController::useCloudVault);

    auto *reset = named(new SettingsButton(L("Reset to Default")), "resetVault");
    describe(reset, abbreviatingHome(VaultLocation::defaultVault()));
    connect(reset, &QPushButton::clicked, this, &SettingsWindowController::resetVault);

    choose->setEnabled(!m_copying);
    cloud->setEnabled(!m_copying && cloudVault);
    reset->setEnabled(!m_copying && m_settings.vaultPath());

    auto *hint = named(
        wrappingLabel(m_copying ? L("Copying the diary…") : L("VaultHint"), Theme::statLabel()), "vaultHint");
    card->addRow(L("Vault Location"), stacked({path, inARow(settingsSpacing, {choose, cloud, reset}), hint}),
                 choose);
    return card;
}

fs::path SettingsWindowController::vault() const {
    return m_settings.vaultPath().value_or(VaultLocation::defaultVault());
}

void SettingsWindowController::chooseVault() {
    m_services.folderChooser.choose(
        m_window.get(), {.title = L("Choose the Diary Folder"), .startingAt = vault()},
        [self = QPointer(this)](const fs::path &folder) {
            if (self && !self->m_copying)
                self->changeVault(folder, [self, folder] { self->m_settings.setVaultPath(folder); });
        });
}

void SettingsWindowController::useCloudVault() {
    const auto folder = VaultLocation::cloudVault();
    if (!folder) {
        // The drive went away since the window was built.
        rebuildContent();
        return;
    }
    changeVault(*folder, [this, folder = *folder] {
        std::error_code error;
        // Should it fail, the first save says so.
        fs::create_directories(folder, error);
        m_settings.setVaultPath(folder);
    });
}

void SettingsWindowController::resetVault() {
    changeVault(VaultLocation::defaultVault(), [this] { m_settings.setVaultPath(std::nullopt); });
}

// Someone who picks an empty folder for a diary seldom wants the diary to be gone.
void SettingsWindowController::changeVault(const fs::path &folder, const std::function<void()> &store) {
    if (VaultMove::hasDiary(folder) || !VaultMove::hasDiary(vault())) {
        switchVault(store);
        return;
    }
    showAlert(m_window.get(), {.icon = QMessageBox::Question,
                               .message = L("Copy your diary to the new folder?"),
                               .informativeText = L("There is no diary in the new folder yet. Only day files "
                                                    "are copied, and the old folder stays as it is.") +
                                                  QLatin1String("\n\n") + abbreviatingHome(folder),
                               .buttons = {L("Copy Diary"), L("Start Empty"), L("Cancel")},
                               .onAnswer = [this, folder, store](int button) {
                                   if (button == 0)
                                       copyVault(folder, store);
                                   else if (button == 1)
                                       switchVault(store);
                               }});
}

void SettingsWindowController::switchVault(const std::function<void()> &storeVault) {
    if (store(storeVault) && onVaultChanged)
        onVaultChanged();
    rebuildContent();
}

void SettingsWindowController::copyVault(const fs::path &folder, const std::function<void()> &store) {
    if (onSaveBeforeCopying && !onSaveBeforeCopying()) {
        tell(L("The diary could not be copied and stays where it is."),
             L("This entry could not be saved. Tavelo keeps it and will try again."));
        return;
    }
    m_copying.emplace();
    m_copying->move = std::make_shared<VaultMove>(vault(), folder, std::make_shared<LinuxCloudFiles>());
    m_copying->store = store;
    rebuildContent();
    copyInBackground();
}

void SettingsWindowController::copyInBackground() {
    auto work = [lent = m_copying->move, stop = m_copying->stop.get_token(), self = QPointer(this),
                 executor = &m_services.executor]() mutable {
        QString error;
        std::size_t awaitingDownload = 0;
        // Given back before the main thread goes on with it.
        auto move = std::move(lent);
        try {
            awaitingDownload = move->copy(stop).size();
        } catch (const fs::filesystem_error &failure) {
            error = systemText(failure);
        }
        move.reset();
        executor->postToMain([self, error, awaitingDownload] {
            if (!self)
                return;
            self->finishCopying(awaitingDownload > 0 ? L("Days not yet downloaded: %d", awaitingDownload)
                                                     : error);
        });
    };
    m_services.executor.runInBackground(Executor::Priority::UserInitiated, std::move(work));
}

void SettingsWindowController::finishCopying(const QString &systemError) {
    if (!systemError.isEmpty()) {
        m_copying.reset();
        rebuildContent();
        tell(L("The diary could not be copied and stays where it is."), systemError);
        return;
    }
    // What was written meanwhile is copied too; from here on until the new folder is in use nothing can be.
    if (onSaveBeforeCopying)
        onSaveBeforeCopying();
    if (!m_copying->move->isCurrent()) {
        copyInBackground();
        return;
    }
    try {
        m_copying->move->install();
        m_copying->store();
        m_copying->move->keep();
    } catch (const fs::filesystem_error &failure) {
        finishCopying(systemText(failure));
        return;
    }
    m_copying.reset();
    if (onVaultChanged)
        onVaultChanged();
    rebuildContent();
}

} // namespace diary

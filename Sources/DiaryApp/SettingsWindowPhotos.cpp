// SPDX-License-Identifier: MIT
//
// The part of SettingsWindowController that says where photos come from.

#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/FolderChooser.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/PhotoSource.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SettingsCard.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/SettingsParts.h>
#include <DiaryApp/SettingsWindowController.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>
#include <DiaryKit/UserDirectories.h>

#include <QApplication>
#include <QLayout>
#include <QPointer>

#include <algorithm>
#include <cstddef>

namespace diary {

namespace {

namespace fs = std::filesystem;

QString photoAccess(const PhotoSource *photos) {
    using Status = PhotoSource::AuthorizationStatus;
    if (!photos)
        return L("Photos cannot be shown: a part of Tavelo is not installed.");
    switch (photos->authorizationStatus()) {
    case Status::NotDetermined:
        break;
    case Status::Restricted:
    case Status::Denied:
        return L("PhotoAccessDenied");
    case Status::Limited:
        return L("PhotoAccessLimited");
    case Status::Authorized:
        return L("PhotoAccessAllowed");
    }
    return L("PhotoAccessNotAsked");
}

} // namespace

SettingsCard *SettingsWindowController::photosCard() {
    auto *card = named(new SettingsCard(L("Photos"), settingsCardWidth), "photosCard");
    const auto text = photoAccess(m_services.photos);
    if (!m_services.photos) {
        m_photoAccessLabel = named(wrappingLabel(text, Theme::ink()), "photoAccess");
        card->addRow(L("Photo Access"), m_photoAccessLabel);
        return card;
    }
    m_photoAccessLabel = named(smallLabel(text, Theme::ink()), "photoAccess");
    auto *add = named(new SettingsButton(L("Add Folder…")), "addPhotoFolder");
    describe(add, L("Choose a Folder with Photos"));
    connect(add, &QPushButton::clicked, this, &SettingsWindowController::addPhotoFolder);
    card->addRow(L("Photo Access"), inARow(settingsRowSpacing, {m_photoAccessLabel, add}), add);
    card->addRow({}, photoFolderList(card->controlWidth()));
    return card;
}

// Where photos are looked for; those that the user added can be removed again.
QWidget *SettingsWindowController::photoFolderList(int width) {
    auto *list = stacked({});
    list->setObjectName(QStringLiteral("photoFolders"));
    list->setMaximumWidth(width);
    list->layout()->addWidget(pathLabel(UserDirectories::pictures()));
    const auto folders = m_settings.photoFolders();
    for (std::size_t index = 0; index < folders.size(); ++index) {
        auto *remove = new SettingsButton(L("Remove"));
        remove->setObjectName(QStringLiteral("removePhotoFolder%1").arg(index));
        describe(remove, abbreviatingHome(folders[index]));
        connect(remove, &QPushButton::clicked, this, [this, index] {
            auto left = m_settings.photoFolders();
            if (index < left.size())
                left.erase(left.begin() + static_cast<std::ptrdiff_t>(index));
            setPhotoFolders(left);
        });
        auto *row = fillingARow(settingsRowSpacing, {pathLabel(folders[index]), remove});
        list->layout()->addWidget(row);
    }
    return list;
}

void SettingsWindowController::refreshPhotoAccess() {
    if (!m_services.photos)
        return;
    m_services.photos->requestAuthorization([self = QPointer(this)](PhotoSource::AuthorizationStatus) {
        // Any thread may have called this, when the window is long gone.
        QMetaObject::invokeMethod(
            qApp,
            [self] {
                if (!self)
                    return;
                self->m_photoAccessLabel->setText(photoAccess(self->m_services.photos));
                self->fitWindow();
            },
            Qt::QueuedConnection);
    });
}

void SettingsWindowController::addPhotoFolder() {
    m_services.folderChooser.choose(
        m_window.get(),
        {.title = L("Choose a Folder with Photos"), .startingAt = UserDirectories::pictures()},
        [self = QPointer(this)](const fs::path &folder) {
            if (!self)
                return;
            auto folders = self->m_settings.photoFolders();
            const bool isThere = folder == UserDirectories::pictures() ||
                                 std::find(folders.begin(), folders.end(), folder) != folders.end();
            if (isThere)
                return;
            folders.push_back(folder);
            self->setPhotoFolders(folders);
        });
}

void SettingsWindowController::setPhotoFolders(const std::vector<fs::path> &folders) {
    if (!store([&] { m_settings.setPhotoFolders(folders); })) {
        rebuildContent();
        return;
    }
    m_services.photos->setAddedFolders(folders);
    rebuildContent();
    refreshPhotoAccess();
    readingChanged();
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/Alert.h>
#include <DiaryApp/CloudDriveName.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/FeedbackMail.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/QuietScrollBar.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SettingsCard.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/SettingsWindowController.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>
#include <DiaryApp/UpdateNotices.h>
#include <DiaryKit/UserDirectories.h>
#include <DiaryKit/VaultLocation.h>

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSysInfo>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <system_error>
#include <utility>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr QSize initialSize{520, 300};
constexpr int windowWidth = 540;
constexpr int margin = 22;
constexpr int cardSpacing = 18;
constexpr int screenMargin = 40; // for the window's frame and the desktop's bars
constexpr int stackSpacing = 8;
constexpr int rowSpacing = 10;
constexpr int hintWidth = 330;
constexpr double smallFontSize = 11;
constexpr double controlFontSize = 13;
constexpr double versionFontSize = 12;
constexpr double pathFontSize = 11;
constexpr double fontSizeTolerance = 0.1;

// Which of the presets is shown for a size.
constexpr int smallIndex = 0;
constexpr int standardIndex = 1;
constexpr int largeIndex = 2;

int fontSizeIndex(double points) {
    for (const int index : {smallIndex, largeIndex}) {
        const double preset = Settings::fontSizePresets.at(static_cast<std::size_t>(index)).points;
        if (std::abs(points - preset) < fontSizeTolerance)
            return index;
    }
    return standardIndex;
}

// Widgets below or beside each other, as one control.
template <typename Layout>
QWidget *arranged(int spacing, std::initializer_list<QWidget *> parts) {
    auto *whole = new QWidget;
    auto *layout = new Layout(whole);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    for (auto *part : parts)
        layout->addWidget(part);
    return whole;
}

QWidget *stacked(std::initializer_list<QWidget *> parts) {
    return arranged<QVBoxLayout>(stackSpacing, parts);
}

QWidget *inARow(int spacing, std::initializer_list<QWidget *> parts) {
    auto *row = arranged<QHBoxLayout>(spacing, parts);
    static_cast<QHBoxLayout *>(row->layout())->addStretch();
    return row;
}

ThemeLabel *smallLabel(const QString &text, const QColor &color) {
    return new ThemeLabel(text, {.font = Theme::system(smallFontSize), .color = color});
}

ThemeLabel *wrappingLabel(const QString &text, const QColor &color) {
    auto *label = new ThemeLabel(text, {.font = Theme::system(smallFontSize), .color = color, .wraps = true});
    // A layout would ask for the height at its own width.
    label->setFixedSize(hintWidth, label->heightForWidth(hintWidth));
    return label;
}

ElidedLabel *pathLabel(const fs::path &path) {
    auto *label = new ElidedLabel(Theme::mono(pathFontSize), Theme::inkMed(), Qt::ElideMiddle);
    label->setText(abbreviatingHome(path));
    label->setMinimumWidth(0);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return label;
}

template <typename Widget>
Widget *named(Widget *widget, const char *name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

void describe(QWidget *widget, const QString &description) {
    widget->setAccessibleDescription(description);
    widget->setToolTip(description.toHtmlEscaped());
}

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

SettingsWindowController::SettingsWindowController(Settings &settings, Services services)
    : m_settings(settings), m_services(std::move(services)), m_window(std::make_unique<QWidget>()) {
    m_window->setObjectName(QStringLiteral("DiarySettingsWindow"));
    m_window->setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                             Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    m_window->setAttribute(Qt::WA_QuitOnClose, false);
    m_window->resize(initialSize);
    auto colors = m_window->palette();
    colors.setColor(QPalette::Window, Theme::paper());
    m_window->setPalette(colors);

    m_scrollArea = new QScrollArea(m_window.get());
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    new QuietScrollBar(m_scrollArea);
    addShortcuts();
    rebuildContent();

    if (m_services.updates) {
        m_services.updates->observeDownloading(
            this, [this](const QString &version) { setUpdateStatus(UpdateNotices::downloading(version)); });
        m_services.updates->observeReady(
            this, [this](const QString &version) { setUpdateStatus(UpdateNotices::ready(version)); });
    }
}

SettingsWindowController::~SettingsWindowController() {
    if (m_copying)
        m_copying->stop.request_stop();
}

void SettingsWindowController::addShortcuts() {
    for (const QKeySequence &keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
        auto *shortcut = new QShortcut(keys, m_window.get());
        connect(shortcut, &QShortcut::activated, m_window.get(), &QWidget::close);
    }
}

QWidget *SettingsWindowController::contentView() const {
    return m_scrollArea->widget();
}

void SettingsWindowController::showWindow() {
    if (!std::exchange(m_wasShown, true)) {
        const auto screen = QApplication::primaryScreen()->availableGeometry();
        m_window->move(screen.center() - m_window->rect().center());
    }
    // What was told of it may be old.
    refreshPhotoAccess();
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    if (m_window->testAttribute(Qt::WA_ShowWithoutActivating))
        return;
    m_window->raise();
    m_window->activateWindow();
}

// Content

void SettingsWindowController::rebuildContent() {
    const auto *focused = m_window->focusWidget();
    const auto focusedName = focused ? focused->objectName() : QString();
    // This may be called by a control of the old content.
    if (auto *old = m_scrollArea->takeWidget()) {
        old->hide();
        old->deleteLater();
    }
    m_window->setWindowTitle(L("Settings"));
    m_scrollArea->setWidget(buildContent());
    setUpdateStatus(m_isChecking ? L("Checking…") : UpdateNotices::state(m_services.updates));
    if (auto *again = focusedName.isEmpty() ? nullptr : contentView()->findChild<QWidget *>(focusedName))
        again->setFocus(Qt::OtherFocusReason);
}

QWidget *SettingsWindowController::buildContent() {
    auto *content = new QWidget;
    content->setObjectName(QStringLiteral("settingsContent"));
    content->setAutoFillBackground(true);
    auto *stack = new QVBoxLayout(content);
    stack->setContentsMargins(margin, margin, margin, margin);
    stack->setSpacing(cardSpacing);
    m_cards = {generalCard(), vaultCard(), writingCard(), photosCard(), updatesCard()};
    for (auto *card : m_cards) {
        stack->addWidget(card);
        // Where a control stands, for those who cannot see the card around it.
        for (auto *control : card->findChildren<QWidget *>()) {
            if (control->focusPolicy() != Qt::NoFocus && control->accessibleDescription().isEmpty())
                control->setAccessibleDescription(card->accessibleName());
        }
    }
    return content;
}

SettingsCard *SettingsWindowController::generalCard() {
    auto *card = named(new SettingsCard(L("General"), windowWidth - 2 * margin), "generalCard");
    auto *language =
        named(new SettingsMenu(QStringList{L("System Default")} + Localization::displayNames()), "language");
    const auto chosen = m_settings.languageOverride();
    const auto position = chosen ? Localization::supported().indexOf(*chosen) : -1;
    language->setCurrentIndex(static_cast<int>(position) + 1);
    connect(language, &QComboBox::activated, this, &SettingsWindowController::changeLanguage);
    card->addRow(L("Language"), language);
    return card;
}

SettingsCard *SettingsWindowController::vaultCard() {
    auto *card = named(new SettingsCard(L("Diary Folder"), windowWidth - 2 * margin), "vaultCard");
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
    card->addRow(L("Vault Location"), stacked({path, inARow(stackSpacing, {choose, cloud, reset}), hint}),
                 choose);
    return card;
}

SettingsCard *SettingsWindowController::writingCard() {
    auto *card = named(new SettingsCard(L("Writing"), windowWidth - 2 * margin), "writingCard");

    const auto families = Settings::availableBodyFonts();
    auto *family = named(new SettingsMenu(QStringList{L("Default (Serif)")} + families), "bodyFont");
    for (qsizetype index = 0; index < families.size(); ++index) {
        auto font = Theme::system(controlFontSize);
        font.setFamilies({families[index]});
        family->setItemData(static_cast<int>(index) + 1, font, Qt::FontRole);
    }
    const auto chosen = m_settings.bodyFontFamily();
    family->setCurrentIndex(chosen ? static_cast<int>(families.indexOf(*chosen)) + 1 : 0);
    connect(family, &QComboBox::activated, this, &SettingsWindowController::changeFontFamily);
    card->addRow(L("Body Font"), family);

    QStringList sizes;
    for (const auto &preset : Settings::fontSizePresets)
        sizes += L(preset.label);
    auto *size = named(new SettingsMenu(sizes), "fontSize");
    size->setCurrentIndex(fontSizeIndex(m_settings.editorFontSize()));
    connect(size, &QComboBox::activated, this, &SettingsWindowController::changeFontSize);
    card->addRow(L("Editor Font Size"), size);

    card->addRow({}, named(checkBox("Show missing-year note", m_settings.showGapYears(),
                                    [this](bool isOn) {
                                        m_settings.setShowGapYears(isOn);
                                        readingChanged();
                                    }),
                           "showGapYears"));
    card->addRow({}, named(checkBox("Show photos taken this day", m_settings.showPhotos(),
                                    [this](bool isOn) {
                                        m_settings.setShowPhotos(isOn);
                                        readingChanged();
                                    }),
                           "showPhotos"));
    return card;
}

SettingsCard *SettingsWindowController::photosCard() {
    auto *card = named(new SettingsCard(L("Photos"), windowWidth - 2 * margin), "photosCard");
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
    card->addRow(L("Photo Access"), inARow(rowSpacing, {m_photoAccessLabel, add}), add);
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
        auto *row = arranged<QHBoxLayout>(rowSpacing, {pathLabel(folders[index]), remove});
        list->layout()->addWidget(row);
    }
    return list;
}

SettingsCard *SettingsWindowController::updatesCard() {
    auto *card = named(new SettingsCard(L("Updates & Feedback"), windowWidth - 2 * margin), "updatesCard");

    const auto program = QStringLiteral("Tavelo ") + QApplication::applicationVersion();
    auto *version =
        new ThemeLabel(program.trimmed(), {.font = Theme::mono(versionFontSize), .color = Theme::ink()});
    card->addRow(L("Version"), named(version, "version"));

    card->addRow({}, named(checkBox("Install updates automatically", m_settings.autoUpdate(),
                                    [this](bool isOn) { m_settings.setAutoUpdate(isOn); }),
                           "autoUpdate"));

    m_updateCheckButton = named(new SettingsButton(L("Check for Updates…")), "checkForUpdates");
    m_updateCheckButton->setEnabled(!m_isChecking);
    connect(m_updateCheckButton, &QPushButton::clicked, this, &SettingsWindowController::checkForUpdates);
    card->addRow({}, m_updateCheckButton);
    m_updateStatusLabel = named(wrappingLabel({}, Theme::ink()), "updateStatus");
    card->addRow({}, m_updateStatusLabel);

    const bool hasAddress = !m_services.feedbackAddress.isEmpty();
    auto *send = named(new SettingsButton(L("Send Feedback…")), "sendFeedback");
    send->setEnabled(hasAddress);
    connect(send, &QPushButton::clicked, this, &SettingsWindowController::sendFeedback);
    const auto hint =
        hasAddress ? L("FeedbackHint") : L("This copy of Tavelo was built without an address for feedback.");
    send->setAccessibleDescription(hint);
    card->addRow(L("Feedback"),
                 stacked({inARow(0, {send}), named(wrappingLabel(hint, Theme::statLabel()), "feedbackHint")}),
                 send);
    return card;
}

QCheckBox *SettingsWindowController::checkBox(const char *key, bool isOn, std::function<void(bool)> change) {
    auto *box = new QCheckBox(withoutMnemonics(L(key)));
    box->setFont(Theme::system(controlFontSize));
    box->setAccessibleName(L(key));
    box->setChecked(isOn);
    // Not only clicks: assistive technologies toggle.
    connect(box, &QCheckBox::toggled, this, [this, box, change = std::move(change)](bool isChecked) {
        if (store([&] { change(isChecked); }))
            return;
        const QSignalBlocker itself(box);
        box->setChecked(!isChecked);
    });
    return box;
}

void SettingsWindowController::fitWindow() {
    for (auto *card : m_cards)
        card->layOut();
    auto *content = contentView();
    content->layout()->activate();
    const int height = content->layout()->totalSizeHint().height();
    content->setFixedSize(windowWidth, height);
    const auto *screen = m_window->screen() ? m_window->screen() : QApplication::primaryScreen();
    const int room = screen->availableGeometry().height() - screenMargin;
    m_window->setFixedSize(windowWidth, std::min(height, std::max(room, initialSize.height())));
    m_scrollArea->setGeometry(m_window->rect());
}

// Storing

// False, with the user told, when that was impossible.
bool SettingsWindowController::store(const std::function<void()> &change) {
    try {
        change();
        return true;
    } catch (const fs::filesystem_error &error) {
        tell(L("This setting could not be saved."), systemText(error));
        return false;
    }
}

void SettingsWindowController::tell(const QString &message, const QString &informativeText) {
    showAlert(m_window.get(),
              {.icon = QMessageBox::Warning, .message = message, .informativeText = informativeText});
}

void SettingsWindowController::changeLanguage(int index) {
    const auto code = index > 0 ? std::optional(Localization::supported()[index - 1]) : std::nullopt;
    if (!store([&] { m_settings.setLanguageOverride(code); }))
        rebuildContent();
    else if (onLanguageChanged)
        onLanguageChanged();
}

void SettingsWindowController::changeFontFamily(int index) {
    const auto families = Settings::availableBodyFonts();
    if (index > families.size()) {
        // Fonts were removed since the menu was made.
        rebuildContent();
        return;
    }
    const auto family = index > 0 ? std::optional(families[index - 1]) : std::nullopt;
    if (store([&] { m_settings.setBodyFontFamily(family); }))
        readingChanged();
    else
        rebuildContent();
}

void SettingsWindowController::changeFontSize(int index) {
    const int last = static_cast<int>(Settings::fontSizePresets.size()) - 1;
    const auto preset = static_cast<std::size_t>(std::clamp(index, 0, last));
    const double points = Settings::fontSizePresets.at(preset).points;
    if (store([&] { m_settings.setEditorFontSize(points); }))
        readingChanged();
    else
        rebuildContent();
}

void SettingsWindowController::readingChanged() {
    if (onReadingChanged)
        onReadingChanged();
}

// Photos

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

// Updates and feedback

void SettingsWindowController::setUpdateStatus(const QString &text) {
    m_updateStatusLabel->setText(text);
    m_updateStatusLabel->setFixedHeight(m_updateStatusLabel->heightForWidth(hintWidth));
    m_updateStatusLabel->setVisible(!text.isEmpty());
    // Read out when the button has the keyboard.
    m_updateCheckButton->setAccessibleDescription(text.isEmpty() ? L("Updates & Feedback") : text);
    fitWindow();
}

void SettingsWindowController::checkForUpdates() {
    const bool hadKeyboard = m_updateCheckButton->hasFocus();
    m_isChecking = true;
    m_updateCheckButton->setEnabled(false);
    setUpdateStatus(L("Checking…"));
    const auto finish = [self = QPointer(this), hadKeyboard,
                         focused = QPointer(m_window->focusWidget())](const Updates::CheckResult &result) {
        if (self)
            self->finishCheck(result, hadKeyboard && self->m_window->focusWidget() == focused);
    };
    if (m_services.updates)
        m_services.updates->runCheck(finish);
    else
        finish(Updates::Failed{});
}

void SettingsWindowController::finishCheck(const Updates::CheckResult &result, bool givesKeyboardBack) {
    m_isChecking = false;
    m_updateCheckButton->setEnabled(true);
    // Unless the user has moved it on meanwhile.
    if (givesKeyboardBack)
        m_updateCheckButton->setFocus(Qt::OtherFocusReason);
    setUpdateStatus(UpdateNotices::status(result, m_services.updates && m_services.updates->isSupported()));
}

void SettingsWindowController::sendFeedback() {
    const auto link = FeedbackMail::link(m_services.feedbackAddress, QApplication::applicationVersion(),
                                         QSysInfo::prettyProductName());
    if (!m_services.openUrl || !m_services.openUrl(link))
        tell(L("No e-mail program could be opened. Please write to this address:"),
             m_services.feedbackAddress);
}

} // namespace diary

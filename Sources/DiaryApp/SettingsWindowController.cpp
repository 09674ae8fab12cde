// SPDX-License-Identifier: MIT
#include <DiaryApp/Alert.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/QuietScrollBar.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SettingsCard.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/SettingsParts.h>
#include <DiaryApp/SettingsWindowController.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/UpdateNotices.h>

#include <QApplication>
#include <QCheckBox>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <system_error>
#include <utility>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr QSize initialSize{520, 300};
constexpr int cardSpacing = 18;
constexpr int screenMargin = 40; // for the window's frame and the desktop's bars
constexpr double controlFontSize = 13;
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
    stack->setContentsMargins(settingsMargin, settingsMargin, settingsMargin, settingsMargin);
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
    auto *card = named(new SettingsCard(L("General"), settingsCardWidth), "generalCard");
    auto *language =
        named(new SettingsMenu(QStringList{L("System Default")} + Localization::displayNames()), "language");
    const auto chosen = m_settings.languageOverride();
    const auto position = chosen ? Localization::supported().indexOf(*chosen) : -1;
    language->setCurrentIndex(static_cast<int>(position) + 1);
    connect(language, &QComboBox::activated, this, &SettingsWindowController::changeLanguage);
    card->addRow(L("Language"), language);
    return card;
}

SettingsCard *SettingsWindowController::writingCard() {
    auto *card = named(new SettingsCard(L("Writing"), settingsCardWidth), "writingCard");

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
    content->setFixedSize(settingsWindowWidth, height);
    const auto *screen = m_window->screen() ? m_window->screen() : QApplication::primaryScreen();
    const int room = screen->availableGeometry().height() - screenMargin;
    m_window->setFixedSize(settingsWindowWidth, std::min(height, std::max(room, initialSize.height())));
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

} // namespace diary

// SPDX-License-Identifier: MIT
//
// The part of SettingsWindowController that tells of updates and sends feedback.

#include <DiaryApp/FeedbackMail.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/SettingsCard.h>
#include <DiaryApp/SettingsControls.h>
#include <DiaryApp/SettingsParts.h>
#include <DiaryApp/SettingsWindowController.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>
#include <DiaryApp/UpdateNotices.h>

#include <QApplication>
#include <QCheckBox>
#include <QPointer>
#include <QSysInfo>

namespace diary {

namespace {

constexpr double versionFontSize = 12;

} // namespace

SettingsCard *SettingsWindowController::updatesCard() {
    auto *card = named(new SettingsCard(L("Updates & Feedback"), settingsCardWidth), "updatesCard");

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

void SettingsWindowController::setUpdateStatus(const QString &text) {
    setWrappingText(*m_updateStatusLabel, text);
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

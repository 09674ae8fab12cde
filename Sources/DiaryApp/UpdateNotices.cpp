// SPDX-License-Identifier: MIT
#include <DiaryApp/Localization.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/UpdateNotices.h>

#include <variant>

namespace diary::UpdateNotices {

namespace {

const QString *versionFound(const Updates::CheckResult &result) {
    const auto *found = std::get_if<Updates::UpdateFound>(&result);
    return found ? &found->version : nullptr;
}

bool hasFailed(const Updates::CheckResult &result) {
    return std::holds_alternative<Updates::Failed>(result);
}

} // namespace

QString downloading(const QString &version) {
    return L("UpdateDownloadingNotice", version);
}

QString ready(const QString &version) {
    return L("UpdateReadyNotice", version);
}

QString outcome(const UpdateStaging::Outcome &outcome) {
    const auto version = toQString(outcome.version);
    return outcome.kind == UpdateStaging::Outcome::Kind::Installed ? L("UpdateInstalledNotice", version)
                                                                   : L("UpdateKeptNotice", version);
}

QString state(const Updates *updates) {
    if (!updates)
        return {};
    if (const auto version = updates->pendingVersion())
        return ready(*version);
    if (const auto version = updates->downloadingVersion())
        return downloading(*version);
    return {};
}

QString status(const Updates::CheckResult &result, bool isSupported) {
    if (const auto *version = versionFound(result))
        return ready(*version);
    if (hasFailed(result))
        return isSupported ? L("UpdateFailedTitle") : L("UpdateUnsupportedInfo");
    return L("UpToDateTitle");
}

Alert alert(const Updates::CheckResult &result, bool isSupported, const QString &currentVersion) {
    if (const auto *version = versionFound(result))
        return {.icon = QMessageBox::Information,
                .message = L("UpdateFoundTitle"),
                .informativeText = L("UpdateFoundInfo", *version)};
    if (hasFailed(result))
        return {.icon = QMessageBox::Warning,
                .message = L("UpdateFailedTitle"),
                .informativeText = isSupported ? L("UpdateFailedInfo") : L("UpdateUnsupportedInfo")};
    return {.icon = QMessageBox::Information,
            .message = L("UpToDateTitle"),
            .informativeText = L("UpToDateInfo", currentVersion)};
}

} // namespace diary::UpdateNotices

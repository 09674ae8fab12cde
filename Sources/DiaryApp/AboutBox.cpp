// SPDX-License-Identifier: MIT
#include <DiaryApp/AboutBox.h>
#include <DiaryApp/Alert.h>
#include <DiaryApp/Localization.h>

#include <QApplication>

#include <unicode/uversion.h>

namespace diary {

void showAboutBox(QWidget *window) {
    UVersionInfo icuVersion{};
    u_getVersion(icuVersion);
    const auto libraries = QStringLiteral("Qt %1, ICU %2").arg(QLatin1String(qVersion())).arg(icuVersion[0]);
    showAlert(window, {.message = L("Diary"),
                       .informativeText =
                           L("Version %@", QApplication::applicationVersion()) + QStringLiteral("\n\n") +
                           L("A diary in plain Markdown files. Licensed under the MIT License.") +
                           QStringLiteral("\n\n") + L("Built with %@", libraries)});
}

} // namespace diary

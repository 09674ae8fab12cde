// SPDX-License-Identifier: MIT
#include <DiaryApp/FileManager.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QUrl>

namespace diary {

namespace {

QUrl url(const std::filesystem::path &path) {
    return QUrl::fromLocalFile(QFile::decodeName(path.c_str()));
}

} // namespace

void DesktopFileManager::reveal(const std::filesystem::path &path) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    // The second argument is a start-up id, for focus; there is none.
    call << QStringList{url(path).toString(QUrl::FullyEncoded)} << QString();
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [this, watcher, path] {
        if (watcher->isError())
            openFolder(path.parent_path());
        watcher->deleteLater();
    });
}

void DesktopFileManager::openFolder(const std::filesystem::path &folder) {
    QDesktopServices::openUrl(url(folder));
}

void DesktopFileManager::openFile(const std::filesystem::path &file) {
    QDesktopServices::openUrl(url(file));
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/FolderChooser.h>

#include <QFile>
#include <QFileDialog>

#include <system_error>
#include <utility>

namespace diary {

namespace {

std::filesystem::path nearestFolder(std::filesystem::path path) {
    std::error_code error;
    while (path.has_relative_path() && !std::filesystem::is_directory(path, error))
        path = path.parent_path();
    return path;
}

} // namespace

void DesktopFolderChooser::choose(QWidget *window, const Request &request,
                                  std::function<void(const std::filesystem::path &)> handler) {
    auto *dialog = new QFileDialog(window, request.title);
    dialog->setObjectName(QStringLiteral("folderChooser"));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setDirectory(QFile::decodeName(nearestFolder(request.startingAt).c_str()));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                     [handler = std::move(handler)](const QString &folder) {
                         if (!folder.isEmpty())
                             handler(QFile::encodeName(folder).toStdString());
                     });
    dialog->open();
}

} // namespace diary

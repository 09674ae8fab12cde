// SPDX-License-Identifier: MIT
#include <DiaryApp/Text.h>
#include <DiaryApp/WindowFrame.h>
#include <DiaryKit/Defaults.h>
#include <DiaryKit/UserDirectories.h>

#include <QWidget>

#include <filesystem>
#include <string>

namespace diary::WindowFrame {

namespace {

Defaults frames() {
    return Defaults(UserDirectories::state() / "state.json");
}

std::string key(const QWidget &window) {
    return toUtf8(window.objectName());
}

} // namespace

void remember(const QWidget &window) {
    try {
        frames().set(key(window), window.saveGeometry().toBase64().toStdString());
    } catch (const std::filesystem::filesystem_error &) {
        // The next start then has the usual frame.
    }
}

bool restore(QWidget &window) {
    const auto frame = frames().string(key(window));
    return frame && window.restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*frame)));
}

} // namespace diary::WindowFrame

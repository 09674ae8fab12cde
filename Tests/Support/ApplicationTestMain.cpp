// SPDX-License-Identifier: MIT
//
// The main function of tests that need a QApplication. The user's own files and settings are out of reach.

#include "Support/TemporaryFolder.h"

#include <QApplication>
#include <QByteArray>

#include <gtest/gtest.h>

#include <filesystem>

int main(int argc, char *argv[]) {
    const diary::testing::TemporaryFolder home;
    for (const char *name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME",
                             "XDG_RUNTIME_DIR"}) {
        const auto folder = home / name;
        std::filesystem::create_directory(folder);
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        qputenv(name, QByteArray::fromStdString(folder.string()));
    }
    // English, whatever the developer's own language is.
    qputenv("LC_ALL", "C.UTF-8");
    std::vector<QByteArray> foreign{"LANGUAGE", "DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY"};
    for (char **variable = environ; variable && *variable; ++variable) {
        const QByteArray text(*variable);
        if (text.startsWith("DIARY_"))
            foreign.push_back(text.left(text.indexOf('=')));
    }
    for (const auto &name : foreign)
        qunsetenv(name);
    // Whoever asks for the session bus gets none, rather than a new one that outlives the test.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    ::testing::InitGoogleTest(&argc, argv);
    QApplication::setStyle(QStringLiteral("fusion"));
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}

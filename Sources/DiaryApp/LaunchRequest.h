// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace diary {

// What a launch asks of the diary, whether it is the first or finds a window there already.
enum class LaunchAction {
    Show,  // the window, as it is
    Today, // today's page
    Search // the search window
};

// The word that stands for an action in the menu of a desktop and in a knock; for Show the empty one.
QByteArray wordOf(LaunchAction action);
std::optional<LaunchAction> launchActionNamed(const QByteArray &word);

struct LaunchRequest {
    LaunchAction action = LaunchAction::Show;
    // What the desktop gave the launch to take the focus with; may be empty.
    QByteArray activationToken;

    bool operator==(const LaunchRequest &) const = default;
};

// As the bytes of a knock: the token and, for another action than Show, a zero byte and its word.
QByteArray encoded(const LaunchRequest &request);

// Whatever the bytes are: an unknown word shows the window, and a token with control characters is dropped.
LaunchRequest decodedLaunchRequest(const QByteArray &bytes);

// The program's own arguments.
struct CommandLine {
    enum class Task { OpenDiary, PrintVersion, PrintHelp, TestItself };

    Task task = Task::OpenDiary;
    LaunchAction action = LaunchAction::Show; // the last one wins
    // Neither an option of the program nor, once the application object has taken its own out, of Qt.
    QList<QByteArray> unknown;

    bool operator==(const CommandLine &) const = default;
};

// The first argument is the program's name.
CommandLine parseCommandLine(int argc, const char *const *argv);

} // namespace diary

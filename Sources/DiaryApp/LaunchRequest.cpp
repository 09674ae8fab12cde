// SPDX-License-Identifier: MIT
#include <DiaryApp/LaunchRequest.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace diary {

namespace {

constexpr std::array allActions = {LaunchAction::Show, LaunchAction::Today, LaunchAction::Search};

bool isControlCharacter(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f;
}

} // namespace

QByteArray wordOf(LaunchAction action) {
    switch (action) {
    case LaunchAction::Today:
        return "today";
    case LaunchAction::Search:
        return "search";
    case LaunchAction::Show:
        break;
    }
    return {};
}

std::optional<LaunchAction> launchActionNamed(const QByteArray &word) {
    const auto *found = std::find_if(allActions.begin(), allActions.end(),
                                     [&](LaunchAction action) { return wordOf(action) == word; });
    return found == allActions.end() ? std::nullopt : std::optional(*found);
}

// An earlier version took the whole knock for the token, and the environment that it put it into ends at the
// zero byte: it shows its window, and the token is right.
QByteArray encoded(const LaunchRequest &request) {
    if (request.action == LaunchAction::Show)
        return request.activationToken;
    return request.activationToken + '\0' + wordOf(request.action);
}

LaunchRequest decodedLaunchRequest(const QByteArray &bytes) {
    LaunchRequest request;
    const auto end = bytes.indexOf('\0');
    request.activationToken = end < 0 ? bytes : bytes.left(end);
    if (end >= 0)
        request.action = launchActionNamed(bytes.mid(end + 1)).value_or(LaunchAction::Show);
    if (std::any_of(request.activationToken.begin(), request.activationToken.end(), isControlCharacter))
        request.activationToken.clear();
    return request;
}

CommandLine parseCommandLine(int argc, const char *const *argv) {
    CommandLine line;
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (argument == "--version")
            line.task = CommandLine::Task::PrintVersion;
        else if (argument == "--help" || argument == "-h")
            line.task = CommandLine::Task::PrintHelp;
        else if (argument == "--self-test")
            line.task = CommandLine::Task::TestItself;
        else if (argument == "--today")
            line.action = LaunchAction::Today;
        else if (argument == "--search")
            line.action = LaunchAction::Search;
        else
            line.unknown.append(QByteArray(argv[index]));
    }
    return line;
}

} // namespace diary

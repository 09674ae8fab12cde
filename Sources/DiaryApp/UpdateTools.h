// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace diary {

// Fetches from the network. Main thread only; destroying it, also from a handler, ends what is under way
// without an answer.
class Downloader {
public:
    // Whether nobody on the way can read or change what comes from the address.
    static bool isEncrypted(const QUrl &url) {
        return url.isValid() && url.scheme() == QLatin1String("https") && !url.host().isEmpty();
    }

    // Whether the address is http of this very machine.
    static bool isOnThisMachine(const QUrl &url) {
        const auto host = url.host();
        return url.isValid() && url.scheme() == QLatin1String("http") &&
               (host == QLatin1String("127.0.0.1") || host == QLatin1String("::1") ||
                host == QLatin1String("localhost"));
    }

    // Whether what came from the one address may lead to the other.
    static bool mayLead(const QUrl &from, const QUrl &to) {
        return isEncrypted(to) || (isOnThisMachine(from) && isOnThisMachine(to));
    }

    struct Request {
        QUrl url;
        std::chrono::milliseconds timeout{60'000}; // without a byte arriving
        std::chrono::milliseconds longest{};       // for the whole answer; zero for no limit
        std::int64_t largestBody = 0;              // bytes; a longer answer is an error
    };
    struct Answer {
        QByteArray body;
        std::optional<QString> error; // with it there is no body
    };

    virtual ~Downloader() = default;

    // Past any cache. The handler is called once, on the main thread, after this call has returned. The
    // address is encrypted or on this machine, and redirects are followed a few times where it may lead;
    // any other address is an error.
    virtual void get(const Request &request, std::function<void(Answer)> handler) = 0;
};

// What an application bundle must be to be put in place of the running one.
struct ExpectedUpdate {
    QString version;        // that the feed announced
    QString runningVersion; // that it must be newer than
};

// What the updater needs of the platform: unpacking, checking who made a bundle, and putting it in place
// after the program has ended. Main thread only; destroying it, also from a completion, ends what is under
// way without an answer.
class UpdateTools {
public:
    // With what went wrong; none when all went well. Called once, on the main thread, after the call has
    // returned.
    using Completion = std::function<void(std::optional<QString> error)>;

    virtual ~UpdateTools() = default;

    // Unpacks a zip archive into an existing folder. Nothing is ever written outside of it. What a failure
    // leaves there is the caller's to remove.
    virtual void unpack(const std::filesystem::path &archive, const std::filesystem::path &folder,
                        Completion completion) = 0;

    // Whether the maker of the running program made the bundle, and it is whole.
    virtual void verify(const std::filesystem::path &application, const ExpectedUpdate &expected,
                        Completion completion) = 0;

    // The script that waits for the process $1 to end and puts the bundle $2 in the place of the bundle $3;
    // the staging folder $4 goes in the end.
    virtual QByteArray installScript() const = 0;

    // Starts the script with /bin/sh and does not wait. False when it could not be started. The script
    // inherits the open descriptors of this process that are not closed on exec.
    virtual bool launchInstallScript(const std::filesystem::path &script, std::int64_t processIdentifier,
                                     const std::filesystem::path &staged,
                                     const std::filesystem::path &installed,
                                     const std::filesystem::path &stagingFolder) = 0;
};

// The functions by which the update module is entered, and their types. The caller owns what they make. A
// module of another version than the program, as beside a program that was replaced while it runs, is not to
// be used.
using UpdatesVersion = const char *();
using MakeDownloader = Downloader *();
using MakeUpdateTools = UpdateTools *();
inline constexpr const char *updatesVersionName = "tavelo_updates_version";
inline constexpr const char *makeDownloaderName = "tavelo_make_downloader";
inline constexpr const char *makeUpdateToolsName = "tavelo_make_update_tools";

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateTools.h>

#include <QByteArray>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

class QObject;

namespace diary {

class Clock;
class Settings;

// Keeps an installed bundle current: reads a small feed, stages a newer version that the maker signed, and
// has it put in place when the program ends. Nothing is downloaded or installed where that cannot work.
//
// Main thread only. What it is made from must outlive it; destroying it ends a check without an answer.
class UpdateChecker {
public:
    // The feed: one JSON object with these keys, all strings.
    struct Manifest {
        QString version;   // dotted numbers, such as 1.4.2
        QUrl url;          // of the zip archive with the new bundle
        QByteArray sha256; // of the archive, hexadecimal, lower case

        // None when the bytes are anything else.
        static std::optional<Manifest> parse(const QByteArray &json);
    };

    struct UpToDate {};
    struct UpdateFound {
        QString version;
    };
    struct Failed {
        QString error; // for a log, not for people
    };
    using CheckResult = std::variant<UpToDate, UpdateFound, Failed>;

    // Where the program stands.
    struct Surroundings {
        std::filesystem::path bundle; // the running one; empty when the program is not run from one
        QString currentVersion;
        std::filesystem::path stagingFolder; // whose content may be deleted at any time
        QUrl feedAddress;                    // the maker's, without the query item
    };

    // Of the program as it was started.
    static Surroundings surroundings();

    // What is made when it is first needed; none where the update module is not installed.
    struct Parts {
        std::function<std::unique_ptr<Downloader>()> makeDownloader;
        std::function<std::unique_ptr<UpdateTools>()> makeTools;
    };

    UpdateChecker(Clock &clock, Settings &settings, Parts parts, Surroundings surroundings);
    ~UpdateChecker();
    UpdateChecker(const UpdateChecker &) = delete;
    UpdateChecker &operator=(const UpdateChecker &) = delete;

    // Whether the program runs from a bundle in a folder that the user may write.
    bool isSupported() const;
    const QString &currentVersion() const;
    QUrl feedURL() const;

    // A silent check, when the last one is a day old, the user wants them, and nothing is staged yet.
    void checkIfDue();

    // A whole check. The completion is called once, on the main thread; at once when there can be no check.
    void runCheck(std::function<void(const CheckResult &)> completion);

    // While the program ends: hands what is staged to the install script.
    void installPendingUpdate();

    // The version that is staged, and the one on its way.
    const std::optional<QString> &pendingVersion() const;
    const std::optional<QString> &downloadingVersion() const;

    // Told the version, as long as the context lives.
    using Observer = std::function<void(const QString &version)>;
    void observeDownloading(QObject *context, Observer observer);
    void observeReady(QObject *context, Observer observer);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateStaging.h>
#include <DiaryApp/UpdateTools.h>
#include <DiaryApp/Updates.h>

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

class QObject;

namespace diary {

class Clock;
class Settings;

// Keeps an installed bundle current: reads a small feed, stages a newer version that the maker signed, and
// has it put in place when the program ends. Nothing is downloaded or installed where that cannot work.
//
// Idle, then checking, downloading and staged; a check that fails leaves nothing staged. Of two processes
// that could update the same user's application only one checks and stages at a time, and what it staged
// stays its own until it has ended and the install script too.
//
// Main thread only. What it is made from must outlive it. Destroying it ends a check without an answer; it
// may first wait for the archive to be written.
class UpdateChecker : public Updates {
public:
    // Bytes. More is an error, whoever sends it.
    static constexpr std::int64_t largestFeed = std::int64_t{64} << 10U;
    static constexpr std::int64_t largestArchive = std::int64_t{512} << 20U;
    static constexpr qsizetype longestVersion = 64; // characters

    // The feed: one JSON object with these keys, all strings, and perhaps others.
    struct Manifest {
        QString version;   // dotted numbers, such as 1.4.2; letters, digits and ".-+_"
        QUrl url;          // of the zip archive with the new bundle
        QByteArray sha256; // of the archive, hexadecimal, lower case

        // None when the bytes are anything else, or have one of the keys twice.
        static std::optional<Manifest> parse(const QByteArray &json);
    };

    // Where the program stands.
    struct Surroundings {
        std::filesystem::path bundle; // the running one; empty when the program is not run from one
        QString currentVersion;
        std::filesystem::path stagingFolder; // whose content may be deleted at any time
        QUrl feedAddress;                    // the maker's, without the query item
    };

    // Of the program as it was started.
    static Surroundings surroundings();

    // Called when it is first needed; they return none where the update module is not installed.
    struct Parts {
        std::function<std::unique_ptr<Downloader>()> makeDownloader;
        std::function<std::unique_ptr<UpdateTools>()> makeTools;
    };

    UpdateChecker(Clock &clock, Settings &settings, Parts parts, Surroundings surroundings);
    ~UpdateChecker() override;
    UpdateChecker(const UpdateChecker &) = delete;
    UpdateChecker &operator=(const UpdateChecker &) = delete;

    const QString &currentVersion() const;
    // DIARY_UPDATE_URL as it stands when it is an address, else the maker's with the current version as "v".
    QUrl feedURL() const;

    bool isRunning() const;

    bool isSupported() const override;
    void checkIfDue() override;
    void runCheck(std::function<void(const CheckResult &)> completion) override;
    void installPendingUpdate() override;
    std::optional<UpdateStaging::Outcome> takeOutcome() override;
    std::optional<QString> pendingVersion() const override;
    std::optional<QString> downloadingVersion() const override;
    void observeDownloading(QObject *context, Observer observer) override;
    void observeReady(QObject *context, Observer observer) override;

private:
    class State;
    // Shared with what is on its way to the main thread, which finds out so that nobody waits any more.
    std::shared_ptr<State> m_state;
};

} // namespace diary

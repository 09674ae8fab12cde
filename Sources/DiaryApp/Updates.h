// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateStaging.h>

#include <QString>

#include <functional>
#include <optional>
#include <variant>

class QObject;

namespace diary {

// What the windows need of the updater. Main thread only.
class Updates {
public:
    struct UpToDate {};
    struct UpdateFound {
        QString version;
    };
    struct Failed {
        QString error; // for a log, not for people
    };
    using CheckResult = std::variant<UpToDate, UpdateFound, Failed>;

    virtual ~Updates() = default;

    // Whether the program runs from a bundle in a folder that the user may write.
    virtual bool isSupported() const = 0;

    // A silent check, when the last one is a day old, the user wants them, and nothing is staged yet.
    virtual void checkIfDue() = 0;

    // A whole check. The completion is called once, on the main thread; at once when there can be no check,
    // as while another one runs.
    virtual void runCheck(std::function<void(const CheckResult &)> completion) = 0;

    // While the program ends: hands what is staged to the install script, once.
    virtual void installPendingUpdate() = 0;

    // What became of the update that was handed over last, also by another process; told once.
    virtual std::optional<UpdateStaging::Outcome> takeOutcome() = 0;

    // The version that is staged, and the one on its way.
    virtual std::optional<QString> pendingVersion() const = 0;
    virtual std::optional<QString> downloadingVersion() const = 0;

    // Told the version, in the order of their coming, as long as the context lives: the downloading observers
    // when a download begins, the ready observers when an update was staged, before the check is answered.
    using Observer = std::function<void(const QString &version)>;
    virtual void observeDownloading(QObject *context, Observer observer) = 0;
    virtual void observeReady(QObject *context, Observer observer) = 0;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Updates.h>

#include <QPointer>

#include <functional>
#include <utility>
#include <vector>

namespace diary::testing {

// Counts what it was asked to do; the test answers.
class FakeUpdates : public Updates {
public:
    bool isSupported() const override { return supported; }
    void checkIfDue() override { ++dueChecks; }
    void runCheck(std::function<void(const Updates::CheckResult &)> completion) override {
        completions.push_back(std::move(completion));
    }
    void installPendingUpdate() override { ++installations; }
    std::optional<UpdateStaging::Outcome> takeOutcome() override {
        return std::exchange(outcome, std::nullopt);
    }
    std::optional<QString> pendingVersion() const override { return pending; }
    std::optional<QString> downloadingVersion() const override { return downloading; }
    void observeDownloading(QObject *context, Updates::Observer observer) override {
        m_downloadingObservers.emplace_back(context, std::move(observer));
    }
    void observeReady(QObject *context, Updates::Observer observer) override {
        m_readyObservers.emplace_back(context, std::move(observer));
    }

    void answer(const Updates::CheckResult &result) {
        for (const auto &completion : std::exchange(completions, {}))
            completion(result);
    }
    void tellDownloading(const QString &version) { tell(m_downloadingObservers, version); }
    void tellReady(const QString &version) { tell(m_readyObservers, version); }

    bool supported = true;
    std::optional<UpdateStaging::Outcome> outcome;
    std::optional<QString> pending;
    std::optional<QString> downloading;
    int dueChecks = 0;
    int installations = 0;
    std::vector<std::function<void(const Updates::CheckResult &)>> completions;

private:
    using Observers = std::vector<std::pair<QPointer<QObject>, Updates::Observer>>;

    static void tell(const Observers &observers, const QString &version) {
        for (const auto &[context, observer] : observers) {
            if (context)
                observer(version);
        }
    }

    Observers m_downloadingObservers;
    Observers m_readyObservers;
};

} // namespace diary::testing

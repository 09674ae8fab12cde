// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateTools.h>

#include <QObject>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace diary::testing {

// Unpacks nothing but what it is told to, and remembers what it was asked for. It answers from the event
// loop.
class FakeUpdateTools : public UpdateTools {
public:
    struct Launch {
        std::filesystem::path script;
        std::int64_t processIdentifier;
        std::filesystem::path staged;
        std::filesystem::path installed;
        std::filesystem::path stagingFolder;
    };

    // What a test tells and is told, since the tools belong to whoever they were made for.
    struct Log {
        // Makes what the archive holds in the folder; may throw.
        std::function<void(const std::filesystem::path &folder)> unpack = [](const auto &) {};
        std::optional<QString> verifyError;
        QByteArray script = "#!/bin/sh\n";
        bool canLaunch = true;

        std::vector<std::filesystem::path> unpacked;
        std::vector<std::filesystem::path> verified;
        std::vector<ExpectedUpdate> expected;
        std::vector<Launch> launches;
    };

    explicit FakeUpdateTools(Log &log) : m_log(log) {}

    void unpack(const std::filesystem::path &archive, const std::filesystem::path &folder,
                Completion completion) override {
        m_log.unpacked.push_back(archive);
        std::optional<QString> error;
        try {
            m_log.unpack(folder);
        } catch (const std::exception &exception) {
            error = QString::fromUtf8(exception.what());
        }
        answer(std::move(completion), error);
    }

    void verify(const std::filesystem::path &application, const ExpectedUpdate &expected,
                Completion completion) override {
        m_log.verified.push_back(application);
        m_log.expected.push_back(expected);
        answer(std::move(completion), m_log.verifyError);
    }

    QByteArray installScript() const override { return m_log.script; }

    bool launchInstallScript(const std::filesystem::path &script, std::int64_t processIdentifier,
                             const std::filesystem::path &staged, const std::filesystem::path &installed,
                             const std::filesystem::path &stagingFolder) override {
        m_log.launches.push_back({script, processIdentifier, staged, installed, stagingFolder});
        return m_log.canLaunch;
    }

private:
    void answer(Completion completion, const std::optional<QString> &error) {
        QMetaObject::invokeMethod(
            &m_context, [completion = std::move(completion), error] { completion(error); },
            Qt::QueuedConnection);
    }

    Log &m_log;
    QObject m_context;
};

} // namespace diary::testing

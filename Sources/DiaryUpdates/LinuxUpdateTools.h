// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateTools.h>

#include <QObject>
#include <QString>
#include <QThreadPool>

#include <functional>
#include <stop_token>

namespace diary {

// Unpacks in this very process, trusts what the maker's key has sealed (see BundleSeal), and exchanges the
// bundles in one step where the file system can.
//
// The work is done on a thread of its own, one piece after the other. Destroying it waits for the piece in
// hand to notice, which takes no longer than writing what was unpacked so far to the disk.
class LinuxUpdateTools : public UpdateTools {
public:
    // The maker's public key in minisign's form. Nothing passes for verified when it is no key.
    explicit LinuxUpdateTools(QString publicKey);
    ~LinuxUpdateTools() override;
    LinuxUpdateTools(const LinuxUpdateTools &) = delete;
    LinuxUpdateTools &operator=(const LinuxUpdateTools &) = delete;

    void unpack(const std::filesystem::path &archive, const std::filesystem::path &folder,
                Completion completion) override;
    void verify(const std::filesystem::path &application, const ExpectedUpdate &expected,
                Completion completion) override;

    // The script of LinuxInstall.sh, which says what it does and leaves behind.
    QByteArray installScript() const override;

    // The script is in a session of its own and outlives this process. Its streams lead nowhere.
    bool launchInstallScript(const std::filesystem::path &script, std::int64_t processIdentifier,
                             const std::filesystem::path &staged, const std::filesystem::path &installed,
                             const std::filesystem::path &stagingFolder) override;

private:
    // The work throws when it fails.
    void run(std::function<void(const std::stop_token &stop)> work, Completion completion);

    const QString m_publicKey;
    QObject m_context; // what the completions are delivered to
    std::stop_source m_stop;
    QThreadPool m_threads;
};

} // namespace diary

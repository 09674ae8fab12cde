// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/UpdateTools.h>
#include <DiaryUpdates/ProcessRunner.h>

#include <QStringList>

#include <memory>

namespace diary {

// The update tools of macOS: its own programs unpack an archive, check a bundle's code signature, and copy it
// in place. A bundle whose path is no text in the locale's encoding is not put in place.
class MacUpdateTools : public UpdateTools {
public:
    // The developer team whose signature a bundle must bear, as configured for the build.
    static QString builtInTeamID();

    // The runner must outlive this.
    explicit MacUpdateTools(ProcessRunner &runner, QString requiredTeamID = builtInTeamID());
    ~MacUpdateTools() override;

    void unpack(const std::filesystem::path &archive, const std::filesystem::path &folder,
                Completion completion) override;
    void verify(const std::filesystem::path &application, const ExpectedUpdate &expected,
                Completion completion) override;
    QByteArray installScript() const override;
    bool launchInstallScript(const std::filesystem::path &script, std::int64_t processIdentifier,
                             const std::filesystem::path &staged, const std::filesystem::path &installed,
                             const std::filesystem::path &stagingFolder) override;

private:
    void run(const QString &tool, const QStringList &arguments, Completion completion);

    ProcessRunner &m_runner;
    QString m_requiredTeamID;
    // Gone with this, so that an answer that is still on its way is not given.
    std::shared_ptr<const bool> m_alive = std::make_shared<const bool>(true);
};

} // namespace diary

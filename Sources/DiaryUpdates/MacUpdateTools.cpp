// SPDX-License-Identifier: MIT
#include <DiaryUpdates/MacUpdateTools.h>

#include <QFile>

#include <utility>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr const char *script = R"(#!/bin/sh
while kill -0 "$1" 2>/dev/null; do sleep 0.2; done
rm -rf "$3"
/usr/bin/ditto "$2" "$3"
/usr/bin/xattr -dr com.apple.quarantine "$3" 2>/dev/null
rm -rf "$4")";

QString argument(const fs::path &path) {
    return QFile::decodeName(path.c_str());
}

bool canBePassed(const fs::path &path) {
    return QFile::encodeName(argument(path)).toStdString() == path.native();
}

} // namespace

QString MacUpdateTools::builtInTeamID() {
    return QStringLiteral(TAVELO_UPDATE_TEAM_ID);
}

MacUpdateTools::MacUpdateTools(ProcessRunner &runner, QString requiredTeamID)
    : m_runner(runner), m_requiredTeamID(std::move(requiredTeamID)) {}

MacUpdateTools::~MacUpdateTools() = default;

void MacUpdateTools::run(const QString &tool, const QStringList &arguments, Completion completion) {
    m_runner.run(tool, arguments,
                 [alive = std::weak_ptr(m_alive), completion = std::move(completion)](const auto &error) {
                     if (!alive.expired())
                         completion(error);
                 });
}

void MacUpdateTools::unpack(const fs::path &archive, const fs::path &folder, Completion completion) {
    run(QStringLiteral("/usr/bin/ditto"),
        {QStringLiteral("-x"), QStringLiteral("-k"), argument(archive), argument(folder)},
        std::move(completion));
}

void MacUpdateTools::verify(const fs::path &application, const ExpectedUpdate &, Completion completion) {
    const auto requirement = QStringLiteral("-R=anchor apple generic and certificate leaf[subject.OU] = \"") +
                             m_requiredTeamID + QLatin1Char('"');
    run(QStringLiteral("/usr/bin/codesign"),
        {QStringLiteral("--verify"), QStringLiteral("--deep"), QStringLiteral("--strict"), requirement,
         argument(application)},
        std::move(completion));
}

QByteArray MacUpdateTools::installScript() const {
    return script;
}

bool MacUpdateTools::launchInstallScript(const fs::path &scriptFile, std::int64_t processIdentifier,
                                         const fs::path &staged, const fs::path &installed,
                                         const fs::path &stagingFolder) {
    // The script removes what it is given, so another path than the right one will not do.
    for (const auto &path : {scriptFile, staged, installed, stagingFolder}) {
        if (!canBePassed(path))
            return false;
    }
    return m_runner.startDetached(QStringLiteral("/bin/sh"),
                                  {argument(scriptFile), QString::number(processIdentifier), argument(staged),
                                   argument(installed), argument(stagingFolder)});
}

} // namespace diary

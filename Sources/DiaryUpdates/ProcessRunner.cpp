// SPDX-License-Identifier: MIT
#include <DiaryUpdates/ProcessRunner.h>

#include <QObject>
#include <QProcess>

#include <algorithm>
#include <utility>

namespace diary {

namespace {

void discardOutput(QProcess &process) {
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
}

} // namespace

struct SystemProcessRunner::Running {
    QProcess process;
    Completion completion;

    Running() = default;
    Running(const Running &) = delete;
    Running &operator=(const Running &) = delete;
    ~Running() {
        process.disconnect();
        if (process.state() == QProcess::NotRunning)
            return;
        process.kill();
        process.waitForFinished();
    }
};

SystemProcessRunner::SystemProcessRunner() = default;
SystemProcessRunner::~SystemProcessRunner() = default;

void SystemProcessRunner::run(const QString &program, const QStringList &arguments, Completion completion) {
    auto *running = m_running.emplace_back(std::make_unique<Running>()).get();
    running->completion = std::move(completion);
    auto *process = &running->process;
    discardOutput(*process);
    // Queued, so that the process is never destroyed while it reports, nor a failure told at once.
    QObject::connect(
        process, &QProcess::errorOccurred, process,
        [=, this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                finish(running, QStringLiteral("%1 cannot be started").arg(program));
        },
        Qt::QueuedConnection);
    QObject::connect(
        process, &QProcess::finished, process,
        [=, this](int exitCode, QProcess::ExitStatus status) {
            if (status != QProcess::NormalExit)
                finish(running, QStringLiteral("%1 was killed").arg(program));
            else if (exitCode != 0)
                finish(running, QStringLiteral("%1 exited with status %2").arg(program).arg(exitCode));
            else
                finish(running, std::nullopt);
        },
        Qt::QueuedConnection);
    process->start(program, arguments);
}

void SystemProcessRunner::finish(const Running *running, const std::optional<QString> &error) {
    const auto found = std::find_if(m_running.begin(), m_running.end(),
                                    [&](const auto &kept) { return kept.get() == running; });
    const auto done = std::move(*found);
    m_running.erase(found);
    // Last: the completion may destroy this.
    done->completion(error);
}

bool SystemProcessRunner::startDetached(const QString &program, const QStringList &arguments) {
    QProcess process;
    discardOutput(process);
    process.setProgram(program);
    process.setArguments(arguments);
    return process.startDetached();
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QProcess;

namespace diary {

// Runs other programs, each with a list of arguments and never through a shell. Main thread only; destroying
// it, also from a completion, ends what run() started without an answer.
class ProcessRunner {
public:
    // With what went wrong; none when the program exited with status 0.
    using Completion = std::function<void(std::optional<QString> error)>;

    virtual ~ProcessRunner() = default;

    // The completion is called once, on the main thread, after this call has returned. What the program
    // prints is discarded.
    virtual void run(const QString &program, const QStringList &arguments, Completion completion) = 0;

    // Starts a program that outlives this process. False when it cannot be started.
    virtual bool startDetached(const QString &program, const QStringList &arguments) = 0;
};

class SystemProcessRunner : public ProcessRunner {
public:
    SystemProcessRunner();
    ~SystemProcessRunner() override;

    void run(const QString &program, const QStringList &arguments, Completion completion) override;
    bool startDetached(const QString &program, const QStringList &arguments) override;

private:
    struct Running;

    void finish(const Running *running, const std::optional<QString> &error);

    std::vector<std::unique_ptr<Running>> m_running;
};

} // namespace diary

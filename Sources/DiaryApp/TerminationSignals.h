// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <functional>

class QSocketNotifier;

namespace diary {

// SIGTERM, SIGINT and SIGHUP as an ordinary event on the main thread, so that a log-out script or Ctrl+C
// loses no draft. At most one instance at a time; without one the signals have their default effect.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(std::function<void()> onSignal);
    ~TerminationSignals() override;

private:
    std::function<void()> m_onSignal;
    QSocketNotifier *m_notifier = nullptr;
};

} // namespace diary

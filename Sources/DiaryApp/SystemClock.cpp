// SPDX-License-Identifier: MIT
#include <DiaryApp/Clock.h>
#include <DiaryKit/DurableFile.h>

#include <QSocketNotifier>
#include <QTimer>

#include <cstdint>
#include <utility>

#include <sys/timerfd.h>
#include <unistd.h>

namespace diary {

namespace {

class EventLoopTimer : public Timer {
public:
    explicit EventLoopTimer(std::function<void()> action) {
        m_timer.setSingleShot(true);
        // The others may come a twentieth of the delay too early.
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(action));
    }

    void start(std::chrono::milliseconds delay) override { m_timer.start(delay); }
    void stop() override { m_timer.stop(); }
    bool isActive() const override { return m_timer.isActive(); }

private:
    QTimer m_timer;
};

// The kernel's real-time clock, which goes on while the machine sleeps and tells when it was set. Should
// there be no descriptor left for it, the alarm never rings.
class RealTimeAlarm : public Alarm {
public:
    explicit RealTimeAlarm(std::function<void()> action)
        : m_action(std::move(action)),
          m_timer(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)),
          m_notifier(QSocketNotifier::Read) {
        if (m_timer.get() < 0)
            return;
        m_notifier.setSocket(m_timer.get());
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { ring(); });
    }

    void startAt(DiaryDay::Instant instant) override {
        const auto sinceEpoch = instant.time_since_epoch();
        const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
        const std::chrono::nanoseconds rest = sinceEpoch - seconds;
        const itimerspec when{.it_interval = {}, .it_value = {seconds.count(), rest.count()}};
        timerfd_settime(m_timer.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &when, nullptr);
        m_notifier.setEnabled(m_timer.get() >= 0);
    }

private:
    void ring() {
        m_notifier.setEnabled(false);
        std::uint64_t expirations = 0;
        // Fails with ECANCELED when the clock was set, and so resets the descriptor too.
        [[maybe_unused]] const auto bytes = ::read(m_timer.get(), &expirations, sizeof expirations);
        m_action();
    }

    std::function<void()> m_action;
    FileDescriptor m_timer;
    QSocketNotifier m_notifier;
};

} // namespace

DiaryDay::Instant SystemClock::now() const {
    return std::chrono::system_clock::now();
}

std::unique_ptr<Timer> SystemClock::makeTimer(std::function<void()> action) {
    return std::make_unique<EventLoopTimer>(std::move(action));
}

std::unique_ptr<Alarm> SystemClock::makeAlarm(std::function<void()> action) {
    return std::make_unique<RealTimeAlarm>(std::move(action));
}

} // namespace diary

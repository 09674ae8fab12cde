// SPDX-License-Identifier: MIT
#include <DiaryApp/Clock.h>

#include <QTimer>

#include <utility>

namespace diary {

namespace {

class EventLoopTimer : public Timer {
public:
    explicit EventLoopTimer(std::function<void()> action) {
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(action));
    }

    void start(std::chrono::milliseconds delay) override { m_timer.start(delay); }
    void stop() override { m_timer.stop(); }
    bool isActive() const override { return m_timer.isActive(); }

private:
    QTimer m_timer;
};

} // namespace

DiaryDay::Instant SystemClock::now() const {
    return std::chrono::system_clock::now();
}

std::unique_ptr<Timer> SystemClock::makeTimer(std::function<void()> action) {
    return std::make_unique<EventLoopTimer>(std::move(action));
}

} // namespace diary

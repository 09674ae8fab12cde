// SPDX-License-Identifier: MIT
#include <DiaryApp/TerminationSignals.h>

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace diary {

namespace {

constexpr std::array<int, 3> handledSignals{SIGTERM, SIGINT, SIGHUP};

// A handler may do next to nothing, but it may write a byte to a pipe.
std::array<int, 2> signalPipe{-1, -1};

void noteSignal(int) {
    const int interruptedError = errno;
    const char byte = 1;
    // A full pipe has enough to say already.
    [[maybe_unused]] const auto written = ::write(signalPipe[1], &byte, 1);
    errno = interruptedError;
}

void setHandlers(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : handledSignals)
        sigaction(number, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> onSignal) : m_onSignal(std::move(onSignal)) {
    if (::pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) < 0)
        return;
    m_notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(signalPipe[0], &byte, 1) > 0) {
        }
        m_onSignal();
    });
    setHandlers(noteSignal);
}

TerminationSignals::~TerminationSignals() {
    if (!m_notifier)
        return;
    setHandlers(SIG_DFL);
    delete m_notifier;
    for (int &end : signalPipe)
        ::close(std::exchange(end, -1));
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>

#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

class QEvent;
class QKeyEvent;
class QMainWindow;
class QWidget;

namespace diary {

// The main window before there is anything in it: bars, columns and paper in their colours. It is shown while
// the system's fonts are still being read about, so that the desktop's work for a new window goes on beside
// that. Main thread only; the clock must outlive it.
class BlankWindow : public QObject {
    Q_OBJECT

public:
    // What a desktop with nothing else to do takes for a new window's first picture.
    static constexpr std::chrono::milliseconds usualWait{5};
    // After that; a window that starts on another workspace has no picture.
    static constexpr std::chrono::milliseconds longestWait{100};

    // With the frame that was remembered, else in its initial size. Not shown yet.
    BlankWindow(const QString &title, Clock &clock);
    ~BlankWindow() override;

    // None when it was taken.
    QMainWindow *window() const;
    // Nothing was remembered, and neither the user nor the desktop has given the window another size yet.
    bool isAsFirstMade(const QWidget &window) const;

    void show();

    // Once, when it was shown and the desktop takes its time: there is some for other work.
    std::function<void()> onWaiting;

    // Once after it was shown: after the first picture, or when that takes too long.
    std::function<void()> onReady;

    // To be filled, but not before this is ready. It is watched until this goes.
    std::unique_ptr<QMainWindow> take();

    // What the user did meanwhile: hands on what was typed, in its order, and then closes the window if it
    // was to be closed. Shortcuts and what an input method would have made of the keys are lost.
    void catchUp(QObject *editor, QWidget &filledWindow);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void waitOn();
    void becomeReady();

    std::unique_ptr<QMainWindow> m_window;
    bool m_hasRememberedFrame = false;
    bool m_isLate = false; // the usual wait is over
    std::vector<std::unique_ptr<QKeyEvent>> m_keys;
    bool m_isToBeClosed = false;
    std::unique_ptr<Timer> m_wait;
};

} // namespace diary

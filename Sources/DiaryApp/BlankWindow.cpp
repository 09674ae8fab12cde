// SPDX-License-Identifier: MIT
#include <DiaryApp/BlankWindow.h>
#include <DiaryApp/MainWindowLayout.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/WindowFrame.h>

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QPainter>
#include <QScreen>

#include <utility>

namespace diary {

namespace {

// A menu bar is as high as a line of text and some room, give or take a pixel. To know it would take the
// font.
QSize expectedMenuBar() {
    constexpr double linePerPixel = 1.36;
    constexpr int room = 7;
    constexpr double usualDotsPerInch = 96;
    const auto font = QGuiApplication::font();
    const auto *screen = QGuiApplication::primaryScreen();
    const double dotsPerInch = screen ? screen->logicalDotsPerInchY() : usualDotsPerInch;
    const double size = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * dotsPerInch / 72;
    return {0, qRound(size * linePerPixel) + room};
}

QSize initialSize() {
    return MainWindowLayout::initialSize + expectedMenuBar();
}

class BlankPage : public QWidget {
public:
    BlankPage() { setMinimumSize(MainWindowLayout::minimumSize + expectedMenuBar()); }

protected:
    // No lines, which would show that the menu bar has another height after all.
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        const QSize menuBar = expectedMenuBar();
        const auto layout = layoutMainWindow(size() - menuBar);
        painter.fillRect(rect(), Theme::bar());
        painter.translate(0, menuBar.height());
        painter.fillRect(layout.sidebar, Theme::panel());
        painter.fillRect(layout.entryView, Theme::paper());
        painter.fillRect(layout.yearRail, Theme::panel());
    }
};

} // namespace

BlankWindow::BlankWindow(const QString &title, Clock &clock)
    : m_window(std::make_unique<QMainWindow>()), m_wait(clock.makeTimer([this] { waitOn(); })) {
    m_window->setObjectName(QStringLiteral("DiaryMainWindow"));
    m_window->setWindowTitle(title);
    m_window->setCentralWidget(new BlankPage);
    m_window->resize(initialSize());
    m_hasRememberedFrame = WindowFrame::restore(*m_window);
}

BlankWindow::~BlankWindow() = default;

QMainWindow *BlankWindow::window() const {
    return m_window.get();
}

bool BlankWindow::isAsFirstMade(const QWidget &window) const {
    return !m_hasRememberedFrame && window.size() == initialSize() && !window.isMaximized() &&
           !window.isFullScreen();
}

std::unique_ptr<QMainWindow> BlankWindow::take() {
    return std::move(m_window);
}

void BlankWindow::show() {
    m_window->installEventFilter(this);
    m_wait->start(usualWait);
    m_window->show();
}

void BlankWindow::catchUp(QObject *editor, QWidget &filledWindow) {
    filledWindow.removeEventFilter(this);
    for (const auto &key : std::exchange(m_keys, {})) {
        if (editor)
            QCoreApplication::sendEvent(editor, key.get());
    }
    if (std::exchange(m_isToBeClosed, false))
        filledWindow.close();
}

bool BlankWindow::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::Paint:
        // After the painting that this event is the beginning of.
        QMetaObject::invokeMethod(
            this, [this] { becomeReady(); }, Qt::QueuedConnection);
        break;
    case QEvent::KeyPress:
        m_keys.emplace_back(static_cast<QKeyEvent *>(event)->clone());
        return true;
    case QEvent::Close:
        // Not before what was typed is in the diary.
        m_isToBeClosed = true;
        event->ignore();
        return true;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void BlankWindow::waitOn() {
    if (std::exchange(m_isLate, true)) {
        becomeReady();
        return;
    }
    m_wait->start(longestWait);
    if (onWaiting)
        onWaiting();
}

void BlankWindow::becomeReady() {
    m_wait->stop();
    if (const auto ready = std::exchange(onReady, nullptr))
        ready();
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/Localization.h>
#include <DiaryApp/YearOverviewController.h>
#include <DiaryApp/YearOverviewView.h>
#include <DiaryKit/DiaryStore.h>

#include <QGuiApplication>
#include <QKeySequence>
#include <QPointer>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>

namespace diary {

YearOverviewController::YearOverviewController(QWidget *mainWindow)
    : m_mainWindow(mainWindow),
      m_window(std::make_unique<QWidget>(mainWindow, Qt::Dialog | Qt::CustomizeWindowHint |
                                                         Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                                         Qt::WindowCloseButtonHint)) {
    m_window->setObjectName(QStringLiteral("yearOverviewWindow"));
    m_window->setAttribute(Qt::WA_QuitOnClose, false);
    m_view = new YearOverviewView;
    m_view->setObjectName(QStringLiteral("yearOverview"));
    m_view->onPick = [this](MonthDay monthDay) { pick(monthDay); };
    auto *layout = new QVBoxLayout(m_window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    // The window is as large as its content, no more and no less.
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(m_view);

    for (const auto &keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
        auto *shortcut = new QShortcut(keys, m_window.get());
        connect(shortcut, &QShortcut::activated, m_window.get(), &QWidget::close);
    }
}

YearOverviewController::~YearOverviewController() = default;

void YearOverviewController::present(DiaryStore &store, const Formatters::Context &names,
                                     MonthDay startingAt) {
    const auto presentation = ++m_presentation;
    m_window->setWindowTitle(L("Year Calendar"));
    m_view->update({.figures = std::nullopt, .names = names});
    m_view->focusDay(startingAt);
    store.loadArchiveSnapshot([self = QPointer(this), presentation,
                               names](const DiaryStore::ArchiveSnapshot &snapshot) {
        if (auto *controller = self.data(); controller && controller->m_presentation == presentation)
            controller->m_view->update(
                {.figures = YearOverviewView::Figures{snapshot.heatCounts, snapshot.overview.daysWithContent},
                 .names = names});
    });
    m_window->adjustSize();
    centerWindow();
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void YearOverviewController::centerWindow() {
    const auto *screen = m_mainWindow ? m_mainWindow->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const auto area = screen->availableGeometry();
    const auto size = m_window->size();
    // The title bar stays on a screen that is lower than the window.
    m_window->move(area.x() + (area.width() - size.width()) / 2,
                   area.y() + std::max(0, (area.height() - size.height()) / 2));
}

void YearOverviewController::pick(MonthDay monthDay) {
    const QPointer self(this);
    if (const auto action = onPick)
        action(monthDay);
    if (self)
        m_window->close();
}

} // namespace diary

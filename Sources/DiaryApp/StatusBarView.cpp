// SPDX-License-Identifier: MIT
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/StatusBarView.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace diary {

namespace {

constexpr int sideMargin = 14;
constexpr int labelSpacing = 16;

} // namespace

StatusBarLayout layoutStatusBar(const StatusBarMetrics &metrics, QSize bar) {
    const int room = std::max(0, bar.width() - 2 * sideMargin);
    const int right = std::min(metrics.right.width(), room);
    const int left = std::clamp(room - right - labelSpacing, 0, metrics.left.width());
    return {QRect(sideMargin, (bar.height() - metrics.left.height()) / 2, left, metrics.left.height()),
            QRect(sideMargin + room - right, (bar.height() - metrics.right.height()) / 2, right,
                  metrics.right.height()),
            QRect(0, 0, bar.width(), 1)};
}

StatusBarView::StatusBarView(Clock &clock, QWidget *parent)
    : QWidget(parent), m_flashTimer(clock.makeTimer([this] { showPath(); })) {
    m_leftLabel = new ElidedLabel(Theme::mono(10.5), Theme::statusText(), Qt::ElideMiddle, this);
    m_leftLabel->setObjectName(QStringLiteral("leftLabel"));
    m_rightLabel = new ElidedLabel(Theme::mono(10.5), Theme::statusText(), Qt::ElideRight, this);
    m_rightLabel->setObjectName(QStringLiteral("rightLabel"));
    layOut();
}

void StatusBarView::update(const Model &model) {
    m_currentPath = model.path;
    m_rightLabel->setText(model.status);
    if (!m_flashTimer->isActive())
        m_leftLabel->setText(m_currentPath);
    layOut();
}

void StatusBarView::flash(const QString &message) {
    m_leftLabel->setAppearance(Theme::system(11), Theme::accent(), Qt::ElideRight);
    m_leftLabel->setText(message);
    layOut();
    m_flashTimer->start(flashDuration);
    QAccessibleEvent alert(m_leftLabel, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void StatusBarView::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), Theme::bar());
    painter.fillRect(currentLayout().rule, Theme::border());
}

void StatusBarView::resizeEvent(QResizeEvent *) {
    layOut();
}

void StatusBarView::showPath() {
    m_leftLabel->setAppearance(Theme::mono(10.5), Theme::statusText(), Qt::ElideMiddle);
    m_leftLabel->setText(m_currentPath);
    layOut();
}

StatusBarLayout StatusBarView::currentLayout() const {
    return layoutStatusBar({m_leftLabel->sizeHint(), m_rightLabel->sizeHint()}, size());
}

void StatusBarView::layOut() {
    const auto layout = currentLayout();
    m_leftLabel->setGeometry(layout.left);
    m_rightLabel->setGeometry(layout.right);
}

} // namespace diary

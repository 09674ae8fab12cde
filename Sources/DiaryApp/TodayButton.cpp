// SPDX-License-Identifier: MIT
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/TodayButton.h>

#include <QEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace diary {

namespace {

constexpr double cornerRadius = 8;
constexpr int buttonHeight = 34;
constexpr int sideInset = 10;
constexpr int spacing = 8;

} // namespace

TodayButtonLayout layoutTodayButton(const TodayButtonMetrics &metrics, QSize button) {
    const auto &[title, titleAscent, date, dateAscent] = metrics;
    const int room = std::max(0, button.width() - 2 * sideInset - spacing - date.width());
    const int titleWidth = std::min(title.width(), room);
    const int left = (button.width() - titleWidth - spacing - date.width()) / 2;
    const int top = (button.height() - title.height()) / 2;
    return {.title = QRect(left, top, titleWidth, title.height()),
            .date = QRect(QPoint(left + titleWidth + spacing, top + titleAscent - dateAscent), date)};
}

TodayButton::TodayButton(QWidget *parent)
    : HoverView(parent),
      m_titleLabel(new ElidedLabel(Theme::system(12.5), Theme::ink(), Qt::ElideRight, this)),
      m_dateLabel(new ElidedLabel(Theme::mono(12.5), Theme::inkMed(), Qt::ElideRight, this)) {
    m_titleLabel->setObjectName(QStringLiteral("titleLabel"));
    m_dateLabel->setObjectName(QStringLiteral("dateLabel"));
    for (auto *label : {m_titleLabel, m_dateLabel})
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void TodayButton::update(const Model &model) {
    m_titleLabel->setText(model.title);
    m_dateLabel->setText(model.dateText);
    setAccessibleName(model.title);
    setAccessibleDescription(model.dateText);
    layOut();
}

QSize TodayButton::sizeHint() const {
    return {m_titleLabel->sizeHint().width() + spacing + m_dateLabel->sizeHint().width() + 2 * sideInset,
            buttonHeight};
}

void TodayButton::changeEvent(QEvent *event) {
    HoverView::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        layOut();
}

void TodayButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paintBorderedBox(painter, rect(), cornerRadius, isHovered() ? Theme::cardBgActive() : Theme::cardBg(),
                     isHovered() ? Theme::cardBorderHover() : Theme::cardBorder());
    paintFocusRing(painter, rect(), cornerRadius);
}

void TodayButton::resizeEvent(QResizeEvent *event) {
    HoverView::resizeEvent(event);
    layOut();
}

void TodayButton::layOut() {
    const auto layout = layoutTodayButton({.title = m_titleLabel->sizeHint(),
                                           .titleAscent = m_titleLabel->fontMetrics().ascent(),
                                           .date = m_dateLabel->sizeHint(),
                                           .dateAscent = m_dateLabel->fontMetrics().ascent()},
                                          size());
    m_titleLabel->setGeometry(QStyle::visualRect(layoutDirection(), rect(), layout.title));
    m_dateLabel->setGeometry(QStyle::visualRect(layoutDirection(), rect(), layout.date));
    // The label under it gets no events of its own.
    const bool isElided = m_titleLabel->sizeHint().width() > layout.title.width();
    setToolTip(isElided ? m_titleLabel->text() : QString());
}

} // namespace diary

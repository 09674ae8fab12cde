// SPDX-License-Identifier: MIT
#include <DiaryApp/AddYearCardView.h>
#include <DiaryApp/Theme.h>

#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace diary {

namespace {

constexpr double cornerRadius = 8;
constexpr double focusRingInset = 3;
constexpr int sideInset = 16;
constexpr int menuGap = 4;

} // namespace

AddYearCardView::AddYearCardView(QWidget *parent) : HoverView(parent) {
    onClick = [this] { showMenu(); };
}

void AddYearCardView::update(const Model &model) {
    forgetPointer();
    if (model.years != m_model.years) {
        if (auto *menu = findChild<QMenu *>())
            menu->close();
    }
    const bool isSameTitle = model.title == m_model.title;
    m_model = model;
    if (isSameTitle)
        return;
    setAccessibleName(model.title);
    update();
}

void AddYearCardView::showMenu() {
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("yearMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAccessibleName(m_model.title);
    menu->setFont(Theme::mono(13));
    for (const auto year : m_model.years)
        menu->addAction(QString::number(year), this, [this, year] { pick(year); });
    menu->popup(mapToGlobal(QPoint(0, height() + menuGap)));
}

QRect AddYearCardView::labelRect() const {
    const auto natural = label().naturalSize();
    const QSize size(std::clamp(width() - 2 * sideInset, 0, natural.width()), natural.height());
    return {QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

QSize AddYearCardView::sizeHint() const {
    return {label().naturalSize().width() + 2 * sideInset, cardHeight};
}

void AddYearCardView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    label().paint(painter, labelRect(), isHovered() ? Theme::inkMed() : Theme::faint());

    QPen dashes(isHovered() ? Theme::cardBorderActive() : Theme::cardBorder(), 1);
    dashes.setCapStyle(Qt::FlatCap);
    dashes.setDashPattern({4, 3});
    painter.setPen(dashes);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    paintFocusRing(painter,
                   QRectF(rect()).adjusted(focusRingInset, focusRingInset, -focusRingInset, -focusRingInset),
                   cornerRadius - focusRingInset);
}

TextLine AddYearCardView::label() const {
    return {QStringLiteral("＋  ") + m_model.title, Theme::system(12.5, Theme::Weight::Medium)};
}

void AddYearCardView::pick(std::int64_t year) {
    // A copy, as the card may be gone before the action ends.
    if (const auto action = m_model.onPick)
        action(year);
}

} // namespace diary

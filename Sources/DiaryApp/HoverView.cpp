// SPDX-License-Identifier: MIT
#include <DiaryApp/HoverView.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCursor>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include <utility>

namespace diary {

namespace {

class AccessibleHoverView : public QAccessibleWidget {
public:
    explicit AccessibleHoverView(HoverView *view)
        : QAccessibleWidget(view, QAccessible::Button), m_view(view) {}

    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.hasPopup = m_view->opensMenu();
        return state;
    }

    QStringList actionNames() const override {
        auto names = QAccessibleWidget::actionNames();
        if (m_view->isEnabled())
            names.prepend(pressAction());
        return names;
    }

    void doAction(const QString &name) override {
        if (name != pressAction())
            QAccessibleWidget::doAction(name);
        else if (m_view->isEnabled())
            m_view->click();
    }

private:
    HoverView *m_view;
};

QAccessibleInterface *makeAccessible(const QString &className, QObject *object) {
    if (className != QLatin1String(HoverView::staticMetaObject.className()))
        return nullptr;
    return new AccessibleHoverView(static_cast<HoverView *>(object));
}

} // namespace

HoverView::HoverView(QWidget *parent) : QWidget(parent) {
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
}

void HoverView::click() {
    // A copy, as the view may be gone before the action ends.
    if (const auto action = onClick)
        action();
}

void HoverView::forgetPointer() {
    setPointerInside(false);
}

void HoverView::recheckPointer() {
    if (m_isPointerInside && !rect().contains(mapFromGlobal(QCursor::pos())))
        setPointerInside(false);
}

void HoverView::paintHoverBackground(QPainter &painter, double cornerRadius) const {
    if (m_isHovered)
        paintFilledBox(painter, rect(), cornerRadius, Theme::hoverBg());
}

void HoverView::paintFocusRing(QPainter &painter, const QRectF &bounds, double cornerRadius) const {
    if (hasFocus())
        diary::paintFocusRing(painter, bounds, cornerRadius);
}

bool HoverView::event(QEvent *event) {
    const bool isHandled = QWidget::event(event);
    switch (event->type()) {
    case QEvent::Enter:
        setPointerInside(true);
        break;
    case QEvent::Leave:
        setPointerInside(false);
        break;
    case QEvent::Hide:
        setPointerInside(false);
        m_isPressed = false;
        break;
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::EnabledChange:
        updateHover();
        break;
    default:
        break;
    }
    return isHandled;
}

void HoverView::mousePressEvent(QMouseEvent *event) {
    if (event->button() == Qt::LeftButton)
        m_isPressed = true;
    else
        event->ignore();
}

void HoverView::mouseMoveEvent(QMouseEvent *event) {
    // While a button is held the moves outside come here too.
    setPointerInside(rect().contains(event->position().toPoint()));
}

void HoverView::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (std::exchange(m_isPressed, false) && rect().contains(event->position().toPoint()))
        click();
}

void HoverView::keyPressEvent(QKeyEvent *event) {
    const bool isPress =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    if (!isPress || (event->modifiers() & ~Qt::KeypadModifier)) {
        QWidget::keyPressEvent(event);
        return;
    }
    // Held down, a key clicks once.
    if (!event->isAutoRepeat())
        click();
}

void HoverView::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    recheckPointer();
}

void HoverView::setPointerInside(bool isInside) {
    m_isPointerInside = isInside;
    updateHover();
}

void HoverView::updateHover() {
    const bool isHovered = m_isPointerInside && isEnabled() && isActiveWindow();
    if (isHovered == m_isHovered)
        return;
    m_isHovered = isHovered;
    update();
    hoverDidChange();
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/DayCellsView.h>
#include <DiaryKit/DiaryDay.h>

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

namespace diary {

namespace {

// One day of a view, which outlives it. Tells what the view shows now, and is not valid while the month has
// no such day.
class AccessibleDayCell : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessibleDayCell(DayCellsView *view, int day) : m_view(view), m_day(day) {}

    bool isValid() const override { return m_day <= m_view->dayCount(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return parent()->window(); }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_view); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::Button; }
    void setText(QAccessible::Text, const QString &) override {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name && isValid() ? m_view->cellName(m_day) : QString();
    }

    QRect rect() const override {
        if (!isValid())
            return {};
        const auto cell = m_view->cells()[static_cast<std::size_t>(m_day - 1)].toAlignedRect();
        return {m_view->mapToGlobal(cell.topLeft()), cell.size()};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.disabled = !m_view->isEnabled();
        state.invisible = !m_view->isVisible();
        state.focusable = m_view->isEnabled();
        state.focused = m_view->hasFocus() && m_view->cursorDay() == m_day;
        state.selected = m_view->isSelected(m_day);
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                    : nullptr;
    }

    QStringList actionNames() const override {
        if (!isValid() || !m_view->isEnabled())
            return {};
        return {pressAction(), setFocusAction()};
    }

    void doAction(const QString &name) override {
        if (!actionNames().contains(name))
            return;
        if (name == pressAction()) {
            m_view->press(m_day);
            return;
        }
        m_view->setCursorDay(m_day);
        m_view->setFocus(Qt::OtherFocusReason);
    }

    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    DayCellsView *m_view;
    int m_day;
};

class AccessibleDayCells : public QAccessibleWidget {
public:
    explicit AccessibleDayCells(DayCellsView *view)
        : QAccessibleWidget(view, QAccessible::Grouping), m_view(view) {}
    AccessibleDayCells(const AccessibleDayCells &) = delete;
    AccessibleDayCells &operator=(const AccessibleDayCells &) = delete;
    ~AccessibleDayCells() override {
        for (const auto id : m_ids)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return m_view->dayCount(); }

    QAccessibleInterface *child(int index) const override {
        if (index < 0 || index >= m_view->dayCount())
            return nullptr;
        while (static_cast<int>(m_ids.size()) <= index) {
            const int day = static_cast<int>(m_ids.size()) + 1;
            m_ids.push_back(QAccessible::registerAccessibleInterface(new AccessibleDayCell(m_view, day)));
        }
        return QAccessible::accessibleInterface(m_ids[static_cast<std::size_t>(index)]);
    }

    int indexOfChild(const QAccessibleInterface *child) const override {
        const auto id = QAccessible::uniqueId(const_cast<QAccessibleInterface *>(child));
        const auto found = std::find(m_ids.begin(), m_ids.end(), id);
        return found == m_ids.end() ? -1 : static_cast<int>(found - m_ids.begin());
    }

    QAccessibleInterface *childAt(int x, int y) const override {
        const auto day = m_view->dayAt(m_view->mapFromGlobal(QPoint(x, y)));
        return day ? child(*day - 1) : nullptr;
    }

    QAccessibleInterface *focusChild() const override {
        return m_view->hasFocus() ? child(m_view->cursorDay() - 1) : nullptr;
    }

private:
    DayCellsView *m_view;
    mutable std::vector<QAccessible::Id> m_ids; // of the days asked for so far; one may be gone at exit
};

QAccessibleInterface *makeAccessible(const QString &className, QObject *object) {
    if (className != QLatin1String(DayCellsView::staticMetaObject.className()))
        return nullptr;
    return new AccessibleDayCells(static_cast<DayCellsView *>(object));
}

// Whether there is an assistive technology; without one no changes are looked for.
class Listener : public QAccessible::ActivationObserver {
public:
    static bool isThere() {
        static Listener listener;
        return listener.m_isThere;
    }

    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;
    ~Listener() override { QAccessible::removeActivationObserver(this); }

private:
    Listener() { QAccessible::installActivationObserver(this); }
    void accessibilityActiveChanged(bool active) override { m_isThere = active; }

    bool m_isThere = QAccessible::isActive();
};

// As a rectangle on a screen: a point on the far edges is outside.
bool holds(const QRectF &rect, const QPointF &point) {
    return point.x() >= rect.left() && point.x() < rect.right() && point.y() >= rect.top() &&
           point.y() < rect.bottom();
}

} // namespace

DayCellsView::DayCellsView(QWidget *parent) : QWidget(parent) {
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(makeAccessible);
        Listener::isThere();
        return true;
    }();
    setFocusPolicy(Qt::TabFocus);
}

int DayCellsView::daysInMonth(std::int64_t month) {
    return static_cast<int>(MonthDay::daysInCycleMonth.at(static_cast<std::size_t>(month - 1)));
}

std::optional<int> DayCellsView::dayAt(const QPointF &point) const {
    const auto rects = cells();
    const auto found =
        std::find_if(rects.begin(), rects.end(), [&point](const QRectF &rect) { return holds(rect, point); });
    if (found == rects.end())
        return std::nullopt;
    return static_cast<int>(found - rects.begin()) + 1;
}

void DayCellsView::setCursorDay(int day) {
    const int clamped = std::clamp(day, 1, dayCount());
    if (clamped == m_cursorDay)
        return;
    m_cursorDay = clamped;
    update();
    if (hasFocus())
        announceFocus();
}

void DayCellsView::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (const auto day = dayAt(event->position())) {
        setCursorDay(*day);
        press(*day);
    }
}

void DayCellsView::keyPressEvent(QKeyEvent *event) {
    if (event->modifiers() & ~Qt::KeypadModifier) {
        event->ignore();
        return;
    }
    const int forward = isMirrored() ? -1 : 1;
    switch (const auto key = static_cast<Qt::Key>(event->key())) {
    case Qt::Key_Left:
        walk(key, -forward);
        break;
    case Qt::Key_Right:
        walk(key, forward);
        break;
    case Qt::Key_Up:
        walk(key, -columns);
        break;
    case Qt::Key_Down:
        walk(key, columns);
        break;
    case Qt::Key_Home:
        setCursorDay(1);
        break;
    case Qt::Key_End:
        setCursorDay(dayCount());
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        // Held down, a key presses once.
        if (!event->isAutoRepeat())
            press(m_cursorDay);
        break;
    default:
        event->ignore();
    }
}

void DayCellsView::walk(Qt::Key key, int by) {
    const int day = m_cursorDay + by;
    if (day >= 1 && day <= dayCount())
        setCursorDay(day);
    else
        walkOut(key, m_cursorDay);
}

void DayCellsView::focusInEvent(QFocusEvent *) {
    update();
    announceFocus();
}

void DayCellsView::focusOutEvent(QFocusEvent *) {
    update();
}

void DayCellsView::announce(int day, QAccessible::Event type) {
    auto *accessible = QAccessible::queryAccessibleInterface(this);
    auto *cell = accessible ? accessible->child(day - 1) : nullptr;
    if (!cell)
        return;
    if (type == QAccessible::StateChanged) {
        QAccessible::State changed;
        changed.selected = true;
        QAccessibleStateChangeEvent event(cell, changed);
        QAccessible::updateAccessibility(&event);
    } else {
        QAccessibleEvent event(cell, type);
        QAccessible::updateAccessibility(&event);
    }
}

std::vector<DayCellsView::CellState> DayCellsView::beginChange(int newDayCount) {
    std::vector<CellState> states;
    if (!Listener::isThere())
        return states;
    const int count = dayCount();
    // Said while they are still there.
    for (int day = newDayCount + 1; day <= count; ++day)
        announce(day, QAccessible::ObjectDestroyed);
    for (int day = 1; day <= count; ++day)
        states.push_back({cellName(day), isSelected(day)});
    return states;
}

void DayCellsView::endChange(const std::vector<CellState> &before) {
    if (!Listener::isThere() || before.empty())
        return;
    const int countBefore = static_cast<int>(before.size());
    for (int day = 1; day <= dayCount(); ++day) {
        if (day > countBefore) {
            announce(day, QAccessible::ObjectCreated);
            continue;
        }
        const auto &old = before[static_cast<std::size_t>(day - 1)];
        if (old.name != cellName(day))
            announce(day, QAccessible::NameChanged);
        if (old.isSelected != isSelected(day))
            announce(day, QAccessible::StateChanged);
    }
}

void DayCellsView::announceFocus() {
    if (Listener::isThere())
        announce(m_cursorDay, QAccessible::Focus);
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <functional>

namespace diary {

// Something to click that shows when the pointer is over it; the base of the application's own buttons.
//
// It is clicked by a press and a release inside, by Return, Enter or Space when it has the keyboard, or by an
// assistive technology, for which it is a button. It takes the keyboard by Tab only, so that a click leaves
// the caret where it is.
class HoverView : public QWidget {
    Q_OBJECT

public:
    explicit HoverView(QWidget *parent = nullptr);

    // May destroy the view.
    std::function<void()> onClick;

    // Whether the pointer is over it, in a window that is active.
    bool isHovered() const { return m_isHovered; }

    void click();

    // Whether a click opens a menu, for assistive technologies.
    virtual bool opensMenu() const { return false; }

    // As if the pointer were elsewhere, until it moves again; a press that is under way stays one.
    void forgetPointer();
    // A press that is under way no longer clicks: what was pressed is gone.
    void forgetPress() { m_isPressed = false; }
    // For when the view was moved or resized under a pointer that stood still, which no event tells.
    void recheckPointer();

protected:
    // After `isHovered` changed; a repaint is on its way.
    virtual void hoverDidChange() {}

    // All of the view, while it is hovered.
    void paintHoverBackground(QPainter &painter, double cornerRadius) const;
    // Inside the bounds, for the view that has the keyboard.
    void paintFocusRing(QPainter &painter, const QRectF &bounds, double cornerRadius) const;

    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void setPointerInside(bool isInside);
    void updateHover();

    bool m_isPointerInside = false;
    bool m_isHovered = false;
    bool m_isPressed = false;
};

} // namespace diary

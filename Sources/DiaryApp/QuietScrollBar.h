// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QScrollBar>

#include <optional>

class QAbstractScrollArea;

namespace diary {

// Where the thumb lies in a vertical track. Empty when there is nothing to scroll.
struct ScrollThumbMetrics {
    QSize track;
    int minimum = 0;
    int maximum = 0;
    int pageStep = 0;
    int value = 0;
};
QRect layoutScrollThumb(const ScrollThumbMetrics &metrics);

// A thin vertical scroll bar that lies over the trailing edge of a scroll area and takes no room from it. It
// stands in for the area's own one, which is hidden, and is gone while there is nothing to scroll.
class QuietScrollBar : public QScrollBar {
    Q_OBJECT

public:
    static constexpr int thickness = 8;

    // A child of the area.
    explicit QuietScrollBar(QAbstractScrollArea *area);

    QRect thumbRect() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void followArea();

    QAbstractScrollArea *m_area;
    QScrollBar *m_source;            // the area's own
    std::optional<int> m_dragOffset; // from the thumb's top to the pointer, while it is dragged
};

} // namespace diary

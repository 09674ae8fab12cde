// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QWidget>

namespace diary {

// A hairline: one logical pixel thick, as long as its place.
class RuleView : public QWidget {
    Q_OBJECT

public:
    explicit RuleView(const QColor &color, Qt::Orientation orientation = Qt::Horizontal,
                      QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_color;
};

} // namespace diary

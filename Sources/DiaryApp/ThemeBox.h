// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QWidget>

namespace diary {

// A plain container filled with one colour.
class ThemeBox : public QWidget {
    Q_OBJECT

public:
    explicit ThemeBox(const QColor &color, QWidget *parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_color;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/HoverView.h>

#include <QPainterPath>

namespace diary {

// A button that is one of the application's symbols, with its name as tool tip and for assistive
// technologies.
class IconButton : public HoverView {
    Q_OBJECT

public:
    // The symbol's name is one of Symbols.h.
    IconButton(const QString &symbolName, const QString &label, QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPainterPath m_outline;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/HoverView.h>

#include <QRect>
#include <QString>

namespace diary {

class ElidedLabel;

// What the texts take.
struct TodayButtonMetrics {
    QSize title;
    int titleAscent = 0;
    QSize date;
    int dateAscent = 0;
};

struct TodayButtonLayout {
    QRect title;
    QRect date; // on the title's baseline
};

// Both texts in the middle, side by side. Where they have no room the title gives way.
TodayButtonLayout layoutTodayButton(const TodayButtonMetrics &metrics, QSize button);

// The way back to today, with today's date on it.
class TodayButton : public HoverView {
    Q_OBJECT

public:
    struct Model {
        QString title;
        QString dateText;
    };

    explicit TodayButton(QWidget *parent = nullptr);

    using QWidget::update;
    void update(const Model &model);

    QSize sizeHint() const override;

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void layOut();

    ElidedLabel *m_titleLabel;
    ElidedLabel *m_dateLabel;
};

} // namespace diary

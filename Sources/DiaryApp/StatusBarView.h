// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/Clock.h>

#include <QRect>
#include <QSize>
#include <QString>
#include <QWidget>

#include <chrono>
#include <memory>

namespace diary {

class ElidedLabel;

// What the texts of the status bar would like to have.
struct StatusBarMetrics {
    QSize left;
    QSize right;
};

struct StatusBarLayout {
    QRect left;
    QRect right;
    QRect rule;
};

// When both texts do not fit, the left one is the one to be shortened.
StatusBarLayout layoutStatusBar(const StatusBarMetrics &metrics, QSize bar);

// The bar below the page: the file's path and what is shown of it. A flash takes the path's place for a
// while.
class StatusBarView : public QWidget {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds flashDuration = std::chrono::seconds(4);

    struct Model {
        QString path;
        QString status;
    };

    // The clock must outlive the bar.
    explicit StatusBarView(Clock &clock, QWidget *parent = nullptr);

    using QWidget::update;
    void update(const Model &model);

    // Shows the message from now on for the whole duration, in place of any other.
    void flash(const QString &message);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void showPath();
    StatusBarLayout currentLayout() const;
    void layOut();

    ElidedLabel *m_leftLabel;
    ElidedLabel *m_rightLabel;
    QString m_currentPath;
    std::unique_ptr<Timer> m_flashTimer;
};

} // namespace diary

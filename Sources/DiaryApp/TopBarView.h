// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <QWidget>

#include <functional>

namespace diary {

class ChromeButton;
class ElidedLabel;

// What the parts of the top bar would like to have.
struct TopBarMetrics {
    QSize file;
    QSize count;
    QSize random;
    QSize source;
};

struct TopBarLayout {
    QRect file;
    QRect count; // empty when there is no room for it
    QRect random;
    QRect source;
    QRect rule;
};

// File and count stand in the middle of the bar, beside the buttons when the middle is too narrow. Then the
// count gives way first.
TopBarLayout layoutTopBar(const TopBarMetrics &metrics, QSize bar);

// The bar above the page: which file is shown and how many years it holds, another day, and the way from the
// page to its source and back.
class TopBarView : public QWidget {
    Q_OBJECT

public:
    struct Model {
        QString fileName;
        QString sectionCount;
        QString sourceLabel;
    };

    explicit TopBarView(QWidget *parent = nullptr);

    std::function<void()> onRandom;
    std::function<void()> onToggleSource;

    using QWidget::update;
    void update(const Model &model);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    TopBarLayout currentLayout() const;
    void layOut();

    ElidedLabel *m_fileLabel;
    ElidedLabel *m_countLabel;
    ChromeButton *m_randomButton;
    ChromeButton *m_sourceButton;
};

} // namespace diary

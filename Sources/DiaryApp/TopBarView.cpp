// SPDX-License-Identifier: MIT
#include <DiaryApp/ChromeButton.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/TopBarView.h>

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace diary {

namespace {

constexpr int labelSpacing = 10;
constexpr int buttonSpacing = 4;
constexpr int trailingMargin = 12;
// Only in a narrow bar do the labels come this near to its edge and to the buttons.
constexpr int labelMargin = 14;
// Less than this says nothing of a count.
constexpr int smallestCount = 30;

QRect centredVertically(int x, QSize size, int height) {
    return {QPoint(x, (height - size.height()) / 2), size};
}

} // namespace

TopBarLayout layoutTopBar(const TopBarMetrics &metrics, QSize bar) {
    TopBarLayout layout;
    const int sourceLeft = bar.width() - trailingMargin - metrics.source.width();
    const int randomLeft = sourceLeft - buttonSpacing - metrics.random.width();
    layout.source = centredVertically(sourceLeft, metrics.source, bar.height());
    layout.random = centredVertically(randomLeft, metrics.random, bar.height());
    layout.rule = QRect(0, bar.height() - 1, bar.width(), 1);

    const int room = std::max(0, randomLeft - 2 * labelMargin);
    const int file = std::min(metrics.file.width(), room);
    const int count = std::min(metrics.count.width(), room - file - labelSpacing);
    const bool showsCount = count >= std::min(metrics.count.width(), smallestCount);
    const int width = showsCount ? file + labelSpacing + count : file;
    const int left = std::clamp((bar.width() - width) / 2, labelMargin, labelMargin + room - width);
    layout.file = centredVertically(left, {file, metrics.file.height()}, bar.height());
    if (showsCount)
        layout.count =
            centredVertically(left + file + labelSpacing, {count, metrics.count.height()}, bar.height());
    return layout;
}

TopBarView::TopBarView(QWidget *parent) : QWidget(parent) {
    m_fileLabel =
        new ElidedLabel(Theme::mono(12.5, Theme::Weight::Medium), Theme::inkMed(), Qt::ElideMiddle, this);
    m_fileLabel->setObjectName(QStringLiteral("fileLabel"));
    m_countLabel = new ElidedLabel(Theme::system(11.5), Theme::statusText(), Qt::ElideRight, this);
    m_countLabel->setObjectName(QStringLiteral("countLabel"));

    ChromeButton::Style style{Theme::system(12), Theme::chromeText(), Theme::inkTitle(), 18, 10};
    m_randomButton = new ChromeButton(L("Random Day"), style, this);
    m_randomButton->setObjectName(QStringLiteral("randomButton"));
    m_randomButton->onClick = [this] {
        if (onRandom)
            onRandom();
    };
    style.font = Theme::mono(12);
    m_sourceButton = new ChromeButton(L("Source"), style, this);
    m_sourceButton->setObjectName(QStringLiteral("sourceButton"));
    m_sourceButton->onClick = [this] {
        if (onToggleSource)
            onToggleSource();
    };
    layOut();
}

void TopBarView::update(const Model &model) {
    m_fileLabel->setText(model.fileName);
    m_countLabel->setText(model.sectionCount);
    m_sourceButton->setText(model.sourceLabel);
    layOut();
}

void TopBarView::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), Theme::bar());
    painter.fillRect(currentLayout().rule, Theme::border());
}

void TopBarView::resizeEvent(QResizeEvent *) {
    layOut();
}

TopBarLayout TopBarView::currentLayout() const {
    return layoutTopBar({m_fileLabel->sizeHint(), m_countLabel->sizeHint(), m_randomButton->sizeHint(),
                         m_sourceButton->sizeHint()},
                        size());
}

void TopBarView::layOut() {
    const auto layout = currentLayout();
    m_fileLabel->setGeometry(layout.file);
    m_countLabel->setGeometry(layout.count);
    m_randomButton->setGeometry(layout.random);
    m_sourceButton->setGeometry(layout.source);
}

} // namespace diary

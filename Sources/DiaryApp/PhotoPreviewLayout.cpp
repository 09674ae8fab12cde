// SPDX-License-Identifier: MIT
#include <DiaryApp/PhotoPreviewLayout.h>

#include <QStyle>

#include <algorithm>

namespace diary {

namespace {

constexpr int cardMargin = 36;
constexpr int barHeight = 46;
constexpr int barPadding = 12;
constexpr int titlePadding = 20;
constexpr int gap = 8;
constexpr int pictureMargin = 24;

QSize pictureSize(QSize proportions, PhotoEnlarging enlarging, QSize area) {
    if (proportions.isEmpty() || area.isEmpty())
        return {};
    const bool fits = proportions.width() <= area.width() && proportions.height() <= area.height();
    if (fits && enlarging == PhotoEnlarging::UpToItsPixels)
        return proportions;
    // The narrowest panorama is still a line.
    return proportions.scaled(area, Qt::KeepAspectRatio).expandedTo({1, 1});
}

} // namespace

QRect centred(QSize size, const QRect &area) {
    return {area.left() + (area.width() - size.width()) / 2, area.top() + (area.height() - size.height()) / 2,
            size.width(), size.height()};
}

PhotoPreviewLayout layoutPhotoPreview(QSize page, const PhotoPreviewMetrics &metrics, QSize proportions,
                                      PhotoEnlarging enlarging, Qt::LayoutDirection direction) {
    PhotoPreviewLayout layout;
    layout.card =
        QRect(QPoint(0, 0), page).adjusted(cardMargin, cardMargin, -cardMargin, -cardMargin).normalized();
    layout.bar = QRect(layout.card.topLeft(), QSize(layout.card.width(), barHeight));
    const auto inBar = [&](int x, QSize size) {
        return QRect(QPoint(x, layout.bar.top() + (barHeight - size.height()) / 2), size);
    };

    int right = layout.bar.right() + 1 - barPadding;
    const auto placeLast = [&](QSize size) {
        right -= size.width();
        const auto rect = inBar(right, size);
        right -= gap;
        return rect;
    };
    layout.close = placeLast(metrics.iconButton);
    layout.showInFolder = placeLast(metrics.showInFolder);
    layout.openInViewer = placeLast(metrics.openInViewer);

    // In the middle, where they stay whatever is shown.
    const int stepsWidth = 2 * metrics.iconButton.width() + metrics.position.width() + 2 * gap;
    int x = std::min(layout.bar.left() + (layout.bar.width() - stepsWidth) / 2, right - gap - stepsWidth);
    const int stepsLeft = x;
    layout.previous = inBar(x, metrics.iconButton);
    x += metrics.iconButton.width() + gap;
    layout.position = inBar(x, metrics.position);
    x += metrics.position.width() + gap;
    layout.next = inBar(x, metrics.iconButton);

    const int titleLeft = layout.bar.left() + titlePadding;
    const int titleRoom = std::max(0, stepsLeft - titlePadding - titleLeft);
    layout.title = inBar(titleLeft, {std::min(metrics.titleWidth, titleRoom), metrics.titleHeight});

    layout.pictureArea =
        layout.card.adjusted(pictureMargin, barHeight + pictureMargin, -pictureMargin, -pictureMargin);
    layout.picture =
        centred(pictureSize(proportions, enlarging, layout.pictureArea.size()), layout.pictureArea);
    if (direction == Qt::RightToLeft) {
        for (auto *rect : {&layout.title, &layout.previous, &layout.position, &layout.next,
                           &layout.openInViewer, &layout.showInFolder, &layout.close})
            *rect = QStyle::visualRect(direction, layout.bar, *rect);
    }
    return layout;
}

} // namespace diary

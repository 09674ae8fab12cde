// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QSize>
#include <Qt>

namespace diary {

// What the parts of the bar above the picture take.
struct PhotoPreviewMetrics {
    QSize iconButton;
    QSize position; // the widest of this preview
    QSize openInViewer;
    QSize showInFolder;
    int titleWidth = 0; // of the whole title
    int titleHeight = 0;
};

// Whether a picture may be shown larger than it is.
enum class PhotoEnlarging {
    UpToItsPixels, // each pixel of the picture takes at most one logical pixel
    ToFill,        // it stands for a larger one
};

// A card with a bar and the picture below it, over a dimmed page. Where the bar is too narrow for all, the
// title is what makes way.
struct PhotoPreviewLayout {
    QRect card;
    QRect bar;
    QRect title;
    QRect previous;
    QRect position;
    QRect next;
    QRect openInViewer;
    QRect showInFolder;
    QRect close;
    QRect pictureArea; // where a picture may stand
    QRect picture;     // in its proportions, in the middle of the area; empty when there is none
};

// The page is what the panel covers, in logical pixels.
PhotoPreviewLayout layoutPhotoPreview(QSize page, const PhotoPreviewMetrics &metrics, QSize proportions,
                                      PhotoEnlarging enlarging, Qt::LayoutDirection direction);

// In the middle of the area.
QRect centred(QSize size, const QRect &area);

} // namespace diary

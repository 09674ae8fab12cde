// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayPhoto.h>
#include <DiaryApp/HoverView.h>
#include <DiaryApp/TextLine.h>

#include <QImage>
#include <QRect>
#include <QSize>

#include <functional>

namespace diary {

// What the texts below a photo take.
struct PhotoTileMetrics {
    QSize name;
    QSize time;
    int labelHeight = 0; // of a line of their font
};

// Where everything stands within a tile.
struct PhotoTileLayout {
    static constexpr int labelTop = 7; // below the image
    static constexpr int labelGap = 8; // between the texts, at least

    QRect image;
    QRect name;
    QRect time; // on the name's baseline
};

// As high as a tile has to be for an image of that height.
int photoTileHeight(int labelHeight, int imageHeight);

PhotoTileLayout layoutPhotoTile(const PhotoTileMetrics &metrics, QSize tile);

// The largest part of the image, in its middle, that is half as wide again as it is high; lengths are rounded
// to whole pixels. An image that has these proportions but for half a hundredth is returned as it is.
QImage cropTo3x2(const QImage &image);
// That part, as a rectangle of the image.
QRect cropRectTo3x2(QSize image);

// One photo among others: cropped, with its file name and time below. An empty box stands for an image that
// could not be had.
class PhotoTileView : public HoverView {
    Q_OBJECT

public:
    explicit PhotoTileView(QWidget *parent = nullptr);

    // Costs little when nothing changed.
    using QWidget::update;
    void update(const DayPhoto &photo);

    // It was painted as quickly as possible; `sharpen` makes it better. Not called where that is done
    // already.
    std::function<void()> onPaintedRoughly;

    // Whether nothing is left to do for the image at the size at which it was painted last.
    bool isSharp() const;
    // Scales it with care, which takes some milliseconds, and paints it again.
    void sharpen();

    const DayPhoto &photo() const { return m_photo; }
    PhotoTileLayout currentLayout() const;
    static int labelHeight();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintImage(QPainter &painter, const QRect &bounds);
    void paintBorder(QPainter &painter, const QRect &bounds) const;

    DayPhoto m_photo;
    TextLine m_name;
    TextLine m_time;
    QSize m_paintedSize; // of the image when it was painted last, in pixels of the screen
    QImage m_scaled;     // to such a size, cropped
};

} // namespace diary

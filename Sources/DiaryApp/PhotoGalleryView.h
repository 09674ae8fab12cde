// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/DayPhoto.h>

#include <QPointer>
#include <QRect>
#include <QSize>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace diary {

class ElidedLabel;
class PhotoTileView;
class ThemeLabel;

// What the texts of the gallery take.
struct PhotoGalleryMetrics {
    QSize mark;
    int captionHeight = 0;
    int tileLabelHeight = 0;
};

// Where everything stands in the gallery. Nothing stands anywhere, and the height is 0, without photos.
struct PhotoGalleryLayout {
    static constexpr int tilesInRow = 3;
    static constexpr int gutter = 76;        // the mark ends here
    static constexpr int contentInset = 100; // the caption and the tiles begin here

    QRect mark;
    QRect caption;
    // Row by row. The tiles of a row differ in width by one pixel at most; those one below the other do not.
    std::vector<QRect> tiles;
    int height = 0;
};

PhotoGalleryLayout layoutPhotoGallery(std::size_t photoCount, const PhotoGalleryMetrics &metrics, int width);

// The photos of a day below its entry, three in a row.
//
// The tiles have the keyboard by Tab; the arrow keys, Home and End go from one to the other. An update keeps
// the keyboard at the place that had it.
class PhotoGalleryView : public QWidget {
    Q_OBJECT

public:
    struct Model {
        std::vector<DayPhoto> photos;
        std::optional<QString> caption;
        bool operator==(const Model &) const = default;
    };

    explicit PhotoGalleryView(QWidget *parent = nullptr);

    // A tile was clicked.
    std::function<void(std::size_t index)> onOpenPhoto;
    // The height for a width is another one now.
    std::function<void()> onHeightChanged;
    // The rectangle, in the gallery, of a tile that was given the keyboard.
    std::function<void(const QRect &tile)> onTileFocused;

    // Shows these and nothing else. What did not change stays as it is.
    void setPhotos(const std::vector<DayPhoto> &photos, const std::optional<QString> &caption);

    const Model &model() const { return m_model; }
    // In the order of the photos.
    const std::vector<PhotoTileView *> &tileViews() const { return m_tileViews; }
    // Where the image of a tile is on the screen, in logical pixels; null when there is no such tile.
    QRect sourceFrameOnScreen(std::size_t index) const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

    // The widget, one that takes the keyboard, after which the Tab key comes to the first tile.
    void setTabPredecessor(QWidget *widget);

    // For when the gallery was moved under a pointer that stood still.
    void recheckPointer();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    PhotoGalleryLayout layoutForWidth(int width) const;
    PhotoTileView *tile(std::size_t index);
    void removeTiles(std::size_t count);
    void bringInTabOrder();
    void sharpenNext();
    void layOut();
    std::optional<std::size_t> focusedIndex() const;

    Model m_model;
    ThemeLabel *m_markLabel;
    ElidedLabel *m_captionLabel;
    std::vector<PhotoTileView *> m_tileViews;
    QPointer<QWidget> m_tabPredecessor;
    // Between one image and the next there is time for what the user does.
    QTimer m_sharpening;
};

} // namespace diary

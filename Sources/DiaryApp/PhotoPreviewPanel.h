// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/PhotoPreviewLayout.h>

#include <QImage>
#include <QPixmap>
#include <QPointer>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QWidget>

#include <chrono>
#include <cstddef>
#include <functional>

class QLabel;
class QVariantAnimation;

namespace diary {

class ChromeButton;
class ElidedLabel;
class IconButton;

// Shows one of several photos large over the page, which is dimmed meanwhile. It covers its parent, keeps the
// keyboard while it is open and gives it back, and lets none of the window's shortcuts through but the one
// that quits. Shows nothing until it is opened.
class PhotoPreviewPanel : public QWidget {
    Q_OBJECT

public:
    struct Model {
        QImage image;      // null when there is none
        QSize proportions; // of the picture, in its pixels; those of the image, but for rounding
        PhotoEnlarging enlarging = PhotoEnlarging::UpToItsPixels;
        QString title;
        std::size_t index = 0;
        std::size_t count = 0;
        bool hasFile = false; // that others can open

        bool operator==(const Model &) const = default;
    };

    explicit PhotoPreviewPanel(QWidget *parent);

    // Called with the index of the photo that is wanted, always one of the photos.
    std::function<void(std::size_t)> onShow;
    // The preview is to end. Nothing was closed yet.
    std::function<void()> onClose;
    std::function<void()> onOpenInViewer;
    std::function<void()> onShowInFolder;
    // Nothing is shown any more. May destroy the panel later, not now.
    std::function<void()> onClosed;

    using QWidget::update;
    void update(const Model &model);
    const Model &model() const { return m_model; }

    // Zero for none.
    void setZoomDuration(std::chrono::milliseconds duration);

    // Zooms out of a rectangle of the screen; from where the picture will be when there is none.
    void zoomIn(const QRect &fromOnScreen);
    // Zooms back; the keyboard is given back at once.
    void zoomOut(const QRect &toOnScreen);
    // Closes at once.
    void dismiss();

    // From zoomIn until zoomOut or dismiss.
    bool isOpen() const { return m_phase == Phase::Opening || m_phase == Phase::Open; }
    bool isZooming() const { return m_phase == Phase::Opening || m_phase == Phase::Closing; }

    PhotoPreviewLayout currentLayout() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    bool event(QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    enum class Phase { Closed, Opening, Open, Closing };

    PhotoPreviewMetrics metrics() const;
    void layOut();
    void showPicture();
    bool isOutside(const QPoint &position) const;
    void wishStep(int step);
    void wish(std::size_t index);
    QPixmap cardWithoutPicture();
    void startZoom(const QRect &tileOnScreen, Phase phase);
    void zoomEnded();
    void setPartsVisible(bool visible);
    void giveKeyboardBack();
    void paintZoom(QPainter &painter) const;

    Model m_model;
    Phase m_phase = Phase::Closed;
    ElidedLabel *m_title = nullptr;
    ElidedLabel *m_position = nullptr;
    IconButton *m_previous = nullptr;
    IconButton *m_next = nullptr;
    IconButton *m_close = nullptr;
    ChromeButton *m_openInViewer = nullptr;
    ChromeButton *m_showInFolder = nullptr;
    QLabel *m_picture = nullptr;
    QPixmap m_scaled;        // the picture at its size on the screen
    qint64 m_scaledFrom = 0; // the image it was made from
    bool m_isPressedOutside = false;
    QPointer<QWidget> m_keyboardBefore;

    QVariantAnimation *m_zoom = nullptr; // 0 at the tile, 1 at the place of the picture
    QRectF m_tile;                       // where the zoom starts or ends
    QPixmap m_card;                      // while zooming
};

} // namespace diary

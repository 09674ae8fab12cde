// SPDX-License-Identifier: MIT
#include <DiaryApp/PhotoTileView.h>
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>

#include <QBrush>
#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace diary {

namespace {

constexpr double cornerRadius = 6;
constexpr double proportions = 1.5;
constexpr double tolerance = 0.005;
constexpr double focusRingWidth = 2;

QFont labelFont() {
    return Theme::mono(10.5);
}

} // namespace

int photoTileHeight(int labelHeight, int imageHeight) {
    return imageHeight + PhotoTileLayout::labelTop + labelHeight;
}

PhotoTileLayout layoutPhotoTile(const PhotoTileMetrics &metrics, QSize tile) {
    PhotoTileLayout layout;
    const int imageHeight = std::max(0, tile.height() - photoTileHeight(metrics.labelHeight, 0));
    layout.image = {0, 0, tile.width(), imageHeight};
    const int y = imageHeight + PhotoTileLayout::labelTop;
    const int timeWidth = std::min(metrics.time.width(), tile.width());
    layout.time = {tile.width() - timeWidth, y, timeWidth, metrics.labelHeight};
    const int room = std::max(0, layout.time.x() - PhotoTileLayout::labelGap);
    layout.name = {0, y, std::min(metrics.name.width(), room), metrics.labelHeight};
    return layout;
}

QRect cropRectTo3x2(QSize image) {
    if (image.isEmpty())
        return {};
    const double width = image.width();
    const double height = image.height();
    const double ratio = width / height;
    if (std::abs(ratio - proportions) < tolerance)
        return {QPoint(), image};
    QSizeF size(width, width / proportions);
    if (ratio > proportions)
        size = {height * proportions, height};
    // A picture one pixel high still has one.
    const QSize whole = size.toSize().expandedTo({1, 1});
    return {QPoint((image.width() - whole.width()) / 2, (image.height() - whole.height()) / 2), whole};
}

QImage cropTo3x2(const QImage &image) {
    const auto crop = cropRectTo3x2(image.size());
    return crop == image.rect() ? image : image.copy(crop);
}

PhotoTileView::PhotoTileView(QWidget *parent)
    : HoverView(parent),
      m_name{QString(), labelFont(), Qt::ElideMiddle},
      m_time{QString(), labelFont(), Qt::ElideRight} {}

int PhotoTileView::labelHeight() {
    return QFontMetrics(labelFont()).height();
}

void PhotoTileView::update(const DayPhoto &photo) {
    forgetPointer();
    if (photo == m_photo)
        return;
    if (photo.assetIdentifier != m_photo.assetIdentifier || photo.filename != m_photo.filename)
        forgetPress();
    m_photo = photo;
    m_name.text = photo.filename;
    m_time.text = photo.timeText;
    m_paintedSize = {};
    m_scaled = {};
    setAccessibleName(photo.filename + QLatin1Char(' ') + photo.timeText);
    update();
}

PhotoTileLayout PhotoTileView::currentLayout() const {
    return layoutPhotoTile({m_name.naturalSize(), m_time.naturalSize(), labelHeight()}, size());
}

bool PhotoTileView::event(QEvent *event) {
    if (event->type() != QEvent::ToolTip)
        return HoverView::event(event);
    // The whole name, where only part of it can be read.
    if (m_name.naturalSize().width() > currentLayout().name.width())
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                           onOneLine(m_photo.filename).toHtmlEscaped(), this);
    else
        event->ignore();
    return true;
}

void PhotoTileView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const auto layout = currentLayout();
    paintImage(painter, layout.image);
    paintBorder(painter, layout.image);
    m_name.paint(painter, layout.name, Theme::faint());
    m_time.paint(painter, layout.time, Theme::faint());
}

bool PhotoTileView::isSharp() const {
    return m_paintedSize.isEmpty() || m_scaled.size() == m_paintedSize;
}

void PhotoTileView::sharpen() {
    if (isSharp())
        return;
    m_scaled =
        cropTo3x2(m_photo.image).scaled(m_paintedSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    m_scaled.setDevicePixelRatio(1);
    update();
}

void PhotoTileView::paintImage(QPainter &painter, const QRect &bounds) {
    if (bounds.isEmpty())
        return;
    // To the middle of the border, so that nothing of it shows outside at the corners.
    constexpr double inset = 0.5;
    const auto inside = QRectF(bounds).adjusted(inset, inset, -inset, -inset);
    const auto paint = [&](const QBrush &brush) {
        painter.setBrush(brush);
        painter.drawRoundedRect(inside, cornerRadius - inset, cornerRadius - inset);
    };
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    if (m_photo.image.isNull() || m_photo.image.hasAlphaChannel())
        paint(Theme::cardBg());
    if (!m_photo.image.isNull()) {
        m_paintedSize = (QSizeF(bounds.size()) * painter.deviceTransform().m11()).toSize();
        // Rough for a few milliseconds only, and all tiles at once: what is quickest.
        painter.setRenderHint(QPainter::SmoothPixmapTransform, isSharp());
        auto image = isSharp() ? m_scaled : m_photo.image;
        const auto crop = isSharp() ? image.rect() : cropRectTo3x2(image.size());
        image.setDevicePixelRatio(1);
        // As a brush, which gives the corners smooth edges.
        QBrush brush(image);
        auto transform = QTransform::fromTranslate(bounds.x(), bounds.y());
        transform.scale(static_cast<double>(bounds.width()) / crop.width(),
                        static_cast<double>(bounds.height()) / crop.height());
        transform.translate(-crop.x(), -crop.y());
        brush.setTransform(transform);
        paint(brush);
        if (!isSharp() && onPaintedRoughly)
            onPaintedRoughly();
    }
    painter.restore();
}

void PhotoTileView::paintBorder(QPainter &painter, const QRect &bounds) const {
    paintBorderedBox(painter, bounds, cornerRadius, Qt::transparent,
                     isHovered() ? Theme::cardBorderHover() : Theme::cardBorder());
    if (!hasFocus())
        return;
    // A line of paper inside the ring keeps it apart from a photo of its own colour.
    const auto inner =
        QRectF(bounds).adjusted(focusRingWidth, focusRingWidth, -focusRingWidth, -focusRingWidth);
    paintBorderedBox(painter, inner, cornerRadius - focusRingWidth, Qt::transparent, Theme::paper());
    paintFocusRing(painter, bounds, cornerRadius);
}

} // namespace diary

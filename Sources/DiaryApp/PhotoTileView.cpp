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

QImage cropTo3x2(const QImage &image) {
    if (image.isNull())
        return {};
    const double width = image.width();
    const double height = image.height();
    const double ratio = width / height;
    if (std::abs(ratio - proportions) < tolerance)
        return image;
    QSizeF size(width, width / proportions);
    if (ratio > proportions)
        size = {height * proportions, height};
    // A picture one pixel high still has one.
    const QSize whole = size.toSize().expandedTo({1, 1});
    return image.copy((image.width() - whole.width()) / 2, (image.height() - whole.height()) / 2,
                      whole.width(), whole.height());
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
    m_name.paint(painter, layout.name, Theme::faint());
    m_time.paint(painter, layout.time, Theme::faint());
}

// Once for each size. What is left of a transparent image shows the box.
void PhotoTileView::scaleImage(QSize size, double pixelRatio) {
    const QSize pixels = (QSizeF(size) * pixelRatio).toSize().expandedTo({1, 1});
    if (m_scaled.size() == pixels)
        return;
    auto scaled = cropTo3x2(m_photo.image).scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(1);
    m_scaled = QImage(pixels, QImage::Format_RGB32);
    m_scaled.fill(Theme::cardBg());
    QPainter(&m_scaled).drawImage(0, 0, scaled);
}

void PhotoTileView::paintImage(QPainter &painter, const QRect &bounds) {
    if (bounds.isEmpty())
        return;
    // To the middle of the border, so that nothing of it shows outside at the corners.
    constexpr double inset = 0.5;
    const auto inside = QRectF(bounds).adjusted(inset, inset, -inset, -inset);
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    if (m_photo.image.isNull()) {
        painter.setBrush(Theme::cardBg());
    } else {
        scaleImage(bounds.size(), painter.device()->devicePixelRatioF());
        // As a brush, which gives the corners smooth edges.
        QBrush brush(m_scaled);
        brush.setTransform(QTransform::fromScale(static_cast<double>(bounds.width()) / m_scaled.width(),
                                                 static_cast<double>(bounds.height()) / m_scaled.height()));
        painter.setBrushOrigin(bounds.topLeft());
        painter.setBrush(brush);
    }
    painter.drawRoundedRect(inside, cornerRadius - inset, cornerRadius - inset);
    painter.restore();

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

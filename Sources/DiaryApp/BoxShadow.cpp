// SPDX-License-Identifier: MIT
#include <DiaryApp/BoxShadow.h>

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <tuple>

namespace diary {

namespace {

// A blurred edge falls off like the integral of a bell curve; one ring for each pixel shows it well enough.
int ringCount(const BoxShadow &shadow) {
    return static_cast<int>(std::ceil(2.5 * shadow.radius + shadow.offset - 0.5));
}

// The first ones lie below the box, where the shadow's own offset hides them.
int firstDistance(const BoxShadow &shadow) {
    return -shadow.offset;
}

QColor ringColor(const BoxShadow &shadow, int ring) {
    const double distance = firstDistance(shadow) + 0.5 + ring;
    QColor black(Qt::black);
    black.setAlphaF(
        static_cast<float>(shadow.opacity * std::erfc(distance / (shadow.radius * std::numbers::sqrt2)) / 2));
    return black;
}

void paintRings(QPainter &painter, const QRectF &shadowed, double cornerRadius, const BoxShadow &shadow) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    for (int ring = 0; ring < ringCount(shadow); ++ring) {
        const double distance = firstDistance(shadow) + 0.5 + ring;
        painter.setPen(QPen(ringColor(shadow, ring), 1));
        painter.drawRoundedRect(shadowed.adjusted(-distance, -distance, distance, distance),
                                cornerRadius + distance, cornerRadius + distance);
    }
    painter.restore();
}

// What one ring or another paints in a square at a corner.
struct Corners {
    int size = 0;                 // of a square, in logical pixels
    std::array<QImage, 4> images; // top left, top right, bottom left, bottom right
};

int outermostDistance(const BoxShadow &shadow) {
    return firstDistance(shadow) + ringCount(shadow);
}

const Corners &cornersOf(const BoxShadow &shadow, double cornerRadius, int scale) {
    using Key = std::tuple<double, double, int, double, int>;
    static std::map<Key, Corners> known;
    auto &corners = known[{shadow.opacity, shadow.radius, shadow.offset, cornerRadius, scale}];
    if (corners.size > 0)
        return corners;
    const int outside = outermostDistance(shadow);
    corners.size = outside + static_cast<int>(std::ceil(cornerRadius)) + 1;
    // Of a box so large that a square holds nothing of the other corners.
    const QRect outer(0, 0, 3 * corners.size, 3 * corners.size);
    const int last = outer.width() - corners.size;
    const std::array places = {QPoint(0, 0), QPoint(last, 0), QPoint(0, last), QPoint(last, last)};
    for (std::size_t index = 0; index < places.size(); ++index) {
        QImage image(QSize(corners.size, corners.size) * scale, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.translate(-places.at(index));
        paintRings(painter, outer.adjusted(outside, outside, -outside, -outside), cornerRadius, shadow);
        painter.end();
        corners.images.at(index) = std::move(image);
    }
    return corners;
}

// The painting engine splits a shape of many lines among threads and waits for them, which takes far longer
// than to fill these few pixels.
void fillColumn(QPainter &painter, const QRect &column, const QColor &color) {
    constexpr int mostLines = 32;
    for (int top = column.top(); top <= column.bottom(); top += mostLines)
        painter.fillRect(column.left(), top, column.width(), std::min(mostLines, column.bottom() + 1 - top),
                         color);
}

} // namespace

int BoxShadow::reach() const {
    return outermostDistance(*this) + offset;
}

void paintBoxShadow(QPainter &painter, const QRect &box, double cornerRadius, const BoxShadow &shadow) {
    const auto shadowed = box.translated(0, shadow.offset);
    const double scale = painter.device()->devicePixelRatioF();
    const int outside = outermostDistance(shadow);
    const auto outer = shadowed.adjusted(-outside, -outside, outside, outside);
    const bool isWhole = scale == std::floor(scale) && painter.transform().type() <= QTransform::TxTranslate;
    const auto *corners = isWhole ? &cornersOf(shadow, cornerRadius, static_cast<int>(scale)) : nullptr;
    // Else the corners would lie on one another, or between pixels.
    if (!corners || outer.width() < 2 * corners->size || outer.height() < 2 * corners->size) {
        paintRings(painter, shadowed, cornerRadius, shadow);
        return;
    }

    const int size = corners->size;
    const int right = outer.right() + 1 - size;
    const int bottom = outer.bottom() + 1 - size;
    painter.drawImage(outer.topLeft(), corners->images[0]);
    painter.drawImage(QPoint(right, outer.top()), corners->images[1]);
    painter.drawImage(QPoint(outer.left(), bottom), corners->images[2]);
    painter.drawImage(QPoint(right, bottom), corners->images[3]);
    for (int ring = 0; ring < ringCount(shadow); ++ring) {
        const auto color = ringColor(shadow, ring);
        const int inset = outside - firstDistance(shadow) - ring - 1;
        const auto line = outer.adjusted(inset, inset, -inset, -inset);
        const int width = outer.width() - 2 * size;
        const int height = outer.height() - 2 * size;
        painter.fillRect(outer.left() + size, line.top(), width, 1, color);
        painter.fillRect(outer.left() + size, line.bottom(), width, 1, color);
        fillColumn(painter, {line.left(), outer.top() + size, 1, height}, color);
        fillColumn(painter, {line.right(), outer.top() + size, 1, height}, color);
    }
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/BoxShadow.h>

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace diary {
namespace {

constexpr double cornerRadius = 8;
constexpr BoxShadow shadow{.opacity = 0.1, .radius = 4, .offset = 1};
constexpr QSize canvas(200, 300);

QImage pictureOf(const QRect &box, double scale = 1, const BoxShadow &cast = shadow) {
    QImage picture((QSizeF(canvas) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paintBoxShadow(painter, box, cornerRadius, cast);
    return picture;
}

// As a blurred edge falls off, so far away from it.
int alphaAt(double distance) {
    return static_cast<int>(
        std::lround(255 * shadow.opacity * std::erfc(distance / (shadow.radius * std::numbers::sqrt2)) / 2));
}

TEST(BoxShadow, fadesAlongEverySideAndFallsDownwards) {
    const QRect box(30, 30, 120, 200);
    const auto middle = box.center();
    for (const int scale : {1, 2}) {
        const auto picture = pictureOf(box, scale);
        const auto alpha = [&](int x, int y) { return qAlpha(picture.pixel(x * scale, y * scale)); };
        for (int step = 0; step < 10; ++step) {
            SCOPED_TRACE(step);
            EXPECT_NEAR(alpha(middle.x(), box.bottom() + 2 + step), alphaAt(step + 0.5), 1);
            EXPECT_NEAR(alpha(middle.x(), box.top() - step), alphaAt(step + 0.5), 1);
            EXPECT_NEAR(alpha(box.right() + 1 + step, middle.y()), alphaAt(step + 0.5), 1);
            EXPECT_NEAR(alpha(box.left() - 1 - step, middle.y()), alphaAt(step + 0.5), 1);
        }
    }
}

TEST(BoxShadow, goesNoFurtherThanItsReach) {
    const QRect box(30, 30, 120, 200);
    const auto picture = pictureOf(box);
    const auto around = box.adjusted(-shadow.reach(), -shadow.reach(), shadow.reach(), shadow.reach());
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (around.contains(x, y))
                continue;
            ASSERT_EQ(qAlpha(picture.pixel(x, y)), 0) << x << ' ' << y;
        }
    }
}

// A box that is too small for corners that were kept has its shadow drawn in one go.
TEST(BoxShadow, looksTheSameHoweverLargeTheBox) {
    const QRect large(40, 40, 120, 200);
    const QRect small(40, 40, 20, 20);
    const auto ofLarge = pictureOf(large);
    const auto ofSmall = pictureOf(small);
    const int outside = shadow.reach() + 1;
    for (int y = 0; y < outside + 10; ++y) {
        for (int x = 0; x < outside + 10; ++x) {
            const QPoint topLeft(40 - outside + x, 40 - outside + y);
            EXPECT_LE(std::abs(qAlpha(ofLarge.pixel(topLeft)) - qAlpha(ofSmall.pixel(topLeft))), 1)
                << x << ' ' << y;
            const auto fromEnd = [&](const QRect &box) {
                return QPoint(box.right() + outside - x, box.bottom() + outside - y);
            };
            EXPECT_LE(std::abs(qAlpha(ofLarge.pixel(fromEnd(large))) - qAlpha(ofSmall.pixel(fromEnd(small)))),
                      1)
                << x << ' ' << y;
        }
    }
}

TEST(BoxShadow, isTheSameOnAScreenOfFractionalScale) {
    const QRect box(30, 30, 120, 200);
    const auto picture = pictureOf(box, 1.5);
    const auto middle = box.center();
    for (const int step : {0, 2, 4}) {
        const auto y = static_cast<int>((box.bottom() + 2 + step + 0.5) * 1.5);
        EXPECT_NEAR(qAlpha(picture.pixel(static_cast<int>(middle.x() * 1.5), y)), alphaAt(step + 0.5), 2);
    }
}

TEST(BoxShadow, leavesThePainterAsItWas) {
    QImage picture(canvas, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    painter.setPen(Qt::red);
    painter.setBrush(Qt::green);
    for (const auto &box : {QRect(30, 30, 120, 200), QRect(30, 30, 10, 10)}) {
        paintBoxShadow(painter, box, cornerRadius, shadow);
        EXPECT_EQ(painter.pen().color(), QColor(Qt::red));
        EXPECT_EQ(painter.brush().color(), QColor(Qt::green));
        EXPECT_FALSE(painter.testRenderHint(QPainter::Antialiasing));
    }
}

} // namespace
} // namespace diary

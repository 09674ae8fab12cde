// SPDX-License-Identifier: MIT
#include <DiaryApp/Symbols.h>

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace diary {
namespace {

const char *const names[] = {"magnifyingglass", "square.grid.3x3", "gearshape",
                             "chevron.left",    "chevron.right",   "xmark"};

QImage drawn(const QString &name, int ratio) {
    QImage picture(QSize(20, 20) * ratio, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(10, 10);
    painter.fillPath(symbolOutline(name), Qt::black);
    return picture;
}

TEST(Symbols, areAboutAsLargeAsALetter) {
    for (const char *name : names) {
        const auto bounds = symbolOutline(QLatin1String(name)).boundingRect();
        EXPECT_GE(bounds.height(), 10) << name;
        EXPECT_LE(bounds.height(), 15) << name;
        EXPECT_LE(bounds.width(), 15) << name;
        EXPECT_NEAR(bounds.center().x(), 0, 0.5) << name;
        EXPECT_NEAR(bounds.center().y(), 0, 0.5) << name;
    }
}

TEST(Symbols, differFromOneAnother) {
    for (const char *name : names) {
        for (const char *other : names) {
            const bool isSame = drawn(QLatin1String(name), 1) == drawn(QLatin1String(other), 1);
            EXPECT_EQ(isSame, name == other) << name << ' ' << other;
        }
    }
}

TEST(Symbols, areEmptyForAnUnknownName) {
    EXPECT_TRUE(symbolOutline(QStringLiteral("no.such.symbol")).isEmpty());
}

TEST(Symbols, drawTheGridOnWholePixels) {
    for (const int ratio : {1, 2}) {
        const auto picture = drawn(QStringLiteral("square.grid.3x3"), ratio);
        int painted = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const int alpha = qAlpha(picture.pixel(x, y));
                EXPECT_TRUE(alpha == 0 || alpha == 255) << x << ' ' << y;
                painted += alpha == 255;
            }
        }
        // Nine squares, each 4 by 4 with a hole of 2 by 2.
        EXPECT_EQ(painted, 9 * 12 * ratio * ratio);
    }
}

TEST(Symbols, openTheGearAndTheGlassInTheMiddle) {
    for (const int ratio : {1, 2}) {
        EXPECT_LT(qAlpha(drawn(QStringLiteral("magnifyingglass"), ratio).pixel(QPoint(8, 8) * ratio)), 40);
        const auto gear = drawn(QStringLiteral("gearshape"), 4);
        EXPECT_EQ(qAlpha(gear.pixel(40, 40)), 0);
    }
}

TEST(Symbols, pointTheChevronsApart) {
    EXPECT_EQ(drawn(QStringLiteral("chevron.left"), 2).mirrored(true, false),
              drawn(QStringLiteral("chevron.right"), 2));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/RoundedBox.h>
#include <DiaryApp/Theme.h>

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace diary {
namespace {

const QColor blank(0, 0, 0, 0);
const QRect bounds(5, 5, 30, 20);

QImage pictureOf(const std::function<void(QPainter &)> &paint) {
    QImage picture(40, 30, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(painter);
    return picture;
}

struct Row {
    const char *name;
    std::function<void(QPainter &)> paint;
    int lineWidth;
    QColor line;
    QColor inside;
};

std::vector<Row> rows() {
    return {
        {"filled", [](QPainter &painter) { paintFilledBox(painter, bounds, 6, Qt::red); }, 0, Qt::red,
         Qt::red},
        {"bordered", [](QPainter &painter) { paintBorderedBox(painter, bounds, 6, Qt::red, Qt::blue); }, 1,
         Qt::blue, Qt::red},
        {"ring", [](QPainter &painter) { paintFocusRing(painter, bounds, 6); }, 2, Theme::accent(), blank}};
}

TEST(RoundedBox, fillsItsBoundsAndNoPixelBeside) {
    for (const auto &row : rows()) {
        SCOPED_TRACE(row.name);
        const auto picture = pictureOf(row.paint);
        const auto middle = bounds.center();
        for (int x = 0; x < picture.width(); ++x) {
            const bool isOutside = x < bounds.left() || x > bounds.right();
            const bool isLine = x < bounds.left() + row.lineWidth || x > bounds.right() - row.lineWidth;
            EXPECT_EQ(picture.pixelColor(x, middle.y()), isOutside ? blank
                                                         : isLine  ? row.line
                                                                   : row.inside)
                << x;
        }
        for (int y = 0; y < picture.height(); ++y) {
            const bool isOutside = y < bounds.top() || y > bounds.bottom();
            const bool isLine = y < bounds.top() + row.lineWidth || y > bounds.bottom() - row.lineWidth;
            EXPECT_EQ(picture.pixelColor(middle.x(), y), isOutside ? blank
                                                         : isLine  ? row.line
                                                                   : row.inside)
                << y;
        }
    }
}

TEST(RoundedBox, hasRoundCornersWithSmoothEdges) {
    for (const auto &row : rows()) {
        SCOPED_TRACE(row.name);
        const auto picture = pictureOf(row.paint);
        EXPECT_EQ(picture.pixelColor(bounds.topLeft()), blank);
        EXPECT_EQ(picture.pixelColor(bounds.bottomRight()), blank);
        int partlyCovered = 0;
        for (int y = 0; y < 6; ++y) {
            for (int x = 0; x < 6; ++x) {
                const int alpha = qAlpha(picture.pixel(bounds.topLeft() + QPoint(x, y)));
                partlyCovered += alpha > 0 && alpha < 255;
            }
        }
        EXPECT_GT(partlyCovered, 3);
    }
}

TEST(RoundedBox, leavesThePainterAsItWas) {
    for (const auto &row : rows()) {
        SCOPED_TRACE(row.name);
        pictureOf([&](QPainter &painter) {
            painter.setPen(QPen(Qt::green, 3));
            painter.setBrush(Qt::yellow);
            row.paint(painter);
            EXPECT_EQ(painter.pen(), QPen(Qt::green, 3));
            EXPECT_EQ(painter.brush(), QBrush(Qt::yellow));
            EXPECT_FALSE(painter.testRenderHint(QPainter::Antialiasing));
        });
    }
}

} // namespace
} // namespace diary

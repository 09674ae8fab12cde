// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/PhotoTileView.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QFontMetrics>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

namespace diary {
namespace {

using testing::movePointerTo;
using testing::pictureOf;
using testing::pixelsOf;

constexpr PhotoTileMetrics sample{{90, 14}, {35, 14}, 14};

TEST(PhotoTileLayout, standsAsMeasured) {
    const auto layout = layoutPhotoTile(sample, {181, 142});
    EXPECT_EQ(layout.image, QRect(0, 0, 181, 121));
    EXPECT_EQ(layout.name, QRect(0, 128, 90, 14));
    EXPECT_EQ(layout.time, QRect(146, 128, 35, 14));
    EXPECT_EQ(photoTileHeight(14, 121), 142);
}

TEST(PhotoTileLayout, endsTheNameBeforeTheTime) {
    auto metrics = sample;
    metrics.name.setWidth(1000);
    EXPECT_EQ(layoutPhotoTile(metrics, {181, 142}).name, QRect(0, 128, 146 - 8, 14));
    metrics.time.setWidth(0);
    EXPECT_EQ(layoutPhotoTile(metrics, {181, 142}).name, QRect(0, 128, 181 - 8, 14));
}

TEST(PhotoTileLayout, staysInsideATileTooSmallForIt) {
    for (const int side : {0, 1, 10, 20}) {
        const QRect bounds(0, 0, side, std::max(side, 21));
        const auto layout = layoutPhotoTile(sample, bounds.size());
        for (const auto &rect : {layout.image, layout.name, layout.time})
            EXPECT_TRUE(rect.isEmpty() || bounds.contains(rect)) << side;
    }
}

QImage stripes(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x % 256, y % 256, (x / 256) * 16 + y / 256));
    }
    return image;
}

TEST(CropTo3x2, cutsTheMiddleOutOfATallerImage) {
    // 2666.67 pixels high, and 166.67 above.
    const auto image = stripes({4000, 3000});
    const auto cropped = cropTo3x2(image);
    EXPECT_EQ(cropped.size(), QSize(4000, 2667));
    EXPECT_EQ(cropped.pixel(0, 0), image.pixel(0, 166));
    EXPECT_EQ(cropped.pixel(3999, 2666), image.pixel(3999, 166 + 2666));
}

TEST(CropTo3x2, cutsTheMiddleOutOfAWiderImage) {
    const auto image = stripes({400, 264});
    const auto cropped = cropTo3x2(image);
    EXPECT_EQ(cropped.size(), QSize(396, 264));
    EXPECT_EQ(cropped.pixel(0, 0), image.pixel(2, 0));
    EXPECT_EQ(cropTo3x2(stripes({900, 100})).size(), QSize(150, 100));
}

TEST(CropTo3x2, cutsAPortrait) {
    const auto image = stripes({300, 400});
    const auto cropped = cropTo3x2(image);
    EXPECT_EQ(cropped.size(), QSize(300, 200));
    EXPECT_EQ(cropped.pixel(0, 0), image.pixel(0, 100));
}

TEST(CropTo3x2, returnsAnImageOfTheseProportionsAsItIs) {
    for (const QSize size : {QSize(3000, 2000), QSize(1000, 667), QSize(1000, 668), QSize(3, 2)}) {
        const QImage image(size, QImage::Format_RGB32);
        EXPECT_EQ(cropTo3x2(image).cacheKey(), image.cacheKey()) << size.height();
    }
    EXPECT_EQ(cropTo3x2(QImage(1000, 669, QImage::Format_RGB32)).size(), QSize(1000, 667));
}

TEST(CropTo3x2, hasNoImageOfNoImage) {
    EXPECT_TRUE(cropTo3x2({}).isNull());
}

TEST(CropTo3x2, leavesSomethingOfTheStrangestImages) {
    for (const QSize size : {QSize(1, 1), QSize(1, 2), QSize(2, 1), QSize(5000, 1), QSize(1, 5000)}) {
        const auto cropped = cropTo3x2(QImage(size, QImage::Format_RGB32));
        EXPECT_FALSE(cropped.isNull()) << size.width() << 'x' << size.height();
    }
}

TEST(CropTo3x2, keepsTheResolution) {
    QImage image(800, 600, QImage::Format_RGB32);
    image.setDevicePixelRatio(2);
    EXPECT_EQ(cropTo3x2(image).devicePixelRatio(), 2);
}

DayPhoto samplePhoto() {
    DayPhoto photo;
    photo.image = QImage(400, 264, QImage::Format_RGB32);
    photo.image.fill(QColor(20, 160, 90));
    photo.filename = QStringLiteral("IMG_4100.HEIC");
    photo.timeText = QStringLiteral("07:12");
    return photo;
}

class PhotoTileViewTest : public ::testing::Test {
protected:
    PhotoTileViewTest() {
        window.resize(300, 300);
        tile.setGeometry(20, 20, 181, photoTileHeight(PhotoTileView::labelHeight(), 121));
        tile.update(samplePhoto());
        EXPECT_TRUE(testing::showActive(window));
    }

    QImage picture() { return pictureOf(window); }
    QRect inWindow(const QRect &rect) const { return rect.translated(tile.pos()); }
    int pixels(const QColor &color, const QRect &where) {
        return pixelsOf(color, picture(), inWindow(where));
    }

    QWidget window;
    PhotoTileView tile{&window};
};

TEST_F(PhotoTileViewTest, showsTheImageUpToItsBorder) {
    const auto image = tile.currentLayout().image;
    EXPECT_TRUE(
        testing::isFilledWith(QColor(20, 160, 90), picture(), inWindow(image.adjusted(7, 2, -7, -2))));
    // The border runs along the edge.
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBorder(), picture(), inWindow({20, 0, 100, 1})));
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBorder(), picture(), inWindow({20, 120, 100, 1})));
}

TEST_F(PhotoTileViewTest, cutsTheCornersOfTheImage) {
    const auto image = tile.currentLayout().image;
    for (const QPoint &corner : {image.topLeft(), image.topRight(), image.bottomLeft(), image.bottomRight()})
        EXPECT_TRUE(testing::isFilledWith(Qt::transparent, picture(), inWindow({corner, QSize(1, 1)})));
}

TEST_F(PhotoTileViewTest, cropsAndScalesTheImage) {
    auto photo = samplePhoto();
    // Only the middle of a portrait is seen.
    photo.image = QImage(300, 400, QImage::Format_RGB32);
    photo.image.fill(Qt::red);
    for (int y = 110; y < 290; ++y) {
        for (int x = 0; x < 300; ++x)
            photo.image.setPixelColor(x, y, QColor(20, 160, 90));
    }
    tile.update(photo);
    const auto image = tile.currentLayout().image;
    EXPECT_GT(pixels(QColor(20, 160, 90), image), image.width() * image.height() * 16 * 8 / 10);
    // A twentieth of it above and below.
    EXPECT_GT(pixels(Qt::red, {60, 2, 50, 3}), 0);
    EXPECT_EQ(pixels(Qt::red, {60, 10, 50, 100}), 0);
}

// Black and white by turns, pixel by pixel: grey from afar.
QImage fineBoard() {
    QImage image(900, 600, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, (x + y) % 2 == 0 ? 0xFF000000 : 0xFFFFFFFF);
    }
    return image;
}

int contrastOf(const QImage &picture, const QRect &where) {
    int darkest = 255;
    int brightest = 0;
    for (int y = where.top(); y <= where.bottom(); ++y) {
        for (int x = where.left(); x <= where.right(); ++x) {
            darkest = std::min(darkest, qGray(picture.pixel(x, y)));
            brightest = std::max(brightest, qGray(picture.pixel(x, y)));
        }
    }
    return brightest - darkest;
}

TEST_F(PhotoTileViewTest, paintsAtOnceAndWithCareLater) {
    int requests = 0;
    tile.onPaintedRoughly = [&requests] { ++requests; };
    auto photo = samplePhoto();
    photo.image = fineBoard();
    tile.update(photo);
    EXPECT_TRUE(tile.isSharp()) << "it was not painted yet";
    const auto area = inWindow(tile.currentLayout().image.adjusted(10, 10, -10, -10));
    testing::pictureOf(window, 1);
    EXPECT_EQ(requests, 1);
    EXPECT_FALSE(tile.isSharp());
    tile.sharpen();
    EXPECT_TRUE(tile.isSharp());
    EXPECT_LT(contrastOf(testing::pictureOf(window, 1), area), 30);
    EXPECT_EQ(requests, 1);
    EXPECT_TRUE(tile.isSharp());
    // At another size anew.
    tile.resize(tile.width() + 30, tile.height() + 20);
    testing::pictureOf(window, 1);
    EXPECT_FALSE(tile.isSharp());
}

TEST_F(PhotoTileViewTest, showsTheBoxThroughATransparentImage) {
    auto photo = samplePhoto();
    photo.image = QImage(300, 200, QImage::Format_ARGB32);
    photo.image.fill(Qt::transparent);
    tile.update(photo);
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(testing::isFilledWith(Theme::cardBg(), picture(),
                                          inWindow(tile.currentLayout().image.adjusted(7, 2, -7, -2))));
        tile.sharpen();
    }
}

TEST_F(PhotoTileViewTest, showsAnEmptyBoxWithoutAnImage) {
    auto photo = samplePhoto();
    photo.image = {};
    tile.update(photo);
    const auto image = tile.currentLayout().image;
    EXPECT_TRUE(tile.isSharp());
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBg(), picture(), inWindow(image.adjusted(7, 2, -7, -2))));
    EXPECT_GT(pixels(Theme::faint(), tile.currentLayout().name), 0);
    EXPECT_GT(pixels(Theme::faint(), tile.currentLayout().time), 0);
}

TEST_F(PhotoTileViewTest, showsNameAndTime) {
    const auto layout = tile.currentLayout();
    EXPECT_EQ(layout.name.left(), 0);
    EXPECT_EQ(layout.time.right() + 1, 181);
    EXPECT_EQ(layout.name.top(), 121 + 7);
    EXPECT_EQ(layout.name.top(), layout.time.top());
    EXPECT_EQ(layout.name.bottom() + 1, tile.height());
    EXPECT_GT(pixels(Theme::faint(), layout.name), 0);
    EXPECT_GT(pixels(Theme::faint(), layout.time), 0);
}

// The names that cameras, messengers and people make.
TEST_F(PhotoTileViewTest, keepsTheTimeReadableWhateverTheName) {
    const auto untouched = [this] {
        const auto time = tile.currentLayout().time;
        return picture().copy(QRect(inWindow(time).topLeft() * 4, time.size() * 4));
    };
    const auto before = untouched();
    const QString names[] = {QStringLiteral("a"),
                             QString(),
                             QStringLiteral("a very long name of a picture ").repeated(8) +
                                 QStringLiteral(".jpeg"),
                             QStringLiteral("二〇二五年三月十四日的一张非常长的照片的名字.jpg").repeated(3),
                             QStringLiteral("תמונה ארוכה מאוד של הים בשעת בוקר מוקדמת.jpg"),
                             QStringLiteral("\u202Egpj.exe"),
                             QStringLiteral("two\nlines\tand a tab.jpg"),
                             QStringLiteral("👨‍👩‍👧‍👦").repeated(20),
                             QString(QChar(0xD800)),
                             QStringLiteral("<b>bold</b>&amp;.jpg")};
    for (const auto &name : names) {
        auto photo = samplePhoto();
        photo.filename = name;
        tile.update(photo);
        const auto layout = tile.currentLayout();
        EXPECT_LE(layout.name.right() + 1 + 8, layout.time.left()) << toUtf8(name);
        EXPECT_TRUE(untouched() == before) << toUtf8(name);
        EXPECT_EQ(
            pixels(Theme::faint(), {layout.name.right() + 4, layout.name.top(),
                                    layout.time.left() - layout.name.right() - 6, layout.name.height()}),
            0)
            << toUtf8(name);
    }
}

TEST_F(PhotoTileViewTest, showsThePointerOnItsBorder) {
    const QRect edge(20, 0, 100, 1);
    movePointerTo(tile);
    EXPECT_TRUE(tile.isHovered());
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBorderHover(), picture(), inWindow(edge)));
    movePointerTo(window, {280, 280});
    EXPECT_TRUE(testing::isFilledWith(Theme::cardBorder(), picture(), inWindow(edge)));
}

TEST_F(PhotoTileViewTest, showsTheKeyboardOnAnyPhoto) {
    for (const QColor &color : {Theme::accent(), QColor(Qt::black), QColor(Qt::white)}) {
        auto photo = samplePhoto();
        photo.image.fill(color);
        tile.update(photo);
        tile.setFocus(Qt::TabFocusReason);
        EXPECT_TRUE(testing::isFilledWith(Theme::accent(), picture(), inWindow({20, 0, 100, 2})));
        EXPECT_TRUE(testing::isFilledWith(Theme::paper(), picture(), inWindow({20, 2, 100, 1})));
        tile.clearFocus();
    }
}

TEST_F(PhotoTileViewTest, isAButtonWithNameAndTime) {
    auto *accessible = QAccessible::queryAccessibleInterface(&tile);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("IMG_4100.HEIC 07:12"));
    int clicks = 0;
    tile.onClick = [&clicks] { ++clicks; };
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(clicks, 1);
}

TEST_F(PhotoTileViewTest, isNotPaintedAgainForTheSamePhoto) {
    struct Painted : QObject {
        int count = 0;
        bool eventFilter(QObject *, QEvent *event) override {
            count += event->type() == QEvent::Paint;
            return false;
        }
    } painted;
    QCoreApplication::processEvents();
    tile.installEventFilter(&painted);
    // Another image of the same pixels.
    auto same = samplePhoto();
    tile.update(same);
    QCoreApplication::processEvents();
    EXPECT_EQ(painted.count, 0);
    same.timeText = QStringLiteral("07:13");
    tile.update(same);
    EXPECT_TRUE(QTest::qWaitFor([&] { return painted.count == 1; }));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/Pictures.h"
#include "Support/Pointer.h"

#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/PhotoGalleryView.h>
#include <DiaryApp/PhotoTileView.h>
#include <DiaryApp/Theme.h>
#include <DiaryApp/ThemeLabel.h>

#include <QAccessible>
#include <QPointer>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace diary {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr PhotoGalleryMetrics sample{{44, 14}, 13, 14};

TEST(PhotoGalleryLayout, takesNoRoomWithoutPhotos) {
    const auto layout = layoutPhotoGallery(0, sample, 668);
    EXPECT_EQ(layout.height, 0);
    EXPECT_TRUE(layout.tiles.empty());
    EXPECT_TRUE(layout.mark.isNull());
    EXPECT_TRUE(layout.caption.isNull());
}

TEST(PhotoGalleryLayout, standsAsMeasured) {
    const auto layout = layoutPhotoGallery(3, sample, 668);
    EXPECT_EQ(layout.mark, QRect(76 - 44, 46, 44, 14));
    EXPECT_EQ(layout.caption, QRect(100, 40, 568, 13));
    // 544 pixels for three; an image is two thirds of 181.33 high.
    const int top = 40 + 13 + 12;
    const int height = 121 + 7 + 14;
    EXPECT_THAT(layout.tiles, ElementsAre(QRect(100, top, 182, height), QRect(294, top, 181, height),
                                          QRect(487, top, 181, height)));
    EXPECT_EQ(layout.height, top + height);
}

TEST(PhotoGalleryLayout, beginsARowAfterThreeTiles) {
    const auto layout = layoutPhotoGallery(4, sample, 668);
    ASSERT_EQ(layout.tiles.size(), 4U);
    EXPECT_EQ(layout.tiles[3], layout.tiles[0].translated(0, layout.tiles[0].height() + 18));
    EXPECT_EQ(layout.height, layout.tiles[3].bottom() + 1);
    EXPECT_EQ(layoutPhotoGallery(7, sample, 668).tiles[6].x(), 100);
    EXPECT_EQ(layoutPhotoGallery(24, sample, 668).tiles[23].right() + 1, 668);
}

TEST(PhotoGalleryLayout, dividesEveryWidthEvenly) {
    for (int width = 0; width <= 1000; ++width) {
        const auto layout = layoutPhotoGallery(8, sample, width);
        ASSERT_EQ(layout.tiles.size(), 8U);
        const auto &tiles = layout.tiles;
        for (std::size_t index = 0; index < 8; ++index) {
            EXPECT_LE(std::abs(tiles[index].width() - tiles[0].width()), 1) << width;
            EXPECT_EQ(tiles[index].height(), tiles[0].height()) << width;
            if (index >= 3) {
                EXPECT_EQ(tiles[index].x(), tiles[index - 3].x()) << width;
                EXPECT_EQ(tiles[index].width(), tiles[index - 3].width()) << width;
                EXPECT_EQ(tiles[index].y(), tiles[index - 3].y() + tiles[0].height() + 18) << width;
            }
            if (index % 3 > 0) {
                EXPECT_EQ(tiles[index].x(), tiles[index - 1].x() + tiles[index - 1].width() + 12) << width;
            }
        }
        if (width >= 124) {
            EXPECT_EQ(tiles[2].x() + tiles[2].width(), width);
            EXPECT_NEAR(tiles[0].height() - 21, (width - 124) / 3.0 * 2 / 3, 0.5) << width;
        }
    }
}

std::vector<DayPhoto> somePhotos(std::size_t count) {
    std::vector<DayPhoto> photos;
    for (std::size_t index = 0; index < count; ++index) {
        QImage image(400, 264, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(static_cast<int>(index * 40 % 360), 120, 200));
        photos.push_back(
            {image, QStringLiteral("IMG_%1.HEIC").arg(index), QStringLiteral("07:12"), std::nullopt});
    }
    return photos;
}

class PhotoGalleryViewTest : public ::testing::Test {
protected:
    PhotoGalleryViewTest() {
        window.resize(700, 900);
        gallery.setGeometry(10, 10, 668, 0);
        gallery.onHeightChanged = [this] {
            ++heightChanges;
            gallery.resize(668, gallery.heightForWidth(668));
        };
        gallery.onOpenPhoto = [this](std::size_t index) { opened.push_back(index); };
        EXPECT_TRUE(testing::showActive(window));
    }

    void show(std::size_t count) {
        gallery.setPhotos(somePhotos(count), QStringLiteral("Photos taken this day: %1").arg(count));
        QCoreApplication::processEvents();
    }
    PhotoTileView *tile(std::size_t index) const { return gallery.tileViews().at(index); }
    int focused() const {
        for (std::size_t index = 0; index < gallery.tileViews().size(); ++index) {
            if (tile(index)->hasFocus())
                return static_cast<int>(index);
        }
        return -1;
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    QWidget window;
    PhotoGalleryView gallery{&window};
    int heightChanges = 0;
    std::vector<std::size_t> opened;
};

TEST_F(PhotoGalleryViewTest, collapsesWithoutPhotosAndComesBack) {
    EXPECT_EQ(gallery.heightForWidth(668), 0);
    show(1);
    const int height = gallery.height();
    EXPECT_GT(height, 150);
    EXPECT_EQ(tile(0)->geometry().bottom() + 1, height);
    show(0);
    EXPECT_EQ(gallery.height(), 0);
    EXPECT_THAT(gallery.tileViews(), IsEmpty());
    EXPECT_FALSE(gallery.findChild<ThemeLabel *>(QStringLiteral("photosMark"))->isVisible());
    show(1);
    EXPECT_EQ(gallery.height(), height);
    EXPECT_TRUE(tile(0)->isVisible());
    EXPECT_EQ(heightChanges, 3);
}

TEST_F(PhotoGalleryViewTest, showsTilesOfOneWidthInRows) {
    show(4);
    EXPECT_EQ(tile(3)->x(), tile(0)->x());
    EXPECT_EQ(tile(3)->width(), tile(0)->width());
    EXPECT_EQ(tile(3)->y(), tile(0)->y() + tile(0)->height() + 18);
    EXPECT_EQ(tile(2)->geometry().right() + 1, 668);
    EXPECT_EQ(heightChanges, 1);
    show(6);
    EXPECT_EQ(heightChanges, 1);
    show(7);
    EXPECT_EQ(heightChanges, 2);
}

TEST_F(PhotoGalleryViewTest, showsMarkAndCaption) {
    show(2);
    const auto *mark = gallery.findChild<ThemeLabel *>(QStringLiteral("photosMark"));
    EXPECT_EQ(mark->text(), QStringLiteral("Photos"));
    EXPECT_EQ(mark->geometry().right() + 1, 76);
    EXPECT_EQ(mark->y(), 46);
    EXPECT_EQ(mark->textStyle().color, Theme::sectionHead());
    const auto *caption = gallery.findChild<ElidedLabel *>(QStringLiteral("photosCaption"));
    EXPECT_EQ(caption->text(), QStringLiteral("Photos taken this day: 2"));
    EXPECT_EQ(caption->pos(), QPoint(100, 40));
    EXPECT_EQ(caption->width(), 568);
    EXPECT_EQ(caption->color(), Theme::daySubText());
    EXPECT_EQ(tile(0)->pos(), QPoint(100, 40 + caption->height() + 12));
}

TEST_F(PhotoGalleryViewTest, keepsItsPlacesWithoutACaption) {
    show(1);
    const auto before = tile(0)->geometry();
    gallery.setPhotos(somePhotos(1), std::nullopt);
    EXPECT_EQ(tile(0)->geometry(), before);
}

TEST_F(PhotoGalleryViewTest, showsWhatANewGalleryWouldShow) {
    for (const std::size_t count : {5U, 2U, 0U, 7U, 24U, 1U}) {
        show(count);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        PhotoGalleryView fresh;
        fresh.resize(gallery.size());
        fresh.setPhotos(somePhotos(count), gallery.model().caption);
        EXPECT_TRUE(testing::pictureOf(gallery, 1) == testing::pictureOf(fresh, 1)) << count;
        EXPECT_EQ(gallery.findChildren<PhotoTileView *>().size(), static_cast<qsizetype>(count));
    }
}

TEST_F(PhotoGalleryViewTest, keepsItsTilesForTheSamePhotos) {
    show(4);
    const auto before = gallery.tileViews();
    tile(2)->setFocus(Qt::TabFocusReason);
    show(4);
    EXPECT_EQ(gallery.tileViews(), before);
    EXPECT_EQ(focused(), 2);
}

TEST_F(PhotoGalleryViewTest, paintsEveryImageWithCareInTheEnd) {
    auto photos = somePhotos(8);
    photos[3].image = {};
    gallery.setPhotos(photos, QString());
    const auto areSharp = [this] {
        return std::all_of(gallery.tileViews().begin(), gallery.tileViews().end(),
                           [](const PhotoTileView *view) { return view->isSharp(); });
    };
    testing::pictureOf(gallery, 1);
    EXPECT_FALSE(areSharp());
    EXPECT_TRUE(QTest::qWaitFor(areSharp));
    // Photos may go before it is their turn.
    testing::pictureOf(gallery, 2);
    EXPECT_FALSE(areSharp());
    show(1);
    EXPECT_TRUE(QTest::qWaitFor(areSharp));
}

TEST_F(PhotoGalleryViewTest, opensAPhotoByClickKeyAndAssistiveTechnology) {
    show(5);
    QTest::mouseClick(tile(4), Qt::LeftButton);
    tile(1)->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    press(Qt::Key_Space);
    auto *accessible = QAccessible::queryAccessibleInterface(tile(3));
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(opened, ElementsAre(4U, 1U, 1U, 3U));
    gallery.onOpenPhoto = nullptr;
    QTest::mouseClick(tile(4), Qt::LeftButton);
}

TEST_F(PhotoGalleryViewTest, mayLoseItsPhotosWhileOneIsOpened) {
    show(3);
    gallery.onOpenPhoto = [this](std::size_t) { show(0); };
    const QPointer<PhotoTileView> clicked = tile(2);
    QTest::mouseClick(clicked, Qt::LeftButton);
    EXPECT_THAT(gallery.tileViews(), IsEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(clicked);
}

TEST_F(PhotoGalleryViewTest, doesNotOpenAPhotoThatReplacedThePressedOne) {
    show(1);
    testing::pressAt(*tile(0), {20, 20});
    auto other = somePhotos(1);
    other[0].filename = QStringLiteral("other.jpg");
    gallery.setPhotos(other, QString());
    testing::releaseAt(*tile(0), {20, 20});
    EXPECT_THAT(opened, IsEmpty());
}

TEST_F(PhotoGalleryViewTest, goesFromTileToTileByTab) {
    show(4);
    tile(0)->setFocus(Qt::TabFocusReason);
    for (const int expected : {1, 2, 3}) {
        press(Qt::Key_Tab);
        EXPECT_EQ(focused(), expected);
    }
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), 2);
    // Also when tiles were added one by one.
    show(0);
    show(2);
    show(5);
    tile(0)->setFocus(Qt::TabFocusReason);
    for (const int expected : {1, 2, 3, 4}) {
        press(Qt::Key_Tab);
        EXPECT_EQ(focused(), expected);
    }
}

TEST_F(PhotoGalleryViewTest, goesFromTileToTileByArrows) {
    show(8);
    tile(0)->setFocus(Qt::TabFocusReason);
    const struct {
        Qt::Key key;
        int expected;
    } steps[] = {{Qt::Key_Right, 1}, {Qt::Key_Down, 4}, {Qt::Key_Right, 5}, {Qt::Key_Down, 7},
                 {Qt::Key_Down, 7},  {Qt::Key_Up, 4},   {Qt::Key_Left, 3},  {Qt::Key_Up, 0},
                 {Qt::Key_Up, 0},    {Qt::Key_Left, 0}, {Qt::Key_End, 7},   {Qt::Key_Right, 7},
                 {Qt::Key_Home, 0}};
    for (const auto &[key, expected] : steps) {
        press(key);
        EXPECT_EQ(focused(), expected) << key;
    }
    press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(focused(), 0);
}

TEST_F(PhotoGalleryViewTest, tellsWhichTileGotTheKeyboard) {
    show(4);
    QRect shown;
    gallery.onTileFocused = [&shown](const QRect &rect) { shown = rect; };
    tile(0)->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Down);
    EXPECT_EQ(shown, tile(3)->geometry());
}

TEST_F(PhotoGalleryViewTest, keepsTheKeyboardInItsPlaceWhenTilesGo) {
    show(6);
    tile(5)->setFocus(Qt::TabFocusReason);
    show(4);
    EXPECT_EQ(focused(), 3);
}

TEST_F(PhotoGalleryViewTest, tellsWhereAnImageIsOnTheScreen) {
    show(4);
    const auto frame = gallery.sourceFrameOnScreen(3);
    EXPECT_EQ(frame.topLeft(), gallery.mapToGlobal(tile(3)->pos()));
    EXPECT_EQ(frame.size(), tile(3)->currentLayout().image.size());
    EXPECT_EQ(frame.height(), 121);
    EXPECT_TRUE(gallery.sourceFrameOnScreen(4).isNull());
    show(0);
    EXPECT_TRUE(gallery.sourceFrameOnScreen(0).isNull());
}

TEST_F(PhotoGalleryViewTest, forgetsThePointerWhenItIsMovedAwayBelowIt) {
    show(1);
    testing::movePointerTo(*tile(0));
    EXPECT_TRUE(tile(0)->isHovered());
    gallery.move(10, 500);
    gallery.recheckPointer();
    EXPECT_FALSE(tile(0)->isHovered());
}

TEST_F(PhotoGalleryViewTest, isReadInTheOrderOfThePhotos) {
    show(2);
    show(4);
    auto *accessible = QAccessible::queryAccessibleInterface(&gallery);
    std::vector<QString> names;
    for (int index = 0; index < accessible->childCount(); ++index) {
        if (accessible->child(index)->role() == QAccessible::Button)
            names.push_back(accessible->child(index)->text(QAccessible::Name).left(5));
    }
    EXPECT_THAT(names, ElementsAre(QStringLiteral("IMG_0"), QStringLiteral("IMG_1"), QStringLiteral("IMG_2"),
                                   QStringLiteral("IMG_3")));
}

} // namespace
} // namespace diary

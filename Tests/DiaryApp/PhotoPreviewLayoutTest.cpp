// SPDX-License-Identifier: MIT
#include <DiaryApp/PhotoPreviewLayout.h>

#include <gtest/gtest.h>

#include <vector>

namespace diary {
namespace {

constexpr QSize page{1360, 840};
constexpr PhotoPreviewMetrics usualMetrics{.iconButton = {34, 26},
                                           .position = {50, 14},
                                           .openInViewer = {150, 26},
                                           .showInFolder = {110, 26},
                                           .titleWidth = 120,
                                           .titleHeight = 18};

PhotoPreviewLayout layoutOf(QSize proportions, PhotoEnlarging enlarging = PhotoEnlarging::ToFill,
                            Qt::LayoutDirection direction = Qt::LeftToRight, QSize size = page) {
    return layoutPhotoPreview(size, usualMetrics, proportions, enlarging, direction);
}

TEST(PhotoPreviewLayout, fillsTheAreaInThePicturesProportions) {
    const auto landscape = layoutOf({3000, 2000});
    EXPECT_EQ(landscape.picture.height(), landscape.pictureArea.height());
    EXPECT_NEAR(landscape.picture.width(), 1.5 * landscape.picture.height(), 1);
    const auto portrait = layoutOf({2000, 3000});
    EXPECT_EQ(portrait.picture.height(), portrait.pictureArea.height());
    const auto panorama = layoutOf({12000, 2000});
    EXPECT_EQ(panorama.picture.width(), panorama.pictureArea.width());
    EXPECT_NEAR(panorama.picture.height() * 6, panorama.picture.width(), 6);
    for (const auto &layout : {landscape, portrait, panorama}) {
        EXPECT_TRUE(layout.pictureArea.contains(layout.picture));
        EXPECT_LE((layout.picture.center() - layout.pictureArea.center()).manhattanLength(), 2);
    }
}

TEST(PhotoPreviewLayout, enlargesOnlyWhatStandsForALargerPicture) {
    EXPECT_EQ(layoutOf({400, 264}, PhotoEnlarging::UpToItsPixels).picture.size(), QSize(400, 264));
    EXPECT_GT(layoutOf({400, 264}, PhotoEnlarging::ToFill).picture.width(), 800);
    EXPECT_EQ(layoutOf({1, 1}, PhotoEnlarging::UpToItsPixels).picture.size(), QSize(1, 1));
}

TEST(PhotoPreviewLayout, reducesAlsoWhatIsNotEnlarged) {
    const auto layout = layoutOf({400, 3000}, PhotoEnlarging::UpToItsPixels);
    EXPECT_EQ(layout.picture.height(), layout.pictureArea.height());
}

TEST(PhotoPreviewLayout, showsALineOfTheNarrowestPanorama) {
    EXPECT_EQ(layoutOf({30000, 1}).picture.height(), 1);
    EXPECT_EQ(layoutOf({1, 30000}).picture.width(), 1);
}

TEST(PhotoPreviewLayout, hasNoPlaceForNoPicture) {
    EXPECT_TRUE(layoutOf({}).picture.isEmpty());
    EXPECT_TRUE(layoutOf({300, 200}, PhotoEnlarging::ToFill, Qt::LeftToRight, {60, 40}).picture.isEmpty());
}

TEST(PhotoPreviewLayout, keepsItsButtonsWhereTheyAreWhateverIsShown) {
    const auto one = layoutOf({3000, 2000});
    const auto other = layoutOf({200, 3000});
    EXPECT_EQ(one.card, other.card);
    EXPECT_EQ(one.previous, other.previous);
    EXPECT_EQ(one.next, other.next);
    EXPECT_EQ(one.close, other.close);
}

TEST(PhotoPreviewLayout, overlapsNothingInItsBar) {
    for (const int width : {1080, 1360, 2560}) {
        for (const int title : {0, 80, 5000}) {
            auto metrics = usualMetrics;
            metrics.titleWidth = title;
            metrics.openInViewer.setWidth(260);
            metrics.showInFolder.setWidth(200);
            const auto layout =
                layoutPhotoPreview({width, 620}, metrics, {3, 2}, PhotoEnlarging::ToFill, Qt::LeftToRight);
            const std::vector<QRect> parts = {layout.title, layout.previous,     layout.position,
                                              layout.next,  layout.openInViewer, layout.showInFolder,
                                              layout.close};
            int end = layout.bar.left() - 1;
            for (const auto &part : parts) {
                EXPECT_LT(end, part.left()) << width << ' ' << title;
                EXPECT_TRUE(part.isEmpty() || layout.bar.contains(part)) << width << ' ' << title;
                end = part.right();
            }
            EXPECT_LE(end, layout.bar.right());
        }
    }
}

TEST(PhotoPreviewLayout, isMirroredFromRightToLeft) {
    const auto layout = layoutOf({3000, 2000}, PhotoEnlarging::ToFill, Qt::RightToLeft);
    EXPECT_LT(layout.close.right(), layout.showInFolder.left());
    EXPECT_LT(layout.next.right(), layout.previous.left());
    EXPECT_LT(layout.previous.right(), layout.title.left());
    EXPECT_EQ(layout.picture, layoutOf({3000, 2000}).picture);
}

} // namespace
} // namespace diary

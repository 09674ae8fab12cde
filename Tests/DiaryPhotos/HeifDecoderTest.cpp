// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "TestPictures.h"

#include <DiaryPhotos/HeifDecoder.h>
#include <DiaryPhotos/PhotoDecoder.h>

#include <QColorSpace>
#include <QImage>
#include <QSize>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>

namespace diary {
namespace {

using testing::HeifKind;
using testing::quadrants;
using testing::showsQuadrants;

class HeifDecoderTest : public ::testing::Test {
protected:
    void SetUp() override { require(HeifKind::Heic); }

    static void require(HeifKind kind) {
        if (!testing::canWriteHeif(kind))
            GTEST_SKIP() << "this machine's libheif cannot write such pictures";
    }

    // The first place of a box in the file, as it would be for four letters.
    static std::size_t boxIn(const std::string &bytes, const std::string &type) {
        const auto place = bytes.find(type);
        EXPECT_NE(place, std::string::npos) << type;
        return place;
    }

    testing::TemporaryFolder folder;
    std::filesystem::path file = folder / "photo.jpg"; // whatever it is called
};

TEST_F(HeifDecoderTest, decodesHeic) {
    testing::writeHeif(file, quadrants({800, 600}));
    const auto image = decodePhotoCovering(file, {400, 264});
    EXPECT_EQ(image.size(), QSize(400, 300));
    EXPECT_EQ(image.format(), QImage::Format_RGB32);
    EXPECT_TRUE(showsQuadrants(image));
    EXPECT_EQ(decodePhoto(file, {2000, 2000}).size(), QSize(800, 600));
}

TEST_F(HeifDecoderTest, decodesAvif) {
    require(HeifKind::Avif);
    if (IsSkipped())
        return;
    testing::writeHeif(file, quadrants({320, 240}), {.kind = HeifKind::Avif});
    const auto image = decodePhoto(file, {160, 160});
    EXPECT_EQ(image.size(), QSize(160, 120));
    EXPECT_TRUE(showsQuadrants(image));
}

TEST_F(HeifDecoderTest, keepsTransparency) {
    auto picture = quadrants({320, 240}).convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 160; x < picture.width(); ++x)
            picture.setPixel(x, y, 0);
    }
    testing::writeHeif(file, picture);
    const auto image = decodePhoto(file, {160, 160});
    ASSERT_EQ(image.size(), QSize(160, 120));
    EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_GT(qAlpha(image.pixel(20, 20)), 240);
    EXPECT_LT(qAlpha(image.pixel(140, 20)), 15);
}

TEST_F(HeifDecoderTest, bringsTheColoursOfTheProfileToSrgb) {
    QImage picture({64, 64}, QImage::Format_RGB32);
    picture.fill(QColor(100, 200, 100));
    testing::writeHeif(file, picture, {.profile = QColorSpace(QColorSpace::DisplayP3).iccProfile()});
    auto expected = picture;
    expected.setColorSpace(QColorSpace::DisplayP3);
    expected.convertToColorSpace(QColorSpace::SRgb);
    ASSERT_LT(qRed(expected.pixel(32, 32)), 80);
    const auto image = decodePhoto(file, {64, 64});
    ASSERT_FALSE(image.isNull());
    EXPECT_NEAR(qRed(image.pixel(32, 32)), qRed(expected.pixel(32, 32)), 8);
    EXPECT_NEAR(qGreen(image.pixel(32, 32)), qGreen(expected.pixel(32, 32)), 8);
}

TEST_F(HeifDecoderTest, takesTheSmallPictureWhenItIsLargeEnough) {
    // White, so that it can be told from the main one.
    QImage white({800, 600}, QImage::Format_RGB32);
    white.fill(Qt::white);
    testing::writeHeif(file, quadrants({1600, 1200}), {.thumbnailSide = 512, .thumbnail = white});
    const auto small = decodePhotoCovering(file, {400, 264});
    EXPECT_EQ(small.size(), QSize(400, 300));
    EXPECT_GT(qGray(small.pixel(50, 50)), 240);
    const auto larger = decodePhotoCovering(file, {520, 300});
    EXPECT_EQ(larger.size(), QSize(520, 390));
    EXPECT_TRUE(showsQuadrants(larger));
}

TEST_F(HeifDecoderTest, passesOverASmallPictureOfAnotherShape) {
    QImage white({600, 600}, QImage::Format_RGB32);
    white.fill(Qt::white);
    testing::writeHeif(file, quadrants({1600, 1200}), {.thumbnailSide = 512, .thumbnail = white});
    EXPECT_TRUE(showsQuadrants(decodePhotoCovering(file, {400, 264})));
}

TEST_F(HeifDecoderTest, tellsTheSmallPictureApartFromDecodingTheWhole) {
    testing::writeHeif(file, quadrants({1600, 1200}), {.thumbnailSide = 512});
    const auto photo = PhotoFile::openRegular(file);
    bool isHeldWhole = true;
    const auto choosing = [&](QSize size) {
        return [&isHeldWhole, size](const PhotoHeader &header) {
            EXPECT_EQ(header.size, QSize(1600, 1200));
            isHeldWhole = header.isHeldWhole;
            return size;
        };
    };
    EXPECT_EQ(decodePhoto(*photo, choosing({400, 300})).size(), QSize(400, 300));
    EXPECT_FALSE(isHeldWhole);
    EXPECT_EQ(decodePhoto(*photo, choosing({800, 600})).size(), QSize(800, 600));
    EXPECT_TRUE(isHeldWhole);
    EXPECT_TRUE(decodePhoto(*photo, choosing({})).isNull());
}

TEST_F(HeifDecoderTest, fallsBackToTheSmallPictureWhenTheMainOneIsTooLarge) {
    testing::writeHeif(file, quadrants({1600, 1200}), {.thumbnailSide = 512});
    auto bytes = folder.read("photo.jpg");
    // The first size in the file is the main picture's; 16,000 by 12,000 takes more than is allowed.
    const auto place = boxIn(bytes, "ispe") + 8;
    bytes.replace(place, 8, std::string("\0\0\x3E\x80\0\0\x2E\xE0", 8));
    folder.write("photo.jpg", bytes);
    const auto image = decodePhoto(file, {1000, 1000});
    EXPECT_EQ(image.size(), QSize(512, 384));
    EXPECT_TRUE(showsQuadrants(image));
}

TEST_F(HeifDecoderTest, refusesAPictureThatIsTooLarge) {
    testing::writeHeif(file, quadrants({160, 120}));
    auto bytes = folder.read("photo.jpg");
    bytes.replace(boxIn(bytes, "ispe") + 8, 8, std::string("\0\0\x3E\x80\0\0\x2E\xE0", 8));
    folder.write("photo.jpg", bytes);
    QImage image;
    const auto peak = testing::peakMemoryOf([&] { image = decodePhoto(file, {1000, 1000}); });
    EXPECT_TRUE(image.isNull());
    EXPECT_LT(peak.value_or(0), 10'000'000);
}

struct MemoryRow {
    const char *name;
    HeifKind kind;
    int orientation;
    bool isDeep;
    bool hasAlpha;
};

class HeifMemory : public HeifDecoderTest, public ::testing::WithParamInterface<MemoryRow> {};

TEST_P(HeifMemory, isNoMoreThanIsCountedWith) {
    const auto &row = GetParam();
    require(row.kind);
    if (IsSkipped())
        return;
    auto picture = quadrants({900, 600});
    if (row.hasAlpha) {
        picture.convertTo(QImage::Format_ARGB32);
        picture.setPixel(0, 0, 0);
    }
    testing::writeHeif(file, picture,
                       {.kind = row.kind, .orientation = row.orientation, .isDeep = row.isDeep});
    QImage image;
    const auto peak = testing::peakMemoryOf([&] { image = decodePhotoCovering(file, {400, 264}); });
    EXPECT_TRUE(showsQuadrants(image));
    EXPECT_EQ(image.hasAlphaChannel(), row.hasAlpha);
    if (!peak)
        GTEST_SKIP() << "allocations can be observed under the address sanitizer only";
    constexpr std::int64_t pixels = 900 * 600;
    EXPECT_LE(*peak, pixels * (row.isDeep ? heifBytesPerDeepPixel : heifBytesPerPixel));
}

INSTANTIATE_TEST_SUITE_P(Rows, HeifMemory,
                         ::testing::Values(MemoryRow{"Heic", HeifKind::Heic, 1, false, false},
                                           MemoryRow{"HeicTurned", HeifKind::Heic, 6, false, false},
                                           MemoryRow{"HeicMirrored", HeifKind::Heic, 5, false, false},
                                           MemoryRow{"HeicAlpha", HeifKind::Heic, 6, false, true},
                                           MemoryRow{"HeicDeep", HeifKind::Heic, 6, true, false},
                                           MemoryRow{"HeicDeepAlpha", HeifKind::Heic, 6, true, true},
                                           MemoryRow{"Avif", HeifKind::Avif, 6, false, false}),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(HeifDecoderTest, endsInNothingOrInAPictureWhereverItIsCut) {
    testing::writeHeif(file, quadrants({160, 120}), {.thumbnailSide = 64});
    const auto bytes = folder.read("photo.jpg");
    for (std::size_t length = 0; length < bytes.size(); length += 1 + bytes.size() / 60) {
        folder.write("photo.jpg", bytes.substr(0, length));
        const auto image = decodePhoto(file, {80, 80});
        EXPECT_TRUE(image.isNull() || image.size() == QSize(80, 60)) << length;
    }
}

TEST_F(HeifDecoderTest, endsInNothingOrInAPictureWhateverIsDamaged) {
    testing::writeHeif(file, quadrants({160, 120}), {.thumbnailSide = 64});
    const auto bytes = folder.read("photo.jpg");
    for (std::size_t at = 0; at < bytes.size(); at += 1 + bytes.size() / 300) {
        auto damaged = bytes;
        damaged[at] = static_cast<char>(~damaged[at]);
        folder.write("photo.jpg", damaged);
        const auto image = decodePhoto(file, {80, 80});
        EXPECT_LE(image.width(), 80) << at;
        EXPECT_LE(image.height(), 80) << at;
    }
}

TEST_F(HeifDecoderTest, isNotAskedAboutFilms) {
    folder.write("photo.jpg", std::string("\0\0\0\x18"
                                          "ftypisom\0\0\2\0isomiso2mdat",
                                          28));
    EXPECT_TRUE(decodePhoto(file, {80, 80}).isNull());
    EXPECT_FALSE(isHeif("", 0));
    EXPECT_FALSE(isHeif("\0\0\0\x18"
                        "ftyp",
                        8));
    EXPECT_TRUE(isHeif("\0\0\0\x18"
                       "ftypheic\0\0\0\0mif1heic",
                       24));
}

class HeifOrientations : public HeifDecoderTest, public ::testing::WithParamInterface<int> {};

TEST_P(HeifOrientations, areTurnedUpright) {
    testing::writeHeif(file, quadrants({480, 320}), {.orientation = GetParam()});
    const auto image = decodePhotoCovering(file, {90, 90});
    EXPECT_EQ(image.size(), QSize(135, 90));
    EXPECT_TRUE(showsQuadrants(image));
}

TEST_P(HeifOrientations, holdForTheSmallPicture) {
    testing::writeHeif(file, quadrants({1200, 800}), {.orientation = GetParam(), .thumbnailSide = 480});
    const auto image = decodePhotoCovering(file, {240, 160});
    EXPECT_EQ(image.size(), QSize(240, 160));
    EXPECT_TRUE(showsQuadrants(image));
}

INSTANTIATE_TEST_SUITE_P(All, HeifOrientations, ::testing::Range(1, 9));

} // namespace
} // namespace diary

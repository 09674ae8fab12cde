// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "TestPictures.h"

#include <DiaryPhotos/PhotoDecoder.h>

#include <QColor>
#include <QColorSpace>
#include <QImage>
#include <QPoint>
#include <QSize>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>

#include <sys/stat.h>

namespace diary {
namespace {

using testing::encoded;
using testing::quadrants;
using testing::showsQuadrants;

constexpr QSize tile(400, 264);

class PhotoDecoderTest : public ::testing::Test {
protected:
    std::filesystem::path write(const std::string &name, const QByteArray &bytes) const {
        folder.write(name, bytes.toStdString());
        return folder / name;
    }

    testing::TemporaryFolder folder;
};

struct SizeRow {
    QSize picture;
    QSize bounds;
    QSize within;
    QSize covering;
};

class PhotoSizes : public ::testing::TestWithParam<SizeRow> {};

TEST_P(PhotoSizes, keepTheShapeAndNeverGrow) {
    const auto &row = GetParam();
    EXPECT_EQ(sizeWithin(row.picture, row.bounds), row.within);
    EXPECT_EQ(sizeCovering(row.picture, row.bounds), row.covering);
}

INSTANTIATE_TEST_SUITE_P(Rows, PhotoSizes,
                         ::testing::Values(SizeRow{{4000, 3000}, tile, {352, 264}, {400, 300}},
                                           SizeRow{{3000, 4000}, tile, {198, 264}, {400, 533}},
                                           SizeRow{{400, 264}, tile, {400, 264}, {400, 264}},
                                           SizeRow{{401, 300}, tile, {352, 264}, {400, 299}},
                                           SizeRow{{100, 80}, tile, {100, 80}, {100, 80}},
                                           SizeRow{{300, 3000}, tile, {26, 264}, {300, 3000}},
                                           SizeRow{{20000, 10}, tile, {400, 1}, {20000, 10}},
                                           SizeRow{{4000, 3000}, {0, 264}, {}, {}},
                                           SizeRow{{4000, 3000}, {}, {}, {}}, SizeRow{{0, 0}, tile, {}, {}}));

class PhotoFormats : public PhotoDecoderTest, public ::testing::WithParamInterface<const char *> {};

TEST_P(PhotoFormats, areToldByTheContentAndScaledDown) {
    const auto file = write("misleading.xyz", encoded(quadrants({800, 600}), GetParam()));
    const auto covering = decodePhotoCovering(file, tile);
    EXPECT_EQ(covering.size(), QSize(400, 300));
    EXPECT_TRUE(showsQuadrants(covering));
    EXPECT_EQ(covering.format(), QImage::Format_RGB32);
    const auto within = decodePhoto(file, tile);
    EXPECT_EQ(within.size(), QSize(352, 264));
    EXPECT_TRUE(showsQuadrants(within));
}

TEST_P(PhotoFormats, areNeverEnlarged) {
    const auto file = write("small.jpg", encoded(quadrants({80, 60}), GetParam()));
    EXPECT_EQ(decodePhotoCovering(file, tile).size(), QSize(80, 60));
    EXPECT_EQ(decodePhoto(file, tile).size(), QSize(80, 60));
}

TEST_P(PhotoFormats, endInNothingOrInAPictureWhereverTheyAreCut) {
    const auto bytes = encoded(quadrants({160, 120}), GetParam());
    const auto step = std::max<qsizetype>(1, bytes.size() / 60);
    for (qsizetype length = 0; length < bytes.size(); length += step) {
        const auto image = decodePhoto(write("cut.jpg", bytes.left(length)), {80, 80});
        EXPECT_TRUE(image.isNull() || image.size() == QSize(80, 60)) << length;
    }
}

TEST_P(PhotoFormats, endInNothingOrInAPictureWhateverIsDamaged) {
    const auto bytes = encoded(quadrants({160, 120}), GetParam());
    const auto step = std::max<qsizetype>(1, bytes.size() / 150);
    for (qsizetype at = 0; at < bytes.size(); at += step) {
        auto damaged = bytes;
        damaged[at] = static_cast<char>(~damaged[at]);
        const auto image = decodePhoto(write("damaged.jpg", damaged), {80, 80});
        EXPECT_LE(image.width(), 80) << at;
        EXPECT_LE(image.height(), 80) << at;
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, PhotoFormats, ::testing::Values("jpeg", "png", "webp", "tiff"));

class Orientations : public PhotoDecoderTest,
                     public ::testing::WithParamInterface<std::tuple<const char *, int>> {};

TEST_P(Orientations, areTurnedUpright) {
    const auto [format, orientation] = GetParam();
    const auto upright = quadrants({480, 320});
    const auto file = write("turned", encoded(testing::storedAs(orientation, upright), format));
    testing::setOrientation(file, orientation);

    const auto whole = decodePhoto(file, {1000, 1000});
    EXPECT_EQ(whole.size(), QSize(480, 320));
    EXPECT_TRUE(showsQuadrants(whole));
    const auto small = decodePhotoCovering(file, {90, 90});
    EXPECT_EQ(small.size(), QSize(135, 90));
    EXPECT_TRUE(showsQuadrants(small));
}

INSTANTIATE_TEST_SUITE_P(All, Orientations,
                         ::testing::Combine(::testing::Values("jpeg", "tiff"), ::testing::Range(1, 9)));

// How the pixels stand in the file.
struct PixelsRow {
    const char *name;
    const char *format;
    QImage::Format stored;
};

class PhotoPixels : public PhotoDecoderTest, public ::testing::WithParamInterface<PixelsRow> {};

TEST_P(PhotoPixels, areBroughtIntoACommonForm) {
    const auto &row = GetParam();
    const auto picture = quadrants({300, 200}).convertToFormat(row.stored);
    const auto file = write("photo", encoded(picture, row.format));
    const auto expected = picture.convertToFormat(QImage::Format_RGB32);
    for (const auto bounds : {QSize(300, 300), QSize(150, 150)}) {
        const auto image = decodePhoto(file, bounds);
        ASSERT_EQ(image.width(), bounds.width());
        EXPECT_EQ(image.format(), QImage::Format_RGB32);
        for (const auto corner : {QPoint(75, 50), QPoint(225, 50), QPoint(75, 150), QPoint(225, 150)}) {
            const auto pixel = image.pixel(corner * bounds.width() / 300);
            EXPECT_NEAR(qRed(pixel), qRed(expected.pixel(corner)), 4);
            EXPECT_NEAR(qGreen(pixel), qGreen(expected.pixel(corner)), 4);
            EXPECT_NEAR(qBlue(pixel), qBlue(expected.pixel(corner)), 4);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, PhotoPixels,
                         ::testing::Values(PixelsRow{"GrayJpeg", "jpeg", QImage::Format_Grayscale8},
                                           PixelsRow{"GrayPng", "png", QImage::Format_Grayscale8},
                                           PixelsRow{"DeepGrayPng", "png", QImage::Format_Grayscale16},
                                           PixelsRow{"DeepPng", "png", QImage::Format_RGBX64},
                                           PixelsRow{"DeepPngThatHidesNothing", "png", QImage::Format_RGBA64},
                                           PixelsRow{"PngThatHidesNothing", "png", QImage::Format_ARGB32},
                                           PixelsRow{"PalettePng", "png", QImage::Format_Indexed8},
                                           PixelsRow{"DeepTiff", "tiff", QImage::Format_RGBX64},
                                           PixelsRow{"DeepGrayTiff", "tiff", QImage::Format_Grayscale16},
                                           PixelsRow{"PaletteTiff", "tiff", QImage::Format_Indexed8}),
                         [](const auto &row) { return std::string(row.param.name); });

struct MemoryRow {
    const char *name;
    const char *format;
    QImage::Format stored;
    int bytesPerPixel; // at most
};

class PhotoMemory : public PhotoDecoderTest, public ::testing::WithParamInterface<MemoryRow> {};

TEST_P(PhotoMemory, isNoMoreThanIsCountedWith) {
    const auto &row = GetParam();
    auto picture = quadrants({1500, 1000}).convertToFormat(row.stored);
    if (picture.hasAlphaChannel())
        picture.setPixelColor(0, 0, Qt::transparent);
    const auto bytes = encoded(picture, row.format);
    const auto file = write("photo", bytes);
    picture = {};
    QImage image;
    const auto peak = testing::peakMemoryOf([&] { image = decodePhotoCovering(file, tile); });
    EXPECT_EQ(image.size(), QSize(400, 266));
    if (!peak)
        GTEST_SKIP() << "allocations can be observed under the address sanitizer only";
    // Besides the pixels: the file, and some room for the small picture and the decoder itself.
    EXPECT_LE(*peak, std::int64_t{1500} * 1000 * row.bytesPerPixel + bytes.size() + 1'000'000)
        << static_cast<double>(*peak) / 1'500'000;
}

INSTANTIATE_TEST_SUITE_P(Rows, PhotoMemory,
                         ::testing::Values(MemoryRow{"GrayPng", "png", QImage::Format_Grayscale8, 5},
                                           MemoryRow{"Png", "png", QImage::Format_RGB32, 8},
                                           MemoryRow{"PngWithAlpha", "png", QImage::Format_ARGB32, 8},
                                           MemoryRow{"PalettePng", "png", QImage::Format_Indexed8, 5},
                                           MemoryRow{"DeepGrayPng", "png", QImage::Format_Grayscale16, 10},
                                           MemoryRow{"DeepPng", "png", QImage::Format_RGBA64, 16},
                                           MemoryRow{"Tiff", "tiff", QImage::Format_RGB32, 8},
                                           MemoryRow{"TiffWithAlpha", "tiff", QImage::Format_ARGB32, 8},
                                           MemoryRow{"DeepTiff", "tiff", QImage::Format_RGBA64, 16},
                                           MemoryRow{"WebP", "webp", QImage::Format_RGB32, 12},
                                           MemoryRow{"WebPWithAlpha", "webp", QImage::Format_ARGB32, 12}),
                         [](const auto &row) { return std::string(row.param.name); });

class PhotoTransparency : public PhotoDecoderTest, public ::testing::WithParamInterface<const char *> {};

TEST_P(PhotoTransparency, isKept) {
    QImage picture({300, 200}, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 150; ++x)
            picture.setPixel(x, y, qRgba(200, 0, 0, 255));
    }
    const auto file = write("photo", encoded(picture, GetParam()));
    for (const auto bounds : {QSize(300, 300), QSize(150, 150)}) {
        const auto image = decodePhoto(file, bounds);
        EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
        EXPECT_EQ(qAlpha(image.pixel(5, 5)), 255);
        EXPECT_EQ(qAlpha(image.pixel(image.width() - 5, 5)), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, PhotoTransparency, ::testing::Values("png", "tiff", "webp"));

class PhotoColors : public PhotoDecoderTest, public ::testing::WithParamInterface<const char *> {};

TEST_P(PhotoColors, areBroughtToSrgb) {
    QImage picture({64, 64}, QImage::Format_RGB32);
    picture.fill(QColor(100, 200, 100));
    picture.setColorSpace(QColorSpace::DisplayP3);
    const auto expected = picture.convertedToColorSpace(QColorSpace::SRgb).pixel(32, 32);
    ASSERT_LT(qRed(expected), 80);
    const auto image = decodePhoto(write("photo", encoded(picture, GetParam(), 100)), {32, 32});
    ASSERT_FALSE(image.isNull());
    EXPECT_NEAR(qRed(image.pixel(16, 16)), qRed(expected), 5);
    EXPECT_NEAR(qGreen(image.pixel(16, 16)), qGreen(expected), 5);
    EXPECT_NEAR(qBlue(image.pixel(16, 16)), qBlue(expected), 5);
}

INSTANTIATE_TEST_SUITE_P(Formats, PhotoColors, ::testing::Values("jpeg", "png", "tiff"));

TEST_F(PhotoDecoderTest, showsTheFirstOfMovingPictures) {
    // Two frames of one pixel, red and blue.
    using namespace std::string_literals;
    const auto frame = "\x2C\0\0\0\0\1\0\1\0\0\2\2"s;
    folder.write("photo",
                 "GIF89a\1\0\1\0\x80\0\0\xFF\0\0\0\0\xFF"s + frame + "\x44\1\0"s + frame + "\x4C\1\0\x3B"s);
    const auto image = decodePhoto(folder / "photo", tile);
    ASSERT_EQ(image.size(), QSize(1, 1));
    EXPECT_EQ(QColor(image.pixel(0, 0)), QColor(Qt::red));
}

TEST_F(PhotoDecoderTest, decodesAJpegForPrinting) {
    // Cyan, magenta, yellow and black, each at full or none, as printing programs store them: inverted.
    folder.write("photo", testing::cmykJpeg(64, 64, {0xFF, 0x00, 0x00, 0xFF}));
    const auto image = decodePhoto(folder / "photo", tile);
    ASSERT_EQ(image.size(), QSize(64, 64));
    EXPECT_GT(qRed(image.pixel(30, 30)), 230);
    EXPECT_LT(qGreen(image.pixel(30, 30)), 25);
    EXPECT_LT(qBlue(image.pixel(30, 30)), 25);
}

TEST_F(PhotoDecoderTest, showsWhatThereIsOfAJpegThatWasCutOff) {
    const auto bytes = encoded(quadrants({800, 600}), "jpeg");
    const auto image = decodePhoto(write("photo.jpg", bytes.left(bytes.size() * 7 / 10)), {400, 300});
    ASSERT_EQ(image.size(), QSize(400, 300));
    EXPECT_GT(qRed(image.pixel(100, 50)), 200);
    EXPECT_LT(qGreen(image.pixel(100, 50)), 60);
}

TEST_F(PhotoDecoderTest, decodesAJpegInSeveralPasses) {
    const auto image =
        decodePhotoCovering(write("photo.jpg", testing::progressiveJpeg(quadrants({800, 600}))), tile);
    EXPECT_EQ(image.size(), QSize(400, 300));
    EXPECT_TRUE(showsQuadrants(image));
}

TEST_F(PhotoDecoderTest, makesNothingOfWhatIsNoPicture) {
    folder.write("text.jpg", "Dear diary");
    folder.write("empty.jpg", "");
    folder.write("drawing.jpg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
    folder.write("bitmap.jpg", encoded(quadrants({8, 8}), "ppm").toStdString());
    folder.write("short.jpg", "\xFF\xD8\xFF");
    for (const char *name : {"text.jpg", "empty.jpg", "drawing.jpg", "bitmap.jpg", "short.jpg", "none.jpg"}) {
        EXPECT_TRUE(decodePhoto(folder / name, tile).isNull()) << name;
        EXPECT_TRUE(decodePhotoCovering(folder / name, tile).isNull()) << name;
    }
}

TEST_F(PhotoDecoderTest, doesNotWaitForAPipe) {
    ASSERT_EQ(mkfifo((folder / "pipe.jpg").c_str(), 0600), 0);
    EXPECT_TRUE(decodePhoto(folder / "pipe.jpg", tile).isNull());
    EXPECT_TRUE(decodePhotoCovering("/dev/zero", tile).isNull());
    EXPECT_TRUE(decodePhotoCovering(folder.path(), tile).isNull());
}

TEST_F(PhotoDecoderTest, makesNothingForAnEmptySize) {
    const auto file = write("photo.jpg", encoded(quadrants({80, 60}), "jpeg"));
    EXPECT_TRUE(decodePhoto(file, {}).isNull());
    EXPECT_TRUE(decodePhoto(file, {0, 100}).isNull());
    EXPECT_TRUE(decodePhotoCovering(file, {-1, 100}).isNull());
}

TEST_F(PhotoDecoderTest, findsAFileWhoseNameIsNotUtf8) {
    const auto file = write("\xFF\xFE.jpg", encoded(quadrants({80, 60}), "jpeg"));
    EXPECT_EQ(decodePhoto(file, tile).size(), QSize(80, 60));
}

TEST_F(PhotoDecoderTest, refusesAPictureThatWouldFillTheMemoryBeforeItIsDecoded) {
    // 400 megapixels in 60 kilobytes, and headers that only claim to have as many.
    folder.write("bomb.png", testing::uniformPng(20'000, 20'000));
    folder.write("progressive.jpg", testing::jpegHeader(20'000, 20'000, true));
    folder.write("largest.jpg", testing::jpegHeader(65'000, 65'000));
    for (const char *name : {"bomb.png", "progressive.jpg", "largest.jpg"}) {
        QImage image;
        const auto peak = testing::peakMemoryOf([&] { image = decodePhotoCovering(folder / name, tile); });
        EXPECT_TRUE(image.isNull()) << name;
        EXPECT_LT(peak.value_or(0), 10'000'000) << name;
    }
}

TEST_F(PhotoDecoderTest, refusesATiffThatClaimsToBeLarge) {
    auto bytes = encoded(quadrants({64, 64}), "tiff");
    // The sizes stand in entries of the directory: tag 256 and 257, a number of two or four bytes.
    for (const unsigned tag : {256U, 257U}) {
        const std::string entry{static_cast<char>(tag & 0xFFU), static_cast<char>(tag >> 8U)};
        auto place =
            bytes.lastIndexOf(QByteArray::fromStdString(entry + std::string("\x03\0\1\0\0\0\x40\0", 8)));
        if (place < 0)
            place =
                bytes.lastIndexOf(QByteArray::fromStdString(entry + std::string("\x04\0\1\0\0\0\x40\0", 8)));
        ASSERT_GE(place, 0);
        bytes[place + 8] = '\x20';
        bytes[place + 9] = '\x4E'; // 20,000
    }
    QImage image;
    const auto file = write("photo.tiff", bytes);
    const auto peak = testing::peakMemoryOf([&] { image = decodePhotoCovering(file, tile); });
    EXPECT_TRUE(image.isNull());
    EXPECT_LT(peak.value_or(0), 10'000'000);
}

TEST_F(PhotoDecoderTest, refusesAJpegOfThousandsOfPasses) {
    // Each pass of a few bytes goes over a hundred megapixels.
    const auto header = testing::jpegHeader(10'000, 10'000, true);
    const auto scan = header.substr(header.size() - 14) + "\x7F";
    auto bytes = header;
    for (int i = 0; i < 5000; ++i)
        bytes += scan;
    folder.write("photo.jpg", bytes + "\xFF\xD9");
    QImage image;
    const auto peak = testing::peakMemoryOf([&] { image = decodePhotoCovering(folder / "photo.jpg", tile); });
    EXPECT_TRUE(image.isNull());
    EXPECT_LT(peak.value_or(0), 10'000'000);
}

TEST_F(PhotoDecoderTest, decodesALargeJpegAtAFractionOfItsSize) {
    QImage picture({8000, 6000}, QImage::Format_Grayscale8);
    picture.fill(90);
    const auto file = write("photo.jpg", encoded(picture, "jpeg"));
    QImage image;
    const auto peak = testing::peakMemoryOf([&] { image = decodePhotoCovering(file, tile); });
    EXPECT_EQ(image.size(), QSize(400, 300));
    EXPECT_NEAR(qGray(image.pixel(200, 150)), 90, 3);
    EXPECT_LT(peak.value_or(0), std::int64_t{8000} * 6000 / 4);
}

TEST_F(PhotoDecoderTest, makesAJpegSmallerRatherThanNotAtAll) {
    // 200 megapixels do not fit at their full size, but a quarter of them does. The header lies: there are
    // but the first few.
    auto bytes = testing::cmykJpeg(64, 64, {0xFF, 0x00, 0x00, 0xFF});
    bytes.replace(bytes.find("\xFF\xC0") + 5, 4, "\x30\xD4\x3E\x80");
    folder.write("photo.jpg", bytes);
    const auto file = PhotoFile::openRegular(folder / "photo.jpg");
    PhotoHeader seen;
    QImage image;
    const auto peak = testing::peakMemoryOf([&] {
        image = decodePhoto(*file, [&](const PhotoHeader &header) {
            seen = header;
            return header.size;
        });
    });
    EXPECT_EQ(seen.size, QSize(16'000, 12'500));
    EXPECT_FALSE(seen.isHeldWhole);
    EXPECT_EQ(image.size(), QSize(8000, 6250));
    EXPECT_GT(qRed(image.pixel(2, 2)), 230);
    EXPECT_LE(peak.value_or(0), largestDecodingBytes);
}

} // namespace
} // namespace diary

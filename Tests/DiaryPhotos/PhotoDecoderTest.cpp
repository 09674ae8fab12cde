// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "TestPictures.h"

#include <DiaryPhotos/PhotoDecoder.h>

#include <QColorSpace>
#include <QImage>
#include <QSize>

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
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

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "TestPictures.h"

#include <DiaryPhotos/JpegFrame.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace diary {
namespace {

class JpegFrameTest : public ::testing::Test {
protected:
    std::optional<JpegFrame> frameOf(std::string_view bytes) const {
        folder.write("photo", bytes);
        return readJpegFrame(*PhotoFile::openRegular(folder / "photo"));
    }

    int scansOf(std::string_view bytes, int limit) const {
        folder.write("photo", bytes);
        return countJpegScans(*PhotoFile::openRegular(folder / "photo"), limit);
    }

    testing::TemporaryFolder folder;
};

TEST_F(JpegFrameTest, tellsTheSizeOfAnOrdinaryPicture) {
    const auto bytes = testing::encoded(testing::quadrants({321, 123}), "jpeg").toStdString();
    EXPECT_EQ(frameOf(bytes), (JpegFrame{.size = {321, 123}, .coefficientBytes = 0}));
    EXPECT_EQ(scansOf(bytes, 10), 1);
}

TEST_F(JpegFrameTest, tellsTheMemoryOfOneInSeveralPasses) {
    const auto bytes = testing::progressiveJpeg(testing::quadrants({320, 160})).toStdString();
    const auto frame = frameOf(bytes);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->size, QSize(320, 160));
    // Half as many samples for each of two colours both ways, at two bytes each.
    EXPECT_EQ(frame->coefficientBytes, 320 * 160 * 3 / 2 * 2);
    EXPECT_GT(scansOf(bytes, 100), 3);
    EXPECT_EQ(scansOf(bytes, 3), 3);
}

TEST_F(JpegFrameTest, countsABlockThatIsBegunAsWhole) {
    const auto frame = frameOf(testing::jpegHeader(17, 1, true));
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->coefficientBytes, 32 * 16 * 3 / 2 * 2);
}

TEST_F(JpegFrameTest, tellsTheMemoryWhenTheColoursComeOneAfterTheOther) {
    auto bytes = testing::jpegHeader(16, 16);
    EXPECT_EQ(frameOf(bytes)->coefficientBytes, 0);
    bytes[bytes.size() - 10] = 1;
    EXPECT_EQ(frameOf(bytes)->coefficientBytes, 16 * 16 * 3 / 2 * 2);
}

TEST_F(JpegFrameTest, passesOverThePictureInASegment) {
    const auto header = testing::jpegHeader(640, 480);
    const auto hidden = testing::jpegHeader(160, 120, true) + testing::jpegHeader(160, 120, true);
    const auto length = hidden.size() + 2;
    const auto segment = std::string("\xFF\xE1") + static_cast<char>(length >> 8U) +
                         static_cast<char>(length & 0xFFU) + hidden;
    const auto bytes = header.substr(0, 2) + segment + header.substr(2);
    EXPECT_EQ(frameOf(bytes)->size, QSize(640, 480));
    EXPECT_EQ(scansOf(bytes, 10), 1);
}

TEST_F(JpegFrameTest, tellsNothingOfWhatIsNoPicture) {
    using namespace std::string_literals;
    const auto whole = testing::jpegHeader(64, 64);
    EXPECT_EQ(frameOf(""), std::nullopt);
    EXPECT_EQ(frameOf("no picture"), std::nullopt);
    EXPECT_EQ(frameOf("\xFF\xD8\xFF\xD9"), std::nullopt);
    EXPECT_EQ(frameOf("\xFF\xD8\xFF\xE0\x00\x01"s), std::nullopt);
    EXPECT_EQ(frameOf(testing::jpegHeader(0, 64)), std::nullopt);
    EXPECT_EQ(frameOf(testing::jpegHeader(64, 0)), std::nullopt);
    for (std::size_t length = 0; length + 9 < whole.size(); ++length)
        EXPECT_EQ(frameOf(whole.substr(0, length)), std::nullopt) << length;
    EXPECT_EQ(frameOf(std::string("\xFF\xD8") + std::string(100'000, '\xFF')), std::nullopt);
    EXPECT_EQ(scansOf("no picture", 10), 0);
}

} // namespace
} // namespace diary

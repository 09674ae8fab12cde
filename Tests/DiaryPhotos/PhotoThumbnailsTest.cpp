// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "TestPictures.h"

#include <DiaryPhotos/PhotoThumbnails.h>

#include <QColor>
#include <QImage>
#include <QSize>
#include <QString>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {
namespace {

using testing::encoded;
using testing::quadrants;
using testing::showsQuadrants;

constexpr QSize tile(400, 264);
constexpr std::int64_t takenAt = 1'700'000'000;

class PhotoThumbnailsTest : public ::testing::Test {
protected:
    void writePhoto(const std::string &name, const QByteArray &bytes) const {
        folder.write(name, bytes.toStdString());
        setTime(folder / name);
    }

    static void setTime(const std::filesystem::path &file, std::int64_t seconds = takenAt) {
        const std::array times{timespec{.tv_sec = seconds, .tv_nsec = 0},
                               timespec{.tv_sec = seconds, .tv_nsec = 123'456'789}};
        ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times.data(), 0), 0);
    }

    // A white thumbnail, so that it can be told from the photo.
    void writeThumbnail(const std::string &size, const QSize &pixels, const QString &uri,
                        const QString &time) const {
        QImage image(pixels, QImage::Format_RGB32);
        image.fill(Qt::white);
        image.setText(QStringLiteral("Thumb::URI"), uri);
        image.setText(QStringLiteral("Thumb::MTime"), time);
        folder.write("thumbnails/" + size + "/" + thumbnailFileName(thumbnailUri(photo)).string(),
                     encoded(image, "png").toStdString());
    }

    void writeThumbnail(const std::string &size, const QSize &pixels) const {
        writeThumbnail(size, pixels, QString::fromStdString(thumbnailUri(photo)), QString::number(takenAt));
    }

    static bool isWhite(const QImage &image) {
        return !image.isNull() && image.pixel(10, 10) == QColor(Qt::white).rgb();
    }

    // A picture that cannot be decoded at a fraction of its size.
    static QByteArray costlyPhoto(QSize size = {2400, 1800}) { return encoded(quadrants(size), "png", 100); }

    testing::TemporaryFolder folder;
    std::filesystem::path photo = folder / "photo.jpg";
    std::filesystem::path thumbnails = folder / "thumbnails";
};

TEST_F(PhotoThumbnailsTest, namesFilesAsTheDesktopDoes) {
    EXPECT_EQ(thumbnailUri("/home/jens/photos/me.png"), "file:///home/jens/photos/me.png");
    EXPECT_EQ(thumbnailFileName("file:///home/jens/photos/me.png"), "c6ee772d9e49320e97ec29a7eb5b1697.png");
    EXPECT_EQ(thumbnailUri("/a b/ü#%?;[x]{y}|\\^`\"<>.jpg"),
              "file:///a%20b/%C3%BC%23%25%3F%3B%5Bx%5D%7By%7D%7C%5C%5E%60%22%3C%3E.jpg");
    EXPECT_EQ(thumbnailUri("/AZaz09/!$&'()*+,-.:=@_~"), "file:///AZaz09/!$&'()*+,-.:=@_~");
    EXPECT_EQ(thumbnailUri("/\xFF\xFE\n.jpg"), "file:///%FF%FE%0A.jpg");
    EXPECT_EQ(thumbnailUri("/a/./b/../c.jpg"), "file:///a/c.jpg");
}

TEST_F(PhotoThumbnailsTest, areTakenWhenTheyCover) {
    writePhoto("photo.jpg", encoded(quadrants({1600, 1200}), "jpeg"));
    writeThumbnail("x-large", {512, 384});
    const auto image = displayImage(photo, tile, thumbnails);
    EXPECT_EQ(image.size(), QSize(400, 300));
    EXPECT_EQ(image.format(), QImage::Format_RGB32);
    EXPECT_TRUE(isWhite(image));
}

TEST_F(PhotoThumbnailsTest, areTakenFromEachFolder) {
    writePhoto("photo.jpg", encoded(quadrants({1600, 1200}), "jpeg"));
    for (const auto &[size, side] : {std::pair("normal", 128), std::pair("large", 256),
                                     std::pair("x-large", 512), std::pair("xx-large", 1024)}) {
        writeThumbnail(size, {side, side * 3 / 4});
        EXPECT_TRUE(isWhite(displayImage(photo, {side, side / 2}, thumbnails))) << size;
        EXPECT_TRUE(showsQuadrants(displayImage(photo, {side + 1, side / 2}, thumbnails))) << size;
    }
}

TEST_F(PhotoThumbnailsTest, areNotTakenWhenOneSideIsTooShort) {
    writePhoto("photo.jpg", encoded(quadrants({1200, 1600}), "jpeg"));
    writeThumbnail("x-large", {384, 512});
    const auto image = displayImage(photo, tile, thumbnails);
    EXPECT_EQ(image.size(), QSize(400, 533));
    EXPECT_TRUE(showsQuadrants(image));
    writeThumbnail("xx-large", {768, 1024});
    EXPECT_TRUE(isWhite(displayImage(photo, tile, thumbnails)));
}

TEST_F(PhotoThumbnailsTest, areNotTakenWhenTheyShowAnotherFileOrTime) {
    writePhoto("photo.jpg", encoded(quadrants({1600, 1200}), "jpeg"));
    const auto uri = QString::fromStdString(thumbnailUri(photo));
    const auto time = QString::number(takenAt);
    const std::array wrong{std::pair(uri + QStringLiteral("x"), time),
                           std::pair(uri, QString::number(takenAt - 1)), std::pair(QString(), time),
                           std::pair(uri, QString()), std::pair(uri, time + QStringLiteral(".5"))};
    for (const auto &[otherUri, otherTime] : wrong) {
        writeThumbnail("x-large", {512, 384}, otherUri, otherTime);
        EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, thumbnails)))
            << otherUri.toStdString() << ' ' << otherTime.toStdString();
    }
    writeThumbnail("x-large", {512, 384}, uri, time);
    EXPECT_TRUE(isWhite(displayImage(photo, tile, thumbnails)));
}

TEST_F(PhotoThumbnailsTest, areNotTakenWhenTheyAreLargerThanTheirFolderAllows) {
    writePhoto("photo.jpg", encoded(quadrants({1600, 1200}), "jpeg"));
    writeThumbnail("x-large", {513, 384});
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, thumbnails)));
}

TEST_F(PhotoThumbnailsTest, areNotTakenWhenTheyAreNoPictures) {
    writePhoto("photo.jpg", encoded(quadrants({1600, 1200}), "jpeg"));
    const auto name = "thumbnails/x-large/" + thumbnailFileName(thumbnailUri(photo)).string();
    for (const char *content : {"", "no picture"}) {
        folder.write(name, content);
        EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, thumbnails)));
    }
    std::filesystem::remove(folder / name);
    ASSERT_EQ(mkfifo((folder / name).c_str(), 0600), 0);
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, thumbnails)));
}

TEST_F(PhotoThumbnailsTest, areNotTakenForAFileThatIsGone) {
    writePhoto("photo.jpg", encoded(quadrants({1600, 1200}), "jpeg"));
    writeThumbnail("x-large", {512, 384});
    std::filesystem::remove(photo);
    EXPECT_TRUE(displayImage(photo, tile, thumbnails).isNull());
}

TEST_F(PhotoThumbnailsTest, areLeftByAPhotoThatTookLong) {
    writePhoto("photo.jpg", costlyPhoto());
    const auto image = displayImage(photo, tile, thumbnails);
    EXPECT_EQ(image.size(), QSize(400, 300));
    EXPECT_TRUE(showsQuadrants(image));

    const auto name = thumbnailFileName(thumbnailUri(photo));
    EXPECT_EQ(folder.names("thumbnails"), (std::set<std::string>{"x-large"}));
    EXPECT_EQ(folder.names("thumbnails/x-large"), (std::set<std::string>{name.string()}));
    const QImage left(QString::fromStdString((thumbnails / "x-large" / name).string()));
    EXPECT_EQ(left.size(), QSize(512, 384));
    EXPECT_TRUE(showsQuadrants(left));
    EXPECT_EQ(left.text(QStringLiteral("Thumb::URI")).toStdString(), thumbnailUri(photo));
    EXPECT_EQ(left.text(QStringLiteral("Thumb::MTime")), QStringLiteral("1700000000"));
    EXPECT_EQ(left.text(QStringLiteral("Software")), QStringLiteral("Tavelo"));

    // Then it is as good as any other.
    writeThumbnail("x-large", {512, 384});
    EXPECT_TRUE(isWhite(displayImage(photo, tile, thumbnails)));
}

TEST_F(PhotoThumbnailsTest, areForTheUsersEyesAlone) {
    writePhoto("photo.jpg", costlyPhoto());
    const auto mask = umask(0);
    displayImage(photo, tile, thumbnails);
    umask(mask);
    struct stat status {};
    ASSERT_EQ(stat((thumbnails / "x-large" / thumbnailFileName(thumbnailUri(photo))).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    for (const char *name : {"", "x-large"}) {
        ASSERT_EQ(stat((thumbnails / name).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777U, 0700U) << name;
    }
}

TEST_F(PhotoThumbnailsTest, areReadAgainByWhoLeftThem) {
    // The thumbnail's sides are rounded, and so the image is a row lower than one of the photo itself.
    writePhoto("photo.jpg", costlyPhoto({2405, 1799}));
    const auto first = displayImage(photo, tile, thumbnails);
    ASSERT_FALSE(first.isNull());
    // The same time and another content, as no program leaves it: only the thumbnail still shows the old one.
    writePhoto("photo.jpg", QByteArray("no picture"));
    EXPECT_EQ(displayImage(photo, tile, thumbnails), first);
    setTime(photo, takenAt + 1);
    EXPECT_TRUE(displayImage(photo, tile, thumbnails).isNull());
}

TEST_F(PhotoThumbnailsTest, areLeftInTheSizeThatCovers) {
    writePhoto("photo.jpg", costlyPhoto({1800, 2400}));
    EXPECT_EQ(displayImage(photo, tile, thumbnails).size(), QSize(400, 533));
    EXPECT_EQ(folder.names("thumbnails"), (std::set<std::string>{"xx-large"}));
}

TEST_F(PhotoThumbnailsTest, areNotLeftWhenNoStandardSizeCovers) {
    writePhoto("photo.jpg", costlyPhoto());
    EXPECT_EQ(displayImage(photo, {1100, 700}, thumbnails).size(), QSize(1100, 825));
    EXPECT_TRUE(folder.names("thumbnails").empty());
}

TEST_F(PhotoThumbnailsTest, areNotLeftByWhatIsDecodedQuickly) {
    writePhoto("photo.jpg", encoded(quadrants({2400, 1800}), "jpeg"));
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, thumbnails)));
    writePhoto("photo.jpg", costlyPhoto({1200, 900}));
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, thumbnails)));
    EXPECT_FALSE(std::filesystem::exists(thumbnails));
}

TEST_F(PhotoThumbnailsTest, areNotLeftWhileTheFileMayStillChangeWithinItsSecond) {
    folder.write("photo.jpg", costlyPhoto().toStdString());
    setTime(photo, std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()) + 3600);
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, thumbnails)));
    EXPECT_FALSE(std::filesystem::exists(thumbnails));
}

TEST_F(PhotoThumbnailsTest, areNotLeftForThumbnails) {
    writePhoto("thumbnails/xx-large/large.png", costlyPhoto());
    EXPECT_TRUE(showsQuadrants(displayImage(thumbnails / "xx-large/large.png", tile, thumbnails)));
    EXPECT_TRUE(showsQuadrants(displayImage(thumbnails / "xx-large/large.png", tile, thumbnails / "")));
    EXPECT_EQ(folder.names("thumbnails"), (std::set<std::string>{"xx-large"}));
}

TEST_F(PhotoThumbnailsTest, areNotNeeded) {
    writePhoto("photo.jpg", costlyPhoto());
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, {})));
    // A file stands where the folder should be.
    folder.write("file", "content");
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, folder / "file")));
    EXPECT_EQ(folder.read("file"), "content");
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, folder / "file/below")));
    EXPECT_TRUE(displayImage(photo, {}, thumbnails).isNull());
}

TEST_F(PhotoThumbnailsTest, areFoundForNamesThatAreNotUtf8) {
    photo = folder / "\xFF\xFE ü.jpg";
    writePhoto("\xFF\xFE ü.jpg", costlyPhoto());
    EXPECT_TRUE(showsQuadrants(displayImage(photo, tile, thumbnails)));
    EXPECT_EQ(folder.names("thumbnails/x-large").size(), 1U);
    writeThumbnail("x-large", {512, 384});
    EXPECT_TRUE(isWhite(displayImage(photo, tile, thumbnails)));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <DiaryPhotos/PhotoFile.h>

#include <QByteArray>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace diary {
namespace {

class PhotoFileTest : public ::testing::Test {
protected:
    testing::TemporaryFolder folder;
};

TEST_F(PhotoFileTest, readsFromAnyPlace) {
    folder.write("photo", "0123456789");
    const auto file = PhotoFile::openRegular(folder / "photo");
    ASSERT_TRUE(file);
    EXPECT_EQ(file->size(), 10);
    EXPECT_EQ(file->read(4), "0123");
    EXPECT_EQ(file->peek(2), "45");
    EXPECT_TRUE(file->seek(8));
    EXPECT_EQ(file->read(4), "89");
    EXPECT_TRUE(file->atEnd());
    EXPECT_TRUE(file->seek(1));

    std::array<char, 3> bytes{};
    EXPECT_EQ(file->readAt(6, bytes.data(), bytes.size()), 3U);
    EXPECT_EQ(std::string(bytes.data(), bytes.size()), "678");
    EXPECT_EQ(file->read(1), "1");
    EXPECT_EQ(file->readAt(9, bytes.data(), bytes.size()), 1U);
    EXPECT_EQ(file->readAt(99, bytes.data(), bytes.size()), 0U);
}

TEST_F(PhotoFileTest, opensNothingButRegularFiles) {
    ASSERT_EQ(mkfifo((folder / "pipe.jpg").c_str(), 0600), 0);
    std::filesystem::create_directory(folder / "folder.jpg");
    std::filesystem::create_symlink("/dev/zero", folder / "device.jpg");
    std::filesystem::create_symlink(folder / "loop.jpg", folder / "loop.jpg");
    const auto listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder / "socket.jpg").string().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listening, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    for (const char *name : {"pipe.jpg", "folder.jpg", "device.jpg", "loop.jpg", "socket.jpg", "missing.jpg"})
        EXPECT_EQ(PhotoFile::openRegular(folder / name), nullptr) << name;
    close(listening);
}

TEST_F(PhotoFileTest, followsALinkToAPhoto) {
    folder.write("photo", "content");
    std::filesystem::create_symlink("photo", folder / "link");
    const auto file = PhotoFile::openRegular(folder / "link");
    ASSERT_TRUE(file);
    EXPECT_EQ(file->readAll(), "content");
}

TEST_F(PhotoFileTest, endsEarlyWhenTheFileIsCutWhileItIsRead) {
    folder.write("photo", std::string(100'000, 'x'));
    const auto file = PhotoFile::openRegular(folder / "photo");
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->isUnchanged());
    EXPECT_EQ(file->read(50'000).size(), 50'000);
    std::filesystem::resize_file(folder / "photo", 60'000);
    EXPECT_EQ(file->read(50'000).size(), 10'000);
    EXPECT_EQ(file->read(10).size(), 0);
    EXPECT_FALSE(file->isUnchanged());
}

TEST_F(PhotoFileTest, keepsReadingTheFileThatWasReplaced) {
    folder.write("photo", "the old content");
    const auto file = PhotoFile::openRegular(folder / "photo");
    ASSERT_TRUE(file);
    folder.write("new", "something else");
    std::filesystem::rename(folder / "new", folder / "photo");
    EXPECT_EQ(file->readAll(), "the old content");
}

TEST_F(PhotoFileTest, tellsTheTimeOfItsLastChange) {
    folder.write("photo", "content");
    const std::array times{timespec{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                           timespec{.tv_sec = 1'700'000'000, .tv_nsec = 999'999'999}};
    ASSERT_EQ(utimensat(AT_FDCWD, (folder / "photo").c_str(), times.data(), 0), 0);
    const auto file = PhotoFile::openRegular(folder / "photo");
    ASSERT_TRUE(file);
    EXPECT_EQ(file->modificationTime().count(), 1'700'000'000);
}

} // namespace
} // namespace diary

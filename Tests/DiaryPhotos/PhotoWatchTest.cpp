// SPDX-License-Identifier: MIT
#include "DiaryPhotos/DatedPictures.h"
#include "Support/TemporaryFolder.h"

#include <DiaryPhotos/PhotoWatch.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace diary {

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TemporaryFolder;

class PhotoWatchTest : public ::testing::Test {
protected:
    PhotoWatchTest() {
        fs::create_directory(folder / "below");
        folder.write("there.jpg", "there");
        watch.beginRound();
        watch.watch(folder.path());
        watch.watch(folder / "below");
        watch.endRound();
    }

    TemporaryFolder folder;
    PhotoWatch watch;
};

TEST_F(PhotoWatchTest, tellsTheFolderOfAPictureThatCameWentOrChanged) {
    EXPECT_TRUE(watch.isComplete());
    EXPECT_TRUE(watch.read().isEmpty());
    folder.write("below/a.jpg", "a");
    EXPECT_THAT(watch.read().folders, ElementsAre(folder / "below"));
    testing::setModified(folder / "there.jpg", 5);
    EXPECT_THAT(watch.read().folders, ElementsAre(folder.path()));
    fs::rename(folder / "there.jpg", folder / "below/moved.jpg");
    EXPECT_THAT(watch.read().folders, ElementsAre(folder.path(), folder / "below"));
    fs::remove(folder / "below/moved.jpg");
    fs::remove(folder / "below/a.jpg");
    const auto news = watch.read();
    EXPECT_THAT(news.folders, ElementsAre(folder / "below"));
    EXPECT_FALSE(news.ofEverything);
}

TEST_F(PhotoWatchTest, waitsUntilANewPictureIsClosed) {
    std::ofstream file(folder / "a.jpg");
    file << "half";
    file.flush();
    EXPECT_TRUE(watch.read().isEmpty());
    file.close();
    EXPECT_THAT(watch.read().folders, ElementsAre(folder.path()));
}

TEST_F(PhotoWatchTest, seesLinksToPicturesAtOnce) {
    fs::create_symlink("there.jpg", folder / "below/link.jpg");
    EXPECT_THAT(watch.read().folders, ElementsAre(folder / "below"));
    fs::create_hard_link(folder / "there.jpg", folder / "below/hard.jpg");
    EXPECT_TRUE(watch.read().folders.contains(folder / "below"));
}

TEST_F(PhotoWatchTest, passesOverOtherFiles) {
    folder.write("notes.txt", "no picture");
    folder.write(".hidden.jpg", "hidden");
    folder.write("film.mp4.part", "no picture");
    fs::remove(folder / "notes.txt");
    EXPECT_TRUE(watch.read().isEmpty());
}

TEST_F(PhotoWatchTest, wantsEverythingLookedAtWhenFoldersComeOrGo) {
    fs::create_directory(folder / "new");
    EXPECT_TRUE(watch.read().ofEverything);
    fs::rename(folder / "new", folder / "renamed");
    EXPECT_TRUE(watch.read().ofEverything);
    fs::create_directory_symlink("renamed", folder / "link");
    EXPECT_TRUE(watch.read().ofEverything);
    folder.write("below/.nomedia", "");
    EXPECT_TRUE(watch.read().ofEverything);
    fs::remove_all(folder / "below");
    EXPECT_TRUE(watch.read().ofEverything);
    fs::remove_all(folder.path());
    EXPECT_TRUE(watch.read().ofEverything);
}

TEST_F(PhotoWatchTest, keepsWatchingWhatTheLastRoundNamed) {
    watch.beginRound();
    watch.watch(folder / "below");
    watch.endRound();
    watch.read();
    folder.write("a.jpg", "a");
    EXPECT_TRUE(watch.read().isEmpty());
    folder.write("below/a.jpg", "a");
    EXPECT_THAT(watch.read().folders, ElementsAre(folder / "below"));
}

TEST_F(PhotoWatchTest, saysWhenThereAreTooManyFoldersToWatch) {
    PhotoWatch small(1);
    for (int round = 0; round < 2; ++round) {
        small.beginRound();
        small.watch(folder.path());
        EXPECT_TRUE(small.isComplete());
        small.watch(folder / "below");
        EXPECT_FALSE(small.isComplete());
        small.endRound();
    }
    folder.write("a.jpg", "a");
    EXPECT_THAT(small.read().folders, ElementsAre(folder.path()));
}

TEST_F(PhotoWatchTest, saysWhenAFolderCannotBeWatched) {
    watch.beginRound();
    watch.watch(folder / "missing");
    EXPECT_FALSE(watch.isComplete());
}

TEST_F(PhotoWatchTest, wantsEverythingLookedAtWhenTheSystemLostCount) {
    std::ifstream limitFile("/proc/sys/fs/inotify/max_queued_events");
    long limit = 0;
    limitFile >> limit;
    ASSERT_GT(limit, 0);
    // Two events in turn, since the same one again is not counted.
    for (long number = 0; number <= limit; ++number) {
        fs::rename(folder / "there.jpg", folder / "here.jpg");
        fs::rename(folder / "here.jpg", folder / "there.jpg");
    }
    EXPECT_TRUE(watch.read().ofEverything);
}

} // namespace

} // namespace diary

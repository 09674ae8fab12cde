// SPDX-License-Identifier: MIT
#include "DiaryPhotos/DatedPictures.h"
#include "Support/ForkedTask.h"
#include "Support/TemporaryFolder.h"

#include <DiaryPhotos/PhotoScanner.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <sys/mount.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class PhotoScannerTest : public ::testing::Test {
protected:
    PhotoScannerTest() { fs::create_directories(pictures); }

    PhotoScanner scanner(PhotoScanner::Bounds bounds = {}) {
        return {index,
                watch,
                {.isCancelled = [this] { return isCancelled && isCancelled(); },
                 .onStored = [this] { ++stored; },
                 .onProgress = [this](const PhotoScanner::Progress &value) { progress = value; }},
                bounds};
    }

    PhotoScanner::Result scan() { return scanner().scan({pictures}); }

    void take(const fs::path &name, const std::string &time = "2024:02:03 10:11:12") const {
        makePictureTakenAt(pictures / name, time);
    }

    // Relative to the temporary folder.
    std::vector<std::string> found() {
        std::vector<std::string> names;
        constexpr std::chrono::seconds always(400'000'000'000);
        for (const auto &photo :
             index.photos(PhotoDate::LocalTime(-always), PhotoDate::LocalTime(always), 10'000))
            names.push_back(photo.file.lexically_relative(folder.path()).string());
        return names;
    }

    TemporaryFolder folder;
    fs::path pictures = folder / "pictures";
    PhotoIndex index{folder / "cache"};
    PhotoWatch watch;
    std::function<bool()> isCancelled;
    PhotoScanner::Progress progress;
    int stored = 0;
};

TEST_F(PhotoScannerTest, findsPicturesOfEveryKindAtEveryDepth) {
    take("a.jpg");
    take("b/c.JPEG");
    take("b/d/e/f.png");
    take("g.webp");
    take("h.tiff");
    writeBytes(pictures / "i.HEIC", heifWithDate("heic", "2024:02:03 10:11:12", 300));
    writeBytes(pictures / "j.avif", heifWithDate("avif", "2024:02:03 10:11:12", 300));
    folder.write("pictures/film.mp4", "no picture");
    folder.write("pictures/notes.txt", "no picture");
    const auto result = scan();
    EXPECT_TRUE(result.isFinished);
    EXPECT_EQ(result.progress.found, 7U);
    EXPECT_EQ(result.progress.read, 7U);
    EXPECT_EQ(result.unreadableFolders, 0U);
    EXPECT_THAT(found(), UnorderedElementsAre("pictures/a.jpg", "pictures/b/c.JPEG", "pictures/b/d/e/f.png",
                                              "pictures/g.webp", "pictures/h.tiff", "pictures/i.HEIC",
                                              "pictures/j.avif"));
}

TEST_F(PhotoScannerTest, showsGoodPicturesBesideDamagedFiles) {
    take("good.jpg");
    take("truncated.jpg");
    fs::resize_file(pictures / "truncated.jpg", 100);
    folder.write("pictures/text.jpg", "Dear diary");
    folder.write("pictures/empty.png", "");
    folder.write("pictures/\xff\xc3.jpg", "\xff\xd8\xff lies");
    take("\xc3(.jpg");
    EXPECT_TRUE(scan().isFinished);
    EXPECT_THAT(found(), UnorderedElementsAre("pictures/good.jpg", "pictures/truncated.jpg",
                                              "pictures/\xff\xc3.jpg", "pictures/\xc3(.jpg"));
}

TEST_F(PhotoScannerTest, passesOverWhatIsHiddenOrNoCollection) {
    take("seen.jpg");
    take(".hidden.jpg");
    take(".thumbnails/a.jpg");
    take("@eaDir/a.jpg");
    take("$RECYCLE.BIN/a.jpg");
    take("private/a.jpg");
    take("private/below/a.jpg");
    folder.write("pictures/private/.nomedia", "");
    scan();
    EXPECT_THAT(found(), ElementsAre("pictures/seen.jpg"));
}

TEST_F(PhotoScannerTest, doesNotReadUnchangedFilesAgain) {
    take("a.jpg");
    take("b/c.jpg");
    scan();
    stored = 0;
    // Whatever is read now would be taken for no picture.
    for (const char *name : {"a.jpg", "b/c.jpg"}) {
        const auto time = fs::last_write_time(pictures / name);
        writeBytes(pictures / name, std::string(fs::file_size(pictures / name), 'x'));
        fs::last_write_time(pictures / name, time);
    }
    const auto result = scan();
    EXPECT_EQ(stored, 0);
    EXPECT_EQ(result.progress.read, 2U);
    EXPECT_THAT(found(), UnorderedElementsAre("pictures/a.jpg", "pictures/b/c.jpg"));
}

TEST_F(PhotoScannerTest, noticesNewChangedMovedAndDeletedFiles) {
    take("changed.jpg", "2024:01:01 00:00:00");
    take("moved.jpg", "2024:01:02 00:00:00");
    take("deleted.jpg", "2024:01:03 00:00:00");
    take("folder/with.jpg", "2024:01:04 00:00:00");
    take("gone/with.jpg", "2024:01:05 00:00:00");
    scan();
    take("changed.jpg", "2024:02:01 00:00:00");
    setModified(pictures / "changed.jpg", 5);
    fs::create_directory(pictures / "to");
    fs::rename(pictures / "moved.jpg", pictures / "to/moved.jpg");
    fs::remove(pictures / "deleted.jpg");
    fs::rename(pictures / "folder", pictures / "renamed");
    fs::remove_all(pictures / "gone");
    take("new.jpg", "2024:03:01 00:00:00");
    const auto result = scan();
    EXPECT_THAT(found(), ElementsAre("pictures/to/moved.jpg", "pictures/renamed/with.jpg",
                                     "pictures/changed.jpg", "pictures/new.jpg"));
    EXPECT_EQ(result.progress.found, 4U);
    EXPECT_EQ(result.progress.read, 4U);
}

TEST_F(PhotoScannerTest, looksAgainAtSingleFolders) {
    take("a.jpg", "2024:01:01 00:00:00");
    take("b/c.jpg", "2024:01:02 00:00:00");
    take("b/d.jpg", "2024:01:03 00:00:00");
    auto scan = scanner();
    scan.scan({pictures});
    fs::remove(pictures / "b/c.jpg");
    take("b/e.jpg", "2024:01:04 00:00:00");
    take("b/f.jpg", "2024:01:05 00:00:00");
    take("not-looked-at.jpg");
    const auto result = scan.scanFolders({pictures}, {pictures / "b", pictures / "missing"});
    EXPECT_THAT(found(),
                ElementsAre("pictures/a.jpg", "pictures/b/d.jpg", "pictures/b/e.jpg", "pictures/b/f.jpg"));
    EXPECT_EQ(result.progress.found, 4U);
    EXPECT_EQ(result.progress.read, 4U);
}

TEST_F(PhotoScannerTest, findsEachFolderOnceHoweverLinksLead) {
    take("z/a.jpg");
    fs::create_directory_symlink("z", pictures / "a-link");
    fs::create_directory_symlink(".", pictures / "z/self");
    fs::create_directory_symlink("..", pictures / "z/up");
    fs::create_directory_symlink("circle", pictures / "circle");
    fs::create_directory_symlink("nowhere", pictures / "dangling");
    scan();
    EXPECT_THAT(found(), ElementsAre("pictures/z/a.jpg"));
}

TEST_F(PhotoScannerTest, followsLinksThatLeadOutOfTheFolder) {
    makePictureTakenAt(folder / "drive/year/a.jpg", "2024:02:03 10:11:12");
    makePictureTakenAt(folder / "single.jpg", "2024:02:03 10:11:12");
    fs::create_directory_symlink(folder / "drive", pictures / "drive");
    fs::create_symlink(folder / "single.jpg", pictures / "picked.jpg");
    scan();
    EXPECT_THAT(found(), UnorderedElementsAre("pictures/drive/year/a.jpg", "pictures/picked.jpg"));
}

TEST_F(PhotoScannerTest, findsALinkedPictureOnce) {
    take("year/a.jpg");
    take(".annex/hidden.jpg");
    fs::create_directory(pictures / "favourites");
    fs::create_symlink("../year/a.jpg", pictures / "favourites/best.jpg");
    fs::create_symlink("../.annex/hidden.jpg", pictures / "favourites/shown.jpg");
    fs::create_symlink("missing.jpg", pictures / "favourites/dangling.jpg");
    scan();
    EXPECT_THAT(found(), UnorderedElementsAre("pictures/year/a.jpg", "pictures/favourites/shown.jpg"));
}

TEST_F(PhotoScannerTest, findsWhatLiesBelowTwoRootsOnce) {
    take("year/a.jpg");
    makePictureTakenAt(folder / "other/b.jpg", "2024:02:03 10:11:12");
    scanner().scan({pictures, pictures / "year", folder / "other/", folder / "other"});
    EXPECT_EQ(found().size(), 2U);
}

TEST_F(PhotoScannerTest, forgetsWhatLiesBelowNoRoot) {
    take("a.jpg");
    makePictureTakenAt(folder / "other/b.jpg", "2024:02:03 10:11:12");
    scanner().scan({pictures, folder / "other"});
    ASSERT_EQ(found().size(), 2U);
    scanner().scan({folder / "other"});
    EXPECT_THAT(found(), ElementsAre("other/b.jpg"));
    EXPECT_EQ(index.folders().size(), 1U);
}

TEST_F(PhotoScannerTest, stopsAtItsBounds) {
    for (int number = 0; number < 10; ++number)
        take(std::to_string(number) + "/a.jpg");
    take("9/8/7/6.jpg");
    scanner({.depth = 1}).scan({pictures});
    EXPECT_EQ(found().size(), 10U);
    scanner({.folders = 4}).scan({pictures});
    EXPECT_EQ(found().size(), 2U); // and two folders without any
    scanner({.photos = 3}).scan({pictures});
    EXPECT_EQ(found().size(), 3U);
    scanner({.entries = 5}).scan({pictures});
    EXPECT_LT(found().size(), 5U);
    scan();
    EXPECT_EQ(found().size(), 11U);
}

TEST_F(PhotoScannerTest, keepsWhatARootHeldUntilItReturns) {
    take("year/a.jpg");
    makePictureTakenAt(folder / "drive/b.jpg", "2024:02:03 10:11:12");
    const std::vector<fs::path> roots = {pictures, folder / "drive"};
    scanner().scan(roots);
    ASSERT_EQ(found().size(), 2U);

    fs::rename(folder / "drive", folder / "away");
    const auto result = scanner().scan(roots);
    EXPECT_EQ(result.unreadableFolders, 0U);
    EXPECT_THAT(found(), ElementsAre("pictures/year/a.jpg"));

    // As the folder that a drive is mounted on.
    fs::create_directory(folder / "drive");
    scanner().scan(roots);
    EXPECT_THAT(found(), ElementsAre("pictures/year/a.jpg"));

    fs::remove(folder / "drive");
    fs::rename(folder / "away", folder / "drive");
    // Still known, so not read again.
    const auto time = fs::last_write_time(folder / "drive/b.jpg");
    writeBytes(folder / "drive/b.jpg", std::string(fs::file_size(folder / "drive/b.jpg"), 'x'));
    fs::last_write_time(folder / "drive/b.jpg", time);
    scanner().scan(roots);
    EXPECT_THAT(found(), UnorderedElementsAre("pictures/year/a.jpg", "drive/b.jpg"));
}

// Root may read everything, so the folders are looked at as someone else.
TEST_F(PhotoScannerTest, skipsFoldersItMayNotReadAndCountsThem) {
    take("seen/a.jpg");
    take("closed/b.jpg");
    const auto report = reportOfFork([&]() -> std::string {
        if (::geteuid() == 0) {
            constexpr uid_t nobody = 65534;
            for (const auto &entry : fs::recursive_directory_iterator(folder.path()))
                if (::lchown(entry.path().c_str(), nobody, nobody) < 0)
                    return "cannot give away";
            fs::permissions(folder.path(), fs::perms::all);
            if (::seteuid(nobody) < 0)
                return "cannot become someone else";
        }
        PhotoIndex own(folder / "own-cache");
        PhotoScanner scanner(own, watch, {[] { return false; }, [] {}, [](const auto &) {}});
        scanner.scan({pictures});
        fs::permissions(pictures / "closed", fs::perms::none);
        const auto below = scanner.scan({pictures});
        std::string text = std::to_string(below.unreadableFolders) + " unreadable,";
        const auto add = [&] {
            for (const auto &photo : own.photos(PhotoDate::LocalTime(), PhotoDate::LocalTime::max(), 9))
                text += " " + photo.file.filename().string();
            text += ";";
        };
        add();
        fs::permissions(pictures, fs::perms::none);
        const auto access = accessOf({pictures, folder / "missing", folder.path()});
        text += " " + std::to_string(access.listable) + std::to_string(access.unreadable) +
                std::to_string(access.missing) + ";";
        scanner.scan({pictures});
        add();
        fs::permissions(pictures, fs::perms::owner_all);
        fs::permissions(pictures / "closed", fs::perms::owner_all);
        scanner.scan({pictures});
        add();
        return text;
    });
    EXPECT_EQ(report, "1 unreadable, a.jpg; 111;; a.jpg b.jpg;");
}

TEST_F(PhotoScannerTest, goesOnWhereItWasInterrupted) {
    constexpr int count = 200;
    for (int number = 0; number < count; ++number) {
        take(std::to_string(number) + ".jpg");
        setModified(pictures / (std::to_string(number) + ".jpg"), 1'000'000 + number);
    }
    isCancelled = [this] { return stored > 0; };
    EXPECT_FALSE(scan().isFinished);
    const auto early = found();
    EXPECT_GT(early.size(), 0U);
    EXPECT_LT(early.size(), std::size_t(count));
    // The newest come first.
    EXPECT_THAT(early, ::testing::Contains("pictures/199.jpg"));
    for (const auto &name : early) {
        const auto time = fs::last_write_time(folder / name);
        writeBytes(folder / name, std::string(fs::file_size(folder / name), 'x'));
        fs::last_write_time(folder / name, time);
    }
    isCancelled = nullptr;
    EXPECT_TRUE(scan().isFinished);
    EXPECT_EQ(found().size(), std::size_t(count));
}

TEST_F(PhotoScannerTest, isCancelledBeforeEveryFile) {
    for (int number = 0; number < 30; ++number)
        take(std::to_string(number) + ".jpg");
    for (int questions = 0; questions < 60; ++questions) {
        std::atomic<int> asked = 0; // by two threads
        isCancelled = [&] { return ++asked > questions; };
        EXPECT_FALSE(scan().isFinished) << questions;
    }
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(PhotoScannerTest, survivesFoldersThatVanishMeanwhile) {
    for (int number = 0; number < 10; ++number)
        take(std::to_string(number) + "/deep/a.jpg");
    int questions = 0;
    isCancelled = [&] {
        if (++questions == 8)
            fs::remove_all(pictures / "3");
        if (questions == 30)
            fs::remove_all(pictures / "4");
        if (questions == 40)
            fs::remove_all(pictures / "9");
        return false;
    };
    EXPECT_TRUE(scan().isFinished);
    EXPECT_GE(questions, 40);
    isCancelled = nullptr;
    EXPECT_TRUE(scan().isFinished);
    EXPECT_EQ(found().size(), 7U);
}

TEST_F(PhotoScannerTest, survivesTheRootVanishingMeanwhile) {
    take("a.jpg");
    take("b/c.jpg");
    int questions = 0;
    isCancelled = [&] {
        if (++questions == 3)
            fs::remove_all(pictures);
        return false;
    };
    EXPECT_TRUE(scan().isFinished);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(PhotoScannerTest, readsEverythingAgainWhenTheIndexIsDamaged) {
    take("a.jpg");
    take("b/c.jpg");
    scan();
    fs::remove_all(folder / "cache");
    scan();
    EXPECT_EQ(found().size(), 2U);
    PhotoIndex other(folder / "cache");
    EXPECT_EQ(other.folders().size(), 2U);
}

TEST_F(PhotoScannerTest, looksNoLongerAtFilesThatAreNoPictures) {
    folder.write("pictures/text.jpg", "Dear diary");
    const auto first = scan();
    EXPECT_EQ(first.progress.found, 1U);
    EXPECT_EQ(first.progress.read, 1U);
    stored = 0;
    scan();
    EXPECT_EQ(stored, 0);
    take("text.jpg");
    scan();
    EXPECT_THAT(found(), ElementsAre("pictures/text.jpg"));
}

TEST_F(PhotoScannerTest, tellsHowFarItHasCome) {
    for (int number = 0; number < 100; ++number)
        take(std::to_string(number) + ".jpg");
    scan();
    EXPECT_EQ(progress.found, 100U);
    EXPECT_EQ(progress.read, 100U);
    EXPECT_EQ(stored, 2); // portions
}

} // namespace

} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/ForkedTask.h"
#include "Support/TemporaryFolder.h"

#include <DiaryPhotos/PhotoIndex.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TemporaryFolder;

PhotoDate::LocalTime at(std::int64_t seconds) {
    return PhotoDate::LocalTime(std::chrono::seconds(seconds));
}

constexpr std::int64_t always = 4'000'000'000;

PhotoIndex::Reading reading(const fs::path &folder, const std::string &name, std::int64_t seconds) {
    return {folder, name, {{100, 5}, PhotoDate{at(seconds), PhotoDate::Origin::Original}}};
}

std::vector<fs::path> filesOf(PhotoIndex &index, std::size_t limit = 100) {
    std::vector<fs::path> files;
    for (const auto &photo : index.photos(at(-always), at(always), limit))
        files.push_back(photo.file);
    return files;
}

std::vector<std::string> knownNames(PhotoIndex &index, const fs::path &folder) {
    std::vector<std::string> names;
    for (const auto &known : index.folders()) {
        if (known.path == folder)
            index.forEachFile(known.number,
                              [&](std::string_view name, const FileStamp &) { names.emplace_back(name); });
    }
    return names;
}

std::int64_t numberOf(PhotoIndex &index, const fs::path &folder) {
    for (const auto &known : index.folders()) {
        if (known.path == folder)
            return known.number;
    }
    ADD_FAILURE() << "unknown " << folder;
    return 0;
}

void executeIn(const fs::path &file, const char *text) {
    sqlite3 *database = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, text, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
}

class PhotoIndexTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    fs::path cache = folder / "cache/tavelo";
    fs::path file = cache / PhotoIndex::fileName;

    void fill() {
        PhotoIndex index(cache);
        ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 10)}}));
    }
};

TEST_F(PhotoIndexTest, findsPicturesByTimeAndThenByName) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply(
        {.read = {reading("/p", "c.jpg", 20), reading("/p", "b.jpg", 20), reading("/p/z", "a.jpg", 20),
                  reading("/p", "z.jpg", 10), reading("/p", "y.jpg", -30)}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/y.jpg", "/p/z.jpg", "/p/z/a.jpg", "/p/b.jpg", "/p/c.jpg"));
    EXPECT_THAT(filesOf(index, 2), ElementsAre("/p/y.jpg", "/p/z.jpg"));
    EXPECT_THAT(filesOf(index, 0), IsEmpty());
}

TEST_F(PhotoIndexTest, takesTheStartIntoARangeAndLeavesTheEndOut) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 10), reading("/p", "b.jpg", 20)}}));
    EXPECT_THAT(index.photos(at(10), at(20), 9), ElementsAre(PhotoIndex::Photo{"/p/a.jpg", at(10)}));
    EXPECT_THAT(index.photos(at(11), at(21), 9), ElementsAre(PhotoIndex::Photo{"/p/b.jpg", at(20)}));
    EXPECT_THAT(index.photos(at(20), at(10), 9), IsEmpty());
}

TEST_F(PhotoIndexTest, countsOnlyAcceptedPicturesTowardsTheLimit) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 10), reading("/p", "b.jpg", 20)}}));
    const auto found =
        index.photos(at(0), at(99), 1, [](const fs::path &path) { return path.filename() == "b.jpg"; });
    EXPECT_THAT(found, ElementsAre(PhotoIndex::Photo{"/p/b.jpg", at(20)}));
}

TEST_F(PhotoIndexTest, remembersFilesThatAreNoPicturesWithoutFindingThem) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {{"/p", "text.jpg", {{7, 8}, std::nullopt}}}}));
    EXPECT_THAT(filesOf(index), IsEmpty());
    EXPECT_THAT(knownNames(index, "/p"), ElementsAre("text.jpg"));
}

TEST_F(PhotoIndexTest, keepsPathsByteForByte) {
    const std::string odd = "\xff\xc3 ü'\"\n%";
    {
        PhotoIndex index(cache);
        ASSERT_TRUE(index.apply({.read = {reading("/p/" + odd, odd + ".jpg", 10)}}));
    }
    PhotoIndex index(cache);
    EXPECT_THAT(filesOf(index), ElementsAre(fs::path("/p/" + odd + "/" + odd + ".jpg")));
    EXPECT_THAT(knownNames(index, "/p/" + odd), ElementsAre(odd + ".jpg"));
}

TEST_F(PhotoIndexTest, listsKnownFilesInTheOrderOfTheirBytes) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "\xff.jpg", 1), reading("/p", "a.jpg", 1),
                                      reading("/p", "B.jpg", 1), reading("/p", "a", 1)}}));
    EXPECT_THAT(knownNames(index, "/p"), ElementsAre("B.jpg", "a", "a.jpg", "\xff.jpg"));
}

TEST_F(PhotoIndexTest, replacesWhatItKnewOfAFile) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 10)}}));
    ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 20)}}));
    EXPECT_THAT(index.photos(at(0), at(99), 9), ElementsAre(PhotoIndex::Photo{"/p/a.jpg", at(20)}));
}

TEST_F(PhotoIndexTest, forgetsFilesAndFolders) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply(
        {.read = {reading("/p", "a.jpg", 10), reading("/p", "b.jpg", 20), reading("/p/q", "c.jpg", 30)}}));
    ASSERT_TRUE(index.apply({.goneFiles = {{numberOf(index, "/p"), "a.jpg"}}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/b.jpg", "/p/q/c.jpg"));
    ASSERT_TRUE(index.apply({.goneFolders = {numberOf(index, "/p")}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/q/c.jpg"));
    EXPECT_EQ(index.folders().size(), 1U);
}

TEST_F(PhotoIndexTest, keepsWhatCannotBeReachedWithoutFindingIt) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 10), reading("/q", "b.jpg", 20)}}));
    ASSERT_TRUE(index.apply({.unreachableFolders = {numberOf(index, "/p")}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/q/b.jpg"));
    EXPECT_THAT(knownNames(index, "/p"), ElementsAre("a.jpg"));
    ASSERT_TRUE(index.apply({.reachableFolders = {numberOf(index, "/p")}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/a.jpg", "/q/b.jpg"));
}

TEST_F(PhotoIndexTest, outlastsTheProcess) {
    fill();
    PhotoIndex index(cache);
    EXPECT_THAT(filesOf(index), ElementsAre("/p/a.jpg"));
    EXPECT_EQ(index.beginnings(), 0U);
}

TEST_F(PhotoIndexTest, isForTheUserAlone) {
    fill();
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(PhotoIndexTest, beginsAnewBesideAFileThatIsNoDatabase) {
    fs::create_directories(cache);
    std::string bytes = "This is no database. ";
    while (bytes.size() < 10'000)
        bytes += bytes;
    folder.write("cache/tavelo/photos.sqlite", bytes);
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 10)}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/a.jpg"));
    EXPECT_EQ(folder.read("cache/tavelo/photos.sqlite.bad"), bytes);
}

TEST_F(PhotoIndexTest, beginsAnewBesideTheDatabaseOfAnotherProgram) {
    fs::create_directories(cache);
    executeIn(file, "CREATE TABLE bookmarks (name); INSERT INTO bookmarks VALUES ('kept')");
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 10)}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/a.jpg"));
    executeIn(cache / "photos.sqlite.bad", "SELECT name FROM bookmarks");
}

TEST_F(PhotoIndexTest, beginsAnewBesideADatabaseOfANewerVersion) {
    fill();
    executeIn(file, "PRAGMA user_version = 999");
    PhotoIndex index(cache);
    EXPECT_THAT(filesOf(index), IsEmpty());
    ASSERT_TRUE(index.apply({.read = {reading("/p", "b.jpg", 10)}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/b.jpg"));
    EXPECT_TRUE(fs::exists(cache / "photos.sqlite.bad"));
}

TEST_F(PhotoIndexTest, beginsAnewWhenATableIsMissing) {
    fill();
    executeIn(file, "DROP TABLE folders");
    PhotoIndex index(cache);
    EXPECT_THAT(filesOf(index), IsEmpty());
    EXPECT_EQ(index.beginnings(), 1U);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "b.jpg", 10)}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/b.jpg"));
}

TEST_F(PhotoIndexTest, survivesDamageAtAnyPlace) {
    {
        PhotoIndex index(cache);
        PhotoIndex::Changes changes;
        for (int number = 0; number < 500; ++number)
            changes.read.push_back(
                reading("/p" + std::to_string(number % 7), std::to_string(number), number));
        ASSERT_TRUE(index.apply(changes));
    }
    const auto whole = folder.read("cache/tavelo/photos.sqlite");
    for (std::size_t start = 0; start < whole.size(); start += 1500) {
        auto bytes = whole;
        bytes.replace(start, 700, std::min<std::size_t>(700, whole.size() - start), '\x55');
        for (const char *ending : {"", "-wal", "-shm"})
            fs::remove(file.string() + ending);
        folder.write("cache/tavelo/photos.sqlite", bytes);
        PhotoIndex index(cache);
        filesOf(index, 1000);
        for (const auto &known : index.folders())
            index.forEachFile(known.number, [](std::string_view, const FileStamp &) {});
        // Either the damage does no harm, or it has been noticed by the first change at the latest.
        const PhotoIndex::Changes change{.read = {reading("/new", "new.jpg", 9999)}};
        EXPECT_TRUE(index.apply(change) || index.apply(change)) << start;
        EXPECT_THAT(index.photos(at(9999), at(10'000), 9),
                    ElementsAre(PhotoIndex::Photo{"/new/new.jpg", at(9999)}))
            << start;
    }
}

TEST_F(PhotoIndexTest, followsItsFileWhenThatIsDeleted) {
    fill();
    PhotoIndex index(cache);
    fs::remove_all(cache);
    index.refresh();
    EXPECT_EQ(index.beginnings(), 1U);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "b.jpg", 10)}}));
    PhotoIndex other(cache);
    EXPECT_THAT(filesOf(other), ElementsAre("/p/b.jpg"));
    index.refresh();
    EXPECT_EQ(index.beginnings(), 1U);
}

TEST_F(PhotoIndexTest, staysInMemoryWhereNoFileCanBe) {
    folder.write("cache", "a file in the folder's place");
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "a.jpg", 10)}}));
    EXPECT_THAT(filesOf(index), ElementsAre("/p/a.jpg"));
    PhotoIndex other(cache);
    EXPECT_THAT(filesOf(other), IsEmpty());
}

TEST_F(PhotoIndexTest, stillFindsWhatItKnewWhenTheDiskIsFull) {
    const auto report = testing::reportOfFork([&]() -> std::string {
        PhotoIndex index(cache);
        if (!index.apply({.read = {reading("/p", "a.jpg", 10)}}))
            return "cannot begin";
        const auto size = static_cast<rlim_t>(fs::file_size(file.string() + "-wal"));
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{size, size};
        if (::setrlimit(RLIMIT_FSIZE, &limit) < 0)
            return "cannot limit";
        if (index.apply({.read = {reading("/p", "b.jpg", 20)}}))
            return "stored beyond the limit";
        const auto files = filesOf(index);
        return files == std::vector<fs::path>{"/p/a.jpg"} && index.beginnings() == 0 ? "fine" : "lost";
    });
    EXPECT_EQ(report, "fine");
}

TEST_F(PhotoIndexTest, isSharedByTwoProcesses) {
    std::vector<pid_t> children;
    for (const char *name : {"/first", "/second"}) {
        children.push_back(::fork());
        ASSERT_GE(children.back(), 0);
        if (children.back() > 0)
            continue;
        PhotoIndex own(cache);
        bool isWritten = true;
        for (int number = 0; number < 100; ++number)
            isWritten = own.apply({.read = {reading(name, std::to_string(number), number)}}) && isWritten;
        ::_exit(isWritten && filesOf(own, 1000).size() >= 100 ? 0 : 1);
    }
    for (const auto child : children) {
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    PhotoIndex index(cache);
    EXPECT_EQ(filesOf(index, 1000).size(), 200U);
    EXPECT_FALSE(fs::exists(file.string() + ".bad"));
}

TEST_F(PhotoIndexTest, answersWhileItIsBuilt) {
    PhotoIndex index(cache);
    ASSERT_TRUE(index.apply({.read = {reading("/p", "first.jpg", -1)}}));
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        for (int round = 0; round < 100; ++round) {
            PhotoIndex::Changes changes;
            for (int number = 0; number < 50; ++number)
                changes.read.push_back(
                    reading("/p", std::to_string(round * 50 + number), round * 50 + number));
            EXPECT_TRUE(index.apply(changes));
        }
        isOver = true;
    });
    std::size_t before = 1;
    do {
        const auto count = filesOf(index, 10'000).size();
        // Whole portions only, and never fewer than before.
        EXPECT_EQ(count % 50, 1U);
        EXPECT_GE(count, before);
        before = count;
    } while (!isOver);
    writer.join();
    EXPECT_EQ(filesOf(index, 10'000).size(), 5001U);
}

} // namespace

} // namespace diary

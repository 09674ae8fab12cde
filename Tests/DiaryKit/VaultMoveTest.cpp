// SPDX-License-Identifier: MIT
#include "Support/ForkedTask.h"
#include "Support/TemporaryFolder.h"

#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/VaultMove.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <system_error>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Three days in "old"; "new" does not exist.
class VaultMoveTest : public ::testing::Test {
protected:
    void SetUp() override {
        folder.write("old/03-14.md", "# 03-14\n\n## 2019\n\nA heron\n");
        folder.write("old/02-29.md", std::string("bytes \xff\0 as they are", 19));
        folder.write("old/12-31.md", "");
    }

    std::unique_ptr<VaultMove> move() const {
        return std::make_unique<VaultMove>(folder / "old", folder / "new", cloudFiles);
    }

    // The error of what is refused; 0 when it is not.
    static int refusal(const std::function<void()> &action) {
        try {
            action();
        } catch (const fs::filesystem_error &error) {
            EXPECT_FALSE(error.path1().empty());
            return error.code().value();
        }
        return 0;
    }

    void copyAll() const {
        const auto all = move();
        EXPECT_THAT(all->copy(), IsEmpty());
        EXPECT_TRUE(all->isCurrent());
        all->install();
        all->keep();
    }

    testing::TemporaryFolder folder;
    std::shared_ptr<const CloudFiles> cloudFiles = std::make_shared<LinuxCloudFiles>(folder / "resolved");
};

TEST_F(VaultMoveTest, copiesEveryDayFileAndLeavesTheOldFolderAsItWas) {
    copyAll();
    const auto days = {"02-29.md", "03-14.md", "12-31.md"};
    EXPECT_THAT(folder.names("new"), ::testing::ElementsAreArray(days));
    EXPECT_THAT(folder.names("old"), ::testing::ElementsAreArray(days));
    for (const std::string day : days)
        EXPECT_EQ(folder.read("new/" + day), folder.read("old/" + day)) << day;
}

TEST_F(VaultMoveTest, copiesNothingElseButUnmergedCopiesOfDays) {
    folder.write("old/notes.md", "");
    folder.write("old/13-01.md", "");
    folder.write("old/.git/config", "");
    folder.write("old/05-05.md/inside.md", "");
    folder.write("old/03-14.sync-conflict-20240101-120000-ABCDEFG.md", "theirs");
    copyAll();
    EXPECT_THAT(
        folder.names("new"),
        ElementsAre("02-29.md", "03-14.md", "03-14.sync-conflict-20240101-120000-ABCDEFG.md", "12-31.md"));
}

TEST_F(VaultMoveTest, keepsModesAndDatesOfFiles) {
    const auto original = folder / "old/03-14.md";
    fs::permissions(original, fs::perms::owner_read | fs::perms::owner_write);
    fs::last_write_time(original, fs::last_write_time(original) - std::chrono::hours(1000));
    copyAll();
    EXPECT_EQ(fs::status(folder / "new/03-14.md").permissions(), fs::status(original).permissions());
    EXPECT_EQ(fs::last_write_time(folder / "new/03-14.md"), fs::last_write_time(original));
}

TEST_F(VaultMoveTest, showsNoDayInTheNewFolderBeforeAllAreThere) {
    const auto all = move();
    all->copy();
    EXPECT_FALSE(VaultMove::hasDiary(folder / "new"));
    all->install();
    EXPECT_TRUE(VaultMove::hasDiary(folder / "new"));
}

TEST_F(VaultMoveTest, takesBackWhatWasNotKept) {
    move()->copy();
    EXPECT_THAT(folder.names(), ElementsAre("old"));
    {
        const auto all = move();
        all->copy();
        all->install();
        EXPECT_EQ(folder.names("new").size(), 3U);
    }
    EXPECT_THAT(folder.names(), ElementsAre("old"));
}

TEST_F(VaultMoveTest, takesBackOnlyWhatIsItsOwn) {
    folder.write("new/notes.md", "mine");
    {
        const auto all = move();
        all->copy();
        all->install();
        // As a sync tool replaces a file.
        folder.write("replacement", "from another device");
        fs::rename(folder / "replacement", folder / "new/03-14.md");
    }
    EXPECT_THAT(folder.names("new"), ElementsAre("03-14.md", "notes.md"));
    EXPECT_EQ(folder.read("new/03-14.md"), "from another device");
}

TEST_F(VaultMoveTest, neverReplacesAFileThatIsThere) {
    folder.write("new/12-31.md", "theirs");
    {
        const auto all = move();
        all->copy();
        EXPECT_EQ(refusal([&] { all->install(); }), EEXIST);
    }
    EXPECT_THAT(folder.names("new"), ElementsAre("12-31.md"));
    EXPECT_EQ(folder.read("new/12-31.md"), "theirs");
}

TEST_F(VaultMoveTest, neverWritesThroughALinkThatIsThere) {
    folder.write("elsewhere", "theirs");
    fs::create_directory(folder / "new");
    fs::create_symlink(folder / "elsewhere", folder / "new/12-31.md");
    {
        const auto all = move();
        all->copy();
        EXPECT_EQ(refusal([&] { all->install(); }), EEXIST);
    }
    EXPECT_THAT(folder.names("new"), ElementsAre("12-31.md"));
    EXPECT_EQ(folder.read("elsewhere"), "theirs");
}

TEST_F(VaultMoveTest, noticesEveryChangeOfTheOldFolderAndCopiesAgain) {
    const std::function<void()> changes[] = {
        // In place, in the same moment and of the same length.
        [this] { folder.write("old/03-14.md", "# 03-14\n\n## 2019\n\nA stork\n"); },
        [this] { folder.write("old/06-01.md", "new"); },
        [this] { fs::remove(folder / "old/12-31.md"); },
        [this] { fs::rename(folder / "old/02-29.md", folder / "old/02-28.md"); },
    };
    const auto all = move();
    all->copy();
    for (const auto &change : changes) {
        EXPECT_TRUE(all->isCurrent());
        change();
        EXPECT_FALSE(all->isCurrent());
        EXPECT_THAT(all->copy(), IsEmpty());
    }
    EXPECT_TRUE(all->isCurrent());
    all->install();
    all->keep();
    EXPECT_EQ(folder.names("new"), folder.names("old"));
    for (const auto &name : folder.names("old"))
        EXPECT_EQ(folder.read("new/" + name), folder.read("old/" + name)) << name;
}

TEST_F(VaultMoveTest, refusesTheSameFolderUnderAnyName) {
    EXPECT_EQ(refusal([&] { VaultMove(folder / "old", folder / "old", cloudFiles).copy(); }), EEXIST);
    fs::create_directory_symlink(folder / "old", folder / "new");
    EXPECT_EQ(refusal([&] { move()->copy(); }), EEXIST);
    EXPECT_EQ(folder.names("old").size(), 3U);
}

TEST_F(VaultMoveTest, copiesIntoAFolderInsideTheOldOne) {
    VaultMove inside(folder / "old", folder / "old/a/b", cloudFiles);
    inside.copy();
    EXPECT_TRUE(inside.isCurrent());
    inside.install();
    inside.keep();
    EXPECT_THAT(folder.names("old/a/b"), ElementsAre("02-29.md", "03-14.md", "12-31.md"));
}

TEST_F(VaultMoveTest, copiesThroughLinks) {
    fs::rename(folder / "old", folder / "real");
    fs::create_directory_symlink(folder / "real", folder / "old");
    folder.write("elsewhere", "a day that lives elsewhere");
    fs::create_symlink(folder / "elsewhere", folder / "real/06-01.md");
    copyAll();
    EXPECT_FALSE(fs::is_symlink(folder / "new/06-01.md"));
    EXPECT_EQ(folder.read("new/06-01.md"), "a day that lives elsewhere");
}

TEST_F(VaultMoveTest, failsAtALinkThatPointsNowhere) {
    fs::create_symlink(folder / "nowhere", folder / "old/06-01.md");
    EXPECT_EQ(refusal([&] { move()->copy(); }), ENOENT);
    EXPECT_THAT(folder.names(), ElementsAre("old"));
}

TEST_F(VaultMoveTest, failsAtAFileThatCannotBeRead) {
    fs::remove(folder / "old/12-31.md");
    // Nobody can read a pipe that nobody writes to, the superuser neither.
    ASSERT_EQ(::mkfifo((folder / "old/12-31.md").c_str(), 0600), 0);
    EXPECT_NE(refusal([&] { move()->copy(); }), 0);
    EXPECT_THAT(folder.names(), ElementsAre("old"));
}

TEST_F(VaultMoveTest, failsWhenTheOldFolderIsGone) {
    fs::remove_all(folder / "old");
    EXPECT_EQ(refusal([&] { move()->copy(); }), ENOENT);
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(VaultMoveTest, failsWhenTheNewFolderVanishes) {
    const auto all = move();
    all->copy();
    fs::remove_all(folder / "new");
    EXPECT_EQ(refusal([&] { all->install(); }), ENOENT);
}

TEST_F(VaultMoveTest, failsWhenTheNewFolderCannotBeMade) {
    folder.write("new", "in the way");
    EXPECT_EQ(refusal([&] { move()->copy(); }), ENOTDIR);
    EXPECT_EQ(folder.read("new"), "in the way");
}

TEST_F(VaultMoveTest, copiesNothingWhileDaysAreOnlyInTheCloud) {
    folder.write("old/.06-01.md.icloud", "");
    EXPECT_THAT(move()->copy(), ElementsAre(MonthDay{6, 1}));
    EXPECT_THAT(folder.names(), ElementsAre("old"));
}

TEST_F(VaultMoveTest, stopsWhenItIsTold) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(refusal([&] { move()->copy(stop.get_token()); }), ECANCELED);
    EXPECT_THAT(folder.names(), ElementsAre("old"));
}

TEST_F(VaultMoveTest, clearsAwayWhatAKilledProcessLeft) {
    folder.write("new/.tavelo-copy/05-05.md", "half");
    copyAll();
    EXPECT_THAT(folder.names("new"), ElementsAre("02-29.md", "03-14.md", "12-31.md"));
}

TEST_F(VaultMoveTest, leavesNothingOnADiskThatIsFull) {
    constexpr const char *skipMark = "cannot mount: ";
    fs::create_directory(folder / "disk");
    folder.write("old/06-01.md", std::string(80 * 1024, 'x'));
    const auto report = testing::reportOfFork([&]() -> std::string {
        if (const auto why = testing::ownMounts(); !why.empty())
            return skipMark + why;
        if (::mount("tmpfs", (folder / "disk").c_str(), "tmpfs", 0, "size=64k") < 0)
            return skipMark + std::system_category().message(errno);
        const auto error =
            refusal([&] { VaultMove(folder / "old", folder / "disk/new", cloudFiles).copy(); });
        return std::to_string(error) + " " + std::to_string(folder.names("disk").size());
    });
    if (report.starts_with(skipMark))
        GTEST_SKIP() << report;
    EXPECT_EQ(report, std::to_string(ENOSPC) + " 0");
    EXPECT_EQ(folder.names("old").size(), 4U);
}

TEST_F(VaultMoveTest, knowsADiaryByItsDays) {
    EXPECT_TRUE(VaultMove::hasDiary(folder / "old"));
    EXPECT_FALSE(VaultMove::hasDiary(folder / "new"));
    folder.write("new/notes.md", "");
    EXPECT_FALSE(VaultMove::hasDiary(folder / "new"));
    EXPECT_FALSE(VaultMove::hasDiary(folder / "new/notes.md"));
    folder.write("new/.03-14.md.icloud", "");
    EXPECT_TRUE(VaultMove::hasDiary(folder / "new"));
}

} // namespace
} // namespace diary

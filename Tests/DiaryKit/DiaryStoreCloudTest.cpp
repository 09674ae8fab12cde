// SPDX-License-Identifier: MIT
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/LinuxCloudFiles.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include <Support/FakeCloudFiles.h>
#include <Support/ManualExecutor.h>
#include <Support/TemporaryFolder.h>

namespace diary {
namespace {

using Status = CloudFiles::DownloadingStatus;
using Names = std::set<std::string>;
using testing::FakeCloudFiles;
using testing::ManualExecutor;
using testing::TemporaryFolder;

constexpr MonthDay day{3, 14};
constexpr const char *marker = "*other*";
constexpr const char *syncthingCopy = "03-14.sync-conflict-20261120-101112-ABCDEFG.md";

class DiaryStoreCloud : public ::testing::Test {
protected:
    DiaryStore storeWithFake() {
        return DiaryStore(vault.path(), {.stateFolder = state.path(), .cloudFiles = cloud});
    }
    DiaryStore storeOfThisSystem() { return DiaryStore(vault.path(), {.stateFolder = state.path()}); }

    TemporaryFolder vault;
    TemporaryFolder state;
    std::shared_ptr<FakeCloudFiles> cloud = std::make_shared<FakeCloudFiles>();
};

TEST_F(DiaryStoreCloud, findsNothingToDoInAPlainFolder) {
    vault.write("03-14.md", "## 2024\n\ntext\n");
    auto store = storeOfThisSystem();
    EXPECT_FALSE(store.startDownloadIfNeeded(vault / "03-14.md"));
    EXPECT_FALSE(store.isAwaitingDownload(day));
    EXPECT_FALSE(store.isAwaitingDownload({3, 15}));
    EXPECT_FALSE(store.resolveConflicts(day, marker));
    store.nudgeDownloadIfEvicted(vault / "03-14.md");
    EXPECT_EQ(vault.names(), Names{"03-14.md"});
}

TEST_F(DiaryStoreCloud, asksForWhatIsNotCurrentWheneverADayIsLoaded) {
    auto store = storeWithFake();
    for (const auto status : {Status::None, Status::Current}) {
        cloud->statuses["03-14.md"] = status;
        store.loadText(day);
        EXPECT_TRUE(cloud->downloads.empty());
    }
    for (const auto status : {Status::NotDownloaded, Status::Downloaded}) {
        cloud->statuses["03-14.md"] = status;
        cloud->downloads.clear();
        store.loadText(day);
        EXPECT_EQ(cloud->downloads, std::vector<std::string>{"03-14.md"});
    }
}

TEST_F(DiaryStoreCloud, waitsOnlyForFilesOfWhichNothingIsHere) {
    const auto store = storeWithFake();
    for (const auto status : {Status::None, Status::Current, Status::Downloaded}) {
        cloud->statuses["03-14.md"] = status;
        EXPECT_FALSE(store.isAwaitingDownload(day));
    }
    EXPECT_TRUE(cloud->downloads.empty());
    cloud->statuses["03-14.md"] = Status::NotDownloaded;
    EXPECT_TRUE(store.isAwaitingDownload(day));
    EXPECT_EQ(cloud->downloads, std::vector<std::string>{"03-14.md"});
}

TEST_F(DiaryStoreCloud, warmsAllPlaceholdersInTheBackground) {
    vault.write("03-14.md", "x");
    vault.write(".03-15.md.icloud", "");
    vault.write("notes.md", "x");
    cloud->statuses = {{"03-15.md", Status::NotDownloaded}, {"03-14.md", Status::Downloaded}};
    ManualExecutor executor;
    {
        DiaryStore store(vault.path(), {.cloudFiles = cloud, .executor = &executor});
        store.warmEvictedFiles();
    }
    ASSERT_EQ(executor.background.size(), 1U);
    EXPECT_EQ(executor.background.front().priority, Executor::Priority::Utility);
    EXPECT_TRUE(cloud->downloads.empty());
    executor.runBackground();
    EXPECT_EQ(cloud->downloads, (std::vector<std::string>{"03-14.md", "03-15.md"}));
}

TEST_F(DiaryStoreCloud, mergesSeveralVersionsInTheirOrderWithTheLocalTextFirst) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\nlocal\n");
    state.write("a", "## 2024\n\nfirst\n");
    state.write("b", "## 2023\n\nonly there\n\n## 2024\n\nsecond\n");
    cloud->versions["03-14.md"] = {state / "a", state / "b"};
    EXPECT_TRUE(storeWithFake().resolveConflicts(day, marker));
    EXPECT_EQ(vault.read("03-14.md"), "# 03-14\n\n## 2023\n\nonly there\n\n## 2024\n\n"
                                      "local\n\n*other*\n\nfirst\n\n*other*\n\nsecond\n");
    EXPECT_EQ(cloud->resolved, (std::vector<std::filesystem::path>{state / "a", state / "b"}));
}

TEST_F(DiaryStoreCloud, takesTheLongerTextOfAVersionThatGoesOn) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\nlocal\n");
    state.write("a", "## 2024\n\nlocal and more\n");
    cloud->versions["03-14.md"] = {state / "a"};
    EXPECT_TRUE(storeWithFake().resolveConflicts(day, marker));
    EXPECT_EQ(vault.read("03-14.md"), "# 03-14\n\n## 2024\n\nlocal and more\n");
}

TEST_F(DiaryStoreCloud, resolvesAVersionThatCannotBeRead) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\nlocal\n");
    cloud->versions["03-14.md"] = {state / "missing"};
    EXPECT_TRUE(storeWithFake().resolveConflicts(day, marker));
    EXPECT_EQ(cloud->resolved.size(), 1U);
    EXPECT_EQ(vault.read("03-14.md"), "# 03-14\n\n## 2024\n\nlocal\n");
}

TEST_F(DiaryStoreCloud, keepsTheVersionsWhenTheMergedTextCannotBeSaved) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\nlocal\n");
    std::filesystem::permissions(vault / "03-14.md", std::filesystem::perms::owner_read);
    state.write("a", "## 2024\n\nfirst\n");
    cloud->versions["03-14.md"] = {state / "a"};
    EXPECT_FALSE(storeWithFake().resolveConflicts(day, marker));
    EXPECT_TRUE(cloud->resolved.empty());
    EXPECT_EQ(vault.read("03-14.md"), "# 03-14\n\n## 2024\n\nlocal\n");
}

TEST_F(DiaryStoreCloud, mergesACopyOnceThoughItCannotBeMovedAway) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\nlocal\n");
    state.write("a", "## 2024\n\nfirst\n");
    cloud->versions["03-14.md"] = {state / "a"};
    cloud->canMarkResolved = false;
    auto store = storeWithFake();
    store.resolveConflicts(day, marker);
    const auto once = vault.read("03-14.md");
    store.resolveConflicts(day, marker);
    EXPECT_EQ(vault.read("03-14.md"), once);
}

TEST_F(DiaryStoreCloud, losesNothingOfRepeatedYearsAndOpenFences) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\none\n\n## 2024\n\ntwo\n\n```\nopen\n");
    state.write("a", "## 2025\n\nthree\n");
    cloud->versions["03-14.md"] = {state / "a"};
    EXPECT_TRUE(storeWithFake().resolveConflicts(day, marker));
    EXPECT_EQ(vault.read("03-14.md"),
              "# 03-14\n\n## 2024\n\none\n\ntwo\n\n```\nopen\n```\n\n## 2025\n\nthree\n");
}

TEST_F(DiaryStoreCloud, mergesTheEntriesOfACopyWithOtherLineEnds) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\nlocal\n");
    state.write("a", "# 03-14\r\n\r\n## 2023\r\n\r\none\r\ntwo\r\n");
    cloud->versions["03-14.md"] = {state / "a"};
    EXPECT_TRUE(storeWithFake().resolveConflicts(day, marker));
    EXPECT_EQ(vault.read("03-14.md"), "# 03-14\n\n## 2023\n\none\ntwo\n\n## 2024\n\nlocal\n");
}

TEST_F(DiaryStoreCloud, movesTheCopiesOfASyncToolOutOfTheVault) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\nlocal\n");
    vault.write(syncthingCopy, "# 03-14\n\n## 2024\n\ntheirs\n");
    vault.write("03-15 (conflicted).md", "another day");
    auto store = storeOfThisSystem();
    EXPECT_TRUE(store.resolveConflicts(day, marker));
    EXPECT_EQ(vault.read("03-14.md"), "# 03-14\n\n## 2024\n\nlocal\n\n*other*\n\ntheirs\n");
    EXPECT_EQ(vault.names(), (Names{"03-14.md", "03-15 (conflicted).md"}));
    EXPECT_EQ(state.read(std::filesystem::path("resolved") / syncthingCopy),
              "# 03-14\n\n## 2024\n\ntheirs\n");
    EXPECT_FALSE(store.resolveConflicts(day, marker));
}

TEST_F(DiaryStoreCloud, makesTheFileFromItsCopiesWhenItIsGone) {
    vault.write("03-14.md..path1", "# 03-14\n\n## 2023\n\none\n");
    vault.write("03-14.md..path2", "# 03-14\n\n## 2024\n\ntwo\n");
    EXPECT_TRUE(storeOfThisSystem().resolveConflicts(day, marker));
    EXPECT_EQ(vault.names(), Names{"03-14.md"});
    EXPECT_EQ(vault.read("03-14.md"), "# 03-14\n\n## 2023\n\none\n\n## 2024\n\ntwo\n");
}

TEST_F(DiaryStoreCloud, neverWritesOverOrBesideAPlaceholder) {
    for (const auto *placeholder : {".03-14.md.icloud", "03-14.md.nextcloud", "03-14.md.owncloud"}) {
        TemporaryFolder folder;
        folder.write(placeholder, "");
        folder.write(syncthingCopy, "# 03-14\n\n## 2024\n\ntheirs\n");
        DiaryStore store(folder.path(), {.stateFolder = state.path()});
        EXPECT_FALSE(store.resolveConflicts(day, marker));
        EXPECT_EQ(store.loadText(day), "# 03-14\n");
        EXPECT_THROW(store.save("# 03-14\n\n## 2024\n\ntext\n", day), std::filesystem::filesystem_error);
        EXPECT_EQ(folder.names(), (Names{placeholder, syncthingCopy}));
    }
}

TEST_F(DiaryStoreCloud, savesAgainOnceTheContentIsHere) {
    vault.write("03-14.md", " ");
    cloud->statuses["03-14.md"] = Status::NotDownloaded;
    auto store = storeWithFake();
    store.loadText(day);
    EXPECT_THROW(store.save("# 03-14\n\n## 2024\n\nmine\n", day), std::filesystem::filesystem_error);
    EXPECT_EQ(vault.read("03-14.md"), " ");

    cloud->statuses.clear();
    vault.write("03-14.md", "# 03-14\n\n## 2023\n\ntheirs\n");
    store.loadText(day);
    store.save("# 03-14\n\n## 2023\n\ntheirs\n\n## 2024\n\nmine\n", day);
    EXPECT_EQ(vault.read("03-14.md"), "# 03-14\n\n## 2023\n\ntheirs\n\n## 2024\n\nmine\n");
}

} // namespace
} // namespace diary

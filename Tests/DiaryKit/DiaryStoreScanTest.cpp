// SPDX-License-Identifier: MIT
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/LinuxCloudFiles.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <Support/FakeCloudFiles.h>
#include <Support/ManualExecutor.h>
#include <Support/TemporaryFolder.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using testing::FakeCloudFiles;
using testing::ManualExecutor;
using testing::TemporaryFolder;
using Days = std::set<MonthDay>;
using Years = std::set<std::int64_t>;
using AscendingYears = std::vector<std::int64_t>;
using Snapshot = DiaryStore::ArchiveSnapshot;

class DiaryStoreScan : public ::testing::Test {
protected:
    Snapshot scan() { return DiaryStore::scanArchive(vault.path(), {}, LinuxCloudFiles()).snapshot; }

    // Writes with a date of its own, so that a change is seen whatever the file system's clock.
    void write(const std::string &name, const std::string &text) {
        vault.write(name, text);
        fs::last_write_time(vault / name, m_date += std::chrono::seconds(1));
    }

    TemporaryFolder vault;

private:
    fs::file_time_type m_date = fs::file_time_type::clock::now() - std::chrono::hours(1);
};

TEST_F(DiaryStoreScan, listsDayFilesAndPlaceholdersAndNothingElse) {
    for (const auto *name :
         {"03-14.md", ".03-15.md.icloud", "03-16.md.nextcloud", "03-17.md.owncloud", "02-31.md", "notes.txt",
          "3-14.md", "13-01.md", ".03-18.md", "03-19.md.icloud", ".~03-20.md.00001a~",
          "03-21.sync-conflict-20261120-101112-ABCDEFG.md", "03-22 2.md", ".hidden.icloud"})
        vault.write(name, "x");
    vault.write(".03-14.md.icloud", "");
    fs::create_directory(vault / "03-23.md");
    vault.write("folder/03-24.md", "x");
    EXPECT_EQ(DiaryStore::dayFiles(vault.path()),
              (Days{{2, 31}, {3, 14}, {3, 15}, {3, 16}, {3, 17}, {3, 23}}));
}

TEST_F(DiaryStoreScan, findsNothingInAFolderThatDoesNotExist) {
    const auto nowhere = vault / "nowhere";
    DiaryStore store(nowhere);
    EXPECT_TRUE(DiaryStore::dayFiles(nowhere).empty());
    EXPECT_EQ(store.overview(), DiaryStore::Overview{});
    EXPECT_EQ(store.randomDayWithContent(), std::nullopt);
    EXPECT_EQ(DiaryStore::scanArchive(nowhere, {}, LinuxCloudFiles()).snapshot, Snapshot{});
    EXPECT_FALSE(fs::exists(nowhere));
}

TEST_F(DiaryStoreScan, countsAFileOfEmptySectionsAsAFileWithoutContent) {
    vault.write("03-14.md", "# 03-14\n\n## 2023\n\n## 2024\n\n");
    const auto snapshot = scan();
    EXPECT_EQ(snapshot.overview, (DiaryStore::Overview{0, std::nullopt, 1}));
    EXPECT_TRUE(snapshot.heatCounts.empty());
    EXPECT_EQ(DiaryStore(vault.path()).overview(), snapshot.overview);
}

TEST_F(DiaryStoreScan, countsTheThirtyFirstOfFebruaryLikeAnyOtherDay) {
    vault.write("02-31.md", "## 2024\n\ntext\n");
    const auto snapshot = scan();
    EXPECT_EQ(snapshot.heatCounts, (std::map<MonthDay, int>{{{2, 31}, 1}}));
    EXPECT_EQ(DiaryStore(vault.path()).daysWithContent(2), (std::set<std::int64_t>{31}));
}

TEST_F(DiaryStoreScan, countsAPlaceholderAndWaitsForIt) {
    vault.write(".03-14.md.icloud", "");
    const auto snapshot = scan();
    EXPECT_EQ(snapshot.overview, (DiaryStore::Overview{0, std::nullopt, 1}));
    EXPECT_EQ(snapshot.awaitingDownload, (Days{{3, 14}}));
    EXPECT_TRUE(snapshot.contentYears.empty());

    DiaryStore store(vault.path());
    EXPECT_TRUE(store.yearsWithContent({3, 14}).empty());
    EXPECT_EQ(store.awaitingDownload(), (Days{{3, 14}}));
    fs::remove(vault / ".03-14.md.icloud");
    vault.write("03-14.md", "## 2024\n\ntext\n");
    EXPECT_EQ(store.yearsWithContent({3, 14}), Years{2024});
    EXPECT_TRUE(store.awaitingDownload().empty());
}

TEST_F(DiaryStoreScan, tellsAllStatistics) {
    vault.write("01-01.md", "## 2019\n\na\n\n## 2024\n\nb\n");
    vault.write("02-29.md", "## 2020\n\na\n");
    vault.write("02-03.md", "## 2024\n\na\n");
    vault.write("12-31.md", "preamble only\n");
    const Snapshot expected{{{{1, 1}, 2}, {{2, 29}, 1}, {{2, 3}, 1}}, {2019, 2020, 2024}, {3, 2019, 4}, {}};
    EXPECT_EQ(scan(), expected);

    DiaryStore store(vault.path());
    EXPECT_EQ(store.overview(), expected.overview);
    EXPECT_EQ(store.contentYearCounts(), expected.heatCounts);
    EXPECT_EQ(store.allContentYears(), expected.contentYears);
    EXPECT_EQ(store.daysWithContent(2), (std::set<std::int64_t>{3, 29}));
    EXPECT_EQ(store.daysWithContent(3), std::set<std::int64_t>{});
}

TEST_F(DiaryStoreScan, readsAFileAgainOnlyWhenItsDateChanged) {
    const auto cloud = std::make_shared<FakeCloudFiles>();
    DiaryStore store(vault.path(), {.cloudFiles = cloud});
    write("03-14.md", "## 2024\n\ntext\n");
    const auto date = fs::last_write_time(vault / "03-14.md");
    EXPECT_EQ(store.yearsWithContent({3, 14}), Years{2024});

    // Another text under the same date is not looked at.
    vault.write("03-14.md", "## 2023\n\ntext\n");
    fs::last_write_time(vault / "03-14.md", date);
    EXPECT_EQ(store.yearsWithContent({3, 14}), Years{2024});
    EXPECT_EQ(store.overview().earliestYear, 2024);
    EXPECT_EQ(cloud->asked.size(), 1U);

    fs::last_write_time(vault / "03-14.md", date + std::chrono::seconds(1));
    EXPECT_EQ(store.yearsWithContent({3, 14}), Years{2023});
    EXPECT_EQ(store.yearsWithContent({3, 14}), Years{2023});
    EXPECT_EQ(cloud->asked.size(), 2U);
}

TEST_F(DiaryStoreScan, keepsItsListOfFilesUntilCachesAreInvalidated) {
    DiaryStore store(vault.path());
    EXPECT_EQ(store.overview().fileCount, 0);
    vault.write("03-14.md", "## 2024\n\ntext\n");
    EXPECT_EQ(store.overview().fileCount, 0);
    store.invalidateCaches();
    EXPECT_EQ(store.overview().fileCount, 1);
    store.save("# 03-15\n\n## 2024\n\ntext\n", {3, 15});
    EXPECT_EQ(store.overview().fileCount, 2);
}

TEST_F(DiaryStoreScan, picksEveryDayWithContentAtRandomAndNoOther) {
    vault.write("01-01.md", "## 2019\n\na\n");
    vault.write("02-29.md", "## 2020\n\na\n");
    vault.write("03-03.md", "## 2020\n\n\n");
    DiaryStore store(vault.path());
    Days picked;
    for (int round = 0; round < 200; ++round)
        picked.insert(store.randomDayWithContent().value());
    EXPECT_EQ(picked, (Days{{1, 1}, {2, 29}}));
}

TEST_F(DiaryStoreScan, takesTheYearsOfUnchangedFilesFromTheCache) {
    write("03-14.md", "## 2024\n\ntext\n");
    write("03-15.md", "## 2024\n\ntext\n");
    const auto cloud = FakeCloudFiles();
    auto first = DiaryStore::scanArchive(vault.path(), {}, cloud);
    EXPECT_EQ(cloud.asked.size(), 2U);
    write("03-15.md", "## 2023\n\ntext\n");
    const auto second = DiaryStore::scanArchive(vault.path(), first.cache, cloud);
    EXPECT_EQ(cloud.asked.size(), 3U);
    EXPECT_EQ(second.snapshot.contentYears, (Years{2023, 2024}));
    EXPECT_EQ(second.snapshot, DiaryStore::scanArchive(vault.path(), {}, cloud).snapshot);
}

TEST_F(DiaryStoreScan, doesNotCacheWhatCannotBeRead) {
    fs::create_directory(vault / "03-14.md");
    const auto scanned = DiaryStore::scanArchive(vault.path(), {}, LinuxCloudFiles());
    EXPECT_TRUE(scanned.cache.empty());
    EXPECT_EQ(scanned.snapshot.overview.fileCount, 1);
    DiaryStore store(vault.path());
    EXPECT_TRUE(store.yearsWithContent({3, 14}).empty());
    EXPECT_TRUE(store.yearCache().empty());
}

class DiaryStoreSnapshot : public DiaryStoreScan {
protected:
    ManualExecutor executor;
};

TEST_F(DiaryStoreSnapshot, scansInTheBackgroundAndAppliesOnTheMainThread) {
    write("03-14.md", "## 2024\n\ntext\n");
    DiaryStore store(vault.path(), {.executor = &executor});
    std::optional<Snapshot> loaded;
    store.loadArchiveSnapshot([&](const Snapshot &snapshot) { loaded = snapshot; });
    ASSERT_EQ(executor.background.size(), 1U);
    EXPECT_EQ(executor.background.front().priority, Executor::Priority::UserInitiated);
    executor.runBackground();
    EXPECT_FALSE(loaded);
    EXPECT_FALSE(store.cachedFiles());
    executor.runMain();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->overview, (DiaryStore::Overview{1, 2024, 1}));
    EXPECT_EQ(store.cachedFiles(), (Days{{3, 14}}));
    EXPECT_EQ(store.yearCache().at({3, 14}).years, AscendingYears{2024});
}

TEST_F(DiaryStoreSnapshot, neverUndoesASaveMadeWhileItRan) {
    write("03-14.md", "## 2023\n\nold\n");
    DiaryStore store(vault.path(), {.executor = &executor});
    store.loadArchiveSnapshot([](const Snapshot &) {});
    executor.runBackground();
    store.loadText({3, 14});
    store.save("# 03-14\n\n## 2023\n\nold\n\n## 2024\n\nnew\n", {3, 14});
    const auto saved = store.yearCache().at({3, 14});
    executor.runMain();
    EXPECT_EQ(store.yearCache().at({3, 14}), saved);
    EXPECT_EQ(saved.years, (AscendingYears{2023, 2024}));
}

TEST_F(DiaryStoreSnapshot, keepsTheStoresEntryOnEqualDatesAndTakesLaterOnes) {
    write("03-14.md", "## 2023\n\nold\n");
    write("03-15.md", "## 2023\n\nold\n");
    DiaryStore store(vault.path(), {.executor = &executor});
    store.overview();
    const auto date = fs::last_write_time(vault / "03-14.md");
    write("03-14.md", "## 2020\n\nsame date\n");
    fs::last_write_time(vault / "03-14.md", date);
    write("03-15.md", "## 2021\n\nlater\n");
    store.loadArchiveSnapshot([](const Snapshot &) {});
    executor.runBackground();
    executor.runMain();
    EXPECT_EQ(store.yearCache().at({3, 14}).years, AscendingYears{2023});
    EXPECT_EQ(store.yearCache().at({3, 15}).years, AscendingYears{2021});
}

TEST_F(DiaryStoreSnapshot, doesNothingWhenTheStoreIsGone) {
    write("03-14.md", "## 2024\n\ntext\n");
    bool wasCalled = false;
    {
        DiaryStore store(vault.path(), {.executor = &executor});
        store.loadArchiveSnapshot([&](const Snapshot &) { wasCalled = true; });
        executor.runBackground();
    }
    executor.runMain();
    EXPECT_FALSE(wasCalled);
}

TEST_F(DiaryStoreSnapshot, appliesTwoSnapshotsInTheOrderInWhichTheyComplete) {
    DiaryStore store(vault.path(), {.executor = &executor});
    std::string order;
    store.loadArchiveSnapshot([&](const Snapshot &) { order += "first "; });
    store.loadArchiveSnapshot([&](const Snapshot &) { order += "second "; });
    auto first = std::move(executor.background.front());
    executor.background.pop_front();
    executor.runBackground();
    write("03-14.md", "## 2024\n\ntext\n");
    first.run();
    executor.runMain();
    EXPECT_EQ(order, "second first ");
    EXPECT_EQ(store.cachedFiles(), (Days{{3, 14}}));
}

} // namespace
} // namespace diary

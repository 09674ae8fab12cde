// SPDX-License-Identifier: MIT
//
// The store with its work on real threads, for the thread sanitizer to look at.

#include <DiaryKit/DiaryStore.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>

#include <Support/TemporaryFolder.h>
#include <Support/ThreadExecutor.h>

namespace diary {
namespace {

using testing::TemporaryFolder;
using testing::ThreadExecutor;

class DiaryStoreThreads : public ::testing::Test {
protected:
    DiaryStoreThreads() {
        for (MonthDay day{1, 1}; day.month <= 2; day = day.advanced(1))
            vault.write(day.fileName(), "## 2023\n\nword\n\n## 2024\n\nother\n");
        vault.write(".03-14.md.icloud", "");
    }

    TemporaryFolder vault;
    TemporaryFolder state;
    ThreadExecutor executor;
};

TEST_F(DiaryStoreThreads, loadsASnapshotWhileDaysAreReadSavedAndSearched) {
    DiaryStore store(vault.path(), {.stateFolder = state.path(), .executor = &executor});
    std::optional<DiaryStore::ArchiveSnapshot> snapshot;
    store.loadArchiveSnapshot([&](const auto &loaded) { snapshot = loaded; });
    store.warmEvictedFiles();
    for (int round = 0; round < 20; ++round) {
        store.loadText({1, 1});
        store.save("# 01-01\n\n## 2025\n\n" + std::to_string(round) + "\n", {1, 1});
        EXPECT_EQ(store.searchEntries("word", 10).size(), 10U);
    }
    executor.runNext();
    executor.join();
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->overview.fileCount, 61);
    EXPECT_EQ(store.yearsWithContent({1, 1}), std::set<std::int64_t>{2025});
}

TEST_F(DiaryStoreThreads, forgetsASnapshotThatCompletesAfterTheStoreIsGone) {
    bool wasCalled = false;
    {
        DiaryStore store(vault.path(), {.stateFolder = state.path(), .executor = &executor});
        store.loadArchiveSnapshot([&](const auto &) { wasCalled = true; });
        store.warmEvictedFiles();
    }
    executor.runNext();
    EXPECT_FALSE(wasCalled);
}

TEST_F(DiaryStoreThreads, searchesFromSeveralThreadsAtOnce) {
    for (int thread = 0; thread < 4; ++thread) {
        executor.runInBackground(Executor::Priority::UserInitiated, [this] {
            for (int round = 0; round < 10; ++round)
                EXPECT_EQ(DiaryStore::searchEntries(vault.path(), "OTHER", 1000).size(), 60U);
        });
    }
    executor.join();
}

TEST_F(DiaryStoreThreads, stopsASearchUnderWayForANewerOne) {
    DiaryStore store(vault.path(), {.stateFolder = state.path(), .executor = &executor});
    bool wasFound = false;
    std::optional<std::size_t> newerHits;
    std::stop_source older;
    store.searchEntriesInBackground("word", 1000, older.get_token(), [&](const auto &) { wasFound = true; });
    older.request_stop();
    store.searchEntriesInBackground("OTHER", 1000, {},
                                    [&](const auto &result) { newerHits = result.hits.size(); });
    while (!newerHits)
        executor.runNext();
    EXPECT_EQ(newerHits, 60U);
    EXPECT_FALSE(wasFound);
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryKit/DiaryStore.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using testing::ScopedEnvironment;
using testing::TemporaryFolder;

constexpr MonthDay piDay{3, 14};
constexpr const char *fullText = "# 03-14\n\n## 2023\n\nthen\n\n## 2024\n\nnow\n";

TEST(DiaryStore, livesInTheDocumentsFolderUnlessToldOtherwise) {
    const ScopedEnvironment home("HOME", "/home/ann");
    EXPECT_EQ(DiaryStore().rootURL(), "/home/ann/Documents/Diary");
    EXPECT_EQ(DiaryStore("/vault").rootURL(), "/vault");
    EXPECT_EQ(DiaryStore("/vault").fileURL(piDay), "/vault/03-14.md");
}

TEST(DiaryStore, makesNothingOnDiskByItself) {
    const TemporaryFolder folder;
    DiaryStore store(folder / "vault");
    store.loadText(piDay);
    store.modificationDate(piDay);
    store.repairOverwrittenSaves();
    EXPECT_TRUE(folder.names().empty());
    EXPECT_EQ(store.cachedFiles(), std::nullopt);
    EXPECT_TRUE(store.yearCache().empty());
    EXPECT_TRUE(store.awaitingDownload().empty());
}

TEST(DiaryStore, startsADayWithItsTitle) {
    const TemporaryFolder folder;
    EXPECT_EQ(DiaryStore(folder.path()).loadText(piDay), "# 03-14\n");
    EXPECT_EQ(DiaryStore(folder / "missing").loadText({12, 1}), "# 12-01\n");
    EXPECT_EQ(DiaryStore::defaultText({2, 29}), "# 02-29\n");
}

TEST(DiaryStore, readsWhatIsThere) {
    for (const std::string &text : {std::string(fullText), std::string("\r\n no structure \r\n"),
                                    std::string("a\0b", 3), std::string()}) {
        const TemporaryFolder vault;
        vault.write("03-14.md", text);
        EXPECT_EQ(DiaryStore(vault.path()).loadText(piDay), text);
    }
}

TEST(DiaryStore, repairsInvalidText) {
    const TemporaryFolder folder;
    folder.write("03-14.md", "# 03-14\n\n## 2024\n\ncaf\xE9 \xC3\xA9 \xF0\x9F\x98\n");
    EXPECT_EQ(DiaryStore(folder.path()).loadText(piDay), "# 03-14\n\n## 2024\n\ncaf\uFFFD \u00E9 \uFFFD\n");
}

TEST(DiaryStore, readsTheTitleForWhatCannotBeRead) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "03-14.md");
    ASSERT_EQ(::mkfifo((folder / "03-15.md").c_str(), 0600), 0);
    fs::create_symlink("nowhere", folder / "03-16.md");
    fs::create_symlink("03-17.md", folder / "03-17.md");
    DiaryStore store(folder.path());
    EXPECT_EQ(store.loadText({3, 14}), "# 03-14\n");
    EXPECT_EQ(store.loadText({3, 15}), "# 03-15\n");
    EXPECT_EQ(store.loadText({3, 16}), "# 03-16\n");
    EXPECT_EQ(store.loadText({3, 17}), "# 03-17\n");

    folder.write("file", "text");
    EXPECT_EQ(DiaryStore(folder / "file").loadText(piDay), "# 03-14\n");
}

TEST(DiaryStore, readsThroughLinks) {
    const TemporaryFolder folder;
    folder.write("elsewhere/day", fullText);
    fs::create_directory(folder / "vault");
    fs::create_symlink("../elsewhere/day", folder / "vault/03-14.md");
    fs::create_directory_symlink("vault", folder / "link");
    EXPECT_EQ(DiaryStore(folder / "link").loadText(piDay), fullText);
}

TEST(DiaryStore, waitsForAFileThatIsBeingReplaced) {
    const TemporaryFolder folder;
    folder.write("03-14.md", fullText);
    DiaryStore store(folder.path());
    ASSERT_EQ(store.loadText(piDay), fullText);
    fs::rename(folder / "03-14.md", folder / "away");
    const std::jthread other([&] {
        std::this_thread::sleep_for(milliseconds{2});
        fs::rename(folder / "away", folder / "03-14.md");
    });
    EXPECT_EQ(store.loadText(piDay), fullText);
}

TEST(DiaryStore, waitsForAFileThatSyncthingIsReplacing) {
    using Clock = std::chrono::steady_clock;
    // On a busy machine the other may come later than anybody waits; then it says nothing.
    for (bool cameInTime = false; !cameInTime;) {
        const TemporaryFolder folder;
        folder.write(".syncthing.03-14.md.tmp", fullText);
        Clock::time_point cameAt;
        std::jthread other([&] {
            std::this_thread::sleep_for(milliseconds{2});
            fs::rename(folder / ".syncthing.03-14.md.tmp", folder / "03-14.md");
            cameAt = Clock::now();
        });
        const auto start = Clock::now();
        const auto text = DiaryStore(folder.path()).loadText(piDay);
        other.join();
        cameInTime = cameAt - start < milliseconds{5};
        if (cameInTime) {
            EXPECT_EQ(text, fullText);
        }
    }
}

TEST(DiaryStore, noticesThatAFileIsGone) {
    const TemporaryFolder folder;
    folder.write("03-14.md", fullText);
    DiaryStore store(folder.path());
    ASSERT_EQ(store.loadText(piDay), fullText);
    fs::remove(folder / "03-14.md");
    EXPECT_EQ(store.loadText(piDay), "# 03-14\n");
}

TEST(DiaryStore, tellsWhenAFileWasChanged) {
    const TemporaryFolder folder;
    const DiaryStore store(folder.path());
    EXPECT_EQ(store.modificationDate(piDay), std::nullopt);
    folder.write("03-14.md", fullText);
    EXPECT_EQ(store.modificationDate(piDay), fs::last_write_time(folder / "03-14.md"));
    const auto earlier = fs::file_time_type::clock::now() - std::chrono::hours{100};
    fs::last_write_time(folder / "03-14.md", earlier);
    EXPECT_EQ(store.modificationDate(piDay), fs::last_write_time(folder / "03-14.md"));
    EXPECT_LT(*store.modificationDate(piDay), earlier + std::chrono::seconds{1});
}

} // namespace
} // namespace diary

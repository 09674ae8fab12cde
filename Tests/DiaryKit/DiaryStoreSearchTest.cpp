// SPDX-License-Identifier: MIT
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/LinuxCloudFiles.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <Support/FakeCloudFiles.h>
#include <Support/ManualExecutor.h>
#include <Support/TemporaryFolder.h>

namespace diary {
namespace {

using Hit = DiaryStore::SearchHit;
using testing::FakeCloudFiles;
using testing::TemporaryFolder;

class DiaryStoreSearch : public ::testing::Test {
protected:
    std::vector<Hit> search(const std::string &query, int limit = 200) {
        return DiaryStore::searchEntries(vault.path(), query, limit);
    }

    TemporaryFolder vault;
};

TEST_F(DiaryStoreSearch, findsNothingAndReadsNothingForAQueryOfBlanks) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\na b\n");
    const auto cloud = std::make_shared<FakeCloudFiles>();
    DiaryStore store(vault.path(), {.cloudFiles = cloud});
    EXPECT_TRUE(store.searchEntries(" \t ", 200).empty());
    EXPECT_TRUE(store.searchEntries("", 200).empty());
    EXPECT_TRUE(cloud->asked.empty());
}

TEST_F(DiaryStoreSearch, ignoresBlanksAroundTheQueryButNotLineBreaks) {
    vault.write("03-14.md", "## 2024\n\none\ntwo\n");
    EXPECT_EQ(search(" \tone ").size(), 1U);
    EXPECT_EQ(search("one\ntwo").size(), 1U);
    EXPECT_TRUE(search("one\n\n").empty());
}

TEST_F(DiaryStoreSearch, ignoresCase) {
    vault.write("03-14.md", "# 03-14\n\n## 2024\n\nun café noir\n");
    EXPECT_EQ(search("Café"), (std::vector<Hit>{{{3, 14}, 2024, "un café noir"}}));
}

TEST_F(DiaryStoreSearch, findsOtherCompositionsAndShowsTheBeginningOfTheEntry) {
    vault.write("03-14.md",
                "## 2024\n\nWe sat for a long while in the small cafe\u0301 behind the station.\n");
    const auto hits = search("caf\u00E9");
    ASSERT_EQ(hits.size(), 1U);
    EXPECT_EQ(hits[0].snippet, "We sat for a long while in the small cafe\u0301 behind t");
}

TEST_F(DiaryStoreSearch, ordersByDayOfTheYearThenBySectionInTheFile) {
    for (const auto *day : {"12-31", "02-29", "03-01", "02-28", "01-01"})
        vault.write(std::string(day) + ".md", "## 2020\n\nword\n\n## 2019\n\nword\n");
    std::vector<std::string> order;
    for (const auto &hit : search("word"))
        order.push_back(hit.monthDay.headerTitle() + " " + std::to_string(hit.year));
    EXPECT_EQ(order, (std::vector<std::string>{"01-01 2020", "01-01 2019", "02-28 2020", "02-28 2019",
                                               "02-29 2020", "02-29 2019", "03-01 2020", "03-01 2019",
                                               "12-31 2020", "12-31 2019"}));
}

TEST_F(DiaryStoreSearch, stopsAtTheLimitWithTheEarliestDays) {
    vault.write("01-01.md", "## 2024\n\nword\n");
    vault.write("12-31.md", "## 2024\n\nword\n");
    EXPECT_EQ(search("word", 1), (std::vector<Hit>{{{1, 1}, 2024, "word"}}));
    EXPECT_TRUE(search("word", 0).empty());
}

TEST_F(DiaryStoreSearch, givesTheSameFirstHitsWhateverTheLimit) {
    for (MonthDay day{1, 1}; vault.names().size() < 366; day = day.advanced(1))
        vault.write(day.fileName(),
                    "## 2023\n\nword a\n\n## 2024\n\n" + std::string(day.day % 3 ? "word" : "none") + "\n");
    const auto all = search("word", 10'000);
    ASSERT_EQ(all.size(), 366U + 366U - 119U);
    for (const int limit : {1, 2, 7, 100, 200, 499}) {
        const auto some = search("word", limit);
        ASSERT_EQ(some, std::vector<Hit>(all.begin(), all.begin() + limit));
    }
}

TEST_F(DiaryStoreSearch, givesOneHitForASectionThatMentionsTheQueryThreeTimes) {
    vault.write("03-14.md", "## 2024\n\nrain, rain and rain\n");
    EXPECT_EQ(search("rain").size(), 1U);
}

TEST_F(DiaryStoreSearch, looksIntoSectionsOnly) {
    vault.write("03-14.md", "# 03-14 rain\n\n## 2024\n\nsun\n");
    EXPECT_TRUE(search("rain").empty());
    EXPECT_TRUE(search("2024").empty());
}

TEST_F(DiaryStoreSearch, doesNotFindAQueryAcrossTwoEntries) {
    vault.write("03-14.md", "## 2023\n\nends with alpha\n\n## 2024\n\nbeta begins\n");
    EXPECT_TRUE(search("alpha\n\n## 2024\n\nbeta").empty());
}

TEST_F(DiaryStoreSearch, repairsInvalidBytes) {
    vault.write("03-14.md", "## 2024\n\nr\xFFin and sun\n");
    EXPECT_EQ(search("sun"), (std::vector<Hit>{{{3, 14}, 2024, "r\uFFFDin and sun"}}));
    EXPECT_EQ(search("r\uFFFDin").size(), 1U);
}

TEST_F(DiaryStoreSearch, leavesPlaceholdersOutAndRemembersThem) {
    vault.write(".03-14.md.icloud", "");
    vault.write("03-15.md", "## 2024\n\nword\n");
    const LinuxCloudFiles cloud;
    const auto result =
        DiaryStore::search(vault.path(), DiaryStore::dayFiles(vault.path()), "word", 200, cloud);
    EXPECT_EQ(result.hits.size(), 1U);
    EXPECT_EQ(result.awaitingDownload, (std::set<MonthDay>{{3, 14}}));

    DiaryStore store(vault.path());
    EXPECT_EQ(store.searchEntries("word", 200).size(), 1U);
    EXPECT_EQ(store.awaitingDownload(), (std::set<MonthDay>{{3, 14}}));
}

class DiaryStoreBackgroundSearch : public DiaryStoreSearch {
protected:
    void start(const std::string &query) {
        store->searchEntriesInBackground(query, 200, stop.get_token(),
                                         [this](const auto &result) { found = result.hits; });
    }

    testing::ManualExecutor executor;
    std::shared_ptr<FakeCloudFiles> cloud = std::make_shared<FakeCloudFiles>();
    std::optional<DiaryStore> store{std::in_place, vault.path(),
                                    DiaryStore::Options{.cloudFiles = cloud, .executor = &executor}};
    std::stop_source stop;
    std::optional<std::vector<Hit>> found;
};

TEST_F(DiaryStoreBackgroundSearch, findsTheSameAndRemembersTheDaysThatAwaitDownload) {
    vault.write("03-14.md", "## 2024\n\nword\n");
    vault.write("03-15.md", "## 2024\n\nWord\n");
    vault.write(".03-16.md.icloud", "");
    cloud->statuses["03-16.md"] = CloudFiles::DownloadingStatus::NotDownloaded;
    start(" word ");
    EXPECT_TRUE(cloud->asked.empty());
    executor.runBackground();
    EXPECT_FALSE(found);
    EXPECT_TRUE(store->awaitingDownload().empty());
    executor.runMain();
    EXPECT_EQ(found, search("word"));
    EXPECT_EQ(store->awaitingDownload(), (std::set<MonthDay>{{3, 16}}));
}

TEST_F(DiaryStoreBackgroundSearch, looksIntoTheFilesThatTheStoreKnows) {
    vault.write("03-14.md", "## 2024\n\nword\n");
    store->knownFiles();
    vault.write("03-15.md", "## 2024\n\nword\n");
    start("word");
    executor.runBackground();
    executor.runMain();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 1U);
}

TEST_F(DiaryStoreBackgroundSearch, readsNothingWhenStoppedBeforeItBegins) {
    vault.write("03-14.md", "## 2024\n\nword\n");
    start("word");
    stop.request_stop();
    executor.runBackground();
    executor.runMain();
    EXPECT_FALSE(found);
    EXPECT_TRUE(cloud->asked.empty());
}

TEST_F(DiaryStoreBackgroundSearch, handsNothingOverWhenStoppedAfterItEnded) {
    vault.write("03-14.md", "## 2024\n\nword\n");
    cloud->statuses["03-14.md"] = CloudFiles::DownloadingStatus::NotDownloaded;
    start("word");
    executor.runBackground();
    stop.request_stop();
    executor.runMain();
    EXPECT_FALSE(found);
    EXPECT_TRUE(store->awaitingDownload().empty());
}

TEST_F(DiaryStoreBackgroundSearch, handsNothingOverWhenTheStoreIsGone) {
    vault.write("03-14.md", "## 2024\n\nword\n");
    start("word");
    executor.runBackground();
    store.reset();
    executor.runMain();
    EXPECT_FALSE(found);
}

TEST_F(DiaryStoreSearch, readsNoFurtherFilesOnceAStopIsRequested) {
    // Requests the stop when it is asked for the first file.
    class StoppingCloudFiles : public FakeCloudFiles {
    public:
        mutable std::stop_source stop;
        DownloadingStatus downloadingStatus(const std::filesystem::path &file) const override {
            stop.request_stop();
            return FakeCloudFiles::downloadingStatus(file);
        }
    };
    for (MonthDay day{1, 1}; vault.names().size() < 100; day = day.advanced(1))
        vault.write(day.fileName(), "## 2024\n\nword\n");
    const StoppingCloudFiles cloud;
    const auto token = cloud.stop.get_token();
    const auto result =
        DiaryStore::search(vault.path(), DiaryStore::dayFiles(vault.path()), "word", 200, cloud, token);
    EXPECT_LT(cloud.asked.size(), 10U); // one for each thread
    EXPECT_EQ(result.hits.size(), cloud.asked.size());
}

TEST(DiaryStoreMatches, tellsEveryPlaceThatTheSearchWouldFind) {
    const auto matches = [](std::string_view query, const std::string &text) {
        std::vector<std::string> found;
        for (const auto &range : DiaryStore::matches(query, text))
            found.emplace_back(range.in(text));
        return found;
    };
    EXPECT_EQ(matches(" \tcaf\u00E9 ", "Cafe\u0301, CAF\u00C9, cafe"),
              (std::vector<std::string>{"Cafe\u0301", "CAF\u00C9"}));
    EXPECT_TRUE(matches(" \t", "a b").empty());
}

TEST_F(DiaryStoreSearch, passesOverWhatCannotBeRead) {
    std::filesystem::create_directory(vault / "03-14.md");
    vault.write("03-15.md", "## 2024\n\nword\n");
    EXPECT_EQ(search("word").size(), 1U);
    EXPECT_TRUE(DiaryStore::searchEntries(vault / "nowhere", "word", 200).empty());
}

TEST_F(DiaryStoreSearch, findsInAnEntryOfTenMegabytes) {
    std::string text = "## 2024\n\n";
    while (text.size() < 10'000'000)
        text += "日本語の長い文章。";
    vault.write("03-14.md", text + "needle");
    const auto hits = search("NEEDLE");
    ASSERT_EQ(hits.size(), 1U);
    EXPECT_EQ(hits[0].snippet, "…長い文章。日本語の長い文章。needle");
}

struct SnippetRow {
    std::string name;
    std::string query;
    std::string body;
    std::string snippet;
};

TEST(DiaryStoreSnippet, cutsByCharactersThatPeopleSee) {
    const std::string fourteen = "12345678901234";
    const std::string thirtyTwo = "abcdefghijklmnopqrstuvwxyzabcdef";
    const std::string family = "👨‍👩‍👧‍👦";
    const std::vector<SnippetRow> rows = {
        {"a match at the start", "word", "word" + thirtyTwo + "!", "word" + thirtyTwo + "…"},
        {"fourteen before", "word", fourteen + "word", fourteen + "word"},
        {"fifteen before", "word", "x" + fourteen + "word", "…" + fourteen + "word"},
        {"thirty-two after", "word", "word" + thirtyTwo, "word" + thirtyTwo},
        {"both sides", "word", "x" + fourteen + "word" + thirtyTwo + "x",
         "…" + fourteen + "word" + thirtyTwo + "…"},
        {"the first of several", "word", "Word and word", "Word and word"},
        {"line breaks", "two", "one\ntwo\r\nthree\n\nfour", "one two three  four"},
        {"clusters count once", "word", family + family + fourteen + "word", "…" + fourteen + "word"},
        {"clusters are not cut", "word", "x" + family + "3456789012345" + "word",
         "…" + family + "3456789012345word"},
        {"decomposed letters", "word",
         "xe\u0301"
         "3456789012345word",
         "…e\u0301"
         "3456789012345word"},
        {"flags", "word", "🇩🇪🇫🇷word", "🇩🇪🇫🇷word"},
        {"right to left", "שלום", "אמר שלום לכולם", "אמר שלום לכולם"},
        {"Han", "图书馆", "今天早上我们一起走了很远的路去图书馆借书",
         "…天早上我们一起走了很远的路去图书馆借书"},
        {"not found plainly", "zzz", std::string(60, 'a'), std::string(50, 'a')},
        {"not found in a short body", "zzz", "short\nbody", "short body"},
        {"an empty body", "zzz", "", ""},
    };
    for (const auto &row : rows)
        EXPECT_EQ(DiaryStore::snippet(row.query, row.body), row.snippet) << row.name;
}

} // namespace
} // namespace diary

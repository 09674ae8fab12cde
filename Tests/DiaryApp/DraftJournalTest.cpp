// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <DiaryApp/DraftJournal.h>
#include <DiaryKit/DiaryStore.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace diary {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Draft = DraftJournal::Draft;

constexpr MonthDay day{3, 14};

class DraftJournalTest : public ::testing::Test {
protected:
    std::string file() const { return folder.read("vault/03-14.md"); }

    testing::TemporaryFolder folder;
    DraftJournal journal{std::filesystem::path(folder / "state") / "unsaved" / "abc"};
    DiaryStore store{std::filesystem::path(folder / "vault")};
};

TEST_F(DraftJournalTest, readsWhatItWrote) {
    const std::vector<Draft> drafts = {{day, 2026, "old\n", "new\n\n## 2025\n\ntavelo-draft 1\n"},
                                       {{2, 29}, 1000, "", std::string("天\0x", 5)}};
    journal.write(drafts);
    EXPECT_EQ(journal.read(), drafts);
    journal.write({{day, 2026, "a", "b"}});
    EXPECT_THAT(journal.read(), ElementsAre(Draft{day, 2026, "a", "b"}));
    journal.clear();
    EXPECT_THAT(journal.read(), IsEmpty());
}

TEST_F(DraftJournalTest, isReadableByItsOwnerAlone) {
    journal.write({{day, 2026, "", "private"}});
    EXPECT_EQ(std::filesystem::status(journal.file()).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(DraftJournalTest, readsNothingFromForeignOrTornFiles) {
    for (const std::string content :
         {"", "\n", "tavelo-draft\n", "tavelo-draft 2026 03-14 3 9\nabc", "tavelo-draft 2026 13-14 0 1\na",
          "tavelo-draft 2026 03-14 0 99999999999999999999999\na", "tavelo-draft 2026 03-14 -1 1\na",
          "tavelo-draft 2026 03-14 0 1 more\na"}) {
        folder.write("state/unsaved/abc", content);
        EXPECT_THAT(journal.read(), IsEmpty()) << content;
    }
}

TEST_F(DraftJournalTest, restoresTheTextOfAnEntryThatNobodyChangedSince) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2024\n\nOther\n\n## 2026\n\nBegun\n");
    journal.write({{day, 2026, "Begun", "Begun and typed on"}});
    restoreDrafts(journal, store);
    EXPECT_EQ(file(), "# 03-14\n\n## 2024\n\nOther\n\n## 2026\n\nBegun and typed on\n");
    EXPECT_FALSE(std::filesystem::exists(journal.file()));
}

TEST_F(DraftJournalTest, restoresTheFirstEntryOfADay) {
    journal.write({{day, 2026, "", "The first words"}});
    restoreDrafts(journal, store);
    EXPECT_EQ(file(), "# 03-14\n\n## 2026\n\nThe first words\n");
}

TEST_F(DraftJournalTest, keepsBothWhenTheEntryWasWrittenElsewhereSince) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2026\n\nWritten elsewhere\n");
    journal.write({{day, 2026, "Begun", "Typed here"}});
    restoreDrafts(journal, store);
    EXPECT_THAT(file(), HasSubstr("Written elsewhere"));
    EXPECT_THAT(file(), HasSubstr("Typed here"));
    EXPECT_THAT(file(), HasSubstr(store.conflictMarker()));
}

TEST_F(DraftJournalTest, leavesTheFileAloneWhenTheTextWasSavedInTime) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2026\n\nTyped here\n");
    const auto before = std::filesystem::last_write_time(folder / "vault/03-14.md");
    journal.write({{day, 2026, "Begun", "Typed here"}});
    restoreDrafts(journal, store);
    EXPECT_EQ(std::filesystem::last_write_time(folder / "vault/03-14.md"), before);
    EXPECT_FALSE(std::filesystem::exists(journal.file()));
}

TEST_F(DraftJournalTest, keepsForTheNextTimeWhatCannotBeSaved) {
    folder.write("vault/03-14.md/in the way", "");
    journal.write({{day, 2026, "", "Kept"}, {{3, 15}, 2026, "", "Saved"}});
    restoreDrafts(journal, store);
    EXPECT_THAT(journal.read(), ElementsAre(Draft{day, 2026, "", "Kept"}));
    EXPECT_EQ(folder.read("vault/03-15.md"), "# 03-15\n\n## 2026\n\nSaved\n");
}

TEST_F(DraftJournalTest, isAnotherFileForEveryVault) {
    EXPECT_NE(DraftJournal::ofVault("/a").file(), DraftJournal::ofVault("/b").file());
    EXPECT_EQ(DraftJournal::ofVault("/a/").file(), DraftJournal::ofVault("/a").file());
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"

#include <DiaryApp/DayModels.h>
#include <DiaryApp/Theme.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

namespace diary {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Block = EntryView::Model::Block;

// 14 March in 2026, the year that is edited unless a test says otherwise.
class DayModelsTest : public ::testing::Test {
protected:
    DayModelsTest() {
        state.monthDay = {3, 14};
        state.viewedYear = 2026;
        state.currentYear = 2026;
    }

    void setFile(const std::string &sections) {
        file = "# 03-14\n\n" + sections;
        entries = yearEntries(file);
        state.rawText = file;
        state.entries = entries;
        for (const auto &entry : entries) {
            if (entry.year == state.viewedYear)
                state.draft = entry.body;
        }
    }

    YearRailView::Model rail() {
        return DayModels::rail(state, [this](std::int64_t year) { picked.push_back(year); });
    }
    std::vector<std::int64_t> cardYears() {
        std::vector<std::int64_t> years;
        for (const auto &card : rail().cards)
            years.push_back(card.year);
        return years;
    }
    YearRailView::Card card(std::int64_t year) {
        for (const auto &candidate : rail().cards) {
            if (candidate.year == year)
                return candidate;
        }
        ADD_FAILURE() << "no card for " << year;
        return {};
    }

    std::string file;
    std::vector<YearEntry> entries;
    DayState state;
    std::vector<std::int64_t> picked;
};

TEST_F(DayModelsTest, tellsTheDayItsPlaceInTheYearAndItsWeekday) {
    const auto model = DayModels::entry(state);
    EXPECT_EQ(model.fileName, QStringLiteral("03-14.md"));
    EXPECT_EQ(model.dayKey, QStringLiteral("03-14"));
    EXPECT_EQ(model.ordinal, QStringLiteral("Day 73 / 365"));
    EXPECT_EQ(model.weekdayName, QStringLiteral("Saturday"));
    state.viewedYear = 2024;
    EXPECT_EQ(DayModels::entry(state).ordinal, QStringLiteral("Day 74 / 366"));
    EXPECT_EQ(DayModels::entry(state).weekdayName, QStringLiteral("Thursday"));
}

TEST_F(DayModelsTest, editsTheCurrentYearInStrongInk) {
    setFile("## 2026\n\nNow.\n");
    const auto block = DayModels::entry(state).block;
    EXPECT_EQ(block.mark, QStringLiteral("2026"));
    EXPECT_EQ(block.markColor, Theme::accent());
    EXPECT_EQ(block.ago, QStringLiteral("This year"));
    EXPECT_EQ(std::get<Block::Editor>(block.kind),
              (Block::Editor{QStringLiteral("Now."), QString::fromUtf8("Write about this day in 2026…"),
                             Theme::inkStrong()}));
}

TEST_F(DayModelsTest, editsAPastYearInAMutedColour) {
    setFile("## 2025\n\nThen.\n");
    state.viewedYear = 2025;
    state.draft = QStringLiteral("Then.");
    const auto block = DayModels::entry(state).block;
    EXPECT_EQ(block.markColor, Theme::pastText());
    EXPECT_EQ(block.ago, QStringLiteral("1 years ago"));
    EXPECT_EQ(std::get<Block::Editor>(block.kind).textColor, Theme::pastText());
}

TEST_F(DayModelsTest, hasNothingToEditOnALeapDayOfACommonYear) {
    state.monthDay = {2, 29};
    const auto model = DayModels::entry(state);
    EXPECT_EQ(model.ordinal, QStringLiteral("Day 60 / 366"));
    EXPECT_EQ(model.weekdayName, QString());
    state.canEdit = false;
    const auto block = DayModels::entry(state).block;
    EXPECT_EQ(block.markColor, Theme::faint());
    EXPECT_EQ(block.ago, QString());
    EXPECT_TRUE(std::holds_alternative<Block::Empty>(block.kind));
}

TEST_F(DayModelsTest, offersOnlyLeapYearsOnTheLeapDay) {
    state.monthDay = {2, 29};
    EXPECT_THAT(rail().addYears, ElementsAre(2024, 2020, 2016, 2012));
}

TEST_F(DayModelsTest, countsAPastYearOnlyWhenItIsWritten) {
    setFile("## 2024\n\nThen.\n\n## 2023\n\n\n## 2022\n\nToo.\n\n## 2026\n\nNow.\n");
    EXPECT_EQ(DayModels::entry(state).subtitle, QStringLiteral("This file has 2 past-year sections"));
    EXPECT_EQ(DayModels::topBar(state).sectionCount, QStringLiteral("3 year sections"));
    EXPECT_THAT(cardYears(), ElementsAre(2026, 2024, 2022));
    state.viewedYear = 2023;
    state.draft = QString();
    EXPECT_THAT(cardYears(), ElementsAre(2026, 2024, 2023, 2022));
}

TEST_F(DayModelsTest, namesTheYearsWithoutAnEntry) {
    state.draft = QStringLiteral("x");
    setFile("## 2019\n\na\n\n## 2021\n\nb\n\n## 2025\n\nc\n");
    ASSERT_TRUE(DayModels::entry(state).gapLine.has_value());
    EXPECT_TRUE(DayModels::entry(state).gapLine->contains(QStringLiteral("2024 · 2023 · 2022 · 2020")));
    state.showGapYears = false;
    EXPECT_EQ(DayModels::entry(state).gapLine, std::nullopt);
    state.showGapYears = true;
    state.showSource = true;
    EXPECT_EQ(DayModels::entry(state).gapLine, std::nullopt);
}

TEST_F(DayModelsTest, namesNoYearsWhenNoneIsMissing) {
    EXPECT_EQ(DayModels::entry(state).gapLine, std::nullopt);
    setFile("## 2025\n\na\n");
    EXPECT_EQ(DayModels::entry(state).gapLine, std::nullopt);
    setFile("## 2025\n\na\n\n## 2024\n\nb\n");
    EXPECT_EQ(DayModels::entry(state).gapLine, std::nullopt);
    // One that is to come.
    setFile("## 2030\n\na\n");
    EXPECT_EQ(DayModels::entry(state).gapLine, std::nullopt);
}

TEST_F(DayModelsTest, showsTheWholeFileAsItsSource) {
    setFile("## 2025\n\na\n");
    EXPECT_EQ(DayModels::entry(state).sourceText, std::nullopt);
    state.showSource = true;
    EXPECT_EQ(DayModels::entry(state).sourceText, QString::fromStdString(file));
    state.rawText = {};
    EXPECT_EQ(DayModels::entry(state).sourceText, QStringLiteral("(empty file)"));
}

TEST_F(DayModelsTest, showsTheCurrentYearFirstOnTheRail) {
    setFile("## 2026\n\n  \n\n## 2025\n\nThen.\n");
    state.draft = QStringLiteral("\n Now, as\nit is typed ");
    auto now = card(2026);
    EXPECT_EQ(now.yearColor, Theme::accent());
    EXPECT_EQ(now.meta, QStringLiteral("15 chars"));
    EXPECT_EQ(now.snippet, QStringLiteral("Now, as it is typed"));
    EXPECT_EQ(now.snippetColor, Theme::railTextActive());
    EXPECT_EQ(now.ago, QString::fromUtf8("This year · writing"));
    EXPECT_EQ(now.background, Theme::cardBgActive());
    EXPECT_EQ(now.border, Theme::accent());

    state.viewedYear = 2025;
    state.draft = QStringLiteral("Then.");
    now = card(2026);
    EXPECT_EQ(now.snippet, QStringLiteral("Not written yet"));
    EXPECT_EQ(now.meta, QStringLiteral("0 chars"));
    EXPECT_EQ(now.background, Theme::cardBg());
    EXPECT_EQ(now.border, Theme::cardBorder());
    EXPECT_THAT(cardYears(), ElementsAre(2026, 2025));
}

TEST_F(DayModelsTest, showsThePastYearsBelow) {
    setFile("## 2019\n\nOldest.\n\n## 2025\n\n" + std::string(100, 'a') + "\n");
    const auto past = card(2025);
    EXPECT_EQ(past.yearColor, Theme::railYear());
    EXPECT_EQ(past.meta, QStringLiteral("100 chars"));
    EXPECT_EQ(past.snippet, QString(46, QLatin1Char('a')) + QString::fromUtf8("…"));
    EXPECT_EQ(past.snippetColor, Theme::railSnippet());
    EXPECT_EQ(past.ago, QStringLiteral("1 years ago"));
    EXPECT_EQ(past.background, Theme::cardBg());
    EXPECT_EQ(past.border, Theme::cardBorder());
    EXPECT_EQ(card(2019).ago, QStringLiteral("7 years ago"));

    state.viewedYear = 2025;
    EXPECT_EQ(card(2025).background, Theme::cardBgActive());
    EXPECT_EQ(card(2025).border, Theme::cardBorderActive());
}

TEST_F(DayModelsTest, givesAYearThatIsBeingAddedACardInItsPlace) {
    setFile("## 2025\n\na\n\n## 2019\n\nb\n");
    state.viewedYear = 2022;
    state.draft = QString();
    EXPECT_THAT(cardYears(), ElementsAre(2026, 2025, 2022, 2019));
    EXPECT_EQ(card(2022).snippet, QStringLiteral("Not written yet"));
    state.draft = QStringLiteral("\nFirst words");
    EXPECT_EQ(card(2022).snippet, QStringLiteral(" First words"));
    EXPECT_EQ(card(2022).meta, QStringLiteral("10 chars"));
}

TEST_F(DayModelsTest, offersTheFifteenYearsBeforeThatHaveNoCard) {
    setFile("## 2025\n\na\n\n## 2019\n\nb\n\n## 2000\n\nc\n");
    EXPECT_THAT(rail().addYears,
                ElementsAre(2024, 2023, 2022, 2021, 2020, 2018, 2017, 2016, 2015, 2014, 2013, 2012, 2011));
    state.viewedYear = 2024;
    state.draft = QString();
    EXPECT_EQ(rail().addYears.front(), 2023);
}

TEST_F(DayModelsTest, picksTheYearOfACardAndTheYearToAdd) {
    setFile("## 2025\n\na\n");
    auto model = rail();
    model.cards[1].onClick();
    model.cards[0].onClick();
    model.onAddYear(2017);
    EXPECT_THAT(picked, ElementsAre(2025, 2026, 2017));
}

TEST_F(DayModelsTest, tellsTheSpanBelowTheCards) {
    EXPECT_EQ(rail().footer, QStringLiteral("This day is still empty"));
    state.draft = QStringLiteral("Only this year");
    EXPECT_EQ(rail().footer, QStringLiteral("This day is still empty"));
    setFile("## 2025\n\na\n\n## 2019\n\nb\n");
    EXPECT_EQ(rail().footer, QString::fromUtf8("Spanning 8 years · earliest 2019"));
}

TEST_F(DayModelsTest, countsNothingOnAnEmptyDayAndOneOnceSomethingIsTyped) {
    EXPECT_EQ(DayModels::entry(state).subtitle, QStringLiteral("This file has 0 past-year sections"));
    EXPECT_EQ(DayModels::topBar(state).sectionCount, QStringLiteral("0 year sections"));
    state.draft = QStringLiteral(" \t");
    EXPECT_EQ(DayModels::topBar(state).sectionCount, QStringLiteral("0 year sections"));
    state.draft = QStringLiteral("a");
    EXPECT_EQ(DayModels::topBar(state).sectionCount, QStringLiteral("1 year sections"));
}

TEST_F(DayModelsTest, countsABodyOfLineBreaksInTheTopBarButReadsItAsNotWritten) {
    state.draft = QStringLiteral("\n\n");
    EXPECT_EQ(DayModels::topBar(state).sectionCount, QStringLiteral("1 year sections"));
    EXPECT_EQ(card(2026).snippet, QStringLiteral("Not written yet"));
}

TEST_F(DayModelsTest, namesTheModeThatTheButtonLeadsTo) {
    EXPECT_EQ(DayModels::topBar(state).sourceLabel, QStringLiteral("Source"));
    EXPECT_EQ(DayModels::topBar(state).fileName, QStringLiteral("03-14.md"));
    state.showSource = true;
    EXPECT_EQ(DayModels::topBar(state).sourceLabel, QStringLiteral("Reader"));
}

TEST_F(DayModelsTest, showsTheVaultInTheHomeFolderWithATilde) {
    const testing::ScopedEnvironment home("HOME", "/home/ann");
    state.draft = QStringLiteral("two words");
    const auto inside = DayModels::statusBar(state, "/home/ann/Documents/Diary/03-14.md");
    EXPECT_EQ(inside.path, QStringLiteral("~/Documents/Diary/03-14.md"));
    EXPECT_EQ(inside.status, QString::fromUtf8("Viewing ## 2026 · 8 chars"));
    for (const auto *path : {"/mnt/Diary/03-14.md", "/home/anna/Diary/03-14.md"})
        EXPECT_EQ(DayModels::statusBar(state, path).path, QString::fromUtf8(path));
}

} // namespace
} // namespace diary

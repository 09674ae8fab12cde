// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/EditingSession.h>
#include <DiaryApp/Text.h>
#include <DiaryKit/YearSectionParser.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using Part = EditingSession::Part;
using Parts = EditingSession::Parts;

constexpr MonthDay piDay{3, 14};
constexpr MonthDay leapDay{2, 29};

const Parts partsAfterTyping = Parts{} | Part::Rail | Part::Status | Part::TopBar;
const Parts partsAfterSaving = Parts{} | Part::Sidebar | Part::Rail;
const Parts partsAfterPickingYear = Parts{} | Part::Sidebar | Part::Entry | Part::Rail | Part::Status;

std::string dayFile(std::string_view title, std::string_view sections) {
    return "# " + std::string(title) + "\n\n" + std::string(sections);
}

// A session over a vault of its own that has opened 14 March 2025.
class EditingSessionTest : public ::testing::Test {
protected:
    explicit EditingSessionTest(DiaryDay today = {2025, 3, 14}) : clock(today) {
        session = std::make_unique<EditingSession>(store, clock);
        session->onRender = [this](Parts parts) { renders.push_back(parts); };
        session->onShowFromTop = [this] { ++timesShownFromTop; };
        session->onDirtyChanged = [this](bool dirty) { editedMark = dirty; };
        session->onSaveError = [this](const QString &text) { errors.push_back(text); };
        session->openToday();
        forgetCalls();
    }

    void forgetCalls() {
        renders.clear();
        timesShownFromTop = 0;
    }

    // As another device does, with a date that no earlier version had.
    void writeElsewhere(MonthDay monthDay, std::string_view bytes) {
        const auto name = "vault" / std::filesystem::path(monthDay.fileName());
        folder.write(name, bytes);
        static auto lastDate = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(folder / name, lastDate += 1h);
    }
    void openWith(MonthDay monthDay, std::string_view bytes) {
        writeElsewhere(monthDay, bytes);
        session->open(monthDay);
        forgetCalls();
    }

    std::string fileOf(MonthDay monthDay) const {
        return folder.read("vault" / std::filesystem::path(monthDay.fileName()));
    }
    bool exists(MonthDay monthDay) const { return std::filesystem::exists(store.fileURL(monthDay)); }
    std::string bodyOnDisk(MonthDay monthDay, std::int64_t year) const {
        const auto text = fileOf(monthDay);
        for (const auto &[found, body] : YearSectionParser::sectionBodies(text)) {
            if (found == year)
                return std::string(body);
        }
        return "(no section)";
    }

    std::vector<std::int64_t> yearsOfTheFile() const {
        std::vector<std::int64_t> years;
        for (const auto &entry : session->entries())
            years.push_back(entry.year);
        return years;
    }

    // A day file without write permission is one that cannot be saved, for the superuser too.
    void makeReadOnly(MonthDay monthDay) {
        if (!exists(monthDay))
            writeElsewhere(monthDay, "");
        std::filesystem::permissions(store.fileURL(monthDay), std::filesystem::perms::owner_read);
    }
    void makeWritable(MonthDay monthDay) {
        std::filesystem::permissions(store.fileURL(monthDay), std::filesystem::perms::owner_read |
                                                                  std::filesystem::perms::owner_write);
    }

    void type(std::string_view text) { session->draftChanged(toQString(text)); }

    testing::TemporaryFolder folder;
    testing::FakeClock clock;
    DiaryStore store{folder / "vault", {.stateFolder = folder / "state"}};
    std::unique_ptr<EditingSession> session;

    std::vector<Parts> renders;
    int timesShownFromTop = 0;
    bool editedMark = false;
    std::vector<QString> errors;
};

// Opening.

TEST_F(EditingSessionTest, startsWithTodayInTheCurrentYear) {
    const EditingSession fresh(store, clock);
    EXPECT_EQ(fresh.currentMonthDay(), piDay);
    EXPECT_EQ(fresh.viewedYear(), 2025);
    EXPECT_FALSE(fresh.isDirty());
}

TEST_F(EditingSessionTest, showsTheCurrentYearOfTheOpenedDay) {
    writeElsewhere({7, 4}, dayFile("07-04", "## 2024\n\nOld.\n\n## 2025\n\nNew.\n"));
    session->open({7, 4});
    EXPECT_EQ(session->currentMonthDay(), (MonthDay{7, 4}));
    EXPECT_EQ(session->viewedYear(), 2025);
    EXPECT_EQ(session->draft(), QStringLiteral("New."));
    EXPECT_FALSE(editedMark);
    EXPECT_THAT(renders, ElementsAre(EditingSession::allParts()));
    EXPECT_EQ(timesShownFromTop, 1);
}

TEST_F(EditingSessionTest, goesBackToTheCurrentYearWheneverADayIsOpened) {
    openWith(piDay, dayFile("03-14", "## 2020\n\nOld.\n"));
    session->pickYear(2020);
    session->open(piDay);
    EXPECT_EQ(session->viewedYear(), 2025);
    EXPECT_EQ(session->draft(), QString());
}

TEST_F(EditingSessionTest, makesNoFileForADayThatIsOnlyLookedAt) {
    session->open({7, 4});
    session->pickYear(2020);
    session->open(piDay);
    session->flushSaveIfDirty();
    EXPECT_FALSE(std::filesystem::exists(folder / "vault"));
}

TEST_F(EditingSessionTest, savesTheDayThatIsLeftIntoItsOwnFile) {
    type("For the fourteenth.");
    session->open({7, 4});
    EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2025\n\nFor the fourteenth.\n"));
    EXPECT_FALSE(exists({7, 4}));
    EXPECT_EQ(session->draft(), QString());
    EXPECT_FALSE(session->isDirty());
    EXPECT_FALSE(editedMark);
}

TEST_F(EditingSessionTest, readsTheFirstOfTwoSectionsOfOneYear) {
    openWith(piDay, dayFile("03-14", "## 2025\n\nFirst.\n\n## 2025\n\nSecond.\n"));
    EXPECT_EQ(session->body(2025), "First.");
    EXPECT_EQ(session->body(2024), "");
    EXPECT_EQ(session->draft(), QStringLiteral("First."));
}

TEST_F(EditingSessionTest, stepsOnTheCalendarThatWrapsAndHasALeapDay) {
    const struct {
        MonthDay from;
        std::int64_t days;
        MonthDay to;
    } rows[] = {
        {{3, 14}, 1, {3, 15}}, {{3, 14}, -1, {3, 13}}, {{12, 31}, 1, {1, 1}}, {{1, 1}, -1, {12, 31}},
        {{2, 28}, 1, {2, 29}}, {{2, 29}, 1, {3, 1}},   {{3, 1}, -1, {2, 29}}, {{4, 30}, 1, {5, 1}},
        {{1, 1}, 366, {1, 1}}, {{6, 15}, 0, {6, 15}},
    };
    for (const auto &[from, days, to] : rows) {
        session->open(from);
        session->step(days);
        EXPECT_EQ(session->currentMonthDay(), to) << from.headerTitle() << " by " << days;
    }
}

// Picking a year.

TEST_F(EditingSessionTest, savesTheYearThatIsLeftAndShowsTheOther) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n"));
    type("Now.");
    forgetCalls();
    session->pickYear(2023);
    EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2023\n\nThen.\n\n## 2025\n\nNow.\n"));
    EXPECT_EQ(session->viewedYear(), 2023);
    EXPECT_EQ(session->draft(), QStringLiteral("Then."));
    EXPECT_THAT(renders, ElementsAre(partsAfterSaving, partsAfterPickingYear));
    EXPECT_EQ(timesShownFromTop, 1);
}

TEST_F(EditingSessionTest, doesNothingWhenTheShownYearIsPicked) {
    type("Half a");
    forgetCalls();
    session->pickYear(2025);
    EXPECT_TRUE(session->isDirty());
    EXPECT_FALSE(exists(piDay));
    EXPECT_THAT(renders, IsEmpty());
    EXPECT_EQ(timesShownFromTop, 0);
}

TEST_F(EditingSessionTest, startsAYearThatTheFileLacks) {
    openWith(piDay, dayFile("03-14", "## 2020\n\nA\n\n## 2025\n\nB\n"));
    session->pickYear(2022);
    EXPECT_EQ(session->draft(), QString());
    type("Between.");
    clock.advance(1s);
    EXPECT_EQ(bodyOnDisk(piDay, 2020), "A");
    EXPECT_EQ(bodyOnDisk(piDay, 2022), "Between.");
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "B");
}

TEST_F(EditingSessionTest, refusesYearsThatMakeNoHeaderLine) {
    const struct {
        std::int64_t year;
        bool canEdit;
    } rows[] = {{999, false}, {1000, true}, {9999, true}, {10000, false}, {0, false}, {-2024, false}};
    for (const auto &[year, canEdit] : rows) {
        session->pickYear(year);
        EXPECT_EQ(session->canEdit(), canEdit) << year;
    }
}

// Typing and the save that follows it.

TEST_F(EditingSessionTest, savesOneSecondAfterTheLastChange) {
    type("a");
    EXPECT_TRUE(session->isDirty());
    EXPECT_TRUE(editedMark);
    EXPECT_THAT(renders, ElementsAre(partsAfterTyping));
    clock.advance(999ms);
    EXPECT_FALSE(exists(piDay));

    type("ab");
    clock.advance(999ms);
    EXPECT_FALSE(exists(piDay));
    forgetCalls();
    clock.advance(1ms);
    EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2025\n\nab\n"));
    EXPECT_FALSE(session->isDirty());
    EXPECT_FALSE(editedMark);
    EXPECT_EQ(session->rawText(), fileOf(piDay));
    EXPECT_THAT(renders, ElementsAre(partsAfterSaving));
}

TEST_F(EditingSessionTest, writesOnceForABurstOfTyping) {
    type("a");
    session->flushSaveIfDirty();
    const auto firstDate = store.modificationDate(piDay);
    writeElsewhere(piDay, fileOf(piDay));
    const auto date = store.modificationDate(piDay);
    ASSERT_NE(date, firstDate);
    clock.advance(10s);
    EXPECT_EQ(store.modificationDate(piDay), date);
}

TEST_F(EditingSessionTest, writesNothingWhenThereIsNothingToSave) {
    openWith(piDay, "not the program's own layout\n\n\n## 2025\nText");
    EXPECT_TRUE(session->flushSaveIfDirty());
    EXPECT_EQ(fileOf(piDay), "not the program's own layout\n\n\n## 2025\nText");
    EXPECT_THAT(renders, IsEmpty());
}

TEST_F(EditingSessionTest, savesBeforeTheSourceIsShown) {
    type("a");
    session->toggleSourceView();
    EXPECT_TRUE(session->showSource());
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "a");
    session->toggleSourceView();
    EXPECT_FALSE(session->showSource());
}

TEST_F(EditingSessionTest, makesNoFileForAnEntryThatWasTypedAndTakenBack) {
    type("a");
    type("");
    clock.advance(1s);
    EXPECT_FALSE(session->isDirty());
    EXPECT_FALSE(exists(piDay));
}

TEST_F(EditingSessionTest, keepsTheFileAndTheOtherYearsOfAnEntryThatIsEmptied) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n\n## 2025\n\nNow.\n"));
    type("");
    clock.advance(1s);
    EXPECT_EQ(bodyOnDisk(piDay, 2023), "Then.");
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "");
}

TEST_F(EditingSessionTest, forgetsItsTimersWhenItGoes) {
    type("a");
    session->scheduleRemoteRefresh();
    session.reset();
    clock.advance(10s);
    EXPECT_FALSE(exists(piDay));
}

TEST_F(EditingSessionTest, savesEveryCharacterAsItWasTyped) {
    const std::string texts[] = {
        "no-break\u00A0space, narrow\u202Fno-break",
        "emoji 🙂👩‍👩‍👧‍👦🇨🇭 and ❤️",
        "שלום עולם, مرحبا بالعالم",
        "春眠不覺曉，處處聞啼鳥。𠮷野家",
        "combining e\u0301 and precomposed \u00E9",
        "zero\u200Bwidth\u200Djoiner\u2060",
        "tab\there,  two spaces,   three",
        "one\n\n\n\nfour line breaks",
        "# a title\n\n### and a third-level one\n\n- list",
    };
    for (const auto &text : texts) {
        type(text);
        clock.advance(1s);
        EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2025\n\n" + text + "\n"));
        session->open({7, 4});
        session->open(piDay);
        EXPECT_EQ(toUtf8(session->draft()), text);
    }
}

TEST_F(EditingSessionTest, savesALongEntry) {
    std::string text;
    while (text.size() < 100'000)
        text += "Line " + std::to_string(text.size()) + " of a long day, 一二三.\n";
    text.pop_back();
    openWith(piDay, dayFile("03-14", "## 2024\n\nBefore.\n\n## 2026\n\nAfter.\n"));
    type(text);
    clock.advance(1s);
    EXPECT_EQ(fileOf(piDay),
              dayFile("03-14", "## 2024\n\nBefore.\n\n## 2025\n\n" + text + "\n\n## 2026\n\nAfter.\n"));
}

TEST_F(EditingSessionTest, keepsTypedYearHeadersInsideTheEntry) {
    openWith(piDay, dayFile("03-14", "## 2024\n\nBefore.\n\n## 2026\n\nAfter.\n"));
    type("Quoted:\n## 2024\nnot that year\n## 2026");
    clock.advance(1s);
    EXPECT_EQ(bodyOnDisk(piDay, 2024), "Before.");
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "Quoted:\n ## 2024\nnot that year\n ## 2026");
    EXPECT_EQ(bodyOnDisk(piDay, 2026), "After.");
}

TEST_F(EditingSessionTest, keepsTheNextYearWhileAFenceIsTypedLetterByLetter) {
    openWith(piDay, dayFile("03-14", "## 2024\n\nBefore.\n\n## 2026\n\nAfter.\n"));
    const std::string text = "Look:\n```sh\necho '## 2026'\n## 2024\n```\nand\n```\nopen to the end";
    for (std::size_t length = 1; length <= text.size(); ++length) {
        type(text.substr(0, length));
        clock.advance(1s);
        ASSERT_EQ(bodyOnDisk(piDay, 2024), "Before.") << text.substr(0, length);
        ASSERT_EQ(bodyOnDisk(piDay, 2026), "After.") << text.substr(0, length);
        ASSERT_EQ(YearSectionParser::sections(fileOf(piDay)).size(), 3U) << text.substr(0, length);
    }
    EXPECT_EQ(bodyOnDisk(piDay, 2025), text + "\n```");
    EXPECT_EQ(toUtf8(session->draft()), text);
}

// Other writers.

TEST_F(EditingSessionTest, keepsAYearThatWasAddedElsewhereWhileTyping) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n\n## 2025\n\nNow.\n"));
    type("Now and");
    writeElsewhere(piDay, dayFile("03-14", "## 2023\n\nThen.\n\n## 2024\n\nElsewhere.\n\n## 2025\n\nNow.\n"));
    session->scheduleRemoteRefresh();
    clock.advance(300ms);
    EXPECT_EQ(session->draft(), QStringLiteral("Now and"));
    EXPECT_TRUE(session->isDirty());

    type("Now and then.");
    clock.advance(1s);
    EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2023\n\nThen.\n\n## 2024\n\nElsewhere.\n\n"
                                              "## 2025\n\nNow and then.\n"));
    EXPECT_THAT(yearsOfTheFile(), ElementsAre(2023, 2024, 2025));
}

TEST_F(EditingSessionTest, takesInAChangeMadeElsewhereWhenIdle) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n\n## 2025\n\nNow.\n"));
    writeElsewhere(piDay, dayFile("03-14", "## 2023\n\nThen.\n\n## 2024\n\nNew.\n\n## 2025\n\nChanged.\n"));
    session->scheduleRemoteRefresh();
    clock.advance(299ms);
    EXPECT_EQ(session->draft(), QStringLiteral("Now."));
    clock.advance(1ms);
    EXPECT_EQ(session->draft(), QStringLiteral("Changed."));
    EXPECT_THAT(yearsOfTheFile(), ElementsAre(2023, 2024, 2025));
    EXPECT_THAT(renders, ElementsAre(Parts{Part::Sidebar}, EditingSession::allParts()));
    EXPECT_EQ(timesShownFromTop, 0);
}

TEST_F(EditingSessionTest, keepsTheViewedYearWhenItTakesInAChange) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n"));
    session->pickYear(2023);
    writeElsewhere(piDay, dayFile("03-14", "## 2023\n\nThen, changed.\n"));
    session->performRemoteRefresh();
    EXPECT_EQ(session->viewedYear(), 2023);
    EXPECT_EQ(session->draft(), QStringLiteral("Then, changed."));
}

TEST_F(EditingSessionTest, refreshesOnceForABurstOfNotices) {
    for (int notice = 0; notice < 5; ++notice) {
        session->scheduleRemoteRefresh();
        clock.advance(299ms);
    }
    EXPECT_THAT(renders, IsEmpty());
    clock.advance(1ms);
    EXPECT_THAT(renders, ElementsAre(Parts{Part::Sidebar}));
    clock.advance(10s);
    EXPECT_EQ(renders.size(), 1U);
}

TEST_F(EditingSessionTest, refreshesAtOnceInsteadOfLater) {
    session->scheduleRemoteRefresh();
    session->performRemoteRefresh();
    clock.advance(10s);
    EXPECT_EQ(renders.size(), 1U);
}

TEST_F(EditingSessionTest, leavesThePageAloneWhenOnlyOtherDaysChanged) {
    openWith(piDay, dayFile("03-14", "## 2025\n\nNow.\n"));
    writeElsewhere({7, 4}, dayFile("07-04", "## 2025\n\nFireworks.\n"));
    session->performRemoteRefresh();
    EXPECT_THAT(renders, ElementsAre(Parts{Part::Sidebar}));
}

TEST_F(EditingSessionTest, doesNotTakeItsOwnSaveForAChangeMadeElsewhere) {
    type("a  ");
    session->flushSaveIfDirty();
    forgetCalls();
    session->performRemoteRefresh();
    EXPECT_EQ(session->draft(), QStringLiteral("a  "));
    EXPECT_THAT(renders, ElementsAre(Parts{Part::Sidebar}));
}

TEST_F(EditingSessionTest, showsAnEmptyDayWhenTheFileWasDeletedElsewhere) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n\n## 2025\n\nNow.\n"));
    std::filesystem::remove(store.fileURL(piDay));
    session->performRemoteRefresh();
    EXPECT_EQ(session->draft(), QString());
    EXPECT_THAT(yearsOfTheFile(), IsEmpty());
    EXPECT_FALSE(session->isDirty());
    forgetCalls();
    session->performRemoteRefresh();
    EXPECT_THAT(renders, ElementsAre(Parts{Part::Sidebar}));
}

TEST_F(EditingSessionTest, savesTypingIntoAFileThatWasDeletedElsewhere) {
    openWith(piDay, dayFile("03-14", "## 2025\n\nNow.\n"));
    type("Now and here.");
    std::filesystem::remove(store.fileURL(piDay));
    session->performRemoteRefresh();
    clock.advance(1s);
    EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2025\n\nNow and here.\n"));
}

TEST_F(EditingSessionTest, mendsASaveThatAnotherProgramWroteOver) {
    const auto before = dayFile("03-14", "## 2024\n\nBefore.\n");
    openWith(piDay, before);
    type("Mine.");
    session->flushSaveIfDirty();
    // The other program had read the file before that save.
    writeElsewhere(piDay, dayFile("03-14", "## 2024\n\nBefore, and more.\n"));
    clock.advance(EditingSession::repairDelay);
    EXPECT_EQ(bodyOnDisk(piDay, 2024), "Before, and more.");
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "Mine.");
    EXPECT_EQ(session->draft(), QStringLiteral("Mine."));
    EXPECT_EQ(session->body(2024), "Before, and more.");
}

TEST_F(EditingSessionTest, doesNotDisturbTypingWhenItMendsASave) {
    type("Mine.");
    session->flushSaveIfDirty();
    writeElsewhere(piDay, dayFile("03-14", "## 2024\n\nTheirs.\n"));
    clock.advance(1s);
    type("Mine, and");
    clock.advance(500ms);
    EXPECT_EQ(session->draft(), QStringLiteral("Mine, and"));
    clock.advance(1s);
    EXPECT_EQ(bodyOnDisk(piDay, 2024), "Theirs.");
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "Mine, and");
}

// Saves that fail.

TEST_F(EditingSessionTest, reportsOnlyTheFirstFailureOfARun) {
    makeReadOnly(piDay);
    type("a");
    clock.advance(1s);
    ASSERT_EQ(errors.size(), 1U);
    const auto systemText = toQString(std::make_error_code(std::errc::permission_denied).message());
    EXPECT_TRUE(errors.front().contains(systemText)) << toUtf8(errors.front());
    EXPECT_TRUE(errors.front().contains(QLatin1String("03-14.md"))) << toUtf8(errors.front());
    EXPECT_TRUE(session->isDirty());
    EXPECT_TRUE(editedMark);

    type("ab");
    clock.advance(1s);
    EXPECT_FALSE(session->flushSaveIfDirty());
    EXPECT_EQ(errors.size(), 1U);

    makeWritable(piDay);
    EXPECT_TRUE(session->flushSaveIfDirty());
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "ab");
    EXPECT_FALSE(editedMark);

    makeReadOnly(piDay);
    type("abc");
    clock.advance(1s);
    EXPECT_EQ(errors.size(), 2U);
}

TEST_F(EditingSessionTest, triesAFailedSaveAgainWithTheNextEditAndNotBefore) {
    makeReadOnly(piDay);
    type("a");
    EXPECT_FALSE(session->flushSaveIfDirty());
    makeWritable(piDay);
    clock.advance(60s);
    EXPECT_EQ(fileOf(piDay), "");
    type("ab");
    clock.advance(1s);
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "ab");
}

TEST_F(EditingSessionTest, savesOnceAMissingDriveIsThere) {
    folder.write("mount", "in the way");
    DiaryStore elsewhere(folder / "mount" / "vault", {.stateFolder = folder / "state"});
    EditingSession over(elsewhere, clock);
    int failures = 0;
    over.onSaveError = [&](const QString &) { ++failures; };
    over.openToday();
    over.draftChanged(QStringLiteral("Kept."));
    clock.advance(1s);
    EXPECT_EQ(failures, 1);
    EXPECT_TRUE(over.hasUnsavedText());

    std::filesystem::remove(folder / "mount");
    over.step(1);
    EXPECT_FALSE(over.hasUnsavedText());
    EXPECT_EQ(folder.read("mount/vault/03-14.md"), dayFile("03-14", "## 2025\n\nKept.\n"));
}

TEST_F(EditingSessionTest, keepsAnUnsavedDraftWhenAnotherDayIsOpened) {
    makeReadOnly(piDay);
    type("Kept.");
    session->open({7, 4});
    EXPECT_EQ(session->draft(), QString());
    EXPECT_FALSE(session->isDirty());
    EXPECT_TRUE(session->hasUnsavedText());
    EXPECT_TRUE(editedMark);

    makeWritable(piDay);
    type("Fireworks.");
    clock.advance(1s);
    EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2025\n\nKept.\n"));
    EXPECT_EQ(fileOf({7, 4}), dayFile("07-04", "## 2025\n\nFireworks.\n"));
    EXPECT_FALSE(session->hasUnsavedText());
    EXPECT_FALSE(editedMark);
}

TEST_F(EditingSessionTest, keepsAnUnsavedDraftWhenAnotherYearIsPicked) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n\n## 2025\n\nNow.\n"));
    makeReadOnly(piDay);
    type("Now, changed.");
    session->pickYear(2023);
    EXPECT_EQ(session->draft(), QStringLiteral("Then."));
    type("Then, changed.");
    session->pickYear(2020);
    EXPECT_TRUE(session->hasUnsavedText());

    makeWritable(piDay);
    EXPECT_TRUE(session->flushSaveIfDirty());
    EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2023\n\nThen, changed.\n\n## 2025\n\nNow, changed.\n"));
    EXPECT_EQ(errors.size(), 1U);
}

TEST_F(EditingSessionTest, bringsAnUnsavedDraftBackWithItsDay) {
    openWith(piDay, dayFile("03-14", "## 2025\n\nNow.\n"));
    makeReadOnly(piDay);
    type("Now, changed.");
    session->open({7, 4});
    session->open({7, 5});
    session->open(piDay);
    EXPECT_EQ(session->draft(), QStringLiteral("Now, changed."));
    EXPECT_TRUE(session->isDirty());
    EXPECT_TRUE(editedMark);

    makeWritable(piDay);
    EXPECT_TRUE(session->flushSaveIfDirty());
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "Now, changed.");
    EXPECT_FALSE(session->hasUnsavedText());
}

TEST_F(EditingSessionTest, bringsAnUnsavedDraftBackWithItsYear) {
    makeReadOnly(piDay);
    type("This year's.");
    session->pickYear(2023);
    session->pickYear(2025);
    EXPECT_EQ(session->draft(), QStringLiteral("This year's."));
    EXPECT_TRUE(session->isDirty());
}

TEST_F(EditingSessionTest, showsADraftThatWasSavedOnTheWayBackToItsYear) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n\n## 2025\n\nNow.\n"));
    makeReadOnly(piDay);
    type("Now, changed.");
    session->pickYear(2023);
    makeWritable(piDay);
    session->pickYear(2025);
    EXPECT_EQ(session->draft(), QStringLiteral("Now, changed."));
    EXPECT_FALSE(session->isDirty());

    type(toUtf8(session->draft()) + " Again.");
    clock.advance(1s);
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "Now, changed. Again.");
    EXPECT_EQ(bodyOnDisk(piDay, 2023), "Then.");
}

TEST_F(EditingSessionTest, showsWhatChangedElsewhereWhenItSavesAnotherYearOfTheDay) {
    openWith(piDay, dayFile("03-14", "## 2023\n\nThen.\n"));
    makeReadOnly(piDay);
    type("Now.");
    session->pickYear(2023);
    makeWritable(piDay);
    writeElsewhere(piDay, dayFile("03-14", "## 2023\n\nThen, changed.\n"));
    EXPECT_TRUE(session->flushSaveIfDirty());
    EXPECT_EQ(fileOf(piDay), dayFile("03-14", "## 2023\n\nThen, changed.\n\n## 2025\n\nNow.\n"));
    EXPECT_EQ(session->draft(), QStringLiteral("Then, changed."));
}

TEST_F(EditingSessionTest, savesADraftAlthoughAnotherOneCannotBeSaved) {
    makeReadOnly(piDay);
    makeReadOnly({7, 4});
    type("Pi.");
    session->open({7, 4});
    type("Fireworks.");
    session->open({12, 24});
    makeWritable({7, 4});
    type("Snow.");
    EXPECT_FALSE(session->flushSaveIfDirty());
    EXPECT_EQ(bodyOnDisk({7, 4}, 2025), "Fireworks.");
    EXPECT_EQ(bodyOnDisk({12, 24}, 2025), "Snow.");
    EXPECT_TRUE(session->hasUnsavedText());
    EXPECT_EQ(errors.size(), 1U);
}

TEST_F(EditingSessionTest, rescuesEveryUnsavedTextOnce) {
    makeReadOnly(piDay);
    makeReadOnly({7, 4});
    type("Pi 你好");
    session->open({7, 4});
    session->pickYear(2020);
    type("Old fireworks.");
    session->rescueUnsavedText(folder / "state" / "rescued");
    session->rescueUnsavedText(folder / "state" / "rescued");
    EXPECT_THAT(folder.names("state/rescued"), UnorderedElementsAre("2025-03-14.md", "2020-07-04.md"));
    EXPECT_EQ(folder.read("state/rescued/2025-03-14.md"), "Pi 你好");
    EXPECT_EQ(folder.read("state/rescued/2020-07-04.md"), "Old fireworks.");
}

TEST_F(EditingSessionTest, writesDownWhatIsTypedWithoutAPauseAndForgetsItOnceItIsSaved) {
    const DraftJournal journal(folder / "state" / "unsaved" / "x");
    openWith(piDay, dayFile("03-14", "## 2025\n\nBegun.\n"));
    session->keepJournal(journal);
    std::string text = "Begun.";
    for (int letter = 0; letter < 40; ++letter) {
        type(text += "x");
        clock.advance(100ms);
    }
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "Begun.");
    const auto drafts = journal.read();
    ASSERT_EQ(drafts.size(), 1U);
    EXPECT_EQ(drafts[0].monthDay, piDay);
    EXPECT_EQ(drafts[0].year, 2025);
    EXPECT_EQ(drafts[0].base, "Begun.");
    // What was typed within the last second may be missing.
    EXPECT_GE(drafts[0].text.size() + 10, text.size());

    clock.advance(EditingSession::saveDelay);
    EXPECT_EQ(bodyOnDisk(piDay, 2025), text);
    EXPECT_FALSE(std::filesystem::exists(journal.file()));
    clock.advance(10s);
    EXPECT_FALSE(std::filesystem::exists(journal.file()));
}

TEST_F(EditingSessionTest, keepsEveryTextThatCannotBeSavedInTheJournalUntilItIsRescued) {
    const DraftJournal journal(folder / "state" / "unsaved" / "x");
    session->keepJournal(journal);
    makeReadOnly(piDay);
    type("Pi");
    session->open({7, 4});
    type("Fireworks");
    clock.advance(EditingSession::journalInterval);
    EXPECT_THAT(journal.read(), UnorderedElementsAre(DraftJournal::Draft{piDay, 2025, "", "Pi"},
                                                     DraftJournal::Draft{{7, 4}, 2025, "", "Fireworks"}));
    session->rescueUnsavedText(folder / "rescued");
    EXPECT_FALSE(std::filesystem::exists(journal.file()));
}

TEST_F(EditingSessionTest, rescuesBesideWhatWasRescuedBefore) {
    folder.write("rescued/2025-03-14.md", "From last week.");
    folder.write("rescued/2025-03-14 2.md", "From yesterday.");
    type("From now.");
    session->rescueUnsavedText(folder / "rescued");
    EXPECT_EQ(folder.read("rescued/2025-03-14.md"), "From last week.");
    EXPECT_EQ(folder.read("rescued/2025-03-14 2.md"), "From yesterday.");
    EXPECT_EQ(folder.read("rescued/2025-03-14 3.md"), "From now.");
}

TEST_F(EditingSessionTest, rescuesNothingWhenAllIsSaved) {
    type("Saved.");
    session->flushSaveIfDirty();
    session->rescueUnsavedText(folder / "rescued");
    EXPECT_FALSE(std::filesystem::exists(folder / "rescued"));
}

TEST_F(EditingSessionTest, survivesARescueThatFails) {
    folder.write("rescued", "in the way");
    type("Nowhere to go.");
    session->rescueUnsavedText(folder / "rescued");
    EXPECT_EQ(folder.read("rescued"), "in the way");
    EXPECT_TRUE(session->isDirty());
}

// 29 February.

TEST_F(EditingSessionTest, offersTheLeapDayOnlyInYearsThatHaveIt) {
    session->open(leapDay);
    EXPECT_FALSE(session->canEdit());
    session->pickYear(2024);
    EXPECT_TRUE(session->canEdit());
    type("The day that comes and goes.");
    clock.advance(1s);
    EXPECT_EQ(fileOf(leapDay), dayFile("02-29", "## 2024\n\nThe day that comes and goes.\n"));

    clock.setToday({2028, 1, 1});
    session->open(leapDay);
    EXPECT_EQ(session->viewedYear(), 2028);
    EXPECT_TRUE(session->canEdit());
}

// Midnight.

TEST_F(EditingSessionTest, doesNotShowAnOverwrittenSaveAsTheNewestText) {
    openWith(piDay, dayFile("03-14", "## 2025\n\nold\n"));
    session->draftChanged(QStringLiteral("old\n\nnew"));
    ASSERT_TRUE(session->flushSaveIfDirty());
    // By a program that had read the file before that.
    writeElsewhere(piDay, dayFile("03-14", "## 2024\n\ntheirs\n\n## 2025\n\nold\n"));
    session->performRemoteRefresh();
    EXPECT_EQ(session->draft(), QStringLiteral("old\n\nnew"));
    EXPECT_EQ(bodyOnDisk(piDay, 2025), "old\n\nnew");
    EXPECT_EQ(session->body(2024), "theirs");
}

constexpr const char *syncthingCopy = "vault/03-14.sync-conflict-20261120-101112-ABCDEFG.md";

class EditingSessionWithConflicts : public EditingSessionTest {
protected:
    EditingSessionWithConflicts() {
        session->onMergedConflicts = [this] { ++timesMerged; };
    }

    std::string merged(std::string_view mine, std::string_view theirs) const {
        return std::string(mine) + "\n\n" + store.conflictMarker() + "\n\n" + std::string(theirs);
    }

    int timesMerged = 0;
};

TEST_F(EditingSessionWithConflicts, mergesThemWhenTheDayIsOpened) {
    writeElsewhere(piDay, dayFile("03-14", "## 2025\n\nmine\n"));
    folder.write(syncthingCopy, dayFile("03-14", "## 2024\n\nolder\n\n## 2025\n\ntheirs\n"));
    session->open(piDay);
    EXPECT_EQ(timesMerged, 1);
    EXPECT_EQ(toUtf8(session->draft()), merged("mine", "theirs"));
    EXPECT_EQ(session->body(2024), "older");
    EXPECT_FALSE(std::filesystem::exists(folder / syncthingCopy));
    session->open(piDay);
    EXPECT_EQ(timesMerged, 1);
}

TEST_F(EditingSessionWithConflicts, mergesThemWhenTheFolderChangesAndShowsTheResult) {
    openWith(piDay, dayFile("03-14", "## 2025\n\nmine\n"));
    folder.write(syncthingCopy, dayFile("03-14", "## 2025\n\ntheirs\n"));
    session->scheduleRemoteRefresh();
    clock.advance(EditingSession::remoteRefreshDelay);
    EXPECT_EQ(timesMerged, 1);
    EXPECT_EQ(toUtf8(session->draft()), merged("mine", "theirs"));
}

TEST_F(EditingSessionWithConflicts, mergesThemWithWhatIsBeingTyped) {
    openWith(piDay, dayFile("03-14", "## 2025\n\nmine\n"));
    session->draftChanged(QStringLiteral("mine, and more"));
    folder.write(syncthingCopy, dayFile("03-14", "## 2025\n\ntheirs\n"));
    session->performRemoteRefresh();
    EXPECT_EQ(bodyOnDisk(piDay, 2025), merged("mine, and more", "theirs"));
    EXPECT_EQ(toUtf8(session->draft()), merged("mine, and more", "theirs"));
    EXPECT_FALSE(session->isDirty());
}

TEST_F(EditingSessionWithConflicts, leavesThemWhereTheyAreWhileTheDraftCannotBeSaved) {
    openWith(piDay, dayFile("03-14", "## 2025\n\nmine\n"));
    makeReadOnly(piDay);
    session->draftChanged(QStringLiteral("typed"));
    folder.write(syncthingCopy, dayFile("03-14", "## 2025\n\ntheirs\n"));
    session->performRemoteRefresh();
    EXPECT_EQ(timesMerged, 0);
    EXPECT_TRUE(std::filesystem::exists(folder / syncthingCopy));
    EXPECT_EQ(session->draft(), QStringLiteral("typed"));
}

class EditingSessionOnNewYearsEve : public EditingSessionTest {
protected:
    EditingSessionOnNewYearsEve() : EditingSessionTest({2025, 12, 31}) {
        // From noon to half a second before midnight.
        clock.advance(12h - 500ms);
    }
};

TEST_F(EditingSessionOnNewYearsEve, savesIntoTheYearThatWasTypedIn) {
    type("The last words of the year.");
    clock.advance(1s);
    EXPECT_EQ(clock.today(), (DiaryDay{2026, 1, 1}));
    EXPECT_EQ(fileOf({12, 31}), dayFile("12-31", "## 2025\n\nThe last words of the year.\n"));
    EXPECT_EQ(session->viewedYear(), 2025);
    EXPECT_THAT(yearsOfTheFile(), ElementsAre(2025));

    session->openToday();
    EXPECT_EQ(session->currentMonthDay(), (MonthDay{1, 1}));
    EXPECT_EQ(session->viewedYear(), 2026);
    session->open({12, 31});
    EXPECT_EQ(session->viewedYear(), 2026);
    EXPECT_EQ(session->body(2025), "The last words of the year.");
}

TEST_F(EditingSessionOnNewYearsEve, disturbsTheEditorAtMidnightOnlyWhenNothingIsUnsaved) {
    session->calendarDayChanged();
    EXPECT_THAT(renders, ElementsAre(EditingSession::allParts()));
    type("a");
    forgetCalls();
    session->calendarDayChanged();
    EXPECT_THAT(renders, ElementsAre(Parts{} | Part::Sidebar | Part::TopBar | Part::Status));
}

} // namespace
} // namespace diary

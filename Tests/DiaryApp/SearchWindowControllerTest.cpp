// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/FakeCloudFiles.h"
#include "Support/ManualExecutor.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/Localization.h>
#include <DiaryApp/QtExecutor.h>
#include <DiaryApp/SearchRowView.h>
#include <DiaryApp/SearchWindowController.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTest>

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono_literals;
using Picked = std::pair<MonthDay, std::int64_t>;

TEST(SearchWindowLayout, setsTheResultsBelowTheField) {
    const auto layout = layoutSearchWindow({30, 16, 0}, {460, 520});
    EXPECT_EQ(layout.field, QRect(14, 14, 432, 30));
    EXPECT_EQ(layout.results, QRect(6, 54, 448, 460));
    EXPECT_EQ(layout.emptyLabel, QRect(14, 104, 432, 16));
    EXPECT_TRUE(layout.awaiting.isEmpty());
    EXPECT_TRUE(layout.divider.isEmpty());
}

TEST(SearchWindowLayout, makesRoomForALineBelowTheResults) {
    const auto layout = layoutSearchWindow({30, 16, 14}, {380, 300});
    EXPECT_EQ(layout.awaiting, QRect(26, 278, 328, 14));
    EXPECT_EQ(layout.divider, QRect(0, 269, 380, 1));
    EXPECT_EQ(layout.results, QRect(6, 54, 368, 215));
    EXPECT_EQ(layoutSearchWindow({30, 16, 14}, {380, 40}).results.height(), 0);
}

// The window over a vault of its own; searches run when told to.
class SearchWindowControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        vault.write("03-14.md", "# 03-14\n\n## 2009\n\nthe zephyr quintet rehearsed\n\n## 2024\n\nrain\n");
        vault.write("01-02.md", "# 01-02\n\n## 2020\n\nRain on the garden, rain on the street\n");
        make();
    }

    void make() {
        controller.reset();
        store.emplace(
            vault.path(),
            DiaryStore::Options{.stateFolder = state.path(), .cloudFiles = cloud, .executor = &executor});
        controller = std::make_unique<SearchWindowController>(*store, clock);
        controller->onPick = [this](MonthDay day, std::int64_t year) {
            EXPECT_TRUE(window()->isVisible());
            picked.emplace_back(day, year);
        };
    }

    void present() {
        controller->present();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
        ASSERT_TRUE(field()->hasFocus());
    }

    void type(const char *text) { QTest::keyClicks(field(), QString::fromUtf8(text)); }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void finishSearch() {
        executor.runBackground();
        executor.runMain();
    }
    // Typed, waited and found.
    void find(const char *query) {
        field()->selectAll();
        type(query);
        clock.advance(SearchWindowController::searchDelay);
        finishSearch();
    }

    QWidget *window() const { return controller->window(); }
    template <typename Widget>
    Widget *part(const char *name) const {
        auto *widget = window()->findChild<Widget *>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QLineEdit *field() const { return part<QLineEdit>("searchField"); }
    QLabel *emptyLabel() const { return part<QLabel>("emptyLabel"); }
    QLabel *awaitingLabel() const { return part<QLabel>("awaitingLabel"); }
    std::vector<SearchRowView *> rows() const {
        std::vector<SearchRowView *> shown;
        for (auto *row : window()->findChildren<SearchRowView *>()) {
            if (!row->isHidden())
                shown.push_back(row);
        }
        return shown;
    }
    std::vector<std::string> titles() const {
        std::vector<std::string> all;
        for (const auto *row : rows())
            all.push_back(toUtf8(row->model().title));
        return all;
    }
    static std::string description(QWidget *widget) {
        return toUtf8(QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Description));
    }

    testing::TemporaryFolder vault;
    testing::TemporaryFolder state;
    testing::FakeClock clock{{2025, 3, 14}};
    std::shared_ptr<testing::FakeCloudFiles> cloud = std::make_shared<testing::FakeCloudFiles>();
    testing::ManualExecutor executor;
    std::optional<DiaryStore> store;
    std::unique_ptr<SearchWindowController> controller;
    std::vector<Picked> picked;
};

TEST_F(SearchWindowControllerTest, isAWindowOfItsOwnThatIsShownWhenAskedFor) {
    EXPECT_FALSE(window()->isVisible());
    present();
    EXPECT_TRUE(window()->isWindow());
    EXPECT_FALSE(window()->isModal());
    EXPECT_FALSE(window()->testAttribute(Qt::WA_QuitOnClose));
    EXPECT_EQ(window()->windowTitle(), L("Find"));
    EXPECT_EQ(window()->size(), QSize(460, 520));
    EXPECT_EQ(window()->minimumSize(), QSize(380, 300));
    EXPECT_EQ(field()->placeholderText(), L("SearchPlaceholder"));
    EXPECT_TRUE(rows().empty());
    EXPECT_FALSE(emptyLabel()->isVisible());
    EXPECT_TRUE(emptyLabel()->text().isEmpty());
    EXPECT_FALSE(awaitingLabel()->isVisible());
}

TEST_F(SearchWindowControllerTest, fillsTheWindowAtAnySize) {
    present();
    find("rain");
    window()->resize(700, 400);
    EXPECT_TRUE(QTest::qWaitFor([this] { return field()->geometry() == QRect(14, 14, 672, 30); }));
    EXPECT_EQ(part<QScrollArea>("results")->geometry(), QRect(6, 54, 688, 340));
    EXPECT_EQ(rows().front()->width(), 672);
}

TEST_F(SearchWindowControllerTest, searchesOnceAMomentAfterTheLastOfThreeLetters) {
    present();
    for (const char *letter : {"z", "e", "p"}) {
        type(letter);
        clock.advance(199ms);
        EXPECT_TRUE(executor.background.empty());
    }
    clock.advance(1ms);
    ASSERT_EQ(executor.background.size(), 1U);
    EXPECT_EQ(executor.background.front().priority, Executor::Priority::UserInitiated);
    finishSearch();
    EXPECT_EQ(titles(), std::vector<std::string>{"03-14 · 2009"});
    clock.advance(1h);
    EXPECT_TRUE(executor.background.empty());
}

TEST_F(SearchWindowControllerTest, showsWhatTheStoreFindsInItsOrder) {
    present();
    find("RAIN");
    EXPECT_EQ(titles(), (std::vector<std::string>{"01-02 · 2020", "03-14 · 2024"}));
    const auto first = rows().front()->model();
    EXPECT_EQ(toUtf8(first.snippet), "Rain on the garden, rain on the stre…");
    EXPECT_EQ(first.marks, (std::vector<SearchRowView::Mark>{{0, 4}, {20, 4}}));
    EXPECT_FALSE(emptyLabel()->isVisible());
}

TEST_F(SearchWindowControllerTest, takesTypingWhileASearchRuns) {
    present();
    type("rain");
    clock.advance(200ms);
    ASSERT_EQ(executor.background.size(), 1U);
    type("bow");
    EXPECT_EQ(field()->text(), QStringLiteral("rainbow"));
}

TEST_F(SearchWindowControllerTest, neverShowsTheAnswerToAnOlderQuery) {
    present();
    type("rain");
    clock.advance(200ms);
    auto older = std::move(executor.background.front());
    executor.background.clear();

    field()->selectAll();
    type("zephyr");
    clock.advance(200ms);
    finishSearch();
    const std::vector<std::string> newer{"03-14 · 2009"};
    EXPECT_EQ(titles(), newer);
    older.run();
    executor.runMain();
    EXPECT_EQ(titles(), newer);
}

TEST_F(SearchWindowControllerTest, dropsAnAnswerThatComesWhenTypingHasGoneOn) {
    present();
    type("rain");
    clock.advance(200ms);
    executor.runBackground();
    type("x");
    executor.runMain();
    EXPECT_TRUE(rows().empty());
    clock.advance(200ms);
    finishSearch();
    EXPECT_TRUE(rows().empty());
    EXPECT_TRUE(emptyLabel()->isVisible());
}

TEST_F(SearchWindowControllerTest, readsNoFileForASearchThatWasDropped) {
    present();
    type("rain");
    clock.advance(200ms);
    type("x");
    finishSearch();
    EXPECT_TRUE(cloud->asked.empty());
}

TEST_F(SearchWindowControllerTest, clearingTheFieldEmptiesTheListAndHidesTheLabel) {
    present();
    for (const char *query : {"rain", "nowhere"}) {
        find(query);
        ASSERT_TRUE(emptyLabel()->isVisible() || !rows().empty());
        field()->selectAll();
        press(Qt::Key_Backspace);
        clock.advance(200ms);
        EXPECT_TRUE(rows().empty());
        EXPECT_FALSE(emptyLabel()->isVisible());
        EXPECT_TRUE(field()->accessibleDescription().isEmpty());
    }
}

TEST_F(SearchWindowControllerTest, searchesForNothingWhenThereAreOnlyBlanks) {
    present();
    field()->setText(QStringLiteral(" \t"));
    controller->runSearch();
    EXPECT_TRUE(executor.background.empty());
    EXPECT_FALSE(emptyLabel()->isVisible());
}

TEST_F(SearchWindowControllerTest, ignoresBlanksAroundTheQuery) {
    present();
    find("  zephyr ");
    EXPECT_EQ(titles(), std::vector<std::string>{"03-14 · 2009"});
    EXPECT_EQ(rows().front()->model().marks.size(), 1U);
}

TEST_F(SearchWindowControllerTest, saysThatNothingWasFound) {
    present();
    find("rain");
    find("nowhere");
    EXPECT_TRUE(rows().empty());
    EXPECT_TRUE(emptyLabel()->isVisible());
    EXPECT_EQ(emptyLabel()->text(), L("SearchNoResults"));
    EXPECT_EQ(emptyLabel()->y(), 14 + 30 + 60);
    find("rain");
    EXPECT_FALSE(emptyLabel()->isVisible());
}

TEST_F(SearchWindowControllerTest, aClickOnARowPicksItsDayAndYearAndClosesTheWindow) {
    present();
    find("rain");
    QTest::mouseClick(rows()[1], Qt::LeftButton);
    EXPECT_EQ(picked, (std::vector<Picked>{{{3, 14}, 2024}}));
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(SearchWindowControllerTest, closesAfterAClickThatNobodyWaitsFor) {
    controller->onPick = nullptr;
    present();
    find("rain");
    QTest::mouseClick(rows()[0], Qt::LeftButton);
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(SearchWindowControllerTest, showsTwoHundredOfMoreEntriesTheEarliestDaysFirst) {
    for (MonthDay day{1, 1}; day.month <= 8; day = day.advanced(1))
        vault.write(day.fileName(), "# x\n\n## 2023\n\nword\n");
    present();
    find("word");
    ASSERT_TRUE(QTest::qWaitFor([this] { return rows().size() == 200; }));
    EXPECT_EQ(titles().front(), "01-01 · 2023");
    EXPECT_EQ(titles().back(), "07-18 · 2023"); // the 200th day
    EXPECT_EQ(description(field()), toUtf8(L("Entries found: %d", 200)));
}

TEST_F(SearchWindowControllerTest, tellsTheDaysThatAreNotHereBelowTheResults) {
    cloud->statuses["01-02.md"] = CloudFiles::DownloadingStatus::NotDownloaded;
    present();
    find("rain");
    EXPECT_EQ(titles(), std::vector<std::string>{"03-14 · 2024"});
    const auto text = L("Days not yet downloaded: %d", 1);
    EXPECT_TRUE(awaitingLabel()->isVisible());
    EXPECT_EQ(awaitingLabel()->text(), text);
    EXPECT_LT(part<QScrollArea>("results")->geometry().bottom(), awaitingLabel()->y());
    EXPECT_LT(awaitingLabel()->geometry().bottom(), window()->height());
    EXPECT_EQ(description(field()), toUtf8(L("Entries found: %d", 1) + QStringLiteral(", ") + text));
    EXPECT_EQ(store->awaitingDownload(), (std::set<MonthDay>{{1, 2}}));

    find("nowhere");
    EXPECT_TRUE(awaitingLabel()->isVisible());
    cloud->statuses.clear();
    find("rain");
    EXPECT_FALSE(awaitingLabel()->isVisible());
    EXPECT_EQ(part<QScrollArea>("results")->geometry().bottom() + 1, window()->height() - 6);
}

TEST_F(SearchWindowControllerTest, downGoesIntoTheRowsAndUpBackToTheField) {
    present();
    press(Qt::Key_Down);
    EXPECT_TRUE(field()->hasFocus());
    find("rain");
    press(Qt::Key_Down);
    EXPECT_TRUE(rows()[0]->hasFocus());
    press(Qt::Key_Down);
    EXPECT_TRUE(rows()[1]->hasFocus());
    press(Qt::Key_Home);
    EXPECT_TRUE(rows()[0]->hasFocus());
    press(Qt::Key_Up);
    EXPECT_TRUE(field()->hasFocus());
    EXPECT_EQ(field()->text(), QStringLiteral("rain"));
}

TEST_F(SearchWindowControllerTest, tabGoesThroughFieldAndRows) {
    present();
    find("rain");
    press(Qt::Key_Tab);
    EXPECT_TRUE(rows()[0]->hasFocus());
    press(Qt::Key_Tab);
    EXPECT_TRUE(rows()[1]->hasFocus());
    press(Qt::Key_Tab);
    EXPECT_TRUE(field()->hasFocus());
}

TEST_F(SearchWindowControllerTest, enterInTheFieldOpensTheFirstRow) {
    present();
    press(Qt::Key_Return);
    EXPECT_TRUE(window()->isVisible());
    find("rain");
    press(Qt::Key_Return);
    EXPECT_EQ(picked, (std::vector<Picked>{{{1, 2}, 2020}}));
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(SearchWindowControllerTest, enterInARowOpensIt) {
    present();
    find("rain");
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Enter);
    EXPECT_EQ(picked, (std::vector<Picked>{{{3, 14}, 2024}}));
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(SearchWindowControllerTest, enterBeforeTheAnswerOpensTheFirstRowOfTheAnswer) {
    present();
    find("rain");
    field()->selectAll();
    type("zephyr");
    press(Qt::Key_Return);
    EXPECT_TRUE(picked.empty());
    ASSERT_EQ(executor.background.size(), 1U);
    press(Qt::Key_Return);
    EXPECT_EQ(executor.background.size(), 1U);
    finishSearch();
    EXPECT_EQ(picked, (std::vector<Picked>{{{3, 14}, 2009}}));
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(SearchWindowControllerTest, enterOpensNothingWhenTypingGoesOnOrNothingIsFound) {
    present();
    type("rai");
    press(Qt::Key_Return);
    type("n");
    clock.advance(200ms);
    finishSearch();
    EXPECT_TRUE(picked.empty());
    EXPECT_EQ(rows().size(), 2U);

    field()->selectAll();
    type("nowhere");
    press(Qt::Key_Return);
    finishSearch();
    EXPECT_TRUE(picked.empty());
    EXPECT_TRUE(window()->isVisible());
    find("rain");
    EXPECT_TRUE(picked.empty());
}

TEST_F(SearchWindowControllerTest, closesByItsKeysFromFieldAndRows) {
    for (const auto &[key, modifiers] :
         {std::pair{Qt::Key_Escape, Qt::NoModifier}, std::pair{Qt::Key_W, Qt::ControlModifier}}) {
        for (const bool isInRows : {false, true}) {
            present();
            find("rain");
            if (isInRows)
                press(Qt::Key_Down);
            press(key, modifiers);
            EXPECT_FALSE(window()->isVisible()) << key << isInRows;
        }
    }
    EXPECT_TRUE(picked.empty());
}

TEST_F(SearchWindowControllerTest, keepsTextAndRowsForTheNextShowing) {
    present();
    find("rain");
    window()->close();
    QApplication::processEvents();
    present();
    EXPECT_EQ(field()->text(), QStringLiteral("rain"));
    EXPECT_EQ(field()->selectedText(), QStringLiteral("rain"));
    EXPECT_EQ(rows().size(), 2U);
    clock.advance(1h);
    EXPECT_TRUE(executor.background.empty());
}

TEST_F(SearchWindowControllerTest, doesNotSearchWhileClosed) {
    present();
    find("rain");
    type("x");
    window()->close();
    clock.advance(1h);
    EXPECT_TRUE(executor.background.empty());
    EXPECT_EQ(rows().size(), 2U);

    // Its rows would otherwise belong to another query than the one to be read.
    present();
    clock.advance(200ms);
    finishSearch();
    EXPECT_TRUE(rows().empty());
}

TEST_F(SearchWindowControllerTest, dropsASearchUnderWayWhenItCloses) {
    present();
    type("rain");
    clock.advance(200ms);
    window()->close();
    finishSearch();
    EXPECT_TRUE(rows().empty());
    EXPECT_TRUE(cloud->asked.empty());
}

TEST_F(SearchWindowControllerTest, takesAQueryFromElsewhereAsIfItHadBeenTyped) {
    controller->setQuery(QStringLiteral("zephyr"));
    clock.advance(1h);
    EXPECT_TRUE(executor.background.empty());
    present();
    clock.advance(200ms);
    finishSearch();
    EXPECT_EQ(rows().size(), 1U);

    controller->setQuery(QStringLiteral("rain"));
    controller->runSearch();
    finishSearch();
    EXPECT_EQ(rows().size(), 2U);
    clock.advance(1h);
    EXPECT_TRUE(executor.background.empty());
}

TEST_F(SearchWindowControllerTest, goesAwayWhileASearchWaitsOrRuns) {
    present();
    type("rain");
    controller.reset();
    clock.advance(1h);
    EXPECT_TRUE(executor.background.empty());

    make();
    present();
    type("rain");
    clock.advance(200ms);
    executor.runBackground();
    controller.reset();
    executor.runMain();
}

TEST_F(SearchWindowControllerTest, mayGoAwayWhenARowIsPickedByEnter) {
    present();
    find("rain");
    controller->onPick = [this](MonthDay, std::int64_t) { controller.reset(); };
    controller->setQuery(QStringLiteral("zephyr"));
    press(Qt::Key_Return);
    finishSearch();
    EXPECT_EQ(controller, nullptr);
}

TEST_F(SearchWindowControllerTest, tellsAScreenReaderWhatIsThere) {
    present();
    EXPECT_EQ(toUtf8(QAccessible::queryAccessibleInterface(field())->text(QAccessible::Name)),
              toUtf8(L("Search")));
    find("rain");
    const auto found = toUtf8(L("Entries found: %d", 2));
    EXPECT_EQ(description(field()), found);
    auto *results = part<QScrollArea>("results");
    EXPECT_EQ(description(results), found);
    EXPECT_EQ(results->accessibleName(), L("Search Results"));
    auto *row = QAccessible::queryAccessibleInterface(rows()[0]);
    EXPECT_EQ(row->role(), QAccessible::Button);
    EXPECT_EQ(toUtf8(row->text(QAccessible::Name)), "01-02 2020 Rain on the garden, rain on the stre…");
    find("nowhere");
    EXPECT_EQ(description(field()), toUtf8(L("SearchNoResults")));
}

TEST_F(SearchWindowControllerTest, isPickedThroughTheAccessibilityInterface) {
    present();
    find("rain");
    QAccessible::queryAccessibleInterface(rows()[1])->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    EXPECT_EQ(picked, (std::vector<Picked>{{{3, 14}, 2024}}));
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(SearchWindowControllerTest, findsOnThreadsOfItsOwnWhileTheUserTypes) {
    for (MonthDay day{1, 1}; day.month <= 11; day = day.advanced(1))
        vault.write(day.fileName(), "# x\n\n## 2023\n\nword of the day\n");
    SystemClock systemClock;
    QtExecutor threads;
    DiaryStore threadedStore(vault.path(), {.stateFolder = state.path(), .executor = &threads});
    controller = std::make_unique<SearchWindowController>(threadedStore, systemClock);
    present();
    for (const char *letter : {"w", "o", "r", "d"}) {
        type(letter);
        controller->runSearch();
    }
    EXPECT_EQ(field()->text(), QStringLiteral("word"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return rows().size() == 200; }));
    EXPECT_EQ(rows().front()->model().marks, (std::vector<SearchRowView::Mark>{{0, 4}}));
    controller.reset();
}

} // namespace
} // namespace diary

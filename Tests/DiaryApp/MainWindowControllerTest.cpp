// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/FakeFileManager.h"
#include "Support/FakePhotoSource.h"
#include "Support/ManualExecutor.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryApp/ElidedLabel.h>
#include <DiaryApp/EntryView.h>
#include <DiaryApp/GrowingTextView.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/MainWindowLayout.h>
#include <DiaryApp/PhotoGalleryView.h>
#include <DiaryApp/PhotoPreviewController.h>
#include <DiaryApp/PhotoPreviewPanel.h>
#include <DiaryApp/PhotoTileView.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/ThemeLabel.h>
#include <DiaryApp/YearCardView.h>

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QTextDocument>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono_literals;
using std::chrono::April;
using std::chrono::days;
using std::chrono::January;
using std::chrono::March;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// The window over a vault of its own, on 14 March 2025.
class MainWindowControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        // A picture must not depend on the moment.
        QApplication::setCursorFlashTime(0);
    }

    void show(std::unique_ptr<QMainWindow> given = nullptr) {
        MenuActions programActions;
        programActions.quit = [this] { ++quits; };
        controller = std::make_unique<MainWindowController>(
            std::make_unique<DiaryStore>(vault, DiaryStore::Options{.stateFolder = folder / "state"}), clock,
            fileManager, std::move(programActions), std::move(photoLibrary),
            std::make_unique<PhotoPreviewController>(fileManager, executor, nullptr), std::move(given));
        controller->showWindow();
        controller->window()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(controller->window()));
    }

    template <typename Widget>
    Widget *find(const char *name) const {
        auto *widget = controller->window()->findChild<Widget *>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    QWidget *window() const { return controller->window(); }
    GrowingTextView *textView() const { return controller->textView(); }
    std::string shownDay() const { return toUtf8(find<ThemeLabel>("dayKey")->text()); }
    std::string shownText() const { return textView() ? toUtf8(textView()->text()) : "(no editor)"; }
    QString shownStatus() const { return find<ElidedLabel>("rightLabel")->text(); }
    QString shownPath() const { return find<ElidedLabel>("leftLabel")->text(); }
    int scrolledTo() const { return controller->entryView()->scrollView()->verticalScrollBar()->value(); }

    // The years of the rail, from its top.
    std::vector<std::int64_t> years() const {
        std::vector<std::pair<int, std::int64_t>> cards;
        for (const auto *card : window()->findChildren<YearCardView *>()) {
            if (!card->isHidden())
                cards.emplace_back(card->y(), card->year());
        }
        std::sort(cards.begin(), cards.end());
        std::vector<std::int64_t> years;
        for (const auto &[y, year] : cards)
            years.push_back(year);
        return years;
    }

    void click(const char *button) const { QTest::mouseClick(find<QWidget>(button), Qt::LeftButton); }
    void type(const char *text) const { QTest::keyClicks(textView(), QString::fromUtf8(text)); }
    // To whatever has the keyboard.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    // One photo large over the page.
    void previewPhoto() {
        QImage image(600, 400, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        ASSERT_TRUE(controller->photoPreview()->prepare(
            {{.image = image, .filename = QStringLiteral("a.jpg"), .timeText = {}, .assetIdentifier = {}}}, 0,
            {}));
        controller->photoPreview()->present(controller->contentView());
        ASSERT_TRUE(controller->photoPreview()->panel()->isOpen());
    }

    void pickYear(std::int64_t year) const {
        for (auto *card : window()->findChildren<YearCardView *>()) {
            if (!card->isHidden() && card->year() == year) {
                QTest::mouseClick(card, Qt::LeftButton);
                return;
            }
        }
        FAIL() << "no card for " << year;
    }

    testing::TemporaryFolder folder;
    const std::filesystem::path vault = folder / "vault";
    testing::FakeClock clock{{2025, 3, 14}};
    testing::FakeFileManager fileManager;
    testing::ManualExecutor executor;
    int quits = 0;
    std::unique_ptr<DayPhotoLibrary> photoLibrary;
    std::unique_ptr<MainWindowController> controller;
};

TEST_F(MainWindowControllerTest, showsWhatAnotherProgramWritesIntoTheOpenDay) {
    show();
    ASSERT_EQ(shownText(), "");
    std::filesystem::create_directories(vault);
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\nfrom elsewhere\n");
    EXPECT_TRUE(QTest::qWaitFor([this] {
        clock.advance(EditingSession::remoteRefreshDelay);
        return shownText() == "from elsewhere";
    }));
}

TEST_F(MainWindowControllerTest, mergesAConflictCopyAndSaysSoForAMoment) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\nmine\n");
    show();
    const auto usualPath = shownPath();
    folder.write("vault/03-14 (conflicted).md", "# 03-14\n\n## 2024\n\ntheirs\n");
    EXPECT_TRUE(QTest::qWaitFor([this] {
        clock.advance(EditingSession::remoteRefreshDelay);
        return shownPath().startsWith(QStringLiteral("Merged"));
    }));
    EXPECT_THAT(years(), ElementsAre(2025, 2024));
    clock.advance(4s);
    EXPECT_EQ(shownPath(), usualPath);
}

TEST_F(MainWindowControllerTest, opensTodayReadyForTyping) {
    show();
    EXPECT_EQ(shownDay(), "03-14");
    EXPECT_EQ(window()->windowTitle(), QStringLiteral("03-14.md[*]"));
    EXPECT_FALSE(window()->isWindowModified());
    EXPECT_TRUE(textView()->hasFocus());
    EXPECT_THAT(years(), ElementsAre(2025));
}

TEST_F(MainWindowControllerTest, startsAtItsSizeAndShrinksOnlySoFar) {
    show();
    EXPECT_EQ(find<QWidget>("contentView")->size(), QSize(1360, 840));
    window()->resize(10, 10);
    EXPECT_TRUE(QTest::qWaitFor([&] { return find<QWidget>("contentView")->width() < 1360; }));
    EXPECT_EQ(find<QWidget>("contentView")->size(), QSize(1080, 620));
}

TEST_F(MainWindowControllerTest, marksAndSavesWhatIsTyped) {
    show();
    type("Hello");
    EXPECT_TRUE(window()->isWindowModified());
    EXPECT_FALSE(std::filesystem::exists(vault));
    clock.advance(1s);
    EXPECT_FALSE(window()->isWindowModified());
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nHello\n");
    EXPECT_EQ(shownText(), "Hello");
}

TEST_F(MainWindowControllerTest, stepsWithItsButtons) {
    show();
    click("nextDay");
    EXPECT_EQ(shownDay(), "03-15");
    EXPECT_EQ(window()->windowTitle(), QStringLiteral("03-15.md[*]"));
    EXPECT_TRUE(textView()->hasFocus());
    click("previousDay");
    click("previousDay");
    EXPECT_EQ(shownDay(), "03-13");
    clock.setToday({2025, 3, 20});
    click("todayButton");
    EXPECT_EQ(shownDay(), "03-20");
}

TEST_F(MainWindowControllerTest, stepsWithItsKeys) {
    show();
    press(Qt::Key_Right, Qt::AltModifier);
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(shownDay(), "03-16");
    press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(shownDay(), "03-15");
    press(Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(shownDay(), "03-14");
}

TEST_F(MainWindowControllerTest, savesWithItsKeyAndOnTheWayToAnotherDay) {
    show();
    type("One");
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nOne\n");
    EXPECT_FALSE(window()->isWindowModified());

    type(", two");
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nOne, two\n");
    EXPECT_EQ(shownText(), "");
    press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(shownText(), "One, two");
}

TEST_F(MainWindowControllerTest, leavesTheWordKeysToTheEditor) {
    show();
    type("one two");
    press(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(shownDay(), "03-14");
    EXPECT_EQ(textView()->textCursor().position(), 4);
    press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(textView()->textCursor().position(), 7);
}

TEST_F(MainWindowControllerTest, listsTheYearsAndEditsTheOneThatIsPicked) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2019\n\nNineteen\n\n## 2023\n\nTwenty-three\n");
    show();
    EXPECT_THAT(years(), ElementsAre(2025, 2023, 2019));
    type("Now");
    pickYear(2023);
    EXPECT_EQ(shownText(), "Twenty-three");
    EXPECT_TRUE(textView()->hasFocus());
    pickYear(2019);
    type("!");
    clock.advance(1s);
    EXPECT_EQ(folder.read("vault/03-14.md"),
              "# 03-14\n\n## 2019\n\nNineteen!\n\n## 2023\n\nTwenty-three\n\n## 2025\n\nNow\n");
    pickYear(2025);
    EXPECT_EQ(shownText(), "Now");
}

TEST_F(MainWindowControllerTest, reachesEveryControlFromTheEditorByKeyboard) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2019\n\nNineteen\n");
    show();
    std::vector<QWidget *> reached;
    press(Qt::Key_Tab, Qt::ControlModifier);
    while (QApplication::focusWidget() != textView() && reached.size() < 60) {
        reached.push_back(QApplication::focusWidget());
        press(Qt::Key_Tab, Qt::NoModifier);
    }
    EXPECT_EQ(QApplication::focusWidget(), textView());
    for (const auto *name :
         {"randomButton", "sourceButton", "gridView", "todayButton", "previousDay", "nextDay"})
        EXPECT_THAT(reached, Contains(find<QWidget>(name))) << name;
    for (auto *card : window()->findChildren<YearCardView *>())
        EXPECT_THAT(reached, Contains(card)) << card->year();
    const std::set<QWidget *> each(reached.begin(), reached.end());
    EXPECT_EQ(each.size(), reached.size());
    // And back again.
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), reached.back());
}

TEST_F(MainWindowControllerTest, tellsYearLengthAndFile) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\na b\u00A0🙂\nc\n");
    show();
    EXPECT_EQ(shownPath(), pathToQString(vault / "03-14.md"));
    EXPECT_EQ(shownStatus(), QStringLiteral("Viewing ## 2025 · 4 chars"));
    type("de");
    EXPECT_EQ(shownStatus(), QStringLiteral("Viewing ## 2025 · 6 chars"));
}

TEST_F(MainWindowControllerTest, standsItsViewsAroundThePage) {
    const auto layout = layoutMainWindow(MainWindowLayout::initialSize);
    show();
    EXPECT_EQ(find<QWidget>("topBar")->geometry(), layout.topBar);
    EXPECT_EQ(find<QWidget>("sidebar")->geometry(), layout.sidebar);
    EXPECT_EQ(find<QWidget>("entryView")->geometry(), layout.entryView);
    EXPECT_EQ(find<QWidget>("yearRail")->geometry(), layout.yearRail);
    EXPECT_EQ(find<QWidget>("statusBar")->geometry(), layout.statusBar);
}

TEST_F(MainWindowControllerTest, fillsAWindowThatIsShownAlready) {
    auto given = std::make_unique<QMainWindow>();
    given->setCentralWidget(new QWidget);
    const QPointer former = given->centralWidget();
    given->resize(1200, 700);
    given->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(given.get()));

    show(std::move(given));
    EXPECT_EQ(window()->size(), QSize(1200, 700));
    const int menuBar = controller->window()->menuBar()->height();
    EXPECT_EQ(controller->contentView()->geometry(), QRect(0, menuBar, 1200, 700 - menuBar));
    const auto layout = layoutMainWindow({1200, 700 - menuBar});
    EXPECT_EQ(find<QWidget>("entryView")->geometry(), layout.entryView);
    EXPECT_TRUE(textView()->hasFocus());
    EXPECT_TRUE(find<QWidget>("yearRail")->isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return former.isNull(); }));

    const QImage filled = window()->grab().toImage();
    controller.reset();
    show();
    window()->resize(1200, 700);
    EXPECT_EQ(filled, window()->grab().toImage());
}

TEST_F(MainWindowControllerTest, tellsOfTheFirstPictureOnlyWhenThatIsOfTheDiary) {
    auto given = std::make_unique<QMainWindow>();
    given->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(given.get()));
    auto *blank = given.get();
    controller = std::make_unique<MainWindowController>(
        std::make_unique<DiaryStore>(vault, DiaryStore::Options{.stateFolder = folder / "state"}), clock,
        fileManager, MenuActions(), nullptr, nullptr, std::move(given));
    int times = 0;
    controller->onFirstPainted = [&] { ++times; };
    blank->repaint();
    QApplication::processEvents();
    EXPECT_EQ(times, 0);
    controller->showWindow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return times == 1; }));
}

TEST_F(MainWindowControllerTest, stepsMonthsFromTheirFirstDayAroundTheYear) {
    show();
    controller->stepMonths(-1);
    EXPECT_EQ(shownDay(), "02-01");
    controller->stepMonths(-1);
    controller->stepMonths(-1);
    EXPECT_EQ(shownDay(), "12-01");
    controller->stepMonths(1);
    EXPECT_EQ(shownDay(), "01-01");
}

TEST_F(MainWindowControllerTest, marksTheDaysOfTheVaultOnceTheyAreRead) {
    folder.write("vault/03-20.md", "# 03-20\n\n## 2019\n\nNineteen\n");
    folder.write("vault/05-01.md", "# 05-01\n\n## 2015\n\nFifteen\n");
    show();
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return find<QLabel>("statFilesValue")->text() == QStringLiteral("2"); }));
    EXPECT_EQ(find<QLabel>("statDaysValue")->text(), QStringLiteral("2 / 365"));
    EXPECT_EQ(find<QLabel>("statEarliestValue")->text(), QStringLiteral("2015"));
    type("Now");
    clock.advance(1s);
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return find<QLabel>("statFilesValue")->text() == QStringLiteral("3"); }));
}

TEST_F(MainWindowControllerTest, showsTheFileAsItStands) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2019\n\nNineteen\n");
    show();
    type("Now");
    press(Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(textView(), nullptr);
    EXPECT_EQ(find<ThemeLabel>("source")->text(),
              QStringLiteral("# 03-14\n\n## 2019\n\nNineteen\n\n## 2025\n\nNow\n"));
    EXPECT_TRUE(find<QWidget>("source")->isVisible());
    EXPECT_FALSE(find<QWidget>("dayKey")->isVisible());
    click("sourceButton");
    EXPECT_EQ(shownText(), "Now");
    EXPECT_TRUE(textView()->hasFocus());
}

TEST_F(MainWindowControllerTest, tellsWhatToWriteAboutUntilSomethingIsWritten) {
    show();
    const auto *placeholder = controller->entryView()->placeholderLabel();
    EXPECT_EQ(placeholder->text(), QStringLiteral("Write about this day in 2025…"));
    EXPECT_TRUE(placeholder->isVisible());
    const int height = textView()->height();
    type("a");
    EXPECT_FALSE(placeholder->isVisible());
    EXPECT_EQ(textView()->height(), height);
    QTest::keyClick(textView(), Qt::Key_Backspace);
    EXPECT_TRUE(placeholder->isVisible());
    // A click goes through it.
    const auto middle = placeholder->mapTo(controller->contentView(), placeholder->rect().center());
    EXPECT_TRUE(textView()->isAncestorOf(controller->contentView()->childAt(middle)));
}

TEST_F(MainWindowControllerTest, undoesAcrossSaves) {
    show();
    type("one");
    clock.advance(1s);
    QTest::keyClick(textView(), Qt::Key_Return);
    type("two");
    clock.advance(1s);
    press(Qt::Key_S, Qt::ControlModifier);
    while (textView()->document()->isUndoAvailable())
        press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shownText(), "");
    clock.advance(1s);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\n");
    while (textView()->document()->isRedoAvailable())
        press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    clock.advance(1s);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\none\ntwo\n");
}

TEST_F(MainWindowControllerTest, undoesNothingOfAnotherEntry) {
    show();
    type("one");
    for (int count = 0; count < 3; ++count)
        press(Qt::Key_Backspace, Qt::NoModifier);
    press(Qt::Key_Right, Qt::AltModifier);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shownText(), "");
    EXPECT_FALSE(window()->isWindowModified());
}

TEST_F(MainWindowControllerTest, startsALongEntryAtItsTop) {
    std::string text;
    for (int line = 0; line < 300; ++line)
        text += "line " + std::to_string(line) + "\n";
    folder.write("vault/03-14.md", "# 03-14\n\n## 2024\n\n" + text + "\n## 2025\n\n" + text);
    show();
    auto *bar = controller->entryView()->scrollView()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 300 * 30);
    EXPECT_EQ(bar->value(), 0);
    bar->setValue(100);
    pickYear(2024);
    EXPECT_EQ(bar->value(), 0);
    controller->session().step(1);
    controller->session().step(-1);
    EXPECT_EQ(bar->value(), 0);
    // The caret is behind the text: typing goes there.
    type("x");
    EXPECT_GT(bar->value(), 300 * 30);
    press(Qt::Key_PageUp, Qt::NoModifier);
    EXPECT_LT(bar->value(), 300 * 30);
    EXPECT_EQ(textView()->textCursor().position(), textView()->text().size());
}

TEST_F(MainWindowControllerTest, keepsTheCaretWhenAChangeComesIn) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\none two\n");
    show();
    press(Qt::Key_Left, Qt::ControlModifier);
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\none two three\n");
    std::filesystem::last_write_time(vault / "03-14.md", std::filesystem::file_time_type::clock::now() + 1h);
    controller->session().performRemoteRefresh();
    EXPECT_EQ(shownText(), "one two three");
    EXPECT_EQ(textView()->textCursor().position(), 4);
}

TEST_F(MainWindowControllerTest, offersNoEditorForALeapDayThatDoesNotCome) {
    folder.write("vault/02-29.md", "# 02-29\n\n## 2024\n\nLeap\n");
    show();
    controller->session().open({2, 29});
    EXPECT_EQ(textView(), nullptr);
    EXPECT_TRUE(find<ThemeLabel>("note")->text().contains(QStringLiteral("29 February")));
    pickYear(2024);
    EXPECT_EQ(shownText(), "Leap");
    click("nextDay");
    EXPECT_EQ(shownText(), "");
    EXPECT_TRUE(textView()->hasFocus());
}

TEST_F(MainWindowControllerTest, looksTheSameOnADayHoweverItWasReached) {
    folder.write("vault/03-15.md", "# 03-15\n\n## 2025\n\nText\n");
    show();
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return find<QLabel>("statFilesValue")->text() == QStringLiteral("1"); }));
    const auto picture = [this] { return controller->contentView()->grab().toImage(); };
    const auto empty = picture();
    controller->session().step(1);
    const auto written = picture();
    EXPECT_NE(written, empty);
    controller->session().step(-1);
    EXPECT_EQ(picture(), empty);
    type("T");
    QTest::keyClick(textView(), Qt::Key_Backspace);
    controller->session().step(1);
    EXPECT_EQ(picture(), written);
}

TEST_F(MainWindowControllerTest, savesWhenItsWindowIsClosed) {
    show();
    type("Last words");
    window()->close();
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nLast words\n");
    EXPECT_FALSE(window()->isVisible());
}

TEST_F(MainWindowControllerTest, showsOneAlertForARunOfFailures) {
    folder.write("vault", "in the way");
    show();
    type("a");
    clock.advance(1s);
    const auto alerts = [this] { return window()->findChildren<QMessageBox *>(); };
    ASSERT_EQ(alerts().size(), 1);
    EXPECT_TRUE(alerts().front()->isVisible());
    const auto systemText = toQString(std::make_error_code(std::errc::not_a_directory).message());
    EXPECT_TRUE(alerts().front()->informativeText().contains(systemText))
        << toUtf8(alerts().front()->informativeText());
    EXPECT_TRUE(window()->isWindowModified());

    QTest::keyClick(alerts().front(), Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return alerts().isEmpty(); }));
    window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
    type("b");
    clock.advance(1s);
    EXPECT_TRUE(alerts().isEmpty());

    std::filesystem::remove(vault);
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(folder.read("vault/03-14.md"), "# 03-14\n\n## 2025\n\nab\n");
    EXPECT_FALSE(window()->isWindowModified());
}

TEST_F(MainWindowControllerTest, showsTheDaysFileInTheFileManagerOrElseTheVault) {
    folder.write("vault/05-01.md", "# 05-01\n");
    show();
    controller->showInFileManager();
    controller->session().open({5, 1});
    controller->showInFileManager();
    EXPECT_EQ(fileManager.revealed, (std::vector{vault, vault / "05-01.md"}));
}

TEST_F(MainWindowControllerTest, goesToARandomDayWithContentAndStaysWhenThereIsNone) {
    show();
    controller->goToRandomDay();
    EXPECT_EQ(controller->session().currentMonthDay(), (MonthDay{3, 14}));
    folder.write("vault/05-01.md", "# 05-01\n\n## 2020\n\nText\n");
    controller->store().invalidateCaches();
    controller->goToRandomDay();
    EXPECT_EQ(controller->session().currentMonthDay(), (MonthDay{5, 1}));
}

TEST_F(MainWindowControllerTest, hasACardForTheNewYearAtMidnight) {
    clock.setToday({2025, 12, 31});
    show();
    EXPECT_THAT(years(), ElementsAre(2025));
    clock.setToday({2026, 1, 1});
    EXPECT_THAT(years(), ElementsAre(2026, 2025));
}

TEST_F(MainWindowControllerTest, tellsThatItWasClosedWithTheTextSaved) {
    show();
    std::string fileWhenClosed;
    controller->onClose = [&] { fileWhenClosed = folder.read("vault/03-14.md"); };
    type("Saved");
    window()->close();
    EXPECT_EQ(fileWhenClosed, "# 03-14\n\n## 2025\n\nSaved\n");
}

TEST_F(MainWindowControllerTest, comesToTheFrontFromBeingMinimized) {
    show();
    window()->showMinimized();
    controller->bringToFront();
    EXPECT_FALSE(window()->isMinimized());
    EXPECT_TRUE(window()->isVisible());
}

TEST_F(MainWindowControllerTest, opensNoPhotoPreviewWithoutPhotos) {
    show();
    controller->openPhotoPreview(0);
    EXPECT_EQ(controller->photoPreview()->panel(), nullptr);
}

TEST_F(MainWindowControllerTest, keepsItsKeysFromThePageBehindAPhoto) {
    show();
    previewPhoto();
    press(Qt::Key_Left, Qt::AltModifier);
    press(Qt::Key_Left, Qt::ControlModifier);
    press(Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(shownDay(), "03-14");
    EXPECT_FALSE(controller->session().showSource());
    EXPECT_TRUE(controller->photoPreview()->panel()->isOpen());
    press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quits, 1);
}

TEST_F(MainWindowControllerTest, goesOnWithTheTextAfterAPhoto) {
    show();
    type("be");
    previewPhoto();
    press(Qt::Key_N, {});
    press(Qt::Key_Escape, {});
    EXPECT_TRUE(textView()->hasFocus());
    press(Qt::Key_E, {});
    EXPECT_EQ(shownText(), "bee");
}

TEST_F(MainWindowControllerTest, showsNoPhotoOfAPageThatWasLeft) {
    show();
    previewPhoto();
    controller->session().step(1);
    EXPECT_FALSE(controller->photoPreview()->panel()->isVisible());
    EXPECT_TRUE(textView()->hasFocus());
}

// The photos of the year 2025: three a day, each with the day in its name. What is asked of the source waits.
class MainWindowGalleryTest : public MainWindowControllerTest {
protected:
    void SetUp() override {
        MainWindowControllerTest::SetUp();
        Settings::shared().setShowPhotos(true);
        photoLibrary = std::make_unique<DayPhotoLibrary>(&source, &queue);
        const std::chrono::local_days newYear(2026y / January / 1);
        for (std::chrono::local_days day(2025y / January / 1); day < newYear; day += days(1)) {
            const std::chrono::year_month_day date(day);
            const MonthDay monthDay{static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day())};
            for (int index = 0; index < 3; ++index)
                source.add(monthDay.headerTitle() + "-" + std::to_string(index) + ".jpg",
                           testing::FakePhotoSource::at(date, 8 + index, 30));
        }
    }
    void TearDown() override { Settings::shared().setShowPhotos(true); }

    void settle() {
        for (int round = 0; round < 3; ++round) {
            queue.runBackground();
            QCoreApplication::processEvents();
        }
    }
    void answerImages() {
        const auto requests = std::exchange(source.imageRequests, {});
        for (const auto &request : requests)
            request.answer();
        settle();
    }
    // The photos of the shown day come in.
    void showPhotos() {
        clock.advance(MainWindowController::galleryDelay);
        settle();
        answerImages();
    }

    PhotoGalleryView *gallery() const { return controller->entryView()->galleryView(); }
    std::vector<std::string> shownPhotos() const {
        std::vector<std::string> names;
        for (const auto *tile : gallery()->tileViews())
            names.push_back(toUtf8(tile->photo().filename));
        return names;
    }

    testing::ManualExecutor queue;
    testing::FakePhotoSource source;
};

TEST_F(MainWindowGalleryTest, showsThePhotosOfTheDayAMomentAfterTheDay) {
    show();
    clock.advance(MainWindowController::galleryDelay - 1ms);
    settle();
    EXPECT_THAT(source.queries, IsEmpty());
    clock.advance(1ms);
    settle();
    ASSERT_EQ(source.queries.size(), 1U);
    EXPECT_EQ(source.queries[0].start, testing::FakePhotoSource::at(2025y / March / 14, 0, 0));
    EXPECT_EQ(source.queries[0].end, testing::FakePhotoSource::at(2025y / March / 15, 0, 0));
    EXPECT_THAT(shownPhotos(), IsEmpty());
    answerImages();
    EXPECT_THAT(shownPhotos(), ElementsAre("03-14-0.jpg", "03-14-1.jpg", "03-14-2.jpg"));
    EXPECT_EQ(find<ElidedLabel>("photosCaption")->text(), QStringLiteral("Photos taken this day: 3"));
    EXPECT_TRUE(find<QWidget>("photoTile2")->isVisible());
}

TEST_F(MainWindowGalleryTest, looksOnceForADayThatIsReachedInManySteps) {
    show();
    for (int step = 0; step < 5; ++step) {
        clock.advance(MainWindowController::galleryDelay / 2);
        click("nextDay");
    }
    settle();
    EXPECT_THAT(source.queries, IsEmpty());
    showPhotos();
    EXPECT_EQ(source.queries.size(), 1U);
    EXPECT_EQ(shownPhotos().at(0), "03-19-0.jpg");
}

// Also when they come late, in another order, and after the ones of the day that is shown.
TEST_F(MainWindowGalleryTest, neverShowsAPhotoOfADayThatWasLeft) {
    show();
    const auto expectOnlyTheShownDay = [this] {
        for (const auto &name : shownPhotos())
            EXPECT_EQ(name.substr(0, 5), shownDay());
    };
    std::vector<testing::FakePhotoSource::ImageRequest> late;
    std::size_t random = 1;
    const auto next = [&random](std::size_t below) {
        random = random * 6364136223846793005U + 1442695040888963407U;
        return (random >> 33U) % below;
    };
    int daysWithPhotos = 0;
    for (int step = 0; step < 30; ++step) {
        click("nextDay");
        EXPECT_THAT(shownPhotos(), IsEmpty());
        clock.advance(MainWindowController::galleryDelay + 1ms);
        if (next(4) > 0)
            settle();
        for (auto &request : std::exchange(source.imageRequests, {}))
            late.push_back(std::move(request));
        for (std::size_t answers = next(6); answers > 0 && !late.empty(); --answers) {
            const auto which = late.begin() + static_cast<std::ptrdiff_t>(next(late.size()));
            which->answer();
            late.erase(which);
            QCoreApplication::processEvents();
            expectOnlyTheShownDay();
        }
        daysWithPhotos += !shownPhotos().empty();
    }
    settle();
    // The newest first.
    for (auto &request : std::exchange(source.imageRequests, {}))
        late.push_back(std::move(request));
    while (!late.empty()) {
        late.back().answer();
        late.pop_back();
        settle();
        expectOnlyTheShownDay();
    }
    EXPECT_EQ(shownDay(), "04-13");
    EXPECT_THAT(shownPhotos(), ElementsAre("04-13-0.jpg", "04-13-1.jpg", "04-13-2.jpg"));
}

TEST_F(MainWindowGalleryTest, takesPhotosAwayTogetherWithTheirDayOrYear) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2019\n\nNineteen\n");
    show();
    showPhotos();
    ASSERT_EQ(shownPhotos().size(), 3U);
    pickYear(2019);
    EXPECT_THAT(shownPhotos(), IsEmpty());
    showPhotos();
    EXPECT_THAT(shownPhotos(), IsEmpty());
    EXPECT_EQ(source.queries.back().start, testing::FakePhotoSource::at(2019y / March / 14, 0, 0));
    pickYear(2025);
    showPhotos();
    ASSERT_EQ(shownPhotos().size(), 3U);
    click("previousDay");
    EXPECT_THAT(shownPhotos(), IsEmpty());
}

TEST_F(MainWindowGalleryTest, looksForNoPhotosInSourceMode) {
    show();
    showPhotos();
    press(Qt::Key_U, Qt::ControlModifier);
    EXPECT_THAT(shownPhotos(), IsEmpty());
    source.queries.clear();
    showPhotos();
    EXPECT_THAT(source.queries, IsEmpty());
    // Neither when it was on its way already.
    press(Qt::Key_U, Qt::ControlModifier);
    press(Qt::Key_U, Qt::ControlModifier);
    showPhotos();
    EXPECT_THAT(source.queries, IsEmpty());
    controller->photosDidChange();
    showPhotos();
    EXPECT_THAT(source.queries, IsEmpty());
    press(Qt::Key_U, Qt::ControlModifier);
    showPhotos();
    EXPECT_EQ(shownPhotos().size(), 3U);
}

TEST_F(MainWindowGalleryTest, looksForNoPhotosAgainstTheUsersWish) {
    Settings::shared().setShowPhotos(false);
    show();
    showPhotos();
    EXPECT_THAT(source.queries, IsEmpty());
    Settings::shared().setShowPhotos(true);
    controller->renderEntry();
    showPhotos();
    EXPECT_EQ(shownPhotos().size(), 3U);
    Settings::shared().setShowPhotos(false);
    controller->renderEntry();
    EXPECT_THAT(shownPhotos(), IsEmpty());
}

TEST_F(MainWindowGalleryTest, keepsThePhotosWhileThePageOfTheSameDayIsShownAgain) {
    show();
    showPhotos();
    const auto tiles = gallery()->tileViews();
    tiles[1]->setFocus(Qt::TabFocusReason);
    controller->renderEntry();
    EXPECT_EQ(shownPhotos().size(), 3U);
    showPhotos();
    EXPECT_EQ(source.queries.size(), 2U);
    EXPECT_EQ(gallery()->tileViews(), tiles);
    EXPECT_TRUE(tiles[1]->hasFocus());
    source.clear();
    controller->renderEntry();
    EXPECT_EQ(shownPhotos().size(), 3U);
    showPhotos();
    EXPECT_THAT(shownPhotos(), IsEmpty());
}

TEST_F(MainWindowGalleryTest, looksAgainWhenMorePhotosAreFound) {
    show();
    showPhotos();
    const auto tiles = gallery()->tileViews();
    // Nothing of this day.
    source.add("elsewhere.jpg", testing::FakePhotoSource::at(2025y / April / 1, 9, 0));
    controller->photosDidChange();
    showPhotos();
    EXPECT_EQ(source.queries.size(), 2U);
    EXPECT_EQ(gallery()->tileViews(), tiles);
    source.add("new.jpg", testing::FakePhotoSource::at(2025y / March / 14, 9, 0));
    controller->photosDidChange();
    EXPECT_EQ(shownPhotos().size(), 3U);
    showPhotos();
    EXPECT_THAT(shownPhotos(), ElementsAre("03-14-0.jpg", "new.jpg", "03-14-1.jpg", "03-14-2.jpg"));
    EXPECT_EQ(find<ElidedLabel>("photosCaption")->text(), QStringLiteral("Photos taken this day: 4"));
}

TEST_F(MainWindowGalleryTest, showsPhotosWhileMoreAndMoreAreFound) {
    show();
    showPhotos();
    source.queries.clear();
    for (int notice = 0; notice < 10; ++notice) {
        controller->photosDidChange();
        clock.advance(MainWindowController::galleryDelay / 2);
    }
    settle();
    EXPECT_EQ(source.queries.size(), 1U);
    // While the answer is awaited nothing else is asked, but afterwards it is.
    source.add("new.jpg", testing::FakePhotoSource::at(2025y / March / 14, 9, 0));
    controller->photosDidChange();
    clock.advance(1s);
    settle();
    EXPECT_EQ(source.queries.size(), 1U);
    answerImages();
    showPhotos();
    EXPECT_EQ(source.queries.size(), 2U);
    EXPECT_EQ(shownPhotos().size(), 4U);
}

TEST_F(MainWindowGalleryTest, showsThePhotoThatIsClickedLargeAndStepsFromThere) {
    show();
    showPhotos();
    gallery()->tileViews()[1]->click();
    ASSERT_TRUE(controller->photoPreview()->panel());
    EXPECT_TRUE(controller->photoPreview()->panel()->isOpen());
    EXPECT_EQ(controller->photoPreview()->panel()->accessibleName(), QStringLiteral("03-14-1.jpg, 2 / 3"));
    press(Qt::Key_Right, {});
    EXPECT_EQ(controller->photoPreview()->panel()->accessibleName(), QStringLiteral("03-14-2.jpg, 3 / 3"));
    press(Qt::Key_Escape, {});
    EXPECT_FALSE(controller->photoPreview()->panel()->isOpen());
}

TEST_F(MainWindowGalleryTest, survivesPhotosThatComeAfterItIsGone) {
    show();
    clock.advance(MainWindowController::galleryDelay);
    settle();
    ASSERT_EQ(source.imageRequests.size(), 3U);
    controller.reset();
    answerImages();
}

TEST_F(MainWindowGalleryTest, standsBetweenTheEditorAndTheRailForTheKeyboard) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2019\n\nNineteen\n");
    show();
    showPhotos();
    textView()->setFocus();
    press(Qt::Key_Tab, Qt::ControlModifier);
    for (auto *tile : gallery()->tileViews()) {
        EXPECT_EQ(QApplication::focusWidget(), tile);
        press(Qt::Key_Tab, Qt::NoModifier);
    }
    EXPECT_TRUE(qobject_cast<YearCardView *>(QApplication::focusWidget()));
}

TEST_F(MainWindowControllerTest, showsScriptedPhotos) {
    const testing::ScopedEnvironment count("DIARY_FAKE_PHOTOS", "7");
    show();
    clock.advance(MainWindowController::galleryDelay);
    EXPECT_EQ(controller->entryView()->galleryView()->tileViews().size(), 7U);
}

// The first picture

TEST_F(MainWindowControllerTest, takesInWhatChangedBeforeItWatchesTheVault) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\nFirst\n");
    controller = std::make_unique<MainWindowController>(
        std::make_unique<DiaryStore>(vault, DiaryStore::Options{.stateFolder = folder / "state"}), clock,
        fileManager);
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\nFrom another device\n");
    EXPECT_EQ(shownText(), "First");
    controller->showWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(controller->window()));
    QApplication::processEvents();
    clock.advance(1s);
    EXPECT_EQ(shownText(), "From another device");
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/FakeFileManager.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/EntryTextEdit.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/Text.h>

#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextDocument>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace diary {
namespace {

using namespace std::chrono_literals;

// The window over a vault of its own, on 14 March 2025.
class MainWindowControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        // A picture must not depend on the moment.
        QApplication::setCursorFlashTime(0);
    }

    void show() {
        controller = std::make_unique<MainWindowController>(
            std::make_unique<DiaryStore>(vault, DiaryStore::Options{.stateFolder = folder / "state"}), clock,
            fileManager);
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
    EntryTextEdit *textView() const { return find<EntryTextEdit>("textView"); }
    std::string shownDay() const { return toUtf8(find<QLabel>("fileName")->text()); }
    std::string shownText() const { return toUtf8(textView()->text()); }

    void click(const char *button) const { QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton); }
    void type(const char *text) const { QTest::keyClicks(textView(), QString::fromUtf8(text)); }
    // To whatever has the keyboard.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    // As a user does with the keyboard.
    void pickYear(int year) const {
        auto *years = find<QComboBox>("years");
        const int index = years->findText(QString::number(year));
        ASSERT_GE(index, 0) << year;
        // Each step gives the keyboard to the text.
        while (years->currentIndex() != index) {
            years->setFocus();
            QTest::keyClick(years, years->currentIndex() < index ? Qt::Key_Down : Qt::Key_Up);
        }
    }

    testing::TemporaryFolder folder;
    const std::filesystem::path vault = folder / "vault";
    testing::FakeClock clock{{2025, 3, 14}};
    testing::FakeFileManager fileManager;
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
    const auto usualStatus = find<QLabel>("status")->text();
    folder.write("vault/03-14 (conflicted).md", "# 03-14\n\n## 2024\n\ntheirs\n");
    EXPECT_TRUE(QTest::qWaitFor([this] {
        clock.advance(EditingSession::remoteRefreshDelay);
        return find<QLabel>("status")->text().startsWith(QStringLiteral("Merged"));
    }));
    EXPECT_EQ(find<QComboBox>("years")->count(), 2);
    clock.advance(4s);
    EXPECT_EQ(find<QLabel>("status")->text(), usualStatus);
}

TEST_F(MainWindowControllerTest, opensTodayReadyForTyping) {
    show();
    EXPECT_EQ(shownDay(), "03-14.md");
    EXPECT_EQ(window()->windowTitle(), QStringLiteral("03-14.md[*]"));
    EXPECT_FALSE(window()->isWindowModified());
    EXPECT_TRUE(textView()->hasFocus());
    EXPECT_EQ(find<QComboBox>("years")->currentText(), QStringLiteral("2025"));
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
    EXPECT_EQ(shownDay(), "03-15.md");
    EXPECT_EQ(window()->windowTitle(), QStringLiteral("03-15.md[*]"));
    EXPECT_TRUE(textView()->hasFocus());
    click("previousDay");
    click("previousDay");
    EXPECT_EQ(shownDay(), "03-13.md");
    clock.setToday({2025, 3, 20});
    click("today");
    EXPECT_EQ(shownDay(), "03-20.md");
}

TEST_F(MainWindowControllerTest, stepsWithItsKeys) {
    show();
    press(Qt::Key_Right, Qt::AltModifier);
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(shownDay(), "03-16.md");
    press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(shownDay(), "03-15.md");
    press(Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(shownDay(), "03-14.md");
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
    EXPECT_EQ(shownDay(), "03-14.md");
    EXPECT_EQ(textView()->textCursor().position(), 4);
    press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(textView()->textCursor().position(), 7);
}

TEST_F(MainWindowControllerTest, listsTheYearsAndEditsTheOneThatIsPicked) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2019\n\nNineteen\n\n## 2023\n\nTwenty-three\n");
    show();
    const auto *years = find<QComboBox>("years");
    ASSERT_EQ(years->count(), 3);
    EXPECT_EQ(years->itemText(0), QStringLiteral("2025"));
    EXPECT_EQ(years->itemText(1), QStringLiteral("2023"));
    EXPECT_EQ(years->itemText(2), QStringLiteral("2019"));

    type("Now");
    pickYear(2023);
    EXPECT_EQ(shownText(), "Twenty-three");
    EXPECT_EQ(years->currentText(), QStringLiteral("2023"));
    EXPECT_TRUE(textView()->hasFocus());
    pickYear(2019);
    type("!");
    clock.advance(1s);
    EXPECT_EQ(folder.read("vault/03-14.md"),
              "# 03-14\n\n## 2019\n\nNineteen!\n\n## 2023\n\nTwenty-three\n\n## 2025\n\nNow\n");
    pickYear(2025);
    EXPECT_EQ(shownText(), "Now");
}

TEST_F(MainWindowControllerTest, reachesTheYearsFromTheEditorByKeyboard) {
    show();
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(find<QPushButton>("today")->hasFocus());
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(find<QComboBox>("years")->hasFocus());
    press(Qt::Key_Tab, Qt::NoModifier);
    press(Qt::Key_Tab, Qt::NoModifier);
    EXPECT_TRUE(textView()->hasFocus());
}

TEST_F(MainWindowControllerTest, tellsYearLengthAndFile) {
    folder.write("vault/03-14.md", "# 03-14\n\n## 2025\n\na b\u00A0🙂\nc\n");
    show();
    const auto *status = find<QLabel>("status");
    const auto path = pathToQString(vault / "03-14.md");
    EXPECT_EQ(status->text(), QStringLiteral("Viewing ## 2025 · 4 chars · ") + path);
    type("de");
    EXPECT_EQ(status->text(), QStringLiteral("Viewing ## 2025 · 6 chars · ") + path);
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
    const auto *bar = textView()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), 0);
    textView()->verticalScrollBar()->setValue(100);
    pickYear(2024);
    EXPECT_EQ(bar->value(), 0);
    click("nextDay");
    click("previousDay");
    EXPECT_EQ(bar->value(), 0);
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
    EXPECT_FALSE(textView()->isEnabled());
    EXPECT_EQ(textView()->placeholderText(), QStringLiteral("2025 has no 29 February."));
    pickYear(2024);
    EXPECT_TRUE(textView()->isEnabled());
    EXPECT_EQ(shownText(), "Leap");
    click("nextDay");
    EXPECT_TRUE(textView()->isEnabled());
    EXPECT_TRUE(textView()->hasFocus());
    EXPECT_EQ(textView()->placeholderText(), QStringLiteral("Write about this day in 2025…"));
}

TEST_F(MainWindowControllerTest, looksTheSameOnADayHoweverItWasReached) {
    folder.write("vault/03-15.md", "# 03-15\n\n## 2025\n\nText\n");
    show();
    const auto empty = controller->contentView()->grab().toImage();
    click("nextDay");
    const auto written = controller->contentView()->grab().toImage();
    EXPECT_NE(written, empty);
    click("previousDay");
    EXPECT_EQ(controller->contentView()->grab().toImage(), empty);
    type("T");
    QTest::keyClick(textView(), Qt::Key_Backspace);
    click("nextDay");
    EXPECT_EQ(controller->contentView()->grab().toImage(), written);
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

TEST_F(MainWindowControllerTest, namesTheNewYearAtMidnight) {
    clock.setToday({2025, 12, 31});
    show();
    ASSERT_EQ(find<QComboBox>("years")->count(), 1);
    clock.setToday({2026, 1, 1});
    EXPECT_EQ(find<QComboBox>("years")->itemText(0), QStringLiteral("2026"));
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

} // namespace
} // namespace diary

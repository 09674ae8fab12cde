// SPDX-License-Identifier: MIT
#include <DiaryApp/MainMenu.h>

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace diary {
namespace {

QString withoutMnemonics(QString title) {
    return title.remove(QLatin1Char('&'));
}

// The titles and keys of a menu, one a row.
std::vector<std::string> rowsOf(const QMenu *menu) {
    std::vector<std::string> rows;
    for (const auto *action : menu->actions()) {
        auto row = action->isSeparator() ? QStringLiteral("-") : withoutMnemonics(action->text());
        for (const auto &key : action->shortcuts())
            row += QStringLiteral(" | ") + key.toString(QKeySequence::PortableText);
        rows.push_back(row.toStdString());
    }
    return rows;
}

class MainMenuTest : public ::testing::Test {
protected:
    std::function<void()> record(const char *name) {
        return [this, name] { performed.emplace_back(name); };
    }

    void show() {
        actions.showAbout = record("about");
        actions.hide = record("hide");
        actions.quit = record("quit");
        actions.close = record("close");
        actions.save = record("save");
        actions.showInFileManager = record("reveal");
        actions.showSearch = record("search");
        actions.toggleSource = record("source");
        actions.goToPreviousDay = record("previous");
        actions.goToNextDay = record("next");
        actions.goToToday = record("today");
        actions.goToRandomDay = record("random");
        actions.showYearOverview = record("year");
        actions.minimize = record("minimize");
        actions.zoom = record("zoom");
        bar = MainMenuBuilder::build(actions, &window);
        window.setMenuBar(bar);
        window.setCentralWidget(&field);
        field.setFocusPolicy(Qt::StrongFocus);
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QMenu *menu(const char *key) const { return bar->findChild<QMenu *>(QLatin1String(key)); }
    QAction *action(const char *key) const { return bar->findChild<QAction *>(QString::fromUtf8(key)); }

    QMainWindow window;
    QLineEdit &field = *new QLineEdit(&window);
    QMenuBar *bar = nullptr;
    MenuActions actions;
    std::vector<std::string> performed;
};

TEST_F(MainMenuTest, hasItsEntriesAndKeysInOrder) {
    show();
    using ::testing::ElementsAre;
    std::vector<std::string> titles;
    for (const auto *entry : bar->actions())
        titles.push_back(withoutMnemonics(entry->text()).toStdString());
    EXPECT_EQ(titles.size(), 6U);
    EXPECT_THAT(rowsOf(menu("Diary")),
                ElementsAre("About " + titles[0], "Check for Updates…", "-", "Settings… | Ctrl+,", "-",
                            "Hide " + titles[0] + " | Ctrl+H", "-", "Quit " + titles[0] + " | Ctrl+Q"));
    const auto file = rowsOf(menu("File"));
    ASSERT_EQ(file.size(), 5U);
    EXPECT_EQ(file[0], "Close | Ctrl+W");
    EXPECT_EQ(file[2], "Save | Ctrl+S");
    EXPECT_THAT(rowsOf(menu("Edit")),
                ElementsAre("Undo | Ctrl+Z", "Redo | Ctrl+Shift+Z", "-", "Cut | Ctrl+X", "Copy | Ctrl+C",
                            "Paste | Ctrl+V", "Select All | Ctrl+A", "-", "Find… | Ctrl+F"));
    EXPECT_THAT(rowsOf(menu("View")), ElementsAre("Toggle Source | Ctrl+U"));
    EXPECT_THAT(rowsOf(menu("Navigate")),
                ElementsAre("Previous Day | Ctrl+Left | Alt+Left", "Next Day | Ctrl+Right | Alt+Right", "-",
                            "Today | Ctrl+T", "Random Day | Ctrl+R", "-", "Year Calendar | Ctrl+Y"));
    EXPECT_THAT(rowsOf(menu("Window")), ElementsAre("Minimize | Ctrl+M", "Zoom"));
}

TEST_F(MainMenuTest, performsWhatItsKeysSay) {
    show();
    const std::vector<std::pair<QKeySequence, std::string>> expected = {
        {Qt::CTRL | Qt::Key_S, "save"},       {Qt::CTRL | Qt::Key_W, "close"},
        {Qt::CTRL | Qt::Key_F, "search"},     {Qt::CTRL | Qt::Key_T, "today"},
        {Qt::CTRL | Qt::Key_R, "random"},     {Qt::CTRL | Qt::Key_M, "minimize"},
        {Qt::CTRL | Qt::Key_H, "hide"},       {Qt::CTRL | Qt::Key_Q, "quit"},
        {Qt::ALT | Qt::Key_Left, "previous"}, {Qt::ALT | Qt::Key_Right, "next"}};
    for (const auto &[keys, name] : expected) {
        performed.clear();
        QTest::keyClick(&field, keys[0].key(), keys[0].keyboardModifiers());
        EXPECT_EQ(performed, std::vector{name}) << keys.toString().toStdString();
    }
}

TEST_F(MainMenuTest, leavesTheKeysOfTextToTheText) {
    show();
    field.setText(QStringLiteral("two words"));
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(field.cursorPosition(), 4);
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(field.selectedText(), QStringLiteral("two words"));
    QTest::keyClick(&field, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(field.text(), QString());
    QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field.text(), QStringLiteral("two words"));
    EXPECT_TRUE(performed.empty());
}

TEST_F(MainMenuTest, editsTheTextThatHasTheKeyboard) {
    show();
    field.setText(QStringLiteral("words"));
    field.setFocus();
    action("Select All")->trigger();
    action("Copy")->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("words"));
    action("Cut")->trigger();
    EXPECT_EQ(field.text(), QString());
    action("Paste")->trigger();
    action("Paste")->trigger();
    EXPECT_EQ(field.text(), QStringLiteral("wordswords"));
    action("Undo")->trigger();
    EXPECT_EQ(field.text(), QStringLiteral("words"));
    action("Redo")->trigger();
    EXPECT_EQ(field.text(), QStringLiteral("wordswords"));
}

TEST_F(MainMenuTest, offersWhatCanBeDoneToTheFocusedWidget) {
    show();
    QWidget other;
    field.setFocus();
    emit menu("Edit")->aboutToShow();
    EXPECT_TRUE(action("Paste")->isEnabled());
    field.clearFocus();
    emit menu("Edit")->aboutToShow();
    EXPECT_FALSE(action("Paste")->isEnabled());
    EXPECT_TRUE(action("Find…")->isEnabled());
    emit menu("Edit")->aboutToHide();
    EXPECT_TRUE(action("Paste")->isEnabled());
}

TEST_F(MainMenuTest, disablesWhatHasNoAction) {
    show();
    EXPECT_FALSE(action("Check for Updates…")->isEnabled());
    EXPECT_FALSE(action("Settings…")->isEnabled());
    EXPECT_TRUE(action("Save")->isEnabled());
}

TEST_F(MainMenuTest, listsTheOpenWindowsAndRaisesThem) {
    show();
    window.setWindowTitle(QStringLiteral("03-14.md[*]"));
    QWidget other;
    other.setWindowTitle(QStringLiteral("Find & more"));
    other.show();
    QWidget hidden;
    hidden.setWindowTitle(QStringLiteral("Hidden"));
    const auto listed = [this] {
        emit menu("Window")->aboutToShow();
        auto rows = rowsOf(menu("Window"));
        rows.erase(rows.begin(), rows.begin() + 3);
        return rows;
    };
    using ::testing::UnorderedElementsAre;
    listed();
    EXPECT_THAT(listed(), UnorderedElementsAre("03-14.md", "Find  more"));
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    for (auto *entry : menu("Window")->actions()) {
        if (entry->text() == QStringLiteral("03-14.md"))
            entry->trigger();
    }
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    other.close();
    EXPECT_THAT(listed(), UnorderedElementsAre("03-14.md"));
}

struct MnemonicsCase {
    std::string name;
    QStringList titles;
    QStringList keys;
    QStringList expected;
};

class MnemonicsTest : public ::testing::TestWithParam<MnemonicsCase> {};

TEST_P(MnemonicsTest, giveEachTitleALetterOfItsOwn) {
    const auto &row = GetParam();
    EXPECT_EQ(MainMenuBuilder::withMnemonics(row.titles, row.keys), row.expected);
}

const QStringList editKeys = {QStringLiteral("Copy"), QStringLiteral("Cut"), QStringLiteral("Find…")};

INSTANTIATE_TEST_SUITE_P(
    , MnemonicsTest,
    ::testing::Values(
        MnemonicsCase{"ofTheTitle",
                      {QStringLiteral("Copy"), QStringLiteral("Cut"), QStringLiteral("Find…")},
                      editKeys,
                      {QStringLiteral("&Copy"), QStringLiteral("C&ut"), QStringLiteral("&Find…")}},
        MnemonicsCase{"ofCyrillicTitles",
                      {QStringLiteral("Копировать"), QStringLiteral("Кот"), QStringLiteral("Найти…")},
                      editKeys,
                      {QStringLiteral("&Копировать"), QStringLiteral("К&от"), QStringLiteral("&Найти…")}},
        MnemonicsCase{"ofTheKeyInBrackets",
                      {QStringLiteral("拷贝"), QStringLiteral("剪切"), QStringLiteral("查找…")},
                      editKeys,
                      {QStringLiteral("拷贝(&C)"), QStringLiteral("剪切(&U)"), QStringLiteral("查找(&F)…")}},
        MnemonicsCase{"notOfANameInAHanTitle",
                      {QStringLiteral("关于 Tavelo")},
                      {QStringLiteral("About %@")},
                      {QStringLiteral("关于 Tavelo(&A)")}},
        MnemonicsCase{"noneWhenTheLettersAreUsedUp",
                      {QStringLiteral("A"), QStringLiteral("Aa"), QString()},
                      {QStringLiteral("A"), QStringLiteral("A"), QStringLiteral("A")},
                      {QStringLiteral("&A"), QStringLiteral("Aa"), QString()}},
        MnemonicsCase{"besideALiteralAmpersand",
                      {QStringLiteral("& more")},
                      {QStringLiteral("More")},
                      {QStringLiteral("&& &more")}}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace diary

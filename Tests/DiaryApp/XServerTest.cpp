// SPDX-License-Identifier: MIT
#include "Support/XServer.h"

#include "Support/ChildProcess.h"
#include "Support/RunProgram.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaitUntil.h"

#include <DiaryKit/DiaryDay.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace diary {
namespace {

using namespace std::chrono_literals;
using testing::waitUntil;

// Without strict checks of strings: libxkbcommon copies parts of buffers that no zero ends.
constexpr const char *sanitizerOptions = "detect_stack_use_after_return=1:strict_string_checks=0";

// The program on a screen, with real keys.
class XServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!testing::XServer::isInstalled())
            GTEST_SKIP() << "Xvfb, openbox or xdotool is not installed";
        server = std::make_unique<testing::XServer>();
    }

    // Started, in front, and with the keyboard.
    void startProgram() {
        program = std::make_unique<testing::ChildProcess>(
            std::vector<std::string>{testing::builtProgram("TAVELO_TEST_TAVELO")},
            std::map<std::string, std::string>{{"DISPLAY", server->display()},
                                               {"QT_QPA_PLATFORM", "xcb"},
                                               {"ASAN_OPTIONS", sanitizerOptions},
                                               {"XDG_STATE_HOME", folder / "state"},
                                               {"DIARY_ROOT", folder / "v"}});
        ASSERT_TRUE(waitUntil([this] { return windows() == 1 || !program->isRunning(); }));
        ASSERT_TRUE(program->isRunning()) << program->errors();
        const auto focused = [this] {
            const auto name = server->xdotool({"getwindowfocus", "getwindowname"});
            return name && name->starts_with(today.fileName());
        };
        ASSERT_TRUE(waitUntil(focused))
            << server->xdotool({"getwindowfocus", "getwindowname"}).value_or("none");
    }

    // How many windows of the program are shown, pop-ups too.
    std::ptrdiff_t windows() const {
        const auto found = server->xdotool({"search", "--onlyvisible", "--class", "^tavelo$"});
        return found && !found->empty() ? std::count(found->begin(), found->end(), '\n') + 1 : 0;
    }

    void type(const std::string &text) const {
        ASSERT_TRUE(server->xdotool({"type", "--delay", "3", text}).has_value()) << text;
    }
    void press(const std::string &keys) const {
        ASSERT_TRUE(server->xdotool({"key", keys}).has_value()) << keys;
    }

    // Keys travel in their order: once the menu is shown, everything typed before has arrived.
    void openMenuToSeeAllKeysArrived() const {
        press("alt+f");
        ASSERT_TRUE(waitUntil([this] { return windows() == 2; }));
    }
    void closeMenu() const {
        press("Escape");
        ASSERT_TRUE(waitUntil([this] { return windows() == 1; }));
        // The menu bar still has the keys.
        press("Escape");
    }

    std::string dayFile(const std::string &sections) const {
        return "# " + today.headerTitle() + "\n\n" + sections;
    }
    bool fileIs(const std::string &text) const {
        return std::filesystem::exists(folder / "v" / today.fileName()) &&
               folder.read(std::filesystem::path("v") / today.fileName()) == text;
    }
    std::string file() const { return folder.read(std::filesystem::path("v") / today.fileName()); }

    testing::TemporaryFolder folder;
    const MonthDay today = DiaryDay::today().monthDay();
    const std::string year = std::to_string(DiaryDay::today().year);
    std::unique_ptr<testing::XServer> server;
    std::unique_ptr<testing::ChildProcess> program;
};

TEST_F(XServerTest, losesNoLetterOfTwoYearsWhenItIsTerminatedInMidWord) {
    folder.write(std::filesystem::path("v") / today.fileName(), dayFile("## 2019\n\nOld words\n"));
    ASSERT_NO_FATAL_FAILURE(startProgram());
    type("The first sentence, typed here.");
    const auto thisYear = "\n\n## " + year + "\n\nThe first sentence, typed here.\n";
    EXPECT_TRUE(waitUntil([&] { return fileIs(dayFile("## 2019\n\nOld words" + thisYear)); })) << file();

    // From the text to the button and on to the years; down to the older one, which gives the text the keys.
    press("shift+Tab");
    press("shift+Tab");
    press("Down");
    type(" and new ones.");
    EXPECT_TRUE(waitUntil([&] { return fileIs(dayFile("## 2019\n\nOld words and new ones." + thisYear)); }))
        << file();

    // A second after a letter it is saved anyway. Where the machine was too slow for the signal to come
    // before that, another word is typed.
    std::string expected = "Old words and new ones.";
    bool unsaved = false;
    for (int attempt = 0; attempt < 20 && !unsaved; ++attempt) {
        type(" unfinishe");
        expected += " unfinishe";
        openMenuToSeeAllKeysArrived();
        unsaved = !fileIs(dayFile("## 2019\n\n" + expected + thisYear));
        if (!unsaved)
            closeMenu();
    }
    EXPECT_TRUE(unsaved);
    program->sendSignal(SIGTERM);
    EXPECT_EQ(program->waitForExit(), 0) << program->errors();
    EXPECT_EQ(file(), dayFile("## 2019\n\n" + expected + thisYear));
}

TEST_F(XServerTest, savesWhenItIsQuitByKeyboard) {
    ASSERT_NO_FATAL_FAILURE(startProgram());
    type("Quit");
    press("ctrl+q");
    EXPECT_EQ(program->waitForExit(), 0) << program->errors();
    EXPECT_EQ(file(), dayFile("## " + year + "\n\nQuit\n"));
}

TEST_F(XServerTest, savesWhenTheWindowManagerClosesTheWindow) {
    ASSERT_NO_FATAL_FAILURE(startProgram());
    type("Closed");
    press("alt+F4");
    EXPECT_EQ(program->waitForExit(), 0) << program->errors();
    EXPECT_EQ(file(), dayFile("## " + year + "\n\nClosed\n"));
}

TEST_F(XServerTest, rescuesAndEndsWhenItIsQuitButCannotSave) {
    folder.write("v", "in the way");
    ASSERT_NO_FATAL_FAILURE(startProgram());
    type("Rescued");
    press("ctrl+q");
    EXPECT_EQ(program->waitForExit(), 0) << program->errors();
    EXPECT_EQ(folder.read("state/tavelo/rescued/" + year + "-" + today.fileName()), "Rescued");
}

TEST_F(XServerTest, rescuesAndEndsWhenItIsTerminatedWithAnAlertOnTheScreen) {
    folder.write("v", "in the way");
    ASSERT_NO_FATAL_FAILURE(startProgram());
    type("Rescued");
    ASSERT_TRUE(waitUntil([this] { return windows() == 2; }));
    program->sendSignal(SIGTERM);
    EXPECT_EQ(program->waitForExit(), 0) << program->errors();
    EXPECT_EQ(folder.read("state/tavelo/rescued/" + year + "-" + today.fileName()), "Rescued");
}

} // namespace
} // namespace diary

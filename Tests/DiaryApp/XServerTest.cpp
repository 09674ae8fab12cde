// SPDX-License-Identifier: MIT
#include "XServerFixture.h"

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace diary {
namespace {

using testing::waitUntil;

class XServerTest : public XServerFixture {};

TEST_F(XServerTest, losesNoLetterOfTwoYearsWhenItIsTerminatedInMidWord) {
    folder.write(std::filesystem::path("v") / today.fileName(), dayFile("## 2019\n\nOld words\n"));
    ASSERT_NO_FATAL_FAILURE(startProgram());
    type("The first sentence, typed here.");
    const auto thisYear = "\n\n## " + year + "\n\nThe first sentence, typed here.\n";
    EXPECT_TRUE(waitUntil([&] { return fileIs(dayFile("## 2019\n\nOld words" + thisYear)); })) << file();

    // From the text to the years, down to the older one, which gives the text the keys.
    press("ctrl+Tab");
    press("Down");
    press("Return");
    ASSERT_TRUE(waitUntil([this] { return shownText("2019") == "Old words"; }));
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

TEST_F(XServerTest, givesBackAtTheNextStartWhatWasTypedWhenItIsKilledInMidTyping) {
    ASSERT_NO_FATAL_FAILURE(startProgram());
    const std::filesystem::path journals = "state/tavelo/unsaved";
    const auto journal = [&] {
        const auto names = folder.names(journals);
        return names.empty() ? std::string() : folder.read(journals / *names.begin());
    };
    std::string typed;
    for (int letter = 0; letter < 120; ++letter)
        typed += static_cast<char>('a' + letter % 26);
    testing::ChildProcess typist({"xdotool", "type", "--delay", "40", typed},
                                 {{"DISPLAY", server->display()}});

    using Clock = std::chrono::steady_clock;
    std::vector<std::pair<Clock::time_point, std::size_t>> shown;
    ASSERT_TRUE(waitUntil([&] {
        shown.emplace_back(Clock::now(), shownText(year).size());
        return journal().size() > 100;
    }));
    const auto known = journal();
    program->sendSignal(SIGKILL);
    const auto killed = Clock::now();
    EXPECT_EQ(program->waitForExit(), 128 + SIGKILL);
    // The rest goes nowhere.
    EXPECT_EQ(typist.waitForExit(), 0);

    ASSERT_NO_FATAL_FAILURE(startProgram());
    const auto text = shownText(year);
    EXPECT_TRUE(typed.starts_with(text)) << text;
    EXPECT_NE(known.find(text.substr(0, 60)), std::string::npos) << known;
    EXPECT_GE(text.size(), 60U);
    EXPECT_EQ(file(), dayFile("## " + year + "\n\n" + text + "\n"));
    EXPECT_TRUE(folder.names(journals).empty());

    // How long before the end the last letter that came back had been on the screen.
    for (auto look = shown.rbegin(); look != shown.rend(); ++look) {
        if (look->second <= text.size()) {
            const auto lost = std::chrono::duration_cast<std::chrono::milliseconds>(killed - look->first);
            std::printf("lost: at most the last %lld ms\n", static_cast<long long>(lost.count()));
            break;
        }
    }
}

TEST_F(XServerTest, showsAYearThatAnotherProgramAddsWhenItIsIdle) {
    writeFile("## 2019\n\nOld words\n");
    ASSERT_NO_FATAL_FAILURE(startProgram());
    ASSERT_TRUE(waitUntil([this] { return isShown("push button", "2019"); }));
    EXPECT_FALSE(isShown("push button", "2021"));
    writeFile("## 2019\n\nOld words\n\n## 2021\n\nFrom elsewhere\n\n## " + year + "\n\nToo\n");
    EXPECT_TRUE(waitUntil([this] { return shownText(year) == "Too"; }));
    EXPECT_TRUE(isShown("push button", "2021"));
}

TEST_F(XServerTest, keepsWhatIsTypedAndWhatAnotherProgramAddsMeanwhile) {
    writeFile("## 2019\n\nOld words\n");
    ASSERT_NO_FATAL_FAILURE(startProgram());
    type("Typed before");
    writeFile("## 2019\n\nOld words\n\n## 2021\n\nFrom elsewhere\n");
    type(" and after");
    EXPECT_TRUE(waitUntil([&] {
        return fileIs(dayFile("## 2019\n\nOld words\n\n## 2021\n\nFrom elsewhere\n\n## " + year +
                              "\n\nTyped before and after\n"));
    })) << file();
    EXPECT_EQ(shownText(year), "Typed before and after");
    EXPECT_TRUE(waitUntil([this] { return isShown("push button", "2021"); }));
}

TEST_F(XServerTest, typesSelectsUndoesAndRedoesAPage) {
    ASSERT_NO_FATAL_FAILURE(startProgram());
    const std::string page =
        "# Morning\n\nFog until **ten**, then `sun` and *wind*.\n\n- bread\n- ~~milk~~\n\n"
        "```\ncode **plain**\n```\n\n> quoted\n\n[link](https://example.org)\n";
    type(page);
    EXPECT_TRUE(waitUntil([&] { return shownText(year) == page; })) << shownText(year);

    // A word by double click, and two letters more by keys.
    const auto word = page.find("Fog");
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    std::istringstream(bus->ask({"extents", "text", year, std::to_string(word + 1)}).value_or("")) >> x >>
        y >> width >> height;
    ASSERT_GT(height, 0);
    ASSERT_TRUE(server
                    ->xdotool({"mousemove", std::to_string(x + width / 2), std::to_string(y + height / 2),
                               "click", "--repeat", "2", "--delay", "50", "1"})
                    .has_value());
    const auto isSelected = [&](std::size_t length) {
        const auto selection = "(" + std::to_string(word) + ", " + std::to_string(word + length) + ")";
        return waitUntil([&] {
            return bus->ask({"caret", "text", year}).value_or("").find(selection) != std::string::npos;
        });
    };
    EXPECT_TRUE(isSelected(3)) << bus->ask({"caret", "text", year}).value_or("");
    press("shift+Right", 2);
    EXPECT_TRUE(isSelected(5)) << bus->ask({"caret", "text", year}).value_or("");

    // A heading and the line below it, gone and back.
    press("ctrl+Home");
    press("shift+Down", 2);
    const auto caret = bus->ask({"caret", "text", year}).value_or("");
    EXPECT_NE(caret.find("(0, 11)"), std::string::npos) << caret;
    press("Delete");
    EXPECT_TRUE(waitUntil([&] { return shownText(year) == page.substr(11); })) << shownText(year);
    press("ctrl+z", 200);
    EXPECT_TRUE(waitUntil([&] { return shownText(year).empty(); })) << shownText(year);
    press("ctrl+shift+z", 200);
    EXPECT_TRUE(waitUntil([&] { return shownText(year) == page.substr(11); })) << shownText(year);
    press("ctrl+z");
    EXPECT_TRUE(waitUntil([&] { return shownText(year) == page; })) << shownText(year);
    EXPECT_TRUE(waitUntil([&] { return fileIs(dayFile("## " + year + "\n\n" + page)); })) << file();
}

TEST_F(XServerTest, comesToTheFrontWhenItIsLaunchedAgain) {
    ASSERT_NO_FATAL_FAILURE(startProgram());
    ASSERT_TRUE(server->xdotool({"getactivewindow", "windowminimize", "--sync"}).has_value());
    ASSERT_TRUE(waitUntil([this] { return windows() == 0; }));
    testing::ChildProcess again({testing::builtProgram("TAVELO_TEST_TAVELO")}, environment());
    EXPECT_EQ(again.waitForExit(), 0) << again.errors();
    EXPECT_TRUE(waitUntil([this] { return focusedWindow().starts_with(today.fileName()); }));
    EXPECT_EQ(windows(), 1);
}

TEST_F(XServerTest, takesTheSamePictureAsOffScreenTwice) {
    writeFile("## 2019\n\nOld **words** 你好\n\n## " + year + "\n\n# Now\n");
    const auto pictureOn = [this](const char *platform) {
        auto variables = environment();
        variables["QT_QPA_PLATFORM"] = platform;
        variables["DIARY_SCREENSHOT"] = folder / "a.png";
        variables["DIARY_SCREENSHOT_DELAY"] = "0.5";
        testing::ChildProcess run({testing::builtProgram("TAVELO_TEST_TAVELO")}, variables);
        EXPECT_EQ(run.waitForExit(), 0) << run.errors();
        return QImage(QString::fromStdString(folder / "a.png")).convertToFormat(QImage::Format_RGB32);
    };
    const auto onScreen = pictureOn("xcb");
    EXPECT_EQ(onScreen.size(), QSize(1360, 840));
    EXPECT_EQ(pictureOn("xcb"), onScreen);
    EXPECT_EQ(pictureOn("offscreen"), onScreen);
}

TEST_F(XServerTest, reachesAnyDayByKeyboardAlone) {
    folder.write("v/07-04.md", "# 07-04\n\n## 2009\n\nA heron by the weir\n");
    folder.write("v/02-29.md", "# 02-29\n\n## 2024\n\nLeap\n");
    ASSERT_NO_FATAL_FAILURE(startProgram());
    const auto findAndOpen = [this](const std::string &word, const std::string &entry) {
        press("ctrl+f");
        ASSERT_TRUE(waitUntil([this] { return windows() == 2; }));
        type(word);
        ASSERT_TRUE(waitUntil([&] { return bus->tree().value_or("").find(entry) != std::string::npos; }));
        press("Down");
        press("Return");
        ASSERT_TRUE(waitUntil([this] { return windows() == 1; }));
    };
    findAndOpen("heron", "A heron by the weir");
    EXPECT_TRUE(waitUntil([this] { return shownText("2009") == "A heron by the weir"; }));
    EXPECT_TRUE(waitUntil([this] { return focusedWindow().starts_with("07-04.md"); })) << focusedWindow();

    press("ctrl+r");
    EXPECT_TRUE(waitUntil([this] {
        const auto title = focusedWindow();
        return title.starts_with("07-04.md") || title.starts_with("02-29.md");
    }));

    findAndOpen("leap", "Leap");
    ASSERT_TRUE(waitUntil([this] { return focusedWindow().starts_with("02-29.md"); })) << focusedWindow();
    press("alt+Right");
    ASSERT_TRUE(waitUntil([this] { return focusedWindow().starts_with("03-01.md"); })) << focusedWindow();
    // The overview starts on the day that is shown; the day before it is the leap day.
    press("ctrl+y");
    ASSERT_TRUE(waitUntil([this] { return windows() == 2; }));
    press("Left");
    press("Return");
    EXPECT_TRUE(waitUntil([this] { return focusedWindow().starts_with("02-29.md"); })) << focusedWindow();
    press("ctrl+t");
    EXPECT_TRUE(waitUntil([this] { return focusedWindow().starts_with(today.fileName()); }));
}

TEST_F(XServerTest, showsAPhotoThatIsClickedAndStepsToTheNext) {
    ASSERT_NO_FATAL_FAILURE(startProgram({{"DIARY_FAKE_PHOTOS", "3"}}));
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    ASSERT_TRUE(waitUntil([&] {
        const auto place = bus->ask({"place", "push button", "IMG_4101.HEIC 09:29"});
        return place && std::istringstream(*place) >> x >> y >> width >> height && height > 0;
    }));
    ASSERT_TRUE(server
                    ->xdotool({"mousemove", std::to_string(x + width / 2), std::to_string(y + height / 2),
                               "click", "1"})
                    .has_value());
    const auto showsPhoto = [this](const char *name) {
        return bus->tree().value_or("").find(name) != std::string::npos;
    };
    EXPECT_TRUE(waitUntil([&] { return showsPhoto("IMG_4101.HEIC, 2 / 3"); }));
    press("Right");
    EXPECT_TRUE(waitUntil([&] { return showsPhoto("IMG_4102.HEIC, 3 / 3"); }));
    press("Left", 2);
    EXPECT_TRUE(waitUntil([&] { return showsPhoto("IMG_4100.HEIC, 1 / 3"); }));
    press("Escape");
    EXPECT_TRUE(waitUntil([this] {
        std::istringstream lines(bus->tree().value_or(""));
        for (std::string line; std::getline(lines, line);) {
            if (line.find("\tNext Photo\t") != std::string::npos)
                return line.find(" showing ") == std::string::npos;
        }
        return true;
    }));
    type("After");
    EXPECT_TRUE(waitUntil([this] { return shownText(year) == "After"; }));
}

TEST_F(XServerTest, followsADayThatIsPressedOverTheAccessibilityBus) {
    ASSERT_NO_FATAL_FAILURE(startProgram());
    const auto tree = bus->tree().value_or("");
    // Some other day of the month than today.
    const std::string day = today.day == 15 ? " 16" : " 15";
    std::istringstream lines(tree);
    std::string name;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string depth;
        std::string role;
        std::string candidate;
        std::getline(fields, depth, '\t');
        std::getline(fields, role, '\t');
        std::getline(fields, candidate, '\t');
        if (role == "push button" && candidate.find(day) != std::string::npos)
            name = candidate;
    }
    ASSERT_FALSE(name.empty()) << tree;
    EXPECT_TRUE(bus->press("push button", name)) << name;
    const auto title = MonthDay{today.month, day == " 15" ? 15 : 16}.fileName();
    EXPECT_TRUE(waitUntil([&] { return focusedWindow().starts_with(title); })) << focusedWindow();
}

} // namespace
} // namespace diary

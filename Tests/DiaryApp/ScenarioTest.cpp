// SPDX-License-Identifier: MIT
#include "Support/ChildProcess.h"
#include "Support/ForkedTask.h"
#include "Support/RunProgram.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaitUntil.h"

#include <DiaryKit/DiaryDay.h>

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <system_error>
#include <vector>

#include <sys/mount.h>

namespace diary {
namespace {

using namespace std::chrono_literals;
using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::Not;

// The program itself, off screen, in a folder of its own.
class ScenarioTest : public ::testing::Test {
protected:
    using Variables = std::map<std::string, std::string>;

    Variables environmentWith(Variables variables) const {
        variables.insert({{"HOME", folder / "home"},
                          {"XDG_CONFIG_HOME", folder / "config"},
                          {"XDG_STATE_HOME", folder / "state"},
                          {"XDG_CACHE_HOME", folder / "cache"},
                          {"XDG_RUNTIME_DIR", folder.path()},
                          {"QT_QPA_PLATFORM", "offscreen"},
                          {"DIARY_ROOT", folder / "v"}});
        return variables;
    }

    // Takes a picture after a moment and ends.
    void run(Variables variables) const {
        variables.insert({{"DIARY_SCREENSHOT", folder / "a.png"}, {"DIARY_SCREENSHOT_DELAY", "0.05"}});
        const auto result = testing::runProgram({.program = testing::builtProgram("TAVELO_TEST_TAVELO"),
                                                 .arguments = {},
                                                 .environment = environmentWith(std::move(variables)),
                                                 .input = {}});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
    }

    QImage picture() const { return QImage(QString::fromStdString(folder / "a.png")); }

    // The first is the day before a run, the second the one after it.
    static auto isTodaysFile(const DiaryDay &before, const DiaryDay &after) {
        return AnyOf(ElementsAre(before.monthDay().fileName()), ElementsAre(after.monthDay().fileName()));
    }

    static std::string fileWith(std::string_view title, std::int64_t year, std::string_view text) {
        return "# " + std::string(title) + "\n\n## " + std::to_string(year) + "\n\n" + std::string(text) +
               "\n";
    }

    testing::TemporaryFolder folder;
};

TEST_F(ScenarioTest, typesSavesAndTakesAPicture) {
    const auto before = DiaryDay::today().year;
    run({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_TYPE_TEXT", "Hello, vault. 你好"}});
    const auto after = DiaryDay::today().year;
    EXPECT_THAT(folder.names("v"), ElementsAre("03-14.md"));
    EXPECT_THAT(folder.read("v/03-14.md"), AnyOf(fileWith("03-14", before, "Hello, vault. 你好"),
                                                 fileWith("03-14", after, "Hello, vault. 你好")));
    EXPECT_THAT(folder.names(), ElementsAre("a.png", "v"));
    EXPECT_EQ(picture().size(), QSize(1360, 840));
}

TEST_F(ScenarioTest, showsTheEntryInThePicture) {
    folder.write("v/03-14.md", "# 03-14\n\n## 2019\n\nHello, vault.\n");
    const Variables asked{{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_VIEW_YEAR", "2019"}};
    run(asked);
    const auto written = picture();
    run(asked);
    EXPECT_EQ(picture(), written);
    folder.write("v/03-14.md", "# 03-14\n\n## 2019\n\nHello, walls.\n");
    run(asked);
    EXPECT_NE(picture(), written);
}

TEST_F(ScenarioTest, writesNothingButThePictureWhenNothingIsTyped) {
    run({});
    EXPECT_THAT(folder.names(), ElementsAre("a.png"));
}

TEST_F(ScenarioTest, endsWithTheTextSavedWhenThePictureCannotBeWritten) {
    run({{"DIARY_SCREENSHOT", folder / "no such folder" / "a.png"},
         {"DIARY_VIEW_DAY", "03-14"},
         {"DIARY_VIEW_YEAR", "2019"},
         {"DIARY_TYPE_TEXT", "Saved"}});
    EXPECT_EQ(folder.read("v/03-14.md"), fileWith("03-14", 2019, "Saved"));
}

TEST_F(ScenarioTest, doesNothingWithoutAPicture) {
    testing::ChildProcess program({testing::builtProgram("TAVELO_TEST_TAVELO")},
                                  environmentWith({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_TYPE_TEXT", "No"}}));
    ASSERT_TRUE(testing::waitUntil([&] { return program.handles(SIGTERM); }));
    program.sendSignal(SIGTERM);
    EXPECT_EQ(program.waitForExit(), 0) << program.errors();
    EXPECT_THAT(folder.names(), Not(Contains("v")));
}

TEST_F(ScenarioTest, opensTheLeapDay) {
    run({{"DIARY_VIEW_DAY", "02-29"}, {"DIARY_VIEW_YEAR", "2024"}, {"DIARY_TYPE_TEXT", "Leap"}});
    EXPECT_THAT(folder.names("v"), ElementsAre("02-29.md"));
    EXPECT_EQ(folder.read("v/02-29.md"), fileWith("02-29", 2024, "Leap"));
}

TEST_F(ScenarioTest, typesIntoTheYearThatIsAskedFor) {
    folder.write("v/03-14.md", fileWith("03-14", 2019, "Old"));
    run({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_VIEW_YEAR", "2019"}, {"DIARY_TYPE_TEXT", " words"}});
    EXPECT_EQ(folder.read("v/03-14.md"), fileWith("03-14", 2019, "Old words"));
}

TEST_F(ScenarioTest, staysOnTodayWhenTheDayIsNone) {
    for (const auto *day : {"02-30", "13-01", "3-14", "03-14.md", "today", ""}) {
        const auto before = DiaryDay::today();
        run({{"DIARY_VIEW_DAY", day}, {"DIARY_VIEW_YEAR", "2024"}, {"DIARY_TYPE_TEXT", "Today"}});
        EXPECT_THAT(folder.names("v"), isTodaysFile(before, DiaryDay::today())) << day;
        std::filesystem::remove_all(folder / "v");
    }
}

TEST_F(ScenarioTest, staysInThisYearWhenTheYearIsNone) {
    for (const auto *year : {"20x4", "", "2024.5", "99999999999999999999"}) {
        const auto before = DiaryDay::today().year;
        run({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_VIEW_YEAR", year}, {"DIARY_TYPE_TEXT", "Now"}});
        const auto after = DiaryDay::today().year;
        EXPECT_THAT(folder.read("v/03-14.md"),
                    AnyOf(fileWith("03-14", before, "Now"), fileWith("03-14", after, "Now")))
            << year;
        std::filesystem::remove_all(folder / "v");
    }
}

TEST_F(ScenarioTest, typesNothingIntoAYearThatCannotBeWritten) {
    run({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_VIEW_YEAR", "12345"}, {"DIARY_TYPE_TEXT", "Lost"}});
    EXPECT_THAT(folder.names(), ElementsAre("a.png"));
}

TEST_F(ScenarioTest, takesTheUsualDelayWhenTheDelayIsNone) {
    for (const auto *delay : {"soon", "-1"}) {
        const auto start = std::chrono::steady_clock::now();
        run({{"DIARY_SCREENSHOT_DELAY", delay}});
        EXPECT_THAT(std::chrono::steady_clock::now() - start, Ge(2s)) << delay;
        EXPECT_FALSE(picture().isNull()) << delay;
    }
}

TEST_F(ScenarioTest, rescuesWhatCannotBeSavedAtTheEnd) {
    folder.write("v", "in the way");
    run({{"DIARY_VIEW_DAY", "03-14"},
         {"DIARY_VIEW_YEAR", "2019"},
         {"DIARY_TYPE_TEXT", "Hello, vault. 你好"}});
    EXPECT_THAT(folder.names("state/tavelo/rescued"), ElementsAre("2019-03-14.md"));
    EXPECT_EQ(folder.read("state/tavelo/rescued/2019-03-14.md"), "Hello, vault. 你好");
    EXPECT_EQ(folder.read("v"), "in the way");
}

TEST_F(ScenarioTest, takesAPictureOfAPanelToo) {
    folder.write("state/tavelo/rescued/2019-03-14.md", "Rescued");
    run({});
    EXPECT_FALSE(QImage(QString::fromStdString(folder / "a.png.panel.png")).isNull());
    EXPECT_FALSE(picture().isNull());
    std::filesystem::remove_all(folder / "state");
    std::filesystem::remove(folder / "a.png.panel.png");
    run({{"DIARY_VIEW_ONBOARD", "0"}});
    EXPECT_FALSE(QImage(QString::fromStdString(folder / "a.png.panel.png")).isNull());
}

TEST_F(ScenarioTest, asksNoQuestionUnlessToldTo) {
    std::filesystem::create_directories(folder / "home/Nextcloud");
    run({});
    EXPECT_FALSE(std::filesystem::exists(folder / "a.png.panel.png"));
}

TEST_F(ScenarioTest, looksDifferentInEachLanguageAndTheSameTwice) {
    folder.write("v/03-14.md", fileWith("03-14", 2019, "Old"));
    const auto pictureIn = [this](const std::string &code) {
        run({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_LANGUAGE", code}, {"DIARY_SCREENSHOT_DELAY", "0.4"}});
        return picture();
    };
    std::vector<QImage> pictures;
    for (const auto *code : {"en", "zh-Hans", "ja", "ko", "fr", "de", "es", "ru"}) {
        const auto taken = pictureIn(code);
        for (const auto &other : pictures)
            EXPECT_NE(taken, other) << code;
        pictures.push_back(taken);
    }
    EXPECT_EQ(pictureIn("ru"), pictures.back());
    EXPECT_EQ(pictureIn("xx"), pictures.front());
}

TEST_F(ScenarioTest, showsTheSearchWindowAndTheOverviewOnlyWhenToldTo) {
    folder.write("v/03-14.md", fileWith("03-14", 2019, "A heron"));
    const auto panel = [this] { return QImage(QString::fromStdString(folder / "a.png.panel.png")); };
    run({{"DIARY_VIEW_SEARCH", "true"}, {"DIARY_VIEW_YEARCAL", "1"}});
    EXPECT_TRUE(panel().isNull());
    run({{"DIARY_VIEW_SEARCH", "1"}, {"DIARY_SCREENSHOT_DELAY", "0.6"}});
    const auto empty = panel();
    ASSERT_FALSE(empty.isNull());
    run({{"DIARY_VIEW_SEARCH", "1"}, {"DIARY_SEARCH_QUERY", "heron"}, {"DIARY_SCREENSHOT_DELAY", "0.6"}});
    EXPECT_NE(panel(), empty);
}

TEST_F(ScenarioTest, takesAPictureOfTheOpenedPhotoToo) {
    // Without the bar, whose buttons wait for a file that is written in the background.
    const auto photoOpenedAt = [this](const char *index) {
        std::filesystem::remove(folder / "a.png.ql.png");
        run({{"DIARY_FAKE_PHOTOS", "2"}, {"DIARY_OPEN_PHOTO", index}, {"DIARY_SCREENSHOT_DELAY", "1.6"}});
        const QImage preview(QString::fromStdString(folder / "a.png.ql.png"));
        return preview.copy(preview.rect().adjusted(0, 50, 0, 0));
    };
    const auto first = photoOpenedAt("0");
    const auto second = photoOpenedAt("1");
    ASSERT_FALSE(first.isNull());
    EXPECT_LT(first.width(), picture().width());
    EXPECT_NE(first, second);
    EXPECT_EQ(photoOpenedAt("7"), second);
    EXPECT_EQ(photoOpenedAt("-3"), first);
    EXPECT_TRUE(photoOpenedAt("first").isNull());
}

TEST_F(ScenarioTest, takesNoPictureOfAPhotoPreviewWhereThereAreNoPhotos) {
    for (const auto *index : {"0", "-1", "first", ""})
        run({{"DIARY_OPEN_PHOTO", index}, {"DIARY_SCREENSHOT_DELAY", "1.1"}});
    EXPECT_THAT(folder.names(), Contains("a.png"));
    EXPECT_THAT(folder.names(), Not(Contains("a.png.ql.png")));
}

TEST_F(ScenarioTest, showsTheSettingsOnlyWhenToldTo) {
    const auto settings = [this] { return QImage(QString::fromStdString(folder / "a.png.settings.png")); };
    run({{"DIARY_VIEW_SETTINGS", "true"}});
    EXPECT_TRUE(settings().isNull());
    run({{"DIARY_VIEW_SETTINGS", "1"}});
    EXPECT_EQ(settings().width(), 540);
    EXPECT_GT(settings().height(), 300);
    EXPECT_EQ(picture().size(), QSize(1360, 840));
}

TEST_F(ScenarioTest, showsTheFileAsItStands) {
    folder.write("v/03-14.md", fileWith("03-14", 2019, "Old"));
    run({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_VIEW_SOURCE", "true"}});
    const auto page = picture();
    run({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_VIEW_SOURCE", "1"}});
    EXPECT_NE(picture(), page);
}

TEST_F(ScenarioTest, fillsTheScreenWhenToldTo) {
    run({{"DIARY_FULLSCREEN", "1"}});
    const auto filled = picture().size();
    run({{"DIARY_FULLSCREEN", "true"}});
    EXPECT_EQ(picture().size(), QSize(1360, 840));
    EXPECT_NE(filled, QSize(1360, 840));
}

// A disk without room for one more byte, at the end of the program, in mounts of this test's own.
TEST_F(ScenarioTest, rescuesFromAFullDiskAndSaysSoAtTheNextStart) {
    constexpr const char *skipMark = "cannot mount: ";
    folder.write("v/.keep", "");
    const auto report = testing::reportOfFork([&]() -> std::string {
        if (const auto why = testing::ownMounts(); !why.empty())
            return skipMark + why;
        if (::mount("tmpfs", (folder / "v").c_str(), "tmpfs", 0, "size=64k") < 0)
            return skipMark + std::system_category().message(errno);
        folder.write("v/03-14.md", fileWith("03-14", 2018, "Old"));
        std::ofstream(folder / "v/filler") << std::string(60 * 1024, 'x') << std::flush;
        run({{"DIARY_VIEW_DAY", "03-14"}, {"DIARY_VIEW_YEAR", "2019"}, {"DIARY_TYPE_TEXT", "No room"}});
        return folder.read("v/03-14.md") == fileWith("03-14", 2018, "Old") ? "old file" : "another file";
    });
    if (report.starts_with(skipMark))
        GTEST_SKIP() << report;
    EXPECT_EQ(report, "old file");
    EXPECT_EQ(folder.read("state/tavelo/rescued/2019-03-14.md"), "No room");
    std::filesystem::remove(folder / "a.png.panel.png");
    run({});
    EXPECT_FALSE(QImage(QString::fromStdString(folder / "a.png.panel.png")).isNull());
}

class ScenarioSignalTest : public ScenarioTest, public ::testing::WithParamInterface<int> {
protected:
    // The signal arrives while the text is typed, or right after: the handlers are put on before, and the
    // event loop comes to the signal only when the typing is done.
    int exitCodeOfInterruptedTyping() const {
        testing::ChildProcess program({testing::builtProgram("TAVELO_TEST_TAVELO")},
                                      environmentWith({{"DIARY_SCREENSHOT", folder / "a.png"},
                                                       {"DIARY_SCREENSHOT_DELAY", "3600"},
                                                       {"DIARY_VIEW_DAY", "03-14"},
                                                       {"DIARY_VIEW_YEAR", "2019"},
                                                       {"DIARY_TYPE_TEXT", "Unsaved wor"}}));
        EXPECT_TRUE(testing::waitUntil([&] { return program.handles(GetParam()); }));
        program.sendSignal(GetParam());
        const auto exitCode = program.waitForExit();
        EXPECT_TRUE(exitCode.has_value()) << "still running";
        return exitCode.value_or(-1);
    }
};

TEST_P(ScenarioSignalTest, savesTheTextAndEnds) {
    EXPECT_EQ(exitCodeOfInterruptedTyping(), 0);
    EXPECT_EQ(folder.read("v/03-14.md"), fileWith("03-14", 2019, "Unsaved wor"));
    EXPECT_THAT(folder.names(), ElementsAre("v"));
}

TEST_P(ScenarioSignalTest, rescuesTheTextThatCannotBeSaved) {
    folder.write("v/03-14.md", fileWith("03-14", 2019, ""));
    std::filesystem::permissions(folder / "v/03-14.md", std::filesystem::perms::owner_read);
    EXPECT_EQ(exitCodeOfInterruptedTyping(), 0);
    EXPECT_EQ(folder.read("v/03-14.md"), fileWith("03-14", 2019, ""));
    EXPECT_THAT(folder.names("state/tavelo/rescued"), ElementsAre("2019-03-14.md"));
    EXPECT_EQ(folder.read("state/tavelo/rescued/2019-03-14.md"), "Unsaved wor");
}

INSTANTIATE_TEST_SUITE_P(, ScenarioSignalTest, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST(Program, tellsItsVersionAndItsUse) {
    const auto program = testing::builtProgram("TAVELO_TEST_TAVELO");
    const auto version =
        testing::runProgram({.program = program, .arguments = {"--version"}, .environment = {}, .input = {}});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_THAT(version.output, ::testing::MatchesRegex("tavelo [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    const auto help =
        testing::runProgram({.program = program, .arguments = {"--help"}, .environment = {}, .input = {}});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.output, ::testing::HasSubstr("DIARY_ROOT"));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "InstalledTree.h"

#include <DiaryApp/DesktopActivation.h>

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

namespace diary {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string id = DesktopActivation::applicationId;

class InstallationTest : public ::testing::Test {
protected:
    // What the installed window looks like on a day in the past.
    QImage picture(const std::string &language) const {
        const auto path = tree.folder() / "a.png";
        std::filesystem::remove(path);
        const auto result = tree.run("tavelo", {},
                                     {{"DIARY_SCREENSHOT", path},
                                      {"DIARY_SCREENSHOT_DELAY", "0.4"},
                                      {"DIARY_VIEW_DAY", "03-14"},
                                      {"DIARY_LANGUAGE", language}});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return QImage(QString::fromStdString(path));
    }

    testing::InstalledTree tree;
};

TEST_F(InstallationTest, putsEachFileInItsPlace) {
    std::set<std::string> expected = {
        "bin/tavelo",
        "bin/tavelo-cli",
        "share/applications/" + id + ".desktop",
        "share/bash-completion/completions/tavelo",
        "share/bash-completion/completions/tavelo-cli",
        "share/dbus-1/services/" + id + ".service",
        "share/doc/tavelo/LICENSE",
        "share/fish/vendor_completions.d/tavelo-cli.fish",
        "share/fish/vendor_completions.d/tavelo.fish",
        "share/icons/hicolor/scalable/apps/" + id + ".svg",
        "share/icons/hicolor/symbolic/apps/" + id + "-symbolic.svg",
        "share/man/man1/tavelo-cli.1",
        "share/man/man1/tavelo.1",
        "share/metainfo/" + id + ".metainfo.xml",
        "share/zsh/site-functions/_tavelo",
        "share/zsh/site-functions/_tavelo-cli",
    };
    for (const std::string language : {"en", "zh-Hans", "ja", "ko", "fr", "de", "es", "ru"})
        expected.insert("share/tavelo/Diary_DiaryApp.bundle/" + language + ".lproj/Localizable.qm");
    if (testing::buildHas("icons")) {
        for (const std::string size : {"16", "22", "24", "32", "48", "64", "128", "256", "512"})
            expected.insert("share/icons/hicolor/" + size + "x" + size + "/apps/" + id + ".png");
    }
    for (const std::string module : {"tavelo-photos", "tavelo-updates"}) {
        if (testing::buildHas(module))
            expected.insert("lib/tavelo/modules/" + module + ".so");
    }
    EXPECT_EQ(tree.files(), expected);
}

TEST_F(InstallationTest, makesProgramsThatStart) {
    const auto window = tree.run("tavelo", {"--self-test"});
    EXPECT_EQ(window.exitCode, 0) << window.errors;
    EXPECT_THAT(window.output, StartsWith("ready "));
    const auto terminal = tree.run("tavelo-cli", {"append", "Written", "where", "it", "was", "installed"});
    EXPECT_EQ(terminal.exitCode, 0) << terminal.errors;
    EXPECT_THAT(tree.run("tavelo-cli", {"show"}).output, HasSubstr("Written where it was installed"));
}

TEST_F(InstallationTest, showsTheTextsThatWereInstalled) {
    const auto russian = picture("ru");
    EXPECT_NE(russian, picture("en"));
    // Months and weekdays would still be Russian.
    std::filesystem::remove_all(tree / "share/tavelo");
    EXPECT_NE(picture("ru"), russian);
}

TEST_F(InstallationTest, mayBeMoved) {
    const auto russian = picture("ru");
    tree.moveTo("another place");
    EXPECT_EQ(picture("ru"), russian);
    EXPECT_EQ(tree.run("tavelo", {"--self-test"}).exitCode, 0);
    EXPECT_EQ(tree.run("tavelo-cli", {"--version"}).exitCode, 0);
}

TEST_F(InstallationTest, namesTheInstalledProgramToTheSessionBus) {
    EXPECT_EQ(tree.read("share/dbus-1/services/" + id + ".service"),
              "[D-BUS Service]\nName=" + id + "\nExec=" + (tree / "bin/tavelo").string() + "\n");
}

} // namespace
} // namespace diary

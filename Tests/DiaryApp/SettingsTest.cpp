// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/Settings.h>

#include <QFontDatabase>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

namespace diary {
namespace {

namespace fs = std::filesystem;

class SettingsTest : public ::testing::Test {
protected:
    void store(const std::string &json) { folder.write("settings.json", json); }

    testing::TemporaryFolder folder;
    testing::ScopedEnvironment home{"HOME", folder / "home"};
    testing::ScopedEnvironment config{"XDG_CONFIG_HOME", folder / "config"};
    Settings settings{Defaults(folder / "settings.json")};
    const fs::path drive = folder / "home/Nextcloud";
};

TEST_F(SettingsTest, hasItsFallbacksWhenNothingWasEverStored) {
    EXPECT_EQ(settings.editorFontSize(), 16.5);
    EXPECT_TRUE(settings.showGapYears());
    EXPECT_TRUE(settings.showPhotos());
    EXPECT_TRUE(settings.autoUpdate());
    EXPECT_EQ(settings.lastUpdateCheck(), 0);
    EXPECT_EQ(settings.bodyFontFamily(), std::nullopt);
    EXPECT_EQ(settings.languageOverride(), std::nullopt);
    EXPECT_EQ(settings.vaultPath(), std::nullopt);
    EXPECT_FALSE(fs::exists(folder / "settings.json"));
}

TEST_F(SettingsTest, hasItsFallbacksWhenAValueIsOfAnotherType) {
    store(R"({"showPhotos": "no", "showGapYears": 0, "autoUpdate": null, "editorFontSize": "19",
              "bodyFontFamily": 1, "languageOverride": true, "vaultPath": 3, "lastUpdateCheck": "now"})");
    EXPECT_TRUE(settings.showPhotos());
    EXPECT_TRUE(settings.showGapYears());
    EXPECT_TRUE(settings.autoUpdate());
    EXPECT_EQ(settings.editorFontSize(), 16.5);
    EXPECT_EQ(settings.bodyFontFamily(), std::nullopt);
    EXPECT_EQ(settings.languageOverride(), std::nullopt);
    EXPECT_EQ(settings.vaultPath(), std::nullopt);
    EXPECT_EQ(settings.lastUpdateCheck(), 0);
}

TEST_F(SettingsTest, hasItsFallbacksWhenTheFileIsDamaged) {
    store("{\"showPhotos\": fal");
    EXPECT_TRUE(settings.showPhotos());
    settings.setShowPhotos(false);
    EXPECT_FALSE(settings.showPhotos());
    EXPECT_EQ(folder.read("settings.json.bad"), "{\"showPhotos\": fal");
}

TEST_F(SettingsTest, readsTheNamesAndTypesOfTheFile) {
    store(R"({"showPhotos": false, "showGapYears": false, "autoUpdate": false, "editorFontSize": 19,
              "bodyFontFamily": "Charter", "languageOverride": "ja", "vaultPath": "/d", "lastUpdateCheck": 7})");
    EXPECT_FALSE(settings.showPhotos());
    EXPECT_FALSE(settings.showGapYears());
    EXPECT_FALSE(settings.autoUpdate());
    EXPECT_EQ(settings.editorFontSize(), 19);
    EXPECT_EQ(settings.bodyFontFamily(), QStringLiteral("Charter"));
    EXPECT_EQ(settings.languageOverride(), QStringLiteral("ja"));
    EXPECT_EQ(settings.vaultPath(), "/d");
    EXPECT_EQ(settings.lastUpdateCheck(), 7);
}

TEST_F(SettingsTest, givesBackWhatWasSet) {
    settings.setEditorFontSize(14.5);
    settings.setShowGapYears(false);
    settings.setShowPhotos(false);
    settings.setAutoUpdate(false);
    settings.setLastUpdateCheck(1763700000.25);
    settings.setBodyFontFamily(QStringLiteral("LXGW WenKai"));
    settings.setVaultPath(folder / "日记");
    const Settings again{Defaults(folder / "settings.json")};
    EXPECT_EQ(again.editorFontSize(), 14.5);
    EXPECT_FALSE(again.showGapYears());
    EXPECT_FALSE(again.showPhotos());
    EXPECT_FALSE(again.autoUpdate());
    EXPECT_EQ(again.lastUpdateCheck(), 1763700000.25);
    EXPECT_EQ(again.bodyFontFamily(), QStringLiteral("LXGW WenKai"));
    EXPECT_EQ(again.vaultPath(), folder / "日记");
}

TEST_F(SettingsTest, seesWhatAnotherProgramWrites) {
    settings.setShowPhotos(false);
    Settings{Defaults(folder / "settings.json")}.setShowPhotos(true);
    EXPECT_TRUE(settings.showPhotos());
}

TEST_F(SettingsTest, removesAChoiceRatherThanStoringAnEmptyOne) {
    settings.setLanguageOverride(QStringLiteral("fr"));
    settings.setBodyFontFamily(QStringLiteral("Georgia"));
    settings.setVaultPath("/d");
    settings.setLanguageOverride(std::nullopt);
    settings.setBodyFontFamily(std::nullopt);
    settings.setVaultPath(std::nullopt);
    EXPECT_EQ(folder.read("settings.json").find("languageOverride"), std::string::npos);
    EXPECT_EQ(settings.languageOverride(), std::nullopt);
    EXPECT_EQ(settings.bodyFontFamily(), std::nullopt);
    EXPECT_EQ(settings.vaultPath(), std::nullopt);
}

TEST_F(SettingsTest, keepsTheFoldersOfPhotosInTheirOrder) {
    EXPECT_THAT(settings.photoFolders(), ::testing::IsEmpty());
    settings.setPhotoFolders({"/b", folder / "写真"});
    EXPECT_THAT(Settings{Defaults(folder / "settings.json")}.photoFolders(),
                ::testing::ElementsAre("/b", folder / "写真"));
    settings.setPhotoFolders({});
    EXPECT_THAT(settings.photoFolders(), ::testing::IsEmpty());
    EXPECT_EQ(folder.read("settings.json").find("photoFolders"), std::string::npos);
    store(R"({"photoFolders": "/b"})");
    EXPECT_THAT(settings.photoFolders(), ::testing::IsEmpty());
}

TEST_F(SettingsTest, takesNoFontSizeThatCannotBeShown) {
    for (const double size : {0.0, -3.0, 3.9, 288.5, 1e300, -std::numeric_limits<double>::infinity()}) {
        settings.setEditorFontSize(size);
        EXPECT_EQ(settings.editorFontSize(), 16.5) << size;
    }
}

TEST_F(SettingsTest, needsNoQuestionOnAMachineWithoutACloudDrive) {
    EXPECT_FALSE(settings.needsOnboarding());
}

TEST_F(SettingsTest, needsTheQuestionWhenThereIsADriveAndNoDiaryAnywhere) {
    fs::create_directories(drive);
    EXPECT_TRUE(settings.needsOnboarding());
    folder.write("home/Documents/Diary/notes.txt", "");
    EXPECT_TRUE(settings.needsOnboarding());
}

TEST_F(SettingsTest, needsNoQuestionWhenThereIsADiaryAlready) {
    fs::create_directories(drive);
    folder.write("home/Documents/Diary/03-14.md", "");
    EXPECT_FALSE(settings.needsOnboarding());
    fs::remove_all(folder / "home/Documents");
    folder.write("home/Nextcloud/Diary/03-14.md", "");
    EXPECT_FALSE(settings.needsOnboarding());
}

TEST_F(SettingsTest, needsNoQuestionWhenAFolderWasChosen) {
    fs::create_directories(drive);
    settings.setVaultPath("/d");
    EXPECT_FALSE(settings.needsOnboarding());
}

TEST_F(SettingsTest, needsNoQuestionTwice) {
    fs::create_directories(drive);
    settings.setHasOnboarded(true);
    EXPECT_FALSE(settings.needsOnboarding());
    settings.setHasOnboarded(false);
    EXPECT_TRUE(settings.needsOnboarding());
    store(R"({"hasOnboarded": "yes"})");
    EXPECT_TRUE(settings.needsOnboarding());
}

TEST(Settings, offersTheInstalledBodyFontsInTheirOrder) {
    EXPECT_EQ(Settings::bodyFontChoices().size(), 13);
    const auto installed = QFontDatabase::families();
    QStringList expected;
    for (const auto &family : Settings::bodyFontChoices()) {
        if (installed.contains(family))
            expected += family;
    }
    EXPECT_EQ(Settings::availableBodyFonts(), expected);
}

} // namespace
} // namespace diary

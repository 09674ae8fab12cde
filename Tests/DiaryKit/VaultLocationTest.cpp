// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryKit/Defaults.h>
#include <DiaryKit/VaultLocation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using testing::ScopedEnvironment;
using testing::TemporaryFolder;

class VaultLocationTest : public ::testing::Test {
protected:
    TemporaryFolder m_home;
    ScopedEnvironment m_homeVariable{"HOME", m_home.path().string()};
    ScopedEnvironment m_config{"XDG_CONFIG_HOME", std::nullopt};
    ScopedEnvironment m_root{"DIARY_ROOT", std::nullopt};
    Defaults m_defaults;

    fs::path m_local = m_home / "Documents/Diary";
    fs::path m_appleDrive = m_home / "Library/Mobile Documents/com~apple~CloudDocs";
};

TEST_F(VaultLocationTest, localVaultIsInTheDocumentsFolder) {
    EXPECT_EQ(VaultLocation::localVault(), m_local);
    m_home.write(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
    EXPECT_EQ(VaultLocation::localVault(), m_home / "Dokumente/Diary");
}

TEST_F(VaultLocationTest, knowsNoCloudDriveInAnEmptyHome) {
    EXPECT_EQ(VaultLocation::cloudDriveRoot(), std::nullopt);
    EXPECT_EQ(VaultLocation::cloudVault(), std::nullopt);
}

TEST_F(VaultLocationTest, takesTheFirstCloudDriveThereIs) {
    // From the last to the first, so that each newcomer comes before those that are there.
    for (const auto &drive :
         {m_home / "Sync", m_home / "Seafile", m_home / "Dropbox", m_home / "Nextcloud", m_appleDrive}) {
        fs::create_directories(drive);
        EXPECT_EQ(VaultLocation::cloudDriveRoot(), drive);
        EXPECT_EQ(VaultLocation::cloudVault(), drive / "Diary");
        EXPECT_FALSE(fs::exists(drive / "Diary"));
    }
}

TEST_F(VaultLocationTest, takesNoPlainFileForACloudDrive) {
    m_home.write("Nextcloud", "");
    fs::create_directory(m_home / "Seafile");
    EXPECT_EQ(VaultLocation::cloudDriveRoot(), m_home / "Seafile");
}

TEST_F(VaultLocationTest, followsALinkToACloudDrive) {
    fs::create_directory(m_home / "disk");
    fs::create_directory_symlink("disk", m_home / "Dropbox");
    EXPECT_EQ(VaultLocation::cloudDriveRoot(), m_home / "Dropbox");
}

TEST_F(VaultLocationTest, tellsDiaryFilesByTheirNames) {
    struct Row {
        const char *name;
        bool counts;
    };
    const Row rows[] = {
        {"03-14.md", true},   {"notes.md", true},   {".md", true},
        {".hidden.md", true}, {"notes.txt", false}, {"03-14.MD", false},
        {"03-14.md~", false}, {"md", false},        {".03-14.md.icloud", false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        EXPECT_FALSE(VaultLocation::hasDiaryFiles(folder.path()));
        folder.write("other.txt", "");
        folder.write(row.name, "");
        EXPECT_EQ(VaultLocation::hasDiaryFiles(folder.path()), row.counts);
    }
}

TEST_F(VaultLocationTest, countsAnEntryOfAnyKindButLooksIntoNoFolder) {
    fs::create_directories(m_home / "folder.md/empty");
    EXPECT_TRUE(VaultLocation::hasDiaryFiles(m_home.path()));
    EXPECT_FALSE(VaultLocation::hasDiaryFiles(m_home / "folder.md"));
    m_home.write("folder.md/empty/03-14.md", "");
    EXPECT_FALSE(VaultLocation::hasDiaryFiles(m_home / "folder.md"));
}

TEST_F(VaultLocationTest, findsNoDiaryFilesWhereNothingCanBeListed) {
    EXPECT_FALSE(VaultLocation::hasDiaryFiles(m_home / "missing"));
    m_home.write("file.md", "");
    EXPECT_FALSE(VaultLocation::hasDiaryFiles(m_home / "file.md"));
    EXPECT_FALSE(VaultLocation::hasDiaryFiles({}));

    m_home.write("closed/03-14.md", "");
    fs::permissions(m_home / "closed", fs::perms::none);
    EXPECT_EQ(VaultLocation::hasDiaryFiles(m_home / "closed"),
              ::access((m_home / "closed").c_str(), R_OK) == 0);
    fs::permissions(m_home / "closed", fs::perms::owner_all);
}

TEST_F(VaultLocationTest, defaultsToTheLocalVaultWithoutACloudDrive) {
    EXPECT_EQ(VaultLocation::defaultVault(), m_local);
    m_home.write("Documents/Diary/03-14.md", "");
    EXPECT_EQ(VaultLocation::defaultVault(), m_local);
}

TEST_F(VaultLocationTest, defaultsToTheCloudVaultUnlessThereIsALocalDiary) {
    fs::create_directories(m_home / "Nextcloud");
    EXPECT_EQ(VaultLocation::defaultVault(), m_home / "Nextcloud/Diary");
    m_home.write("Documents/Diary/notes.txt", "");
    EXPECT_EQ(VaultLocation::defaultVault(), m_home / "Nextcloud/Diary");
    m_home.write("Nextcloud/Diary/03-14.md", "");
    m_home.write("Documents/Diary/03-14.md", "");
    EXPECT_EQ(VaultLocation::defaultVault(), m_local);
}

TEST_F(VaultLocationTest, choosesTheEnvironmentThenTheSettingThenTheDefault) {
    EXPECT_EQ(VaultLocation::chosen(m_defaults), m_local);
    m_defaults.set("vaultPath", "/srv/diary");
    EXPECT_EQ(VaultLocation::chosen(m_defaults), "/srv/diary");
    {
        const ScopedEnvironment root("DIARY_ROOT", "~/as/../given");
        EXPECT_EQ(VaultLocation::chosen(m_defaults).string(), "~/as/../given");
    }
    m_defaults.set("vaultPath", true);
    EXPECT_EQ(VaultLocation::chosen(m_defaults), m_local);
}

TEST_F(VaultLocationTest, choosesTheEnvironmentEvenWhenItIsEmpty) {
    m_defaults.set("vaultPath", "/srv/diary");
    const ScopedEnvironment root("DIARY_ROOT", "");
    EXPECT_EQ(VaultLocation::chosen(m_defaults), fs::path());
}

} // namespace

} // namespace diary

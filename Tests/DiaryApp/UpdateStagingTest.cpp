// SPDX-License-Identifier: MIT
#include "Support/ForkedTask.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/UpdateStaging.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <sys/mount.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using Outcome = UpdateStaging::Outcome;

class UpdateStagingTest : public ::testing::Test {
protected:
    testing::TemporaryFolder folder;
    UpdateStaging staging{folder / "data/Tavelo/Updates"};
};

TEST_F(UpdateStagingTest, makesAFolderThatOnlyTheUserMayEnter) {
    staging.prepare();
    EXPECT_EQ(fs::status(staging.folder()).permissions(), fs::perms::owner_all);
    EXPECT_TRUE(fs::is_empty(staging.folder()));
}

TEST_F(UpdateStagingTest, makesTheFolderAnew) {
    folder.write("data/Tavelo/Updates/a/b/c", "old");
    fs::permissions(staging.folder(), fs::perms::all);
    staging.prepare();
    EXPECT_TRUE(fs::is_empty(staging.folder()));
    EXPECT_EQ(fs::status(staging.folder()).permissions(), fs::perms::owner_all);
}

TEST_F(UpdateStagingTest, removesNothingThatALinkLeadsTo) {
    folder.write("mine/diary.md", "text");
    folder.write("data/Tavelo/Updates/x/y", "");
    fs::create_directory_symlink(folder / "mine", staging.folder() / "x/link");
    fs::create_symlink(folder / "mine/diary.md", staging.folder() / "file");
    staging.remove();
    EXPECT_FALSE(fs::exists(staging.folder()));
    EXPECT_EQ(folder.read("mine/diary.md"), "text");
}

TEST_F(UpdateStagingTest, removesALinkInTheFoldersPlaceAndNotWhereItLeads) {
    folder.write("mine/diary.md", "text");
    fs::create_directories(staging.folder().parent_path());
    fs::create_directory_symlink(folder / "mine", staging.folder());
    staging.prepare();
    EXPECT_FALSE(fs::is_symlink(staging.folder()));
    EXPECT_EQ(folder.read("mine/diary.md"), "text");
}

TEST_F(UpdateStagingTest, removesFoldersThatTheirOwnUserMayNotChange) {
    folder.write("data/Tavelo/Updates/App.app/a/b", "x");
    folder.write("mine/diary.md", "text");
    fs::create_directory_symlink(folder / "mine", staging.folder() / "App.app/a/link");
    fs::permissions(folder / "mine", fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(staging.folder() / "App.app/a", fs::perms::none);
    fs::permissions(staging.folder() / "App.app", fs::perms::owner_read);
    EXPECT_EQ(testing::reportOfFork([&] {
                  // Permissions mean nothing to the superuser.
                  if (::getuid() == 0) {
                      fs::permissions(folder.path(), fs::perms::all);
                      for (const auto &path :
                           {folder / "data", folder / "data/Tavelo", staging.folder(),
                            staging.folder() / "App.app", staging.folder() / "App.app/a"}) {
                          if (::chown(path.c_str(), 65534, 65534) != 0)
                              return std::string("chown");
                      }
                      if (::setgid(65534) != 0 || ::setuid(65534) != 0)
                          return std::string("setuid");
                  }
                  staging.remove();
                  return std::string(fs::exists(staging.folder()) ? "there" : "gone");
              }),
              "gone");
    EXPECT_EQ(fs::status(folder / "mine").permissions(), fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(folder / "mine", fs::perms::owner_all);
}

TEST_F(UpdateStagingTest, removesNothingWhenThereIsNothing) {
    EXPECT_NO_THROW(staging.remove());
    EXPECT_FALSE(fs::exists(folder / "data"));
}

TEST_F(UpdateStagingTest, saysWhyTheFolderCannotBeMade) {
    folder.write("data/Tavelo", "in the way");
    EXPECT_THROW(staging.prepare(), fs::filesystem_error);
    EXPECT_THROW(staging.claim(), fs::filesystem_error);
}

TEST_F(UpdateStagingTest, isClaimedByOneAtATime) {
    auto first = staging.claim();
    ASSERT_TRUE(first);
    EXPECT_TRUE(*first);
    EXPECT_FALSE(staging.claim());
    EXPECT_EQ(testing::reportOfFork([&] { return staging.claim() ? "claimed" : "refused"; }), "refused");
    first.reset();
    EXPECT_TRUE(staging.claim());
}

TEST_F(UpdateStagingTest, staysClaimedWhenTheFolderGoes) {
    const auto claim = staging.claim();
    staging.prepare();
    staging.remove();
    EXPECT_FALSE(staging.claim());
}

TEST_F(UpdateStagingTest, findsTheFirstApplication) {
    for (const char *name : {"update.zip", "README/x", "app/x", "b.app/x", "a.apps/x", ".app/x", "c.app/x"})
        folder.write(staging.folder() / name, "");
    EXPECT_EQ(staging.application(), staging.folder() / "b.app");
}

TEST_F(UpdateStagingTest, saysThatThereIsNoApplication) {
    staging.prepare();
    try {
        staging.application();
        ADD_FAILURE() << "found one";
    } catch (const fs::filesystem_error &error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
}

TEST_F(UpdateStagingTest, takesNoFileOrLinkForAnApplication) {
    staging.prepare();
    fs::create_directory_symlink("/", staging.folder() / "Tavelo.app");
    EXPECT_THROW(staging.application(), fs::filesystem_error);
    fs::remove(staging.folder() / "Tavelo.app");
    folder.write(staging.folder() / "Tavelo.app", "");
    EXPECT_THROW(staging.application(), fs::filesystem_error);
}

TEST_F(UpdateStagingTest, readsTheWordOfTheInstallScript) {
    EXPECT_EQ(UpdateStaging::parseOutcome("installed 1.4.2\n"),
              (Outcome{.kind = Outcome::Kind::Installed, .version = "1.4.2", .reason = ""}));
    EXPECT_EQ(UpdateStaging::parseOutcome("kept 1.4.2 the disk is full\n"),
              (Outcome{.kind = Outcome::Kind::Kept, .version = "1.4.2", .reason = "the disk is full"}));
    EXPECT_EQ(UpdateStaging::parseOutcome("kept 1.4.2"),
              (Outcome{.kind = Outcome::Kind::Kept, .version = "1.4.2", .reason = ""}));
    for (const char *line : {"", "\n", "installed", "installed \n", "kept  reason", "removed 1.4.2"})
        EXPECT_EQ(UpdateStaging::parseOutcome(line), std::nullopt) << line;
}

TEST_F(UpdateStagingTest, tellsTheOutcomeOnce) {
    EXPECT_EQ(staging.takeOutcome(), std::nullopt);
    folder.write("data/Tavelo/update-outcome", "installed 2.0\n");
    const auto outcome = staging.takeOutcome();
    ASSERT_TRUE(outcome);
    EXPECT_EQ(outcome->version, "2.0");
    EXPECT_EQ(staging.takeOutcome(), std::nullopt);
    EXPECT_FALSE(fs::exists(folder / "data/Tavelo/update-outcome"));
}

TEST_F(UpdateStagingTest, tellsNothingThatTheInstallScriptDidNotWrite) {
    folder.write("data/Tavelo/update-outcome", "kept 2.0 " + std::string(5000, 'x'));
    EXPECT_EQ(staging.takeOutcome(), std::nullopt);
    EXPECT_FALSE(fs::exists(folder / "data/Tavelo/update-outcome"));
    folder.write("elsewhere", "installed 2.0\n");
    fs::create_symlink(folder / "elsewhere", folder / "data/Tavelo/update-outcome");
    EXPECT_EQ(staging.takeOutcome(), std::nullopt);
    fs::remove(folder / "data/Tavelo/update-outcome");
    fs::create_directory(folder / "data/Tavelo/update-outcome");
    EXPECT_EQ(staging.takeOutcome(), std::nullopt);
}

TEST(UpdateDigest, knowsBytesByTheirDigest) {
    const std::atomic<bool> goOn = false;
    EXPECT_TRUE(hasDigest("", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", goOn));
    EXPECT_TRUE(hasDigest("abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", goOn));
    EXPECT_FALSE(hasDigest("abd", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", goOn));
    // A million times "a" and so several pieces.
    EXPECT_TRUE(hasDigest(std::string(1'000'000, 'a'),
                          "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0", goOn));
    EXPECT_FALSE(hasDigest(std::string(3'000'000, 'a'),
                           "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0", goOn));
}

TEST(UpdateDigest, knowsNothingOnceItWasStopped) {
    const std::atomic<bool> stop = true;
    EXPECT_FALSE(hasDigest("abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", stop));
}

} // namespace
} // namespace diary

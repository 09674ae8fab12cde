// SPDX-License-Identifier: MIT
#include "Support/ForkedTask.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/VaultClaim.h>

#include <QTest>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace diary {
namespace {

namespace fs = std::filesystem;

class VaultClaimTest : public ::testing::Test {
protected:
    std::unique_ptr<VaultClaim> take(const fs::path &path) {
        auto claim = VaultClaim::take(path);
        if (claim)
            claim->onKnock = [this](const LaunchRequest &request) { requests.push_back(request); };
        return claim;
    }
    bool heard(std::size_t knocks) const {
        return QTest::qWaitFor([&] { return requests.size() >= knocks; });
    }

    static LaunchRequest withToken(const QByteArray &token) {
        return {.action = LaunchAction::Show, .activationToken = token};
    }

    testing::TemporaryFolder folder;
    testing::ScopedEnvironment runtime{"XDG_RUNTIME_DIR", folder / "run"};
    const fs::path vault = folder / "vault";
    std::vector<LaunchRequest> requests;
};

TEST_F(VaultClaimTest, isHeldOnceUntilItIsLetGo) {
    auto claim = take(vault);
    ASSERT_NE(claim, nullptr);
    EXPECT_EQ(take(vault), nullptr);
    claim.reset();
    EXPECT_NE(take(vault), nullptr);
}

TEST_F(VaultClaimTest, hearsWhoeverKnocks) {
    const auto claim = take(vault);
    const std::vector<LaunchRequest> sent = {withToken("token-1"), {}, {LaunchAction::Search, "token-2"}};
    for (const auto &request : sent)
        EXPECT_TRUE(VaultClaim::knock(vault, request));
    ASSERT_TRUE(heard(3));
    EXPECT_EQ(requests, sent);
}

TEST_F(VaultClaimTest, comesToTheFrontForAKnockThatIsTooLongToBeOne) {
    const auto claim = take(vault);
    EXPECT_TRUE(VaultClaim::knock(vault, {LaunchAction::Search, QByteArray(5000, 't')}));
    EXPECT_TRUE(VaultClaim::knock(vault, withToken(QByteArray(4096, 't'))));
    ASSERT_TRUE(heard(2));
    EXPECT_EQ(requests, (std::vector<LaunchRequest>{{}, withToken(QByteArray(4096, 't'))}));
}

TEST_F(VaultClaimTest, holdsOtherVaultsApart) {
    const auto first = take(vault);
    const auto second = take(folder / "other");
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(VaultClaim::knock(folder / "other", withToken("other")));
    ASSERT_TRUE(heard(1));
    EXPECT_EQ(requests, std::vector{withToken("other")});
}

TEST_F(VaultClaimTest, knowsAVaultByAllItsNames) {
    fs::create_directories(vault);
    fs::create_directory_symlink(vault, folder / "link");
    const auto claim = take(vault);
    for (const auto &name :
         {folder / "link", fs::path(vault.string() + "/"), folder / "link/../vault", fs::relative(vault)})
        EXPECT_EQ(take(name), nullptr) << name;
}

TEST_F(VaultClaimTest, knowsAVaultThatDoesNotExistYet) {
    const auto claim = take(vault);
    EXPECT_EQ(take(folder / "x/../vault/"), nullptr);
    EXPECT_FALSE(fs::exists(vault));
}

TEST_F(VaultClaimTest, saysThatNobodyListens) {
    EXPECT_FALSE(VaultClaim::knock(vault, withToken("token")));
    take(vault).reset();
    EXPECT_FALSE(VaultClaim::knock(vault, withToken("token")));
}

TEST_F(VaultClaimTest, isLetGoByAProcessThatDies) {
    EXPECT_EQ(testing::reportOfFork([&] {
                  // Never let go in order: the copy ends without its destructors.
                  return VaultClaim::take(vault).release() ? "taken" : "not taken";
              }),
              "taken");
    // The socket that it left is in nobody's way.
    const auto claim = take(vault);
    ASSERT_NE(claim, nullptr);
    EXPECT_TRUE(VaultClaim::knock(vault, withToken("token")));
    EXPECT_TRUE(heard(1));
}

TEST_F(VaultClaimTest, keepsNobodyFromHisDiaryWhereItCannotLock) {
    folder.write("run", "in the way");
    EXPECT_NE(take(vault), nullptr);
    EXPECT_FALSE(VaultClaim::knock(vault, withToken("token")));
}

TEST_F(VaultClaimTest, worksInAFolderWithALongName) {
    const testing::ScopedEnvironment longer("XDG_RUNTIME_DIR", folder / std::string(150, 'r'));
    const auto claim = take(vault);
    EXPECT_TRUE(VaultClaim::knock(vault, withToken("token")));
    EXPECT_TRUE(heard(1));
}

TEST_F(VaultClaimTest, usesTheStateFolderWhereThereIsNoRuntimeFolder) {
    const testing::ScopedEnvironment none("XDG_RUNTIME_DIR", std::nullopt);
    const testing::ScopedEnvironment state("XDG_STATE_HOME", folder / "state");
    const auto claim = take(vault);
    EXPECT_TRUE(VaultClaim::knock(vault, withToken("token")));
    EXPECT_TRUE(fs::exists(folder / "state/tavelo/run"));
}

} // namespace
} // namespace diary

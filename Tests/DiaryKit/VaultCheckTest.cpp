// SPDX-License-Identifier: MIT
#include <DiaryKit/VaultCheck.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Support/TemporaryFolder.h>

namespace diary {
namespace {

using Findings = std::vector<VaultFinding>;
using Kind = VaultFinding::Kind;
using testing::TemporaryFolder;

TEST(VaultCheck, findsNothingWrongInAHealthyVault) {
    TemporaryFolder vault;
    vault.write("03-14.md", "# 03-14\n\n## 2023\n\na\n\n```\n## 2023\n```\n\n## 2024\n\nb\n");
    vault.write("notes.txt", "\xFF");
    vault.write(".03-15.md.swp", "x");
    EXPECT_EQ(checkVault(vault.path()), Findings{});
}

TEST(VaultCheck, findsNothingWrongInAVaultThatDoesNotExist) {
    TemporaryFolder folder;
    EXPECT_EQ(checkVault(folder / "nowhere"), Findings{});
}

TEST(VaultCheck, throwsForAVaultThatIsAFile) {
    TemporaryFolder folder;
    folder.write("vault", "x");
    EXPECT_THROW(checkVault(folder / "vault"), std::filesystem::filesystem_error);
}

TEST(VaultCheck, tellsWhatIsWrongWithNames) {
    TemporaryFolder vault;
    vault.write("03-14.sync-conflict-20261120-101112-ABCDEFG.md", "x");
    vault.write(".03-15.md.icloud", "");
    vault.write("03-16 2.md", "x");
    EXPECT_EQ(checkVault(vault.path()),
              (Findings{{".03-15.md.icloud", Kind::Placeholder, ""},
                        {"03-14.sync-conflict-20261120-101112-ABCDEFG.md", Kind::ConflictCopy, ""},
                        {"03-16 2.md", Kind::Lookalike, ""}}));
}

TEST(VaultCheck, tellsWhatIsWrongWithContents) {
    TemporaryFolder vault;
    vault.write("03-14.md", "## 2024\n\n\xFF\n");
    vault.write("03-15.md", "# 03-15\r\n\r\n## 2024\r\n\r\ntext\r\n");
    vault.write("03-16.md", "## 2023\n\na\n\n## 2024\n\nb\n\n## 2023\n\nc\n\n## 2023\n\nd\n");
    vault.write("03-17.md", "## 2023\n\n```\nopen\n\n## 2024\n");
    vault.write("03-18.md", "## 2023\n\none line\r\nof a poem\n");
    std::filesystem::create_directory(vault / "03-19.md");
    const auto findings = checkVault(vault.path());
    ASSERT_EQ(findings.size(), 5U);
    EXPECT_EQ(findings[0], (VaultFinding{"03-14.md", Kind::InvalidUtf8, ""}));
    EXPECT_EQ(findings[1], (VaultFinding{"03-15.md", Kind::CarriageReturns, ""}));
    EXPECT_EQ(findings[2], (VaultFinding{"03-16.md", Kind::RepeatedYear, "2023"}));
    EXPECT_EQ(findings[3], (VaultFinding{"03-17.md", Kind::OpenFence, ""}));
    EXPECT_EQ(findings[4].fileName, "03-19.md");
    EXPECT_EQ(findings[4].kind, Kind::Unreadable);
    EXPECT_FALSE(findings[4].detail.empty());
}

} // namespace
} // namespace diary

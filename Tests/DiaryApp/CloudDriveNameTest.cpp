// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/CloudDriveName.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace diary {
namespace {

TEST(CloudDriveName, isTheOneThatItsUsersKnow) {
    const testing::TemporaryFolder folder;
    const testing::ScopedEnvironment home("HOME", folder.path());
    EXPECT_EQ(cloudDriveName(), QLatin1String("Cloud Drive"));
    std::filesystem::create_directory(folder / "Dropbox");
    EXPECT_EQ(cloudDriveName(), QLatin1String("Dropbox"));
    std::filesystem::create_directory(folder / "Nextcloud");
    EXPECT_EQ(cloudDriveName(), QLatin1String("Nextcloud"));
    std::filesystem::create_directories(folder / "Library/Mobile Documents/com~apple~CloudDocs");
    EXPECT_EQ(cloudDriveName(), QLatin1String("iCloud Drive"));
}

} // namespace
} // namespace diary

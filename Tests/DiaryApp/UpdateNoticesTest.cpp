// SPDX-License-Identifier: MIT
#include "Support/FakeUpdates.h"

#include <DiaryApp/UpdateNotices.h>

#include <gtest/gtest.h>

namespace diary {
namespace {

const auto version = QStringLiteral("1.4.2");

TEST(UpdateNotices, tellWhatIsReadyBeforeWhatIsOnItsWay) {
    EXPECT_EQ(UpdateNotices::state(nullptr), QString());
    testing::FakeUpdates updates;
    EXPECT_EQ(UpdateNotices::state(&updates), QString());
    updates.downloading = version;
    EXPECT_EQ(UpdateNotices::state(&updates), QStringLiteral("Downloading Tavelo 1.4.2…"));
    updates.pending = version;
    EXPECT_EQ(UpdateNotices::state(&updates),
              QStringLiteral("Tavelo 1.4.2 is ready and will be installed when you quit"));
}

TEST(UpdateNotices, tellTheResultOfACheckInAWord) {
    using namespace UpdateNotices;
    EXPECT_EQ(status(Updates::UpToDate{}, true), QStringLiteral("Tavelo is up to date"));
    EXPECT_EQ(status(Updates::UpdateFound{version}, true), ready(version));
    EXPECT_EQ(status(Updates::Failed{}, true), QStringLiteral("Could not check for updates"));
    EXPECT_TRUE(status(Updates::Failed{}, false).contains(QStringLiteral("cannot update itself")));
}

TEST(UpdateNotices, tellTheResultOfACheckAtLength) {
    const auto running = QStringLiteral("1.4.1");
    const auto newest = UpdateNotices::alert(Updates::UpToDate{}, true, running);
    EXPECT_EQ(newest.message, QStringLiteral("Tavelo is up to date"));
    EXPECT_EQ(newest.informativeText, QStringLiteral("Version 1.4.1 is the latest version."));
    const auto found = UpdateNotices::alert(Updates::UpdateFound{version}, true, running);
    EXPECT_EQ(found.message, QStringLiteral("A new version is available"));
    EXPECT_TRUE(found.informativeText.startsWith(QStringLiteral("Tavelo 1.4.2 has been downloaded")));
    const auto failed = UpdateNotices::alert(Updates::Failed{}, true, running);
    EXPECT_EQ(failed.message, QStringLiteral("Could not check for updates"));
    EXPECT_TRUE(failed.informativeText.contains(QStringLiteral("internet connection")));
    const auto unsupported = UpdateNotices::alert(Updates::Failed{}, false, running);
    EXPECT_EQ(unsupported.message, failed.message);
    EXPECT_TRUE(unsupported.informativeText.contains(QStringLiteral("cannot update itself")));
}

} // namespace
} // namespace diary

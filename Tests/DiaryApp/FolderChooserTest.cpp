// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <DiaryApp/FolderChooser.h>

#include <QFile>
#include <QFileDialog>
#include <QTest>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

namespace diary {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FolderChooserTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(folder / "a/日記");
        window.show();
    }

    QFileDialog *choose(const std::filesystem::path &startingAt) {
        chooser.choose(&window, {.title = QStringLiteral("Pick"), .startingAt = startingAt},
                       [this](const std::filesystem::path &path) { picked.push_back(path); });
        return window.findChild<QFileDialog *>();
    }

    testing::TemporaryFolder folder;
    QWidget window;
    DesktopFolderChooser chooser;
    std::vector<std::filesystem::path> picked;
};

TEST_F(FolderChooserTest, belongsToTheWindowAndReturnsAtOnce) {
    const auto *dialog = choose(folder / "a");
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->windowTitle(), QLatin1String("Pick"));
    EXPECT_EQ(dialog->fileMode(), QFileDialog::Directory);
    EXPECT_EQ(QFile::encodeName(dialog->directory().absolutePath()).toStdString(), (folder / "a").string());
    EXPECT_THAT(picked, IsEmpty());
}

TEST_F(FolderChooserTest, startsAtTheNearestFolderThatIsThere) {
    const auto *dialog = choose(folder / "a/b/c");
    EXPECT_EQ(QFile::encodeName(dialog->directory().absolutePath()).toStdString(), (folder / "a").string());
}

TEST_F(FolderChooserTest, givesTheFolderAndGoes) {
    auto *dialog = choose(folder / "a/日記");
    QMetaObject::invokeMethod(dialog, "accept");
    EXPECT_THAT(picked, ElementsAre(folder / "a/日記"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window.findChild<QFileDialog *>(); }));
}

TEST_F(FolderChooserTest, givesNothingWhenTheUserThinksBetterOfIt) {
    auto *dialog = choose(folder / "a");
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window.findChild<QFileDialog *>(); }));
    EXPECT_THAT(picked, IsEmpty());
}

} // namespace
} // namespace diary

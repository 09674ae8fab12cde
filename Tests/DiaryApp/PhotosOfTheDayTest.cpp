// SPDX-License-Identifier: MIT
//
// The window, the library and the module that finds the pictures, together, over real files.

#include "Support/FakeClock.h"
#include "Support/FakeFileManager.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryApp/EntryView.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/PhotoGalleryView.h>
#include <DiaryApp/PhotoModule.h>
#include <DiaryApp/PhotoPreviewController.h>
#include <DiaryApp/PhotoPreviewPanel.h>
#include <DiaryApp/PhotoTileView.h>
#include <DiaryApp/QtExecutor.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>

#include <QApplication>
#include <QImage>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono_literals;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Names = std::vector<std::string>;

// The window on 14 March 2025, with a folder of pictures.
class PhotosOfTheDayTest : public ::testing::Test {
protected:
    void SetUp() override {
        Settings::shared().setShowPhotos(true);
        std::filesystem::create_directories(pictures);
    }

    void show() {
        controller = std::make_unique<MainWindowController>(
            std::make_unique<DiaryStore>(folder / "vault",
                                         DiaryStore::Options{.stateFolder = folder / "state"}),
            clock, fileManager, MenuActions(), std::make_unique<DayPhotoLibrary>(&module, &queue),
            std::make_unique<PhotoPreviewController>(fileManager, executor, &module));
        module.onChange = [this] {
            QMetaObject::invokeMethod(
                &mainThread, [this] { controller->photosDidChange(); }, Qt::QueuedConnection);
        };
        controller->showWindow();
    }

    // As a telephone names it. Whole at once, as a program does that puts a picture there.
    void addPicture(int day, int minute, const QColor &color, QSize size = {600, 400}) const {
        std::array<char, 40> name{};
        std::snprintf(name.data(), name.size(), "IMG_202503%02d_08%02d00.jpg", day, minute);
        QImage image(size, QImage::Format_RGB32);
        image.fill(color);
        const auto unfinished = folder / "unfinished";
        ASSERT_TRUE(image.save(pathToQString(unfinished), "jpeg", 95));
        std::filesystem::rename(unfinished, pictures / name.data());
    }

    PhotoGalleryView *gallery() const { return controller->entryView()->galleryView(); }
    Names shownPhotos() const {
        Names names;
        for (const auto *tile : gallery()->tileViews())
            names.push_back(toUtf8(tile->photo().filename));
        return names;
    }
    // Time passes until the condition holds.
    bool await(const std::function<bool()> &condition) {
        return QTest::qWaitFor(
            [&] {
                clock.advance(MainWindowController::galleryDelay);
                return condition();
            },
            30000);
    }
    bool awaitPhotos(const Names &names) {
        return await([&] { return shownPhotos() == names; });
    }

    testing::TemporaryFolder folder;
    const std::filesystem::path pictures = folder / "pictures";
    testing::FakeClock clock{DiaryDay{2025, 3, 14}};
    testing::FakeFileManager fileManager;
    QObject mainThread;
    PhotoModule module{
        TAVELO_TEST_PHOTOS,
        {.pictures = pictures, .added = {}, .cache = folder / "cache", .thumbnails = folder / "thumbnails"}};
    QtExecutor executor;
    QtExecutor queue{1};
    std::unique_ptr<MainWindowController> controller;
};

TEST_F(PhotosOfTheDayTest, areShownWithTheirDay) {
    addPicture(14, 30, Qt::red);
    addPicture(14, 10, Qt::blue);
    addPicture(15, 0, Qt::green);
    show();
    ASSERT_TRUE(awaitPhotos({"IMG_20250314_081000.jpg", "IMG_20250314_083000.jpg"}));
    const auto shown = gallery()->tileViews()[0]->photo().image;
    ASSERT_FALSE(shown.isNull());
    EXPECT_GT(shown.pixelColor(shown.width() / 2, shown.height() / 2).blue(), 200);
    EXPECT_EQ(gallery()->tileViews()[0]->photo().timeText, QStringLiteral("08:10"));

    controller->session().step(1);
    EXPECT_THAT(shownPhotos(), IsEmpty());
    EXPECT_TRUE(awaitPhotos({"IMG_20250315_080000.jpg"}));
    controller->session().step(1);
    controller->session().step(-2);
    EXPECT_TRUE(awaitPhotos({"IMG_20250314_081000.jpg", "IMG_20250314_083000.jpg"}));
}

TEST_F(PhotosOfTheDayTest, comeAndGoWithTheirFilesWhileTheDayIsShown) {
    addPicture(14, 10, Qt::blue);
    show();
    ASSERT_TRUE(awaitPhotos({"IMG_20250314_081000.jpg"}));
    addPicture(14, 20, Qt::red);
    EXPECT_TRUE(awaitPhotos({"IMG_20250314_081000.jpg", "IMG_20250314_082000.jpg"}));
    std::filesystem::remove(pictures / "IMG_20250314_081000.jpg");
    EXPECT_TRUE(awaitPhotos({"IMG_20250314_082000.jpg"}));
}

TEST_F(PhotosOfTheDayTest, areShownBesideFilesThatAreNone) {
    folder.write("pictures/IMG_20250314_080000.jpg", "This is no picture.");
    folder.write("pictures/VID_20250314_080000.mp4", "Neither is this.");
    std::filesystem::create_directory_symlink(pictures, pictures / "again");
    addPicture(14, 10, Qt::blue);
    show();
    ASSERT_TRUE(await([this] { return !shownPhotos().empty(); }));
    EXPECT_EQ(shownPhotos().back(), "IMG_20250314_081000.jpg");
    EXPECT_FALSE(gallery()->tileViews().back()->photo().image.isNull());
}

TEST_F(PhotosOfTheDayTest, areShownWholeInThePreview) {
    addPicture(14, 10, Qt::blue, {1800, 1200});
    addPicture(14, 20, Qt::red, {1200, 1800});
    show();
    ASSERT_TRUE(await([this] { return shownPhotos().size() == 2; }));
    controller->openPhotoPreview(0);
    const auto *preview = controller->photoPreview();
    ASSERT_TRUE(
        await([&] { return preview->items().size() == 2 && preview->items()[1].image.height() > 600; }));
    EXPECT_EQ(preview->items()[1].previewItemURL, pictures / "IMG_20250314_082000.jpg");
    EXPECT_EQ(preview->panel()->model().title, QStringLiteral("IMG_20250314_081000.jpg"));
    EXPECT_TRUE(await([&] { return preview->panel()->model().image.width() > 600; }));
}

// However the threads that find and decode them run beside the steps.
TEST_F(PhotosOfTheDayTest, areNeverThoseOfADayThatWasLeft) {
    for (int day = 1; day <= 30; ++day) {
        addPicture(day, 10, Qt::blue);
        addPicture(day, 20, Qt::red);
    }
    show();
    ASSERT_TRUE(await([this] { return module.progress().isComplete && shownPhotos().size() == 2; }));
    controller->session().open({.month = 3, .day = 1});
    for (int day = 1; day <= 30; ++day) {
        const auto prefix = "IMG_202503" + std::string(day < 10 ? "0" : "") + std::to_string(day);
        clock.advance(MainWindowController::galleryDelay);
        // Some days are left before anything of them arrives, some in between and some afterwards.
        const auto turns = day % 3 == 0 ? 0 : day * 7 % 40;
        for (int turn = 0; turn < turns; ++turn) {
            QTest::qWait(1);
            EXPECT_THAT(shownPhotos(), Each(StartsWith(prefix)));
        }
        if (day % 5 == 0) {
            EXPECT_TRUE(awaitPhotos({prefix + "_081000.jpg", prefix + "_082000.jpg"})) << prefix;
        }
        controller->session().step(1);
        EXPECT_THAT(shownPhotos(), IsEmpty());
    }
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
//
// Stepping quickly through days with many photos: photo-stepping-benchmark FOLDER
// The folder is made anew with 24 pictures of 12 megapixels for each of 30 days. Prints the longest that one
// event kept the main thread, against a frame: on the first way through the days, on the way back, and the
// same without photos.

#include "WatchedApplication.h"

#include <DiaryApp/AppDelegate.h>
#include <DiaryApp/EntryView.h>
#include <DiaryApp/FileManager.h>
#include <DiaryApp/MainWindowController.h>
#include <DiaryApp/PhotoGalleryView.h>
#include <DiaryApp/PhotoModule.h>
#include <DiaryApp/PhotoTileView.h>
#include <DiaryApp/ProgramModule.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>

#include <QImage>
#include <QTest>

#include <array>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace {

namespace fs = std::filesystem;
using diary::MainWindowController;
using diary::benchmarks::WatchedApplication;

constexpr int dayCount = 30;
constexpr int photosOfADay = 24;
constexpr unsigned month = 3;

// Something to decode on every line: colours that run into one another, and noise.
QImage picture() {
    QImage image(4000, 3000, QImage::Format_RGB32);
    unsigned random = 1;
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            random = random * 1664525U + 1013904223U;
            const int noise = static_cast<int>(random >> 28U);
            line[x] = qRgb(x / 17 + noise, y / 13 + noise, (x + y) / 30 + noise);
        }
    }
    return image;
}

void makePictures(const fs::path &folder, int year) {
    fs::remove_all(folder);
    fs::create_directories(folder / "pictures");
    fs::permissions(folder, fs::perms::owner_all);
    const auto first = folder / "first.jpg";
    picture().save(diary::pathToQString(first), "jpeg", 85);
    for (int day = 1; day <= dayCount; ++day) {
        for (int number = 0; number < photosOfADay; ++number) {
            std::array<char, 48> name{};
            std::snprintf(name.data(), name.size(), "IMG_%04d%02u%02d_%02d0000.jpg", year, month, day,
                          number);
            fs::create_hard_link(first, folder / "pictures" / name.data());
        }
    }
}

// Steps as fast as photos can follow; counts the days whose photos came in time.
int step(MainWindowController &window, int direction) {
    int daysWithPhotos = 0;
    for (int day = 0; day < dayCount; ++day) {
        // Some are left before their photos are there.
        QTest::qWait(day % 3 == 0 ? 200 : 700);
        daysWithPhotos += !window.entryView()->galleryView()->tileViews().empty();
        window.session().step(direction);
    }
    return daysWithPhotos;
}

void print(const char *name, WatchedApplication::Milliseconds longest, int daysWithPhotos) {
    std::printf("%-52s %8.2f %8.1f   (%.1f ms / %.1f ms, photos on %d days)\n", name,
                longest / WatchedApplication::frame, 1.0, longest.count(), WatchedApplication::frame.count(),
                daysWithPhotos);
}

} // namespace

int main(int argc, char *argv[]) {
    if (argc != 2) {
        std::fputs("usage: photo-stepping-benchmark FOLDER\n", stderr);
        return 2;
    }
    const auto folder = fs::absolute(argv[1]);
    diary::SystemClock clock;
    makePictures(folder, static_cast<int>(clock.today().year));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DIARY_ROOT", (folder / "vault").c_str());
    qputenv("HOME", folder.c_str());
    qputenv("XDG_RUNTIME_DIR", folder.c_str());
    for (const auto *variable : {"XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
        qunsetenv(variable);

    QApplication::setStyle(QStringLiteral("fusion"));
    WatchedApplication application(argc, argv);
    diary::DesktopFileManager fileManager;
    auto photos = diary::PhotoModule::find(diary::programFolder(), {.pictures = folder / "pictures",
                                                                    .added = {},
                                                                    .cache = folder / "cache",
                                                                    .thumbnails = folder / "thumbnails"});
    if (!photos) {
        std::fputs("photo-stepping-benchmark: the photo module is not built\n", stderr);
        return 1;
    }
    const auto *source = photos.get();
    diary::AppDelegate delegate(clock, fileManager, {.photos = std::move(photos)});
    delegate.applicationDidFinishLaunching();
    auto &window = *delegate.mainWindowController();
    window.session().open({.month = month, .day = 1});
    if (!QTest::qWaitFor(
            [&] {
                return source->progress().isComplete &&
                       !window.entryView()->galleryView()->tileViews().empty();
            },
            120'000))
        return 1;

    application.longestEvent = {};
    auto daysWithPhotos = step(window, 1);
    print("photos, 30 days: longest event / frame", application.longestEvent, daysWithPhotos);
    application.longestEvent = {};
    daysWithPhotos = step(window, -1);
    print("photos, 30 days back: longest event / frame", application.longestEvent, daysWithPhotos);
    diary::Settings::shared().setShowPhotos(false);
    window.session().open({.month = month, .day = 1});
    application.longestEvent = {};
    daysWithPhotos = step(window, 1);
    print("no photos, 30 days: longest event / frame", application.longestEvent, daysWithPhotos);
    return 0;
}

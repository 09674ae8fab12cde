// SPDX-License-Identifier: MIT
//
// The photo index against the least that the same work could cost: photo-index-benchmark FOLDER
// The folder is made anew with 5,000 pictures. Prints one ratio a line, with its aim.

#include "FastestTimes.h"

#include <DiaryKit/DurableFile.h>
#include <DiaryPhotos/PhotoIndex.h>
#include <DiaryPhotos/PhotoScanner.h>

#include <QImage>
#include <QString>

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <exiv2/exiv2.hpp>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using diary::PhotoDate;
using diary::PhotoIndex;
using diary::PhotoScanner;
using diary::PhotoWatch;

constexpr int pictureCount = 5'000;
constexpr int folderCount = 50;
constexpr int largeIndex = 100'000;

fs::path folder;
std::vector<std::string> files;

// The header of a camera's picture, with a preview and some notes of the maker, before little of the picture
// itself.
void makePictures() {
    fs::remove_all(folder);
    fs::create_directories(folder / "pictures");
    const auto first = (folder / "first.jpg").string();
    QImage picture(320, 240, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    picture.save(QString::fromStdString(first));
    const auto image = Exiv2::ImageFactory::open(first);
    image->readMetadata();
    auto &data = image->exifData();
    data["Exif.Image.Make"] = "Maker";
    data["Exif.Image.Model"] = "Model";
    data["Exif.Image.DateTime"] = "2024:02:03 10:11:12";
    data["Exif.Photo.DateTimeOriginal"] = "2024:02:03 10:11:12";
    data["Exif.Photo.DateTimeDigitized"] = "2024:02:03 10:11:12";
    data["Exif.Photo.ExposureTime"] = Exiv2::Rational(1, 250);
    data["Exif.Photo.UserComment"] = std::string(3'000, 'c');
    Exiv2::ExifThumb(data).setJpegThumbnail(first);
    image->writeMetadata();

    std::error_code error;
    const auto bytes = diary::readWholeFile(first, error).value();
    for (int number = 0; number < pictureCount; ++number) {
        const auto where = folder / "pictures" / std::to_string(2000 + number % folderCount);
        fs::create_directories(where);
        files.push_back((where / ("IMG_20240203_" + std::to_string(100'000 + number) + ".jpg")).string());
        std::ofstream(files.back(), std::ios::binary) << bytes;
    }
}

PhotoScanner::Result scan(PhotoIndex &index, PhotoWatch &watch) {
    PhotoScanner scanner(index, watch, {[] { return false; }, [] {}, [](const PhotoScanner::Progress &) {}});
    return scanner.scan({folder / "pictures"});
}

void indexFromNothing(benchmark::State &state) {
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove_all(folder / "cache");
        state.ResumeTiming();
        PhotoIndex index(folder / "cache");
        PhotoWatch watch;
        if (scan(index, watch).progress.read != pictureCount)
            state.SkipWithError("not all were read");
    }
}

void plainExiv2(benchmark::State &state) {
    Exiv2::XmpParser::initialize();
    for (auto _ : state) {
        for (const auto &file : files) {
            const auto image = Exiv2::ImageFactory::open(file);
            image->readMetadata();
            const auto &data = image->exifData();
            benchmark::DoNotOptimize(data.findKey(Exiv2::ExifKey("Exif.Photo.DateTimeOriginal"))->toString());
        }
    }
}

void secondPass(benchmark::State &state) {
    PhotoIndex index(folder / "cache");
    PhotoWatch watch;
    scan(index, watch);
    for (auto _ : state) {
        if (scan(index, watch).progress.read != pictureCount)
            state.SkipWithError("not all were known");
    }
}

void oneStatAFile(benchmark::State &state) {
    for (auto _ : state) {
        for (const auto &file : files) {
            struct stat status {};
            benchmark::DoNotOptimize(::stat(file.c_str(), &status));
        }
    }
}

// Ten years, with a crowded day each month.
void dayOfALargeIndex(benchmark::State &state) {
    PhotoIndex index(folder / "large");
    PhotoIndex::Changes changes;
    const PhotoDate::LocalTime start = std::chrono::local_days(std::chrono::year(2014) / 1 / 1);
    for (int number = 0; number < largeIndex; ++number) {
        const auto time = start + std::chrono::seconds(std::int64_t(number) * 3'155);
        changes.read.push_back({folder / std::to_string(number % 500),
                                "IMG_" + std::to_string(number) + ".jpg",
                                {{number, number}, PhotoDate{time, PhotoDate::Origin::Original}}});
    }
    if (!index.apply(changes))
        state.SkipWithError("cannot be stored");
    std::int64_t day = 0;
    for (auto _ : state) {
        const auto from = start + std::chrono::days(day = (day + 377) % 3'600);
        const auto found = index.photos(from, from + std::chrono::days(1), 24);
        if (found.size() != 24)
            state.SkipWithError("a day is not whole");
    }
}

BENCHMARK(indexFromNothing)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(plainExiv2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(secondPass)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(oneStatAFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(dayOfALargeIndex)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char *argv[]) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: photo-index-benchmark FOLDER\n");
        return 2;
    }
    folder = fs::absolute(argv[1]);
    makePictures();
    std::array<const char *, 3> options{argv[0], "--benchmark_repetitions=5", "--benchmark_min_time=0.2"};
    int count = static_cast<int>(options.size());
    benchmark::Initialize(&count, const_cast<char **>(options.data()));
    diary::FastestTimes times;
    benchmark::RunSpecifiedBenchmarks(&times);
    times.printRatio("index of 5,000 pictures / plain Exiv2", "indexFromNothing", "plainExiv2", "3.0");
    times.printRatio("index again, nothing new / one stat a file", "secondPass", "oneStatAFile", "2.0");
    times.printShareOf("a day of 100,000 pictures / 5 ms", "dayOfALargeIndex", 5, "1.0");
    return 0;
}

// SPDX-License-Identifier: MIT
#include "DiaryPhotos/DatedPictures.h"
#include "Support/TemporaryFolder.h"

#include <DiaryPhotos/PhotoDate.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using namespace testing;
using namespace std::chrono_literals;
using std::chrono::local_days;
using std::chrono::year;
using Origin = PhotoDate::Origin;

PhotoDate::LocalTime at(int years, unsigned month, unsigned day, int hour = 0, int minute = 0,
                        int second = 0) {
    return local_days(year(years) / std::chrono::month(month) / std::chrono::day(day)) +
           std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second);
}

// 3 March 2021, 15:30:45 in Berlin.
constexpr std::int64_t modifiedSeconds = 1614781845;

std::optional<PhotoDate> dateOf(const fs::path &file) {
    const auto reading = readPhoto(file);
    EXPECT_TRUE(reading.has_value()) << file;
    return reading ? reading->date : std::nullopt;
}

PhotoDate original2024() {
    return {at(2024, 2, 3, 10, 11, 12), Origin::Original};
}

PhotoDate modified2021() {
    return {at(2021, 3, 3, 15, 30, 45), Origin::Modified};
}

TEST(ExifTimeTest, readsWhatCamerasWrite) {
    EXPECT_EQ(exifTime("2024:02:03 10:11:12"), at(2024, 2, 3, 10, 11, 12));
    EXPECT_EQ(exifTime("2024:02:29 00:00:00"), at(2024, 2, 29));
    EXPECT_EQ(exifTime("2024-02-03T23:59:59.123+01:00"), at(2024, 2, 3, 23, 59, 59));
    EXPECT_EQ(exifTime("2024:02:03 10:11:60"), at(2024, 2, 3, 10, 11, 59));
}

TEST(ExifTimeTest, keepsRealDatesOfAnyCentury) {
    EXPECT_EQ(exifTime("1904:01:01 00:00:00"), at(1904, 1, 1));
    EXPECT_EQ(exifTime("2106:02:07 06:28:15"), at(2106, 2, 7, 6, 28, 15));
    EXPECT_EQ(exifTime("9999:12:31 23:59:59"), at(9999, 12, 31, 23, 59, 59));
}

TEST(ExifTimeTest, takesNoonWhenTheTimeOfDayIsBlank) {
    EXPECT_EQ(exifTime("2024:02:03   :  :  "), at(2024, 2, 3, 12));
    EXPECT_EQ(exifTime("2024:02:03"), at(2024, 2, 3, 12));
}

TEST(ExifTimeTest, refusesWhatIsNoMoment) {
    for (const char *text :
         {"", " ", "0000:00:00 00:00:00", "    :  :     :  :  ", "0000:02:03 10:11:12", "0001:01:01 00:00:00",
          "2024:13:03 10:11:12", "2024:00:03 10:11:12", "2024:02:30 10:11:12", "2023:02:29 10:11:12",
          "2024:02:03 24:00:00", "2024:02:03 10:60:12", "2024:02:03 10:11:61", "2024:02:03 10:1",
          "20240203101112", "2024:02:0a 10:11:12", "-024:02:03 10:11:12", "\xff\xff\xff\xff:02:03 10:11:12",
          "yesterday at noon"})
        EXPECT_EQ(exifTime(text), std::nullopt) << text;
}

struct NameCase {
    const char *name;
    std::optional<NamedDate> date;
};

TEST(DateInFileNameTest, isFoundInTheNamesThatProgramsGive) {
    const auto day = local_days(year(2024) / 2 / 3);
    const NamedDate morning{day, 10h + 11min + 12s};
    const NamedDate dayAlone{day, std::nullopt};
    const std::vector<NameCase> cases = {
        {"IMG_20240203_101112.jpg", morning},
        {"IMG_20240203_101112_1.jpg", morning},
        {"IMG_20240203_101112~2.jpg", morning},
        {"PXL_20240203_101112345.jpg", morning},
        {"PXL_20240203_101112345.PORTRAIT.jpg", morning},
        {"20240203_101112.jpg", morning},
        {"20240203_101112(0).jpg", morning},
        {"20240203101112.jpg", morning},
        {"20240203101112345.jpg", morning},
        {"2024-02-03 10.11.12.jpg", morning},
        {"2024-02-03T10:11:12.jpg", morning},
        {"2024_02_03_10_11_12.png", morning},
        {"Screenshot_2024-02-03-10-11-12.png", morning},
        {"Screenshot_2024-02-03-10-11-12-345_org.example.png", morning},
        {"Screenshot_20240203_101112.png", morning},
        {"Screenshot_20240203-101112.png", morning},
        {"Screenshot from 2024-02-03 10-11-12.png", morning},
        {"Screenshot 2024-02-03 at 10.11.12.png", morning},
        {"Screenshot 2024-02-03 at 10.11.12\u202f"
         "AM.png",
         morning},
        {"Screen Shot 2024-02-03 at 3.45.12 PM.png", NamedDate{day, 15h + 45min + 12s}},
        {"Screen Shot 2024-02-03 at 12.00.00 AM.png", NamedDate{day, 0s}},
        {"Screen Shot 2024-02-03 at 12.00.00 PM.png", NamedDate{day, 12h}},
        {"signal-2024-02-03-101112.jpg", morning},
        {"signal-2024-02-03-10-11-12-345.jpg", morning},
        {"photo_2024-02-03_10-11-12.jpg", morning},
        {"WhatsApp Image 2024-02-03 at 10.11.12.jpeg", morning},
        {"IMG-20240203-WA0001.jpg", dayAlone},
        {"2024-02-03.jpg", dayAlone},
        {"20240203.jpg", dayAlone},
        {"20240203_0001.jpg", dayAlone},
        {"2024-02-03 Picnic 2.jpg", dayAlone},
        {"IMG_20240203_999999.jpg", dayAlone},
        {"IMG_99999999_20240203.jpg", dayAlone},
        {"\xff\xfe_20240203_101112.jpg", morning},
        {"1904-05-06 Great-grandmother.tif", NamedDate{local_days(year(1904) / 5 / 6), std::nullopt}},
    };
    for (const auto &[name, date] : cases)
        EXPECT_EQ(dateInFileName(name), date) << name;
}

TEST(DateInFileNameTest, isNotSeenInOtherNumbers) {
    for (const char *name : {"",
                             ".jpg",
                             "IMG_4100.HEIC",
                             "DSC_0042.JPG",
                             "IMG_20241303_101112.jpg",
                             "IMG_20240230_101112.jpg",
                             "IMG_20230229.jpg",
                             "12345678.jpg",
                             "120240203.jpg",
                             "202402031.jpg",
                             "20240203999999.jpg",
                             "2024-13-01.jpg",
                             "2024-02-033.jpg",
                             "2024-2-3.jpg",
                             "2024-02_03.jpg",
                             "2024.jpg",
                             "00000000_000000.jpg",
                             "21990101.jpg",
                             "18250101.jpg",
                             "b5d2c3e4-2024-4a02-03.jpg"})
        EXPECT_EQ(dateInFileName(name), std::nullopt) << name;
}

TEST(DateFromNameTest, takesTheTimeOfDayFromTheFileOnlyWhenItIsOfThatDay) {
    const NamedDate dayAlone{local_days(year(2024) / 2 / 3), std::nullopt};
    EXPECT_EQ(dateFromName(dayAlone, at(2024, 2, 3, 18, 5)),
              (PhotoDate{at(2024, 2, 3, 18, 5), Origin::FileName}));
    EXPECT_EQ(dateFromName(dayAlone, at(2024, 2, 4)), (PhotoDate{at(2024, 2, 3, 12), Origin::FileName}));
    const NamedDate whole{dayAlone.day, 10h};
    EXPECT_EQ(dateFromName(whole, at(2024, 2, 3, 18, 5)), (PhotoDate{at(2024, 2, 3, 10), Origin::FileName}));
}

TEST(LocalTimeTest, isWhatTheClockOnTheWallShowed) {
    EXPECT_EQ(localTimeOf(modifiedSeconds * 1'000'000'000), at(2021, 3, 3, 15, 30, 45));
    EXPECT_EQ(localTimeOf(-1), at(1970, 1, 1, 0, 59, 59));
    EXPECT_EQ(localTimeOf(1720000000'000'000'000), at(2024, 7, 3, 11, 46, 40)); // summer time
}

TEST(PhotoExtensionTest, goesByTheEndingInAnyCase) {
    for (const char *name : {"a.jpg", "a.JPG", "a.jpeg", "a.jpe", "a.png", "a.webp", "a.tif", "a.TIFF",
                             "a.heic", "a.HEIF", "a.avif", "a.b.jpg", "\xff.jpg"})
        EXPECT_TRUE(hasPhotoExtension(name)) << name;
    for (const char *name : {"", ".", "jpg", "a.mp4", "a.mov", "a.gif", "a.cr2", "a.jpg.part", "a.jpg~",
                             "a.jpgx", "a.txt", "a.", "a.xmp"})
        EXPECT_FALSE(hasPhotoExtension(name)) << name;
}

class ReadPhotoTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
};

TEST_F(ReadPhotoTest, findsTheCamerasDateInEveryKindOfPicture) {
    for (const char *extension : {"jpg", "JPG", "jpeg", "jpe", "png", "webp", "tif", "tiff"}) {
        const auto file = folder / (std::string("picture.") + extension);
        makePictureTakenAt(file, "2024:02:03 10:11:12");
        EXPECT_EQ(dateOf(file), original2024()) << file;
    }
}

TEST_F(ReadPhotoTest, findsTheCamerasDateInHeifWhereverItStands) {
    for (const char *brand : {"heic", "avif"}) {
        for (const std::size_t offset : {300U, 100'000U, 9'000'000U}) {
            const auto file = folder / (std::string("picture.") + brand);
            writeBytes(file, heifWithDate(brand, "2024:02:03 10:11:12", offset));
            EXPECT_EQ(dateOf(file), original2024()) << file << ' ' << offset;
        }
    }
}

TEST_F(ReadPhotoTest, goesByTheContentWhenTheEndingLies) {
    writeBytes(folder / "picture.jpg", heifWithDate("heic", "2024:02:03 10:11:12", 300));
    EXPECT_EQ(dateOf(folder / "picture.jpg"), original2024());
    makePictureTakenAt(folder / "picture.png", "2024:02:03 10:11:12");
    fs::rename(folder / "picture.png", folder / "picture.heic");
    EXPECT_EQ(dateOf(folder / "picture.heic"), original2024());
}

TEST_F(ReadPhotoTest, prefersTheOriginalDateToTheDigitizedOne) {
    makePicture(folder / "a.jpg", {{digitized, "2025:01:01 00:00:00"}, {original, "2024:02:03 10:11:12"}});
    EXPECT_EQ(dateOf(folder / "a.jpg"), original2024());
    makePicture(folder / "b.jpg", {{digitized, "2024:02:03 10:11:12"}});
    EXPECT_EQ(dateOf(folder / "b.jpg"), (PhotoDate{at(2024, 2, 3, 10, 11, 12), Origin::Digitized}));
}

TEST_F(ReadPhotoTest, passesOverDatesThatAreNoneToTheNextSource) {
    for (const char *nothing : {"0000:00:00 00:00:00", "    :  :     :  :  ", "0000:02:03 10:11:12",
                                "2024:13:03 10:11:12", "nonsense"}) {
        makePicture(folder / "a.jpg", {{original, nothing}, {digitized, "2024:02:03 10:11:12"}});
        EXPECT_EQ(dateOf(folder / "a.jpg"), (PhotoDate{at(2024, 2, 3, 10, 11, 12), Origin::Digitized}))
            << nothing;
        makePicture(folder / "IMG_20240203_101112.jpg", {{original, nothing}, {digitized, nothing}});
        EXPECT_EQ(dateOf(folder / "IMG_20240203_101112.jpg"),
                  (PhotoDate{at(2024, 2, 3, 10, 11, 12), Origin::FileName}))
            << nothing;
        setModified(folder / "a.jpg", modifiedSeconds);
        makePicture(folder / "b.jpg", {{original, nothing}});
        setModified(folder / "b.jpg", modifiedSeconds);
        EXPECT_EQ(dateOf(folder / "b.jpg"), modified2021()) << nothing;
    }
}

TEST_F(ReadPhotoTest, keepsTheYears1904And2106) {
    makePictureTakenAt(folder / "old.jpg", "1904:01:01 00:00:00");
    EXPECT_EQ(dateOf(folder / "old.jpg"), (PhotoDate{at(1904, 1, 1), Origin::Original}));
    makePictureTakenAt(folder / "late.jpg", "2106:02:07 06:28:15");
    EXPECT_EQ(dateOf(folder / "late.jpg"), (PhotoDate{at(2106, 2, 7, 6, 28, 15), Origin::Original}));
}

TEST_F(ReadPhotoTest, takesTheCamerasTimeWithoutItsZone) {
    makePicture(folder / "a.jpg",
                {{original, "2024:02:03 23:11:12"}, {"Exif.Photo.OffsetTimeOriginal", "-09:00"}});
    EXPECT_EQ(dateOf(folder / "a.jpg"), (PhotoDate{at(2024, 2, 3, 23, 11, 12), Origin::Original}));
}

TEST_F(ReadPhotoTest, knowsAPictureWithoutMetadataByItsOwnTime) {
    for (const char *name : {"a.jpg", "a.png", "a.webp", "a.tif"}) {
        makePicture(folder / name);
        setModified(folder / name, modifiedSeconds);
        EXPECT_EQ(dateOf(folder / name), modified2021()) << name;
    }
}

TEST_F(ReadPhotoTest, saysWhenAFileIsNoPicture) {
    folder.write("text.jpg", "Dear diary, this is no picture at all, whatever my name says.\n");
    folder.write("empty.jpg", "");
    folder.write("short.jpg", "\xff\xd8");
    folder.write("film.heic", std::string("\0\0\0\x18", 4) + "ftypisom" + std::string(4, '\0') + "isommp42");
    folder.write("IMG_20240203_101112.png", "GIF89a");
    for (const auto &name : folder.names())
        EXPECT_EQ(dateOf(folder / name), std::nullopt) << name;
}

TEST_F(ReadPhotoTest, saysNothingOfWhatCannotBeRead) {
    EXPECT_EQ(readPhoto(folder / "missing.jpg"), std::nullopt);
    fs::create_directory(folder / "folder.jpg");
    EXPECT_EQ(readPhoto(folder / "folder.jpg"), std::nullopt);
    ASSERT_EQ(::mkfifo((folder / "pipe.jpg").c_str(), 0600), 0);
    EXPECT_EQ(readPhoto(folder / "pipe.jpg"), std::nullopt);
    fs::create_symlink("circle.jpg", folder / "circle.jpg");
    EXPECT_EQ(readPhoto(folder / "circle.jpg"), std::nullopt);
}

TEST_F(ReadPhotoTest, survivesAPictureCutAtEveryPlace) {
    for (const char *name : {"a.jpg", "a.png", "a.webp", "a.tif"}) {
        makePictureTakenAt(folder / name, "2024:02:03 10:11:12");
        const auto whole = contentOf(folder / name);
        for (std::size_t length = 0; length < whole.size(); length += length < 400 ? 1 : 37) {
            const auto file = folder / (std::string("cut") + name);
            writeBytes(file, std::string_view(whole).substr(0, length));
            EXPECT_TRUE(readPhoto(file).has_value()) << name << ' ' << length;
        }
    }
    const auto whole = heifWithDate("heic", "2024:02:03 10:11:12", 300);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        writeBytes(folder / "cut.heic", std::string_view(whole).substr(0, length));
        EXPECT_TRUE(readPhoto(folder / "cut.heic").has_value()) << length;
    }
}

TEST_F(ReadPhotoTest, survivesEveryByteOfTheMetadataBeingWrong) {
    for (const char *name : {"a.jpg", "a.png", "a.webp", "a.tif"}) {
        makePictureTakenAt(folder / name, "2024:02:03 10:11:12");
        auto bytes = contentOf(folder / name);
        const auto end = std::min<std::size_t>(bytes.size(), 1200);
        for (std::size_t position = 2; position < end; position += 3) {
            const char before = bytes[position];
            for (const char wrong : {'\xff', '\0', '\x7f'}) {
                bytes[position] = wrong;
                writeBytes(folder / (std::string("wrong") + name), bytes);
                EXPECT_TRUE(readPhoto(folder / (std::string("wrong") + name)).has_value());
            }
            bytes[position] = before;
        }
    }
}

TEST_F(ReadPhotoTest, survivesExifOffsetsThatLeadNowhere) {
    makePictureTakenAt(folder / "a.jpg", "2024:02:03 10:11:12");
    auto bytes = contentOf(folder / "a.jpg");
    const auto header = bytes.find("Exif");
    ASSERT_NE(header, std::string::npos);
    for (const std::size_t offset : {10U, 14U, 18U, 24U}) {
        auto broken = bytes;
        broken.replace(header + offset, 4, "\xff\xff\xff\x7f");
        writeBytes(folder / "broken.jpg", broken);
        setModified(folder / "broken.jpg", modifiedSeconds);
        EXPECT_EQ(dateOf(folder / "broken.jpg"), modified2021()) << offset;
    }
}

TEST_F(ReadPhotoTest, findsTheDateInAVeryLargeTiff) {
    makePictureTakenAt(folder / "a.tif", "2024:02:03 10:11:12");
    fs::resize_file(folder / "a.tif", std::uintmax_t(3) << 30);
    EXPECT_EQ(dateOf(folder / "a.tif"), original2024());
    fs::resize_file(folder / "a.tif", std::uintmax_t(5) << 30);
    setModified(folder / "a.tif", modifiedSeconds);
    EXPECT_EQ(dateOf(folder / "a.tif"), modified2021());
}

TEST_F(ReadPhotoTest, findsTheDateInATiffWhereverItsDirectoriesStand) {
    for (const std::size_t offset : {8U, 100U, 5'000'000U, 20'000'000U}) {
        // At the end, and amid more.
        for (const std::size_t rest : {0U, 30'000'000U}) {
            const auto bytes = tiffWithDate("2024:02:03 10:11:12", offset);
            writeBytes(folder / "a.tif", bytes);
            fs::resize_file(folder / "a.tif", bytes.size() + rest);
            EXPECT_EQ(dateOf(folder / "a.tif"), original2024()) << offset << ' ' << rest;
        }
    }
}

TEST_F(ReadPhotoTest, refusesToReadAVeryLargeFileToItsEnd) {
    for (const char *name : {"a.png", "a.webp"}) {
        makePictureTakenAt(folder / name, "2024:02:03 10:11:12");
        fs::resize_file(folder / name, std::uintmax_t(300) << 20);
        setModified(folder / name, modifiedSeconds);
        EXPECT_EQ(dateOf(folder / name), modified2021()) << name;
    }
    makePictureTakenAt(folder / "a.jpg", "2024:02:03 10:11:12");
    fs::resize_file(folder / "a.jpg", std::uintmax_t(5) << 30);
    EXPECT_EQ(dateOf(folder / "a.jpg"), original2024());
}

TEST_F(ReadPhotoTest, survivesFilesThatAreCutShortWhileTheyAreRead) {
    makePictureTakenAt(folder / "a.tif", "2024:02:03 10:11:12");
    makePictureTakenAt(folder / "a.jpg", "2024:02:03 10:11:12");
    const auto tiff = contentOf(folder / "a.tif") + std::string(100'000, 'x');
    const auto jpeg = contentOf(folder / "a.jpg");
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        while (!isOver) {
            for (const auto &[name, bytes] : {std::pair("a.tif", tiff), std::pair("a.jpg", jpeg)}) {
                EXPECT_EQ(::truncate((folder / name).c_str(), 0), 0);
                writeBytes(folder / name, bytes);
            }
        }
    });
    for (int round = 0; round < 500; ++round) {
        EXPECT_TRUE(readPhoto(folder / "a.tif").has_value());
        EXPECT_TRUE(readPhoto(folder / "a.jpg").has_value());
    }
    isOver = true;
    writer.join();
}

TEST_F(ReadPhotoTest, readsManyPicturesOnSeveralThreads) {
    const std::vector<std::string> names = {"a.jpg", "a.png", "a.webp", "a.tif"};
    for (const auto &name : names)
        makePicture(folder / name, {{original, "2024:02:03 10:11:12"}});
    std::vector<std::thread> threads;
    std::atomic<int> found = 0;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                for (const auto &name : names) {
                    const auto reading = readPhoto(folder / name);
                    found += reading && reading->date == original2024() ? 1 : 0;
                }
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(found, 800);
}

TEST_F(ReadPhotoTest, doesNotMindNamesThatAreNoText) {
    const auto file = folder / "\xff\xc3(\x01 20240203.jpg";
    makePictureTakenAt(file, "2024:02:03 10:11:12");
    EXPECT_EQ(dateOf(file), original2024());
}

} // namespace

} // namespace diary

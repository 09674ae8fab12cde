// SPDX-License-Identifier: MIT
#include "Support/FakePhotoSource.h"
#include "Support/ManualExecutor.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/DayPhotoLibrary.h>
#include <DiaryApp/QtExecutor.h>
#include <DiaryApp/Text.h>

#include <QColor>
#include <QTest>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace diary {
namespace {

using namespace std::chrono;
using ::testing::ElementsAre;
using testing::FakePhotoSource;
using ::testing::IsEmpty;
using testing::ScopedEnvironment;
using Status = PhotoSource::AuthorizationStatus;

constexpr year_month_day day(2025y / March / 14);

std::vector<std::string> namesOf(const std::vector<DayPhoto> &photos) {
    std::vector<std::string> names;
    for (const auto &photo : photos)
        names.push_back(toUtf8(photo.filename));
    return names;
}

std::vector<std::string> timesOf(const std::vector<DayPhoto> &photos) {
    std::vector<std::string> times;
    for (const auto &photo : photos)
        times.push_back(toUtf8(photo.timeText));
    return times;
}

class DayPhotoLibraryTest : public ::testing::Test {
protected:
    void fetch(std::int64_t year = 2025, std::int64_t month = 3, std::int64_t dayOfMonth = 14) {
        library->fetch(year, month, dayOfMonth, [this](std::vector<DayPhoto> photos) {
            ++completions;
            EXPECT_EQ(QThread::currentThread(), qApp->thread());
            found = std::move(photos);
        });
    }
    // Everything that waits, except for what the source was asked.
    void run() {
        QCoreApplication::processEvents();
        queue.runBackground();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    void answerImages() {
        for (const auto &request : source->imageRequests)
            request.answer();
        run();
    }

    testing::ManualExecutor queue;
    std::unique_ptr<FakePhotoSource> source = std::make_unique<FakePhotoSource>();
    std::unique_ptr<DayPhotoLibrary> library = std::make_unique<DayPhotoLibrary>(source.get(), &queue);
    int completions = 0;
    std::vector<DayPhoto> found;
};

TEST_F(DayPhotoLibraryTest, scriptsAsManyPhotosAsAskedFor) {
    const ScopedEnvironment count("DIARY_FAKE_PHOTOS", "3");
    fetch();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(namesOf(found), ElementsAre("IMG_4100.HEIC", "IMG_4101.HEIC", "IMG_4102.HEIC"));
    EXPECT_THAT(timesOf(found), ElementsAre("07:12", "09:29", "11:46"));
    for (const auto &photo : found) {
        EXPECT_EQ(photo.image.size(), QSize(400, 264));
        EXPECT_EQ(photo.assetIdentifier, std::nullopt);
    }
    EXPECT_THAT(source->queries, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, scriptsNoPhotosWithoutAskingTheSource) {
    source->add("real.jpg", FakePhotoSource::at(day, 9, 5));
    for (const char *number : {"0", "-0", "-4", "-99999"}) {
        const ScopedEnvironment count("DIARY_FAKE_PHOTOS", number);
        completions = 0;
        fetch();
        EXPECT_EQ(completions, 1) << number;
        EXPECT_THAT(found, IsEmpty()) << number;
    }
    run();
    EXPECT_THAT(source->queries, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, takesASignBeforeTheNumber) {
    const ScopedEnvironment count("DIARY_FAKE_PHOTOS", "+2");
    fetch();
    EXPECT_EQ(found.size(), 2U);
}

TEST_F(DayPhotoLibraryTest, asksTheSourceWhenTheNumberIsNone) {
    source->add("real.jpg", FakePhotoSource::at(day, 9, 5));
    source->answersAtOnce = true;
    for (const char *number :
         {"", "abc", "3 ", " 3", "3.5", "+", "-", "+-1", "0x10", "99999999999999999999", "٣"}) {
        const ScopedEnvironment count("DIARY_FAKE_PHOTOS", number);
        found.clear();
        fetch();
        run();
        EXPECT_THAT(namesOf(found), ElementsAre("real.jpg")) << number;
    }
}

TEST_F(DayPhotoLibraryTest, scriptsNoMoreThanAThousandPhotos) {
    const ScopedEnvironment count("DIARY_FAKE_PHOTOS", "2000000000");
    fetch();
    EXPECT_EQ(found.size(), 1000U);
}

TEST_F(DayPhotoLibraryTest, givesScriptedPhotosTheirNamesInTurn) {
    const ScopedEnvironment count("DIARY_FAKE_PHOTOS", "5");
    const ScopedEnvironment names("DIARY_FAKE_PHOTO_NAMES", "a.jpg,,b.jpg");
    fetch();
    EXPECT_THAT(namesOf(found), ElementsAre("a.jpg", "b.jpg", "a.jpg", "b.jpg", "a.jpg"));
}

TEST_F(DayPhotoLibraryTest, usesItsOwnNamesWhenNoneIsLeft) {
    const ScopedEnvironment count("DIARY_FAKE_PHOTOS", "1");
    const ScopedEnvironment names("DIARY_FAKE_PHOTO_NAMES", ",,");
    fetch();
    EXPECT_THAT(namesOf(found), ElementsAre("IMG_4100.HEIC"));
}

TEST_F(DayPhotoLibraryTest, coloursScriptedPhotosAroundTheCircle) {
    const ScopedEnvironment count("DIARY_FAKE_PHOTOS", "10");
    const ScopedEnvironment folder("DIARY_FAKE_PHOTOS_DIR", std::nullopt);
    fetch();
    ASSERT_EQ(found.size(), 10U);
    for (const int index : {0, 1, 7, 8, 9}) {
        const auto color = found[static_cast<std::size_t>(index)].image.pixelColor(200, 132).toHsv();
        const int hue = qRound(index * 0.13 * 360) % 360;
        EXPECT_LE(std::abs(color.hue() - hue), 3) << index;
        EXPECT_NEAR(color.saturationF(), 0.18, 0.01) << index;
        EXPECT_NEAR(color.valueF(), 0.85, 0.01) << index;
    }
}

TEST_F(DayPhotoLibraryTest, takesScriptedImagesFromAFolderByName) {
    const testing::TemporaryFolder folder;
    const auto write = [&folder](const char *name, QSize size) {
        EXPECT_TRUE(FakePhotoSource::imageOf(name, size).save(pathToQString(folder / name)));
    };
    write("b.png", {20, 10});
    write("a.png", {10, 20});
    write(".hidden.png", {5, 5});
    folder.write("aa.png", "no image");
    const ScopedEnvironment count("DIARY_FAKE_PHOTOS", "3");
    const ScopedEnvironment variable("DIARY_FAKE_PHOTOS_DIR", folder.path().string());
    fetch();
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].image.size(), QSize(10, 20));
    EXPECT_EQ(found[1].image.size(), QSize(20, 10));
    EXPECT_EQ(found[2].image, found[0].image);

    // Read once.
    write("0.png", {7, 7});
    fetch();
    EXPECT_EQ(found[0].image.size(), QSize(10, 20));
}

TEST_F(DayPhotoLibraryTest, generatesImagesWhenTheFolderHasNone) {
    const ScopedEnvironment count("DIARY_FAKE_PHOTOS", "1");
    const ScopedEnvironment variable("DIARY_FAKE_PHOTOS_DIR", "/nonexistent");
    fetch();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].image.size(), QSize(400, 264));
}

TEST_F(DayPhotoLibraryTest, hasNoPhotosWithoutASource) {
    library = std::make_unique<DayPhotoLibrary>();
    fetch();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, findsThePhotosOfTheDay) {
    source->add("before.jpg", FakePhotoSource::at(day, 0, 0) - 1s);
    source->add("first.jpg", FakePhotoSource::at(day, 0, 0));
    source->add("nine.jpg", FakePhotoSource::at(day, 9, 5));
    source->add("last.jpg", FakePhotoSource::at(day, 23, 59) + 59s);
    source->add("after.jpg", FakePhotoSource::at(day, 24, 0));
    fetch();
    EXPECT_EQ(completions, 0);
    run();
    answerImages();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(namesOf(found), ElementsAre("first.jpg", "nine.jpg", "last.jpg"));
    EXPECT_THAT(timesOf(found), ElementsAre("00:00", "09:05", "23:59"));
    EXPECT_EQ(found[1].assetIdentifier, "nine.jpg");
    EXPECT_EQ(found[1].image, FakePhotoSource::imageOf("nine.jpg", {400, 264}));
    ASSERT_EQ(source->queries.size(), 1U);
    EXPECT_EQ(source->queries[0].limit, 24U);
}

TEST_F(DayPhotoLibraryTest, asksForImagesOfTheSizeOfATile) {
    source->add("a.jpg", FakePhotoSource::at(day, 9, 5));
    fetch();
    run();
    ASSERT_EQ(source->imageRequests.size(), 1U);
    const double ratio = qApp->devicePixelRatio();
    EXPECT_EQ(source->imageRequests[0].targetSize, (QSizeF(400, 264) * ratio).toSize());
    answerImages();
    EXPECT_EQ(found[0].image.devicePixelRatio(), ratio);
}

TEST_F(DayPhotoLibraryTest, looksInTheBackground) {
    fetch();
    EXPECT_THAT(source->queries, IsEmpty());
    ASSERT_EQ(queue.background.size(), 1U);
    EXPECT_EQ(queue.background[0].priority, Executor::Priority::UserInitiated);
    run();
    EXPECT_EQ(source->queries.size(), 1U);
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, hasNoPhotosOfADayThatTheYearLacks) {
    source->add("march.jpg", FakePhotoSource::at(2023y / March / 1, 9, 5));
    const std::int64_t days[][3] = {
        {2023, 2, 29},  {1900, 2, 29},     {2025, 2, 30},     {2025, 4, 31},        {2025, 13, 1},
        {2025, 0, 1},   {2025, 1, 0},      {2025, 1, 32},     {2025, -1, 5},        {99999, 1, 1},
        {-99999, 1, 1}, {INT64_MAX, 1, 1}, {INT64_MIN, 1, 1}, {2025, INT64_MAX, 1}, {2025, 1, INT64_MIN}};
    for (const auto &[year, month, dayOfMonth] : days) {
        completions = 0;
        fetch(year, month, dayOfMonth);
        run();
        EXPECT_EQ(completions, 1) << year << '-' << month << '-' << dayOfMonth;
        EXPECT_THAT(found, IsEmpty());
    }
    EXPECT_THAT(source->queries, IsEmpty());
    fetch(2024, 2, 29);
    run();
    EXPECT_EQ(source->queries.size(), 1U);
}

TEST_F(DayPhotoLibraryTest, takesTheFirstTwentyFourOfManyPhotos) {
    for (int index = 29; index >= 0; --index)
        source->add(std::to_string(index), FakePhotoSource::at(day, 8, index));
    fetch();
    run();
    answerImages();
    ASSERT_EQ(found.size(), 24U);
    for (std::size_t index = 0; index < found.size(); ++index)
        EXPECT_EQ(toUtf8(found[index].filename), std::to_string(index));
}

TEST_F(DayPhotoLibraryTest, keepsTheOrderOfTimeWhateverTheOrderOfTheImages) {
    for (const char *name : {"a", "b", "c", "d"})
        source->add(name, FakePhotoSource::at(day, name[0] - 'a' + 8, 0));
    fetch();
    run();
    ASSERT_EQ(source->imageRequests.size(), 4U);
    for (const std::size_t index : {2U, 0U, 3U}) {
        source->imageRequests[index].answer();
        run();
        EXPECT_EQ(completions, 0);
    }
    source->imageRequests[1].answer();
    run();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(namesOf(found), ElementsAre("a", "b", "c", "d"));
    for (const auto &photo : found)
        EXPECT_EQ(photo.image, FakePhotoSource::imageOf(toUtf8(photo.filename), {400, 264}));
}

TEST_F(DayPhotoLibraryTest, countsAnImageThatComesTwiceOnce) {
    source->add("a", FakePhotoSource::at(day, 8, 0));
    source->add("b", FakePhotoSource::at(day, 9, 0));
    fetch();
    run();
    source->imageRequests[0].answer();
    source->imageRequests[0].handler({});
    run();
    EXPECT_EQ(completions, 0);
    answerImages();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(namesOf(found), ElementsAre("a", "b"));
    EXPECT_FALSE(found[0].image.isNull());
}

TEST_F(DayPhotoLibraryTest, showsAPhotoWhoseImageCannotBeHad) {
    source->add("a", FakePhotoSource::at(day, 8, 0));
    source->add("b", FakePhotoSource::at(day, 9, 0));
    fetch();
    run();
    source->imageRequests[0].handler({});
    source->imageRequests[1].answer();
    run();
    EXPECT_THAT(namesOf(found), ElementsAre("a", "b"));
    EXPECT_TRUE(found[0].image.isNull());
    EXPECT_FALSE(found[1].image.isNull());
}

TEST_F(DayPhotoLibraryTest, namesAPictureWithoutAName) {
    source->add("", FakePhotoSource::at(day, 8, 0));
    fetch();
    run();
    answerImages();
    EXPECT_THAT(namesOf(found), ElementsAre("IMG"));
}

// A source whose answer does not depend on the range.
class SourceOfAnything : public FakePhotoSource {
public:
    std::vector<Asset> answer;
    std::vector<Asset> assets(LocalTime, LocalTime, std::size_t) override { return answer; }
};

TEST_F(DayPhotoLibraryTest, hasNoTimeForAPictureWithoutADate) {
    SourceOfAnything other;
    other.answersAtOnce = true;
    other.answer = {{"id", QStringLiteral("a.jpg"), std::nullopt}};
    library = std::make_unique<DayPhotoLibrary>(&other, &queue);
    fetch();
    run();
    EXPECT_THAT(timesOf(found), ElementsAre(""));
}

TEST_F(DayPhotoLibraryTest, showsNoMoreThanItAskedFor) {
    SourceOfAnything other;
    other.answersAtOnce = true;
    other.answer.resize(40);
    library = std::make_unique<DayPhotoLibrary>(&other, &queue);
    fetch();
    run();
    EXPECT_EQ(found.size(), 24U);
}

TEST_F(DayPhotoLibraryTest, hasNoPhotosWithoutTheRightToLook) {
    source->add("a", FakePhotoSource::at(day, 8, 0));
    for (const auto status : {Status::Denied, Status::Restricted}) {
        source->status = status;
        completions = 0;
        fetch();
        EXPECT_EQ(completions, 1);
        EXPECT_THAT(found, IsEmpty());
    }
    run();
    EXPECT_THAT(source->queries, IsEmpty());
    EXPECT_THAT(source->authorizationRequests, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, looksWhereItMay) {
    source->add("a", FakePhotoSource::at(day, 8, 0));
    source->status = Status::Limited;
    fetch();
    run();
    answerImages();
    EXPECT_THAT(namesOf(found), ElementsAre("a"));
}

TEST_F(DayPhotoLibraryTest, asksForTheRightBeforeItLooks) {
    source->add("a", FakePhotoSource::at(day, 8, 0));
    source->status = Status::NotDetermined;
    source->answersAtOnce = true;
    for (const auto status : {Status::Authorized, Status::Limited}) {
        source->authorizationRequests.clear();
        completions = 0;
        found.clear();
        fetch();
        run();
        EXPECT_EQ(completions, 0);
        ASSERT_EQ(source->authorizationRequests.size(), 1U);
        source->authorizationRequests[0](status);
        EXPECT_EQ(completions, 0);
        run();
        EXPECT_EQ(completions, 1);
        EXPECT_THAT(namesOf(found), ElementsAre("a"));
    }
}

TEST_F(DayPhotoLibraryTest, hasNoPhotosWhenTheRightIsNotGiven) {
    source->add("a", FakePhotoSource::at(day, 8, 0));
    source->status = Status::NotDetermined;
    for (const auto status : {Status::Denied, Status::Restricted, Status::NotDetermined}) {
        source->authorizationRequests.clear();
        completions = 0;
        fetch();
        ASSERT_EQ(source->authorizationRequests.size(), 1U);
        source->authorizationRequests[0](status);
        run();
        EXPECT_EQ(completions, 1);
        EXPECT_THAT(found, IsEmpty());
    }
    EXPECT_THAT(source->queries, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, looksOnceWhenTheRightIsGivenTwice) {
    source->status = Status::NotDetermined;
    fetch();
    source->authorizationRequests[0](Status::Authorized);
    source->authorizationRequests[0](Status::Authorized);
    run();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(source->queries.size(), 1U);
}

TEST_F(DayPhotoLibraryTest, endsWithoutPhotosWhenItIsGoneBeforeTheRightIsGiven) {
    source->status = Status::NotDetermined;
    fetch();
    library.reset();
    source->authorizationRequests[0](Status::Authorized);
    run();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(source->queries, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, bringsPhotosAlsoWhenItIsGoneMeanwhile) {
    source->add("a", FakePhotoSource::at(day, 8, 0));
    fetch();
    library.reset();
    run();
    answerImages();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(namesOf(found), ElementsAre("a"));
}

TEST_F(DayPhotoLibraryTest, endsWithoutPhotosWhenTheSourceGoesUnasked) {
    source->status = Status::NotDetermined;
    fetch();
    source.reset();
    run();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, endsWithWhatThereIsWhenTheSourceGoes) {
    source->add("a", FakePhotoSource::at(day, 8, 0));
    source->add("b", FakePhotoSource::at(day, 9, 0));
    fetch();
    run();
    source->imageRequests[1].answer();
    run();
    EXPECT_EQ(completions, 0);
    source.reset();
    run();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(namesOf(found), ElementsAre("a", "b"));
    EXPECT_TRUE(found[0].image.isNull());
    EXPECT_FALSE(found[1].image.isNull());
}

TEST_F(DayPhotoLibraryTest, endsWithoutPhotosWhenTheQueueGoes) {
    fetch();
    queue.background.clear();
    run();
    EXPECT_EQ(completions, 1);
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(DayPhotoLibraryTest, takesAnswersFromAnyThread) {
    for (int index = 0; index < 20; ++index)
        source->add(std::to_string(index), FakePhotoSource::at(day, 8, index));
    source->status = Status::NotDetermined;
    fetch();
    std::thread([this] { source->authorizationRequests[0](Status::Authorized); }).join();
    run();
    ASSERT_EQ(source->imageRequests.size(), 20U);
    std::vector<std::thread> threads;
    for (const auto &request : source->imageRequests) {
        threads.emplace_back([&request] { request.answer(); });
        threads.emplace_back([&request] { request.answer(); });
    }
    source->imageRequests.back().handler({});
    for (auto &thread : threads)
        thread.join();
    run();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(found.size(), 20U);
}

TEST_F(DayPhotoLibraryTest, asksTheSourceInAThreadOfItsOwn) {
    class Watched : public FakePhotoSource {
    public:
        std::atomic<QThread *> asked = nullptr;
        std::vector<Asset> assets(LocalTime, LocalTime, std::size_t) override {
            asked = QThread::currentThread();
            return {{"id", QStringLiteral("a.jpg"), std::nullopt}};
        }
    };
    Watched watched;
    watched.answersAtOnce = true;
    QtExecutor executor(1);
    library = std::make_unique<DayPhotoLibrary>(&watched, &executor);
    fetch();
    EXPECT_TRUE(QTest::qWaitFor([this] { return completions == 1; }));
    EXPECT_NE(watched.asked, QThread::currentThread());
    EXPECT_EQ(found.size(), 1U);
}

TEST(FetchAccumulator, endsWhenEverySlotIsFilled) {
    std::vector<std::vector<DayPhoto>> ended;
    FetchAccumulator accumulator(
        2, [&ended](std::vector<DayPhoto> photos) { ended.push_back(std::move(photos)); });
    DayPhoto photo;
    photo.filename = QStringLiteral("second");
    accumulator.store(photo, 1);
    photo.filename = QStringLiteral("again");
    accumulator.store(photo, 1);
    EXPECT_THAT(ended, IsEmpty());
    photo.filename = QStringLiteral("first");
    accumulator.store(photo, 0);
    accumulator.store(photo, 0);
    ASSERT_EQ(ended.size(), 1U);
    EXPECT_THAT(namesOf(ended[0]), ElementsAre("first", "second"));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "DiaryPhotos/DatedPictures.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaitUntil.h"

#include <DiaryPhotos/FolderPhotoSource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace diary {

namespace {

namespace fs = std::filesystem;
using namespace testing;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Status = PhotoSource::AuthorizationStatus;
using LocalTime = PhotoSource::LocalTime;

const LocalTime start = std::chrono::local_days(std::chrono::year(2024) / 2 / 3);
const LocalTime end = start + 24h;

// A decoder that waits to be let go, and remembers what it was asked for.
class Gate {
public:
    PhotoDecoding decoding() {
        return {[this](const fs::path &file, QSize) { return pass(file); },
                [this](const fs::path &file, QSize) { return pass(file); }};
    }

    void open() {
        const std::lock_guard lock(m_mutex);
        m_isOpen = true;
        m_changed.notify_all();
    }
    std::size_t waiting() const {
        const std::lock_guard lock(m_mutex);
        return m_waiting;
    }
    std::size_t mostWaiting() const {
        const std::lock_guard lock(m_mutex);
        return m_mostWaiting;
    }
    std::vector<std::string> names() const {
        const std::lock_guard lock(m_mutex);
        return m_names;
    }

private:
    QImage pass(const fs::path &file) {
        std::unique_lock lock(m_mutex);
        m_names.push_back(file.filename().string());
        m_mostWaiting = std::max(m_mostWaiting, ++m_waiting);
        m_changed.wait(lock, [this] { return m_isOpen; });
        --m_waiting;
        return QImage(1, 1, QImage::Format_RGB32);
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isOpen = false;
    std::size_t m_waiting = 0;
    std::size_t m_mostWaiting = 0;
    std::vector<std::string> m_names;
};

class FolderPhotoSourceTest : public ::testing::Test {
protected:
    FolderPhotoSourceTest() { fs::create_directories(pictures); }

    void make(PhotoDecoding decoding = {}) { make(std::move(decoding), FolderPhotoSource::Options()); }
    void make(PhotoDecoding decoding, const FolderPhotoSource::Options &options) {
        source = std::make_unique<FolderPhotoSource>(
            PhotoFolders{pictures, added, folder / "cache", folder / "thumbnails"}, std::move(decoding),
            options);
        source->onChange = [this] { ++changes; };
    }

    void take(const fs::path &name, const std::string &time = "2024:02:03 10:11:12") const {
        makePictureTakenAt(folder / name, time);
    }

    std::vector<std::string> names(std::size_t limit = 24) {
        std::vector<std::string> found;
        for (const auto &asset : source->assets(start, end, limit))
            found.push_back(asset.filename.toStdString());
        return found;
    }

    bool finds(const std::vector<std::string> &expected) {
        return waitUntil([&] { return names() == expected; });
    }

    bool isSearched() {
        names();
        return waitUntil([&] { return source->progress().isComplete; });
    }

    Status requested() {
        std::promise<Status> promise;
        source->requestAuthorization([&](Status status) { promise.set_value(status); });
        return promise.get_future().get();
    }

    TemporaryFolder folder;
    fs::path pictures = folder / "pictures";
    std::vector<fs::path> added;
    std::atomic<int> changes = 0;
    std::unique_ptr<FolderPhotoSource> source;
};

TEST_F(FolderPhotoSourceTest, findsTheFirstPicturesOfADayInTheirOrder) {
    take("pictures/b/late.jpg", "2024:02:03 23:59:59");
    take("pictures/early.jpg", "2024:02:03 00:00:00");
    take("pictures/noon.jpg", "2024:02:03 12:00:00");
    take("pictures/also noon.jpg", "2024:02:03 12:00:00");
    take("pictures/before.jpg", "2024:02:02 23:59:59");
    take("pictures/after.jpg", "2024:02:04 00:00:00");
    make();
    EXPECT_TRUE(finds({"early.jpg", "also noon.jpg", "noon.jpg", "late.jpg"}));
    EXPECT_THAT(names(2), ElementsAre("early.jpg", "also noon.jpg"));
    const auto assets = source->assets(start, end, 1);
    ASSERT_EQ(assets.size(), 1U);
    EXPECT_EQ(assets[0].creationTime, start);
}

TEST_F(FolderPhotoSourceTest, doesNothingBeforeItIsAsked) {
    take("pictures/a.jpg");
    make();
    EXPECT_EQ(source->authorizationStatus(), Status::NotDetermined);
    EXPECT_EQ(source->progress(), PhotoSource::Progress());
    EXPECT_FALSE(fs::exists(folder / "cache"));
}

TEST_F(FolderPhotoSourceTest, isAuthorizedWhenAFolderCanBeListed) {
    make();
    EXPECT_EQ(requested(), Status::Authorized);
    EXPECT_EQ(source->authorizationStatus(), Status::Authorized);
}

TEST_F(FolderPhotoSourceTest, isNotDeterminedWithoutAnyFolder) {
    fs::remove(pictures);
    make();
    EXPECT_EQ(requested(), Status::NotDetermined);
    added = {folder / "other"};
    fs::create_directory(folder / "other");
    source->setAddedFolders(added);
    EXPECT_EQ(requested(), Status::Authorized);
}

TEST_F(FolderPhotoSourceTest, tellsHowFarTheSearchHasCome) {
    take("pictures/a.jpg");
    take("pictures/b.jpg");
    folder.write("pictures/text.jpg", "no picture");
    make();
    ASSERT_TRUE(isSearched());
    EXPECT_EQ(source->progress(), (PhotoSource::Progress{3, 3, true}));
}

TEST_F(FolderPhotoSourceTest, answersAtOnceFromWhatAnEarlierSearchFound) {
    take("pictures/a.jpg");
    make();
    ASSERT_TRUE(finds({"a.jpg"}));
    make();
    EXPECT_THAT(names(), ElementsAre("a.jpg"));
}

TEST_F(FolderPhotoSourceTest, noticesNewMovedAndDeletedPictures) {
    make();
    ASSERT_TRUE(isSearched());
    int before = changes;
    take("pictures/a.jpg");
    EXPECT_TRUE(finds({"a.jpg"}));
    EXPECT_TRUE(waitUntil([&] { return changes > before; }));
    before = changes;
    take("pictures/new/deep/b.jpg");
    EXPECT_TRUE(finds({"a.jpg", "b.jpg"}));
    take("pictures/new/deep/c.jpg");
    EXPECT_TRUE(finds({"a.jpg", "b.jpg", "c.jpg"}));
    fs::rename(pictures / "a.jpg", pictures / "new/z.jpg");
    EXPECT_TRUE(finds({"b.jpg", "c.jpg", "z.jpg"}));
    fs::remove(pictures / "new/deep/b.jpg");
    EXPECT_TRUE(finds({"c.jpg", "z.jpg"}));
    fs::remove_all(pictures / "new");
    EXPECT_TRUE(finds({}));
    EXPECT_TRUE(waitUntil([&] { return changes > before; }));
    EXPECT_TRUE(waitUntil([&] { return source->progress() == PhotoSource::Progress{0, 0, true}; }));
}

TEST_F(FolderPhotoSourceTest, noticesALinkedFolderComingAndGoing) {
    take("drive/a.jpg");
    make();
    ASSERT_TRUE(isSearched());
    fs::create_directory_symlink(folder / "drive", pictures / "drive");
    EXPECT_TRUE(finds({"a.jpg"}));
    fs::remove(pictures / "drive");
    EXPECT_TRUE(finds({}));
}

TEST_F(FolderPhotoSourceTest, searchesAgainOnUseWhereItCannotWatch) {
    make({}, {.searchInterval = 0ms, .mostWatchedFolders = 0});
    ASSERT_TRUE(isSearched());
    take("pictures/a.jpg");
    EXPECT_TRUE(finds({"a.jpg"}));
    fs::remove(pictures / "a.jpg");
    EXPECT_TRUE(finds({}));
}

TEST_F(FolderPhotoSourceTest, findsARootThatComesLater) {
    fs::remove(pictures);
    make({}, {.searchInterval = 0ms});
    ASSERT_TRUE(isSearched());
    take("pictures/a.jpg");
    EXPECT_TRUE(finds({"a.jpg"}));
    EXPECT_TRUE(waitUntil([&] { return source->authorizationStatus() == Status::Authorized; }));
    fs::rename(pictures, folder / "away");
    EXPECT_TRUE(finds({}));
    fs::rename(folder / "away", pictures);
    EXPECT_TRUE(finds({"a.jpg"}));
}

TEST_F(FolderPhotoSourceTest, looksIntoAddedFoldersAndForgetsTakenAwayOnes) {
    take("pictures/a.jpg");
    take("other/b.jpg");
    make();
    ASSERT_TRUE(finds({"a.jpg"}));
    source->setAddedFolders({folder / "other"});
    EXPECT_TRUE(finds({"a.jpg", "b.jpg"}));
    source->setAddedFolders({});
    EXPECT_THAT(names(), ElementsAre("a.jpg")); // at once
}

TEST_F(FolderPhotoSourceTest, makesImagesOfPicturesByTheirIdentifiers) {
    take("pictures/\xff\xc3.jpg");
    std::mutex mutex;
    std::vector<std::pair<fs::path, QSize>> asked;
    const auto decode = [&](const fs::path &file, QSize size) {
        const std::lock_guard lock(mutex);
        asked.emplace_back(file, size);
        return QImage(size, QImage::Format_RGB32);
    };
    make({decode, decode});
    ASSERT_TRUE(isSearched());
    const auto assets = source->assets(start, end, 9);
    ASSERT_EQ(assets.size(), 1U);
    std::promise<QImage> image;
    source->requestImage(assets[0].identifier, {40, 26}, [&](const QImage &made) { image.set_value(made); });
    EXPECT_EQ(image.get_future().get().size(), QSize(40, 26));
    std::promise<std::optional<PhotoSource::FullImage>> full;
    source->requestFullImage(assets[0].identifier, {80, 60}, [&](const auto &made) { full.set_value(made); });
    const auto found = full.get_future().get();
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->image.size(), QSize(80, 60));
    EXPECT_EQ(found->file, pictures / "\xff\xc3.jpg");
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(FolderPhotoSourceTest, hasNoFullImageWhenTheFileIsGone) {
    make({[](const auto &, auto) { return QImage(); }, [](const auto &, auto) { return QImage(); }});
    std::promise<bool> isThere;
    source->requestFullImage((pictures / "gone.jpg").string(), {8, 8},
                             [&](const auto &made) { isThere.set_value(made.has_value()); });
    EXPECT_FALSE(isThere.get_future().get());
    folder.write("pictures/damaged.jpg", "damaged");
    std::promise<std::optional<PhotoSource::FullImage>> damaged;
    source->requestFullImage((pictures / "damaged.jpg").string(), {8, 8},
                             [&](const auto &made) { damaged.set_value(made); });
    const auto found = damaged.get_future().get();
    ASSERT_TRUE(found.has_value());
    EXPECT_TRUE(found->image.isNull());
}

TEST_F(FolderPhotoSourceTest, hasNoImageWhenTheDecoderThrows) {
    const auto fail = [](const fs::path &, QSize) -> QImage { throw std::runtime_error("damaged"); };
    make({fail, fail});
    std::promise<bool> isNull;
    source->requestImage("/anything", {8, 8}, [&](const QImage &made) { isNull.set_value(made.isNull()); });
    EXPECT_TRUE(isNull.get_future().get());
}

TEST_F(FolderPhotoSourceTest, makesTwoImagesAtOnceTheNewestFirst) {
    Gate gate;
    make(gate.decoding());
    std::atomic<int> made = 0;
    const auto request = [&](const std::string &name) {
        source->requestImage(name, {8, 8}, [&](const QImage &) { ++made; });
    };
    request("1");
    request("2");
    ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 2; }));
    request("3");
    request("4");
    request("5");
    gate.open();
    ASSERT_TRUE(waitUntil([&] { return made == 5; }));
    EXPECT_EQ(gate.mostWaiting(), 2U);
    const auto order = gate.names();
    // Two threads take them, so only the first of the later ones is certain.
    EXPECT_THAT((std::vector<std::string>(order.begin(), order.begin() + 2)),
                ::testing::UnorderedElementsAre("1", "2"));
    EXPECT_EQ(order[2], "5");
    source.reset();
}

TEST_F(FolderPhotoSourceTest, callsNoHandlerAfterItsEnd) {
    const auto gate = std::make_shared<Gate>();
    PhotoDecoding decoding = {[gate, inner = gate->decoding()](const fs::path &file, QSize size) {
                                  return inner.display(file, size);
                              },
                              {}};
    make(decoding, {.patience = 0ms});
    std::atomic<int> calls = 0;
    for (int number = 0; number < 10; ++number)
        source->requestImage("/a", {8, 8}, [&](const QImage &) { ++calls; });
    ASSERT_TRUE(waitUntil([&] { return gate->waiting() == 2; }));
    source.reset(); // though both decoders still wait
    EXPECT_EQ(gate->waiting(), 2U);
    gate->open();
    ASSERT_TRUE(waitUntil([&] { return gate->waiting() == 0; }));
    // The threads have ended when nothing of theirs holds the gate any more.
    decoding = {};
    ASSERT_TRUE(waitUntil([&] { return gate.use_count() == 1; }));
    EXPECT_EQ(calls, 0);
}

TEST_F(FolderPhotoSourceTest, waitsForAHandlerUnderWayBeforeItEnds) {
    make({[](const auto &, auto) { return QImage(); }, {}});
    std::promise<void> entered;
    std::atomic<bool> mayLeave = false;
    std::atomic<bool> hasLeft = false;
    source->requestImage("/a", {8, 8}, [&](const QImage &) {
        entered.set_value();
        waitUntil([&] { return mayLeave.load(); });
        hasLeft = true;
    });
    entered.get_future().get();
    std::thread thread([&] { mayLeave = true; });
    source.reset();
    EXPECT_TRUE(hasLeft);
    thread.join();
}

TEST_F(FolderPhotoSourceTest, mayBeDestroyedByAHandler) {
    make({[](const auto &, auto) { return QImage(); }, {}});
    std::promise<void> done;
    source->requestImage("/a", {8, 8}, [&](const QImage &) {
        source.reset();
        done.set_value();
    });
    done.get_future().get();
    EXPECT_EQ(source, nullptr);
}

TEST_F(FolderPhotoSourceTest, endsCleanlyAtAnyMoment) {
    for (int number = 0; number < 40; ++number)
        take("pictures/" + std::to_string(number % 5) + "/" + std::to_string(number) + ".jpg");
    for (std::size_t moment = 0; moment < 40; ++moment) {
        fs::remove_all(folder / "cache");
        make({[](const auto &, auto) { return QImage(); }, {}});
        names();
        for (int number = 0; number < 5; ++number)
            source->requestImage("/a", {8, 8}, [](const QImage &) {});
        ASSERT_TRUE(waitUntil([&] {
            const auto progress = source->progress();
            return progress.isComplete || progress.filesFound + progress.filesRead >= moment;
        }));
        source.reset();
    }
}

TEST_F(FolderPhotoSourceTest, answersWhileItSearches) {
    for (int number = 0; number < 300; ++number)
        take("pictures/" + std::to_string(number) + ".jpg");
    make();
    std::size_t before = 0;
    while (!source->progress().isComplete) {
        const auto count = names(1000).size();
        EXPECT_GE(count, before);
        before = count;
    }
    EXPECT_EQ(names(1000).size(), 300U);
}

} // namespace

} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/FakeFileManager.h"
#include "Support/ManualExecutor.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/PhotoPreviewController.h>
#include <DiaryApp/PhotoPreviewPanel.h>
#include <DiaryApp/Text.h>

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QTest>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace diary {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using testing::ScopedEnvironment;
using ::testing::SizeIs;

QImage picture(QSize size, const QColor &color = Qt::darkCyan) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

// Answers for whole pictures when told to.
class WaitingPhotoSource : public PhotoSource {
public:
    using Handler = std::function<void(std::optional<FullImage>)>;

    AuthorizationStatus authorizationStatus() const override { return AuthorizationStatus::Authorized; }
    void requestAuthorization(std::function<void(AuthorizationStatus)>) override {}
    std::vector<Asset> assets(LocalTime, LocalTime, std::size_t) override { return {}; }
    void requestImage(const std::string &, QSize, std::function<void(QImage)>) override {}
    void requestFullImage(const std::string &identifier, QSize largestSize, Handler handler) override {
        asked.push_back(identifier);
        largest = largestSize;
        handlers.emplace_back(identifier, std::move(handler));
    }
    Progress progress() const override { return {}; }
    void setAddedFolders(std::vector<std::filesystem::path>) override {}

    Handler take(const std::string &identifier) {
        const auto found = std::find_if(handlers.begin(), handlers.end(),
                                        [&](const auto &entry) { return entry.first == identifier; });
        if (found == handlers.end()) {
            ADD_FAILURE() << "nobody asked for " << identifier;
            return [](const std::optional<FullImage> &) {};
        }
        auto handler = std::move(found->second);
        handlers.erase(found);
        return handler;
    }

    std::vector<std::string> asked;
    QSize largest;
    std::vector<std::pair<std::string, Handler>> handlers;
};

class PhotoPreviewControllerTest : public ::testing::Test {
protected:
    PhotoPreviewControllerTest() {
        window.resize(1200, 800);
        field.setGeometry(20, 20, 200, 30);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        field.setFocus();
    }

    static DayPhoto photo(const QString &filename, std::optional<std::string> identifier = {}) {
        return {.image = picture({400, 300}),
                .filename = filename,
                .timeText = QStringLiteral("07:12"),
                .assetIdentifier = std::move(identifier)};
    }

    // The photos "0.jpg", "1.jpg" and so on, which the source knows by their numbers.
    static std::vector<DayPhoto> photosOfSource(int count) {
        std::vector<DayPhoto> photos;
        for (int index = 0; index < count; ++index)
            photos.push_back(photo(QStringLiteral("%1.jpg").arg(index), std::to_string(index)));
        return photos;
    }

    bool prepare(const std::vector<DayPhoto> &photos, std::int64_t startIndex = 0) const {
        return controller->prepare(photos, startIndex,
                                   [this](std::size_t index) { return tileOnScreen(index); });
    }
    void present(const std::vector<DayPhoto> &photos, std::int64_t startIndex = 0) {
        ASSERT_TRUE(prepare(photos, startIndex));
        controller->present(&window);
        ASSERT_TRUE(panel()->isOpen());
    }
    QRect tileOnScreen(std::size_t index) const {
        return {window.mapToGlobal(QPoint(100 + 220 * static_cast<int>(index), 500)), QSize(200, 133)};
    }

    PhotoPreviewPanel *panel() const { return controller->panel(); }
    const PhotoPreviewController::Item &item(std::size_t index) const { return controller->items()[index]; }
    void press(Qt::Key key) const { QTest::keyClick(panel(), key); }
    void answer(const std::string &identifier, std::optional<PhotoSource::FullImage> whole) {
        source.take(identifier)(std::move(whole));
        QApplication::processEvents();
    }
    void exportAll() {
        executor.runBackground();
        QApplication::processEvents();
    }
    std::string nameOfFile(std::size_t index) const { return item(index).previewItemURL.filename(); }

    testing::TemporaryFolder folder;
    ScopedEnvironment temporary{"TMPDIR", folder.path()};
    ScopedEnvironment scenario{"DIARY_SCREENSHOT", "without zoom"};
    QWidget window;
    QLineEdit field{&window};
    testing::FakeFileManager fileManager;
    testing::ManualExecutor executor;
    WaitingPhotoSource source;
    std::unique_ptr<PhotoPreviewController> controller =
        std::make_unique<PhotoPreviewController>(fileManager, executor, &source);
};

TEST_F(PhotoPreviewControllerTest, startsAtTheLastPhotoWhenTheIndexIsBeyondTheEnd) {
    present(photosOfSource(3), 3);
    EXPECT_EQ(controller->startIndex(), 2U);
    EXPECT_EQ(panel()->model().title, QStringLiteral("2.jpg"));
    present(photosOfSource(3), 1000000);
    EXPECT_EQ(panel()->model().index, 2U);
}

TEST_F(PhotoPreviewControllerTest, startsAtTheFirstPhotoWhenTheIndexIsBeforeIt) {
    present(photosOfSource(3), -1);
    EXPECT_EQ(controller->startIndex(), 0U);
    EXPECT_EQ(panel()->model().title, QStringLiteral("0.jpg"));
}

TEST_F(PhotoPreviewControllerTest, hasNothingToShowWithoutPhotos) {
    EXPECT_FALSE(prepare({}));
    EXPECT_THAT(controller->items(), IsEmpty());
    EXPECT_EQ(controller->exportRoot(), "");
    EXPECT_THAT(folder.names(), IsEmpty());
    controller->present(&window);
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(PhotoPreviewControllerTest, forgetsThePhotosItHad) {
    present(photosOfSource(3), 2);
    EXPECT_FALSE(prepare({}));
    EXPECT_FALSE(panel()->isOpen());
    EXPECT_EQ(controller->startIndex(), 0U);
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(PhotoPreviewControllerTest, countsItsPreparations) {
    const auto before = controller->generation();
    prepare(photosOfSource(1));
    prepare({});
    EXPECT_EQ(controller->generation(), before + 2);
}

TEST_F(PhotoPreviewControllerTest, tellsWhereEachTileStands) {
    EXPECT_TRUE(controller->sourceFrameOnScreen(0).isEmpty());
    prepare(photosOfSource(2));
    EXPECT_EQ(controller->sourceFrameOnScreen(1), tileOnScreen(1));
}

TEST_F(PhotoPreviewControllerTest, writesThePicturesInTheBackground) {
    prepare({photo(QStringLiteral("IMG_4100.HEIC")), photo(QStringLiteral("tree.old.jpg"))});
    EXPECT_EQ(item(0).previewItemTitle, QStringLiteral("IMG_4100.HEIC"));
    EXPECT_EQ(item(0).previewItemURL, controller->exportRoot() / "IMG_4100.preview.jpg");
    EXPECT_EQ(item(1).previewItemURL, controller->exportRoot() / "tree.old.preview.jpg");
    EXPECT_FALSE(item(0).hasFile);
    EXPECT_FALSE(std::filesystem::exists(item(0).previewItemURL));
    exportAll();
    EXPECT_TRUE(item(0).hasFile);
    EXPECT_EQ(QImage(pathToQString(item(1).previewItemURL), "jpeg").size(), QSize(400, 300));
}

TEST_F(PhotoPreviewControllerTest, writesTransparencyAsWhite) {
    auto clear = photo(QStringLiteral("a.png"));
    clear.image = QImage(20, 20, QImage::Format_ARGB32);
    clear.image.fill(Qt::transparent);
    prepare({clear});
    exportAll();
    EXPECT_EQ(QImage(pathToQString(item(0).previewItemURL)).pixelColor(10, 10), QColor(Qt::white));
}

TEST_F(PhotoPreviewControllerTest, hasNoFileForAPhotoWithoutAPicture) {
    auto empty = photo(QStringLiteral("a.jpg"));
    empty.image = {};
    present({empty});
    exportAll();
    EXPECT_FALSE(item(0).hasFile);
    EXPECT_EQ(item(0).previewItemURL, "");
    EXPECT_TRUE(panel()->currentLayout().picture.isEmpty());
}

TEST_F(PhotoPreviewControllerTest, givesPhotosOfOneNameFilesOfTheirOwn) {
    const std::vector<DayPhoto> photos = {photo(QStringLiteral("a.jpg")), photo(QStringLiteral("a.HEIC")),
                                          photo(QStringLiteral("a 2.jpg")), photo(QStringLiteral("a.jpg"))};
    prepare(photos);
    exportAll();
    std::set<std::filesystem::path> files;
    for (const auto &shown : controller->items()) {
        EXPECT_TRUE(std::filesystem::exists(shown.previewItemURL));
        files.insert(shown.previewItemURL);
    }
    EXPECT_THAT(files, SizeIs(photos.size()));
}

TEST_F(PhotoPreviewControllerTest, namesAFileOfANamelessPhotoByItsIndex) {
    prepare({photo(QStringLiteral("a.jpg")), photo({}), photo(QStringLiteral(".jpg"))});
    EXPECT_EQ(nameOfFile(1), "IMG_001.preview.jpg");
    EXPECT_EQ(nameOfFile(2), "IMG_002.preview.jpg");
}

TEST_F(PhotoPreviewControllerTest, staysInItsFolderWhateverAPhotoIsCalled) {
    const std::vector<QString> odd = {QStringLiteral("../../up.jpg"),
                                      QStringLiteral("/etc/passwd"),
                                      QStringLiteral("..."),
                                      QStringLiteral(".hidden.jpg"),
                                      QStringLiteral("two\nlines.jpg"),
                                      QString(QChar(0)) + QStringLiteral(".jpg"),
                                      QStringLiteral("ä😀").repeated(200) + QStringLiteral(".jpg"),
                                      QStringLiteral("日本.jpg")};
    std::vector<DayPhoto> photos;
    for (const auto &name : odd)
        photos.push_back(photo(name));
    prepare(photos);
    exportAll();
    for (const auto &shown : controller->items()) {
        EXPECT_EQ(shown.previewItemURL.parent_path(), controller->exportRoot());
        EXPECT_TRUE(std::filesystem::is_regular_file(shown.previewItemURL)) << shown.previewItemURL;
        EXPECT_NE(shown.previewItemURL.filename().string().front(), '.');
    }
    EXPECT_EQ(nameOfFile(7), "日本.preview.jpg");
    EXPECT_EQ(item(4).previewItemTitle, odd[4]);
}

TEST_F(PhotoPreviewControllerTest, letsNobodyElseSeeThePictures) {
    prepare(photosOfSource(1));
    exportAll();
    const auto mode = [](const std::filesystem::path &path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    };
    EXPECT_EQ(mode(controller->exportRoot()), 0700U);
    EXPECT_EQ(mode(item(0).previewItemURL), 0600U);
}

TEST_F(PhotoPreviewControllerTest, followsNoLinkThatOthersPutIntoItsWay) {
    folder.write("mine/0.preview.jpg", "precious");
    std::filesystem::create_directory_symlink(folder / "mine", folder / "DiaryPhotoPreview");
    prepare(photosOfSource(1));
    exportAll();
    prepare({});
    EXPECT_EQ(folder.read("mine/0.preview.jpg"), "precious");
    EXPECT_THAT(folder.names(), ElementsAre("DiaryPhotoPreview", "mine"));
}

TEST_F(PhotoPreviewControllerTest, showsThePhotosAlsoWhereNothingCanBeWritten) {
    const ScopedEnvironment nowhere("TMPDIR", folder / "no such folder");
    present(photosOfSource(2));
    exportAll();
    EXPECT_FALSE(item(0).hasFile);
    EXPECT_FALSE(panel()->model().hasFile);
    EXPECT_FALSE(panel()->model().image.isNull());
}

TEST_F(PhotoPreviewControllerTest, removesTheFilesOfAnEarlierPreparation) {
    prepare(photosOfSource(2));
    exportAll();
    const auto before = controller->exportRoot();
    prepare(photosOfSource(1));
    exportAll();
    EXPECT_FALSE(std::filesystem::exists(before));
    EXPECT_THAT(folder.names(), SizeIs(1));
    EXPECT_THAT(folder.names(controller->exportRoot().filename()), ElementsAre("0.preview.jpg"));
}

TEST_F(PhotoPreviewControllerTest, leavesNothingBehind) {
    present(photosOfSource(3));
    exportAll();
    ASSERT_THAT(folder.names(), SizeIs(1));
    controller.reset();
    EXPECT_THAT(folder.names(), IsEmpty());
    EXPECT_THAT(window.findChildren<PhotoPreviewPanel *>(), IsEmpty());
}

TEST_F(PhotoPreviewControllerTest, dropsTheWritingThatIsStillToBeDoneWhenItGoes) {
    prepare(photosOfSource(3));
    controller.reset();
    exportAll();
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(PhotoPreviewControllerTest, forgetsAFileThatWasWrittenForAnEarlierPreparation) {
    prepare(photosOfSource(1));
    executor.runBackground();
    prepare(photosOfSource(1));
    QApplication::processEvents();
    EXPECT_FALSE(item(0).hasFile);
}

TEST_F(PhotoPreviewControllerTest, pointsAtThePhotosOwnFile) {
    present(photosOfSource(1));
    answer("0", PhotoSource::FullImage{picture({3000, 2250}), folder / "0.jpg"});
    EXPECT_EQ(item(0).previewItemURL, folder / "0.jpg");
    EXPECT_EQ(item(0).image.size(), QSize(3000, 2250));
    EXPECT_EQ(panel()->model().image.size(), QSize(3000, 2250));
    EXPECT_TRUE(panel()->model().hasFile);
    // What is written late changes nothing of it.
    exportAll();
    EXPECT_EQ(item(0).previewItemURL, folder / "0.jpg");
}

TEST_F(PhotoPreviewControllerTest, keepsThePictureOfThePageWhenTheOriginalIsGone) {
    present(photosOfSource(1));
    exportAll();
    answer("0", std::nullopt);
    EXPECT_EQ(item(0).image.size(), QSize(400, 300));
    EXPECT_EQ(nameOfFile(0), "0.preview.jpg");
    EXPECT_TRUE(panel()->model().hasFile);
}

TEST_F(PhotoPreviewControllerTest, keepsThePictureOfThePageWhenOnlyTheFileIsThere) {
    present(photosOfSource(1));
    answer("0", PhotoSource::FullImage{{}, folder / "0.raw"});
    EXPECT_EQ(item(0).image.size(), QSize(400, 300));
    EXPECT_EQ(item(0).previewItemURL, folder / "0.raw");
}

TEST_F(PhotoPreviewControllerTest, staysAsItIsWithoutASource) {
    controller = std::make_unique<PhotoPreviewController>(fileManager, executor, nullptr);
    present(photosOfSource(2));
    exportAll();
    EXPECT_EQ(panel()->model().image.size(), QSize(400, 300));
    EXPECT_TRUE(panel()->model().hasFile);
}

TEST_F(PhotoPreviewControllerTest, asksForTheShownPhotoFirstAndThenForItsNeighbours) {
    present(photosOfSource(7), 3);
    EXPECT_THAT(source.asked, ElementsAre("3", "4", "2"));
    EXPECT_GE(source.largest.width(), window.screen()->size().width());
    press(Qt::Key_Right);
    EXPECT_THAT(source.asked, ElementsAre("3", "4", "2", "5"));
}

TEST_F(PhotoPreviewControllerTest, asksForNothingBeforeItIsShown) {
    prepare(photosOfSource(7), 3);
    EXPECT_THAT(source.asked, IsEmpty());
}

TEST_F(PhotoPreviewControllerTest, keepsNoMoreWholePicturesThanCanBeSteppedTo) {
    present(photosOfSource(5));
    for (int index = 0; index < 5; ++index) {
        while (!source.handlers.empty())
            answer(source.handlers.front().first, PhotoSource::FullImage{picture({3000, 2250}), "/p.jpg"});
        press(Qt::Key_Right);
    }
    const auto whole = std::count_if(controller->items().begin(), controller->items().end(),
                                     [](const auto &shown) { return shown.image.width() == 3000; });
    EXPECT_EQ(whole, 2);
    EXPECT_EQ(item(4).image.width(), 3000);
    EXPECT_EQ(item(0).image.width(), 400);
    // The way back fetches them again.
    press(Qt::Key_Home);
    answer("0", PhotoSource::FullImage{picture({3000, 2250}), "/p.jpg"});
    EXPECT_EQ(panel()->model().image.width(), 3000);
    press(Qt::Key_Escape);
    EXPECT_EQ(item(0).image.width(), 400);
}

TEST_F(PhotoPreviewControllerTest, keepsNoWholePictureThatArrivesWhenItIsFarAway) {
    present(photosOfSource(5));
    press(Qt::Key_End);
    answer("0", PhotoSource::FullImage{picture({3000, 2250}), "/0.jpg"});
    EXPECT_EQ(item(0).image.width(), 400);
    EXPECT_EQ(item(0).previewItemURL, "/0.jpg");
    press(Qt::Key_Home);
    EXPECT_EQ(std::count(source.asked.begin(), source.asked.end(), "0"), 2);
}

TEST_F(PhotoPreviewControllerTest, dropsWhatArrivesForAnEarlierPreparation) {
    present(photosOfSource(1));
    const auto late = source.take("0");
    present(photosOfSource(1));
    late(PhotoSource::FullImage{picture({3000, 2250}), "/late.jpg"});
    QApplication::processEvents();
    EXPECT_EQ(item(0).image.width(), 400);
    EXPECT_EQ(nameOfFile(0), "0.preview.jpg");
}

TEST_F(PhotoPreviewControllerTest, dropsWhatArrivesWhenItIsGone) {
    present(photosOfSource(1));
    const auto late = source.take("0");
    executor.runBackground();
    controller.reset();
    late(PhotoSource::FullImage{picture({3000, 2250}), "/late.jpg"});
    QApplication::processEvents();
    // Nothing is left that could touch it.
    EXPECT_THAT(window.findChildren<PhotoPreviewPanel *>(), IsEmpty());
}

TEST_F(PhotoPreviewControllerTest, takesAWholePictureFromAnyThread) {
    present(photosOfSource(1));
    std::thread([handler = source.take("0")] {
        handler(PhotoSource::FullImage{picture({3000, 2250}), "/0.jpg"});
    }).join();
    EXPECT_EQ(item(0).image.width(), 400);
    QApplication::processEvents();
    EXPECT_EQ(item(0).image.width(), 3000);
}

TEST_F(PhotoPreviewControllerTest, replacesThePictureWhereItStands) {
    present(photosOfSource(1));
    const auto before = panel()->currentLayout();
    EXPECT_GT(before.picture.width(), 400);
    answer("0", PhotoSource::FullImage{picture({3000, 2251}), "/0.jpg"});
    EXPECT_EQ(panel()->currentLayout().picture, before.picture);
    EXPECT_EQ(panel()->model().image.width(), 3000);
}

TEST_F(PhotoPreviewControllerTest, takesTheProportionsOfTheWholePictureWhenTheyAreOthers) {
    present(photosOfSource(1));
    answer("0", PhotoSource::FullImage{picture({3000, 1000}), "/0.jpg"});
    const auto place = panel()->currentLayout().picture;
    EXPECT_NEAR(3.0 * place.height(), place.width(), 3);
}

TEST_F(PhotoPreviewControllerTest, showsATinyPictureAsLargeAsItIs) {
    auto tiny = photo(QStringLiteral("icon.png"), "icon");
    tiny.image = picture({48, 32});
    present({tiny});
    EXPECT_EQ(panel()->currentLayout().picture.size(), QSize(48, 32));
}

TEST_F(PhotoPreviewControllerTest, givesTheFileToOtherPrograms) {
    present(photosOfSource(2), 1);
    const auto button = [this](const char *name) {
        return panel()->findChild<QWidget *>(QLatin1String(name));
    };
    EXPECT_FALSE(button("openInViewer")->isEnabled());
    EXPECT_FALSE(button("showInFolder")->isEnabled());
    exportAll();
    QTest::mouseClick(button("openInViewer"), Qt::LeftButton);
    EXPECT_THAT(fileManager.openedFiles, ElementsAre(item(1).previewItemURL));
    QTest::mouseClick(button("showInFolder"), Qt::LeftButton);
    EXPECT_THAT(fileManager.revealed, ElementsAre(item(1).previewItemURL));
}

TEST_F(PhotoPreviewControllerTest, givesNoFileThatIsNoLongerThere) {
    present(photosOfSource(1));
    exportAll();
    std::filesystem::remove(item(0).previewItemURL);
    auto *button = panel()->findChild<QWidget *>(QStringLiteral("openInViewer"));
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_THAT(fileManager.openedFiles, IsEmpty());
    EXPECT_FALSE(button->isEnabled());
}

TEST_F(PhotoPreviewControllerTest, closesAndGivesTheKeyboardBack) {
    present(photosOfSource(3));
    EXPECT_FALSE(field.hasFocus());
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel()->isVisible());
    EXPECT_TRUE(field.hasFocus());
    controller->present(&window);
    EXPECT_TRUE(panel()->isVisible());
    EXPECT_EQ(panel()->model().index, 0U);
    EXPECT_FALSE(panel()->model().image.isNull());
    controller->dismiss();
    EXPECT_FALSE(panel()->isVisible());
    EXPECT_TRUE(field.hasFocus());
}

TEST_F(PhotoPreviewControllerTest, outlivesTheWindowItCovers) {
    auto other = std::make_unique<QWidget>();
    other->resize(800, 600);
    other->show();
    prepare(photosOfSource(2));
    controller->present(other.get());
    other.reset();
    EXPECT_EQ(panel(), nullptr);
    exportAll();
    answer("0", PhotoSource::FullImage{picture({3000, 2250}), "/0.jpg"});
    controller->present(&window);
    EXPECT_TRUE(panel()->isOpen());
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/PhotoModule.h>

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <dlfcn.h>

namespace diary {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Status = PhotoSource::AuthorizationStatus;

constexpr PhotoSource::LocalTime noTime{};

class PhotoModuleTest : public ::testing::Test {
protected:
    // A copy, so that no test finds the module loaded by another.
    void install(const char *built = TAVELO_TEST_PHOTO_MODULE) {
        std::filesystem::create_directories(PhotoModule::file(programFolder).parent_path());
        std::filesystem::copy_file(built, PhotoModule::file(programFolder));
    }

    void find(const PhotoFolders &folders) {
        module = PhotoModule::find(programFolder, folders);
        ASSERT_TRUE(module);
        module->onChange = [this] { ++changes; };
    }

    bool isLoaded() const {
        // What is found must be let go again, and stays.
        auto *handle = dlopen(PhotoModule::file(programFolder).c_str(), RTLD_LAZY | RTLD_NOLOAD);
        return handle && dlclose(handle) == 0;
    }

    Status request() {
        std::atomic<bool> isAnswered = false;
        std::atomic<Status> answer = Status::NotDetermined;
        module->requestAuthorization([&](Status status) {
            answer = status;
            isAnswered = true;
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return isAnswered.load(); }));
        return answer;
    }

    std::vector<std::string> told() {
        std::vector<std::string> told;
        for (const auto &asset : module->assets(noTime, noTime, 24))
            told.push_back(asset.identifier);
        return told;
    }

    const testing::TemporaryFolder folder;
    const std::filesystem::path programFolder = folder / "bin";
    std::atomic<int> changes = 0;
    std::unique_ptr<PhotoModule> module;
};

TEST_F(PhotoModuleTest, isAbsentWhereItIsNotInstalled) {
    EXPECT_FALSE(PhotoModule::find(programFolder, {}));
    std::filesystem::create_directories(PhotoModule::file(programFolder));
    EXPECT_FALSE(PhotoModule::find(programFolder, {})) << "a folder is no module";
}

TEST_F(PhotoModuleTest, standsBesideTheProgramsFolder) {
    EXPECT_EQ(PhotoModule::file("/opt/tavelo/bin"), "/opt/tavelo/lib/tavelo/modules/tavelo-photos.so");
}

TEST_F(PhotoModuleTest, looksIntoTheUsersOwnFolders) {
    const testing::ScopedEnvironment cache("XDG_CACHE_HOME", "/somewhere/cache");
    const auto folders = PhotoModule::userFolders();
    EXPECT_EQ(folders.cache, "/somewhere/cache/tavelo");
    EXPECT_EQ(folders.thumbnails, "/somewhere/cache/thumbnails");
    EXPECT_EQ(folders.pictures.filename(), "Pictures");
    EXPECT_THAT(folders.added, IsEmpty());
}

TEST_F(PhotoModuleTest, loadsNothingBeforeItIsAskedForTheRightToLook) {
    install();
    find({});
    EXPECT_EQ(module->authorizationStatus(), Status::NotDetermined);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_EQ(module->progress(), PhotoSource::Progress{});
    bool hasNoImage = false;
    module->requestImage("id", {4, 4}, [&](const QImage &image) { hasNoImage = image.isNull(); });
    EXPECT_TRUE(hasNoImage);
    bool hasNoFile = false;
    module->requestFullImage("id", {4, 4}, [&](const auto &image) { hasNoFile = !image; });
    EXPECT_TRUE(hasNoFile);
    module->setAddedFolders({"/more"});
    EXPECT_FALSE(isLoaded());
}

TEST_F(PhotoModuleTest, loadsInTheBackgroundAndStays) {
    install();
    find({.pictures = "pictures", .added = {"one"}, .cache = "cache", .thumbnails = "thumbnails"});
    EXPECT_EQ(request(), Status::Limited);
    EXPECT_EQ(module->authorizationStatus(), Status::Limited);
    EXPECT_THAT(told(), ElementsAre("made in the background", "pictures", "cache", "thumbnails", "one"));
    module.reset();
    EXPECT_TRUE(isLoaded());
}

TEST_F(PhotoModuleTest, passesOnWhatItIsAsked) {
    install();
    find({});
    request();
    QSize size;
    module->requestImage("id", {40, 30}, [&](const QImage &image) { size = image.size(); });
    EXPECT_EQ(size, QSize(40, 30));
    std::filesystem::path file;
    module->requestFullImage("id", {40, 30}, [&](const auto &image) { file = image->file; });
    EXPECT_EQ(file, "id");
    EXPECT_EQ(module->progress(), (PhotoSource::Progress{3, 2, true}));
    EXPECT_EQ(module->assets(noTime, noTime, 2).size(), 2U);
    EXPECT_EQ(changes, 1);
    request();
    EXPECT_EQ(changes, 2);
}

TEST_F(PhotoModuleTest, takesAddedFoldersAtAnyTime) {
    install();
    find({.pictures = {}, .added = {"old"}, .cache = {}, .thumbnails = {}});
    module->setAddedFolders({"before"});
    request();
    EXPECT_EQ(told().back(), "before");
    module->setAddedFolders({"after", "later"});
    EXPECT_EQ(told().back(), "later");
}

TEST_F(PhotoModuleTest, answersEveryoneWhoAskedWhileItWasLoaded) {
    install();
    find({});
    std::atomic<int> answers = 0;
    for (int count = 0; count < 5; ++count)
        module->requestAuthorization([&](Status) { ++answers; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return answers == 5; }));
}

TEST_F(PhotoModuleTest, deniesTheRightWhenItCannotBeLoaded) {
    folder.write("lib/tavelo/modules/tavelo-photos.so", "not a library");
    find({});
    EXPECT_EQ(request(), Status::Denied);
    EXPECT_EQ(module->authorizationStatus(), Status::Denied);
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(PhotoModuleTest, deniesTheRightWhenTheModuleIsOfAnotherVersion) {
    install(TAVELO_TEST_OTHER_PHOTO_MODULE);
    find({});
    EXPECT_EQ(request(), Status::Denied);
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(PhotoModuleTest, deniesTheRightWhenItCannotBegin) {
    install();
    for (const char *behaviour : {"none", "throw"}) {
        find({.pictures = behaviour, .added = {}, .cache = {}, .thumbnails = {}});
        EXPECT_EQ(request(), Status::Denied) << behaviour;
        EXPECT_EQ(module->authorizationStatus(), Status::Denied) << behaviour;
    }
}

TEST_F(PhotoModuleTest, saysNothingMoreOnceItIsGone) {
    install();
    for (int round = 0; round < 20; ++round) {
        find({});
        const auto isGone = std::make_shared<std::atomic<bool>>(false);
        const auto cameLate = std::make_shared<std::atomic<bool>>(false);
        module->requestAuthorization([=](Status) { *cameLate = isGone->load(); });
        module.reset();
        *isGone = true;
        EXPECT_FALSE(*cameLate);
    }
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <DiaryApp/PhotoSource.h>
#include <DiaryApp/ProgramModule.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace diary {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A copy, so that no test finds the module loaded by another.
fs::path copied(const char *built, const fs::path &file) {
    fs::create_directories(file.parent_path());
    fs::copy_file(built, file);
    return file;
}

TEST(ProgramModule, standsBesideTheProgramsFolder) {
    EXPECT_EQ(moduleFile("/opt/tavelo/bin", "part"), "/opt/tavelo/lib/tavelo/modules/part.so");
    EXPECT_TRUE(fs::equivalent(programFolder() / "DiaryAppTests", "/proc/self/exe"));
}

TEST(ProgramModule, hasTheFunctionsOfItsFile) {
    const testing::TemporaryFolder folder;
    ProgramModule module(copied(TAVELO_TEST_PHOTO_MODULE, folder / "part.so"), photosVersionName);
    EXPECT_NE(module.function<MakePhotoSource>(makePhotoSourceName), nullptr);
    EXPECT_THAT(module.error(), IsEmpty());
    EXPECT_EQ(module.function<MakePhotoSource>("no_such_function"), nullptr);
    EXPECT_THAT(module.error(), HasSubstr("no_such_function"));
}

TEST(ProgramModule, isLoadedFromAFolderWhoseNameIsNotUtf8) {
    const testing::TemporaryFolder folder;
    ProgramModule module(copied(TAVELO_TEST_PHOTO_MODULE, folder.path() / "caf\xe9" / "part.so"),
                         photosVersionName);
    EXPECT_NE(module.function<MakePhotoSource>(makePhotoSourceName), nullptr) << module.error();
}

TEST(ProgramModule, isNoneOfAnotherVersion) {
    const testing::TemporaryFolder folder;
    ProgramModule module(copied(TAVELO_TEST_OTHER_PHOTO_MODULE, folder / "part.so"), photosVersionName);
    EXPECT_EQ(module.function<MakePhotoSource>(makePhotoSourceName), nullptr);
    EXPECT_THAT(module.error(), HasSubstr("0.0.0"));
}

TEST(ProgramModule, tellsWhyItCannotBeLoaded) {
    const testing::TemporaryFolder folder;
    folder.write("damaged.so", "\x7f"
                               "ELF and no more");
    for (const auto &file : {folder / "missing.so", folder / "damaged.so", folder.path()}) {
        ProgramModule module(file, photosVersionName);
        EXPECT_EQ(module.function<MakePhotoSource>(makePhotoSourceName), nullptr) << file;
        EXPECT_THAT(module.error(), HasSubstr(file.filename().string()));
    }
}

TEST(ProgramModule, isNotLookedForInTheWorkingFolder) {
    const testing::TemporaryFolder folder;
    const auto file = fs::relative(copied(TAVELO_TEST_PHOTO_MODULE, folder / "part.so"));
    ASSERT_TRUE(fs::exists(file));
    ProgramModule module(file, photosVersionName);
    EXPECT_EQ(module.function<MakePhotoSource>(makePhotoSourceName), nullptr);
}

TEST(ProgramModule, isLoadedOnceItIsThere) {
    const testing::TemporaryFolder folder;
    ProgramModule module(folder / "part.so", photosVersionName);
    EXPECT_EQ(module.function<MakePhotoSource>(makePhotoSourceName), nullptr);
    copied(TAVELO_TEST_PHOTO_MODULE, folder / "part.so");
    EXPECT_NE(module.function<MakePhotoSource>(makePhotoSourceName), nullptr);
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/LoopbackServer.h"
#include "Support/RunProgram.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/UpdateModule.h>

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace diary {
namespace {

namespace fs = std::filesystem;

fs::path builtModule() {
    return testing::builtProgram("TAVELO_TEST_TAVELO_UPDATES");
}

bool isLoaded(const fs::path &file) {
    std::ifstream maps("/proc/self/maps");
    const std::string all{std::istreambuf_iterator<char>(maps), {}};
    return all.find(fs::canonical(file).string()) != std::string::npos;
}

TEST(UpdateModule, liesBesideTheProgramsFolder) {
    EXPECT_EQ(UpdateModule::file(), fs::read_symlink("/proc/self/exe").parent_path().parent_path() /
                                        "lib/tavelo/modules/tavelo-updates.so");
    EXPECT_TRUE(fs::equivalent(UpdateModule::file(), builtModule()));
}

TEST(UpdateModule, isLoadedWhenItIsFirstUsed) {
    // A copy, since another test may have loaded the module.
    const testing::TemporaryFolder folder;
    const auto copy = folder / "tavelo-updates.so";
    fs::copy_file(builtModule(), copy);
    const auto parts = UpdateModule::parts(copy);
    EXPECT_FALSE(isLoaded(copy));
    EXPECT_NE(parts.makeDownloader(), nullptr);
    EXPECT_TRUE(isLoaded(copy));
}

TEST(UpdateModule, givesADownloaderThatWorks) {
    testing::LoopbackServer server([](const auto &) { return testing::LoopbackServer::ok("feed"); });
    const auto downloader = UpdateModule::parts(builtModule()).makeDownloader();
    ASSERT_NE(downloader, nullptr);
    std::optional<QByteArray> body;
    downloader->get({.url = QUrl(QString::fromStdString(server.address("/"))), .largestBody = 100},
                    [&](const auto &answer) { body = answer.body; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return body.has_value(); }, 30'000));
    EXPECT_EQ(*body, "feed");
}

TEST(UpdateModule, givesNothingWhereItIsNotInstalled) {
    const testing::TemporaryFolder folder;
    folder.write("damaged.so", "\x7f"
                               "ELF and no more");
    for (const auto &file : {folder / "missing.so", folder / "damaged.so", folder.path()}) {
        const auto parts = UpdateModule::parts(file);
        EXPECT_EQ(parts.makeDownloader(), nullptr) << file;
        EXPECT_EQ(parts.makeTools(), nullptr) << file;
    }
}

TEST(UpdateModule, givesNothingFromAnotherVersion) {
    const auto other = testing::builtProgram("TAVELO_TEST_OTHER_UPDATES");
    const auto parts = UpdateModule::parts(other);
    EXPECT_EQ(parts.makeDownloader(), nullptr);
    EXPECT_EQ(parts.makeTools(), nullptr);
}

} // namespace
} // namespace diary

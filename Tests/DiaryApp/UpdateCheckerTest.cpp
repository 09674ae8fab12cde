// SPDX-License-Identifier: MIT
#include "Support/FakeClock.h"
#include "Support/FakeDownloader.h"
#include "Support/FakeUpdateTools.h"
#include "Support/ForkedTask.h"
#include "Support/LoopbackServer.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/Settings.h>
#include <DiaryApp/UpdateChecker.h>
#include <DiaryUpdates/HttpDownloader.h>
#include <DiaryUpdates/ProcessRunner.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include <sys/mount.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::FakeDownloader;
using testing::FakeUpdateTools;
using testing::LoopbackServer;
using Manifest = UpdateChecker::Manifest;
using CheckResult = UpdateChecker::CheckResult;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char *const archiveBytes = "the archive";

std::string digestOf(const QByteArray &bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

std::string feedWith(const std::string &version, const std::string &url, const std::string &sha256) {
    return R"({"version": ")" + version + R"(", "url": ")" + url + R"(", "sha256": ")" + sha256 + "\"}";
}

std::string feedOf(const std::string &version) {
    return feedWith(version, "https://updates.tavelo.invalid/Tavelo.zip", digestOf(archiveBytes));
}

std::string textOf(const CheckResult &result) {
    if (const auto *found = std::get_if<UpdateChecker::UpdateFound>(&result))
        return "found " + found->version.toStdString();
    if (const auto *failed = std::get_if<UpdateChecker::Failed>(&result))
        return failed->error.isEmpty() ? "failed without a word" : "failed";
    return "up to date";
}

std::string errorOf(const CheckResult &result) {
    const auto *failed = std::get_if<UpdateChecker::Failed>(&result);
    return failed ? failed->error.toStdString() : std::string();
}

template <typename Condition>
bool await(Condition condition) {
    return QTest::qWaitFor(condition, 30'000);
}

class UpdateCheckerTest : public ::testing::Test {
protected:
    UpdateCheckerTest() {
        fs::create_directories(bundle);
        tools.unpack = [](const fs::path &into) { fs::create_directories(into / "Tavelo.app/bin"); };
    }

    UpdateChecker &make() {
        checker = std::make_unique<UpdateChecker>(
            clock, settings,
            UpdateChecker::Parts{.makeDownloader = [this] { return makeDownloader(); },
                                 .makeTools =
                                     [this] {
                                         ++toolsMade;
                                         return std::make_unique<FakeUpdateTools>(tools);
                                     }},
            surroundings);
        return *checker;
    }
    virtual std::unique_ptr<Downloader> makeDownloader() {
        ++downloadersMade;
        return std::make_unique<FakeDownloader>(network);
    }

    void start() {
        result.reset();
        checker->runCheck([this](const CheckResult &given) {
            EXPECT_FALSE(result) << "answered twice";
            result = given;
        });
    }
    CheckResult finished() {
        EXPECT_TRUE(await([&] { return result.has_value(); }));
        return result.value_or(UpdateChecker::Failed{});
    }

    // Answers what is asked for: the feed, then the archive.
    CheckResult check(const std::string &feed, const QByteArray &archive = archiveBytes) {
        start();
        const auto isAskedOrDone = [&] { return !network.waiting.empty() || result; };
        for (const auto &body : {QByteArray::fromStdString(feed), archive}) {
            EXPECT_TRUE(await(isAskedOrDone));
            if (!network.waiting.empty())
                network.answer(body);
        }
        return finished();
    }

    // What every failure leaves.
    void expectIdle() {
        EXPECT_FALSE(checker->isRunning());
        EXPECT_EQ(checker->pendingVersion(), std::nullopt);
        EXPECT_EQ(checker->downloadingVersion(), std::nullopt);
        EXPECT_FALSE(fs::exists(fs::symlink_status(stagingFolder)));
        EXPECT_TRUE(UpdateStaging(stagingFolder).claim()) << "still claimed";
    }

    void setLastCheck(std::chrono::seconds ago) {
        const auto then = clock.now() - ago;
        settings.setLastUpdateCheck(std::chrono::duration<double>(then.time_since_epoch()).count());
    }

    testing::TemporaryFolder folder;
    testing::ScopedEnvironment noFeed{"DIARY_UPDATE_URL", std::nullopt};
    testing::FakeClock clock{{2025, 3, 14}};
    Settings settings{Defaults(folder / "settings.json")};
    const fs::path bundle = folder / "apps/Tavelo.app";
    const fs::path stagingFolder = folder / "data/Tavelo/Updates";
    UpdateChecker::Surroundings surroundings{
        .bundle = bundle,
        .currentVersion = QStringLiteral("1.4.0"),
        .stagingFolder = stagingFolder,
        .feedAddress = QUrl(QStringLiteral("https://updates.tavelo.invalid/download/appcast.json"))};
    FakeDownloader::Log network;
    FakeUpdateTools::Log tools;
    int downloadersMade = 0;
    int toolsMade = 0;
    std::optional<CheckResult> result;
    std::unique_ptr<UpdateChecker> checker;
};

// Where the program stands.

TEST_F(UpdateCheckerTest, isSupportedInABundleWhoseFolderCanBeWritten) {
    EXPECT_TRUE(make().isSupported());
    surroundings.bundle = folder / "apps/Tavelo";
    EXPECT_FALSE(make().isSupported());
    surroundings.bundle = "";
    EXPECT_FALSE(make().isSupported());
    surroundings.bundle = folder / "missing/Tavelo.app";
    EXPECT_FALSE(make().isSupported());
}

TEST_F(UpdateCheckerTest, isNotSupportedInAFolderThatCannotBeWritten) {
    make();
    EXPECT_EQ(testing::reportOfFork([&]() -> std::string {
                  if (const auto problem = testing::ownMounts(); !problem.empty())
                      return problem;
                  const auto apps = bundle.parent_path();
                  if (::mount(apps.c_str(), apps.c_str(), nullptr, MS_BIND, nullptr) < 0 ||
                      ::mount("none", apps.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) < 0)
                      return "mount";
                  checker->checkIfDue();
                  if (checker->isRunning() || settings.lastUpdateCheck() != 0)
                      return "checks";
                  start();
                  return !checker->isSupported() && result ? textOf(*result) : "supported";
              }),
              "failed");
}

TEST_F(UpdateCheckerTest, knowsItsSurroundings) {
    const testing::ScopedEnvironment data("XDG_DATA_HOME", "/base/data");
    QCoreApplication::setApplicationVersion(QStringLiteral("1.2.3"));
    const auto found = UpdateChecker::surroundings();
    QCoreApplication::setApplicationVersion({});
    EXPECT_EQ(found.bundle, fs::path()); // the tests are in no bundle
    EXPECT_EQ(found.currentVersion, QStringLiteral("1.2.3"));
    EXPECT_EQ(found.stagingFolder, "/base/data/Tavelo/Updates");
    EXPECT_TRUE(Downloader::isEncrypted(found.feedAddress));
    EXPECT_EQ(found.feedAddress.path(), QStringLiteral("/download/appcast.json"));
}

TEST_F(UpdateCheckerTest, asksTheMakersFeedWithTheCurrentVersion) {
    EXPECT_EQ(make().feedURL().toEncoded(), "https://updates.tavelo.invalid/download/appcast.json?v=1.4.0");
    EXPECT_EQ(checker->currentVersion(), QStringLiteral("1.4.0"));
    surroundings.currentVersion = QStringLiteral("1.4+5&x");
    EXPECT_EQ(make().feedURL().toEncoded(),
              "https://updates.tavelo.invalid/download/appcast.json?v=1.4%2B5%26x");
}

TEST_F(UpdateCheckerTest, asksExactlyTheFeedOfTheEnvironment) {
    make();
    for (const char *address : {"https://example.org/feed.json", "http://127.0.0.1:8080/feed?x=1#y"}) {
        const testing::ScopedEnvironment feed("DIARY_UPDATE_URL", address);
        EXPECT_EQ(checker->feedURL().toEncoded(), address);
    }
    for (const char *noAddress : {"", "https://exa mple.org/", "http://[::1/"}) {
        const testing::ScopedEnvironment feed("DIARY_UPDATE_URL", noAddress);
        EXPECT_EQ(checker->feedURL().host(), QStringLiteral("updates.tavelo.invalid")) << noAddress;
    }
}

// The manifest.

TEST(UpdateManifest, isReadFromTheFeed) {
    const auto manifest = Manifest::parse(QByteArray::fromStdString(feedOf("1.5.0-beta+2_x")));
    ASSERT_TRUE(manifest);
    EXPECT_EQ(manifest->version, QStringLiteral("1.5.0-beta+2_x"));
    EXPECT_EQ(manifest->url, QUrl(QStringLiteral("https://updates.tavelo.invalid/Tavelo.zip")));
    EXPECT_EQ(manifest->sha256.toStdString(), digestOf(archiveBytes));
}

TEST(UpdateManifest, mayHoldMoreThanIsUnderstood) {
    auto feed = feedOf("1.5.0");
    feed.insert(1, R"("notes": {"version": [1, null, {"version": 2}]}, )");
    EXPECT_TRUE(Manifest::parse(QByteArray::fromStdString(feed)));
}

TEST(UpdateManifest, takesTheDigestInUpperCase) {
    auto digest = digestOf(archiveBytes);
    std::transform(digest.begin(), digest.end(), digest.begin(), ::toupper);
    const auto manifest =
        Manifest::parse(QByteArray::fromStdString(feedWith("1.5", "https://a.invalid/", digest)));
    ASSERT_TRUE(manifest);
    EXPECT_EQ(manifest->sha256.toStdString(), digestOf(archiveBytes));
}

TEST(UpdateManifest, isNoneWhenTheFeedIsAnythingElse) {
    const std::string url = "https://a.invalid/x.zip";
    const auto digest = digestOf(archiveBytes);
    const auto whole = feedOf("1.5.0");
    const std::string deep(30'000, '[');
    const std::vector<std::string> feeds = {
        "",
        "null",
        "[]",
        "\"1.5.0\"",
        "[" + whole + "]",
        whole.substr(0, whole.size() - 1),
        whole + "x",
        whole + whole,
        "<html></html>",
        deep,
        deep + std::string(30'000, ']'),
        R"({"a": )" + deep,
        R"({"version": "1.5.0", "url": "https://a.invalid/"})",
        R"({"version": "1.5.0", "sha256": ")" + digest + "\"}",
        R"({"url": "https://a.invalid/", "sha256": ")" + digest + "\"}",
        R"({"version": 1.5, "url": "https://a.invalid/", "sha256": ")" + digest + "\"}",
        R"({"version": "1.5", "url": ["https://a.invalid/"], "sha256": ")" + digest + "\"}",
        R"({"version": "1.5", "url": "https://a.invalid/", "sha256": {}})",
        R"({"version": "1.5", "url": "https://a.invalid/", "sha256": null})",
        R"({"Version": "1.5", "url": "https://a.invalid/", "sha256": ")" + digest + "\"}",
        R"({"version": "1.6", )" + whole.substr(1),
        R"({"\u0076ersion": "1.6", )" + whole.substr(1),
        feedWith("", url, digest),
        feedWith(std::string(65, '1'), url, digest),
        feedWith("1.5 beta", url, digest),
        feedWith("1/../../5", url, digest),
        feedWith("1.5\\n", url, digest),
        feedWith("1.5\\u0000", url, digest),
        feedWith("1.5é", url, digest),
        feedWith("٣.١", url, digest),
        feedWith("1.5\xff", url, digest),
        feedWith("1.5", "", digest),
        feedWith("1.5", "x.zip", digest),
        feedWith("1.5", "//a.invalid/x.zip", digest),
        feedWith("1.5", "https://a b.invalid/", digest),
        feedWith("1.5", url, ""),
        feedWith("1.5", url, digest.substr(1)),
        feedWith("1.5", url, digest + "0"),
        feedWith("1.5", url, "g" + digest.substr(1)),
        R"({"x": ")" + std::string(UpdateChecker::largestFeed, 'x') + "\", " + whole.substr(1),
    };
    for (const auto &feed : feeds)
        EXPECT_FALSE(Manifest::parse(QByteArray::fromStdString(feed))) << feed.substr(0, 200);
}

TEST(UpdateManifest, hasAVersionOfUpToSixtyFourCharacters) {
    EXPECT_TRUE(Manifest::parse(QByteArray::fromStdString(feedOf(std::string(64, '1')))));
}

// When a check is due.

TEST_F(UpdateCheckerTest, isDueWhenThereWasNoCheckYet) {
    make().checkIfDue();
    EXPECT_TRUE(checker->isRunning());
    EXPECT_EQ(settings.lastUpdateCheck(),
              std::chrono::duration<double>(clock.now().time_since_epoch()).count());
}

TEST_F(UpdateCheckerTest, isDueAfterMoreThanADay) {
    setLastCheck(24h);
    make().checkIfDue();
    EXPECT_FALSE(checker->isRunning());
    clock.advance(1s);
    checker->checkIfDue();
    EXPECT_TRUE(checker->isRunning());
}

TEST_F(UpdateCheckerTest, isNotDueWhenTheUserDoesNotWantIt) {
    settings.setAutoUpdate(false);
    make().checkIfDue();
    EXPECT_FALSE(checker->isRunning());
    EXPECT_EQ(downloadersMade, 0);
    settings.setAutoUpdate(true);
    checker->checkIfDue();
    EXPECT_TRUE(checker->isRunning());
}

TEST_F(UpdateCheckerTest, isNotDueOutsideOfABundle) {
    surroundings.bundle = folder / "apps/bin";
    make().checkIfDue();
    EXPECT_FALSE(checker->isRunning());
    EXPECT_EQ(settings.lastUpdateCheck(), 0);
    EXPECT_EQ(downloadersMade, 0);
}

TEST_F(UpdateCheckerTest, isNotDueWhileAnUpdateIsStaged) {
    make();
    ASSERT_EQ(textOf(check(feedOf("1.5.0"))), "found 1.5.0");
    clock.advance(48h);
    checker->checkIfDue();
    EXPECT_FALSE(checker->isRunning());
    EXPECT_EQ(network.requests.size(), 2U);
}

TEST_F(UpdateCheckerTest, stagesSilentlyWhenItIsDue) {
    make().checkIfDue();
    network.answer(QByteArray::fromStdString(feedOf("1.5.0")));
    ASSERT_TRUE(await([&] { return !network.waiting.empty(); }));
    network.answer(archiveBytes);
    EXPECT_TRUE(await([&] { return checker->pendingVersion().has_value(); }));
}

// A check.

TEST_F(UpdateCheckerTest, needsNothingOfTheModuleBeforeTheFirstCheck) {
    make().isSupported();
    checker->feedURL();
    checker->installPendingUpdate();
    checker->takeOutcome();
    EXPECT_EQ(downloadersMade + toolsMade, 0);
    check(feedOf("1.4.0"));
    check(feedOf("1.4.0"));
    EXPECT_EQ(downloadersMade, 1);
    EXPECT_EQ(toolsMade, 1);
}

TEST_F(UpdateCheckerTest, answersAtOnceOutsideOfABundle) {
    surroundings.bundle = folder / "apps/bin";
    make();
    start();
    ASSERT_TRUE(result);
    EXPECT_EQ(textOf(*result), "failed");
    EXPECT_EQ(settings.lastUpdateCheck(), 0);
    EXPECT_EQ(downloadersMade, 0);
}

TEST_F(UpdateCheckerTest, runsOneCheckAtATime) {
    make();
    start();
    std::string second;
    checker->runCheck([&](const auto &given) { second = textOf(given); });
    EXPECT_EQ(second, "failed");
    EXPECT_TRUE(checker->isRunning());
    checker->checkIfDue();
    EXPECT_EQ(network.requests.size(), 1U);
    network.answer(QByteArray::fromStdString(feedOf("1.4.0")));
    EXPECT_EQ(textOf(finished()), "up to date");
    expectIdle();
}

TEST_F(UpdateCheckerTest, failsWithoutTheModule) {
    checker = std::make_unique<UpdateChecker>(
        clock, settings,
        UpdateChecker::Parts{.makeDownloader = [] { return nullptr; }, .makeTools = [] { return nullptr; }},
        surroundings);
    start();
    EXPECT_EQ(textOf(finished()), "failed");
    expectIdle();
}

TEST_F(UpdateCheckerTest, boundsWhatItAsksFor) {
    make();
    check(feedOf("1.5.0"));
    ASSERT_EQ(network.requests.size(), 2U);
    EXPECT_EQ(network.requests[0].url, checker->feedURL());
    EXPECT_EQ(network.requests[0].largestBody, 64 * 1024);
    EXPECT_EQ(network.requests[1].url, QUrl(QStringLiteral("https://updates.tavelo.invalid/Tavelo.zip")));
    EXPECT_EQ(network.requests[1].largestBody, 512 * 1024 * 1024);
    for (const auto &request : network.requests) {
        EXPECT_EQ(request.timeout, 60s);
        EXPECT_GT(request.longest, 60s);
    }
}

TEST_F(UpdateCheckerTest, asksNoFeedThatIsNotEncrypted) {
    for (const char *address : {"http://updates.tavelo.invalid/", "http://192.168.0.1/", "file:///feed.json",
                                "feed.json", "ftp://127.0.0.1/"}) {
        const testing::ScopedEnvironment feed("DIARY_UPDATE_URL", address);
        make();
        start();
        EXPECT_EQ(textOf(finished()), "failed") << address;
        expectIdle();
    }
    EXPECT_THAT(network.requests, IsEmpty());
}

TEST_F(UpdateCheckerTest, asksAFeedOnThisMachineOnlyWhenTheUserSaysSo) {
    for (const char *address : {"http://127.0.0.1:1/", "http://[::1]:1/", "http://localhost:1/"}) {
        const testing::ScopedEnvironment feed("DIARY_UPDATE_URL", address);
        make();
        EXPECT_EQ(textOf(check(feedOf("1.4.0"))), "up to date") << address;
    }
    surroundings.feedAddress = QUrl(QStringLiteral("http://127.0.0.1:1/"));
    network.requests.clear();
    make();
    start();
    EXPECT_EQ(textOf(finished()), "failed");
    EXPECT_THAT(network.requests, IsEmpty());
}

TEST_F(UpdateCheckerTest, fetchesNoArchiveThatIsNotEncrypted) {
    make();
    for (const char *address : {"http://updates.tavelo.invalid/x.zip", "file:///x.zip",
                                "http://127.0.0.1:1/x.zip", "http://localhost/x.zip"}) {
        network.requests.clear();
        EXPECT_EQ(textOf(check(feedWith("1.5.0", address, digestOf(archiveBytes)))), "failed") << address;
        EXPECT_EQ(network.requests.size(), 1U);
        expectIdle();
    }
}

TEST_F(UpdateCheckerTest, fetchesAnArchiveFromThisMachineWhenTheFeedCameFromThere) {
    const testing::ScopedEnvironment feed("DIARY_UPDATE_URL", "http://127.0.0.1:1/");
    make();
    EXPECT_EQ(textOf(check(feedWith("1.5.0", "http://[::1]:2/x.zip", digestOf(archiveBytes)))),
              "found 1.5.0");
}

TEST_F(UpdateCheckerTest, isUpToDateWithAnEqualOrOlderVersion) {
    make();
    for (const char *version : {"1.4.0", "1.4", "1.4.0.0", "1.4.0-beta", "1.3.9", "0", "x"}) {
        EXPECT_EQ(textOf(check(feedOf(version))), "up to date") << version;
        expectIdle();
    }
    EXPECT_TRUE(tools.unpacked.empty());
}

TEST_F(UpdateCheckerTest, stagesANewerVersion) {
    make();
    std::vector<std::string> told;
    QObject context;
    checker->observeDownloading(&context, [&](const QString &version) {
        told.push_back("downloading " + version.toStdString());
        EXPECT_EQ(checker->downloadingVersion(), version);
        EXPECT_EQ(checker->pendingVersion(), std::nullopt);
    });
    checker->observeReady(&context, [&](const QString &version) {
        told.push_back("ready " + version.toStdString());
        EXPECT_EQ(checker->downloadingVersion(), std::nullopt);
        EXPECT_EQ(checker->pendingVersion(), version);
        EXPECT_FALSE(result);
    });
    EXPECT_EQ(textOf(check(feedOf("1.5.0"))), "found 1.5.0");
    EXPECT_THAT(told, ElementsAre("downloading 1.5.0", "ready 1.5.0"));
    EXPECT_FALSE(checker->isRunning());
    EXPECT_EQ(folder.read(stagingFolder / "update.zip"), archiveBytes);
    EXPECT_THAT(tools.unpacked, ElementsAre(stagingFolder / "update.zip"));
    EXPECT_THAT(tools.verified, ElementsAre(stagingFolder / "Tavelo.app"));
    ASSERT_EQ(tools.expected.size(), 1U);
    EXPECT_EQ(tools.expected[0].version, QStringLiteral("1.5.0"));
    EXPECT_EQ(tools.expected[0].runningVersion, QStringLiteral("1.4.0"));
    EXPECT_EQ(fs::status(stagingFolder).permissions(), fs::perms::owner_all);
}

TEST_F(UpdateCheckerTest, stagesAnArchiveWhoseDigestIsInUpperCase) {
    make();
    auto digest = digestOf(archiveBytes);
    std::transform(digest.begin(), digest.end(), digest.begin(), ::toupper);
    EXPECT_EQ(textOf(check(feedWith("1.5.0", "https://a.invalid/", digest))), "found 1.5.0");
}

TEST_F(UpdateCheckerTest, removesWhatWasStagedBeforeAndNothingElse) {
    folder.write(stagingFolder / "Old.app/x", "");
    folder.write("data/Tavelo/other", "stays");
    fs::create_directory_symlink(folder / "apps", stagingFolder / "Aaa.app");
    make();
    EXPECT_EQ(textOf(check(feedOf("1.5.0"))), "found 1.5.0");
    EXPECT_THAT(folder.names(stagingFolder), ElementsAre("Tavelo.app", "update.zip"));
    EXPECT_EQ(folder.read("data/Tavelo/other"), "stays");
    EXPECT_TRUE(fs::exists(bundle));
}

TEST_F(UpdateCheckerTest, stagesAnewWhenAnUpdateIsStagedAlready) {
    make();
    check(feedOf("1.5.0"));
    EXPECT_EQ(textOf(check(feedOf("1.6.0"))), "found 1.6.0");
    EXPECT_EQ(checker->pendingVersion(), QStringLiteral("1.6.0"));
}

TEST_F(UpdateCheckerTest, hasNothingStagedAfterALaterCheckFails) {
    make();
    check(feedOf("1.5.0"));
    EXPECT_EQ(textOf(check(feedOf("1.6.0"), "another archive")), "failed");
    expectIdle();
    checker->installPendingUpdate();
    EXPECT_TRUE(tools.launches.empty());
}

// Failures.

TEST_F(UpdateCheckerTest, failsWhenTheFeedCannotBeHad) {
    make();
    start();
    network.fail(QStringLiteral("no route"));
    EXPECT_EQ(errorOf(finished()), "no route");
    expectIdle();
}

TEST_F(UpdateCheckerTest, failsWithAFeedThatCannotBeRead) {
    make();
    EXPECT_EQ(textOf(check("{")), "failed");
    expectIdle();
}

TEST_F(UpdateCheckerTest, failsWhenTheArchiveCannotBeHad) {
    make();
    start();
    network.answer(QByteArray::fromStdString(feedOf("1.5.0")));
    ASSERT_TRUE(await([&] { return !network.waiting.empty(); }));
    EXPECT_TRUE(fs::exists(stagingFolder));
    network.fail(QStringLiteral("broken off"));
    EXPECT_EQ(errorOf(finished()), "broken off");
    expectIdle();
}

TEST_F(UpdateCheckerTest, writesNothingWhenTheDigestIsAnother) {
    make();
    EXPECT_THAT(errorOf(check(feedOf("1.5.0"), "the archivf")), ::testing::HasSubstr("corrupt"));
    EXPECT_TRUE(tools.unpacked.empty());
    expectIdle();
}

TEST_F(UpdateCheckerTest, failsWhenTheArchiveCannotBeUnpacked) {
    tools.unpack = [](const fs::path &into) {
        fs::create_directories(into / "Tavelo.app");
        throw std::runtime_error("no archive");
    };
    make();
    EXPECT_EQ(errorOf(check(feedOf("1.5.0"))), "no archive");
    EXPECT_TRUE(tools.verified.empty());
    expectIdle();
}

TEST_F(UpdateCheckerTest, failsWhenTheArchiveHoldsNoApplication) {
    tools.unpack = [](const fs::path &into) { fs::create_directories(into / "Tavelo"); };
    make();
    EXPECT_EQ(textOf(check(feedOf("1.5.0"))), "failed");
    EXPECT_TRUE(tools.verified.empty());
    expectIdle();
}

TEST_F(UpdateCheckerTest, failsWhenTheSignatureIsWrong) {
    tools.verifyError = QStringLiteral("someone else's");
    make();
    QObject context;
    bool isReady = false;
    checker->observeReady(&context, [&](const auto &) { isReady = true; });
    EXPECT_EQ(errorOf(check(feedOf("1.5.0"))), "someone else's");
    EXPECT_FALSE(isReady);
    expectIdle();
}

TEST_F(UpdateCheckerTest, checksAgainAfterAFailure) {
    make();
    check("{");
    EXPECT_EQ(textOf(check(feedOf("1.5.0"))), "found 1.5.0");
}

TEST_F(UpdateCheckerTest, failsWhenTheTimeOfTheCheckCannotBeKept) {
    fs::create_directory(folder / "settings.json");
    make();
    EXPECT_EQ(textOf(check(feedOf("1.5.0"))), "failed");
    EXPECT_TRUE(network.requests.empty());
    expectIdle();
}

// Another process.

TEST_F(UpdateCheckerTest, leavesTheStagingFolderToTheProcessThatUsesIt) {
    folder.write(stagingFolder / "Tavelo.app/x", "its own");
    make();
    {
        const auto other = UpdateStaging(stagingFolder).claim();
        ASSERT_TRUE(other);
        start();
        EXPECT_EQ(textOf(finished()), "failed");
        EXPECT_FALSE(checker->isRunning());
        EXPECT_TRUE(network.requests.empty());
        EXPECT_EQ(folder.read(stagingFolder / "Tavelo.app/x"), "its own");
    }
    EXPECT_EQ(textOf(check(feedOf("1.5.0"))), "found 1.5.0");
}

TEST_F(UpdateCheckerTest, keepsTheStagingFolderWhileAnUpdateIsStaged) {
    make();
    start();
    EXPECT_FALSE(UpdateStaging(stagingFolder).claim());
    network.answer(QByteArray::fromStdString(feedOf("1.4.0")));
    finished();
    EXPECT_TRUE(UpdateStaging(stagingFolder).claim());
    check(feedOf("1.5.0"));
    EXPECT_FALSE(UpdateStaging(stagingFolder).claim());
    checker.reset();
    EXPECT_TRUE(UpdateStaging(stagingFolder).claim());
}

// Starts the script as the real ones do.
class StartingTools : public FakeUpdateTools {
public:
    using FakeUpdateTools::FakeUpdateTools;

    bool launchInstallScript(const fs::path &script, std::int64_t, const fs::path &, const fs::path &,
                             const fs::path &stagingFolder) override {
        return SystemProcessRunner().startDetached(
            QStringLiteral("/bin/sh"),
            {QString::fromStdString(script), QString::fromStdString(stagingFolder)});
    }
};

TEST_F(UpdateCheckerTest, leavesTheStagingFolderToTheInstallScriptUntilItIsDone) {
    // It opens what a script may, and ends with the test's folder at the latest.
    tools.script = "exec 3</ 4</ 5</ 6</ 7</ 8</ 9</\n"
                   "while test -e \"$1/update.zip\"; do sleep 0.01; done\n";
    checker = std::make_unique<UpdateChecker>(
        clock, settings,
        UpdateChecker::Parts{.makeDownloader = [this] { return makeDownloader(); },
                             .makeTools = [this] { return std::make_unique<StartingTools>(tools); }},
        surroundings);
    ASSERT_EQ(textOf(check(feedOf("1.5.0"))), "found 1.5.0");
    checker->installPendingUpdate();
    start();
    EXPECT_EQ(textOf(finished()), "failed");
    checker.reset();
    EXPECT_FALSE(UpdateStaging(stagingFolder).claim());
    fs::remove(stagingFolder / "update.zip");
    EXPECT_TRUE(await([&] { return UpdateStaging(stagingFolder).claim().has_value(); }));
}

// The end of the program.

TEST_F(UpdateCheckerTest, handsWhatIsStagedToTheInstallScript) {
    tools.script = "#!/bin/sh\nlast line";
    make();
    check(feedOf("1.5.0"));
    checker->installPendingUpdate();
    ASSERT_EQ(tools.launches.size(), 1U);
    const auto &launch = tools.launches[0];
    EXPECT_EQ(launch.script, stagingFolder / "install.sh");
    EXPECT_EQ(launch.processIdentifier, ::getpid());
    EXPECT_EQ(launch.staged, stagingFolder / "Tavelo.app");
    EXPECT_EQ(launch.installed, bundle);
    EXPECT_EQ(launch.stagingFolder, stagingFolder);
    EXPECT_EQ(folder.read(stagingFolder / "install.sh"), "#!/bin/sh\nlast line");
}

TEST_F(UpdateCheckerTest, handsItOverOnce) {
    make();
    check(feedOf("1.5.0"));
    checker->installPendingUpdate();
    checker->installPendingUpdate();
    EXPECT_EQ(tools.launches.size(), 1U);
}

TEST_F(UpdateCheckerTest, touchesNothingThatItHasHandedOver) {
    make();
    check(feedOf("1.5.0"));
    // A check is on its way when the program ends.
    start();
    checker->installPendingUpdate();
    ASSERT_EQ(tools.launches.size(), 1U);
    network.answer(QByteArray::fromStdString(feedOf("1.6.0")));
    result.reset();
    std::string second;
    checker->runCheck([&](const auto &given) { second = textOf(given); });
    EXPECT_EQ(second, "failed");
    clock.advance(48h);
    checker->checkIfDue();
    QCoreApplication::processEvents();
    EXPECT_TRUE(network.waiting.empty());
    EXPECT_TRUE(fs::exists(stagingFolder / "Tavelo.app"));
    EXPECT_TRUE(fs::exists(stagingFolder / "install.sh"));
}

TEST_F(UpdateCheckerTest, installsNothingThatIsNotStaged) {
    make();
    checker->installPendingUpdate();
    check(feedOf("1.5.0"), "corrupt");
    checker->installPendingUpdate();
    start();
    network.answer(QByteArray::fromStdString(feedOf("1.5.0")));
    ASSERT_TRUE(await([&] { return !network.waiting.empty(); }));
    checker->installPendingUpdate();
    EXPECT_TRUE(tools.launches.empty());
}

TEST_F(UpdateCheckerTest, keepsQuietWhenTheScriptCannotBeLaunched) {
    tools.canLaunch = false;
    make();
    check(feedOf("1.5.0"));
    checker->installPendingUpdate();
    EXPECT_EQ(tools.launches.size(), 1U);
    EXPECT_TRUE(fs::exists(bundle));
}

TEST_F(UpdateCheckerTest, tellsWhatBecameOfTheLastUpdate) {
    make();
    EXPECT_EQ(checker->takeOutcome(), std::nullopt);
    folder.write("data/Tavelo/update-outcome", "kept 1.5.0 no room\n");
    const auto outcome = checker->takeOutcome();
    ASSERT_TRUE(outcome);
    EXPECT_EQ(outcome->kind, UpdateStaging::Outcome::Kind::Kept);
    EXPECT_EQ(outcome->version, "1.5.0");
    EXPECT_EQ(outcome->reason, "no room");
    EXPECT_EQ(checker->takeOutcome(), std::nullopt);
}

// Observers.

TEST_F(UpdateCheckerTest, tellsEveryObserverWhoseContextLives) {
    make();
    std::vector<std::string> told;
    const auto note = [&](const char *who) {
        return [&told, who](const QString &) { told.emplace_back(who); };
    };
    QObject first;
    QObject last;
    auto gone = std::make_unique<QObject>();
    checker->observeDownloading(&first, note("first"));
    checker->observeDownloading(gone.get(), note("gone"));
    checker->observeDownloading(&last, note("last"));
    checker->observeReady(gone.get(), note("gone"));
    checker->observeReady(&last, note("ready"));
    gone.reset();
    check(feedOf("1.5.0"));
    EXPECT_THAT(told, ElementsAre("first", "last", "ready"));
}

TEST_F(UpdateCheckerTest, tellsNoObserverThatAnotherOneEnded) {
    make();
    std::vector<std::string> told;
    QObject context;
    auto second = std::make_unique<QObject>();
    checker->observeDownloading(&context, [&](const QString &) {
        told.emplace_back("first");
        second.reset();
        checker->observeDownloading(&context, [&](const QString &) { told.emplace_back("third"); });
    });
    checker->observeDownloading(second.get(), [&](const QString &) { told.emplace_back("second"); });
    check(feedOf("1.5.0"));
    EXPECT_THAT(told, ElementsAre("first"));
}

TEST_F(UpdateCheckerTest, tellsNobodyWhenThereIsNothingNewer) {
    make();
    QObject context;
    bool isTold = false;
    checker->observeDownloading(&context, [&](const QString &) { isTold = true; });
    checker->observeReady(&context, [&](const QString &) { isTold = true; });
    check(feedOf("1.4.0"));
    EXPECT_FALSE(isTold);
}

TEST_F(UpdateCheckerTest, mayBeDestroyedAtEachStep) {
    // Of the network, of the tools, and by whoever is told.
    for (const int steps : {0, 1, 2}) {
        make();
        start();
        for (int step = 0; step < steps; ++step) {
            ASSERT_TRUE(await([&] { return !network.waiting.empty(); }));
            network.answer(step == 0 ? QByteArray::fromStdString(feedOf("1.5.0")) : QByteArray(archiveBytes));
        }
        checker.reset();
        QCoreApplication::processEvents();
        EXPECT_FALSE(result) << steps;
        EXPECT_TRUE(UpdateStaging(stagingFolder).claim());
    }
}

TEST_F(UpdateCheckerTest, mayBeDestroyedByWhoeverItTells) {
    for (const bool isReady : {false, true}) {
        make();
        QObject context;
        bool isTold = false;
        const auto destroy = [&](const QString &) {
            isTold = true;
            checker.reset();
        };
        if (isReady)
            checker->observeReady(&context, destroy);
        else
            checker->observeDownloading(&context, destroy);
        start();
        network.answer(QByteArray::fromStdString(feedOf("1.5.0")));
        ASSERT_TRUE(await([&] { return isTold || !network.waiting.empty(); }));
        if (!isTold)
            network.answer(archiveBytes);
        EXPECT_TRUE(await([&] { return isTold; }));
        EXPECT_FALSE(result);
    }
    make();
    bool isAnswered = false;
    checker->runCheck([&](const auto &) {
        checker.reset();
        isAnswered = true;
    });
    network.answer(QByteArray::fromStdString(feedOf("1.4.0")));
    EXPECT_TRUE(isAnswered);
}

// A disk without room.

class UpdateCheckerFullDiskTest : public UpdateCheckerTest {
protected:
    // What a task says that runs with the user's data on a small disk.
    std::string onSmallDisk(const std::string &options, const std::function<std::string()> &task) {
        fs::create_directories(data);
        make();
        return testing::reportOfFork([&]() -> std::string {
            if (const auto problem = testing::ownMounts(); !problem.empty())
                return problem;
            if (::mount("none", data.c_str(), "tmpfs", 0, options.c_str()) < 0)
                return "mount";
            return task();
        });
    }

    std::string staged() const {
        return fs::exists(stagingFolder) || checker->pendingVersion() || checker->isRunning()
                   ? ", something staged"
                   : "";
    }

    static void fill(const fs::path &folder) {
        std::ofstream file(folder / "Filling", std::ios::binary);
        while (file << std::string(1024, 'x') << std::flush) {
        }
    }

    const fs::path data = folder / "data";
};

TEST_F(UpdateCheckerFullDiskTest, stagesNothingWithoutRoomForItsFolders) {
    // The first one is the disk itself, then come the folder, the lock, the staging folder and the archive.
    for (const int files : {1, 2, 3, 4}) {
        EXPECT_EQ(onSmallDisk("nr_inodes=" + std::to_string(files),
                              [&] {
                                  const auto outcome = textOf(check(feedOf("1.5.0")));
                                  return outcome + staged() + (tools.unpacked.empty() ? "" : ", unpacked");
                              }),
                  "failed")
            << files;
    }
}

TEST_F(UpdateCheckerFullDiskTest, stagesWithJustEnoughRoom) {
    EXPECT_EQ(onSmallDisk("nr_inodes=8",
                          [&] {
                              const auto outcome = textOf(check(feedOf("1.5.0")));
                              return outcome + staged();
                          }),
              "found 1.5.0, something staged");
}

TEST_F(UpdateCheckerFullDiskTest, stagesNothingWithoutRoomForTheArchive) {
    const QByteArray large(200'000, 'z');
    EXPECT_EQ(onSmallDisk("size=100k",
                          [&] {
                              const auto feed = feedWith("1.5.0", "https://a.invalid/", digestOf(large));
                              const auto outcome = textOf(check(feed, large));
                              return outcome + staged() + (tools.unpacked.empty() ? "" : ", unpacked");
                          }),
              "failed");
}

TEST_F(UpdateCheckerFullDiskTest, stagesNothingWithoutRoomToUnpack) {
    tools.unpack = [](const fs::path &into) {
        fs::create_directory(into / "Tavelo.app");
        fill(into / "Tavelo.app");
        throw std::runtime_error("no room");
    };
    EXPECT_EQ(onSmallDisk("size=100k",
                          [&] {
                              const auto outcome = errorOf(check(feedOf("1.5.0")));
                              return outcome + staged();
                          }),
              "no room");
}

TEST_F(UpdateCheckerFullDiskTest, installsNothingWithoutRoomForTheScript) {
    tools.script = QByteArray(50'000, '#');
    EXPECT_EQ(onSmallDisk("size=100k",
                          [&] {
                              const auto outcome = textOf(check(feedOf("1.5.0")));
                              fill(data);
                              checker->installPendingUpdate();
                              return outcome + (tools.launches.empty() ? "" : ", launched") +
                                     (fs::exists(stagingFolder / "install.sh") ? ", written" : "");
                          }),
              "found 1.5.0");
}

// With a real server.

// The downloader without patience.
class ImpatientDownloader : public Downloader {
public:
    void get(const Request &request, std::function<void(Answer)> handler) override {
        auto hasty = request;
        hasty.timeout = 50ms;
        m_downloader.get(hasty, std::move(handler));
    }

private:
    HttpDownloader m_downloader;
};

class UpdateCheckerNetworkTest : public UpdateCheckerTest {
protected:
    using Reply = LoopbackServer::Reply;

    std::unique_ptr<Downloader> makeDownloader() override {
        if (isImpatient)
            return std::make_unique<ImpatientDownloader>();
        return std::make_unique<HttpDownloader>();
    }

    // A check in which the server answers so.
    CheckResult checkWith(const Reply &feedReply,
                          const Reply &archiveReply = LoopbackServer::ok(archiveBytes)) {
        LoopbackServer server([&](const auto &request) {
            return request.target.starts_with("/feed") ? feedReply : archiveReply;
        });
        const testing::ScopedEnvironment address("DIARY_UPDATE_URL", server.address("/feed"));
        make();
        start();
        auto given = finished();
        targets.clear();
        for (const auto &request : server.requests())
            targets.push_back(request.target);
        return given;
    }

    // A check in which only the archive is at fault. The feed's address of it is on the same server.
    CheckResult checkWithArchive(const Reply &reply, const std::string &digest = digestOf(archiveBytes)) {
        std::string feed;
        LoopbackServer server([&](const auto &request) {
            return request.target == "/feed" ? LoopbackServer::ok(feed) : reply;
        });
        feed = feedWith("1.5.0", server.address("/update.zip"), digest);
        const testing::ScopedEnvironment address("DIARY_UPDATE_URL", server.address("/feed"));
        make();
        start();
        return finished();
    }

    static std::vector<Reply> brokenReplies() {
        return {
            {.bytes = ""},
            {.bytes = "nonsense\r\n\r\n"},
            LoopbackServer::answer("404 Not Found", "Content-Length: 0\r\n"),
            LoopbackServer::answer("500 Oh", "Content-Length: 3\r\n", "why"),
            LoopbackServer::answer("200 OK", "Content-Length: 100\r\n", "cut off"),
            LoopbackServer::answer("200 OK", "Transfer-Encoding: chunked\r\n", "a\r\n12345"),
            LoopbackServer::answer("200 OK", "Content-Length: 3\r\n", "{ \"and more than announced\": 1}"),
            LoopbackServer::answer("200 OK", "Content-Length: 99999999999\r\n"),
            LoopbackServer::redirect("file:///etc/passwd"),
            LoopbackServer::redirect("http://updates.tavelo.invalid/"),
            LoopbackServer::redirect("/feed/again"),
        };
    }

    bool isImpatient = false;
    std::vector<std::string> targets;
};

TEST_F(UpdateCheckerNetworkTest, stagesWhatTheServerOffers) {
    EXPECT_EQ(textOf(checkWithArchive(LoopbackServer::ok(archiveBytes))), "found 1.5.0");
    EXPECT_EQ(folder.read(stagingFolder / "update.zip"), archiveBytes);
}

TEST_F(UpdateCheckerNetworkTest, addsNothingToTheAddressOfTheEnvironment) {
    EXPECT_EQ(textOf(checkWith(LoopbackServer::ok(feedOf("1.4.0")))), "up to date");
    EXPECT_THAT(targets, ElementsAre("/feed"));
}

TEST_F(UpdateCheckerNetworkTest, failsWhenNobodyListens) {
    std::string address;
    {
        const LoopbackServer gone([](const auto &) { return LoopbackServer::ok(""); });
        address = gone.address("/feed");
    }
    const testing::ScopedEnvironment feed("DIARY_UPDATE_URL", address);
    make();
    start();
    EXPECT_EQ(textOf(finished()), "failed");
    expectIdle();
}

TEST_F(UpdateCheckerNetworkTest, failsWithABrokenFeed) {
    for (const auto &reply : brokenReplies()) {
        EXPECT_EQ(textOf(checkWith(reply)), "failed") << reply.bytes;
        expectIdle();
    }
}

TEST_F(UpdateCheckerNetworkTest, failsWithABrokenArchive) {
    for (const auto &reply : brokenReplies()) {
        EXPECT_EQ(textOf(checkWithArchive(reply)), "failed") << reply.bytes;
        EXPECT_TRUE(tools.unpacked.empty());
        expectIdle();
    }
}

TEST_F(UpdateCheckerNetworkTest, failsWithAFeedThatNeverEnds) {
    auto endless = LoopbackServer::answer("200 OK", "");
    endless.then = Reply::Then::Repeat;
    endless.piece = std::string(4096, '[');
    EXPECT_EQ(textOf(checkWith(endless)), "failed");
    expectIdle();
}

TEST_F(UpdateCheckerNetworkTest, failsWhenTheServerFallsSilent) {
    isImpatient = true;
    const Reply silent{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n{", .then = Reply::Then::Stall};
    EXPECT_EQ(errorOf(checkWith(silent)), "no answer in time");
    expectIdle();
}

TEST_F(UpdateCheckerNetworkTest, failsWhenTheServerFallsSilentWithinTheArchive) {
    isImpatient = true;
    const Reply silent{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n1", .then = Reply::Then::Stall};
    EXPECT_EQ(textOf(checkWithArchive(silent)), "failed");
    expectIdle();
}

TEST_F(UpdateCheckerNetworkTest, failsWithTheDigestOfAnotherArchive) {
    EXPECT_EQ(textOf(checkWithArchive(LoopbackServer::ok(archiveBytes), digestOf("another"))), "failed");
    EXPECT_TRUE(tools.unpacked.empty());
    expectIdle();
}

TEST_F(UpdateCheckerNetworkTest, fetchesALargeArchive) {
    QByteArray large(20 * 1024 * 1024, 'x');
    large[12'345'678] = 'y';
    EXPECT_EQ(textOf(checkWithArchive(LoopbackServer::ok(large.toStdString()), digestOf(large))),
              "found 1.5.0");
    EXPECT_EQ(fs::file_size(stagingFolder / "update.zip"), static_cast<std::uintmax_t>(large.size()));
}

} // namespace
} // namespace diary

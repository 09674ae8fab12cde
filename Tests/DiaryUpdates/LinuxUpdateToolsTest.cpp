// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "Support/TestBundle.h"
#include "Support/WaitUntil.h"
#include "Support/ZipBytes.h"

#include <DiaryUpdates/LinuxUpdateTools.h>

#include <QCoreApplication>
#include <QString>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using testing::TemporaryFolder;
using testing::TestBundle;
using testing::waitUntil;
using testing::zipBytes;

QString keyOf(const TestBundle &bundle) {
    return QString::fromStdString(bundle.key().publicKey().text());
}

// What a completion was told, and that it was on this thread.
class Answer {
public:
    UpdateTools::Completion completion() {
        return [this](const std::optional<QString> &error) {
            EXPECT_EQ(std::this_thread::get_id(), m_thread);
            ++m_calls;
            m_error = error.value_or(QString()).toStdString();
        };
    }

    bool arrived() const { return m_calls > 0; }
    int calls() const { return m_calls; }

    std::string await() {
        EXPECT_TRUE(waitUntil([this] {
            QCoreApplication::processEvents();
            return arrived();
        }));
        return m_error;
    }

private:
    std::thread::id m_thread = std::this_thread::get_id();
    int m_calls = 0;
    std::string m_error;
};

ExpectedUpdate update(const char *version = "2.0", const char *running = "1.0") {
    return {QString::fromLatin1(version), QString::fromLatin1(running)};
}

TEST(LinuxUpdateTools, unpackAndVerifyWhatTheMakerSealed) {
    const TestBundle bundle;
    const TemporaryFolder staging;
    LinuxUpdateTools tools(keyOf(bundle));
    Answer unpacked;
    tools.unpack(bundle.archive(), staging.path(), unpacked.completion());
    EXPECT_FALSE(unpacked.arrived());
    EXPECT_EQ(unpacked.await(), "");
    Answer verified;
    tools.verify(staging / "Tavelo.app", update(), verified.completion());
    EXPECT_FALSE(verified.arrived());
    EXPECT_EQ(verified.await(), "");
    EXPECT_EQ(unpacked.calls() + verified.calls(), 2);
}

TEST(LinuxUpdateTools, sayWhatIsWrong) {
    const TestBundle bundle;
    const TemporaryFolder staging;
    staging.write("update.zip", zipBytes({{"../x", "bad"}}));
    LinuxUpdateTools tools(keyOf(bundle));
    Answer unpacked;
    tools.unpack(staging / "update.zip", staging.path(), unpacked.completion());
    EXPECT_EQ(unpacked.await(), "a bad path: ../x");
    Answer verified;
    tools.verify(bundle.path(), update("2.0", "2.0"), verified.completion());
    EXPECT_EQ(verified.await(), "version 2.0 is not newer than 2.0");
}

TEST(LinuxUpdateTools, verifyNothingWithoutAKey) {
    const TestBundle bundle;
    LinuxUpdateTools without{QString()};
    Answer verified;
    without.verify(bundle.path(), update(), verified.completion());
    EXPECT_EQ(verified.await(), "this program was built without a key for updates");
    LinuxUpdateTools nonsense(QStringLiteral("nonsense"));
    Answer again;
    nonsense.verify(bundle.path(), update(), again.completion());
    EXPECT_EQ(again.await(), "this is no public key: nonsense");
}

TEST(LinuxUpdateTools, answerNothingOnceDestroyed) {
    const TestBundle bundle;
    const TemporaryFolder staging;
    const auto archive = bundle.archive();
    for (int round = 0; round < 20; ++round) {
        const auto folder = staging / std::to_string(round);
        fs::create_directory(folder);
        Answer answer;
        auto tools = std::make_unique<LinuxUpdateTools>(keyOf(bundle));
        tools->unpack(archive, folder, answer.completion());
        tools->verify(bundle.path(), update(), answer.completion());
        // At any point of the work: when some of it is seen, and in the end before the answer is taken.
        waitUntil([&] { return round % 2 == 0 || fs::exists(folder / "Tavelo.app/bin"); });
        tools.reset();
        QCoreApplication::processEvents();
        EXPECT_FALSE(answer.arrived());
    }
}

TEST(LinuxUpdateTools, startTheScriptWithWhatItNeedsAndDoNotWait) {
    const TemporaryFolder folder;
    // Not every path is text.
    const fs::path odd = folder / "-a 'quoted' \"name\"\nof \xff two lines";
    folder.write("script", "printf '%s|' \"$@\" >\"$4.part\"\npwd >>\"$4.part\"\nmv \"$4.part\" \"$4\"\n");
    LinuxUpdateTools tools{QString()};
    EXPECT_TRUE(tools.launchInstallScript(folder / "script", 12, odd, folder / "installed", odd));
    ASSERT_TRUE(waitUntil([&] { return fs::exists(odd); }));
    EXPECT_EQ(folder.read(odd.filename()),
              "12|" + odd.string() + "|" + (folder / "installed").string() + "|" + odd.string() + "|/\n");
}

TEST(LinuxUpdateTools, haveAScriptForTheShell) {
    LinuxUpdateTools tools{QString()};
    EXPECT_TRUE(tools.installScript().startsWith("#!/bin/sh\n"));
    EXPECT_TRUE(tools.installScript().endsWith("\nexit\n"));
}

} // namespace
} // namespace diary

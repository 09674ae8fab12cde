// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "Support/TestBundle.h"

#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/BundleSeal.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <stop_token>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using testing::TemporaryFolder;
using testing::TestBundle;

std::string errorOf(const fs::path &bundle, const BundleExpectation &expected,
                    const std::stop_token &stop = {}) {
    try {
        verifyBundle(bundle, expected, stop);
    } catch (const BundleError &error) {
        return error.what();
    }
    return {};
}

std::string errorOf(const TestBundle &bundle) {
    return errorOf(bundle.path(), bundle.expectation());
}

void setMode(const fs::path &path, unsigned mode) {
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
}

std::string content(const fs::path &file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void overwrite(const fs::path &file, const std::string &bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

TEST(BundleSeal, holdsForWhatWasSealed) {
    EXPECT_EQ(errorOf(TestBundle()), "");
}

TEST(BundleSeal, isOneLineForEachThing) {
    BundleSeal seal{"1.4.2", "x86_64", {}};
    seal.contents["bin"] = {BundleSeal::Kind::Folder, 0, {}, {}};
    seal.contents["bin/tavelo"] = {BundleSeal::Kind::Program, 7, std::string(64, 'a'), {}};
    seal.contents["share/50 %\xc3\xbc"] = {BundleSeal::Kind::File, 0, std::string(64, '0'), {}};
    seal.contents["share/link"] = {BundleSeal::Kind::Link, 0, {}, "50 %\xc3\xbc"};
    const std::string text = "tavelo bundle 1\n"
                             "version 1.4.2\n"
                             "architecture x86_64\n"
                             "folder bin\n"
                             "program 7 " +
                             std::string(64, 'a') +
                             " bin/tavelo\n"
                             "file 0 " +
                             std::string(64, '0') +
                             " share/50%20%25%c3%bc\n"
                             "link 50%20%25%c3%bc share/link\n";
    EXPECT_EQ(seal.text(), text);
    EXPECT_EQ(BundleSeal::parse(text), seal);
}

TEST(BundleSeal, hasOneWayToBeWritten) {
    const std::string head = "tavelo bundle 1\nversion 1\narchitecture x86_64\n";
    const std::string digest(64, 'a');
    EXPECT_EQ(BundleSeal::parse(head).version, "1");
    for (const auto &text : {
             std::string(),
             std::string("tavelo bundle 2\nversion 1\narchitecture x86_64\n"),
             std::string("tavelo bundle 1\nversion \narchitecture x86_64\n"),
             std::string("tavelo bundle 1\nversion -1\narchitecture x86_64\n"),
             std::string("tavelo bundle 1\nversion 1 2\narchitecture x86_64\n"),
             std::string("tavelo bundle 1\nversion " + std::string(65, '1') + "\narchitecture x86_64\n"),
             std::string("tavelo bundle 1\nversion 1\narchitecture ../x\n"),
             head.substr(0, head.size() - 1),
             head + "\n",
             head + "folder bin",
             head + "folder b\nfolder a\n",
             head + "folder a\nfolder a\n",
             head + "folder a/../b\n",
             head + "folder /a\n",
             head + "folder %2e%2e\n",
             head + "folder %61\n",
             head + "folder a%\n",
             head + "folder a%2\n",
             head + "folder a%zz\n",
             head + "folder a%C3\n",
             head + "folder a b\n",
             head + "folder a%00\n",
             head + "device a\n",
             head + "file 1 " + digest + "\n",
             head + "file -1 " + digest + " a\n",
             head + "file 01 " + digest + " a\n",
             head + "file 99999999999999999999 " + digest + " a\n",
             head + "file 1 " + std::string(64, 'A') + " a\n",
             head + "file 1 " + digest.substr(1) + " a\n",
             head + "link /etc a\n",
             head + "link ../x a\n",
         })
        EXPECT_THROW(BundleSeal::parse(text), BundleError) << text;
}

TEST(BundleSeal, isBoundedInItsEntries) {
    std::string text = "tavelo bundle 1\nversion 1\narchitecture x86_64\n";
    for (int index = 100'000; index <= 120'000; ++index)
        text += "folder " + std::to_string(index) + "\n";
    EXPECT_THROW(BundleSeal::parse(text), BundleError);
}

TEST(BundleSeal, failsWithoutSignature) {
    const TestBundle bundle;
    fs::remove(bundle.path() / "seal/contents.minisig");
    EXPECT_THAT(errorOf(bundle), HasSubstr("seal/contents.minisig: No such file"));
}

TEST(BundleSeal, failsWithoutList) {
    const TestBundle bundle;
    fs::remove(bundle.path() / "seal/contents");
    EXPECT_THAT(errorOf(bundle), HasSubstr("seal/contents: No such file"));
}

TEST(BundleSeal, failsWithoutSeal) {
    const TestBundle bundle;
    fs::remove_all(bundle.path() / "seal");
    EXPECT_THAT(errorOf(bundle), HasSubstr("seal: No such file"));
}

TEST(BundleSeal, failsForABundleThatIsNotThere) {
    const TestBundle bundle;
    EXPECT_THAT(errorOf(bundle.path() / "other", bundle.expectation()), HasSubstr("No such file"));
    EXPECT_THAT(errorOf(bundle.path() / "bin/tavelo", bundle.expectation()), HasSubstr("Not a directory"));
}

TEST(BundleSeal, failsForALinkToABundle) {
    const TestBundle bundle;
    const TemporaryFolder folder;
    fs::create_directory_symlink(bundle.path(), folder / "Tavelo.app");
    EXPECT_NE(errorOf(folder / "Tavelo.app", bundle.expectation()), "");
}

TEST(BundleSeal, failsWithAnotherKey) {
    const TestBundle bundle;
    auto expected = bundle.expectation();
    expected.key = MakerKey::make().publicKey();
    EXPECT_EQ(errorOf(bundle.path(), expected), "the signature is by another key");
}

TEST(BundleSeal, failsWithAnAlteredList) {
    const TestBundle bundle;
    const auto list = bundle.path() / "seal/contents";
    const auto text = content(list);
    for (std::size_t index = 0; index < text.size(); index += 7) {
        auto altered = text;
        altered[index] = static_cast<char>(altered[index] ^ 1);
        overwrite(list, altered);
        EXPECT_EQ(errorOf(bundle), "the signature is not of this list");
    }
    overwrite(list, text + "folder zzz\n");
    EXPECT_EQ(errorOf(bundle), "the signature is not of this list");
    overwrite(list, std::string(9U << 20U, 'x'));
    EXPECT_EQ(errorOf(bundle), "too large: seal/contents");
}

TEST(BundleSeal, failsWithMoreInTheSealThanItself) {
    const TestBundle bundle;
    bundle.addFile("seal/more", "", 0644);
    EXPECT_EQ(errorOf(bundle), "was added: seal/more");
}

// What may happen to a sealed bundle, and what is said then.
struct Tampering {
    const char *name;
    std::function<void(const fs::path &bundle)> tamper;
    const char *error;
};

const Tampering tamperings[] = {
    {"another content of the same size",
     [](const fs::path &app) { overwrite(app / "share/a name with blanks and \xc3\xbc", "texx"); },
     "was altered: share/a name"},
    {"one byte more",
     [](const fs::path &app) { std::ofstream(app / "lib/tavelo/libone.so.1", std::ios::app) << "x"; },
     "was altered: lib/tavelo/libone.so.1"},
    {"an empty file", [](const fs::path &app) { fs::resize_file(app / "bin/tavelo", 0); },
     "was altered: bin/tavelo"},
    {"a file more",
     [](const fs::path &app) {
         overwrite(app / "lib/tavelo/libtwo.so", "");
         setMode(app / "lib/tavelo/libtwo.so", 0644);
     },
     "was added: lib/tavelo/libtwo.so"},
    {"a folder more",
     [](const fs::path &app) {
         fs::create_directory(app / "plugins");
         setMode(app / "plugins", 0755);
     },
     "was added: plugins"},
    {"a link more", [](const fs::path &app) { fs::create_symlink("bin", app / "sbin"); }, "was added: sbin"},
    {"no file", [](const fs::path &app) { fs::remove(app / "lib/tavelo/libone.so.1"); },
     "is missing: lib/tavelo/libone.so.1"},
    {"no folder", [](const fs::path &app) { fs::remove(app / "share/empty"); }, "is missing: share/empty"},
    {"no link", [](const fs::path &app) { fs::remove(app / "lib/tavelo/libone.so"); },
     "is missing: lib/tavelo/libone.so"},
    {"another target",
     [](const fs::path &app) {
         fs::remove(app / "lib/tavelo/libone.so");
         fs::create_symlink("../../bin/tavelo", app / "lib/tavelo/libone.so");
     },
     "was altered: lib/tavelo/libone.so"},
    {"a link that leads out",
     [](const fs::path &app) {
         fs::remove(app / "lib/tavelo/libone.so");
         fs::create_symlink("/bin/sh", app / "lib/tavelo/libone.so");
     },
     "a link that leads out: lib/tavelo/libone.so"},
    {"a link for a file with the same content",
     [](const fs::path &app) {
         fs::rename(app / "bin/tavelo", app.parent_path() / "aside");
         fs::create_symlink("../../aside", app / "bin/tavelo");
     },
     "a link that leads out: bin/tavelo"},
    {"a second name of a file outside",
     [](const fs::path &app) { fs::create_hard_link(app / "bin/tavelo", app.parent_path() / "aside"); },
     "a file with a second name: bin/tavelo"},
    {"setuid", [](const fs::path &app) { setMode(app / "bin/tavelo", 04755); },
     "a mode that a bundle may not have: bin/tavelo"},
    {"a file that everybody may write", [](const fs::path &app) { setMode(app / "bin/tavelo", 0777); },
     "a mode that a bundle may not have: bin/tavelo"},
    {"a program that no longer is one", [](const fs::path &app) { setMode(app / "bin/tavelo", 0644); },
     "was altered: bin/tavelo"},
    {"a file that became a program",
     [](const fs::path &app) { setMode(app / "lib/tavelo/libone.so.1", 0755); },
     "was altered: lib/tavelo/libone.so.1"},
    {"a folder that everybody may write", [](const fs::path &app) { setMode(app / "bin", 0777); },
     "a mode that a bundle may not have: bin"},
    {"a bundle that everybody may write", [](const fs::path &app) { setMode(app, 01777); },
     "a mode that a bundle may not have: the bundle itself"},
    {"a seal that everybody may write", [](const fs::path &app) { setMode(app / "seal", 0777); },
     "a mode that a bundle may not have: seal"},
    {"a list that everybody may write", [](const fs::path &app) { setMode(app / "seal/contents", 0666); },
     "a mode that a bundle may not have: seal/contents"},
    {"a pipe for a file",
     [](const fs::path &app) {
         fs::remove(app / "bin/tavelo");
         ASSERT_EQ(::mkfifo((app / "bin/tavelo").c_str(), 0755), 0);
     },
     "neither file nor folder: bin/tavelo"},
    {"a pipe for the list",
     [](const fs::path &app) {
         fs::remove(app / "seal/contents");
         ASSERT_EQ(::mkfifo((app / "seal/contents").c_str(), 0644), 0);
     },
     "no plain file: seal/contents"},
    {"a link for the list",
     [](const fs::path &app) {
         fs::rename(app / "seal/contents", app.parent_path() / "aside");
         fs::create_symlink("../../aside", app / "seal/contents");
     },
     "seal/contents: "},
    {"a link for the seal",
     [](const fs::path &app) {
         fs::rename(app / "seal", app.parent_path() / "aside");
         fs::create_symlink("../aside", app / "seal");
     },
     "seal: "},
    {"a folder for a file",
     [](const fs::path &app) {
         fs::remove(app / "bin/tavelo");
         fs::create_directory(app / "bin/tavelo");
         setMode(app / "bin/tavelo", 0755);
     },
     "was altered: bin/tavelo"},
    {"a file for a folder",
     [](const fs::path &app) {
         fs::remove(app / "share/empty");
         overwrite(app / "share/empty", "");
         setMode(app / "share/empty", 0644);
     },
     "was altered: share/empty"},
    {"a name that is no good one", [](const fs::path &app) { overwrite(app / "bin/a\\b", ""); },
     "a bad path: bin/a\\b"},
};

TEST(BundleSeal, failsAfterEveryAlteration) {
    for (const auto &[name, tamper, error] : tamperings) {
        SCOPED_TRACE(name);
        const TestBundle bundle;
        tamper(bundle.path());
        EXPECT_THAT(errorOf(bundle), StartsWith(error));
    }
}

TEST(BundleSeal, failsForAnotherVersionThanAnnounced) {
    const TestBundle bundle("2.0");
    EXPECT_EQ(errorOf(bundle.path(), bundle.expectation("2.1")), "the bundle is version 2.0 and not 2.1");
    EXPECT_EQ(errorOf(bundle.path(), bundle.expectation("2.0.0")), "the bundle is version 2.0 and not 2.0.0");
}

TEST(BundleSeal, failsForAVersionThatIsNotNewer) {
    const TestBundle bundle("2.0");
    for (const auto *running : {"2.0", "2.0.0", "2.0.1", "3"})
        EXPECT_EQ(errorOf(bundle.path(), bundle.expectation("2.0", running)),
                  std::string("version 2.0 is not newer than ") + running);
}

TEST(BundleSeal, failsForAnotherMachine) {
    const TestBundle bundle;
    bundle.seal("2.0", "riscv64");
    EXPECT_EQ(errorOf(bundle), "the bundle is for riscv64 and not for " + machineArchitecture());
}

TEST(BundleSeal, failsWhenItIsToStop) {
    const TestBundle bundle;
    std::stop_source source;
    source.request_stop();
    EXPECT_EQ(errorOf(bundle.path(), bundle.expectation(), source.get_token()), "stopped");
}

TEST(BundleSeal, failsWithTooManyFiles) {
    const TestBundle bundle;
    bundle.makeFolder("many");
    for (int index = 0; index <= 20'000; ++index)
        overwrite(bundle.path() / "many" / std::to_string(index), "");
    EXPECT_EQ(errorOf(bundle), "too many files");
}

TEST(BundleSeal, failsForAHugeFileWithoutReadingItAll) {
    const TestBundle bundle;
    overwrite(bundle.path() / "bin/huge", "");
    setMode(bundle.path() / "bin/huge", 0644);
    fs::resize_file(bundle.path() / "bin/huge", 1ULL << 42U);
    EXPECT_EQ(errorOf(bundle), "the bundle is too large");
}

TEST(SealingABundle, refusesWhatNobodyWouldTake) {
    const TestBundle bundle;
    EXPECT_THROW(bundle.seal("2 0"), BundleError);
    EXPECT_THROW(bundle.seal("2.0", ""), BundleError);
    setMode(bundle.path() / "bin/tavelo", 0775);
    EXPECT_THROW(bundle.seal("2.0"), BundleError);
}

TEST(SealingABundle, replacesTheSealThatIsThere) {
    const TestBundle bundle;
    bundle.addFile("bin/more", "more", 0755);
    EXPECT_EQ(errorOf(bundle), "was added: bin/more");
    bundle.seal("3.0");
    EXPECT_EQ(errorOf(bundle.path(), bundle.expectation("3.0")), "");
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/ForkedTask.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"
#include "Support/TestBundle.h"
#include "Support/ZipBytes.h"

#include <DiaryUpdates/BundleArchive.h>
#include <DiaryUpdates/BundleError.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include <archive.h>
#include <archive_entry.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::ownMounts;
using testing::reportOfFork;
using testing::TemporaryFolder;
using testing::TestBundle;
using testing::zipBytes;
using testing::ZipEntry;
using namespace std::string_literals;
using Names = std::set<std::string>;

constexpr unsigned link = 0120777;

// A folder to unpack into, one more level down so that an escape would be seen.
class Unpacked {
public:
    explicit Unpacked(const std::string &archive, const ArchiveLimits &limits = {},
                      const std::stop_token &stop = {}) {
        m_folder.write("update.zip", archive);
        fs::create_directory(folder());
        unpack(m_folder / "update.zip", limits, stop);
    }
    explicit Unpacked(const fs::path &archive) {
        fs::create_directory(folder());
        unpack(archive, {}, {});
    }

    fs::path folder() const { return m_folder / "staging"; }
    const std::string &error() const { return m_error; }
    Names names(const fs::path &below = {}) const { return m_folder.names("staging" / below); }
    std::string read(const fs::path &name) const { return m_folder.read("staging" / name); }
    unsigned mode(const fs::path &name) const {
        return static_cast<unsigned>(fs::symlink_status(folder() / name).permissions());
    }
    // What stands beside the folder too.
    bool keptInside() const {
        for (const auto &name : m_folder.names()) {
            if (name != "staging" && name != "update.zip")
                return false;
        }
        return true;
    }

private:
    void unpack(const fs::path &archive, const ArchiveLimits &limits, const std::stop_token &stop) {
        try {
            unpackArchive(archive, folder(), stop, limits);
        } catch (const BundleError &error) {
            m_error = error.what();
        }
    }

    TemporaryFolder m_folder;
    std::string m_error;
};

// Files in memory: some tests unpack a thousand times, and each time brings everything to the disk.
std::optional<std::string> folderInMemory() {
    const char *path = "/dev/shm";
    return ::access(path, W_OK | X_OK) == 0 ? std::optional<std::string>(path) : std::nullopt;
}

// As programs write it, compressed, with a file of zeros.
std::string zipOfZeros(std::size_t size) {
    std::string bytes(1U << 20U, '\0');
    std::size_t used = 0;
    struct archive *writer = archive_write_new();
    archive_write_set_format_zip(writer);
    archive_write_set_bytes_in_last_block(writer, 1);
    EXPECT_EQ(archive_write_open_memory(writer, bytes.data(), bytes.size(), &used), ARCHIVE_OK);
    struct archive_entry *entry = archive_entry_new();
    archive_entry_set_pathname(entry, "zeros");
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_entry_set_size(entry, static_cast<la_int64_t>(size));
    EXPECT_EQ(archive_write_header(writer, entry), ARCHIVE_OK);
    const std::string zeros(1U << 20U, '\0');
    for (std::size_t written = 0; written < size; written += zeros.size())
        EXPECT_EQ(archive_write_data(writer, zeros.data(), zeros.size()),
                  static_cast<la_ssize_t>(zeros.size()));
    archive_write_close(writer);
    archive_entry_free(entry);
    archive_write_free(writer);
    bytes.resize(used);
    return bytes;
}

TEST(BundleArchive, unpacksASealedBundleSoThatTheSealHolds) {
    const TestBundle bundle;
    const Unpacked unpacked(bundle.archive());
    EXPECT_EQ(unpacked.error(), "");
    EXPECT_EQ(unpacked.names(), Names{"Tavelo.app"});
    EXPECT_NO_THROW(verifyBundle(unpacked.folder() / "Tavelo.app", bundle.expectation(), {}));
}

TEST(BundleArchive, unpacksSoThatTheSealHoldsWhateverTheUsersMask) {
    const TestBundle bundle;
    for (const mode_t mask : {0U, 0002U, 0077U}) {
        const auto before = ::umask(mask);
        const Unpacked unpacked(bundle.archive());
        ::umask(before);
        EXPECT_EQ(unpacked.error(), "");
        EXPECT_NO_THROW(verifyBundle(unpacked.folder() / "Tavelo.app", bundle.expectation(), {})) << mask;
    }
}

TEST(BundleArchive, ofTheSameBundleIsTheSame) {
    const TestBundle bundle;
    const TemporaryFolder folder;
    archiveBundle(bundle.path(), folder / "one.zip", 1'700'000'000);
    fs::last_write_time(bundle.path() / "bin/tavelo",
                        fs::file_time_type::clock::now() - std::chrono::hours(5));
    archiveBundle(bundle.path(), folder / "other.zip", 1'700'000'000);
    EXPECT_EQ(folder.read("one.zip"), folder.read("other.zip"));
}

TEST(BundleArchive, mayLeaveOutItsFolders) {
    const Unpacked unpacked(zipBytes({{"a/b/c", "text"}, {"a/d", "", 0100755}}));
    EXPECT_EQ(unpacked.error(), "");
    EXPECT_EQ(unpacked.read("a/b/c"), "text");
    EXPECT_EQ(unpacked.mode("a/b"), 0755U);
    EXPECT_EQ(unpacked.mode("a/b/c"), 0644U);
    EXPECT_EQ(unpacked.mode("a/d"), 0755U);
}

TEST(BundleArchive, mayHoldLinksThatStayInside) {
    const Unpacked unpacked(zipBytes({{"a/link", "../b/file", link}, {"b/file", "text"}}));
    EXPECT_EQ(unpacked.error(), "");
    EXPECT_EQ(unpacked.read("a/link"), "text");
}

TEST(BundleArchive, neverWritesOutside) {
    for (const auto &name : {"../x"s, "/x"s, "a/../../x"s, "a/../b"s, "./x"s, "."s, ".."s, ""s, "/"s, "a//b"s,
                             "a\\..\\x"s, "a\0b"s, std::string(300, 'n'), "a\nb"s}) {
        const Unpacked unpacked(zipBytes({{"good", "text"}, {name, "bad"}}));
        EXPECT_THAT(unpacked.error(), HasSubstr("a bad path: ")) << name;
        EXPECT_THAT(unpacked.names(), IsEmpty()) << name;
        EXPECT_TRUE(unpacked.keptInside()) << name;
    }
}

TEST(BundleArchive, neverBelievesANameThatItsTableDoesNotHave) {
    for (const auto &name : {"../x"s, "/tmp/x"s, "other"s, "good\0x"s}) {
        ZipEntry entry{"good", "bad"};
        entry.nameBeforeContent = name;
        const Unpacked unpacked(zipBytes({entry}));
        EXPECT_TRUE(unpacked.keptInside()) << name;
        if (unpacked.error().empty())
            EXPECT_EQ(unpacked.names(), Names{"good"}) << name;
        else
            EXPECT_THAT(unpacked.names(), IsEmpty()) << name;
    }
}

TEST(BundleArchive, failsForLinksThatLeadOut) {
    for (const auto &target : {"/etc"s, ".."s, "../.."s, "b/../../.."s, ""s, "."s}) {
        const Unpacked unpacked(zipBytes({{"a/link", target, link}}));
        EXPECT_NE(unpacked.error(), "") << target;
        EXPECT_FALSE(fs::is_symlink(unpacked.folder() / "a/link")) << target;
    }
}

TEST(BundleArchive, neverWritesThroughALinkItHolds) {
    for (const std::vector<ZipEntry> &entries :
         {std::vector<ZipEntry>{{"b/", "", 0040755}, {"a", "b", link}, {"a/x", "bad"}},
          std::vector<ZipEntry>{{"a", "..", link}, {"a/x", "bad"}},
          std::vector<ZipEntry>{{"a/x", "bad"}, {"a", "b", link}}}) {
        const Unpacked unpacked(zipBytes(entries));
        EXPECT_NE(unpacked.error(), "");
        EXPECT_TRUE(unpacked.keptInside());
        EXPECT_FALSE(fs::is_symlink(unpacked.folder() / "a"));
    }
}

TEST(BundleArchive, neverWritesThroughALinkThatStandsThere) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "staging");
    fs::create_directory(folder / "outside");
    fs::create_directory_symlink("../outside", folder / "staging/a");
    folder.write("file", "kept");
    fs::create_symlink("../file", folder / "staging/b");
    folder.write("one.zip", zipBytes({{"a/x", "bad"}}));
    folder.write("other.zip", zipBytes({{"b", "bad"}}));
    EXPECT_THROW(unpackArchive(folder / "one.zip", folder / "staging", {}), BundleError);
    EXPECT_THROW(unpackArchive(folder / "other.zip", folder / "staging", {}), BundleError);
    EXPECT_THAT(folder.names("outside"), IsEmpty());
    EXPECT_EQ(folder.read("file"), "kept");
}

TEST(BundleArchive, neverWritesOverWhatStandsThere) {
    const TemporaryFolder folder;
    folder.write("staging/a", "kept");
    folder.write("update.zip", zipBytes({{"a", "bad"}}));
    EXPECT_THROW(unpackArchive(folder / "update.zip", folder / "staging", {}), BundleError);
    EXPECT_EQ(folder.read("staging/a"), "kept");
}

TEST(BundleArchive, failsForNamesThatOccurTwice) {
    for (const std::vector<ZipEntry> &entries :
         {std::vector<ZipEntry>{{"a", "one"}, {"a", "other"}},
          std::vector<ZipEntry>{{"a", "one"}, {"a/", "", 0040755}},
          std::vector<ZipEntry>{{"a/", "", 0040755}, {"a/", "", 0040755}}}) {
        const Unpacked unpacked(zipBytes(entries));
        EXPECT_EQ(unpacked.error(), "occurs twice: a");
        EXPECT_THAT(unpacked.names(), IsEmpty());
    }
    ZipEntry disguised{"b", "other"};
    disguised.nameBeforeContent = "a";
    EXPECT_NE(Unpacked(zipBytes({{"a", "one"}, disguised})).error(), "");
    EXPECT_NE(Unpacked(zipBytes({{"a", "file"}, {"a/b", "below it"}})).error(), "");
}

TEST(BundleArchive, failsForModesAndKindsThatABundleMayNotHave) {
    for (const unsigned mode : {0104755U, 0102755U, 0101755U, 0042755U, 0041777U})
        EXPECT_EQ(Unpacked(zipBytes({{"a", "", mode}})).error(), "a mode that a bundle may not have: a");
    for (const unsigned kind : {0010644U, 0020644U, 0060644U, 0140644U})
        EXPECT_EQ(Unpacked(zipBytes({{"a", "", kind}})).error(), "neither file nor folder: a") << kind;
}

TEST(BundleArchive, failsForEncryptedEntries) {
    for (const unsigned flag : {1U, 1U << 6U, 1U << 13U}) {
        const Unpacked unpacked(zipBytes({{"a", "xxxxxxxxxxxxsecret", 0100644, flag}}));
        EXPECT_EQ(unpacked.error(), "an encrypted archive");
        EXPECT_THAT(unpacked.names(), IsEmpty());
    }
}

TEST(BundleArchive, failsForAWrongChecksum) {
    ZipEntry entry{"a", "text"};
    entry.checksum = 1;
    EXPECT_THAT(Unpacked(zipBytes({entry})).error(), HasSubstr("the archive is damaged: "));
}

TEST(BundleArchive, failsWhenItIsCutAnywhere) {
    const testing::ScopedEnvironment temporaryFolders{"TMPDIR", folderInMemory()};
    const auto archive = zipBytes({{"Tavelo.app/", "", 0040755}, {"Tavelo.app/a", "text"}});
    EXPECT_EQ(Unpacked(archive).error(), "");
    for (std::size_t size = 0; size < archive.size(); ++size)
        EXPECT_NE(Unpacked(archive.substr(0, size)).error(), "") << size;
}

TEST(BundleArchive, staysInsideWithAnyByteAltered) {
    const testing::ScopedEnvironment temporaryFolders{"TMPDIR", folderInMemory()};
    const auto archive = zipBytes({{"a/", "", 0040755}, {"a/b", "text"}, {"a/c", "b", link}});
    for (std::size_t index = 0; index < archive.size(); ++index) {
        for (const char byte : {'/', '.', '\0', '\xff'}) {
            auto altered = archive;
            altered[index] = byte;
            EXPECT_TRUE(Unpacked(altered).keptInside()) << index;
        }
    }
}

TEST(BundleArchive, failsForAnythingButAPlainArchive) {
    const auto archive = zipBytes({{"a", "text"}});
    const std::string plain = "this is no plain zip archive";
    EXPECT_EQ(Unpacked(""s).error(), plain);
    EXPECT_EQ(Unpacked("PK\x03\x04"s).error(), plain);
    EXPECT_EQ(Unpacked(std::string(100'000, 'x')).error(), plain);
    EXPECT_EQ(Unpacked(archive + "\n").error(), plain);
    EXPECT_EQ(Unpacked("#!/bin/sh\n" + archive).error(), plain);
    EXPECT_EQ(Unpacked(archive + archive).error(), plain);
}

TEST(BundleArchive, failsForAPipeAndALinkAndNoFile) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "staging");
    folder.write("good.zip", zipBytes({{"a", "text"}}));
    ASSERT_EQ(::mkfifo((folder / "pipe.zip").c_str(), 0644), 0);
    fs::create_symlink("good.zip", folder / "link.zip");
    for (const auto *name : {"pipe.zip", "link.zip", "none.zip", "staging"})
        EXPECT_THROW(unpackArchive(folder / name, folder / "staging", {}), BundleError) << name;
    EXPECT_THROW(unpackArchive(folder / "good.zip", folder / "none", {}), BundleError);
    EXPECT_THAT(folder.names("staging"), IsEmpty());
}

TEST(BundleArchive, isStoppedByWhatItReallyUnpacksTo) {
    const auto bomb = zipOfZeros(64U << 20U);
    ASSERT_LT(bomb.size(), 100'000U);
    ArchiveLimits limits;
    limits.totalSize = 1U << 20U;
    const Unpacked unpacked(bomb, limits);
    EXPECT_EQ(unpacked.error(), "the archive unpacks to too much");
    EXPECT_LE(fs::file_size(unpacked.folder() / "zeros"), limits.totalSize);

    limits = {};
    limits.entrySize = 1U << 20U;
    EXPECT_EQ(Unpacked(bomb, limits).error(), "the archive unpacks to too much");
    EXPECT_EQ(Unpacked(bomb).error(), "");
}

TEST(BundleArchive, ofManyEntriesFailsBeforeAnythingIsWritten) {
    std::vector<ZipEntry> entries;
    for (int index = 0; index < 65'535; ++index)
        entries.push_back({"f" + std::to_string(index), ""});
    const Unpacked unpacked(zipBytes(entries));
    EXPECT_EQ(unpacked.error(), "too many files");
    EXPECT_THAT(unpacked.names(), IsEmpty());

    // A count that is too small by 65,536, as the record has only so many digits.
    for (int index = 65'535; index < 100'000; ++index)
        entries.push_back({"f" + std::to_string(index), ""});
    const Unpacked more(zipBytes(entries));
    EXPECT_NE(more.error(), "");
    EXPECT_THAT(more.names(), IsEmpty());
}

TEST(BundleArchive, failsWhenItIsToStop) {
    std::stop_source source;
    source.request_stop();
    const Unpacked unpacked(zipBytes({{"a", "text"}}), {}, source.get_token());
    EXPECT_EQ(unpacked.error(), "stopped");
    EXPECT_THAT(unpacked.names(), IsEmpty());
}

TEST(BundleArchive, failsOnAFullDisk) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "small");
    folder.write("update.zip", zipOfZeros(4U << 20U));
    const auto report = reportOfFork([&]() -> std::string {
        if (auto reason = ownMounts(); !reason.empty())
            return "skip: " + reason;
        if (::mount("none", (folder / "small").c_str(), "tmpfs", 0, "size=1m") < 0)
            return "skip: no small file system";
        unpackArchive(folder / "update.zip", folder / "small", {});
        return "unpacked";
    });
    if (report.starts_with("skip: "))
        GTEST_SKIP() << report;
    EXPECT_EQ(report, "exception: zeros: No space left on device");
}

} // namespace
} // namespace diary

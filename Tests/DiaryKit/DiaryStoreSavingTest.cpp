// SPDX-License-Identifier: MIT
#include "Support/ForkedTask.h"
#include "Support/TemporaryFolder.h"

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/YearSectionParser.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using testing::endedProcess;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::reportOfFork;
using testing::TemporaryFolder;
using testing::temporaryName;
using Names = std::set<std::string>;
using Bodies = std::map<std::int64_t, std::string>;

constexpr MonthDay piDay{3, 14};
constexpr MonthDay nextDay{3, 15};
constexpr std::string_view marker = "*— two versions —*";
constexpr std::string_view skipMark = "skip: ";
const fs::path dayFile = "vault/03-14.md";

std::string document(const Bodies &bodies, MonthDay monthDay = piDay) {
    auto text = DiaryStore::defaultText(monthDay);
    for (const auto &[year, body] : bodies)
        text = YearSectionParser::replacingEntry(body, year, monthDay, text);
    return text;
}

Bodies bodiesOf(std::string_view text) {
    Bodies bodies;
    for (const auto &[year, body] : YearSectionParser::sectionBodies(text))
        bodies[year] = body;
    return bodies;
}

class DiaryStoreSaving : public ::testing::Test {
protected:
    DiaryStore openStore() const {
        return DiaryStore(m_folder / "vault",
                          {.conflictMarker = std::string(marker), .stateFolder = m_folder / "state"});
    }

    // As the application saves: the file's other years are left alone.
    static DiaryStore::Saved saveEntry(DiaryStore &store, std::int64_t year, std::string_view entry,
                                       MonthDay monthDay = piDay) {
        const auto text = store.loadText(monthDay);
        return store.save(YearSectionParser::replacingEntry(entry, year, monthDay, text), monthDay);
    }

    // As a program does that knows how to replace a file, but not of others that do.
    void replaceByRename(std::string_view bytes) const {
        m_folder.write("incoming", bytes);
        fs::rename(m_folder / "incoming", m_folder / dayFile);
    }

    // Takes the file away until 2 milliseconds later.
    [[nodiscard]] std::jthread fileMissingForAMoment() const {
        std::promise<void> isAway;
        const auto untilAway = isAway.get_future();
        // The thread runs already when the file goes: to begin one takes long on a busy machine.
        std::jthread other([this, isAway = std::move(isAway)]() mutable {
            fs::rename(m_folder / dayFile, m_folder / "away");
            isAway.set_value();
            std::this_thread::sleep_for(milliseconds{2});
            fs::rename(m_folder / "away", m_folder / dayFile);
        });
        untilAway.wait();
        return other;
    }

    Bodies savedBodies() const { return bodiesOf(m_folder.read(dayFile)); }

    // The vault holds the day file alone.
    void expectNothingElse() const { EXPECT_EQ(m_folder.names("vault"), Names{"03-14.md"}); }

    const TemporaryFolder m_folder;
    const Bodies m_threeYears = {{2020, "one"}, {2021, "two"}, {2022, "three"}};
};

int errorOfSaving(DiaryStore &store, std::string_view text) {
    try {
        store.save(text, piDay);
    } catch (const fs::filesystem_error &error) {
        EXPECT_FALSE(error.path1().empty());
        return error.code().value();
    }
    return 0;
}

TEST_F(DiaryStoreSaving, makesNoFileForAnUntouchedDay) {
    auto store = openStore();
    const auto text = store.loadText(piDay);
    EXPECT_EQ(text, "# 03-14\n");
    const auto saved = store.save(text, piDay);
    EXPECT_EQ(saved.text, text);
    EXPECT_EQ(saved.modificationDate, std::nullopt);
    for (const char *empty : {"", "\n \n", "# 03-14\n\n## 2024\n\n"})
        store.save(empty, piDay);
    EXPECT_EQ(m_folder.names(), Names{});
    EXPECT_TRUE(store.yearCache().empty());
}

TEST_F(DiaryStoreSaving, makesTheFolderForTheFirstText) {
    DiaryStore store(m_folder / "deep/down/vault", {.stateFolder = m_folder / "state"});
    store.save("# 03-14\n\n## 2024\n\nhello\n", piDay);
    EXPECT_EQ(m_folder.read("deep/down/vault/03-14.md"), "# 03-14\n\n## 2024\n\nhello\n");
    EXPECT_EQ(m_folder.names("deep/down/vault"), Names{"03-14.md"});
}

TEST_F(DiaryStoreSaving, writesEmptyTextOverAFile) {
    m_folder.write(dayFile, document(m_threeYears));
    auto store = openStore();
    for (const char *empty : {"# 03-14\n", "# 03-14\n\n## 2024\n\n"}) {
        store.loadText(piDay);
        EXPECT_EQ(store.save(empty, piDay).text, empty);
        EXPECT_EQ(m_folder.read(dayFile), empty);
    }
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, doesNotBringBackARemovedFileForEmptyText) {
    m_folder.write(dayFile, document(m_threeYears));
    auto store = openStore();
    store.loadText(piDay);
    fs::remove(m_folder / dayFile);
    EXPECT_EQ(store.save("# 03-14\n", piDay).modificationDate, std::nullopt);
    EXPECT_EQ(m_folder.names("vault"), Names{});
}

TEST_F(DiaryStoreSaving, writesEmptyTextOverAFileThatIsMissingForAMoment) {
    m_folder.write(dayFile, document(m_threeYears));
    auto store = openStore();
    store.loadText(piDay);
    {
        const auto other = fileMissingForAMoment();
        EXPECT_NE(store.save("# 03-14\n", piDay).modificationDate, std::nullopt);
    }
    EXPECT_EQ(m_folder.read(dayFile), "# 03-14\n");
}

TEST_F(DiaryStoreSaving, writesTheTextAsGiven) {
    auto store = openStore();
    for (const std::string &text :
         {std::string("  no title, no end"), std::string("## 2024\nx\n\n\n\n## 2020\n"),
          std::string("\r\na\0b\r\n", 7), std::string("## 2024\n\n```\nopen")}) {
        store.loadText(piDay);
        EXPECT_EQ(store.save(text, piDay).text, text);
        EXPECT_EQ(m_folder.read(dayFile), text);
    }
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, writesTheTextAsGivenWithoutALoad) {
    m_folder.write(dayFile, document(m_threeYears));
    openStore().save("# 03-14\n\n## 2024\n\nalone\n", piDay);
    EXPECT_EQ(m_folder.read(dayFile), "# 03-14\n\n## 2024\n\nalone\n");
}

TEST_F(DiaryStoreSaving, remembersTheYearsOfWhatItSaved) {
    auto store = openStore();
    const auto first = store.save("# 03-14\n\n## 2020\n\nx\n\n## 2021\n\n## 2022\n\ny\n", piDay);
    ASSERT_TRUE(store.yearCache().contains(piDay));
    EXPECT_EQ(store.yearCache().at(piDay).years, (std::vector<std::int64_t>{2020, 2022}));
    EXPECT_EQ(store.yearCache().at(piDay).mtime, first.modificationDate);
    EXPECT_FALSE(store.awaitingDownload().contains(piDay));

    const auto second = saveEntry(store, 2020, "");
    EXPECT_EQ(store.yearCache().at(piDay).years, std::vector<std::int64_t>{2022});
    EXPECT_EQ(store.yearCache().at(piDay).mtime, second.modificationDate);
    store.invalidateCaches();
    EXPECT_TRUE(store.yearCache().contains(piDay));
    EXPECT_EQ(store.cachedFiles(), std::nullopt);
}

TEST_F(DiaryStoreSaving, remembersTheYearsThatWereFoldedIn) {
    m_folder.write(dayFile, document({{2020, "one"}}));
    auto store = openStore();
    const auto text = store.loadText(piDay);
    replaceByRename(document(m_threeYears));
    store.save(text + "\n## 2024\n\nmine\n", piDay);
    EXPECT_EQ(store.yearCache().at(piDay).years, (std::vector<std::int64_t>{2020, 2021, 2022, 2024}));
}

TEST_F(DiaryStoreSaving, reportsTheFilesOwnDate) {
    auto store = openStore();
    for (const char *entry : {"one", "one and two", ""}) {
        const auto saved = saveEntry(store, 2024, entry);
        ASSERT_TRUE(saved.modificationDate);
        EXPECT_EQ(saved.modificationDate, store.modificationDate(piDay));
        EXPECT_EQ(saved.modificationDate, fs::last_write_time(m_folder / dayFile));
    }
}

TEST_F(DiaryStoreSaving, savesRepairedText) {
    m_folder.write(dayFile, "# 03-14\n\n## 2020\n\ncaf\xE9\n");
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    EXPECT_EQ(m_folder.read(dayFile), "# 03-14\n\n## 2020\n\ncaf\uFFFD\n\n## 2024\n\nmine\n");
}

TEST_F(DiaryStoreSaving, keepsTheFilesMode) {
    m_folder.write(dayFile, document(m_threeYears));
    ASSERT_EQ(::chmod((m_folder / dayFile).c_str(), 0640), 0);
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    struct stat status {};
    ASSERT_EQ(::stat((m_folder / dayFile).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(DiaryStoreSaving, savesThroughALink) {
    m_folder.write("elsewhere/pi", document(m_threeYears));
    fs::create_directory(m_folder / "vault");
    fs::create_symlink("../elsewhere/pi", m_folder / dayFile);
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    EXPECT_TRUE(fs::is_symlink(m_folder / dayFile));
    EXPECT_FALSE(fs::is_symlink(m_folder / "elsewhere/pi"));
    EXPECT_EQ(bodiesOf(m_folder.read("elsewhere/pi")),
              (Bodies{{2020, "one"}, {2021, "two"}, {2022, "three"}, {2024, "mine"}}));
    EXPECT_EQ(m_folder.names("elsewhere"), Names{"pi"});
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, savesIntoALinkedVault) {
    fs::create_directory(m_folder / "real");
    fs::create_directory_symlink("real", m_folder / "vault");
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    EXPECT_TRUE(fs::is_symlink(m_folder / "vault"));
    EXPECT_EQ(m_folder.names("real"), Names{"03-14.md"});
}

TEST_F(DiaryStoreSaving, savesAHugeFile) {
    constexpr std::size_t half = 50'000'000;
    std::string text = "# 03-14\n\n## 2020\n\n" + std::string(half, 'a') + "\n\n## 2021\n\n";
    text.append(half, 'b').append("\n");
    m_folder.write(dayFile, text);
    auto store = openStore();
    ASSERT_TRUE(store.loadText(piDay) == text);
    text += "\n## 2022\n\nmine\n";
    store.save(text, piDay);
    EXPECT_TRUE(store.loadText(piDay) == text);
    EXPECT_EQ(store.yearCache().at(piDay).years, (std::vector<std::int64_t>{2020, 2021, 2022}));
}

// What refuses to be saved.

TEST_F(DiaryStoreSaving, failsWhereTheVaultIsAFile) {
    m_folder.write("vault", "a file");
    auto store = openStore();
    EXPECT_EQ(errorOfSaving(store, document(m_threeYears)), ENOTDIR);
    EXPECT_EQ(m_folder.read("vault"), "a file");
    EXPECT_TRUE(store.yearCache().empty());
}

TEST_F(DiaryStoreSaving, failsWhereTheDayFileIsAFolder) {
    m_folder.write(dayFile / "inside", "kept");
    auto store = openStore();
    EXPECT_EQ(errorOfSaving(store, document(m_threeYears)), EISDIR);
    EXPECT_EQ(m_folder.read(dayFile / "inside"), "kept");
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, failsWhereTheDayFileIsTooLargeToRead) {
    m_folder.write(dayFile, "kept");
    // Takes no room on the disk.
    std::filesystem::resize_file(m_folder / dayFile, largestReadableFile + 1);
    auto store = openStore();
    EXPECT_EQ(errorOfSaving(store, document(m_threeYears)), EFBIG);
    EXPECT_EQ(std::filesystem::file_size(m_folder / dayFile), largestReadableFile + 1);
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, failsWhereTheDayFileIsReadOnly) {
    const auto old = document(m_threeYears);
    m_folder.write(dayFile, old);
    ASSERT_EQ(::chmod((m_folder / dayFile).c_str(), 0444), 0);
    auto store = openStore();
    store.loadText(piDay);
    EXPECT_EQ(errorOfSaving(store, "# 03-14\n\n## 2024\n\nmine\n"), EACCES);
    EXPECT_EQ(m_folder.read(dayFile), old);
    EXPECT_TRUE(store.yearCache().empty());
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, leavesTheCachesAsTheyWereWhenItFails) {
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    const auto cache = store.yearCache();
    ASSERT_EQ(::chmod((m_folder / dayFile).c_str(), 0444), 0);
    EXPECT_THROW(saveEntry(store, 2025, "more"), fs::filesystem_error);
    EXPECT_EQ(store.yearCache(), cache);

    ASSERT_EQ(::chmod((m_folder / dayFile).c_str(), 0644), 0);
    saveEntry(store, 2025, "more");
    EXPECT_EQ(savedBodies(), (Bodies{{2024, "mine"}, {2025, "more"}}));
}

class DiaryStoreOnAnotherDisk : public DiaryStoreSaving {
protected:
    // The report of saving over three years in a vault that `mount` has prepared: what the save said, the
    // vault's names and whether the file is still the old one.
    template <typename Mount>
    std::string reportOfSaving(Mount mountVault, std::string_view entry) const {
        fs::create_directory(m_folder / "vault");
        return reportOfFork([&]() -> std::string {
            if (const auto why = testing::ownMounts(); !why.empty())
                return std::string(skipMark) + why;
            const auto old = document(m_threeYears);
            if (!mountVault(old))
                return std::string(skipMark) + std::system_category().message(errno);
            auto store = openStore();
            std::string report = "saved";
            try {
                saveEntry(store, 2024, entry);
            } catch (const fs::filesystem_error &error) {
                report = error.code().message();
            }
            for (const auto &name : m_folder.names("vault"))
                report += ", " + name;
            return report + (m_folder.read(dayFile) == old ? ", old" : ", changed");
        });
    }
};

TEST_F(DiaryStoreOnAnotherDisk, keepsTheOldFileWhenTheDiskIsFull) {
    const auto mountSmall = [&](std::string_view old) {
        if (::mount("tmpfs", (m_folder / "vault").c_str(), "tmpfs", 0, "size=64k") < 0)
            return false;
        m_folder.write(dayFile, old);
        std::ofstream(m_folder / "vault/filler") << std::string(60 * 1024, 'x') << std::flush;
        return true;
    };
    const auto report = reportOfSaving(mountSmall, "mine");
    if (report.starts_with(skipMark))
        GTEST_SKIP() << "cannot mount a small disk: " << report;
    EXPECT_EQ(report, std::system_category().message(ENOSPC) + ", 03-14.md, filler, old");
}

TEST_F(DiaryStoreOnAnotherDisk, keepsTheOldFileWhenTheDiskIsTooSmallForTheNewOne) {
    const auto mountSmall = [&](std::string_view old) {
        if (::mount("tmpfs", (m_folder / "vault").c_str(), "tmpfs", 0, "size=64k") < 0)
            return false;
        m_folder.write(dayFile, old);
        return true;
    };
    const auto report = reportOfSaving(mountSmall, std::string(80 * 1024, 'x'));
    if (report.starts_with(skipMark))
        GTEST_SKIP() << "cannot mount a small disk: " << report;
    EXPECT_EQ(report, std::system_category().message(ENOSPC) + ", 03-14.md, old");
}

TEST_F(DiaryStoreOnAnotherDisk, keepsTheOldFileWhenTheDiskIsReadOnly) {
    const auto mountReadOnly = [&](std::string_view old) {
        m_folder.write(dayFile, old);
        const auto vault = m_folder / "vault";
        return ::mount(vault.c_str(), vault.c_str(), nullptr, MS_BIND, nullptr) == 0 &&
               ::mount("none", vault.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
    };
    const auto report = reportOfSaving(mountReadOnly, "mine");
    if (report.starts_with(skipMark))
        GTEST_SKIP() << "cannot mount a read-only disk: " << report;
    EXPECT_EQ(report, std::system_category().message(EROFS) + ", 03-14.md, old");
}

// What other programs do between loading and saving.

TEST_F(DiaryStoreSaving, foldsInWhatOthersChanged) {
    struct Row {
        const char *what;
        Bodies base;
        std::pair<std::int64_t, const char *> mine;
        Bodies theirs;
        Bodies saved;
    };
    const auto conflict = "mine\n\n" + std::string(marker) + "\n\ntheirs";
    const std::vector<Row> rows = {
        {"nothing", {{2020, "a"}}, {2024, "mine"}, {{2020, "a"}}, {{2020, "a"}, {2024, "mine"}}},
        {"another year added",
         {{2020, "a"}},
         {2024, "mine"},
         {{2020, "a"}, {2021, "theirs"}},
         {{2020, "a"}, {2021, "theirs"}, {2024, "mine"}}},
        {"another year changed", {{2020, "a"}}, {2024, "mine"}, {{2020, "b"}}, {{2020, "b"}, {2024, "mine"}}},
        {"a paragraph added by both",
         {{2024, "base"}},
         {2024, "base\n\nmine"},
         {{2024, "base\n\ntheirs"}},
         {{2024, "base\n\ntheirs\n\nmine"}}},
        {"different texts for one year",
         {{2024, "base"}},
         {2024, "mine"},
         {{2024, "theirs"}},
         {{2024, conflict}}},
        {"the same text", {{2024, "base"}}, {2024, "mine"}, {{2024, "mine"}}, {{2024, "mine"}}},
        {"a year cut to nothing",
         {{2020, "a"}, {2024, "base"}},
         {2024, "mine"},
         {{2024, "base"}},
         {{2020, "a"}, {2024, "mine"}}},
        {"a year cut short",
         {{2020, "a long text"}},
         {2024, "mine"},
         {{2020, "a lo"}},
         {{2020, "a long text"}, {2024, "mine"}}},
        {"the edited year removed",
         {{2020, "a"}, {2024, "b"}},
         {2024, "mine"},
         {{2020, "a"}},
         {{2020, "a"}, {2024, "mine"}}},
    };
    for (const auto &row : rows) {
        m_folder.write(dayFile, document(row.base));
        auto store = openStore();
        const auto text = store.loadText(piDay);
        replaceByRename(document(row.theirs));
        const auto saved = store.save(
            YearSectionParser::replacingEntry(row.mine.second, row.mine.first, piDay, text), piDay);
        EXPECT_EQ(savedBodies(), row.saved) << row.what;
        EXPECT_EQ(saved.text, m_folder.read(dayFile)) << row.what;
        EXPECT_EQ(saved.modificationDate, store.modificationDate(piDay)) << row.what;
        expectNothingElse();
    }
}

TEST_F(DiaryStoreSaving, keepsBothTextsWheneverAnotherProgramWrites) {
    constexpr int rounds = 40;
    fs::create_directory(m_folder / "vault");
    auto store = openStore();
    Bodies expected;
    for (int round = 0; round < rounds; ++round) {
        const auto mine = 1900 + round;
        const auto theirs = 2000 + round;
        const auto text = store.loadText(piDay);
        std::jthread other([&] {
            // At another moment each time: while the new file is made, swapped in or synced.
            std::this_thread::sleep_for(std::chrono::microseconds{round * 20});
            replaceByRename(YearSectionParser::replacingEntry("theirs", theirs, piDay, text));
        });
        store.save(YearSectionParser::replacingEntry("mine", mine, piDay, text), piDay);
        other.join();
        store.repairOverwrittenSaves();
        expected[mine] = "mine";
        expected[theirs] = "theirs";
        ASSERT_EQ(savedBodies(), expected) << round;
    }
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, foldsInAFileThatCameMeanwhile) {
    auto store = openStore();
    const auto text = store.loadText(piDay);
    m_folder.write(dayFile, document(m_threeYears));
    store.save(YearSectionParser::replacingEntry("mine", 2024, piDay, text), piDay);
    EXPECT_EQ(savedBodies(), (Bodies{{2020, "one"}, {2021, "two"}, {2022, "three"}, {2024, "mine"}}));
}

TEST_F(DiaryStoreSaving, foldsInWhatCameAfterTheLastSave) {
    auto store = openStore();
    const auto first = saveEntry(store, 2024, "mine");
    m_folder.write(dayFile, document({{2020, "theirs"}, {2024, "mine"}}));
    store.save(first.text + "\nmore\n", piDay);
    EXPECT_EQ(savedBodies(), (Bodies{{2020, "theirs"}, {2024, "mine\n\nmore"}}));
}

TEST_F(DiaryStoreSaving, foldsInAFileWithoutSections) {
    m_folder.write(dayFile, document(m_threeYears));
    auto store = openStore();
    const auto text = store.loadText(piDay);
    replaceByRename("# 03-14\r\n\r\n## 2023\r\n\r\ntheirs\r\n");
    store.save(YearSectionParser::replacingEntry("mine", 2024, piDay, text), piDay);
    EXPECT_THAT(m_folder.read(dayFile), HasSubstr("theirs"));
    EXPECT_EQ(savedBodies(), (Bodies{{2020, "one"}, {2021, "two"}, {2022, "three"}, {2024, "mine"}}));
}

TEST_F(DiaryStoreSaving, doesNotBelieveAFileThatWasEmptied) {
    const Bodies all = {{2020, "one"}, {2021, "two"}, {2022, "three"}, {2024, "mine"}};
    {
        m_folder.write(dayFile, document(m_threeYears));
        auto store = openStore();
        store.loadText(piDay);
        replaceByRename("");
        saveEntry(store, 2024, "mine");
        EXPECT_EQ(savedBodies(), all) << "emptied before loading again";
    }
    {
        m_folder.write(dayFile, document(m_threeYears));
        auto store = openStore();
        const auto text = store.loadText(piDay);
        replaceByRename("");
        store.save(YearSectionParser::replacingEntry("mine", 2024, piDay, text), piDay);
        EXPECT_EQ(savedBodies(), all) << "emptied before saving";
    }
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, believesAFileThatWasAlwaysEmpty) {
    m_folder.write(dayFile, "");
    m_folder.write("vault/03-15.md", document(m_threeYears, nextDay));
    auto store = openStore();
    store.loadText(nextDay);
    saveEntry(store, 2024, "mine");
    EXPECT_EQ(m_folder.read(dayFile), document({{2024, "mine"}}));
}

TEST_F(DiaryStoreSaving, keepsTheYearsOfAFileThatIsMissingForAMoment) {
    const Bodies all = {{2020, "one"}, {2021, "two"}, {2022, "three"}, {2024, "mine"}};
    {
        m_folder.write(dayFile, document(m_threeYears));
        auto store = openStore();
        store.loadText(piDay);
        const auto other = fileMissingForAMoment();
        saveEntry(store, 2024, "mine");
        EXPECT_EQ(savedBodies(), all) << "missing while it is loaded";
    }
    {
        m_folder.write(dayFile, document(m_threeYears));
        auto store = openStore();
        const auto text = YearSectionParser::replacingEntry("mine", 2024, piDay, store.loadText(piDay));
        m_folder.write(dayFile, document({{2020, "one"}, {2021, "changed"}, {2022, "three"}}));
        const auto other = fileMissingForAMoment();
        store.save(text, piDay);
        EXPECT_EQ(savedBodies(), (Bodies{{2020, "one"}, {2021, "changed"}, {2022, "three"}, {2024, "mine"}}))
            << "missing while it is saved";
    }
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, makesAFileThatWasRemoved) {
    m_folder.write(dayFile, document(m_threeYears));
    auto store = openStore();
    const auto text = store.loadText(piDay);
    fs::remove_all(m_folder / "vault");
    store.save(text, piDay);
    EXPECT_EQ(m_folder.read(dayFile), text);
}

// What other programs do after saving.

TEST_F(DiaryStoreSaving, mendsASaveThatWasOverwritten) {
    m_folder.write(dayFile, document(m_threeYears));
    const auto copy = m_folder.read(dayFile);
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    replaceByRename(YearSectionParser::replacingEntry("theirs", 2023, piDay, copy));
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set{piDay});
    EXPECT_EQ(savedBodies(),
              (Bodies{{2020, "one"}, {2021, "two"}, {2022, "three"}, {2023, "theirs"}, {2024, "mine"}}));
    EXPECT_EQ(store.yearCache().at(piDay).years, (std::vector<std::int64_t>{2020, 2021, 2022, 2023, 2024}));
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set<MonthDay>{});
    expectNothingElse();
}

TEST_F(DiaryStoreSaving, mendsASaveThatWasOverwrittenBeforeTheNext) {
    m_folder.write(dayFile, document({{2020, "mine"}}));
    auto store = openStore();
    saveEntry(store, 2020, "mine\nfirst");
    m_folder.write(dayFile, document({{2020, "mine"}, {2021, "theirs"}}));
    saveEntry(store, 2020, "mine\nsecond");
    EXPECT_EQ(m_folder.read(dayFile), document({{2020, "mine\nfirst\n\nsecond"}, {2021, "theirs"}}));
}

TEST_F(DiaryStoreSaving, doesNotRepeatAnOverwrittenSaveThatTheNextHolds) {
    auto store = openStore();
    saveEntry(store, 2020, "mine");
    m_folder.write(dayFile, document({{2020, "theirs"}, {2021, "theirs"}}));
    saveEntry(store, 2020, "theirs\n\n---\n\nmine");
    EXPECT_EQ(m_folder.read(dayFile), document({{2020, "theirs\n\n---\n\nmine"}, {2021, "theirs"}}));
}

TEST_F(DiaryStoreSaving, keepsThePreambleWhenItMendsTheSaveBefore) {
    m_folder.write(dayFile, "My own words\n\n## 2020\n\nmine\n");
    auto store = openStore();
    saveEntry(store, 2020, "mine\nfirst");
    m_folder.write(dayFile, "My own words\n\n## 2020\n\nmine\n");
    saveEntry(store, 2021, "second");
    EXPECT_EQ(m_folder.read(dayFile), "My own words\n\n## 2020\n\nmine\nfirst\n\n## 2021\n\nsecond\n");
}

TEST_F(DiaryStoreSaving, doesNotBringBackWhatTheUserDeletedAfterOthersWrote) {
    m_folder.write(dayFile, document({{2020, "old"}}));
    auto store = openStore();
    saveEntry(store, 2020, "mine");
    m_folder.write(dayFile, document({{2020, "mine"}, {2021, "theirs"}}));
    saveEntry(store, 2020, "other");
    EXPECT_EQ(m_folder.read(dayFile), document({{2020, "other"}, {2021, "theirs"}}));
}

TEST_F(DiaryStoreSaving, looksAtEverySavedDay) {
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    saveEntry(store, 2024, "mine too", nextDay);
    m_folder.write("vault/03-14.md", document({{2020, "theirs"}}));
    m_folder.write("vault/03-15.md", "");
    EXPECT_EQ(store.repairOverwrittenSaves(), (std::set{piDay, nextDay}));
    EXPECT_EQ(savedBodies(), (Bodies{{2020, "theirs"}, {2024, "mine"}}));
    EXPECT_EQ(bodiesOf(m_folder.read("vault/03-15.md")), (Bodies{{2024, "mine too"}}));
}

TEST_F(DiaryStoreSaving, leavesASaveThatStillStands) {
    auto store = openStore();
    const auto saved = saveEntry(store, 2024, "mine");
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set<MonthDay>{});
    EXPECT_EQ(store.modificationDate(piDay), saved.modificationDate);
}

TEST_F(DiaryStoreSaving, leavesChangesThatWereMadeToASave) {
    auto store = openStore();
    const auto saved = saveEntry(store, 2024, "mine");
    const auto changed = YearSectionParser::replacingEntry("theirs", 2020, piDay, saved.text);
    replaceByRename(changed);
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set<MonthDay>{});
    EXPECT_EQ(m_folder.read(dayFile), changed);
}

TEST_F(DiaryStoreSaving, doesNotBringBackAFileThatWasRemovedAfterSaving) {
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    fs::remove(m_folder / dayFile);
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set<MonthDay>{});
    EXPECT_EQ(m_folder.names("vault"), Names{});
}

TEST_F(DiaryStoreSaving, mendsAFileThatIsMissingForAMoment) {
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    replaceByRename(document({{2020, "theirs"}}));
    const auto other = fileMissingForAMoment();
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set{piDay});
    EXPECT_EQ(savedBodies(), (Bodies{{2020, "theirs"}, {2024, "mine"}}));
}

TEST_F(DiaryStoreSaving, keepsDaysApartWhenItMends) {
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    m_folder.write("vault/03-15.md", document({{2010, "of the next day"}}, nextDay));
    store.loadText(nextDay);
    m_folder.write(dayFile, "");
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set{piDay});
    EXPECT_EQ(savedBodies(), (Bodies{{2024, "mine"}}));
}

TEST_F(DiaryStoreSaving, remembersTheLastLoadWhileItMends) {
    m_folder.write("vault/03-15.md", document({{2010, "a"}}, nextDay));
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    const auto text = store.loadText(nextDay);
    m_folder.write(dayFile, document({{2020, "theirs"}}));
    m_folder.write("vault/03-15.md", document({{2010, "a"}, {2011, "theirs"}}, nextDay));
    ASSERT_EQ(store.repairOverwrittenSaves(), std::set{piDay});
    store.save(YearSectionParser::replacingEntry("mine", 2024, nextDay, text), nextDay);
    EXPECT_EQ(bodiesOf(m_folder.read("vault/03-15.md")),
              (Bodies{{2010, "a"}, {2011, "theirs"}, {2024, "mine"}}));
}

TEST_F(DiaryStoreSaving, foldsInWhatItMendedBeforeANewLoad) {
    auto store = openStore();
    const auto first = saveEntry(store, 2024, "mine");
    replaceByRename(document({{2020, "theirs"}}));
    ASSERT_EQ(store.repairOverwrittenSaves(), std::set{piDay});
    store.save(YearSectionParser::replacingEntry("mine, longer", 2024, piDay, first.text), piDay);
    EXPECT_EQ(savedBodies(), (Bodies{{2020, "theirs"}, {2024, "mine, longer"}}));
}

TEST_F(DiaryStoreSaving, leavesAFailureToMendToTheNextSave) {
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    replaceByRename(document({{2020, "theirs"}}));
    ASSERT_EQ(::chmod((m_folder / dayFile).c_str(), 0444), 0);
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set<MonthDay>{});
    ASSERT_EQ(::chmod((m_folder / dayFile).c_str(), 0644), 0);
    saveEntry(store, 2024, "mine");
    EXPECT_EQ(savedBodies(), (Bodies{{2020, "theirs"}, {2024, "mine"}}));
}

// Holds a file open as a program does that writes in place.
class OpenFile {
public:
    explicit OpenFile(const fs::path &path) : m_file(::open(path.c_str(), O_RDWR | O_CLOEXEC)) {}

    void overwrite(std::string_view bytes) const {
        EXPECT_EQ(::ftruncate(m_file.get(), 0), 0);
        EXPECT_EQ(::pwrite(m_file.get(), bytes.data(), bytes.size(), 0), std::ssize(bytes));
    }

private:
    FileDescriptor m_file;
};

TEST_F(DiaryStoreSaving, mendsWhatWasWrittenToTheOldFileLate) {
    m_folder.write(dayFile, document(m_threeYears));
    const OpenFile writer(m_folder / dayFile);
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    writer.overwrite(document({{2020, "one"}, {2021, "two, late"}, {2022, "three"}, {2023, "late"}}));
    EXPECT_EQ(savedBodies().count(2023), 0U);
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set{piDay});
    EXPECT_EQ(savedBodies(),
              (Bodies{{2020, "one"}, {2021, "two, late"}, {2022, "three"}, {2023, "late"}, {2024, "mine"}}));
}

TEST_F(DiaryStoreSaving, mendsWhatWasWrittenAfterSeveralSaves) {
    m_folder.write(dayFile, document(m_threeYears));
    const OpenFile writer(m_folder / dayFile);
    auto store = openStore();
    for (const char *entry : {"mine", "mine, longer", "mine, longer still"})
        saveEntry(store, 2024, entry);
    writer.overwrite(document({{2023, "late"}}));
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set{piDay});
    EXPECT_EQ(
        savedBodies(),
        (Bodies{
            {2020, "one"}, {2021, "two"}, {2022, "three"}, {2023, "late"}, {2024, "mine, longer still"}}));
}

TEST_F(DiaryStoreSaving, mendsWhatWasHalfWrittenDuringASave) {
    m_folder.write(dayFile, document(m_threeYears));
    const OpenFile writer(m_folder / dayFile);
    const auto whole = document({{2020, "one"}, {2021, "two"}, {2022, "three"}, {2023, "a slow writer"}});
    auto store = openStore();
    const auto text = store.loadText(piDay);
    writer.overwrite(whole.substr(0, whole.find("slow")));
    store.save(YearSectionParser::replacingEntry("mine", 2024, piDay, text), piDay);
    writer.overwrite(whole);
    EXPECT_EQ(store.repairOverwrittenSaves(), std::set{piDay});
    EXPECT_EQ(
        savedBodies(),
        (Bodies{{2020, "one"}, {2021, "two"}, {2022, "three"}, {2023, "a slow writer"}, {2024, "mine"}}));
}

TEST_F(DiaryStoreSaving, opensNoEndOfFiles) {
    auto store = openStore();
    const auto openFiles = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = openFiles();
    for (int round = 0; round < 40; ++round)
        saveEntry(store, 2024, "round " + std::to_string(round));
    EXPECT_LE(openFiles(), before + 8);
    store.repairOverwrittenSaves();
    EXPECT_EQ(openFiles(), before);
}

// What processes leave behind that were killed.

TEST_F(DiaryStoreSaving, removesWhatDeadProcessesLeft) {
    const auto text = document(m_threeYears);
    m_folder.write(dayFile, text);
    const auto left = [&](char attempt) {
        return fs::path("vault") / temporaryName("03-14.md", endedProcess(), attempt);
    };
    m_folder.write(left('0'), text);
    m_folder.write(left('1'), "");
    m_folder.write(left('2'), text.substr(0, 30));
    m_folder.write(left('3'), document({{2021, "two"}, {2024, ""}}));
    auto store = openStore();
    store.loadText(piDay);
    EXPECT_EQ(m_folder.names("vault").size(), 5U) << "reading changes nothing";
    saveEntry(store, 2024, "mine");
    expectNothingElse();
    EXPECT_EQ(m_folder.names("state"), Names{});
}

TEST_F(DiaryStoreSaving, takesUnknownTextOfDeadProcessesOutOfTheVault) {
    const auto text = document({{2020, "one, and rainy"}, {2021, "two"}});
    const std::vector<std::string> unknown = {
        document({{2020, "other"}}),
        document({{2019, "two"}}),
        document({{2021, "rain"}}),
        "# 03-14\r\n\r\n## 2023\r\n\r\nno sections\r\n",
        "before all\n\n" + document({{2021, "two"}}),
    };
    for (const auto &bytes : unknown) {
        const TemporaryFolder folder;
        folder.write(dayFile, text);
        folder.write("vault/" + temporaryName("03-14.md", endedProcess()), bytes);
        DiaryStore store(folder / "vault", {.stateFolder = folder / "state"});
        saveEntry(store, 2024, "mine");
        EXPECT_EQ(folder.names("vault"), Names{"03-14.md"});
        ASSERT_EQ(folder.names("state/resolved"), Names{"03-14.md"}) << bytes;
        EXPECT_EQ(folder.read("state/resolved/03-14.md"), bytes);
    }
}

TEST_F(DiaryStoreSaving, takesTextOfADayWithoutAFileOutOfTheVault) {
    m_folder.write("vault/" + temporaryName("03-15.md", endedProcess()), document({{2020, "x"}}, nextDay));
    m_folder.write("state/resolved/03-15.md", "there before");
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    expectNothingElse();
    EXPECT_EQ(m_folder.names("state/resolved"), (Names{"03-15.md", "03-15 2.md"}));
    EXPECT_EQ(m_folder.read("state/resolved/03-15 2.md"), document({{2020, "x"}}, nextDay));
}

TEST_F(DiaryStoreSaving, leavesTheFilesOfOthers) {
    const std::vector<std::string> others = {
        temporaryName("03-14.md", ::getppid()), // its process runs
        temporaryName("notes.txt", endedProcess()),
        temporaryName("13-14.md", endedProcess()),
        ".~lock.03-14.md#",
        ".03-14.md.swp",
        "03-14.md~",
        "photo.jpg",
    };
    for (const auto &name : others)
        m_folder.write("vault/" + name, "not ours");
    const auto folderName = temporaryName("03-15.md", endedProcess());
    fs::create_directory(m_folder / "vault" / folderName);
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    Names expected(others.begin(), others.end());
    expected.insert({"03-14.md", folderName});
    EXPECT_EQ(m_folder.names("vault"), expected);
    EXPECT_EQ(m_folder.names("state"), Names{});
}

TEST_F(DiaryStoreSaving, showsNothingElseInTheVault) {
    auto store = openStore();
    saveEntry(store, 2024, "mine");
    std::atomic<bool> looking = false;
    Names seen;
    std::jthread observer([&](const std::stop_token &stop) {
        while (!stop.stop_requested()) {
            seen.merge(m_folder.names("vault"));
            looking = true;
            looking.notify_one();
        }
    });
    looking.wait(false);
    for (int round = 0; round < 100; ++round) {
        const auto text = store.loadText(piDay);
        if (round % 2 == 0)
            replaceByRename(YearSectionParser::replacingEntry("theirs", 2000 + round, piDay, text));
        store.save(YearSectionParser::replacingEntry("mine", 1900 + round, piDay, text), piDay);
    }
    observer.request_stop();
    observer.join();
    expectNothingElse();
    const auto temporaries = temporaryName("03-14.md", ::getpid());
    for (const auto &name : seen) {
        EXPECT_TRUE(name == "03-14.md" ||
                    name.substr(0, name.size() - 2) == temporaries.substr(0, temporaries.size() - 2))
            << name;
        EXPECT_EQ(MonthDay::parse(name).has_value(), name == "03-14.md");
    }
}

} // namespace
} // namespace diary

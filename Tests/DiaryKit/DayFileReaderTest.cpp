// SPDX-License-Identifier: MIT
#include <DiaryKit/DayFileReader.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <thread>

#include <Support/TemporaryFolder.h>
#include <sys/stat.h>

namespace diary {
namespace {

using testing::TemporaryFolder;

constexpr MonthDay day{3, 14};

std::string randomBytes(std::size_t count) {
    std::mt19937 random(static_cast<unsigned>(count));
    std::string bytes(count, '\0');
    for (auto &byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

TEST(DayFileReader, readsFilesOfAnySizeOneAfterAnother) {
    constexpr std::size_t room = std::size_t{256} * 1024;
    const TemporaryFolder vault;
    DayFileReader reader(vault.path());
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, room - 1, room, room + 1, 2 * room,
                                   2 * room + 1, 5 * room + 100, std::size_t{3}, std::size_t{0}}) {
        const auto content = randomBytes(size);
        vault.write(day.fileName(), content);
        const auto found = reader.read(day);
        ASSERT_TRUE(found) << size;
        EXPECT_TRUE(found->bytes == content) << size;
    }
}

TEST(DayFileReader, readsAFileThatGrowsMeanwhile) {
    constexpr std::size_t piece = 1000;
    const auto whole = randomBytes(600 * piece); // past the room there is at first
    const TemporaryFolder vault;
    vault.write(day.fileName(), {});
    const std::jthread writer([&] {
        std::ofstream file(vault / day.fileName(), std::ios::app);
        for (std::size_t at = 0; at < whole.size(); at += piece)
            file << whole.substr(at, piece) << std::flush;
    });
    DayFileReader reader(vault.path());
    for (std::size_t longest = 0; longest < whole.size();) {
        const auto found = reader.read(day);
        ASSERT_TRUE(found);
        ASSERT_GE(found->bytes.size(), longest);
        longest = found->bytes.size();
        ASSERT_TRUE(whole.starts_with(found->bytes)) << longest;
    }
}

TEST(DayFileReader, tellsWhenAFileWasChanged) {
    const TemporaryFolder vault;
    vault.write(day.fileName(), "text");
    const auto date = std::filesystem::last_write_time(vault / day.fileName()) - std::chrono::hours(5);
    std::filesystem::last_write_time(vault / day.fileName(), date);
    DayFileReader reader(vault.path());
    const auto found = reader.read(day);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->modificationDate, date);
    EXPECT_EQ(reader.modificationDate(day), date);
}

TEST(DayFileReader, hasNothingOfWhatIsMissing) {
    const TemporaryFolder vault;
    EXPECT_FALSE(DayFileReader(vault.path()).read(day));
    EXPECT_FALSE(DayFileReader(vault / "missing").read(day));
    EXPECT_EQ(DayFileReader(vault.path()).modificationDate(day), std::nullopt);
}

TEST(DayFileReader, hasNothingOfWhatIsNoRegularFile) {
    const TemporaryFolder vault;
    DayFileReader reader(vault.path());
    std::filesystem::create_directory(vault / "03-14.md");
    ASSERT_EQ(::mkfifo((vault / "03-15.md").c_str(), 0600), 0);
    // A device that ends, since one without an end would fill the memory when this fails.
    std::filesystem::create_symlink("/dev/null", vault / "03-16.md");
    for (const std::int64_t number : {14, 15, 16})
        EXPECT_FALSE(reader.read({3, number})) << number;
}

TEST(DayFileReader, hasNothingOfWhatIsTooLarge) {
    const TemporaryFolder vault;
    vault.write(day.fileName(), "text");
    // Takes no room on the disk.
    std::filesystem::resize_file(vault / day.fileName(), largestReadableFile + 1);
    EXPECT_FALSE(DayFileReader(vault.path()).read(day));
    std::filesystem::resize_file(vault / day.fileName(), 4);
    EXPECT_TRUE(DayFileReader(vault.path()).read(day));
}

} // namespace
} // namespace diary

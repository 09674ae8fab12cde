// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DiaryDay.h>
#include <DiaryKit/DurableFile.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace diary {

// Reads many day files of one vault, one after another, into one buffer. For one thread.
class DayFileReader {
public:
    // A folder that cannot be opened reads as one without files.
    explicit DayFileReader(const std::filesystem::path &folder);

    struct Content {
        std::string_view bytes; // as they are, valid until the next call
        // Asked for before the bytes, so that a change meanwhile makes it out of date rather than the bytes.
        std::filesystem::file_time_type modificationDate;
    };

    // None when the file is missing, unreadable, no regular file or too large.
    std::optional<Content> read(MonthDay monthDay);

    std::optional<std::filesystem::file_time_type> modificationDate(MonthDay monthDay) const;

private:
    // Where the buffer begins matters to the kernel's copy, which comes from the start of a page: some
    // processors take three times as long to a place 16 bytes after the start of one, and there malloc puts
    // what is large.
    struct alignas(64) Block {
        std::array<char, 64> bytes;
    };

    char *bytes() { return reinterpret_cast<char *>(m_buffer.data()); }
    std::size_t room() const { return m_buffer.size() * sizeof(Block); }

    FileDescriptor m_folder;
    std::vector<Block> m_buffer;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DiaryDay.h>
#include <DiaryKit/DurableFile.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace diary {

// Reads many day files of one vault, one after another, into one buffer. For one thread.
class DayFileReader {
public:
    // A folder that cannot be opened reads as one without files.
    explicit DayFileReader(const std::filesystem::path &folder);

    // The file's bytes as they are, valid until the next call; none when it is missing, unreadable or no
    // regular file.
    std::optional<std::string_view> read(MonthDay monthDay);

    std::optional<std::filesystem::file_time_type> modificationDate(MonthDay monthDay) const;

private:
    FileDescriptor m_folder;
    std::string m_buffer;
};

} // namespace diary

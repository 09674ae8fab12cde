// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DiaryDay.h>
#include <DiaryKit/DurableFile.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace diary {

// The vault: a folder of day files, and the only way to them.
//
// Belongs to one thread. Keeps no file open between calls and never holds a whole diary in memory. To save
// one year's entry, load the day afresh, replace that year with YearSectionParser::replacingEntry and save
// the result, so that what others wrote into other years survives.
class DiaryStore {
public:
    using FileTime = std::filesystem::file_time_type;

    struct Options {
        // Stands between two texts of one entry that nothing can tell apart. Written into users' files.
        std::string conflictMarker = "*— The other version of this entry —*";
        // For texts that left the vault without standing in a day file; default: the user's state folder.
        std::optional<std::filesystem::path> stateFolder = std::nullopt;
    };

    struct YearCacheEntry {
        FileTime mtime; // of the file the years were read from
        std::set<std::int64_t> years;

        bool operator==(const YearCacheEntry &) const = default;
    };

    // What a save left in the day file.
    struct Saved {
        // The text as written: other programs' changes that came between loading and saving are folded in.
        std::string text;
        // The file's modification date; none when nothing was written.
        std::optional<FileTime> modificationDate;
    };

    // Without a folder, Documents/Diary in the home folder. Nothing is made on disk before the first save.
    explicit DiaryStore(std::optional<std::filesystem::path> rootURL, Options options);
    explicit DiaryStore(std::optional<std::filesystem::path> rootURL = std::nullopt)
        : DiaryStore(std::move(rootURL), Options{}) {}

    const std::filesystem::path &rootURL() const { return m_rootURL; }
    std::filesystem::path fileURL(MonthDay monthDay) const;

    // The day file's text, invalid UTF-8 repaired; for a file that is missing or unreadable the title line
    // alone. Remembers what it saw: a following save tells by it what others changed meanwhile.
    std::string loadText(MonthDay monthDay);

    // Replaces the day file with the text, durably: afterwards a crash leaves it whole, during it the old
    // file or the new. A missing folder is made; a missing file is not made for a text without content.
    //
    // When the file is no longer what the last loadText saw (or, without one, what it was a moment before),
    // what changed is folded into the text and the result is saved instead.
    //
    // Throws std::filesystem::filesystem_error with the system's own error; the file and the caches are then
    // as they were.
    Saved save(std::string_view text, MonthDay monthDay);

    // Looks again at the days saved since the last call, best one to two seconds after a save. A program that
    // had read the file before a save may have written over it after; what it did not know is then saved
    // again. Returns the days that were mended; a failure is left to the next save of the day.
    std::set<MonthDay> repairOverwrittenSaves();

    // Content modification date of the day file; none when it is missing.
    std::optional<FileTime> modificationDate(MonthDay monthDay) const;

    // Forgets which files there are; what was read from each stays, since it is checked by the file's date.
    void invalidateCaches() { m_knownFiles.reset(); }

    const std::set<MonthDay> &awaitingDownload() const { return m_awaitingDownload; }
    const std::optional<std::set<MonthDay>> &cachedFiles() const { return m_knownFiles; }
    const std::map<MonthDay, YearCacheEntry> &yearCache() const { return m_yearCache; }

    // "# 03-14" and a line break.
    static std::string defaultText(MonthDay monthDay);

private:
    // A day file as it was last read or written here.
    struct Seen {
        MonthDay monthDay;
        std::optional<std::string> bytes; // none: there was no file
    };

    // A save that has not been looked at again.
    struct RecentSave {
        std::string base;             // what the saved text was made from
        std::string text;             // what was saved
        std::string displaced;        // what stood in its place
        FileDescriptor displacedFile; // still written to by a program that holds it open, perhaps
    };

    std::optional<std::string> readDayFile(const std::filesystem::path &file, MonthDay monthDay) const;
    bool expectsFile(MonthDay monthDay) const;
    std::string withYearsOfEmptiedFile(std::string_view text, MonthDay monthDay) const;
    std::string folded(std::string_view base, std::string_view mine, std::string_view theirs,
                       MonthDay monthDay) const;
    Saved writeFolding(const std::filesystem::path &target, std::optional<std::string> base, std::string text,
                       MonthDay monthDay);
    bool repairIfOverwritten(MonthDay monthDay, const RecentSave &recent);
    void sweepAbandonedTemporaries();

    std::filesystem::path m_rootURL;
    Options m_options;
    std::optional<std::set<MonthDay>> m_knownFiles;
    std::map<MonthDay, YearCacheEntry> m_yearCache;
    std::set<MonthDay> m_awaitingDownload;

    std::optional<Seen> m_seen;
    // The last text seen that was not empty, for the day of m_seen: an emptied file is not taken for the
    // truth.
    std::string m_lastContent;
    std::map<MonthDay, RecentSave> m_recentSaves;
    bool m_swept = false;
};

} // namespace diary

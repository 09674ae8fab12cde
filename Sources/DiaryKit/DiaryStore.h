// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/ByteRange.h>
#include <DiaryKit/CloudFiles.h>
#include <DiaryKit/DiaryDay.h>
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/Executor.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace diary {

class DayFileReader;

// The vault: a folder of day files, and the only way to them.
//
// Belongs to one thread, the main one; the static functions may be called from any. Keeps no file open
// between calls (but for the moment after a save) and never holds a whole diary in memory. To save one year's
// entry, load the day afresh, replace that year with YearSectionParser::replacingEntry and save the result,
// so that what others wrote into other years survives.
class DiaryStore {
public:
    using FileTime = std::filesystem::file_time_type;

    struct Options {
        // Stands between two texts of one entry that nothing can tell apart. Written into users' files.
        std::string conflictMarker = "*— The other version of this entry —*";
        // For texts that left the vault without standing in a day file; default: the user's state folder.
        std::optional<std::filesystem::path> stateFolder = std::nullopt;
        // Default: what the sync tools of this system do.
        std::shared_ptr<const CloudFiles> cloudFiles = nullptr;
        // Must outlive the store and the work given to it. Default: everything at once, in the caller's
        // thread.
        Executor *executor = nullptr;
    };

    struct YearCacheEntry {
        FileTime mtime;                  // of the file the years were read from
        std::vector<std::int64_t> years; // with content, ascending, each once

        bool operator==(const YearCacheEntry &) const = default;
    };

    using YearCache = std::map<MonthDay, YearCacheEntry>;

    struct Overview {
        int daysWithContent = 0;
        std::optional<std::int64_t> earliestYear; // with content
        int fileCount = 0;                        // placeholders included

        bool operator==(const Overview &) const = default;
    };

    // What one look at every day file tells.
    struct ArchiveSnapshot {
        std::map<MonthDay, int> heatCounts; // how many years have content; days without any are left out
        std::set<std::int64_t> contentYears;
        Overview overview;
        std::set<MonthDay> awaitingDownload; // only placeholders are here

        bool operator==(const ArchiveSnapshot &) const = default;
    };

    struct ArchiveScan {
        ArchiveSnapshot snapshot;
        YearCache cache;
        std::set<MonthDay> files;
    };

    struct SearchHit {
        MonthDay monthDay;
        std::int64_t year = 0;
        std::string snippet; // one line

        bool operator==(const SearchHit &) const = default;
    };

    struct SearchResult {
        std::vector<SearchHit> hits;
        std::set<MonthDay> awaitingDownload; // could not be searched
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
    // Throws std::filesystem::filesystem_error with the system's own error, EAGAIN while only a placeholder
    // of the day is here; the file and the caches are then as they were.
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
    const YearCache &yearCache() const { return m_yearCache; }

    // "# 03-14" and a line break.
    static std::string defaultText(MonthDay monthDay);

    // Statistics. Each asks every file's date and reads those whose date changed; the list of files is made
    // once and kept until invalidateCaches() or a snapshot.

    // The days that have a file or a placeholder. Empty for a folder that cannot be listed.
    static std::set<MonthDay> dayFiles(const std::filesystem::path &folder);

    const std::set<MonthDay> &knownFiles();
    std::set<std::int64_t> yearsWithContent(MonthDay monthDay);
    std::set<std::int64_t> daysWithContent(std::int64_t inMonth);
    std::map<MonthDay, int> contentYearCounts();
    std::set<std::int64_t> allContentYears();
    Overview overview();
    std::optional<MonthDay> randomDayWithContent();

    // All statistics at once, read in the background, where they are not in the cache. The result is applied
    // and handed over on the main thread; not at all when the store is gone by then.
    void loadArchiveSnapshot(std::function<void(const ArchiveSnapshot &)> onLoaded);

    // The scan itself. Reads on several threads; touches no store.
    static ArchiveScan scanArchive(const std::filesystem::path &rootURL, YearCache cache,
                                   const CloudFiles &cloudFiles);

    // Search: the year entries that contain the query without regard to case, by the user's locale, composed
    // letters equal to decomposed ones, other marks making other letters. In calendar order of the days, then
    // in the files' order; a hit for each entry, `limit` at most. Blanks around the query do not count.

    std::vector<SearchHit> searchEntries(std::string_view query, int limit);
    static std::vector<SearchHit> searchEntries(const std::filesystem::path &rootURL, std::string_view query,
                                                int limit);
    // The same in the background. The result is handed over on the main thread; not at all once a stop is
    // requested there, or when the store is gone by then.
    void searchEntriesInBackground(std::string query, int limit, std::stop_token stop,
                                   std::function<void(const SearchResult &)> onFound);
    // Reads on several threads, each file once; ends early when it has enough, and with whatever it has when
    // a stop is requested.
    static SearchResult search(const std::filesystem::path &rootURL, const std::set<MonthDay> &files,
                               std::string_view query, int limit, const CloudFiles &cloudFiles,
                               const std::stop_token &stop = {});

    // The place of the query in a trimmed body, with some characters before and after it.
    static std::string snippet(std::string_view query, std::string_view body);
    // Every place of the query in a text, such as a snippet, compared as the search does.
    static std::vector<ByteRange> matches(std::string_view query, std::string_view text);

    // Files that a sync tool keeps elsewhere until they are wanted. Nothing here waits for a download.

    void nudgeDownloadIfEvicted(const std::filesystem::path &file) const;
    // True when only a placeholder is here; its content is then asked for.
    bool startDownloadIfNeeded(const std::filesystem::path &file) const;
    bool isAwaitingDownload(MonthDay monthDay) const { return startDownloadIfNeeded(fileURL(monthDay)); }
    // Asks for every placeholder of the vault, in the background.
    void warmEvictedFiles() const;

    // What stands between two texts of one entry.
    const std::string &conflictMarker() const { return m_options.conflictMarker; }

    // Whether sync tools left copies of the day that are not merged.
    bool hasConflicts(MonthDay monthDay) const;

    // Merges the copies that sync tools left of the day into its file, with the marker between texts that
    // differ, and moves them out of the vault. False when there were none, or when they could not be saved:
    // they are then still there for the next call.
    bool resolveConflicts(MonthDay monthDay, std::string_view conflictMarker);

private:
    // A day file as it was last read or written here.
    struct Seen {
        MonthDay monthDay;
        std::optional<std::string> bytes; // none: there was no file
    };

    // A file that a save took the place of; still written to by a program that holds it open, perhaps.
    struct Displaced {
        std::string bytes; // as they were then
        FileDescriptor file;
    };

    // A save that has not been looked at again.
    struct RecentSave {
        std::string base;                 // what the saved text was made from
        std::string text;                 // what was saved
        std::vector<Displaced> displaced; // by this save and those before it, the latest last
    };

    std::optional<std::string> readDayFile(const std::filesystem::path &file, MonthDay monthDay) const;
    bool isMissing(const std::filesystem::path &file, MonthDay monthDay) const;
    bool expectsFile(MonthDay monthDay) const;
    std::string withYearsOfEmptiedFile(std::string_view text, MonthDay monthDay) const;
    std::string withOverwrittenSave(std::string text, MonthDay monthDay) const;
    std::string folded(std::string_view base, std::string_view mine, std::string_view theirs,
                       MonthDay monthDay) const;
    Saved writeDayFile(std::optional<std::string> base, std::string text, MonthDay monthDay);
    Saved writeFolding(const std::filesystem::path &target, std::optional<std::string> base, std::string text,
                       MonthDay monthDay);
    bool repairIfOverwritten(MonthDay monthDay, const RecentSave &recent);
    void sweepAbandonedTemporaries();
    const std::vector<std::int64_t> *cachedYears(MonthDay monthDay, DayFileReader &reader);
    template <typename Visit>
    void visitYearsWithContent(Visit visit);
    void apply(ArchiveScan scan);

    std::filesystem::path m_rootURL;
    Options m_options;
    std::optional<std::set<MonthDay>> m_knownFiles;
    YearCache m_yearCache;
    std::set<MonthDay> m_awaitingDownload;

    std::optional<Seen> m_seen;
    // While m_seen has no text, the last one that the day had: an emptied file is not taken for the truth.
    std::string m_lastContent;
    std::map<MonthDay, RecentSave> m_recentSaves;
    bool m_swept = false;
    std::shared_ptr<int> m_lifetime = std::make_shared<int>(); // expires with the store
};

} // namespace diary

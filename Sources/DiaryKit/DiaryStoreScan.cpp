// SPDX-License-Identifier: MIT
//
// The part of DiaryStore that knows what the vault holds: which days, which years, how many.

#include <DiaryKit/DayFileReader.h>
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/ParallelLoop.h>
#include <DiaryKit/VaultFileName.h>
#include <DiaryKit/YearSectionParser.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <utility>

namespace diary {

namespace {

namespace fs = std::filesystem;

void count(MonthDay monthDay, const std::vector<std::int64_t> &years, DiaryStore::ArchiveSnapshot &snapshot) {
    if (years.empty())
        return;
    snapshot.heatCounts[monthDay] = static_cast<int>(years.size());
    // Most days have the same years; looking is cheaper than inserting them again.
    auto &all = snapshot.contentYears;
    if (!std::includes(all.begin(), all.end(), years.begin(), years.end()))
        all.insert(years.begin(), years.end());
    ++snapshot.overview.daysWithContent;
    auto &earliest = snapshot.overview.earliestYear;
    earliest = std::min(earliest.value_or(*years.begin()), *years.begin());
}

} // namespace

std::set<MonthDay> DiaryStore::dayFiles(const fs::path &folder) {
    std::set<MonthDay> days;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const auto name = VaultFileName::classify(entry->path().filename().native());
        if (name.kind == VaultFileName::Kind::DayFile || name.kind == VaultFileName::Kind::Placeholder)
            days.insert(name.monthDay);
    }
    return days;
}

const std::set<MonthDay> &DiaryStore::knownFiles() {
    if (!m_knownFiles)
        m_knownFiles = dayFiles(m_rootURL);
    return *m_knownFiles;
}

// The years with content, by the cache or the file; none when the file cannot be read. Valid until the next
// call.
const std::vector<std::int64_t> *DiaryStore::cachedYears(MonthDay monthDay, DayFileReader &reader) {
    if (const auto cached = m_yearCache.find(monthDay);
        cached != m_yearCache.end() && cached->second.mtime == reader.modificationDate(monthDay))
        return &cached->second.years;
    if (startDownloadIfNeeded(fileURL(monthDay))) {
        m_awaitingDownload.insert(monthDay);
        return nullptr;
    }
    m_awaitingDownload.erase(monthDay);
    const auto content = reader.read(monthDay);
    if (!content)
        return nullptr;
    auto &entry = m_yearCache[monthDay];
    entry = {content->modificationDate, YearSectionParser::ascendingYearsWithContent(content->bytes)};
    return &entry.years;
}

std::set<std::int64_t> DiaryStore::yearsWithContent(MonthDay monthDay) {
    DayFileReader reader(m_rootURL);
    const auto *years = cachedYears(monthDay, reader);
    return years ? std::set<std::int64_t>(years->begin(), years->end()) : std::set<std::int64_t>();
}

template <typename Visit>
void DiaryStore::visitYearsWithContent(Visit visit) {
    DayFileReader reader(m_rootURL);
    for (const auto monthDay : knownFiles()) {
        const auto *years = cachedYears(monthDay, reader);
        if (years && !years->empty())
            visit(monthDay, *years);
    }
}

std::set<std::int64_t> DiaryStore::daysWithContent(std::int64_t inMonth) {
    std::set<std::int64_t> days;
    DayFileReader reader(m_rootURL);
    const auto &files = knownFiles();
    for (auto file = files.lower_bound({inMonth, 1}); file != files.end() && file->month == inMonth; ++file) {
        const auto *years = cachedYears(*file, reader);
        if (years && !years->empty())
            days.insert(file->day);
    }
    return days;
}

std::map<MonthDay, int> DiaryStore::contentYearCounts() {
    std::map<MonthDay, int> counts;
    visitYearsWithContent(
        [&](MonthDay monthDay, const auto &years) { counts[monthDay] = static_cast<int>(years.size()); });
    return counts;
}

std::set<std::int64_t> DiaryStore::allContentYears() {
    std::set<std::int64_t> all;
    visitYearsWithContent([&](MonthDay, const auto &years) { all.insert(years.begin(), years.end()); });
    return all;
}

DiaryStore::Overview DiaryStore::overview() {
    Overview result;
    visitYearsWithContent([&](MonthDay, const auto &years) {
        ++result.daysWithContent;
        result.earliestYear = std::min(result.earliestYear.value_or(*years.begin()), *years.begin());
    });
    result.fileCount = static_cast<int>(knownFiles().size());
    return result;
}

std::optional<MonthDay> DiaryStore::randomDayWithContent() {
    std::vector<MonthDay> days;
    visitYearsWithContent([&](MonthDay monthDay, const auto &) { days.push_back(monthDay); });
    if (days.empty())
        return std::nullopt;
    std::random_device random;
    return days[std::uniform_int_distribution<std::size_t>(0, days.size() - 1)(random)];
}

DiaryStore::ArchiveScan DiaryStore::scanArchive(const fs::path &rootURL, YearCache cache,
                                                const CloudFiles &cloudFiles) {
    ArchiveScan scan{{}, std::move(cache), dayFiles(rootURL)};
    struct Look {
        std::optional<YearCacheEntry> fresh; // of a file that changed and could be read
        bool isCached = false;
        bool isAwaitingDownload = false;
    };
    const std::vector<MonthDay> files(scan.files.begin(), scan.files.end());
    std::vector<Look> looks(files.size());
    runInParallel(files.size(), [&] {
        return [&, reader = std::make_shared<DayFileReader>(rootURL)](std::size_t index) {
            auto &look = looks[index];
            const auto cached = scan.cache.find(files[index]);
            look.isCached =
                cached != scan.cache.end() && cached->second.mtime == reader->modificationDate(files[index]);
            if (look.isCached)
                return true;
            const auto path = rootURL / files[index].fileName();
            if (cloudFiles.downloadingStatus(path) == CloudFiles::DownloadingStatus::NotDownloaded) {
                cloudFiles.startDownloading(path);
                look.isAwaitingDownload = true;
            } else if (const auto content = reader->read(files[index])) {
                look.fresh = {content->modificationDate,
                              YearSectionParser::ascendingYearsWithContent(content->bytes)};
            }
            return true;
        };
    });

    for (std::size_t index = 0; index < files.size(); ++index) {
        auto &[fresh, isCached, isAwaitingDownload] = looks[index];
        if (isAwaitingDownload)
            scan.snapshot.awaitingDownload.insert(files[index]);
        if (fresh)
            scan.cache[files[index]] = std::move(*fresh);
        if (fresh || isCached)
            count(files[index], scan.cache.at(files[index]).years, scan.snapshot);
    }
    scan.snapshot.overview.fileCount = static_cast<int>(scan.files.size());
    return scan;
}

void DiaryStore::apply(ArchiveScan scan) {
    m_knownFiles = std::move(scan.files);
    for (auto &[monthDay, entry] : scan.cache) {
        const auto [known, isNew] = m_yearCache.try_emplace(monthDay, entry);
        // A save made while the scan ran is never undone by the scan's older reading.
        if (!isNew && entry.mtime > known->second.mtime)
            known->second = std::move(entry);
    }
    m_awaitingDownload = std::move(scan.snapshot.awaitingDownload);
}

void DiaryStore::loadArchiveSnapshot(std::function<void(const ArchiveSnapshot &)> onLoaded) {
    auto *executor = m_options.executor;
    // `this` is touched on the main thread alone, and only while the store lives.
    auto work = [this, executor, root = m_rootURL, cache = m_yearCache, cloudFiles = m_options.cloudFiles,
                 lifetime = std::weak_ptr<int>(m_lifetime), onLoaded = std::move(onLoaded)]() mutable {
        auto scan = std::make_shared<ArchiveScan>(scanArchive(root, std::move(cache), *cloudFiles));
        executor->postToMain([this, scan, lifetime, onLoaded] {
            if (lifetime.expired())
                return;
            const auto snapshot = scan->snapshot;
            apply(std::move(*scan));
            onLoaded(snapshot);
        });
    };
    executor->runInBackground(Executor::Priority::UserInitiated, std::move(work));
}

} // namespace diary

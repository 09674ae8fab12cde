// SPDX-License-Identifier: MIT
//
// The part of DiaryStore that finds entries by their words.

#include <DiaryKit/DayFileReader.h>
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/ParallelLoop.h>
#include <DiaryKit/SearchFilter.h>
#include <DiaryKit/TextMatcher.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/YearSectionParser.h>

#include <unicode/brkiter.h>
#include <unicode/utext.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr int charactersBeforeMatch = 14;
constexpr int charactersAfterMatch = 32;
constexpr int charactersWithoutMatch = 50;
constexpr const char *ellipsis = "…";

std::string_view withoutBlanksAround(std::string_view query) {
    query.remove_prefix(std::min(query.find_first_not_of(" \t"), query.size()));
    return query.substr(0, query.find_last_not_of(" \t") + 1);
}

// The body on one line. A carriage return with its line feed is one line break.
std::string flattened(std::string_view body) {
    std::string line;
    line.reserve(body.size());
    for (std::size_t index = 0; index < body.size(); ++index) {
        if (body.substr(index).starts_with("\r\n"))
            continue;
        line += body[index] == '\n' ? ' ' : body[index];
    }
    return line;
}

// Made once, since ICU looks its rules up by name; each use works on a clone.
const icu::BreakIterator &characterBoundaries() {
    static const std::unique_ptr<icu::BreakIterator> boundaries = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<icu::BreakIterator>(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    }();
    return *boundaries;
}

// Steps through a text by the characters that people see.
class CharacterSteps {
public:
    explicit CharacterSteps(std::string_view text) {
        UErrorCode status = U_ZERO_ERROR;
        m_text = utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status);
        m_boundaries.reset(characterBoundaries().clone());
        m_boundaries->setText(m_text, status);
    }
    CharacterSteps(const CharacterSteps &) = delete;
    CharacterSteps &operator=(const CharacterSteps &) = delete;
    ~CharacterSteps() { utext_close(m_text); }

    std::size_t before(std::size_t from, int characters) {
        auto at = static_cast<std::int32_t>(from);
        if (!m_boundaries->isBoundary(at))
            at = m_boundaries->preceding(at);
        for (; characters > 0 && at > 0; --characters)
            at = m_boundaries->preceding(at);
        return static_cast<std::size_t>(std::max(at, 0));
    }

    std::size_t after(std::size_t from, int characters, std::size_t size) {
        auto at = static_cast<std::int32_t>(from);
        if (!m_boundaries->isBoundary(at))
            at = m_boundaries->following(at);
        for (; characters > 0 && at != icu::BreakIterator::DONE; --characters)
            at = m_boundaries->following(at);
        return at == icu::BreakIterator::DONE ? size : static_cast<std::size_t>(at);
    }

private:
    UText *m_text = nullptr;
    std::unique_ptr<icu::BreakIterator> m_boundaries;
};

std::string snippetOf(const TextMatcher &plainMatcher, std::string_view body) {
    const auto line = flattened(body);
    const auto match = plainMatcher.find(line);
    // ICU counts in 32 bits; around a match far away in a giant entry, its surroundings are enough.
    constexpr std::size_t surroundings = std::size_t{64} * 1024;
    const auto matchBegin = match ? match->begin : 0;
    const auto matchEnd = match ? match->end : 0;
    const auto windowBegin = matchBegin > surroundings ? matchBegin - surroundings : 0;
    const auto window = std::string_view(line).substr(windowBegin, matchEnd - windowBegin + surroundings);

    CharacterSteps steps(window);
    if (!match)
        return std::string(window.substr(0, steps.after(0, charactersWithoutMatch, window.size())));
    const auto begin = windowBegin + steps.before(matchBegin - windowBegin, charactersBeforeMatch);
    const auto end = windowBegin + steps.after(matchEnd - windowBegin, charactersAfterMatch, window.size());
    std::string snippet = begin > 0 ? ellipsis : "";
    snippet += std::string_view(line).substr(begin, end - begin);
    return end < line.size() ? snippet + ellipsis : snippet;
}

// A query made ready, shared by the threads of one search.
struct PreparedQuery {
    explicit PreparedQuery(std::string_view query)
        : matcher(query, userCaseRules(), Equivalence::Canonical),
          plainMatcher(query, CaseRules::Default, Equivalence::CodePoints),
          filter(matcher.foldedQuery(), userCaseRules()) {}

    TextMatcher matcher;
    TextMatcher plainMatcher; // for the snippet
    SearchFilter filter;
};

void searchFile(const PreparedQuery &query, MonthDay monthDay, std::string_view bytes, std::size_t limit,
                std::vector<DiaryStore::SearchHit> &hits) {
    if (!query.filter.mayContain(bytes))
        return;
    std::string repaired;
    if (!UnicodeText::isValid(bytes)) {
        repaired = UnicodeText::repaired(std::string(bytes));
        bytes = repaired;
    }
    for (const auto &[year, body] : YearSectionParser::sectionBodies(bytes)) {
        if (hits.size() == limit)
            return;
        if (query.filter.mayContain(body) && query.matcher.find(body))
            hits.push_back({monthDay, year, snippetOf(query.plainMatcher, body)});
    }
}

// Collects the hits of files that are searched in any order, and knows when the first ones are enough.
class OrderedHits {
public:
    OrderedHits(std::size_t files, std::size_t limit) : m_files(files), m_limit(limit) {}

    // False when no later file can add to the result.
    bool add(std::size_t index, std::vector<DiaryStore::SearchHit> hits) {
        const std::lock_guard lock(m_mutex);
        m_files[index] = {std::move(hits), true};
        for (; m_complete < m_files.size() && m_files[m_complete].isDone; ++m_complete)
            m_count += m_files[m_complete].hits.size();
        return m_count < m_limit;
    }

    std::vector<DiaryStore::SearchHit> take() {
        std::vector<DiaryStore::SearchHit> all;
        for (auto &file : m_files)
            std::move(file.hits.begin(), file.hits.end(), std::back_inserter(all));
        if (all.size() > m_limit)
            all.resize(m_limit);
        return all;
    }

private:
    struct File {
        std::vector<DiaryStore::SearchHit> hits;
        bool isDone = false;
    };

    std::mutex m_mutex;
    std::vector<File> m_files;
    std::size_t m_limit;
    std::size_t m_complete = 0; // files before this one are all done
    std::size_t m_count = 0;    // hits in them
};

} // namespace

std::string DiaryStore::snippet(std::string_view query, std::string_view body) {
    return snippetOf(TextMatcher(query, CaseRules::Default, Equivalence::CodePoints), body);
}

std::vector<ByteRange> DiaryStore::matches(std::string_view query, std::string_view text) {
    const auto wanted = UnicodeText::repaired(std::string(withoutBlanksAround(query)));
    return TextMatcher(wanted, userCaseRules(), Equivalence::Canonical).findAll(text);
}

DiaryStore::SearchResult DiaryStore::search(const fs::path &rootURL, const std::set<MonthDay> &files,
                                            std::string_view query, int limit, const CloudFiles &cloudFiles,
                                            const std::stop_token &stop) {
    const auto wanted = withoutBlanksAround(query);
    if (wanted.empty() || limit <= 0)
        return {};
    const PreparedQuery prepared(UnicodeText::repaired(std::string(wanted)));
    // A day such as 31 February shares its place with one of the next month; it stands before it.
    std::vector<MonthDay> ordered(files.begin(), files.end());
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](MonthDay a, MonthDay b) { return a.ordinalInCycle() < b.ordinalInCycle(); });

    const auto most = static_cast<std::size_t>(limit);
    OrderedHits hits(ordered.size(), most);
    std::vector<char> isAwaiting(ordered.size());
    runInParallel(ordered.size(), [&] {
        return [&, reader = std::make_shared<DayFileReader>(rootURL)](std::size_t index) {
            if (stop.stop_requested())
                return false;
            const auto monthDay = ordered[index];
            const auto path = rootURL / monthDay.fileName();
            std::vector<SearchHit> found;
            if (cloudFiles.downloadingStatus(path) == CloudFiles::DownloadingStatus::NotDownloaded) {
                cloudFiles.startDownloading(path);
                isAwaiting[index] = 1;
            } else if (const auto content = reader->read(monthDay)) {
                searchFile(prepared, monthDay, content->bytes, most, found);
            }
            return hits.add(index, std::move(found));
        };
    });

    SearchResult result{hits.take(), {}};
    for (std::size_t index = 0; index < ordered.size(); ++index) {
        if (isAwaiting[index])
            result.awaitingDownload.insert(ordered[index]);
    }
    return result;
}

std::vector<DiaryStore::SearchHit> DiaryStore::searchEntries(std::string_view query, int limit) {
    auto result = search(m_rootURL, knownFiles(), query, limit, *m_options.cloudFiles);
    m_awaitingDownload.merge(result.awaitingDownload);
    return std::move(result.hits);
}

void DiaryStore::searchEntriesInBackground(std::string query, int limit, std::stop_token stop,
                                           std::function<void(const SearchResult &)> onFound) {
    auto *executor = m_options.executor;
    // `this` is touched on the main thread alone, and only while the store lives. A list of files that is
    // made here is not kept: it may be older than what the store was told meanwhile.
    auto work = [this, executor, root = m_rootURL, files = m_knownFiles, query = std::move(query), limit,
                 cloudFiles = m_options.cloudFiles, lifetime = std::weak_ptr<int>(m_lifetime),
                 stop = std::move(stop), onFound = std::move(onFound)] {
        if (stop.stop_requested())
            return;
        auto result = std::make_shared<const SearchResult>(
            search(root, files ? *files : dayFiles(root), query, limit, *cloudFiles, stop));
        executor->postToMain([this, result, lifetime, stop, onFound] {
            if (lifetime.expired() || stop.stop_requested())
                return;
            m_awaitingDownload.insert(result->awaitingDownload.begin(), result->awaitingDownload.end());
            onFound(*result);
        });
    };
    executor->runInBackground(Executor::Priority::UserInitiated, std::move(work));
}

std::vector<DiaryStore::SearchHit> DiaryStore::searchEntries(const fs::path &rootURL, std::string_view query,
                                                             int limit) {
    return search(rootURL, dayFiles(rootURL), query, limit, LinuxCloudFiles()).hits;
}

} // namespace diary

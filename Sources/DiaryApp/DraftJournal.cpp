// SPDX-License-Identifier: MIT
#include <DiaryApp/DraftJournal.h>
#include <DiaryApp/VaultClaim.h>
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/UserDirectories.h>
#include <DiaryKit/YearSectionParser.h>

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

namespace diary {

namespace {

namespace fs = std::filesystem;

// Each draft is a line "tavelo-draft YEAR MM-DD BYTES BYTES", and so many bytes of the base and of the text.
constexpr const char *recordFormat = "tavelo-draft %ld %2ld-%2ld %zu %zu%n";
constexpr std::size_t longestRecordLine = 80;

std::string record(const DraftJournal::Draft &draft) {
    return "tavelo-draft " + std::to_string(draft.year) + " " + draft.monthDay.headerTitle() + " " +
           std::to_string(draft.base.size()) + " " + std::to_string(draft.text.size()) + "\n" + draft.base +
           draft.text;
}

// Takes one record off the front; none when what stands there is something else.
std::optional<DraftJournal::Draft> takeRecord(std::string_view &bytes) {
    const std::string line(bytes.substr(0, std::min(bytes.find('\n'), longestRecordLine)));
    DraftJournal::Draft draft;
    std::size_t baseSize = 0;
    std::size_t textSize = 0;
    int length = 0;
    const int read = std::sscanf(line.c_str(), recordFormat, &draft.year, &draft.monthDay.month,
                                 &draft.monthDay.day, &baseSize, &textSize, &length);
    if (read != 5 || static_cast<std::size_t>(length) != line.size() ||
        !MonthDay::parse(draft.monthDay.fileName()))
        return std::nullopt;
    bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
    if (baseSize > bytes.size() || textSize != std::min(textSize, bytes.size() - baseSize))
        return std::nullopt;
    draft.base = bytes.substr(0, baseSize);
    draft.text = bytes.substr(baseSize, textSize);
    bytes.remove_prefix(baseSize + textSize);
    return draft;
}

// What stands in the diary now, with the draft as another version that grew from the same base.
std::string folded(const DraftJournal::Draft &draft, const std::string &present, const DiaryStore &store) {
    using namespace YearSectionParser;
    const auto base = replacingEntry(draft.base, draft.year, draft.monthDay, present);
    const auto typed = replacingEntry(draft.text, draft.year, draft.monthDay, present);
    return foldingDocuments(base, present, typed, draft.monthDay, store.conflictMarker());
}

} // namespace

DraftJournal DraftJournal::ofVault(const fs::path &vault) {
    return DraftJournal(UserDirectories::state() / "unsaved" / VaultClaim::nameOf(vault));
}

void DraftJournal::write(const std::vector<Draft> &drafts) const {
    std::error_code error;
    fs::create_directories(m_file.parent_path(), error);
    auto temporary = m_file;
    temporary += ".new";
    std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
    // Nobody else's business, from the first byte on.
    fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write, error);
    for (const auto &draft : drafts)
        stream << record(draft);
    stream.close();
    if (stream)
        fs::rename(temporary, m_file, error);
    else
        fs::remove(temporary, error);
}

void DraftJournal::clear() const {
    std::error_code error;
    fs::remove(m_file, error);
}

std::vector<DraftJournal::Draft> DraftJournal::read() const {
    std::error_code error;
    const auto bytes = readWholeFile(m_file, error);
    std::vector<Draft> drafts;
    std::string_view rest = bytes ? std::string_view(*bytes) : std::string_view();
    while (auto draft = takeRecord(rest))
        drafts.push_back(*std::move(draft));
    return drafts;
}

void restoreDrafts(const DraftJournal &journal, DiaryStore &store) {
    const auto drafts = journal.read();
    std::vector<DraftJournal::Draft> kept;
    for (const auto &draft : drafts) {
        try {
            const auto present = store.loadText(draft.monthDay);
            const auto text = folded(draft, present, store);
            if (text != present)
                store.save(text, draft.monthDay);
        } catch (const fs::filesystem_error &failure) {
            std::fprintf(stderr, "tavelo: %s\n", failure.what());
            kept.push_back(draft);
        }
    }
    if (kept.empty())
        journal.clear();
    else if (kept != drafts)
        journal.write(kept);
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DiaryDay.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace diary {

class DiaryStore;

// What is typed but not saved yet, written down outside the vault from time to time: a process that is killed
// in mid-sentence then loses no more than was typed since the last time. One file, of one process.
//
// The file is complete or absent, but not synced: what a power cut takes is what was not saved to the diary.
// Nothing throws; what cannot be written is not.
class DraftJournal {
public:
    struct Draft {
        MonthDay monthDay;
        std::int64_t year = 0;
        std::string base; // the year's entry that was typed on
        std::string text;

        bool operator==(const Draft &) const = default;
    };

    explicit DraftJournal(std::filesystem::path file) : m_file(std::move(file)) {}

    // In the user's state folder, for the process that has claimed the vault.
    static DraftJournal ofVault(const std::filesystem::path &vault);

    const std::filesystem::path &file() const { return m_file; }

    // Instead of what was written before.
    void write(const std::vector<Draft> &drafts) const;
    // Cheap when there is nothing to forget.
    void clear() const;
    // None when the file is absent or not one of these.
    std::vector<Draft> read() const;

private:
    std::filesystem::path m_file;
};

// Puts what a killed process left into the diary, folded in with what was written there since, and forgets
// it. What cannot be saved stays for the next time.
void restoreDrafts(const DraftJournal &journal, DiaryStore &store);

} // namespace diary

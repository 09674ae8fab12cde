// SPDX-License-Identifier: MIT
//
// A process that saves, for tests that kill it, starve it or let several of them loose on one file.
//
//   save-once ROOT MM-DD YEAR TEXT         one entry, as the application saves it
//   save-once --many ROOT MM-DD YEAR COUNT
//       COUNT saves, each adding one line to what the file holds of the year
//   save-once --draft ROOT MM-DD YEAR COUNT FILE
//       the same from an entry kept in memory, as an editor does; then waits for FILE to exist and looks once
//       more whether the last save is still there
//
// Ends with 0 when everything was saved, with 1 and a message otherwise.

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/YearSectionParser.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace diary;

struct Entry {
    MonthDay monthDay;
    std::int64_t year;
};

Entry parsedEntry(const std::string &day, const std::string &year) {
    const auto monthDay = MonthDay::parse(day + ".md");
    if (!monthDay)
        throw std::invalid_argument("no day: " + day);
    return {*monthDay, std::stoll(year)};
}

void saveBody(DiaryStore &store, Entry entry, const std::string &body) {
    const auto text =
        YearSectionParser::replacingEntry(body, entry.year, entry.monthDay, store.loadText(entry.monthDay));
    store.save(text, entry.monthDay);
}

std::string bodyInFile(DiaryStore &store, Entry entry) {
    const auto text = store.loadText(entry.monthDay);
    for (const auto &[year, body] : YearSectionParser::sectionBodies(text)) {
        if (year == entry.year)
            return std::string(body);
    }
    return {};
}

std::string withLine(std::string body, Entry entry, int number) {
    return std::move(body) + "\nline " + std::to_string(entry.year) + "/" + std::to_string(number) + ".";
}

void saveMany(DiaryStore &store, Entry entry, int count) {
    for (int number = 1; number <= count; ++number)
        saveBody(store, entry, withLine(bodyInFile(store, entry), entry, number));
}

void saveDraft(DiaryStore &store, Entry entry, int count, const std::filesystem::path &awaited) {
    std::string draft;
    for (int number = 1; number <= count; ++number) {
        draft = withLine(std::move(draft), entry, number);
        saveBody(store, entry, draft);
    }
    while (!std::filesystem::exists(awaited))
        std::this_thread::sleep_for(std::chrono::milliseconds{1});
    store.repairOverwrittenSaves();
}

void run(const std::vector<std::string> &words) {
    if (words.size() == 4) {
        DiaryStore store(words[0]);
        saveBody(store, parsedEntry(words[1], words[2]), words[3]);
    } else if (words.size() == 5 && words[0] == "--many") {
        DiaryStore store(words[1]);
        saveMany(store, parsedEntry(words[2], words[3]), std::stoi(words[4]));
    } else if (words.size() == 6 && words[0] == "--draft") {
        DiaryStore store(words[1]);
        saveDraft(store, parsedEntry(words[2], words[3]), std::stoi(words[4]), words[5]);
    } else {
        throw std::invalid_argument("unknown arguments");
    }
}

} // namespace

int main(int argc, char **argv) {
    try {
        run({argv + 1, argv + argc});
    } catch (const std::exception &exception) {
        std::cerr << "save-once: " << exception.what() << '\n';
        return 1;
    }
    return 0;
}

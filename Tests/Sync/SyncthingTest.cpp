// SPDX-License-Identifier: MIT
//
// Two machines whose vaults a real sync tool keeps in step, played on one.

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/VaultFileName.h>
#include <DiaryKit/YearSectionParser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <Support/Syncthing.h>
#include <Support/TemporaryFolder.h>
#include <Support/WaitUntil.h>

namespace diary {
namespace {

using namespace std::chrono_literals;
using testing::Syncthing;
using testing::TemporaryFolder;
using testing::waitUntil;
using Clock = std::chrono::steady_clock;

constexpr MonthDay day{3, 14};
const std::string marker = DiaryStore::Options{}.conflictMarker;

std::string entryOf(std::string_view text, std::int64_t year) {
    for (const auto &entry : YearSectionParser::sectionBodies(text)) {
        if (entry.year == year)
            return std::string(entry.body);
    }
    return {};
}

// As a user who adds a line below what is there.
std::string withLine(const std::string &entry, const std::string &line) {
    return entry.empty() ? line : entry + "\n" + line;
}

std::string lineOf(int number) {
    return "Zeile " + std::to_string(number) + ".";
}

std::string stateOf(int number) {
    return "Stand " + std::to_string(number) + ".";
}

// One machine: its vault, its diary, its sync tool.
struct Machine {
    static constexpr auto repairDelay = 1500ms;

    TemporaryFolder folder;
    DiaryStore store{folder / "vault", {.stateFolder = folder / "state"}};
    Syncthing sync{folder / "home", folder / "vault"};
    std::optional<Clock::time_point> repairDue;

    std::string entry(std::int64_t year) { return entryOf(store.loadText(day), year); }

    void saveEntry(std::string_view text, std::int64_t year) {
        store.save(YearSectionParser::replacingEntry(text, year, day, store.loadText(day)), day);
        repairDue = Clock::now() + repairDelay;
    }

    // Looks again at the last saves when there was none for a while, as the application does.
    void repairWhenDue() {
        if (!repairDue || Clock::now() < *repairDue)
            return;
        repairDue.reset();
        if (!store.repairOverwrittenSaves().empty())
            repairDue = Clock::now() + repairDelay;
    }

    // None while there is no file.
    std::optional<std::string> fileText() const {
        std::error_code error;
        return readWholeFile(store.fileURL(day), error);
    }

    bool hasConflictCopy() const {
        return std::ranges::any_of(folder.names("vault"), [](const std::string &name) {
            return VaultFileName::classify(name).kind == VaultFileName::Kind::ConflictCopy;
        });
    }
};

// Works again and again beside the test, until the result goes.
template <typename Work>
std::jthread inBackground(Work work) {
    return std::jthread([work](const std::stop_token &stop) {
        try {
            while (!stop.stop_requested())
                work();
        } catch (const std::exception &error) {
            ADD_FAILURE() << error.what();
        }
    });
}

class SyncthingPair : public ::testing::Test {
protected:
    static constexpr std::int64_t theirYear = 2001; // that the first machine writes
    static constexpr std::int64_t myYear = 2002;    // that the second machine writes

    void SetUp() override {
        if (!Syncthing::isInstalled())
            GTEST_SKIP() << "The program syncthing is not installed.";
        machines = std::make_unique<std::array<Machine, 2>>();
        ASSERT_TRUE(first().sync.start(second().sync)) << first().sync.log();
        ASSERT_TRUE(second().sync.start(first().sync)) << second().sync.log();
        ASSERT_TRUE(waitUntil([this] { return isInStep(); })) << logs();
    }

    Machine &first() { return machines->front(); }
    Machine &second() { return machines->back(); }

    bool isInStep() { return first().sync.isInStep() && second().sync.isInStep(); }

    std::string logs() { return first().sync.log() + second().sync.log(); }

    void resolveOnBoth() {
        for (auto &machine : *machines)
            merges += machine.store.resolveConflicts(day, marker) ? 1 : 0;
    }

    // Both machines look for conflicts, as the diary does whenever it shows the day, until there is nothing
    // left to do for anyone.
    bool settle() {
        return waitUntil(
            [this] {
                resolveOnBoth();
                for (auto &machine : *machines) {
                    machine.store.repairOverwrittenSaves();
                    machine.sync.scan();
                }
                return isInStep() && !first().hasConflictCopy() && !second().hasConflictCopy() &&
                       first().fileText() && first().fileText() == second().fileText();
            },
            40s);
    }

    void expectEverySave(const std::string &theirLast, const std::vector<std::string> &myLines) {
        for (const auto &machine : *machines) {
            const auto text = machine.fileText().value_or("");
            EXPECT_NE(entryOf(text, theirYear).find(theirLast), std::string::npos)
                << entryOf(text, theirYear);
            const auto mine = "\n" + entryOf(text, myYear) + "\n";
            std::string lost;
            for (const auto &line : myLines)
                lost += mine.find("\n" + line + "\n") == std::string::npos ? line + " " : "";
            EXPECT_EQ(lost, "");
        }
    }

    std::unique_ptr<std::array<Machine, 2>> machines;
    int merges = 0;
};

TEST_F(SyncthingPair, keepsBothTextsOfEveryEntryWrittenWhileApart) {
    constexpr std::int64_t firstYear = 2001;
    constexpr std::int64_t rounds = 20;
    const auto isKept = [](std::string_view text, std::int64_t year) {
        const auto entry = entryOf(text, year);
        const auto one = "Am ersten Gerät, " + std::to_string(year) + ".";
        const auto other = "Am zweiten Gerät, " + std::to_string(year) + ".";
        const auto between = "\n\n" + marker + "\n\n";
        return entry == one + between + other || entry == other + between + one;
    };
    first().saveEntry("Ein Jahr davor.", firstYear - 1);
    ASSERT_TRUE(settle()) << logs();

    for (auto year = firstYear; year < firstYear + rounds; ++year) {
        SCOPED_TRACE(year);
        const auto &cutting = year % 2 == 0 ? first() : second();
        cutting.sync.cutOff();
        first().saveEntry("Am ersten Gerät, " + std::to_string(year) + ".", year);
        second().saveEntry("Am zweiten Gerät, " + std::to_string(year) + ".", year);
        for (const auto &machine : *machines)
            machine.sync.scan();
        cutting.sync.reconnect();

        // By turns one machine merges before the other has seen the copy, or both do at the same time.
        const bool together = year % 4 < 2;
        ASSERT_TRUE(waitUntil([&] {
            const bool one = first().hasConflictCopy();
            const bool other = second().hasConflictCopy();
            return together ? one && other && isInStep() : one || other;
        })) << logs();
        merges = 0;
        resolveOnBoth();
        ASSERT_TRUE(settle()) << logs();
        // What both machines have merged is no new conflict.
        EXPECT_GE(merges, together ? 2 : 1);
        EXPECT_LE(merges, 2);
        EXPECT_TRUE(isKept(*first().fileText(), year)) << *first().fileText();
    }

    const auto text = first().fileText().value();
    EXPECT_EQ(second().fileText(), text);
    EXPECT_EQ(entryOf(text, firstYear - 1), "Ein Jahr davor.");
    for (auto year = firstYear; year < firstYear + rounds; ++year)
        EXPECT_TRUE(isKept(text, year)) << entryOf(text, year);
}

TEST_F(SyncthingPair, losesNoSaveWhileOtherTextsArrive) {
    constexpr int leastArrivals = 10;
    int theirSaves = 0;
    first().saveEntry(stateOf(theirSaves), theirYear);
    ASSERT_TRUE(settle()) << logs();

    std::vector<std::string> lines;
    int arrivals = 0;
    {
        const auto writing = inBackground([&] {
            first().saveEntry(stateOf(++theirSaves), theirYear);
            first().sync.scan();
            first().repairWhenDue();
            std::this_thread::sleep_for(50ms);
        });
        const auto scanning = inBackground([&] {
            second().sync.scan();
            std::this_thread::sleep_for(5ms);
        });
        const auto start = Clock::now();
        for (std::string lastSeen;
             Clock::now() < start + 10s || (arrivals < leastArrivals && Clock::now() < start + 40s);) {
            lines.push_back(lineOf(static_cast<int>(lines.size())));
            second().saveEntry(withLine(second().entry(myYear), lines.back()), myYear);
            second().store.resolveConflicts(day, marker);
            second().repairWhenDue();
            if (auto seen = second().entry(theirYear); seen != lastSeen) {
                lastSeen = std::move(seen);
                ++arrivals;
            }
            std::this_thread::sleep_for(20ms);
        }
    }
    EXPECT_GE(arrivals, leastArrivals) << logs();
    EXPECT_TRUE(settle()) << logs();
    expectEverySave(stateOf(theirSaves), lines);
}

// The sync tool has the new file ready under a name of its own for some milliseconds, looks whether the old
// one is still what it knows, removes it and renames the new one. Every other round only measures how long
// that takes; the rounds between save around that moment.
TEST_F(SyncthingPair, losesNoSaveThatFallsIntoTheReplacingOfTheFile) {
    constexpr int rounds = 60;
    constexpr auto step = 400us;
    constexpr int steps = 12;
    first().saveEntry(stateOf(0), theirYear);
    ASSERT_TRUE(settle()) << logs();

    const auto incoming = second().folder / "vault" / (".syncthing." + day.fileName() + ".tmp");
    const auto isIncoming = [&] {
        std::error_code error;
        return std::filesystem::exists(incoming, error);
    };
    const auto spinUntil = [](auto condition) {
        for (const auto limit = Clock::now() + 2s; !condition() && Clock::now() < limit;) {
        }
        return Clock::now();
    };
    std::vector<std::string> lines;
    Clock::duration replacing = 20ms;
    Clock::duration saving = 5ms;
    int replacements = 0;
    int aimed = 0;
    for (int round = 1; round <= rounds; ++round) {
        first().saveEntry(stateOf(round), theirYear);
        const std::jthread scanning([&] { first().sync.scan(); });
        const auto seen = spinUntil(isIncoming);
        replacements += isIncoming() ? 1 : 0;
        if (round % 2 == 1) {
            replacing = spinUntil([&] { return !isIncoming(); }) - seen;
        } else {
            const auto aim = seen + replacing - saving + step * (aimed % steps - steps / 2);
            spinUntil([&] { return Clock::now() >= aim; });
            const auto start = Clock::now();
            lines.push_back(lineOf(aimed++));
            second().saveEntry(withLine(second().entry(myYear), lines.back()), myYear);
            saving = Clock::now() - start;
        }
        ASSERT_TRUE(waitUntil([&] {
            second().repairWhenDue();
            second().store.resolveConflicts(day, marker);
            second().sync.scan();
            return isInStep();
        })) << logs();
    }
    EXPECT_GE(replacements, rounds / 3);
    EXPECT_TRUE(settle()) << logs();
    expectEverySave(stateOf(rounds), lines);
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
//
// The library against the least that the same work could cost: kit-benchmarks VAULT
// Prints one ratio a line, with its aim. Each pair is measured in the same run.

#include "FastestTimes.h"

#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/ParallelLoop.h>
#include <DiaryKit/YearSectionParser.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using diary::DiaryStore;
using diary::MonthDay;

fs::path vault;

// About a megabyte of years like those of a large vault.
const std::string &document() {
    static const std::string text = [] {
        std::string result = "# 03-14\n";
        for (int year = 1000; result.size() < 1'000'000; ++year) {
            result += "\n## " + std::to_string(year) + "\n\n";
            for (int paragraph = 0; paragraph < 4; ++paragraph)
                result += std::string(500, 'a') + "\n\n";
        }
        return result;
    }();
    return text;
}

void sections(benchmark::State &state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(diary::YearSectionParser::sections(document()));
}

void memchrOverIt(benchmark::State &state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(std::memchr(document().data(), '\1', document().size()));
}

void coldStatistics(benchmark::State &state) {
    const diary::LinuxCloudFiles cloudFiles;
    for (auto _ : state)
        benchmark::DoNotOptimize(DiaryStore::scanArchive(vault, {}, cloudFiles));
}

// Begins where the kernel copies to fast in every run; where malloc puts a vector is chance.
struct alignas(4096) AlignedBuffer {
    std::array<char, 1 << 20> bytes;
};

void readingTheFiles(benchmark::State &state) {
    const auto found = DiaryStore::dayFiles(vault);
    const std::vector<MonthDay> files(found.begin(), found.end());
    for (auto _ : state) {
        diary::runInParallel(files.size(), [&] {
            return [&, buffer = std::make_shared_for_overwrite<AlignedBuffer>()](std::size_t index) {
                const int file = ::open((vault / files[index].fileName()).c_str(), O_RDONLY);
                while (::read(file, buffer->bytes.data(), buffer->bytes.size()) > 0) {
                }
                ::close(file);
                return true;
            };
        });
    }
}

void warmStatistics(benchmark::State &state) {
    DiaryStore store(vault);
    store.overview();
    for (auto _ : state)
        benchmark::DoNotOptimize(store.overview());
}

void oneStatAFile(benchmark::State &state) {
    std::vector<std::string> paths;
    for (const auto day : DiaryStore::dayFiles(vault))
        paths.push_back((vault / day.fileName()).string());
    for (auto _ : state) {
        for (const auto &path : paths) {
            struct stat status {};
            benchmark::DoNotOptimize(::stat(path.c_str(), &status));
        }
    }
}

// A day of ten years, saved with one of them changed each time.
class SavingFolder {
public:
    SavingFolder() {
        auto pattern = (vault.parent_path() / "saving-XXXXXX").string();
        path = ::mkdtemp(pattern.data());
        text = document().substr(0, 20'000);
    }
    ~SavingFolder() { fs::remove_all(path); }

    fs::path path;
    std::string text;
};

void save(benchmark::State &state) {
    const SavingFolder folder;
    DiaryStore store(folder.path, {.stateFolder = folder.path / "state"});
    std::int64_t round = 0;
    for (auto _ : state) {
        const auto loaded = store.loadText({3, 14});
        store.save(folder.text + std::to_string(++round) + "\n", {3, 14});
    }
}

void writeSyncRenameSync(benchmark::State &state) {
    const SavingFolder folder;
    const auto target = (folder.path / "03-14.md").string();
    const auto temporary = target + "~";
    const int directory = ::open(folder.path.c_str(), O_RDONLY | O_DIRECTORY);
    for (auto _ : state) {
        const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        benchmark::DoNotOptimize(::write(file, folder.text.data(), folder.text.size()));
        ::fsync(file);
        ::close(file);
        ::rename(temporary.c_str(), target.c_str());
        ::fsync(directory);
    }
    ::close(directory);
}

BENCHMARK(sections);
BENCHMARK(memchrOverIt);
BENCHMARK(coldStatistics)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(readingTheFiles)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(warmStatistics)->Unit(benchmark::kMicrosecond);
BENCHMARK(oneStatAFile)->Unit(benchmark::kMicrosecond);
BENCHMARK(save)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(writeSyncRenameSync)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

int main(int argc, char *argv[]) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: kit-benchmarks VAULT\n");
        return 2;
    }
    vault = fs::absolute(argv[1]);
    std::vector<const char *> options{argv[0], "--benchmark_repetitions=5", "--benchmark_min_time=0.2"};
    int count = static_cast<int>(options.size());
    benchmark::Initialize(&count, const_cast<char **>(options.data()));
    diary::FastestTimes times;
    benchmark::RunSpecifiedBenchmarks(&times);
    times.printRatio("sections of 1 MB / memchr over it", "sections", "memchrOverIt", "4.0");
    times.printRatio("cold statistics / reading the files", "coldStatistics", "readingTheFiles", "1.5");
    times.printRatio("warm statistics / one stat a file", "warmStatistics", "oneStatAFile", "2.0");
    times.printRatio("one save / write, fsync, rename, fsync", "save", "writeSyncRenameSync", "1.5");
    return 0;
}

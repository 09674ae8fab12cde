// SPDX-License-Identifier: MIT
#include <DiaryApp/RescuedTexts.h>
#include <DiaryKit/Defaults.h>
#include <DiaryKit/UserDirectories.h>

#include <algorithm>
#include <chrono>
#include <system_error>

namespace diary::RescuedTexts {

namespace {

namespace fs = std::filesystem;

constexpr const char *toldKey = "toldOfRescuedTexts";

// Seconds since 1970.
double latestChange() {
    double latest = 0;
    std::error_code error;
    for (fs::directory_iterator entry(folder(), error), end; !error && entry != end; entry.increment(error)) {
        std::error_code missing;
        const auto time = fs::last_write_time(entry->path(), missing);
        const auto seconds = std::chrono::file_clock::to_sys(time).time_since_epoch();
        if (!missing)
            latest = std::max(latest, std::chrono::duration<double>(seconds).count());
    }
    return latest;
}

Defaults state() {
    return Defaults(UserDirectories::state() / "state.json");
}

} // namespace

fs::path folder() {
    return UserDirectories::state() / "rescued";
}

bool haveNews() {
    const auto latest = latestChange();
    return latest > 0 && latest > state().number(toldKey).value_or(0);
}

void markAsTold() {
    try {
        state().set(toldKey, latestChange());
    } catch (const fs::filesystem_error &) {
    }
}

} // namespace diary::RescuedTexts

// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <chrono>
#include <filesystem>

#include <sys/stat.h>

// Small things that every file with system calls needs.
namespace diary {

// Repeats a call that a signal interrupted. Not for close.
template <typename Call>
auto retryingWhenInterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

// Time of the last change of content, as std::filesystem::last_write_time tells it.
inline std::filesystem::file_time_type fileTime(const struct stat &status) {
    const auto sinceEpoch =
        std::chrono::seconds{status.st_mtim.tv_sec} + std::chrono::nanoseconds{status.st_mtim.tv_nsec};
    return std::chrono::file_clock::from_sys(std::chrono::sys_time<std::chrono::nanoseconds>{sinceEpoch});
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryKit/DayFileReader.h>
#include <DiaryKit/SystemCalls.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

// Room for a day of some decades; it grows for more.
constexpr std::size_t initialRoom = std::size_t{256} * 1024;

} // namespace

DayFileReader::DayFileReader(const std::filesystem::path &folder)
    : m_folder(
          retryingWhenInterrupted([&] { return ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); })) {
}

std::optional<DayFileReader::Content> DayFileReader::read(MonthDay monthDay) {
    const auto name = monthDay.fileName();
    const FileDescriptor file(retryingWhenInterrupted(
        [&] { return ::openat(m_folder.get(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) < 0 || !S_ISREG(status.st_mode) ||
        static_cast<std::size_t>(status.st_size) > largestReadableFile)
        return std::nullopt;
    if (m_buffer.empty())
        m_buffer.resize(initialRoom / sizeof(Block));

    std::size_t filled = 0;
    for (;;) {
        if (filled == room())
            m_buffer.resize(m_buffer.size() * 2);
        const auto count =
            retryingWhenInterrupted([&] { return ::read(file.get(), bytes() + filled, room() - filled); });
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
        if (filled > largestReadableFile)
            return std::nullopt;
    }
    return Content{{bytes(), filled}, fileTime(status)};
}

std::optional<std::filesystem::file_time_type> DayFileReader::modificationDate(MonthDay monthDay) const {
    struct stat status {};
    if (::fstatat(m_folder.get(), monthDay.fileName().c_str(), &status, 0) < 0)
        return std::nullopt;
    return fileTime(status);
}

} // namespace diary

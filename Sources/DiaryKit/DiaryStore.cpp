// SPDX-License-Identifier: MIT
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/UserDirectories.h>

#include <chrono>
#include <thread>

namespace diary {

namespace {

namespace fs = std::filesystem;

// A file that another program is just replacing is missing, empty or not to be opened for a moment.
constexpr int replacementLooks = 10;
constexpr std::chrono::milliseconds replacementPause{1};

ImmediateExecutor &immediateExecutor() {
    static ImmediateExecutor executor;
    return executor;
}

} // namespace

DiaryStore::DiaryStore(std::optional<fs::path> rootURL, Options options)
    : m_rootURL(rootURL ? std::move(*rootURL) : UserDirectories::home() / "Documents" / "Diary"),
      m_options(std::move(options)) {
    if (!m_options.stateFolder)
        m_options.stateFolder = UserDirectories::state();
    if (!m_options.cloudFiles)
        m_options.cloudFiles = std::make_shared<LinuxCloudFiles>(*m_options.stateFolder / "resolved");
    if (!m_options.executor)
        m_options.executor = &immediateExecutor();
}

fs::path DiaryStore::fileURL(MonthDay monthDay) const {
    return m_rootURL / monthDay.fileName();
}

std::string DiaryStore::defaultText(MonthDay monthDay) {
    return "# " + monthDay.headerTitle() + "\n";
}

bool DiaryStore::expectsFile(MonthDay monthDay) const {
    if (m_seen && m_seen->monthDay == monthDay)
        return m_seen->bytes.has_value();
    if ((m_knownFiles && m_knownFiles->contains(monthDay)) || m_yearCache.contains(monthDay))
        return true;
    // Syncthing has the new content ready under this name before it takes the old file away.
    std::error_code error;
    return fs::exists(m_rootURL / (".syncthing." + monthDay.fileName() + ".tmp"), error);
}

bool DiaryStore::isMissing(const fs::path &file, MonthDay monthDay) const {
    const auto missingNow = [&] {
        std::error_code error;
        return fs::status(file, error).type() == fs::file_type::not_found;
    };
    for (int look = 0; look < replacementLooks && expectsFile(monthDay); ++look) {
        if (!missingNow())
            return false;
        std::this_thread::sleep_for(replacementPause);
    }
    return missingNow();
}

std::optional<std::string> DiaryStore::readDayFile(const fs::path &file, MonthDay monthDay) const {
    const bool hadContent =
        m_seen && m_seen->monthDay == monthDay && m_seen->bytes && !m_seen->bytes->empty();
    std::error_code error;
    auto bytes = readWholeFile(file, error);
    for (int look = 0; look < replacementLooks; ++look) {
        // What was expected under another name may have come between the two looks.
        if (error == std::errc::no_such_file_or_directory && !expectsFile(monthDay))
            return readWholeFile(file, error);
        const bool emptied = bytes && bytes->empty() && hadContent;
        if (!error && !emptied)
            break;
        std::this_thread::sleep_for(replacementPause);
        bytes = readWholeFile(file, error);
    }
    return bytes;
}

std::string DiaryStore::loadText(MonthDay monthDay) {
    const auto file = fileURL(monthDay);
    nudgeDownloadIfEvicted(file);
    auto bytes = readDayFile(file, monthDay);
    const bool hasText = bytes && !bytes->empty();
    if (hasText || !m_seen || m_seen->monthDay != monthDay)
        m_lastContent = {};
    else if (m_seen->bytes && !m_seen->bytes->empty())
        m_lastContent = std::move(*m_seen->bytes);
    m_seen = Seen{monthDay, bytes};
    return bytes ? UnicodeText::repaired(std::move(*bytes)) : defaultText(monthDay);
}

std::optional<DiaryStore::FileTime> DiaryStore::modificationDate(MonthDay monthDay) const {
    return contentModificationTime(fileURL(monthDay));
}

} // namespace diary

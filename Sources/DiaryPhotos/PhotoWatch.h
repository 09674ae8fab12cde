// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DurableFile.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string_view>
#include <unordered_map>

namespace diary {

// Tells which folders of pictures must be looked at again. For one thread.
//
// Files count once they are closed after writing, moved, removed or touched. What is written by another
// machine on a network mount is not seen, nor is anything in folders beyond the limit.
class PhotoWatch {
public:
    struct News {
        bool ofEverything = false; // folders came or went, or the system lost count
        std::set<std::filesystem::path> folders;

        bool isEmpty() const { return !ofEverything && folders.empty(); }
    };

    // The system gives each user a number of watches, which others need too.
    static constexpr std::size_t usualLimit = 4096;

    explicit PhotoWatch(std::size_t mostFolders = usualLimit);

    // The folders watched between these two calls are those that stay watched.
    void beginRound();
    void endRound();

    // To be called before the folder is listed, so that no change slips in between.
    void watch(const std::filesystem::path &folder);

    // Whether every folder that was to be watched is: otherwise look again now and then.
    bool isComplete() const { return m_isComplete; }

    // To wait upon with poll(); -1 when the system refuses.
    int descriptor() const { return m_inotify.get(); }

    // What has happened since the last call. Never blocks.
    News read();

private:
    struct Watched {
        std::filesystem::path path;
        unsigned round = 0;
    };

    void addNews(News &news, const std::filesystem::path &folder, std::string_view name,
                 std::uint32_t mask) const;
    bool isWatched(const std::filesystem::path &folder) const;

    const std::size_t m_mostFolders;
    FileDescriptor m_inotify;
    std::unordered_map<int, Watched> m_folders; // by the number of the watch
    unsigned m_round = 0;
    std::size_t m_watchedInRound = 0;
    bool m_isComplete = true;
};

} // namespace diary

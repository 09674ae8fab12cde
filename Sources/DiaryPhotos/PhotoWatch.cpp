// SPDX-License-Identifier: MIT
#include <DiaryPhotos/PhotoDate.h>
#include <DiaryPhotos/PhotoWatch.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t selfMask = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t filesMask = IN_CLOSE_WRITE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE | IN_ATTRIB;

// Where other machines write without a notice here.
bool isOnNetwork(const fs::path &folder) {
    constexpr std::uint32_t nfs = NFS_SUPER_MAGIC;
    constexpr std::uint32_t smb = SMB_SUPER_MAGIC;
    constexpr std::uint32_t cifs = 0xff534d42;
    constexpr std::uint32_t smb2 = 0xfe534d42;
    constexpr std::uint32_t fuse = 0x65735546;
    constexpr std::uint32_t plan9 = V9FS_MAGIC;
    struct statfs status {};
    if (::statfs(folder.c_str(), &status) < 0)
        return false;
    const auto type = static_cast<std::uint32_t>(status.f_type);
    constexpr std::array types = {nfs, smb, cifs, smb2, fuse, plan9};
    return std::find(types.begin(), types.end(), type) != types.end();
}

bool isSymbolicLink(const fs::path &file) {
    struct stat status {};
    return ::lstat(file.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// A link of either kind is whole as soon as it is there; another new file only when it is closed.
bool isLink(const fs::path &file) {
    struct stat status {};
    return ::lstat(file.c_str(), &status) == 0 && (S_ISLNK(status.st_mode) || status.st_nlink > 1);
}

} // namespace

PhotoWatch::PhotoWatch(std::size_t mostFolders)
    : m_mostFolders(mostFolders), m_inotify(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

void PhotoWatch::beginRound() {
    ++m_round;
    m_watchedInRound = 0;
    m_isComplete = static_cast<bool>(m_inotify);
}

void PhotoWatch::endRound() {
    for (auto folder = m_folders.begin(); folder != m_folders.end();) {
        if (folder->second.round == m_round) {
            ++folder;
            continue;
        }
        ::inotify_rm_watch(m_inotify.get(), folder->first);
        folder = m_folders.erase(folder);
    }
}

void PhotoWatch::watch(const fs::path &folder) {
    if (!m_inotify || m_watchedInRound >= m_mostFolders) {
        m_isComplete = false;
        return;
    }
    const int number = ::inotify_add_watch(m_inotify.get(), folder.c_str(),
                                           selfMask | filesMask | IN_CREATE | IN_ONLYDIR | IN_EXCL_UNLINK);
    if (number < 0) {
        m_isComplete = false;
        return;
    }
    ++m_watchedInRound;
    m_folders.insert_or_assign(number, Watched{folder, m_round});
    if (isOnNetwork(folder))
        m_isComplete = false;
}

PhotoWatch::News PhotoWatch::read() {
    News news;
    // Together more than the kernel's queue holds by default.
    constexpr int maximumReads = 64;
    alignas(inotify_event) std::array<char, 65536> buffer;
    for (int reads = 0; m_inotify && reads < maximumReads; ++reads) {
        const auto size = ::read(m_inotify.get(), buffer.data(), buffer.size());
        if (size <= 0)
            break;
        const auto *const end = buffer.data() + size;
        for (const auto *position = buffer.data(); position < end;) {
            const auto *const event = reinterpret_cast<const inotify_event *>(position);
            position += sizeof(inotify_event) + event->len;
            if ((event->mask & IN_Q_OVERFLOW) != 0) {
                news.ofEverything = true;
                continue;
            }
            const auto folder = m_folders.find(event->wd);
            if (folder == m_folders.end())
                continue;
            if (event->len > 0) {
                addNews(news, folder->second.path, event->name, event->mask);
                continue;
            }
            // About the folder itself. The kernel says when it has dropped the watch.
            news.ofEverything = true;
            if ((event->mask & IN_IGNORED) != 0)
                m_folders.erase(folder);
        }
    }
    return news;
}

void PhotoWatch::addNews(News &news, const fs::path &folder, std::string_view name,
                         std::uint32_t mask) const {
    if (name == ".nomedia")
        news.ofEverything = true;
    if (name.starts_with('.'))
        return;
    const bool isNew = (mask & (IN_CREATE | IN_MOVED_TO)) != 0;
    const bool isGone = (mask & (IN_DELETE | IN_MOVED_FROM)) != 0;
    if ((mask & IN_ISDIR) != 0 || (isNew && isSymbolicLink(folder / name) && !hasPhotoExtension(name)) ||
        (isGone && isWatched(folder / name)))
        news.ofEverything = true;
    else if (hasPhotoExtension(name) && ((mask & IN_CREATE) == 0 || isLink(folder / name)))
        news.folders.insert(folder);
}

bool PhotoWatch::isWatched(const fs::path &folder) const {
    return std::any_of(m_folders.begin(), m_folders.end(),
                       [&](const auto &watched) { return watched.second.path == folder; });
}

} // namespace diary

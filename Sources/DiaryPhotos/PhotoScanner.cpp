// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryPhotos/PhotoScanner.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

// The first pictures show soon; later ones come in portions that are worth a transaction.
constexpr std::size_t firstBatch = 64;
constexpr std::size_t laterBatch = 256;

// Fewer files are not worth a second thread.
constexpr std::size_t smallestSharedBatch = 16;

struct CloseDirectory {
    void operator()(DIR *directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

// None with errno set.
Directory openDirectory(const fs::path &folder) {
    FileDescriptor file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
    if (!file)
        return nullptr;
    Directory directory(::fdopendir(file.get()));
    if (directory)
        file.release();
    return directory;
}

bool isMissing(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
}

// What storage boxes, trash cans and tools for programming make, beside all that begins with a dot.
bool isPassedOver(std::string_view name) {
    constexpr std::array names = {
        "@eaDir"sv,     "#recycle"sv,     "#snapshot"sv, "$RECYCLE.BIN"sv,
        "lost+found"sv, "node_modules"sv, "__MACOSX"sv,  "System Volume Information"sv};
    return name.starts_with('.') || std::find(names.begin(), names.end(), name) != names.end();
}

bool isAtOrBelow(const fs::path &path, const fs::path &folder) {
    const std::string_view name = path.native();
    const std::string_view start = folder.native();
    return name.starts_with(start) &&
           (name.size() == start.size() || start.ends_with('/') || name[start.size()] == '/');
}

fs::path normal(const fs::path &root) {
    auto result = root.lexically_normal();
    return result.has_filename() || result == result.root_path() ? result : result.parent_path();
}

struct FoundPhoto {
    std::string name;
    FileStamp stamp;
};

struct Listing {
    std::vector<FoundPhoto> photos; // in the order of the bytes of their names
    std::vector<std::string> folders;
    std::vector<std::string> linkedFolders;
    std::size_t entries = 0;
    bool isPassedOver = false;
};

struct Place {
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const Place &) const = default;
};

struct HashOfPlace {
    std::size_t operator()(const Place &place) const {
        return std::hash<std::uint64_t>()(place.inode * 0x9e3779b97f4a7c15U + place.device);
    }
};

struct PendingPhoto {
    std::size_t folder = 0;
    std::string name;
    std::int64_t modified = 0;
};

} // namespace

PhotoFolderAccess accessOf(const std::vector<fs::path> &folders) {
    PhotoFolderAccess access;
    for (const auto &folder : folders) {
        const auto directory = openDirectory(folder);
        const int openError = errno;
        if (!directory) {
            ++(isMissing(openError) ? access.missing : access.unreadable);
            continue;
        }
        errno = 0;
        const bool isRead = ::readdir(directory.get()) != nullptr || errno == 0;
        ++(isRead ? access.listable : access.unreadable);
    }
    return access;
}

// One look at the folders, without reading any picture.
class PhotoScanner::Walk {
public:
    Walk(PhotoScanner &scanner, const std::vector<fs::path> &roots) : m_scanner(scanner), m_roots(roots) {
        for (const auto &root : roots) {
            std::error_code error;
            auto real = fs::canonical(root, error);
            if (!error)
                m_realRoots.push_back(std::move(real));
        }
        for (auto &folder : scanner.m_index.folders())
            m_known.emplace(folder.path.native(), Known{folder.number, folder.isReachable, false});
    }

    // False when cancelled.
    bool everything();
    bool only(const std::set<fs::path> &folders);

    PhotoIndex::Changes changes;
    std::vector<fs::path> folders; // of the pending photos
    std::vector<PendingPhoto> pending;
    Progress progress;
    std::size_t unreadableFolders = 0;

private:
    struct Known {
        std::int64_t number = 0;
        bool isReachable = true;
        bool isVisited = false;
    };
    struct Ahead {
        fs::path folder;
        std::size_t depth = 0;
    };

    bool isCancelled() const { return m_scanner.m_hooks.isCancelled(); }
    void visit(const Ahead &ahead);
    std::optional<Listing> list(DIR *directory, const fs::path &folder);
    void sortEntry(Listing &listing, int directory, const dirent &entry, const fs::path &folder);
    void compare(const fs::path &folder, const std::vector<FoundPhoto> &photos);
    void setUnreachable(const fs::path &folder);
    bool isUnreachable(const fs::path &folder) const;
    bool knowsAnythingBelow(const fs::path &folder) const;
    bool willBeFoundByItself(const fs::path &link) const;
    void settleOtherFolders();

    PhotoScanner &m_scanner;
    const std::vector<fs::path> &m_roots;
    std::vector<fs::path> m_realRoots; // without links
    std::unordered_map<std::string, Known> m_known;
    std::unordered_set<Place, HashOfPlace> m_places;
    std::vector<Ahead> m_ahead; // the next one last
    std::vector<Ahead> m_links; // after all others, so that a folder is found by its own name first
    std::vector<fs::path> m_unreachable;
    std::size_t m_entries = 0;
    bool m_isPartial = false; // the progress holds what was known of the folders before
};

bool PhotoScanner::Walk::everything() {
    for (auto root = m_roots.rbegin(); root != m_roots.rend(); ++root)
        m_ahead.push_back({*root, 0});
    const auto &bounds = m_scanner.m_bounds;
    while (!m_ahead.empty() || !m_links.empty()) {
        if (isCancelled())
            return false;
        if (m_places.size() >= bounds.folders || progress.found >= bounds.photos ||
            m_entries >= bounds.entries)
            break;
        auto &next = m_ahead.empty() ? m_links : m_ahead;
        const auto ahead = std::move(next.back());
        next.pop_back();
        visit(ahead);
    }
    settleOtherFolders();
    return !isCancelled();
}

bool PhotoScanner::Walk::only(const std::set<fs::path> &touched) {
    m_isPartial = true;
    progress = m_scanner.m_progress;
    for (const auto &folder : touched) {
        if (isCancelled())
            return false;
        const auto directory = openDirectory(folder);
        if (!directory)
            continue;
        const auto listing = list(directory.get(), folder);
        if (listing && !listing->isPassedOver)
            compare(folder, listing->photos);
    }
    return !isCancelled();
}

void PhotoScanner::Walk::visit(const Ahead &ahead) {
    const bool isRoot = ahead.depth == 0;
    const auto directory = openDirectory(ahead.folder);
    if (!directory) {
        const int error = errno;
        if (!isMissing(error))
            ++unreadableFolders;
        if (isRoot || !isMissing(error))
            setUnreachable(ahead.folder);
        return;
    }
    struct stat status {};
    if (::fstat(::dirfd(directory.get()), &status) < 0 ||
        !m_places.insert({status.st_dev, status.st_ino}).second)
        return;
    m_scanner.m_watch.watch(ahead.folder);
    const auto listing = list(directory.get(), ahead.folder);
    if (!listing) {
        if (!isCancelled())
            ++unreadableFolders;
        setUnreachable(ahead.folder);
        return;
    }
    // The folder of a drive stays when the drive goes.
    if (isRoot && listing->entries == 0 && knowsAnythingBelow(ahead.folder)) {
        setUnreachable(ahead.folder);
        return;
    }
    if (listing->isPassedOver)
        return;
    compare(ahead.folder, listing->photos);
    if (ahead.depth >= m_scanner.m_bounds.depth)
        return;
    for (const auto &name : listing->folders)
        m_ahead.push_back({ahead.folder / name, ahead.depth + 1});
    for (const auto &name : listing->linkedFolders)
        m_links.push_back({ahead.folder / name, ahead.depth + 1});
}

// None when the folder cannot be read to its end.
std::optional<Listing> PhotoScanner::Walk::list(DIR *directory, const fs::path &folder) {
    Listing listing;
    for (;;) {
        errno = 0;
        const auto *const entry = ::readdir(directory);
        if (!entry) {
            if (errno != 0)
                return std::nullopt;
            break;
        }
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        ++listing.entries;
        if (name == ".nomedia")
            listing.isPassedOver = true;
        if (isPassedOver(name))
            continue;
        if (++m_entries >= m_scanner.m_bounds.entries)
            break;
        if (isCancelled())
            return std::nullopt;
        sortEntry(listing, ::dirfd(directory), *entry, folder);
    }
    std::ranges::sort(listing.photos, {}, &FoundPhoto::name);
    std::ranges::sort(listing.folders);
    std::ranges::sort(listing.linkedFolders);
    return listing;
}

void PhotoScanner::Walk::sortEntry(Listing &listing, int directory, const dirent &entry,
                                   const fs::path &folder) {
    const std::string_view name = entry.d_name;
    const bool hasExtension = hasPhotoExtension(name);
    if (entry.d_type == DT_DIR) {
        listing.folders.emplace_back(name);
        return;
    }
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN && (entry.d_type != DT_REG || !hasExtension))
        return;
    struct stat status {};
    bool isLink = entry.d_type == DT_LNK;
    if (entry.d_type == DT_UNKNOWN && ::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
        isLink = S_ISLNK(status.st_mode);
    if (::fstatat(directory, entry.d_name, &status, 0) < 0)
        return;
    if (S_ISDIR(status.st_mode)) {
        (isLink ? listing.linkedFolders : listing.folders).emplace_back(name);
        return;
    }
    if (!S_ISREG(status.st_mode) || !hasExtension || (isLink && willBeFoundByItself(folder / name)))
        return;
    if (progress.found + listing.photos.size() < m_scanner.m_bounds.photos)
        listing.photos.push_back({std::string(name), stampOf(status)});
}

bool PhotoScanner::Walk::willBeFoundByItself(const fs::path &link) const {
    std::error_code error;
    const auto target = fs::canonical(link, error);
    if (error)
        return false;
    return std::any_of(m_realRoots.begin(), m_realRoots.end(), [&](const fs::path &root) {
        if (!isAtOrBelow(target, root))
            return false;
        const auto way = target.lexically_relative(root);
        return hasPhotoExtension(target.native()) &&
               std::none_of(way.begin(), way.end(),
                            [](const fs::path &name) { return isPassedOver(name.native()); });
    });
}

void PhotoScanner::Walk::compare(const fs::path &folder, const std::vector<FoundPhoto> &photos) {
    const auto number = folders.size();
    folders.push_back(folder);
    const auto mustBeRead = [&](const FoundPhoto &photo) {
        pending.push_back({number, photo.name, photo.stamp.modified});
    };
    auto next = photos.begin();
    std::size_t unchanged = 0;
    std::size_t alreadyKnown = 0;
    const auto known = m_known.find(folder.native());
    if (known != m_known.end()) {
        known->second.isVisited = true;
        const auto folderNumber = known->second.number;
        m_scanner.m_index.forEachFile(folderNumber, [&](std::string_view name, const FileStamp &stamp) {
            ++alreadyKnown;
            for (; next != photos.end() && next->name < name; ++next)
                mustBeRead(*next);
            if (next == photos.end() || next->name != name) {
                changes.goneFiles.push_back({folderNumber, std::string(name)});
                return;
            }
            if (next->stamp == stamp)
                ++unchanged;
            else
                mustBeRead(*next);
            ++next;
        });
        if (!known->second.isReachable)
            changes.reachableFolders.push_back(folderNumber);
    }
    std::for_each(next, photos.end(), mustBeRead);

    if (m_isPartial) {
        progress.found -= std::min(progress.found, alreadyKnown);
        progress.read -= std::min(progress.read, alreadyKnown);
    }
    progress.found += photos.size();
    progress.read += unchanged;
    m_scanner.m_hooks.onProgress(progress);
}

void PhotoScanner::Walk::setUnreachable(const fs::path &folder) {
    m_unreachable.push_back(folder);
}

bool PhotoScanner::Walk::isUnreachable(const fs::path &folder) const {
    return std::any_of(m_unreachable.begin(), m_unreachable.end(),
                       [&](const fs::path &above) { return isAtOrBelow(folder, above); });
}

bool PhotoScanner::Walk::knowsAnythingBelow(const fs::path &folder) const {
    return std::any_of(m_known.begin(), m_known.end(),
                       [&](const auto &known) { return isAtOrBelow(known.first, folder); });
}

void PhotoScanner::Walk::settleOtherFolders() {
    for (const auto &[path, known] : m_known) {
        if (known.isVisited)
            continue;
        if (!isUnreachable(path))
            changes.goneFolders.push_back(known.number);
        else if (known.isReachable)
            changes.unreachableFolders.push_back(known.number);
    }
}

PhotoScanner::PhotoScanner(PhotoIndex &index, PhotoWatch &watch, Hooks hooks, Bounds bounds)
    : m_index(index), m_watch(watch), m_hooks(std::move(hooks)), m_bounds(bounds) {}

PhotoScanner::Result PhotoScanner::scan(const std::vector<fs::path> &roots) {
    std::vector<fs::path> normalRoots;
    std::ranges::transform(roots, std::back_inserter(normalRoots), normal);
    m_index.refresh();
    // Once more when the index turns out to be damaged.
    for (int attempts = 0; attempts < 2; ++attempts) {
        const auto beginning = m_index.beginnings();
        m_watch.beginRound();
        Walk walk(*this, normalRoots);
        if (!walk.everything())
            return {};
        m_watch.endRound();
        m_progress = walk.progress;
        m_unreadableFolders = walk.unreadableFolders;
        if (!walk.changes.isEmpty() && m_index.apply(walk.changes))
            m_hooks.onStored();
        if (!readAndStore(walk))
            return {};
        if (m_index.beginnings() == beginning)
            break;
    }
    return {true, m_unreadableFolders, m_progress};
}

PhotoScanner::Result PhotoScanner::scanFolders(const std::vector<fs::path> &roots,
                                               const std::set<fs::path> &folders) {
    std::vector<fs::path> normalRoots;
    std::ranges::transform(roots, std::back_inserter(normalRoots), normal);
    Walk walk(*this, normalRoots);
    if (!walk.only(folders))
        return {};
    m_progress = walk.progress;
    if (!walk.changes.isEmpty() && m_index.apply(walk.changes))
        m_hooks.onStored();
    if (!readAndStore(walk))
        return {};
    return {true, m_unreadableFolders, m_progress};
}

// The newest first, since someone who keeps a diary looks for these. False when cancelled.
bool PhotoScanner::readAndStore(Walk &walk) {
    auto &pending = walk.pending;
    std::ranges::stable_sort(pending, std::ranges::greater(), &PendingPhoto::modified);
    std::vector<std::optional<PhotoReading>> readings;
    for (std::size_t start = 0, size = firstBatch; start < pending.size(); start += size, size = laterBatch) {
        const auto count = std::min(size, pending.size() - start);
        readings.assign(count, std::nullopt);
        std::atomic<std::size_t> next = 0;
        const auto work = [&] {
            for (auto index = next++; index < count && !m_hooks.isCancelled(); index = next++) {
                const auto &photo = pending[start + index];
                readings[index] = readPhoto(walk.folders[photo.folder] / photo.name);
            }
        };
        std::thread helper;
        if (count >= smallestSharedBatch) {
            try {
                helper = std::thread(work);
            } catch (const std::system_error &) {
                // Alone it takes longer.
            }
        }
        work();
        if (helper.joinable())
            helper.join();
        if (m_hooks.isCancelled())
            return false;

        PhotoIndex::Changes changes;
        for (std::size_t index = 0; index < count; ++index) {
            auto &photo = pending[start + index];
            if (readings[index])
                changes.read.push_back({walk.folders[photo.folder], std::move(photo.name), *readings[index]});
            else
                --m_progress.found;
        }
        // A full disk, say. What is missing is found by the next scan.
        if (!m_index.apply(changes))
            return true;
        m_progress.read += changes.read.size();
        m_hooks.onStored();
        m_hooks.onProgress(m_progress);
    }
    return true;
}

} // namespace diary

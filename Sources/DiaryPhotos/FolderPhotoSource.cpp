// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryPhotos/FolderPhotoSource.h>
#include <DiaryPhotos/PhotoIndex.h>
#include <DiaryPhotos/PhotoScanner.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Status = PhotoSource::AuthorizationStatus;
using std::chrono::milliseconds;

constexpr std::size_t mostImageThreads = 2;

// While a long search finds more and more.
constexpr milliseconds noticeInterval(300);

// Of this thread, from 0, which is everyone's, to 19.
void setNiceness(int niceness) {
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)), niceness);
}

// Someone waits for the pictures, but sees it at once when the window does.
void giveWayToTheWindow() {
    setNiceness(5);
}

// The search must not be felt. Not SCHED_IDLE, under which a thread that holds a lock of the database might
// not run for seconds while a query waits for it.
void giveWayToEverything() {
    constexpr int whoProcess = 1;      // IOPRIO_WHO_PROCESS
    constexpr int idleClass = 3 << 13; // IOPRIO_CLASS_IDLE
    setNiceness(19);
    ::syscall(SYS_ioprio_set, whoProcess, 0, idleClass);
}

// What a root is at the moment; another when something was mounted there.
struct Identity {
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const Identity &) const = default;
};

std::vector<Identity> identitiesOf(const std::vector<fs::path> &folders) {
    std::vector<Identity> identities;
    for (const auto &folder : folders) {
        struct stat status {};
        identities.push_back(::stat(folder.c_str(), &status) == 0 ? Identity{status.st_dev, status.st_ino}
                                                                  : Identity{});
    }
    return identities;
}

std::vector<fs::path> rootsOf(const fs::path &pictures, const std::vector<fs::path> &added) {
    std::vector<fs::path> roots;
    const auto add = [&](const fs::path &folder) {
        std::error_code error;
        auto root = fs::absolute(folder, error).lexically_normal();
        if (!root.has_filename() && root != root.root_path())
            root = root.parent_path();
        if (!folder.empty() && !error && std::find(roots.begin(), roots.end(), root) == roots.end())
            roots.push_back(std::move(root));
    };
    add(pictures);
    std::for_each(added.begin(), added.end(), add);
    return roots;
}

bool isBelowAny(const fs::path &file, const std::vector<fs::path> &folders) {
    const std::string_view name = file.native();
    return std::any_of(folders.begin(), folders.end(), [&](const fs::path &folder) {
        const std::string_view start = folder.native();
        return name.starts_with(start) && name.size() > start.size() &&
               (start.ends_with('/') || name[start.size()] == '/');
    });
}

Status statusOf(const PhotoFolderAccess &access, std::size_t unreadableBelow) {
    if (access.listable == 0)
        return access.unreadable == 0 ? Status::NotDetermined : Status::Denied;
    return access.unreadable + unreadableBelow > 0 ? Status::Limited : Status::Authorized;
}

bool isThere(const fs::path &file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Whatever a decoder throws at a damaged picture, or for want of memory.
QImage imageBy(const std::function<QImage(const fs::path &, QSize)> &decode, const fs::path &file,
               QSize size) {
    try {
        return decode(file, size);
    } catch (const std::exception &) {
        return {};
    }
}

} // namespace

// All that the threads use. Lives until the last of them has ended.
class FolderPhotoSource::Work : public std::enable_shared_from_this<Work> {
public:
    Work(const PhotoFolders &folders, PhotoDecoding decoder, const Options &options)
        : decoding(std::move(decoder)),
          m_options(options),
          m_pictures(folders.pictures),
          m_cache(folders.cache),
          m_roots(rootsOf(folders.pictures, folders.added)),
          m_wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    void start(const std::function<void()> &onChange);
    void close();
    void setAdded(const std::vector<fs::path> &added);
    void addJob(std::function<void()> job);
    Status look();
    std::vector<PhotoIndex::Photo> photos(LocalTime start, LocalTime end, std::size_t limit);
    void noteUse();

    Status status() const { return m_status; }
    Progress progress() const {
        const std::lock_guard lock(m_mutex);
        return m_progress;
    }

    // Calls the handler unless the source was destroyed, which waits until the call is over.
    template <typename Handler, typename... Values>
    void call(const Handler &handler, Values &&...values);

    const PhotoDecoding decoding;

private:
    // What there is to do for the searching thread.
    struct Orders {
        bool isClosing = false;
        bool isSearchDue = false;
        std::vector<fs::path> roots;
        unsigned edition = 0; // of the roots
    };

    void runJobs();
    void search();
    Orders takeOrders();
    bool isOutdated(unsigned edition) const { return m_isClosing || m_edition != edition; }
    void wake() const { ::eventfd_write(m_wake.get(), 1); }
    void waitForNews(const PhotoWatch &watch, int mounts) const;
    bool gather() const;
    void tellOfChange(bool atOnce);
    bool startThread(void (Work::*body)());

    const Options m_options;
    const fs::path m_pictures;
    const fs::path m_cache;

    mutable std::mutex m_mutex;
    std::condition_variable m_jobAdded;
    std::condition_variable m_ended; // a thread or a call
    std::vector<fs::path> m_roots;
    std::vector<std::function<void()>> m_jobs; // the next one last
    Progress m_progress;
    std::size_t m_threads = 0;
    std::size_t m_imageThreads = 0;
    std::size_t m_idleImageThreads = 0;
    std::multiset<std::thread::id> m_calling;
    bool m_isStarted = false;
    bool m_isSearchDue = true;

    std::atomic<bool> m_isClosing = false;
    std::atomic<unsigned> m_edition = 0;
    std::atomic<Status> m_status = Status::NotDetermined;
    std::atomic<std::size_t> m_unreadableBelow = 0;
    std::atomic<bool> m_isWatched = false;
    std::atomic<Clock::time_point> m_lastSearch = Clock::time_point();

    FileDescriptor m_wake;
    std::function<void()> m_onChange;
    std::once_flag m_indexOnce;
    std::unique_ptr<PhotoIndex> m_index;

    // Of the searching thread.
    bool m_hasNews = false;
    Clock::time_point m_lastNotice;

    PhotoIndex &index() {
        std::call_once(m_indexOnce, [this] { m_index = std::make_unique<PhotoIndex>(m_cache); });
        return *m_index;
    }
};

// Every thread holds a share of this object, and is counted until it ends.
bool FolderPhotoSource::Work::startThread(void (Work::*body)()) {
    try {
        std::thread([work = shared_from_this(), body] {
            ((*work).*body)();
            const std::lock_guard lock(work->m_mutex);
            --work->m_threads;
            work->m_ended.notify_all();
        }).detach();
    } catch (const std::system_error &) {
        return false;
    }
    ++m_threads;
    return true;
}

void FolderPhotoSource::Work::start(const std::function<void()> &onChange) {
    const std::lock_guard lock(m_mutex);
    if (m_isStarted)
        return;
    m_onChange = onChange;
    // Without a thread the index answers with what it knows; the next call tries again.
    m_isStarted = startThread(&Work::search);
}

void FolderPhotoSource::Work::close() {
    std::vector<std::function<void()>> droppedJobs; // what they hold goes outside of the lock
    std::unique_lock lock(m_mutex);
    m_isClosing = true;
    wake();
    droppedJobs.swap(m_jobs);
    m_jobAdded.notify_all();
    const auto self = std::this_thread::get_id();
    const auto ownCalls = m_calling.count(self);
    m_ended.wait(lock, [&] { return m_calling.size() == ownCalls; });
    m_ended.wait_for(lock, m_options.patience,
                     [&] { return m_threads <= std::min<std::size_t>(ownCalls, 1); });
}

template <typename Handler, typename... Values>
void FolderPhotoSource::Work::call(const Handler &handler, Values &&...values) {
    const auto self = std::this_thread::get_id();
    {
        const std::lock_guard lock(m_mutex);
        if (m_isClosing || !handler)
            return;
        m_calling.insert(self);
    }
    handler(std::forward<Values>(values)...);
    const std::lock_guard lock(m_mutex);
    m_calling.erase(m_calling.find(self));
    m_ended.notify_all();
}

void FolderPhotoSource::Work::setAdded(const std::vector<fs::path> &added) {
    const std::lock_guard lock(m_mutex);
    auto roots = rootsOf(m_pictures, added);
    if (roots == m_roots)
        return;
    m_roots = std::move(roots);
    m_progress = {};
    m_isSearchDue = true;
    ++m_edition;
    wake();
}

void FolderPhotoSource::Work::addJob(std::function<void()> job) {
    std::unique_lock lock(m_mutex);
    m_jobs.push_back(std::move(job));
    if (m_idleImageThreads < m_jobs.size() && m_imageThreads < mostImageThreads &&
        startThread(&Work::runJobs))
        ++m_imageThreads;
    if (m_imageThreads > 0) {
        m_jobAdded.notify_one();
        return;
    }
    // No thread can be had: whoever asks does it.
    const auto keepAlive = shared_from_this();
    const auto own = std::move(m_jobs.back());
    m_jobs.pop_back();
    lock.unlock();
    own();
}

void FolderPhotoSource::Work::runJobs() {
    ::pthread_setname_np(::pthread_self(), "photo-images");
    giveWayToTheWindow();
    std::unique_lock lock(m_mutex);
    while (!m_isClosing) {
        if (m_jobs.empty()) {
            ++m_idleImageThreads;
            m_jobAdded.wait(lock);
            --m_idleImageThreads;
            continue;
        }
        auto job = std::move(m_jobs.back());
        m_jobs.pop_back();
        lock.unlock();
        job();
        job = nullptr;
        lock.lock();
    }
}

Status FolderPhotoSource::Work::look() {
    std::vector<fs::path> roots;
    {
        const std::lock_guard lock(m_mutex);
        roots = m_roots;
    }
    const auto status = statusOf(accessOf(roots), m_unreadableBelow);
    m_status = status;
    return status;
}

std::vector<PhotoIndex::Photo> FolderPhotoSource::Work::photos(LocalTime start, LocalTime end,
                                                               std::size_t limit) {
    std::vector<fs::path> roots;
    {
        const std::lock_guard lock(m_mutex);
        roots = m_roots;
    }
    return index().photos(start, end, limit, [&](const fs::path &file) { return isBelowAny(file, roots); });
}

// Someone looks at pictures: is what we know of them still so?
void FolderPhotoSource::Work::noteUse() {
    if (Clock::now() - m_lastSearch.load() < m_options.searchInterval)
        return;
    const std::lock_guard lock(m_mutex);
    if (m_isSearchDue || !m_progress.isComplete)
        return;
    m_lastSearch = Clock::now();
    // Woken, the thread sees whether the roots are still the same; the rest it was told of if it is watched.
    m_isSearchDue = !m_isWatched;
    wake();
}

FolderPhotoSource::Work::Orders FolderPhotoSource::Work::takeOrders() {
    const std::lock_guard lock(m_mutex);
    return {m_isClosing, std::exchange(m_isSearchDue, false), m_roots, m_edition};
}

void FolderPhotoSource::Work::waitForNews(const PhotoWatch &watch, int mounts) const {
    std::array<pollfd, 3> sources{
        {{m_wake.get(), POLLIN, 0}, {watch.descriptor(), POLLIN, 0}, {mounts, POLLPRI, 0}}};
    // Without a descriptor to be woken by, there is only looking.
    constexpr int lookInterval = 100;
    ::poll(sources.data(), sources.size(), m_wake ? -1 : lookInterval);
    eventfd_t count = 0;
    ::eventfd_read(m_wake.get(), &count);
}

// Lets the events of one change come together. False when something else is to be done first.
bool FolderPhotoSource::Work::gather() const {
    pollfd source{m_wake.get(), POLLIN, 0};
    return ::poll(&source, 1, static_cast<int>(m_options.gatheringTime.count())) == 0;
}

void FolderPhotoSource::Work::tellOfChange(bool atOnce) {
    if (!m_hasNews || (!atOnce && Clock::now() - m_lastNotice < noticeInterval))
        return;
    m_hasNews = false;
    m_lastNotice = Clock::now();
    call(m_onChange);
}

void FolderPhotoSource::Work::search() {
    ::pthread_setname_np(::pthread_self(), "photo-search");
    giveWayToEverything();
    // Polled, tells of every mount, which makes no event in the folder it is mounted over.
    const FileDescriptor mounts(::open("/proc/thread-self/mountinfo", O_RDONLY | O_CLOEXEC));
    PhotoWatch watch(m_options.mostWatchedFolders);
    std::vector<Identity> identities;
    unsigned edition = 0;
    bool isFirst = true;
    const auto publish = [&](const PhotoScanner::Progress &progress, bool isComplete) {
        const std::lock_guard lock(m_mutex);
        m_progress = {progress.found, progress.read, isComplete};
    };
    PhotoScanner scanner(index(), watch,
                         {.isCancelled = [&] { return isOutdated(edition); },
                          .onStored =
                              [&] {
                                  m_hasNews = true;
                                  tellOfChange(false);
                              },
                          .onProgress =
                              [&](const PhotoScanner::Progress &progress) {
                                  if (isFirst)
                                      publish(progress, false);
                              }});
    while (true) {
        const auto orders = takeOrders();
        if (orders.isClosing)
            return;
        isFirst = isFirst || orders.edition != edition;
        edition = orders.edition;
        PhotoWatch::News news;
        if (!orders.isSearchDue && gather())
            news = watch.read();
        const bool isEverythingDue =
            orders.isSearchDue || news.ofEverything || identitiesOf(orders.roots) != identities;
        PhotoScanner::Result result;
        if (isEverythingDue) {
            identities = identitiesOf(orders.roots);
            result = scanner.scan(orders.roots);
        } else if (!news.isEmpty()) {
            result = scanner.scanFolders(orders.roots, news.folders);
        }
        if (result.isFinished) {
            m_unreadableBelow = result.unreadableFolders;
            m_isWatched = watch.isComplete();
            m_lastSearch = Clock::now();
            m_hasNews = m_hasNews || isFirst;
            isFirst = false;
            publish(result.progress, true);
            look();
            tellOfChange(true);
        }
        waitForNews(watch, mounts.get());
    }
}

FolderPhotoSource::FolderPhotoSource(const PhotoFolders &folders, PhotoDecoding decoding,
                                     const Options &options)
    : m_work(std::make_shared<Work>(folders, std::move(decoding), options)) {}

FolderPhotoSource::~FolderPhotoSource() {
    m_work->close();
}

Status FolderPhotoSource::authorizationStatus() const {
    return m_work->status();
}

void FolderPhotoSource::requestAuthorization(std::function<void(Status)> handler) {
    m_work->start(onChange);
    m_work->addJob(
        [work = m_work.get(), handler = std::move(handler)] { work->call(handler, work->look()); });
}

std::vector<PhotoSource::Asset> FolderPhotoSource::assets(LocalTime start, LocalTime end, std::size_t limit) {
    m_work->start(onChange);
    m_work->noteUse();
    std::vector<Asset> found;
    for (const auto &photo : m_work->photos(start, end, limit))
        found.push_back(
            {photo.file.native(), QString::fromStdString(photo.file.filename().native()), photo.taken});
    return found;
}

void FolderPhotoSource::requestImage(const std::string &identifier, QSize targetSize,
                                     std::function<void(QImage)> handler) {
    m_work->start(onChange);
    m_work->addJob(
        [work = m_work.get(), file = fs::path(identifier), targetSize, handler = std::move(handler)] {
            work->call(handler, imageBy(work->decoding.display, file, targetSize));
        });
}

void FolderPhotoSource::requestFullImage(const std::string &identifier, QSize largest,
                                         std::function<void(std::optional<FullImage>)> handler) {
    m_work->start(onChange);
    m_work->addJob([work = m_work.get(), file = fs::path(identifier), largest, handler = std::move(handler)] {
        std::optional<FullImage> image;
        if (isThere(file))
            image = FullImage{imageBy(work->decoding.full, file, largest), file};
        work->call(handler, std::move(image));
    });
}

PhotoSource::Progress FolderPhotoSource::progress() const {
    return m_work->progress();
}

void FolderPhotoSource::setAddedFolders(std::vector<fs::path> folders) {
    m_work->setAdded(folders);
    m_work->start(onChange);
}

} // namespace diary

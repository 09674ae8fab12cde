// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/VaultObserver.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// How long events gather before they are read: a save makes half a dozen.
constexpr auto gatheringTime = std::chrono::milliseconds(20);

constexpr std::uint32_t selfMask = IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t namesMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t contentMask = IN_MODIFY | IN_CLOSE_WRITE;

// A folder on the way to the vault, or the vault.
struct Step {
    // The kernel gives a folder one number for as long as it is watched, and a new one to its replacement,
    // even if that has inherited the inode number. -1 when the folder cannot be watched.
    int watch = -1;
    std::string awaitedName; // what leads on from here; empty for the vault

    bool isVault() const { return awaitedName.empty(); }
    bool operator==(const Step &) const = default;
};

struct Entry {
    std::string name;
    ino_t inode = 0;
    off_t size = 0;
    std::pair<std::int64_t, std::int64_t> contentTime; // seconds and nanoseconds
    std::pair<std::int64_t, std::int64_t> changeTime;

    bool operator==(const Entry &) const = default;
};

std::optional<Entry> entryAt(const fs::path &path, std::string name) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) < 0)
        return std::nullopt;
    return Entry{std::move(name),
                 status.st_ino,
                 status.st_size,
                 {status.st_mtim.tv_sec, status.st_mtim.tv_nsec},
                 {status.st_ctim.tv_sec, status.st_ctim.tv_nsec}};
}

// What there is in a folder, to be compared with a later look. A folder that cannot be listed still shows by
// its own times that names came or went.
std::vector<Entry> fingerprint(const fs::path &folder) {
    std::vector<Entry> entries;
    std::error_code error;
    for (fs::directory_iterator files(folder, error), end; !error && files != end; files.increment(error)) {
        if (auto entry = entryAt(files->path(), files->path().filename().string()))
            entries.push_back(std::move(*entry));
    }
    if (error)
        entries.clear();
    if (auto self = entryAt(folder, "."))
        entries.push_back(std::move(*self));
    std::ranges::sort(entries, {}, &Entry::name);
    return entries;
}

// The way to the vault as it was found at one time.
struct Look {
    std::vector<Step> steps;    // as far as there are folders
    std::vector<Entry> entries; // of the vault, when it is there and cannot be watched

    // The last folder is the one that shows changes, or how the way goes on; the others only that it moved.
    bool isWatched() const { return !steps.empty() && steps.back().watch >= 0; }
    bool hasGaps() const {
        return steps.empty() ||
               std::any_of(steps.begin(), steps.end(), [](const Step &step) { return step.watch < 0; });
    }
    bool watches(int watch) const {
        return std::any_of(steps.begin(), steps.end(), [&](const Step &step) { return step.watch == watch; });
    }
    bool operator==(const Look &) const = default;
};

// The components of a path that are still ahead, the next one last.
class PathAhead {
public:
    explicit PathAhead(const fs::path &path) { prepend(path); }

    void prepend(const fs::path &path) {
        const auto count = m_names.size();
        for (const auto &name : path.relative_path()) {
            if (!name.empty() && name != ".")
                m_names.push_back(name.string());
        }
        std::reverse(m_names.begin() + static_cast<std::ptrdiff_t>(count), m_names.end());
    }

    std::optional<std::string> next() {
        if (m_names.empty())
            return std::nullopt;
        auto name = std::move(m_names.back());
        m_names.pop_back();
        return name;
    }

private:
    std::vector<std::string> m_names;
};

Step watchedStep(int inotify, const fs::path &folder, std::string awaitedName) {
    Step step;
    step.awaitedName = std::move(awaitedName);
    const auto mask = selfMask | namesMask | (step.isVault() ? contentMask : 0U);
    // Masks add up: the way may lead through the vault itself, which must not be watched for less meanwhile.
    if (inotify >= 0)
        step.watch =
            ::inotify_add_watch(inotify, folder.c_str(), mask | IN_ONLYDIR | IN_DONT_FOLLOW | IN_MASK_ADD);
    return step;
}

// Goes to the vault as the kernel would, link by link, and watches every folder on the way.
//
// Each folder is watched before its next name is looked at. So whatever is changed behind our back while we
// walk leaves an event in the queue, which makes us walk again: no folder made between two looks is missed.
// Only a folder that cannot be watched breaks this, and then the walk is repeated at intervals.
Look lookAlong(int inotify, const fs::path &path) {
    constexpr int maximumLinks = 40;
    Look look;
    if (!path.is_absolute())
        return look;
    PathAhead ahead(path);
    fs::path folder = "/";
    int links = 0;
    while (const auto name = ahead.next()) {
        if (*name == "..") {
            folder = folder.parent_path();
            continue;
        }
        look.steps.push_back(watchedStep(inotify, folder, *name));
        auto next = folder / *name;
        std::error_code error;
        const auto type = fs::symlink_status(next, error).type();
        if (type == fs::file_type::directory) {
            folder = std::move(next);
        } else if (type == fs::file_type::symlink && ++links <= maximumLinks) {
            const auto target = fs::read_symlink(next, error);
            if (error)
                return look;
            ahead.prepend(target);
            if (target.is_absolute())
                folder = "/";
        } else {
            return look;
        }
    }
    look.steps.push_back(watchedStep(inotify, folder, {}));
    if (!look.isWatched())
        look.entries = fingerprint(folder);
    return look;
}

fs::path absolutePath(const fs::path &path) {
    std::error_code error;
    auto absolute = fs::absolute(path, error);
    return error ? path : absolute;
}

} // namespace

// The thread and what it watches, from start() to stop().
class VaultObserver::Watching {
public:
    Watching(const fs::path &directory, const std::function<void()> &onChange,
             std::chrono::milliseconds lookInterval)
        : m_directory(directory), m_onChange(onChange), m_lookInterval(lookInterval) {
        lookAgain();
        m_startsWatched = m_look.isWatched();
        m_thread = std::thread([this] { run(); });
    }
    Watching(const Watching &) = delete;
    Watching &operator=(const Watching &) = delete;
    ~Watching() {
        {
            const std::lock_guard lock(m_mutex);
            m_isStopping = true;
            if (m_wake)
                ::eventfd_write(m_wake.get(), 1);
        }
        m_stopped.notify_one();
        m_thread.join();
    }

    bool startsWatched() const { return m_startsWatched; }

private:
    struct News {
        bool ofFolders = false;
        bool ofMounts = false;
    };
    struct Events {
        bool inVault = false;
        bool onTheWay = false;
    };

    void run();
    std::optional<News> waitForNews();
    bool isStoppedWithin(std::chrono::milliseconds time);
    Events readEvents();
    void openDescriptors();
    bool lookAgain();

    const fs::path &m_directory;
    const std::function<void()> &m_onChange;
    const std::chrono::milliseconds m_lookInterval;
    bool m_startsWatched = false;

    std::mutex m_mutex; // guards the stop flag, and m_wake against being opened while it is used to stop
    std::condition_variable m_stopped;
    bool m_isStopping = false;
    FileDescriptor m_wake;

    // Only there together with m_wake: without that, the thread waits for m_stopped alone.
    FileDescriptor m_inotify;
    // Mounting over a folder makes no event in it. This file, polled, tells of every mount.
    FileDescriptor m_mounts;
    Look m_look;
    Clock::time_point m_nextLook;

    std::thread m_thread;
};

void VaultObserver::Watching::run() {
    ::pthread_setname_np(::pthread_self(), "vault-observer");
    while (const auto news = waitForNews()) {
        Events events;
        if (news->ofFolders) {
            if (isStoppedWithin(gatheringTime))
                return;
            events = readEvents();
        }
        // A notice is given only after everything that was read has been acted upon, so that a change which
        // comes while it is handled brings another.
        const bool isTimeToLook = m_look.hasGaps() && Clock::now() >= m_nextLook;
        const bool isOther = (events.onTheWay || news->ofMounts || isTimeToLook) && lookAgain();
        if (events.inVault || events.onTheWay || isOther)
            m_onChange();
    }
}

// None when it is time to stop.
std::optional<VaultObserver::Watching::News> VaultObserver::Watching::waitForNews() {
    using std::chrono::milliseconds;
    auto timeout = milliseconds(-1);
    if (m_look.hasGaps())
        timeout = std::max(milliseconds(0), std::chrono::ceil<milliseconds>(m_nextLook - Clock::now()));
    if (!m_wake) {
        if (isStoppedWithin(timeout))
            return std::nullopt;
        return News{};
    }
    std::array<pollfd, 3> sources{{
        {m_wake.get(), POLLIN, 0},
        {m_inotify.get(), POLLIN, 0},
        {m_mounts.get(), POLLPRI, 0},
    }};
    if (::poll(sources.data(), sources.size(), static_cast<int>(timeout.count())) < 0)
        return News{};
    if (sources[0].revents != 0)
        return std::nullopt;
    return News{sources[1].revents != 0, sources[2].revents != 0};
}

bool VaultObserver::Watching::isStoppedWithin(std::chrono::milliseconds time) {
    std::unique_lock lock(m_mutex);
    return m_stopped.wait_for(lock, time, [this] { return m_isStopping; });
}

VaultObserver::Watching::Events VaultObserver::Watching::readEvents() {
    // Together more than the kernel's queue holds by default, yet an end for a thread that is outrun by
    // writers.
    constexpr int maximumReads = 64;
    alignas(inotify_event) std::array<char, 65536> buffer;

    Events events;
    for (int reads = 0; reads < maximumReads; ++reads) {
        const auto size = ::read(m_inotify.get(), buffer.data(), buffer.size());
        if (size <= 0)
            break;
        const auto *const end = buffer.data() + size;
        for (const auto *position = buffer.data(); position < end;) {
            const auto *const event = reinterpret_cast<const inotify_event *>(position);
            position += sizeof(inotify_event) + event->len;
            // Lost events may have been of any kind.
            if ((event->mask & IN_Q_OVERFLOW) != 0)
                events.onTheWay = true;
            for (const auto &step : m_look.steps) {
                if (step.watch != event->wd)
                    continue;
                // Without a name: about the folder itself, or its watch.
                if (event->len == 0 || step.awaitedName == event->name)
                    events.onTheWay = true;
                else if (step.isVault())
                    events.inVault = true;
            }
        }
    }
    return events;
}

// Opens what could not be opened so far: limits may have been lifted.
void VaultObserver::Watching::openDescriptors() {
    if (!m_wake) {
        const std::lock_guard lock(m_mutex);
        m_wake = FileDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    }
    if (!m_wake)
        return;
    if (!m_inotify)
        m_inotify = FileDescriptor(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!m_mounts)
        m_mounts = FileDescriptor(::open("/proc/thread-self/mountinfo", O_RDONLY | O_CLOEXEC));
}

// Returns whether something is other than it was.
bool VaultObserver::Watching::lookAgain() {
    openDescriptors();
    auto look = lookAlong(m_inotify.get(), m_directory);
    for (const auto &step : m_look.steps) {
        if (step.watch >= 0 && !look.watches(step.watch))
            ::inotify_rm_watch(m_inotify.get(), step.watch);
    }
    m_nextLook = Clock::now() + m_lookInterval;
    std::swap(m_look, look);
    return m_look != look;
}

VaultObserver::VaultObserver(const fs::path &directory, std::function<void()> onChange,
                             std::chrono::milliseconds lookInterval)
    : m_directory(absolutePath(directory)), m_onChange(std::move(onChange)), m_lookInterval(lookInterval) {}

VaultObserver::~VaultObserver() {
    stop();
}

bool VaultObserver::start() {
    if (!m_watching)
        m_watching = std::make_unique<Watching>(m_directory, m_onChange, m_lookInterval);
    return m_watching->startsWatched();
}

void VaultObserver::stop() {
    m_watching.reset();
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/UpdateStaging.h>
#include <DiaryKit/SystemCalls.h>

#include <QByteArray>
#include <QCryptographicHash>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

// One line is asked for; whatever is longer was not written by the install script.
constexpr off_t longestOutcome = 4096;

[[noreturn]] void fail(const char *operation, const fs::path &path, int error) {
    throw fs::filesystem_error(operation, path, std::error_code(error, std::system_category()));
}

// An unpacked bundle may hold folders that their own user may not change.
void makeFoldersWritable(const fs::path &folder) {
    std::error_code ignored;
    const auto open = [&](const fs::path &path) {
        fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ignored);
    };
    open(folder);
    // Folders are entered after they were handed out, and links to folders never.
    for (fs::recursive_directory_iterator entry(folder, ignored), end; entry != end;
         entry.increment(ignored)) {
        if (fs::is_directory(entry->symlink_status(ignored)))
            open(entry->path());
    }
}

} // namespace

UpdateStaging::UpdateStaging(fs::path folder) : m_folder(std::move(folder)) {}

fs::path UpdateStaging::archive() const {
    return m_folder / "update.zip";
}

fs::path UpdateStaging::installScript() const {
    return m_folder / "install.sh";
}

fs::path UpdateStaging::beside(const char *name) const {
    return m_folder.parent_path() / name;
}

std::optional<FileDescriptor> UpdateStaging::claim() const {
    createFoldersDurably(m_folder.parent_path());
    const auto path = beside("Updates.lock");
    FileDescriptor lock(retryingWhenInterrupted(
        [&] { return ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600); }));
    if (!lock)
        fail("open", path, errno);
    if (retryingWhenInterrupted([&] { return ::flock(lock.get(), LOCK_EX | LOCK_NB); }) == 0)
        return lock;
    if (errno == EWOULDBLOCK)
        return std::nullopt;
    return FileDescriptor();
}

void UpdateStaging::prepare() const {
    remove();
    createFoldersDurably(m_folder.parent_path());
    if (::mkdir(m_folder.c_str(), 0700) < 0)
        fail("create folder", m_folder, errno);
}

void UpdateStaging::remove() const {
    std::error_code error;
    fs::remove_all(m_folder, error);
    if (!error)
        return;
    // Not for a link in the folder's place: it would reach what the link leads to.
    if (fs::is_directory(fs::symlink_status(m_folder)))
        makeFoldersWritable(m_folder);
    fs::remove_all(m_folder);
}

fs::path UpdateStaging::application() const {
    std::vector<fs::path> found;
    for (const auto &entry : fs::directory_iterator(m_folder)) {
        if (entry.path().extension() == ".app")
            found.push_back(entry.path());
    }
    if (found.empty())
        fail("find the application", m_folder, ENOENT);
    auto first = *std::min_element(found.begin(), found.end());
    if (!fs::is_directory(fs::symlink_status(first)))
        fail("find the application", first, ENOTDIR);
    return first;
}

std::optional<UpdateStaging::Outcome> UpdateStaging::takeOutcome() const {
    const auto path = beside("update-outcome");
    const FileDescriptor file(retryingWhenInterrupted(
        [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK); }));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) < 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    std::error_code error;
    const auto line =
        status.st_size <= longestOutcome ? readWholeFile(file.get(), error) : std::optional<std::string>();
    // Of several processes that read it, one removes it.
    if (::unlink(path.c_str()) < 0 || !line)
        return std::nullopt;
    return parseOutcome(*line);
}

std::optional<UpdateStaging::Outcome> UpdateStaging::parseOutcome(std::string_view line) {
    line = line.substr(0, line.find('\n'));
    const auto takeWord = [&line] {
        const auto length = std::min(line.find(' '), line.size());
        const auto word = line.substr(0, length);
        line.remove_prefix(std::min(length + 1, line.size()));
        return std::string(word);
    };
    const auto kind = takeWord();
    auto version = takeWord();
    if (version.empty())
        return std::nullopt;
    if (kind == "installed")
        return Outcome{.kind = Outcome::Kind::Installed, .version = std::move(version), .reason = {}};
    if (kind == "kept")
        return Outcome{
            .kind = Outcome::Kind::Kept, .version = std::move(version), .reason = std::string(line)};
    return std::nullopt;
}

bool hasDigest(std::string_view bytes, std::string_view sha256, const std::atomic<bool> &stop) {
    constexpr std::size_t piece = std::size_t{1} << 20U;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    while (!bytes.empty() && !stop) {
        const auto now = bytes.substr(0, piece);
        hash.addData(QByteArrayView(now.data(), static_cast<qsizetype>(now.size())));
        bytes.remove_prefix(now.size());
    }
    const auto digest = hash.result().toHex();
    return !stop && std::string_view(digest.constData(), static_cast<std::size_t>(digest.size())) == sha256;
}

} // namespace diary

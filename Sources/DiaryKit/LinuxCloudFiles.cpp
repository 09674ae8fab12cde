// SPDX-License-Identifier: MIT
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/LinuxCloudFiles.h>
#include <DiaryKit/UserDirectories.h>
#include <DiaryKit/VaultFileName.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <sys/xattr.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using Kind = VaultFileName::Kind;

// Nextcloud marks with it a file whose content is still on the server; what is here is one blank.
constexpr const char *placeholderAttribute = "user.nextcloud.hydrate_exec";

enum class Content {
    Missing, // no file at all
    Elsewhere,
    Here
};

Content contentOf(const fs::path &file) {
    if (::getxattr(file.c_str(), placeholderAttribute, nullptr, 0) >= 0)
        return Content::Elsewhere;
    return errno == ENOENT ? Content::Missing : Content::Here;
}

// The file that stands for a content which is not here.
std::optional<fs::path> placeholderOf(const fs::path &file) {
    const auto name = VaultFileName::classify(file.filename().native());
    const auto folder = file.parent_path();
    const auto wanted = name.kind == Kind::Placeholder ? folder / name.monthDay.fileName() : file;
    const auto content = contentOf(wanted);
    if (content == Content::Elsewhere)
        return wanted;
    if (content == Content::Here || (name.kind != Kind::DayFile && name.kind != Kind::Placeholder))
        return std::nullopt;
    for (const auto &beside : VaultFileName::placeholderNames(name.monthDay)) {
        std::error_code error;
        if (auto placeholder = folder / beside; fs::is_regular_file(placeholder, error))
            return placeholder;
    }
    return std::nullopt;
}

// A desktop client that listens at a socket of its own in the user's runtime folder.
//
// Never waits for the client: a request that finds it absent or too busy is lost, and comes again when the
// user returns to the diary. Its answers are of no interest, but must be read so that it can go on.
class DesktopClient {
public:
    explicit DesktopClient(const char *folderName) : m_folderName(folderName) {}

    void request(std::string_view line) {
        const std::scoped_lock lock(m_mutex);
        if (!isConnected())
            m_socket = connected();
        if (!m_socket)
            return;
        const auto sent = ::send(m_socket.get(), line.data(), line.size(), MSG_NOSIGNAL);
        const bool isUnharmed = sent < 0 ? errno == EAGAIN : sent == std::ssize(line);
        if (!isUnharmed)
            m_socket.reset();
    }

private:
    bool isConnected() {
        constexpr int mostReads = 64; // from a client that writes without end
        std::array<char, 4096> ignored{};
        for (int reads = 0; m_socket && reads < mostReads; ++reads) {
            const auto count = ::recv(m_socket.get(), ignored.data(), ignored.size(), 0);
            if (count < 0 && errno == EAGAIN)
                break;
            if (count <= 0)
                m_socket.reset();
        }
        return static_cast<bool>(m_socket);
    }

    FileDescriptor connected() const {
        // Room for the requests for a whole vault.
        constexpr int sendBuffer = 1 << 20;
        const char *runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
        if (!runtimeFolder || runtimeFolder[0] != '/')
            return {};
        const auto path = (fs::path(runtimeFolder) / m_folderName / "socket").native();
        sockaddr_un address{};
        if (path.size() >= sizeof address.sun_path)
            return {};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.data(), path.size());

        FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (!socket)
            return {};
        ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
        // Without waiting this succeeds at once or not at all.
        if (::connect(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) < 0)
            return {};
        return socket;
    }

    const char *m_folderName;
    std::mutex m_mutex;
    FileDescriptor m_socket;
};

} // namespace

class LinuxCloudFiles::DesktopClients {
public:
    // Each passes over what is not in a folder of its own.
    void request(std::string_view line) {
        for (auto &client : m_clients)
            client.request(line);
    }

private:
    std::array<DesktopClient, 2> m_clients{DesktopClient("Nextcloud"), DesktopClient("ownCloud")};
};

LinuxCloudFiles::LinuxCloudFiles(std::optional<fs::path> resolvedFolder)
    : m_resolvedFolder(resolvedFolder ? *std::move(resolvedFolder) : UserDirectories::state() / "resolved"),
      m_clients(std::make_unique<DesktopClients>()) {}

LinuxCloudFiles::~LinuxCloudFiles() = default;

CloudFiles::DownloadingStatus LinuxCloudFiles::downloadingStatus(const fs::path &file) const {
    return placeholderOf(file) ? DownloadingStatus::NotDownloaded : DownloadingStatus::None;
}

void LinuxCloudFiles::startDownloading(const fs::path &file) const {
    const auto placeholder = placeholderOf(file);
    if (!placeholder)
        return;
    // The clients know their folders by the paths without links.
    std::error_code error;
    const auto path = fs::canonical(*placeholder, error).native();
    if (error || path.find('\n') != std::string::npos)
        return;
    m_clients->request("MAKE_AVAILABLE_LOCALLY:" + path + "\n");
}

std::vector<fs::path> LinuxCloudFiles::unresolvedConflictVersions(const fs::path &file) const {
    const auto day = MonthDay::parse(file.filename().native());
    if (!day)
        return {};
    const VaultFileName copyOfDay{Kind::ConflictCopy, *day};
    const auto folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
    std::vector<fs::path> versions;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        const auto &path = entry->path();
        std::error_code unknown;
        if (VaultFileName::classify(path.filename().native()) == copyOfDay &&
            fs::is_regular_file(entry->symlink_status(unknown)) && contentOf(path) == Content::Here)
            versions.push_back(path);
    }
    std::ranges::sort(versions, {}, &fs::path::native);
    return versions;
}

bool LinuxCloudFiles::markResolved(const fs::path &version) const {
    return moveIntoFolder(version, m_resolvedFolder, version.filename().string());
}

} // namespace diary

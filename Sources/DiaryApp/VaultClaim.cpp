// SPDX-License-Identifier: MIT
#include <DiaryApp/VaultClaim.h>
#include <DiaryKit/UserDirectories.h>

#include <QCryptographicHash>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;

// A token is one line of some dozen characters, an action one word.
constexpr std::size_t longestKnock = 4096;

fs::path claimsFolder() {
    if (const char *runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && *runtime == '/')
        return fs::path(runtime) / "tavelo";
    return UserDirectories::state() / "run";
}

FileDescriptor openClaimsFolder() {
    const auto folder = claimsFolder();
    std::error_code error;
    fs::create_directories(folder, error);
    return FileDescriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

// By way of the open folder, since an address has room for 107 bytes only.
std::optional<sockaddr_un> addressOf(const FileDescriptor &folder, const std::string &name) {
    const auto path = "/proc/self/fd/" + std::to_string(folder.get()) + "/" + name;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (!folder || path.size() >= sizeof address.sun_path)
        return std::nullopt;
    std::memcpy(address.sun_path, path.data(), path.size());
    return address;
}

const sockaddr *pointer(const sockaddr_un &address) {
    return reinterpret_cast<const sockaddr *>(&address);
}

} // namespace

std::string VaultClaim::nameOf(const fs::path &vault) {
    std::error_code error;
    auto path = fs::weakly_canonical(fs::absolute(vault, error), error);
    if (error)
        path = vault.lexically_normal();
    // "a/" is "a".
    if (!path.has_filename() && path.has_relative_path())
        path = path.parent_path();
    const auto digest =
        QCryptographicHash::hash(QByteArray::fromStdString(path.native()), QCryptographicHash::Sha256);
    return digest.toHex().first(16).toStdString();
}

std::unique_ptr<VaultClaim> VaultClaim::take(const fs::path &vault) {
    auto folder = openClaimsFolder();
    const auto name = nameOf(vault);
    FileDescriptor lock(::openat(folder.get(), (name + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return nullptr;
    return std::unique_ptr<VaultClaim>(new VaultClaim(std::move(folder), name + ".socket", std::move(lock)));
}

bool VaultClaim::knock(const fs::path &vault, const LaunchRequest &request) {
    const auto folder = openClaimsFolder();
    const auto address = addressOf(folder, nameOf(vault) + ".socket");
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto bytes = encoded(request);
    return address && ::sendto(socket.get(), bytes.constData(), static_cast<std::size_t>(bytes.size()),
                               MSG_NOSIGNAL, pointer(*address), sizeof *address) >= 0;
}

VaultClaim::VaultClaim(FileDescriptor folder, std::string name, FileDescriptor lock)
    : m_folder(std::move(folder)),
      m_name(std::move(name)),
      m_lock(std::move(lock)),
      m_notifier(QSocketNotifier::Read) {
    listen();
}

VaultClaim::~VaultClaim() {
    // While the lock is still held: afterwards the name may be another's. The lock's file stays, since one
    // that is removed could be locked twice.
    if (m_socket)
        ::unlinkat(m_folder.get(), m_name.c_str(), 0);
}

void VaultClaim::listen() {
    const auto address = addressOf(m_folder, m_name);
    FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!m_lock || !address)
        return;
    // What a process left that was killed.
    ::unlinkat(m_folder.get(), m_name.c_str(), 0);
    if (::bind(socket.get(), pointer(*address), sizeof *address) != 0)
        return;
    m_socket = std::move(socket);
    m_notifier.setSocket(m_socket.get());
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { receive(); });
    m_notifier.setEnabled(true);
}

void VaultClaim::receive() {
    std::array<char, longestKnock> bytes{};
    // The true length, even when not all of it was taken in.
    const auto size = ::recv(m_socket.get(), bytes.data(), bytes.size(), MSG_TRUNC);
    if (size < 0 || !onKnock)
        return;
    const bool isWhole = static_cast<std::size_t>(size) <= bytes.size();
    onKnock(isWhole ? decodedLaunchRequest(QByteArray(bytes.data(), size)) : LaunchRequest{});
}

} // namespace diary

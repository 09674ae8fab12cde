// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/LaunchRequest.h>
#include <DiaryKit/DurableFile.h>

#include <QSocketNotifier>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace diary {

// The one window of a vault: held by a process while it shows the vault, so that a second launch brings that
// window to the front instead of opening another.
//
// A lock on a small file, which the system lets go with the process, and beside it a socket to knock on; both
// in the user's runtime folder, or the state folder where there is none. Two names of one folder are one
// vault. Main thread only.
class VaultClaim {
public:
    // None when another process, or another claim of this one, holds the vault. A system that cannot lock
    // does not keep anyone from his diary: the claim then stands, though others may too.
    static std::unique_ptr<VaultClaim> take(const std::filesystem::path &vault);

    // Asks the holder to come to the front and do what this launch was to do. False when it did not listen,
    // as while it still starts.
    static bool knock(const std::filesystem::path &vault, const LaunchRequest &request);

    // For files about the vault: the same for every way of writing its path, whether or not it exists.
    static std::string nameOf(const std::filesystem::path &vault);

    VaultClaim(const VaultClaim &) = delete;
    VaultClaim &operator=(const VaultClaim &) = delete;
    ~VaultClaim();

    // With what the process that knocked was launched for.
    std::function<void(const LaunchRequest &)> onKnock;

private:
    VaultClaim(FileDescriptor folder, std::string name, FileDescriptor lock);

    void listen();
    void receive();

    FileDescriptor m_folder;
    std::string m_name; // of the socket, in the folder
    FileDescriptor m_lock;
    FileDescriptor m_socket;
    QSocketNotifier m_notifier;
};

} // namespace diary

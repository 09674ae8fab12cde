// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>

namespace diary {

// Says that something in the vault may have changed; look again to learn what.
//
// Sees files made, written, replaced, renamed, deleted or given other attributes, and the folder itself
// coming, going or becoming another, also by a symbolic link or a mount on the way to it. One change may
// bring several notices, a burst of changes few; after the last change there is always one more. The store's
// own saves are seen too. What is written through memory maps or by another machine on a network mount is
// not.
//
// One thread owns it: start(), stop() and the destructor are never called by two at once.
class VaultObserver {
public:
    // `onChange` is called on the observer's own thread, one call at a time, never after stop() has returned.
    // It must not throw. The folder need not exist; a relative path is taken from the working folder of now.
    // Nothing happens before start(). Where the system refuses to watch, the folder is looked at every
    // `lookInterval`.
    VaultObserver(const std::filesystem::path &directory, std::function<void()> onChange,
                  std::chrono::milliseconds lookInterval = std::chrono::seconds(3));
    VaultObserver(const VaultObserver &) = delete;
    VaultObserver &operator=(const VaultObserver &) = delete;
    ~VaultObserver(); // stops

    // Changes made after it has returned are seen. False when the system refuses to watch: changes are then
    // noticed late, and watching is tried again with every look. A second call does nothing and returns the
    // same. Throws std::system_error when there can be no thread.
    bool start();

    // Returns when the thread has ended, within a tenth of a second unless `onChange` takes longer. Must not
    // be called from `onChange`. The observer may be started again.
    void stop();

private:
    class Watching;
    std::filesystem::path m_directory;
    std::function<void()> m_onChange;
    std::chrono::milliseconds m_lookInterval;
    std::unique_ptr<Watching> m_watching;
};

} // namespace diary

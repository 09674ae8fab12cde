// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DurableFile.h>

#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace diary {

// The folder in which an update waits to be put in place, and what lies beside it: a lock, and the word that
// the install script leaves. Everything in the folder belongs to the updater and may go at any time.
//
// All of it waits for the disk. May be used on any thread, by one at a time. Unless said otherwise a failure
// throws std::filesystem::filesystem_error with the path and the system's own error.
class UpdateStaging {
public:
    explicit UpdateStaging(std::filesystem::path folder);

    const std::filesystem::path &folder() const { return m_folder; }
    std::filesystem::path archive() const;
    std::filesystem::path installScript() const;

    // The right to use the folder, shared by no two processes, for as long as the descriptor or an inherited
    // copy of it is open. None when another holds it. Where the system cannot lock, everyone gets an empty
    // one.
    std::optional<FileDescriptor> claim() const;

    // Makes the folder anew: empty, and for this user alone.
    void prepare() const;

    // Removes the folder and what is in it, and never anything that a link in it leads to.
    void remove() const;

    // The first item in the order of names that is called an application.
    std::filesystem::path application() const;

    // What became of the update that was handed to the install script last.
    struct Outcome {
        enum class Kind {
            Installed,
            Kept // the installed application is still the old one
        };
        Kind kind;
        std::string version;
        std::string reason; // of Kept, for a log

        bool operator==(const Outcome &) const = default;
    };

    // Tells it once: whoever asks next, be it another process, gets none. Never throws.
    std::optional<Outcome> takeOutcome() const;

    // From one line, `installed VERSION` or `kept VERSION REASON`.
    static std::optional<Outcome> parseOutcome(std::string_view line);

private:
    std::filesystem::path beside(const char *name) const;

    std::filesystem::path m_folder;
};

// Whether the bytes have the SHA-256 digest, in lower-case hexadecimal. Returns false soon after `stop` was
// set.
bool hasDigest(std::string_view bytes, std::string_view sha256, const std::atomic<bool> &stop);

} // namespace diary

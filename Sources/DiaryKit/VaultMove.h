// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/CloudFiles.h>
#include <DiaryKit/DiaryDay.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include <sys/types.h>
#include <time.h>

namespace diary {

// Brings a diary to another folder: a copy of every day file, and of the copies of them that sync tools left.
// Folders below the vault are not looked into, and the old folder is never written to.
//
// The copies are made in a hidden folder below the new one, are read back and compared, and take their names
// all together at the end, so that a killed process leaves no half of a diary that looks like a whole one. No
// file that is there already is ever replaced. What was made is taken back again unless `keep` is called.
//
// One thread at a time. Failures are std::filesystem::filesystem_error with the path and the system's own
// error.
class VaultMove {
public:
    // Whether there is anything of a diary in the folder. None in one that is missing or cannot be listed.
    static bool hasDiary(const std::filesystem::path &folder);

    // Both are folders; the new one need not exist.
    VaultMove(std::filesystem::path from, std::filesystem::path to,
              std::shared_ptr<const CloudFiles> cloudFiles);
    VaultMove(const VaultMove &) = delete;
    VaultMove &operator=(const VaultMove &) = delete;
    ~VaultMove();

    // Copies what was not copied yet or changed since. Returns the days of which only placeholders are here:
    // when there are any, nothing was copied. Throws when it cannot, ECANCELED when it was told to stop, and
    // EBUSY when other programs change the old folder faster than it can be copied.
    std::set<MonthDay> copy(const std::stop_token &stop = {});

    // Whether the old folder is still as it was copied. Quick enough for the main thread.
    bool isCurrent() const;

    // The copies take their names in the new folder. EEXIST when one of these is taken.
    void install();

    // What was installed stays for good.
    void keep() { m_isKept = true; }

private:
    // What tells whether a file was changed. Of a change within one step of the file system's clock only the
    // bytes tell.
    struct Stamp {
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        timespec modified{};
        timespec changed{};
        bool isSettled = false; // later changes show in the times

        bool isSameAs(const Stamp &other) const;
    };

    // A copy under its own name, as long as no other program has replaced it.
    struct Installed {
        std::string name;
        dev_t device = 0;
        ino_t inode = 0;
    };

    static Stamp stampOf(const std::filesystem::path &file);
    std::vector<std::string> names() const;
    bool isCurrent(const std::string &name, const Stamp &copied) const;
    void makeFolders();
    std::set<MonthDay> daysAwaitingDownload() const;
    bool copyChanged(const std::stop_token &stop);
    Stamp copyFile(const std::string &name) const;
    void takeBack() noexcept;

    std::filesystem::path m_from;
    std::filesystem::path m_to;
    std::filesystem::path m_staging;
    std::shared_ptr<const CloudFiles> m_cloudFiles;
    std::map<std::string, Stamp> m_copies;            // of the originals
    std::vector<std::filesystem::path> m_madeFolders; // the outermost first
    bool m_hasStaging = false;
    std::vector<Installed> m_installed;
    bool m_isKept = false;
};

} // namespace diary

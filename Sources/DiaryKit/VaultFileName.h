// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryKit/DiaryDay.h>

#include <array>
#include <string>
#include <string_view>

namespace diary {

// What a name in the vault stands for.
struct VaultFileName {
    enum class Kind {
        DayFile,      // 03-14.md
        Placeholder,  // .03-14.md.icloud, 03-14.md.nextcloud, 03-14.md.owncloud
        ConflictCopy, // a sync tool's name for the loser of a race
        Lookalike,    // begins like a day and ends in .md, but no tool is known to write it: "03-14 2.md"
        Other
    };

    Kind kind = Kind::Other;
    MonthDay monthDay; // of every kind but Other

    // Composed and decomposed spellings of a name are the same. Temporary names of sync tools and editors are
    // Other. Any bytes may be given; a name that is no valid UTF-8 is never a conflict copy, and one too long
    // for any file system is Other. Cheap for all but conflict copies and lookalikes, which cost
    // microseconds.
    static VaultFileName classify(std::string_view name);

    // The names under which a placeholder may stand beside the place of the day file.
    static std::array<std::string, 3> placeholderNames(MonthDay monthDay);

    bool operator==(const VaultFileName &) const = default;
};

} // namespace diary

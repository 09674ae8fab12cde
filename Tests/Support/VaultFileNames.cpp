// SPDX-License-Identifier: MIT
#include "Support/VaultFileNames.h"

#include <DiaryKit/UnicodeText.h>

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace diary::testing {

namespace {

using Kind = VaultFileName::Kind;

constexpr std::size_t longestName = 1024;

std::vector<NamedKind> allNames() {
    return {
        {"03-14.md", Kind::DayFile},

        {".03-14.md.icloud", Kind::Placeholder},
        {"03-14.md.nextcloud", Kind::Placeholder},
        {"03-14.md.owncloud", Kind::Placeholder},

        // Syncthing
        {"03-14.sync-conflict-20261120-101112-ABCDEFG.md", Kind::ConflictCopy},
        {"03-14.sync-conflict-20261120-101112-Q7Z2345.md", Kind::ConflictCopy},
        {"03-14.sync-conflict-20261120-101112-ABCDEF1.md", Kind::Lookalike},
        {"03-14.sync-conflict-20261120-101112-abcdefg.md", Kind::Lookalike},
        {"03-14.sync-conflict-20261120-101112-ABCDEF.md", Kind::Lookalike},
        {"03-14.sync-conflict-20261120-101112-ABCDEFGH.md", Kind::Lookalike},
        {"03-14.sync-conflict-2026112-101112-ABCDEFG.md", Kind::Lookalike},
        {"03-14.sync-conflict-20261120-10111-ABCDEFG.md", Kind::Lookalike},
        {"03-14.sync-conflict-20261120-101112-ABCDEFG.txt", Kind::Other},
        {"03-14Xsync-conflict-20261120-101112-ABCDEFG.md", Kind::Lookalike},
        {".syncthing.03-14.md.tmp", Kind::Other},
        {"~syncthing~03-14.md.tmp", Kind::Other},
        {".syncthing.03-14.sync-conflict-20261120-101112-ABCDEFG.md.tmp", Kind::Other},

        // Nextcloud, ownCloud
        {"03-14 (conflicted copy 2026-11-20 101112).md", Kind::ConflictCopy},
        {"03-14 (conflicted copy alice 2026-11-20 101112).md", Kind::ConflictCopy},
        {"03-14 (conflicted copy Zoë van Dijk 2026-11-20 101112).md", Kind::ConflictCopy},
        {"03-14 (conflicted copy alice (home) 2026-11-20 101112).md", Kind::ConflictCopy},
        {"03-14 (conflicted copy 101112).md", Kind::Lookalike},
        {"03-14 (conflicted copy 2026-11-201).md", Kind::Lookalike},
        {"03-14 (conflicted copy 12026-11-20).md", Kind::Lookalike},
        {"03-14 (conflicted copy) 2026-11-20.md", Kind::Lookalike},
        {"03-14 (conflicted) copy (2026-11-20).md", Kind::Lookalike},
        {"03-14 (a) conflicted copy 2026-11-20 (b).md", Kind::Lookalike},
        {"03-14 conflicted copy 2026-11-20.md", Kind::Lookalike},
        {"03-14 (conflicted copy 2026-11-20 101112).txt", Kind::Other},
        {"03-14_conflict-20261120-101112.md", Kind::ConflictCopy},
        {"03-14_conflict-20261120.md", Kind::Lookalike},
        {"03-14_conflict-20261120-101112.md.txt", Kind::Other},
        {".03-14.md.~1a2b", Kind::Other},

        // Seafile
        {"03-14 (SFConflict name 2026-11-20-10-11-12).md", Kind::ConflictCopy},
        {"03-14 (SFConflict me@example.org 2026-11-20-10-11-12).md", Kind::ConflictCopy},
        {"03-14 (SFConflict Émile Zola 2026-11-20-10-11-12).md", Kind::ConflictCopy},
        {"03-14 (SFConflict name 2026-11-20-10-11).md", Kind::Lookalike},
        {"03-14 (SFConflict name).md", Kind::Lookalike},
        {"03-14.md~", Kind::Other},
        {"03-14.md.sbak", Kind::Other},

        // Dropbox, in English, German, French, Spanish and Japanese
        {"03-14 (X's conflicted copy 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (X’s Conflicted Copy 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (X's conflicted copy 2026-11-20) (1).md", Kind::ConflictCopy},
        {"03-14 (X's conflicted copy 2026-11-20) (12).md", Kind::ConflictCopy},
        {"03-14 (X's conflicted copy 2026-11-20 (1)).md", Kind::ConflictCopy},
        {"03-14 (X (work)'s conflicted copy 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (X ((work))'s conflicted copy 2026-11-20).md", Kind::Lookalike},
        {"03-14 (X's conflicted copy 2026-11-20) (a).md", Kind::Lookalike},
        {"03-14 (X's conflicted copy 2026-11-20.md", Kind::Lookalike},
        {"03-14 (X's conflicted copy 2026-11-20)).md", Kind::Lookalike},
        {"03-14 (X's copy 2026-11-20).md", Kind::Lookalike},
        {"03-14 (in Konflikt stehende Kopie von X 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (X in konflikt stehende kopie 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (Copie en conflit de Hélène 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (EN CONFLIT 2026-11-20) (1).md", Kind::ConflictCopy},
        {"03-14 (Copia conflictiva de José 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (copia conflictiva de 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (2026-11-20 Copia conflictiva de José).md", Kind::ConflictCopy},
        {"03-14 (Xの問題のあるコピー 2026-11-20).md", Kind::ConflictCopy},
        {"03-14 (2026-11-20 問題のあるコピー) (2).md", Kind::ConflictCopy},
        {"03-14 (問題のあるコピー).md", Kind::Lookalike},

        // OneDrive
        {"03-14-HOST-safeBackup-0001.md", Kind::ConflictCopy},
        {"03-14-my-laptop.example-safeBackup-0012.md", Kind::ConflictCopy},
        {"03-14-Büro-safeBackup-0001.md", Kind::ConflictCopy},
        {"03-14-safeBackup-0001.md", Kind::Lookalike},
        {"03-14-HOST-safeBackup-1.md", Kind::Lookalike},
        {"03-14.md.ab12cd34.partial", Kind::Other},
        {"03-14.md.partial", Kind::Other},

        // rclone
        {"03-14.md.conflict1", Kind::ConflictCopy},
        {"03-14.md.conflict2", Kind::ConflictCopy},
        {"03-14.md.conflict10", Kind::ConflictCopy},
        {"03-14.md..path1", Kind::ConflictCopy},
        {"03-14.md..path2", Kind::ConflictCopy},
        {"03-14.md..path12", Kind::ConflictCopy},
        {"03-14.md.conflict", Kind::Other},
        {"03-14.md.conflictA", Kind::Other},
        {"03-14.md.conflict1.partial", Kind::Other},
        {"03-14.md.path1", Kind::Other},
        {"03-14.md..path", Kind::Other},
        {"03-14.txt.conflict1", Kind::Other},

        // pCloud
        {"03-14 (conflicted).md", Kind::ConflictCopy},
        {"03-14 (conflicted 1).md", Kind::ConflictCopy},
        {"03-14 (conflicted 23).md", Kind::ConflictCopy},
        {"03-14 (conflicted x).md", Kind::Lookalike},
        {"03-14 (conflicted 1) (1).md", Kind::Lookalike},
        {"03-14.md.part", Kind::Other},

        // Editors, and our own
        {".goutputstream-ABC123", Kind::Other},
        {".03-14.md.swp", Kind::Other},
        {".03-14.md.swo", Kind::Other},
        {"4913", Kind::Other},
        {".03-14.md.kate-swp", Kind::Other},
        {"03-14.md.kate-swp", Kind::Other},
        {"#03-14.md#", Kind::Other},
        {".#03-14.md", Kind::Other},
        {".~03-14.md.abcdeX~", Kind::Other},

        {"03-14 2.md", Kind::Lookalike},
        {"03-14 (1).md", Kind::Lookalike},
        {"03-14 copy.md", Kind::Lookalike},
        {"03-14-2026.md", Kind::Lookalike},
        {"03-14..md", Kind::Lookalike},
        {"03-14.md.md", Kind::Lookalike},
        {"03-14é.md", Kind::Lookalike},
        {"03-14\n.md", Kind::Lookalike},
        {"03-14 \xff.md", Kind::Lookalike},
        {"03-14 (conflicted copy \xff 2026-11-20).md", Kind::Lookalike},
        {"03-14 " + std::string(200, 'x') + ".md", Kind::Lookalike},

        {"03-145.md", Kind::Other},
        {"03-1.md", Kind::Other},
        {"3-14.md", Kind::Other},
        {"03-14", Kind::Other},
        {"03-14md", Kind::Other},
        {"03-14.MD", Kind::Other},
        {"03-14.txt", Kind::Other},
        {"03-14.md ", Kind::Other},
        {" 03-14.md", Kind::Other},
        {"00-14 2.md", Kind::Other},
        {"13-01 2.md", Kind::Other},
        {"03-00.md", Kind::Other},
        {"03-32.md", Kind::Other},
        {"03-32.md.nextcloud", Kind::Other},
        {"13-01.md..path1", Kind::Other},
        {"x03-14 (conflicted).md", Kind::Other},
        {"03-14.md.icloud", Kind::Other},
        {".03-14.md.nextcloud", Kind::Other},
        {".03-14.txt.icloud", Kind::Other},
        {"03-14 2.md.nextcloud", Kind::Other},
        {".icloud", Kind::Other},
        {"notes.md", Kind::Other},
        {".stfolder", Kind::Other},
        {"\xff\xfe", Kind::Other},
    };
}

constexpr std::array<std::string_view, 48> pieces{
    "03-14",
    "12-31",
    "02-29",
    "00-00",
    "13-01",
    "03",
    "-",
    "14",
    ".md",
    ".",
    "..",
    "~",
    " ",
    " (",
    ")",
    "(",
    "conflicted",
    "conflicted copy",
    "CONFLICTED COPY",
    "2026-11-20",
    "101112",
    "20261120",
    ".sync-conflict-",
    "-ABCDEFG",
    "_conflict-",
    "SFConflict",
    "-10-11-12",
    "en conflit",
    "問題のあるコピー",
    "Copia conflictiva de",
    "in Konflikt stehende Kopie",
    "-safeBackup-",
    "0001",
    ".conflict",
    ".path",
    "1",
    ".icloud",
    ".nextcloud",
    ".owncloud",
    ".tmp",
    ".partial",
    "é",
    "e\u0301",
    "\u309A",
    "\u212A",
    "\n",
    "alice",
    "HOST",
};

} // namespace

const std::vector<NamedKind> &vaultFileNames() {
    static const auto names = allNames();
    return names;
}

std::string decomposed(std::string_view name) {
    UErrorCode status = U_ZERO_ERROR;
    const auto *normalizer = icu::Normalizer2::getNFDInstance(status);
    if (U_FAILURE(status))
        throw std::runtime_error("no decomposition");
    const auto text =
        icu::UnicodeString::fromUTF8(icu::StringPiece(name.data(), static_cast<std::int32_t>(name.size())));
    std::string result;
    normalizer->normalize(text, status).toUTF8String(result);
    return result;
}

std::string falsehoodAbout(std::string_view name) {
    const auto found = VaultFileName::classify(name);
    const auto title = found.monthDay.headerTitle();
    const bool beginsLikeDay = name.size() > title.size() && name.starts_with(title) &&
                               (name[title.size()] < '0' || name[title.size()] > '9');
    switch (found.kind) {
    case Kind::DayFile:
        if (MonthDay::parse(name) != found.monthDay)
            return "a day file that is none";
        break;
    case Kind::Placeholder:
        if (std::ranges::count(VaultFileName::placeholderNames(found.monthDay), name) != 1)
            return "a placeholder that is none";
        break;
    case Kind::ConflictCopy:
        if (!beginsLikeDay || (!name.ends_with(".md") && !name.starts_with(title + ".md.")))
            return "a conflict copy of no day";
        if (!UnicodeText::isValid(name))
            return "a conflict copy that no tool can have written";
        break;
    case Kind::Lookalike:
        if (!beginsLikeDay || !name.ends_with(".md"))
            return "nothing that looks like a day file";
        break;
    case Kind::Other:
        if (found != VaultFileName{})
            return "a day of what has none";
        if (MonthDay::parse(name))
            return "a day file was missed";
        break;
    }

    if (VaultFileName::classify(std::string(name) + "~").kind != Kind::Other)
        return "a backup is taken for more";

    if (found.kind != Kind::Other) {
        std::string ofAnotherDay(name);
        ofAnotherDay.replace(ofAnotherDay.find(title), title.size(), "12-31");
        if (VaultFileName::classify(ofAnotherDay) != VaultFileName{found.kind, MonthDay{12, 31}})
            return "not the same as on another day";
    }

    if (UnicodeText::isValid(name)) {
        const auto apart = decomposed(name);
        if (name.size() <= longestName && apart.size() <= longestName &&
            VaultFileName::classify(apart) != found)
            return "not the same when decomposed";
    }
    return {};
}

std::size_t RandomVaultFileNames::below(std::size_t limit) {
    return m_random() % limit;
}

std::string RandomVaultFileNames::assembled() {
    std::string name = below(4) == 0 ? "" : "03-14";
    for (auto count = below(8); count > 0; --count)
        name += pieces[below(pieces.size())];
    if (below(2) == 0)
        name += ".md";
    return name;
}

std::string RandomVaultFileNames::damaged(std::string name) {
    for (auto count = below(4); count > 0; --count) {
        const auto at = below(name.size() + 1);
        switch (below(4)) {
        case 0:
            name.insert(at, pieces[below(pieces.size())]);
            break;
        case 1:
            name.insert(at, 1, static_cast<char>(below(256)));
            break;
        case 2:
            name.erase(at, 1 + below(3));
            break;
        default:
            name.insert(at, name.substr(below(name.size() + 1), below(20)));
            break;
        }
    }
    return name;
}

std::string RandomVaultFileNames::next() {
    const auto &known = vaultFileNames();
    auto name = damaged(below(3) == 0 ? assembled() : known[below(known.size())].name);
    if (below(50) == 0)
        name.insert(below(name.size() + 1), below(2000), static_cast<char>(below(256)));
    return name;
}

} // namespace diary::testing

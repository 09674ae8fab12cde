// SPDX-License-Identifier: MIT
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/VaultFileName.h>

#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace diary {

namespace {

constexpr std::size_t titleLength = 5;    // 03-14
constexpr std::size_t fileNameLength = 8; // 03-14.md
constexpr std::size_t longestName = 1024; // in bytes; the kernel's own limit is 255, that of FUSE 1024

struct Affixes {
    std::string_view prefix;
    std::string_view suffix;
};
constexpr std::array<Affixes, 3> placeholderAffixes{
    {{".", ".icloud"}, {"", ".nextcloud"}, {"", ".owncloud"}}};

// What follows the day in the name of a conflict copy. What a person might write as well is left out.
constexpr std::array<std::string_view, 8> conflictPatterns{
    // Syncthing: time, device.
    R"(\.sync-conflict-[0-9]{8}-[0-9]{6}-[A-Z2-7]{7}\.md)",

    // Nextcloud, ownCloud and Dropbox: a phrase and a date within parentheses, where a user's or a machine's
    // name may stand at any place, even with parentheses of its own. Dropbox translates the phrase.
    R"( \((?=.*(?i:conflicted copy|in Konflikt stehende Kopie|en conflit|Copia conflictiva de|問題のあるコピー)))"
    R"((?=.*(?<![0-9])[0-9]{4}-[0-9]{2}-[0-9]{2}(?![0-9])))"
    R"((?:[^()]|\([^()]*\))*+\)(?: \([0-9]+\))?\.md)",

    // Nextcloud and ownCloud of old.
    R"(_conflict-[0-9]{8}-[0-9]{6}\.md)",

    // Seafile: user, time.
    R"( \(SFConflict .+ [0-9]{4}(?:-[0-9]{2}){5}\)\.md)",

    // OneDrive: machine, number.
    R"(-.+-safeBackup-[0-9]{4,}\.md)",

    // rclone bisync, and its older versions.
    R"(\.md\.conflict[0-9]+)",
    R"(\.md\.\.path[0-9]+)",

    // pCloud.
    R"( \(conflicted(?: [0-9]+)?\)\.md)",
};

// Costly to make, and shared by all threads, which a matcher cannot be. Null when ICU lacks its data.
struct ConflictMatching {
    std::unique_ptr<icu::RegexPattern> pattern;
    const icu::Normalizer2 *composing = nullptr;

    ConflictMatching() {
        std::string all;
        for (const auto alternative : conflictPatterns) {
            all += all.empty() ? "" : "|";
            all += alternative;
        }
        UErrorCode status = U_ZERO_ERROR;
        UParseError error{};
        pattern.reset(icu::RegexPattern::compile(icu::UnicodeString::fromUTF8(all), error, status));
        composing = icu::Normalizer2::getNFCInstance(status);
    }
};

bool isConflictSuffix(std::string_view suffix) {
    static const ConflictMatching matching;
    if (!matching.pattern || !matching.composing || !UnicodeText::isValid(suffix))
        return false;
    const icu::StringPiece bytes(suffix.data(), static_cast<std::int32_t>(suffix.size()));
    UErrorCode status = U_ZERO_ERROR;
    const auto composed = matching.composing->normalize(icu::UnicodeString::fromUTF8(bytes), status);
    const std::unique_ptr<icu::RegexMatcher> matcher(matching.pattern->matcher(composed, status));
    return U_SUCCESS(status) && matcher->matches(status) && U_SUCCESS(status);
}

std::optional<MonthDay> dayOfPlaceholder(std::string_view name) {
    for (const auto &[prefix, suffix] : placeholderAffixes) {
        if (name.size() == prefix.size() + fileNameLength + suffix.size() && name.starts_with(prefix) &&
            name.ends_with(suffix))
            return MonthDay::parse(name.substr(prefix.size(), fileNameLength));
    }
    return std::nullopt;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Of a name that begins with a day and goes on otherwise than with a digit.
std::optional<MonthDay> dayAtStart(std::string_view name) {
    if (name.size() <= titleLength || !isDigit(name[0]) || isDigit(name[titleLength]))
        return std::nullopt;
    return MonthDay::parse(std::string(name.substr(0, titleLength)) + ".md");
}

} // namespace

VaultFileName VaultFileName::classify(std::string_view name) {
    if (const auto day = MonthDay::parse(name))
        return {Kind::DayFile, *day};
    if (const auto day = dayOfPlaceholder(name))
        return {Kind::Placeholder, *day};
    if (name.size() > longestName)
        return {};
    const auto day = dayAtStart(name);
    if (!day)
        return {};

    const auto suffix = name.substr(titleLength);
    const bool isMarkdown = suffix.ends_with(".md");
    if ((isMarkdown || suffix.starts_with(".md.")) && isConflictSuffix(suffix))
        return {Kind::ConflictCopy, *day};
    if (isMarkdown)
        return {Kind::Lookalike, *day};
    return {};
}

std::array<std::string, 3> VaultFileName::placeholderNames(MonthDay monthDay) {
    std::array<std::string, 3> names;
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto &[prefix, suffix] = placeholderAffixes[index];
        names[index] = std::string(prefix) + monthDay.fileName() + std::string(suffix);
    }
    return names;
}

} // namespace diary

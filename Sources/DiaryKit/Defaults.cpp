// SPDX-License-Identifier: MIT
#include <DiaryKit/Defaults.h>
#include <DiaryKit/DurableFile.h>
#include <DiaryKit/UnicodeText.h>
#include <DiaryKit/UserDirectories.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// Beyond these a file is not one of settings. The library writes and copies nested values recursively, and
// the stack is finite.
constexpr std::uintmax_t largestFile = 8'000'000;
constexpr int deepestNesting = 100;

struct Contents {
    json object = json::object();
    bool isBroken = false; // there is a file, but it holds no JSON object
    std::error_code error; // there is a file, and it cannot be read
};

// None for a text that is no JSON object or is nested too deeply.
std::optional<json> parsedObject(const std::string &bytes) {
    // The parser would take a zero byte for the end.
    if (bytes.find('\0') != std::string::npos)
        return std::nullopt;
    bool tooDeep = false;
    const auto keep = [&](int depth, json::parse_event_t, json &) {
        tooDeep = tooDeep || depth > deepestNesting;
        return !tooDeep;
    };
    constexpr bool allowExceptions = false;
    auto value = json::parse(bytes, keep, allowExceptions);
    if (tooDeep || !value.is_object())
        return std::nullopt;
    return value;
}

Contents contentsOf(const fs::path &path) {
    Contents contents;
    std::error_code error;
    const auto size = fs::file_size(path, error);
    if (!error && size > largestFile) {
        contents.isBroken = true;
        return contents;
    }
    const auto bytes = readWholeFile(path, error);
    if (!bytes) {
        if (error != std::errc::no_such_file_or_directory)
            contents.error = error;
        return contents;
    }
    if (auto object = parsedObject(*bytes))
        contents.object = std::move(*object);
    else
        contents.isBroken = true;
    return contents;
}

[[noreturn]] void fail(const fs::path &path, std::error_code error) {
    throw fs::filesystem_error("save settings", path, error);
}

void requireUtf8(const fs::path &path, std::string_view text) {
    if (!UnicodeText::isValid(text))
        fail(path, std::error_code(EILSEQ, std::system_category()));
}

void replaceBrokenFile(const fs::path &path, std::string_view bytes) {
    const auto target = resolvingLinks(path);
    // Made first: a folder that takes no file says so with the broken one still in its place.
    PreparedFile prepared(target, bytes);
    const auto folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!moveIntoFolder(target, folder, target.filename().string() + ".bad"))
        fail(path, std::error_code(EIO, std::system_category()));
    prepared.install(PreparedFile::Expecting::Nothing);
    prepared.syncFolder();
}

// Changes the stored object. `change` returns whether there is anything to write.
template <typename Change>
void update(const fs::path &path, Change change) {
    auto contents = contentsOf(path);
    if (contents.error)
        fail(path, contents.error);
    if (!change(contents.object))
        return;
    constexpr int indentation = 4;
    const auto bytes = contents.object.dump(indentation) + "\n";
    if (contents.isBroken)
        replaceBrokenFile(path, bytes);
    else
        replaceFileDurably(path, bytes);
}

template <typename Value>
void store(const fs::path &path, std::string_view key, Value value) {
    requireUtf8(path, key);
    update(path, [&](json &object) {
        object[std::string(key)] = value;
        return true;
    });
}

using Nanoseconds = std::chrono::nanoseconds; // since 1970

Nanoseconds nanoseconds(const timespec &time) {
    return std::chrono::seconds(time.tv_sec) + Nanoseconds(time.tv_nsec);
}

// What tells whether a file is the same as before.
struct FileStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    Nanoseconds modified{};
    Nanoseconds changed{}; // also when the time of modification was set back

    bool operator==(const FileStamp &) const = default;
};

std::optional<FileStamp> stampOf(const fs::path &path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return FileStamp{status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
                     nanoseconds(status.st_ctim)};
}

// The times in a file system advance in steps, of milliseconds in most and of two seconds in the coarsest. A
// change within the step of the one before leaves the stamp as it was.
bool isSettled(const FileStamp &stamp) {
    constexpr std::chrono::seconds coarsestStep(2);
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return std::max(stamp.modified, stamp.changed) + coarsestStep < nanoseconds(now);
}

} // namespace

struct Defaults::Snapshot {
    std::optional<FileStamp> stamp;
    json object;

    json value(std::string_view key) const {
        const auto found = object.find(key);
        return found == object.end() ? json() : *found;
    }
};

std::shared_ptr<const Defaults::Snapshot> Defaults::current() const {
    const auto stamp = stampOf(m_path);
    if (m_snapshot && m_snapshot->stamp == stamp)
        return m_snapshot;
    m_snapshot.reset();
    auto contents = contentsOf(m_path);
    auto snapshot = std::make_shared<const Snapshot>(Snapshot{stamp, std::move(contents.object)});
    // The second look tells that it was not replaced between the first one and the reading.
    if (stamp && !contents.error && isSettled(*stamp) && stampOf(m_path) == stamp)
        m_snapshot = snapshot;
    return snapshot;
}

Defaults::Defaults() : Defaults(UserDirectories::config() / "settings.json") {}

Defaults::Defaults(fs::path path) : m_path(std::move(path)) {}

std::optional<std::string> Defaults::string(std::string_view key) const {
    const auto value = current()->value(key);
    return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

std::optional<double> Defaults::number(std::string_view key) const {
    const auto value = current()->value(key);
    return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
}

std::optional<bool> Defaults::boolean(std::string_view key) const {
    const auto value = current()->value(key);
    return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}

std::optional<std::vector<std::string>> Defaults::stringList(std::string_view key) const {
    const auto value = current()->value(key);
    const bool isList = value.is_array() && std::all_of(value.begin(), value.end(),
                                                        [](const json &item) { return item.is_string(); });
    return isList ? std::optional(value.get<std::vector<std::string>>()) : std::nullopt;
}

void Defaults::set(std::string_view key, std::string_view value) {
    requireUtf8(m_path, value);
    store(m_path, key, value);
}

void Defaults::set(std::string_view key, double value) {
    store(m_path, key, value);
}

void Defaults::set(std::string_view key, bool value) {
    store(m_path, key, value);
}

void Defaults::set(std::string_view key, const std::vector<std::string> &values) {
    for (const auto &value : values)
        requireUtf8(m_path, value);
    store(m_path, key, values);
}

void Defaults::remove(std::string_view key) {
    update(m_path, [&](json &object) { return object.erase(std::string(key)) > 0; });
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace diary {

// The user's preferences: values under names, in one JSON file.
//
// Every read looks at the file, so what another window or program wrote is seen at once; the file is opened
// again only when it is not certain that it stayed as it was. Reading never fails; what cannot be read is
// absent. Each write replaces the file durably, keeps the keys that this program does not know, and of two
// programs that write at once lets the last one win.
//
// An object belongs to one thread; copies may go to others.
//
// A file that holds no JSON object reads as empty. The next write moves it aside as `settings.json.bad`,
// under a number when there is one already.
class Defaults {
public:
    // `settings.json` in the user's configuration folder.
    Defaults();
    explicit Defaults(std::filesystem::path path);

    const std::filesystem::path &path() const { return m_path; }

    // None when the key is absent or its value is of another type. Any JSON number is a number.
    std::optional<std::string> string(std::string_view key) const;
    std::optional<double> number(std::string_view key) const;
    std::optional<bool> boolean(std::string_view key) const;
    // None also when any value of the list is no string.
    std::optional<std::vector<std::string>> stringList(std::string_view key) const;

    // Missing folders are made. A number that is not finite is stored as null, which reads as absent.
    //
    // These throw std::filesystem::filesystem_error with the path and the system's own error, and leave the
    // file as it was: also when the present file cannot be read, since its other keys would be lost, and with
    // EILSEQ for a key or string that is not UTF-8.
    void set(std::string_view key, std::string_view value);
    void set(std::string_view key, double value);
    void set(std::string_view key, bool value);
    void set(std::string_view key, const std::vector<std::string> &values);
    // Without this a string literal would be taken for a bool.
    void set(std::string_view key, const char *value) { set(key, std::string_view(value)); }
    // Writes nothing when there is no such key.
    void remove(std::string_view key);

private:
    struct Snapshot;

    std::shared_ptr<const Snapshot> current() const;

    std::filesystem::path m_path;
    // The file as it was read last; none while it may still change without a trace.
    mutable std::shared_ptr<const Snapshot> m_snapshot;
};

} // namespace diary

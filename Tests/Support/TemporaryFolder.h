// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

namespace diary::testing {

// A folder of its own for each test, removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "tavelo-test-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("cannot make a temporary folder");
        m_path = pattern;
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

    const std::filesystem::path &path() const { return m_path; }
    std::filesystem::path operator/(const std::filesystem::path &name) const { return m_path / name; }

    // Writes in place, as a careless program does; missing folders are made.
    void write(const std::filesystem::path &name, std::string_view bytes) const {
        std::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream(m_path / name, std::ios::binary) << bytes;
    }

    std::string read(const std::filesystem::path &name) const {
        std::ifstream file(m_path / name, std::ios::binary);
        if (!file)
            throw std::runtime_error("no file " + name.string());
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // The names in the folder, hidden ones too.
    std::set<std::string> names(const std::filesystem::path &below = {}) const {
        std::set<std::string> found;
        std::error_code error;
        for (const auto &entry : std::filesystem::directory_iterator(m_path / below, error))
            found.insert(entry.path().filename().string());
        return found;
    }

private:
    std::filesystem::path m_path;
};

} // namespace diary::testing

// SPDX-License-Identifier: MIT
#pragma once

#include "Support/RunProgram.h"
#include "Support/TemporaryFolder.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace diary::testing {

// What `cmake --install` makes of this build, in a folder of its own.
class InstalledTree {
public:
    // Throws std::runtime_error when the installation fails.
    InstalledTree();

    const std::filesystem::path &prefix() const { return m_prefix; }
    std::filesystem::path operator/(const std::filesystem::path &name) const { return m_prefix / name; }

    // All of them, below the prefix.
    std::set<std::string> files() const;
    std::string read(const std::filesystem::path &name) const;

    // As a user does who moves the tree.
    void moveTo(const std::string &name);

    // An installed program, off screen, with a home folder and a diary of its own.
    ProgramResult run(const std::string &program, std::vector<std::string> arguments,
                      std::map<std::string, std::string> environment = {}) const;

    // A folder for the test's own files, outside the prefix.
    const TemporaryFolder &folder() const { return m_folder; }

private:
    TemporaryFolder m_folder;
    std::filesystem::path m_prefix;
};

// Whether the build has a target that not every machine or version has.
bool buildHas(const std::string &target);

} // namespace diary::testing

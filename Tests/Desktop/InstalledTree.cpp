// SPDX-License-Identifier: MIT
#include "InstalledTree.h"

#include <sstream>
#include <stdexcept>

namespace diary::testing {

namespace fs = std::filesystem;

InstalledTree::InstalledTree() : m_prefix(m_folder / "prefix") {
    const auto result =
        runProgram({.program = TAVELO_CMAKE,
                    .arguments = {"--install", TAVELO_BUILD_FOLDER, "--prefix", m_prefix.string()},
                    .environment = {},
                    .input = {}});
    if (result.exitCode != 0)
        throw std::runtime_error("cmake --install: " + result.errors);
    for (const auto *name : {"home", "run"})
        fs::create_directory(m_folder / name);
    fs::permissions(m_folder / "run", fs::perms::owner_all);
}

std::set<std::string> InstalledTree::files() const {
    std::set<std::string> found;
    for (const auto &entry : fs::recursive_directory_iterator(m_prefix)) {
        if (!entry.is_directory())
            found.insert(entry.path().lexically_relative(m_prefix).string());
    }
    return found;
}

std::string InstalledTree::read(const fs::path &name) const {
    return m_folder.read(m_prefix.lexically_relative(m_folder.path()) / name);
}

void InstalledTree::moveTo(const std::string &name) {
    const auto target = m_folder / name;
    fs::rename(m_prefix, target);
    m_prefix = target;
}

ProgramResult InstalledTree::run(const std::string &program, std::vector<std::string> arguments,
                                 std::map<std::string, std::string> environment) const {
    environment.insert({{"HOME", m_folder / "home"},
                        {"XDG_RUNTIME_DIR", m_folder / "run"},
                        {"QT_QPA_PLATFORM", "offscreen"},
                        {"DIARY_ROOT", m_folder / "vault"}});
    return runProgram({.program = m_prefix / "bin" / program,
                       .arguments = std::move(arguments),
                       .environment = std::move(environment),
                       .input = {}});
}

bool buildHas(const std::string &target) {
    std::istringstream targets(TAVELO_OPTIONAL_TARGETS);
    for (std::string one; targets >> one;) {
        if (one == target)
            return true;
    }
    return false;
}

} // namespace diary::testing

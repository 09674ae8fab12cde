// SPDX-License-Identifier: MIT
#pragma once

#include "Support/RunProgram.h"
#include "Support/TemporaryFolder.h"

#include <DiaryUpdates/LinuxInstallScript.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace diary::testing {

// An installed bundle and a staged one, whose programs are small scripts, and the install script.
class InstalledBundle {
public:
    // How the two bundles can change places.
    enum class Swap { InOneStep, ByTwoRenames };

    explicit InstalledBundle(Swap swap = Swap::InOneStep, const std::filesystem::path &below = ".")
        : m_root((m_folder / below).lexically_normal()), m_swap(swap) {
        makeBundle(installed(), "1.0");
        stage("2.0");
    }

    std::filesystem::path applications() const { return m_root / "applications"; }
    std::filesystem::path installed() const { return applications() / "Tavelo.app"; }
    std::filesystem::path staging() const { return m_root / "data/Updates"; }
    std::filesystem::path staged() const { return staging() / "Tavelo.app"; }
    std::filesystem::path script() const { return staging() / "install.sh"; }

    // What the staged program does when it is tried.
    static std::string readiness(const std::string &version) { return "echo ready " + version; }

    // The staging folder anew.
    void stage(const std::string &version, const std::string &trial) const {
        std::filesystem::remove_all(staging());
        makeBundle(staged(), version, trial);
        write(script(), linuxInstallScript);
    }
    void stage(const std::string &version) const { stage(version, readiness(version)); }

    // In the script, where it stands once.
    void replaceInScript(const std::string &what, const std::string &by) const {
        std::string text = linuxInstallScript;
        const auto position = text.find(what);
        if (position == std::string::npos || text.find(what, position + 1) != std::string::npos)
            throw std::runtime_error("not once in the script: " + what);
        write(script(), text.replace(position, what.size(), by));
    }

    std::vector<std::string> command(int process) const {
        return {"/bin/sh",         script().string(),    std::to_string(process),
                staged().string(), installed().string(), staging().string()};
    }

    ProgramResult run(int process, const std::vector<std::string> &before = {}) const {
        auto words = before;
        for (const auto &word : command(process))
            words.push_back(word);
        ProgramCall call;
        call.program = "/usr/bin/env";
        call.arguments = words;
        call.environment = {{"HOME", m_folder.path()}, {"ASAN_OPTIONS", "detect_leaks=0"}};
        return runProgram(call);
    }

    // What the installed program says of itself; nothing when it does not run.
    std::string installedVersion() const {
        if (!std::filesystem::exists(installed() / "bin/tavelo"))
            return {};
        ProgramCall call;
        call.program = installed() / "bin/tavelo";
        const auto result = runProgram(call);
        const bool isWhole = std::filesystem::file_size(installed() / "share/large") == largeSize &&
                             std::filesystem::exists(installed() / "seal/contents");
        return result.exitCode == 0 && isWhole ? result.output : std::string();
    }

    // Without its line break; nothing when there is none.
    std::string outcome() const {
        std::ifstream file(m_root / "data/update-outcome");
        std::string line;
        std::getline(file, line);
        return line;
    }

    static std::set<std::string> names(const std::filesystem::path &folder) {
        std::set<std::string> found;
        for (const auto &entry : std::filesystem::directory_iterator(folder))
            found.insert(entry.path().filename().string());
        return found;
    }

    void makeBundle(const std::filesystem::path &bundle, const std::string &version,
                    const std::string &trial = "exit 0") const {
        write(bundle / "bin/tavelo",
              "#!/bin/sh\n[ \"$1\" = --self-test ] || { printf " + version + "; exit; }\n" + trial + "\n");
        std::filesystem::permissions(bundle / "bin/tavelo", static_cast<std::filesystem::perms>(0755));
        write(bundle / "share/large", std::string(largeSize, 'x'));
        write(bundle / "seal/contents", "tavelo bundle 1\nversion " + version + "\narchitecture x86_64\n");
        if (m_swap == Swap::InOneStep) {
            std::filesystem::create_directories(bundle / "lib/tavelo");
            std::filesystem::copy_file(builtProgram("TAVELO_TEST_TAVELO_EXCHANGE"),
                                       bundle / "lib/tavelo/tavelo-exchange");
        }
    }

private:
    static constexpr std::size_t largeSize = 200'000;

    static void write(const std::filesystem::path &file, const std::string &bytes) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_root;
    Swap m_swap;
};

} // namespace diary::testing

// SPDX-License-Identifier: MIT
#pragma once

#include "Support/TemporaryFolder.h"

#include <DiaryUpdates/BundleSeal.h>

#include <filesystem>
#include <string>
#include <string_view>

#include <tavelo-seal/BundleMaking.h>
#include <tavelo-seal/MakerKey.h>

namespace diary::testing {

// A small bundle in a folder of its own, sealed with a key that is made for the test.
class TestBundle {
public:
    explicit TestBundle(const std::string &version = "2.0") {
        addFile("bin/tavelo", "#!/bin/sh\necho ready " + version + "\n", 0755);
        addFile("lib/tavelo/libone.so.1", std::string(300'000, 'x'), 0644);
        addFile("share/a name with blanks and \xc3\xbc", "text", 0644);
        std::filesystem::create_symlink("libone.so.1", path() / "lib/tavelo/libone.so");
        makeFolder("share/empty");
        seal(version);
    }

    std::filesystem::path path() const { return m_folder / "Tavelo.app"; }
    const MakerKey &key() const { return m_key; }

    void addFile(const std::string &name, std::string_view bytes, unsigned mode) const {
        makeFolder(std::filesystem::path(name).parent_path());
        m_folder.write(std::filesystem::path("Tavelo.app") / name, bytes);
        std::filesystem::permissions(path() / name, static_cast<std::filesystem::perms>(mode));
    }

    // With the folders above it, whatever the user's mask.
    void makeFolder(const std::filesystem::path &name) const {
        if (!name.empty())
            makeFolder(name.parent_path());
        std::filesystem::create_directory(path() / name);
        std::filesystem::permissions(path() / name, static_cast<std::filesystem::perms>(0755));
    }

    void seal(const std::string &version, const std::string &architecture = machineArchitecture()) const {
        sealBundle(path(), version, architecture, m_key);
    }

    // Written on demand.
    std::filesystem::path archive() const {
        auto file = m_folder / "update.zip";
        archiveBundle(path(), file, 0);
        return file;
    }

    BundleExpectation expectation(const std::string &version = "2.0",
                                  const std::string &runningVersion = "1.9") const {
        return {m_key.publicKey(), version, runningVersion, machineArchitecture()};
    }

private:
    TemporaryFolder m_folder;
    MakerKey m_key = MakerKey::make();
};

} // namespace diary::testing

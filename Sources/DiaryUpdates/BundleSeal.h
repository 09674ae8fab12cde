// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryUpdates/MinisignSignature.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <stop_token>
#include <string>
#include <string_view>

namespace diary {

// The list of everything in an application bundle, which its maker signs.
//
// In a bundle it stands as `seal/contents`, beside `seal/contents.minisig`; these two and their folder are
// not in it. The text is a line for each of:
//
//     tavelo bundle 1
//     version 1.4.2
//     architecture x86_64
//     folder bin
//     program 1048576 SHA-256 bin/tavelo         a file that may be run, mode 755
//     file 4096 SHA-256 share/icon.png           one that may not, mode 644
//     link libone.so.1 lib/libone.so             a symbolic link and where it is, the target first
//
// with the paths in the order of their bytes. In paths and targets every byte that is no printable ASCII
// character, the blank and the percent sign stand as % and two lower-case hexadecimal digits. There is one
// way to write a list.
struct BundleSeal {
    enum class Kind { Folder, Program, File, Link };

    struct Entry {
        Kind kind = Kind::File;
        std::uint64_t size = 0; // bytes; of Program and File
        std::string sha256;     // 64 lower-case hexadecimal digits; of Program and File
        std::string target;     // of Link

        bool operator==(const Entry &) const = default;
    };

    std::string version;
    std::string architecture;              // as uname -m prints it
    std::map<std::string, Entry> contents; // by path in the bundle

    bool operator==(const BundleSeal &) const = default;

    // Throws BundleError unless it is what text() returns for some list.
    static BundleSeal parse(std::string_view text);
    std::string text() const;
};

// What no bundle exceeds.
inline constexpr std::size_t mostBundleEntries = 20'000;
inline constexpr std::uint64_t largestBundle = 1ULL << 30U; // bytes of all files

// What there is in a bundle's folder, without the seal. Throws BundleError for everything that a bundle may
// not have: devices, pipes and sockets, hard links, links that lead out, modes other than 755 and 644 (755
// for folders), bad names, too much of it; also when the token asks to stop, and when something cannot be
// read. Follows no link, and reads files piece by piece.
std::map<std::string, BundleSeal::Entry> bundleContents(const std::filesystem::path &bundle,
                                                        const std::stop_token &stop);

// This machine's, as uname -m prints it.
std::string machineArchitecture();

// What a bundle must be to be put in place of the running one.
struct BundleExpectation {
    MinisignPublicKey key;
    std::string version;
    std::string runningVersion; // that it must be newer than
    std::string architecture;
};

// Throws BundleError unless the owner of the key sealed exactly what is in the bundle's folder, as the
// expected version for the architecture. Also when the token asks to stop.
void verifyBundle(const std::filesystem::path &bundle, const BundleExpectation &expected,
                  const std::stop_token &stop);

} // namespace diary

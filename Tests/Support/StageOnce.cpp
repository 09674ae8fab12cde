// SPDX-License-Identifier: MIT
//
// A process that stages an update, for tests that kill it.
//
//   stage-once ARCHIVE FOLDER KEY VERSION
//
// Unpacks the archive into the folder and verifies the Tavelo.app in it. Ends with 0 when it is good.

#include <DiaryUpdates/BundleArchive.h>
#include <DiaryUpdates/BundleSeal.h>

#include <exception>
#include <filesystem>
#include <iostream>

int main(int argc, char **argv) {
    if (argc != 5)
        return 2;
    try {
        const std::filesystem::path folder = argv[2];
        diary::unpackArchive(argv[1], folder, {});
        diary::verifyBundle(
            folder / "Tavelo.app",
            {diary::MinisignPublicKey::parse(argv[3]), argv[4], "0", diary::machineArchitecture()}, {});
    } catch (const std::exception &exception) {
        std::cerr << "stage-once: " << exception.what() << '\n';
        return 1;
    }
    return 0;
}

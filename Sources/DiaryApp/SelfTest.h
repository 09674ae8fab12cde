// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace diary {

// A world of its own for a start that must touch nothing of the user's: an empty diary and empty folders for
// settings, state and cache, no session bus and no scripted run. To be made before the application object,
// while there are no other threads. The folders go with it.
class SelfTest {
public:
    // Throws std::system_error.
    SelfTest();
    SelfTest(const SelfTest &) = delete;
    SelfTest &operator=(const SelfTest &) = delete;
    ~SelfTest();

    // Prints the one line that says the program works. From then on the result is good, unless nobody can
    // read the line.
    void reportReady(const char *version);

    // For the end of the process: the given one, or 1 when there was no report.
    int exitCode(int ofEventLoop) const;

private:
    std::filesystem::path m_folder;
    bool m_isReady = false;
};

} // namespace diary

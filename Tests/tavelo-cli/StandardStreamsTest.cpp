// SPDX-License-Identifier: MIT
#include "tavelo-cli/StandardStreams.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace diary::cli {

namespace {

// Ends the process; 0 when the next file opened is none of the standard streams.
[[noreturn]] void openAFileWithoutInputAndOutput() {
    ::close(STDIN_FILENO);
    ::close(STDOUT_FILENO);
    secureStandardStreams();
    const bool isApart = ::open("/dev/null", O_WRONLY) > STDERR_FILENO;
    const bool failsToUse = ::write(STDOUT_FILENO, "x", 1) < 0 && ::read(STDIN_FILENO, nullptr, 0) < 0;
    ::_exit(isApart && failsToUse ? 0 : 1);
}

TEST(StandardStreams, areNeverTheNumbersOfOtherFiles) {
    EXPECT_EXIT(openAFileWithoutInputAndOutput(), ::testing::ExitedWithCode(0), "");
}

} // namespace

} // namespace diary::cli

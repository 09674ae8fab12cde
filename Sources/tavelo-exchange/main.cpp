// SPDX-License-Identifier: MIT
//
//   tavelo-exchange ONE OTHER
//
// Exchanges the names of two files or folders in one step: at no moment is either of them missing. Ends with
// 0 when it did, with 1 when the file system cannot, with 2 when called otherwise.

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>

int main(int argc, char **argv) {
    if (argc != 3) {
        std::fputs("usage: tavelo-exchange ONE OTHER\n", stderr);
        return 2;
    }
    if (::renameat2(AT_FDCWD, argv[1], AT_FDCWD, argv[2], RENAME_EXCHANGE) < 0) {
        std::fprintf(stderr, "tavelo-exchange: %s\n", std::strerror(errno));
        return 1;
    }
    return 0;
}

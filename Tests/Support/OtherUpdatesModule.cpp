// SPDX-License-Identifier: MIT
//
// An update module that belongs to another version of the program: whoever uses it comes to grief.

extern "C" {
__attribute__((visibility("default"))) const char *tavelo_updates_version();
__attribute__((visibility("default"))) void *tavelo_make_downloader();
__attribute__((visibility("default"))) void *tavelo_make_update_tools();
}

const char *tavelo_updates_version() {
    return "0.0.0-other";
}

void *tavelo_make_downloader() {
    __builtin_trap();
}

void *tavelo_make_update_tools() {
    __builtin_trap();
}

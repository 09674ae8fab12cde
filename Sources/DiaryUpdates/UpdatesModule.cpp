// SPDX-License-Identifier: MIT
//
// The entries of the update module, by the names that the program looks for.

#include <DiaryApp/UpdateTools.h>
#include <DiaryUpdates/HttpDownloader.h>
#include <DiaryUpdates/LinuxUpdateTools.h>

#define TAVELO_ENTRY extern "C" __attribute__((visibility("default")))

TAVELO_ENTRY diary::UpdatesVersion tavelo_updates_version;
TAVELO_ENTRY diary::MakeDownloader tavelo_make_downloader;
TAVELO_ENTRY diary::MakeUpdateTools tavelo_make_update_tools;

const char *tavelo_updates_version() {
    return TAVELO_VERSION;
}

diary::Downloader *tavelo_make_downloader() {
    return new diary::HttpDownloader();
}

diary::UpdateTools *tavelo_make_update_tools() {
    return new diary::LinuxUpdateTools(QStringLiteral(TAVELO_UPDATE_KEY));
}

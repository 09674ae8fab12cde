// SPDX-License-Identifier: MIT
//
// The entries of the photo module, by the names that the program looks for.

#include <DiaryPhotos/FolderPhotoSource.h>
#include <DiaryPhotos/PhotoDecoder.h>
#include <DiaryPhotos/PhotoThumbnails.h>

#define TAVELO_ENTRY extern "C" __attribute__((visibility("default")))

TAVELO_ENTRY diary::PhotosVersion tavelo_photos_version;
TAVELO_ENTRY diary::MakePhotoSource tavelo_make_photo_source;

const char *tavelo_photos_version() {
    return TAVELO_VERSION;
}

diary::PhotoSource *tavelo_make_photo_source(const diary::PhotoFolders &folders) {
    return new diary::FolderPhotoSource(
        folders, {.display =
                      [thumbnails = folders.thumbnails](const std::filesystem::path &file, QSize cover) {
                          return diary::displayImage(file, cover, thumbnails);
                      },
                  .full = [](const std::filesystem::path &file,
                             QSize largest) { return diary::decodePhoto(file, largest); }});
}

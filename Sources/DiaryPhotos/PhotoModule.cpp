// SPDX-License-Identifier: MIT
//
// The entry of the photo module, by the name that the program looks for.

#include <DiaryPhotos/FolderPhotoSource.h>
#include <DiaryPhotos/PhotoDecoder.h>
#include <DiaryPhotos/PhotoThumbnails.h>

extern "C" __attribute__((visibility("default"))) diary::MakePhotoSource tavelo_make_photo_source;

diary::PhotoSource *tavelo_make_photo_source(const diary::PhotoFolders &folders) {
    return new diary::FolderPhotoSource(
        folders, {.display =
                      [thumbnails = folders.thumbnails](const std::filesystem::path &file, QSize cover) {
                          return diary::displayImage(file, cover, thumbnails);
                      },
                  .full = [](const std::filesystem::path &file,
                             QSize largest) { return diary::decodePhoto(file, largest); }});
}

// SPDX-License-Identifier: MIT
#include <DiaryApp/CloudDriveName.h>
#include <DiaryApp/Localization.h>
#include <DiaryApp/Text.h>
#include <DiaryKit/VaultLocation.h>

namespace diary {

QString cloudDriveName() {
    const auto root = VaultLocation::cloudDriveRoot();
    if (!root)
        return L("Cloud Drive");
    return root->filename() == "com~apple~CloudDocs" ? L("iCloud Drive") : pathToQString(root->filename());
}

} // namespace diary

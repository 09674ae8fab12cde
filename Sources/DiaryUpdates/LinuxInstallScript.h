// SPDX-License-Identifier: MIT
#pragma once

namespace diary {

// What stands in LinuxInstall.sh.
extern const char *const linuxInstallScript;

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace diary {

// The cloud drive of this machine, as its users call it; "Cloud Drive" where there is none.
QString cloudDriveName();

} // namespace diary

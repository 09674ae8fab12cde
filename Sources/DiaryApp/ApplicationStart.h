// SPDX-License-Identifier: MIT
#pragma once

#include <DiaryApp/FontConfiguration.h>

namespace diary {

// What a program that shows the diary does before its application object is made, and keeps until after that
// is gone.
class ApplicationStart {
public:
    ApplicationStart();

private:
    FontConfiguration::EarlyReading m_fonts;
};

} // namespace diary

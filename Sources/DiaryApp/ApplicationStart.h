// SPDX-License-Identifier: MIT
#pragma once

namespace diary {

// What a program that shows the diary does before its application object is made, and keeps until after that
// is gone.
class ApplicationStart {
public:
    ApplicationStart();
};

} // namespace diary

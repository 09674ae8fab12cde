// SPDX-License-Identifier: MIT
#pragma once

namespace diary {

class AppDelegate;

// The scripted start-up: opens what the DIARY_* variables name, writes pictures of the windows to the file
// named by DIARY_SCREENSHOT after a delay, and ends the program. For tests, pictures and demonstrations.
// docs/architecture.md lists the variables. The delegate must live until the program ends.
void runDebugScenario(AppDelegate &delegate);

// Whether this run of the program is a scripted one.
bool isDebugScenario();

} // namespace diary

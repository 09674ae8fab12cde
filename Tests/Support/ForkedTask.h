// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include <sys/types.h>

namespace diary::testing {

// What `task` returns when it runs in a forked copy of this process, whose mounts, identity and limits it may
// change at will. An exception's text comes back as "exception: ...". At most 64 KiB.
std::string reportOfFork(const std::function<std::string()> &task);

// Gives the calling process mounts of its own, which go when it ends. Returns why not, or nothing. For use
// within reportOfFork.
std::string ownMounts();

// The number of a process that has ended.
pid_t endedProcess();

// The name that a process gives to the temporary for a file of the name.
std::string temporaryName(const std::string &fileName, pid_t process, char attempt = '0');

} // namespace diary::testing

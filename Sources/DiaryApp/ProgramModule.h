// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace diary {

// The folder of the running program, byte by byte: a name need not be UTF-8. Empty where the system does not
// tell. Any thread.
std::filesystem::path programFolder();

// Where a part of the program stands that is a shared library of its own, for a program in that folder:
// `../lib/tavelo/modules/NAME.so`.
std::filesystem::path moduleFile(const std::filesystem::path &programFolder, const char *name);

// A part of the program that is a shared library of its own, since what it is linked with would make every
// start slower. It is loaded when something of it is first asked for, and then stays until the process ends:
// what it made, and threads of its libraries, may live as long. One thread at a time.
class ProgramModule {
public:
    // `versionName` is the function without arguments that tells the module's version.
    ProgramModule(std::filesystem::path file, const char *versionName);

    // The function of that name and of the type Function. None when the module cannot be loaded, lacks it, or
    // is that of another version of the program.
    template <typename Function>
    Function *function(const char *name) {
        return reinterpret_cast<Function *>(symbol(name));
    }

    // Why there was none.
    const std::string &error() const { return m_error; }

private:
    using Version = const char *();

    void *symbol(const char *name);
    void *load();

    std::filesystem::path m_file;
    const char *m_versionName;
    void *m_handle = nullptr; // once it is loaded and of the right version
    std::string m_error;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/ProgramModule.h>

#include <string_view>
#include <system_error>
#include <utility>

#include <dlfcn.h>

namespace diary {

std::filesystem::path programFolder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

std::filesystem::path moduleFile(const std::filesystem::path &programFolder, const char *name) {
    return programFolder.parent_path() / "lib/tavelo/modules" / (std::string(name) + ".so");
}

ProgramModule::ProgramModule(std::filesystem::path file, const char *versionName)
    : m_file(std::move(file)), m_versionName(versionName) {}

void *ProgramModule::symbol(const char *name) {
    if (!m_handle)
        m_handle = load();
    if (!m_handle)
        return nullptr;
    auto *found = dlsym(m_handle, name);
    if (!found)
        m_error = dlerror();
    return found;
}

// Not by QLibrary, which knows a file by its name in UTF-16 alone.
void *ProgramModule::load() {
    // Else it would be looked for wherever the program was started.
    if (m_file.is_relative()) {
        m_error = m_file.native() + ": not a whole path";
        return nullptr;
    }
    auto *handle = dlopen(m_file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    auto *symbol = handle ? dlsym(handle, m_versionName) : nullptr;
    if (!symbol) {
        m_error = dlerror();
        return nullptr;
    }
    const char *version = reinterpret_cast<Version *>(symbol)();
    if (version != std::string_view(TAVELO_VERSION)) {
        m_error = m_file.native() + ": that of version " + version;
        return nullptr;
    }
    return handle;
}

} // namespace diary

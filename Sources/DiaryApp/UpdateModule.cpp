// SPDX-License-Identifier: MIT
#include <DiaryApp/UpdateModule.h>

#include <QFile>
#include <QLibrary>

#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace diary::UpdateModule {

namespace {

namespace fs = std::filesystem;

class Module {
public:
    explicit Module(const fs::path &file)
        : m_library(QFile::decodeName(QByteArray::fromStdString(file.native()))) {
        // What it made may live until the end of the process.
        m_library.setLoadHints(QLibrary::PreventUnloadHint | QLibrary::ResolveAllSymbolsHint);
    }

    template <typename Made, typename Make>
    std::unique_ptr<Made> make(const char *name) {
        const auto version = resolve<UpdatesVersion>(updatesVersionName);
        if (!version || version() != std::string_view(TAVELO_VERSION))
            return nullptr;
        const auto entry = resolve<Make>(name);
        return std::unique_ptr<Made>(entry ? entry() : nullptr);
    }

private:
    template <typename Function>
    Function *resolve(const char *name) {
        return reinterpret_cast<Function *>(m_library.resolve(name));
    }

    QLibrary m_library;
};

} // namespace

fs::path file() {
    std::error_code error;
    const auto program = fs::read_symlink("/proc/self/exe", error);
    return program.parent_path().parent_path() / "lib/tavelo/modules/tavelo-updates.so";
}

UpdateChecker::Parts parts(const fs::path &module) {
    const auto shared = std::make_shared<Module>(module);
    return {
        .makeDownloader = [shared] { return shared->make<Downloader, MakeDownloader>(makeDownloaderName); },
        .makeTools = [shared] { return shared->make<UpdateTools, MakeUpdateTools>(makeUpdateToolsName); }};
}

} // namespace diary::UpdateModule

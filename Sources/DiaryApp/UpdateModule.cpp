// SPDX-License-Identifier: MIT
#include <DiaryApp/ProgramModule.h>
#include <DiaryApp/UpdateModule.h>

#include <memory>

namespace diary::UpdateModule {

namespace {

template <typename Made, typename Make>
std::unique_ptr<Made> made(ProgramModule &module, const char *name) {
    auto *make = module.function<Make>(name);
    return std::unique_ptr<Made>(make ? make() : nullptr);
}

} // namespace

std::filesystem::path file() {
    return moduleFile(programFolder(), "tavelo-updates");
}

UpdateChecker::Parts parts(const std::filesystem::path &module) {
    const auto shared = std::make_shared<ProgramModule>(module, updatesVersionName);
    return {
        .makeDownloader = [shared] { return made<Downloader, MakeDownloader>(*shared, makeDownloaderName); },
        .makeTools = [shared] { return made<UpdateTools, MakeUpdateTools>(*shared, makeUpdateToolsName); }};
}

} // namespace diary::UpdateModule

// SPDX-License-Identifier: MIT
#include <DiaryApp/SelfTest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace diary {

namespace {

// What would make a scripted run of this one.
void forgetScenario() {
    std::vector<std::string> names;
    for (char **variable = environ; variable && *variable; ++variable) {
        const std::string_view text = *variable;
        if (text.starts_with("DIARY_"))
            names.emplace_back(text.substr(0, text.find('=')));
    }
    for (const auto &name : names)
        ::unsetenv(name.c_str());
}

} // namespace

SelfTest::SelfTest() {
    const char *place = std::getenv("TMPDIR");
    auto pattern =
        (std::filesystem::path(place && *place ? place : "/tmp") / "tavelo-self-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::system_error(errno, std::generic_category(), pattern);
    m_folder = pattern;

    forgetScenario();
    ::setenv("DIARY_ROOT", (m_folder / "Diary").c_str(), 1);
    for (const char *name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME",
                             "XDG_RUNTIME_DIR"}) {
        const auto folder = m_folder / name;
        std::filesystem::create_directory(folder);
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        ::setenv(name, folder.c_str(), 1);
    }
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    // Nothing flashes up on the user's screen unless the caller wants it there.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
}

SelfTest::~SelfTest() {
    std::error_code error;
    std::filesystem::remove_all(m_folder, error);
}

void SelfTest::reportReady(const char *version) {
    m_isReady = std::printf("ready %s\n", version) >= 0 && std::fflush(stdout) == 0;
}

int SelfTest::exitCode(int ofEventLoop) const {
    return m_isReady ? ofEventLoop : 1;
}

} // namespace diary

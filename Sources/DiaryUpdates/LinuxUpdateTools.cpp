// SPDX-License-Identifier: MIT
#include <DiaryUpdates/BundleArchive.h>
#include <DiaryUpdates/BundleError.h>
#include <DiaryUpdates/BundleSeal.h>
#include <DiaryUpdates/LinuxInstallScript.h>
#include <DiaryUpdates/LinuxUpdateTools.h>

#include <QMetaObject>

#include <array>
#include <csignal>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

namespace diary {

namespace {

MinisignPublicKey parsedKey(const std::string &text) {
    if (text.empty())
        throw BundleError("this program was built without a key for updates");
    return MinisignPublicKey::parse(text);
}

// What is passed to posix_spawn, freed in the end.
class SpawnSettings {
public:
    SpawnSettings() {
        ::posix_spawn_file_actions_init(&m_actions);
        ::posix_spawnattr_init(&m_attributes);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;
    ~SpawnSettings() {
        ::posix_spawnattr_destroy(&m_attributes);
        ::posix_spawn_file_actions_destroy(&m_actions);
    }

    // Away from this process: its terminal, its folder, its streams and what it ignores.
    bool detach() {
        constexpr const char *nowhere = "/dev/null";
        sigset_t all;
        sigset_t none;
        ::sigfillset(&all);
        ::sigemptyset(&none);
        return ::posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK |
                                                             POSIX_SPAWN_SETSIGDEF) == 0 &&
               ::posix_spawnattr_setsigmask(&m_attributes, &none) == 0 &&
               ::posix_spawnattr_setsigdefault(&m_attributes, &all) == 0 &&
               ::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, nowhere, O_RDONLY, 0) == 0 &&
               ::posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, nowhere, O_WRONLY, 0) == 0 &&
               ::posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, nowhere, O_WRONLY, 0) == 0 &&
               ::posix_spawn_file_actions_addchdir_np(&m_actions, "/") == 0;
    }

    const posix_spawn_file_actions_t *actions() const { return &m_actions; }
    const posix_spawnattr_t *attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

} // namespace

LinuxUpdateTools::LinuxUpdateTools(QString publicKey) : m_publicKey(std::move(publicKey)) {
    m_threads.setMaxThreadCount(1);
}

LinuxUpdateTools::~LinuxUpdateTools() {
    m_stop.request_stop();
    m_threads.clear();
    m_threads.waitForDone();
}

void LinuxUpdateTools::run(std::function<void(const std::stop_token &)> work, Completion completion) {
    m_threads.start([this, work = std::move(work), completion = std::move(completion)]() mutable {
        std::optional<QString> error;
        try {
            work(m_stop.get_token());
        } catch (const std::exception &exception) {
            error = QString::fromUtf8(exception.what());
        }
        QMetaObject::invokeMethod(
            &m_context, [completion = std::move(completion), error = std::move(error)] { completion(error); },
            Qt::QueuedConnection);
    });
}

void LinuxUpdateTools::unpack(const std::filesystem::path &archive, const std::filesystem::path &folder,
                              Completion completion) {
    run([archive, folder](const std::stop_token &stop) { unpackArchive(archive, folder, stop); },
        std::move(completion));
}

void LinuxUpdateTools::verify(const std::filesystem::path &application, const ExpectedUpdate &expected,
                              Completion completion) {
    run(
        [application, key = m_publicKey.toStdString(), version = expected.version.toStdString(),
         running = expected.runningVersion.toStdString()](const std::stop_token &stop) {
            verifyBundle(application, {parsedKey(key), version, running, machineArchitecture()}, stop);
        },
        std::move(completion));
}

QByteArray LinuxUpdateTools::installScript() const {
    return linuxInstallScript;
}

bool LinuxUpdateTools::launchInstallScript(const std::filesystem::path &script,
                                           std::int64_t processIdentifier,
                                           const std::filesystem::path &staged,
                                           const std::filesystem::path &installed,
                                           const std::filesystem::path &stagingFolder) {
    // As bytes, since not every path is text.
    std::array words = {std::string("/bin/sh"), script.string(),    std::to_string(processIdentifier),
                        staged.string(),        installed.string(), stagingFolder.string()};
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (auto &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    SpawnSettings settings;
    pid_t child = 0;
    return settings.detach() && ::posix_spawn(&child, arguments.front(), settings.actions(),
                                              settings.attributes(), arguments.data(), environ) == 0;
}

} // namespace diary

// SPDX-License-Identifier: MIT
#pragma once

#include "Support/ChildProcess.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace diary::testing {

// A device of the sync tool Syncthing, a process of its own that shares one folder with one other device.
// Neither looks for anything beyond this machine, nor at the user's own settings.
class Syncthing {
public:
    static bool isInstalled();

    // Makes the identity and the shared folder. Throws std::runtime_error when the program refuses.
    Syncthing(std::filesystem::path home, std::filesystem::path vault);
    ~Syncthing();

    // The other device must be there, but need not run. False when it does not answer in time.
    bool start(const Syncthing &other);

    // Stops sharing the folder for a while. Changes made meanwhile are looked for when it goes on.
    void cutOff() const;
    void reconnect() const;

    // Looks for changes in the folder and waits until they are known.
    void scan() const;

    // Connected, with nothing left to be fetched by either side as far as this one knows.
    bool isInStep() const;

    // What the program printed, for a failure's message.
    std::string log() const;

private:
    std::map<std::string, std::string> environment() const;
    void writeConfiguration(const Syncthing &other) const;
    std::optional<std::string> ask(std::string_view method, const std::string &path,
                                   const std::string &body = {}) const;
    bool isConnected() const;

    std::filesystem::path m_home;
    std::filesystem::path m_vault;
    std::string m_id;
    std::string m_otherId;
    std::uint16_t m_syncPort;
    std::uint16_t m_controlPort;
    std::unique_ptr<ChildProcess> m_process;
};

} // namespace diary::testing

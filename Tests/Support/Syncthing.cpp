// SPDX-License-Identifier: MIT
#include "Support/Syncthing.h"

#include "Support/LoopbackHttp.h"
#include "Support/WaitUntil.h"

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace diary::testing {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char *folderId = "diary";
constexpr const char *apiKey = "for-this-test-alone";

// The program that is not found ends as the shell's does.
constexpr int notFound = 127;

std::string deviceElement(const std::string &id, std::uint16_t port) {
    return R"(<device id=")" + id + R"("><address>tcp://127.0.0.1:)" + std::to_string(port) +
           "</address></device>\n";
}

bool says(const std::optional<std::string> &answer, std::string_view words) {
    return answer && answer->find(words) != std::string::npos;
}

} // namespace

bool Syncthing::isInstalled() {
    ChildProcess program({"syncthing", "--version"});
    return program.waitForExit() != notFound;
}

Syncthing::Syncthing(fs::path home, fs::path vault)
    : m_home(std::move(home)),
      m_vault(std::move(vault)),
      m_syncPort(freeLoopbackPort()),
      m_controlPort(freeLoopbackPort()) {
    fs::create_directories(m_home);
    // Without its marker the tool takes the folder for a disk that is not mounted.
    fs::create_directories(m_vault / ".stfolder");
    ChildProcess generating(
        {"syncthing", "generate", "--home=" + m_home.string(), "--no-default-folder", "--skip-port-probing"},
        environment());
    generating.waitForExit();
    constexpr std::string_view label = "Device ID: ";
    const auto output = generating.output() + generating.errors();
    const auto found = output.find(label);
    if (found == std::string::npos)
        throw std::runtime_error("no device: " + output);
    const auto start = found + label.size();
    m_id = output.substr(start, output.find('\n', start) - start);
}

Syncthing::~Syncthing() {
    if (!m_process || !m_process->isRunning())
        return;
    m_process->sendSignal(SIGTERM);
    m_process->waitForExit(5s);
}

std::map<std::string, std::string> Syncthing::environment() const {
    return {{"HOME", m_home.string()},
            {"XDG_CONFIG_HOME", m_home.string()},
            {"XDG_DATA_HOME", m_home.string()},
            {"XDG_STATE_HOME", m_home.string()},
            {"XDG_CACHE_HOME", m_home.string()},
            {"STNOUPGRADE", "1"},
            // It would take a second to find out which one is faster here.
            {"STHASHING", "standard"},
            // One process alone, without one above it to start it again.
            {"STMONITORED", "yes"}};
}

// The folder's settings are the tool's own defaults, which it takes for absent ones only in part.
void Syncthing::writeConfiguration(const Syncthing &other) const {
    std::ofstream file(m_home / "config.xml", std::ios::trunc);
    file << R"(<configuration version="36">
<folder id=")"
         << folderId << R"(" path=")" << m_vault.string() << R"(" type="sendreceive" rescanIntervalS="0"
        fsWatcherEnabled="true" fsWatcherDelayS="1" autoNormalize="true">
<device id=")"
         << m_id << R"("/><device id=")" << other.m_id << R"("/>
<maxConflicts>10</maxConflicts>
</folder>
)" << deviceElement(m_id, m_syncPort)
         << deviceElement(other.m_id, other.m_syncPort) << R"(
<gui enabled="true" tls="false"><address>127.0.0.1:)"
         << m_controlPort << "</address><apikey>" << apiKey << R"(</apikey></gui>
<options>
<listenAddress>tcp://127.0.0.1:)"
         << m_syncPort << R"(</listenAddress>
<globalAnnounceEnabled>false</globalAnnounceEnabled>
<localAnnounceEnabled>false</localAnnounceEnabled>
<relaysEnabled>false</relaysEnabled>
<natEnabled>false</natEnabled>
<stunServer></stunServer>
<startBrowser>false</startBrowser>
<urAccepted>-1</urAccepted>
<crashReportingEnabled>false</crashReportingEnabled>
<autoUpgradeIntervalH>0</autoUpgradeIntervalH>
<reconnectionIntervalS>5</reconnectionIntervalS>
<setLowPriority>false</setLowPriority>
</options>
</configuration>
)";
}

bool Syncthing::start(const Syncthing &other) {
    m_otherId = other.m_id;
    writeConfiguration(other);
    m_process = std::make_unique<ChildProcess>(
        std::vector<std::string>{"syncthing", "serve", "--home=" + m_home.string(), "--no-browser",
                                 "--no-restart", "--no-upgrade", "--no-default-folder"},
        environment());
    return waitUntil([this] { return ask("GET", "system/ping").has_value() || !m_process->isRunning(); }) &&
           m_process->isRunning();
}

std::optional<std::string> Syncthing::ask(std::string_view method, const std::string &path,
                                          const std::string &body) const {
    return askLoopback(
        m_controlPort,
        {.method = method, .path = "/rest/" + path, .headers = {{"X-API-Key", apiKey}}, .body = body});
}

// Pausing the whole device would do as well, but resuming it takes five seconds or more.
void Syncthing::cutOff() const {
    ask("PATCH", std::string("config/folders/") + folderId, R"({"paused": true})");
}

void Syncthing::reconnect() const {
    ask("PATCH", std::string("config/folders/") + folderId, R"({"paused": false})");
}

bool Syncthing::isConnected() const {
    const auto answer = ask("GET", "system/connections");
    const auto device = answer ? answer->find('"' + m_otherId + '"') : std::string::npos;
    if (device == std::string::npos)
        return false;
    const auto details = std::string_view(*answer).substr(device);
    return details.substr(0, details.find('}')).find(R"("connected": true)") != std::string_view::npos;
}

void Syncthing::scan() const {
    ask("POST", std::string("db/scan?folder=") + folderId);
}

bool Syncthing::isInStep() const {
    const auto mine = ask("GET", std::string("db/status?folder=") + folderId);
    const auto theirs = ask("GET", std::string("db/completion?folder=") + folderId + "&device=" + m_otherId);
    return says(mine, R"("state": "idle")") && says(mine, R"("needTotalItems": 0,)") &&
           says(mine, R"("pullErrors": 0,)") && says(theirs, R"("needItems": 0,)") &&
           says(theirs, R"("needDeletes": 0,)") && isConnected();
}

std::string Syncthing::log() const {
    return m_process ? m_process->output() + m_process->errors() : std::string();
}

} // namespace diary::testing

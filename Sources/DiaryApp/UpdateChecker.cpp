// SPDX-License-Identifier: MIT
#include <DiaryApp/Clock.h>
#include <DiaryApp/ProgramModule.h>
#include <DiaryApp/QtExecutor.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/UpdateChecker.h>
#include <DiaryKit/UserDirectories.h>
#include <DiaryKit/Version.h>

#include <QCoreApplication>
#include <QObject>
#include <QPointer>
#include <QUrlQuery>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr const char *feedVariable = "DIARY_UPDATE_URL";
constexpr double secondsBetweenChecks = 86'400;

// Without a byte arriving, and for all of it: a server must not keep a check running for ever.
constexpr std::chrono::seconds networkTimeout{60};
constexpr std::chrono::minutes longestFeedTransfer{5};
constexpr std::chrono::hours longestArchiveTransfer{4};

std::string_view bytesOf(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

// None when it is no JSON object, or one whose members have not each a name of their own.
std::optional<Json> parseObject(const QByteArray &bytes) {
    std::set<std::string> names;
    bool isAmbiguous = false;
    const auto look = [&](int depth, Json::parse_event_t event, const Json &value) {
        if (depth == 1 && event == Json::parse_event_t::key)
            isAmbiguous |= !names.insert(value.get<std::string>()).second;
        return true;
    };
    const auto text = bytesOf(bytes);
    auto json = Json::parse(text.begin(), text.end(), look, false);
    return json.is_object() && !isAmbiguous ? std::optional(std::move(json)) : std::nullopt;
}

QString text(const Json &object, const char *key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? toQString(found->get_ref<const std::string &>())
                                                       : QString();
}

bool isVersion(const QString &text) {
    const auto isAllowed = [](QChar character) {
        return character < QChar(128) &&
               (character.isLetterOrNumber() || QStringView(u".-+_").contains(character));
    };
    return !text.isEmpty() && text.size() <= UpdateChecker::longestVersion &&
           std::all_of(text.begin(), text.end(), isAllowed);
}

bool isDigest(const QByteArray &lowerCase) {
    constexpr qsizetype digits = 64;
    return lowerCase.size() == digits && std::all_of(lowerCase.begin(), lowerCase.end(), [](char digit) {
               return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
           });
}

std::optional<QUrl> feedOfTheUser() {
    const QUrl url(qEnvironmentVariable(feedVariable), QUrl::StrictMode);
    return url.isValid() && !url.isEmpty() ? std::optional(url) : std::nullopt;
}

// A copy that processes inherit which are started meanwhile. Its number is out of the way of what a shell
// script opens, which would close it.
FileDescriptor inheritableCopy(const FileDescriptor &descriptor) {
    constexpr int lowest = 100;
    return FileDescriptor(::fcntl(descriptor.get(), F_DUPFD, lowest));
}

} // namespace

// Whatever calls foreign code does so last, or looks afterwards whether anyone still waits: an observer may
// have destroyed the checker.
class UpdateChecker::State : public std::enable_shared_from_this<State> {
public:
    State(Clock &clock, Settings &settings, Parts parts, Surroundings surroundings)
        : m_clock(clock),
          m_settings(settings),
          m_parts(std::move(parts)),
          m_surroundings(std::move(surroundings)),
          m_staging(m_surroundings.stagingFolder) {}

    const Surroundings &surroundings() const { return m_surroundings; }
    const UpdateStaging &staging() const { return m_staging; }
    bool isRunning() const { return m_isRunning; }
    const std::optional<QString> &pendingVersion() const { return m_pendingVersion; }
    const std::optional<QString> &downloadingVersion() const { return m_downloadingVersion; }

    bool isSupported() const {
        const auto &bundle = m_surroundings.bundle;
        return bundle.native().ends_with(".app") && ::access(bundle.parent_path().c_str(), W_OK | X_OK) == 0;
    }

    bool isDue() const {
        return isSupported() && m_settings.autoUpdate() && !m_pendingVersion && !m_isHandedOver &&
               now() - m_settings.lastUpdateCheck() > secondsBetweenChecks;
    }

    QUrl feedURL() const;

    void run(std::function<void(const CheckResult &)> completion);
    void install();

    // Nobody waits any more.
    void end() {
        m_hasEnded = true;
        *m_stop = true;
    }

    struct Observed {
        QPointer<QObject> context;
        Observer observer;
    };
    std::vector<Observed> downloadingObservers;
    std::vector<Observed> readyObservers;

private:
    // A step on another thread, with what it found, and the one that comes after it here.
    using Work = std::function<fs::path()>;
    using Next = void (State::*)(const fs::path &);

    double now() const { return std::chrono::duration<double>(m_clock.now().time_since_epoch()).count(); }

    template <typename Step>
    auto whileAwaited(Step step);
    void inBackground(Work work, Next next);
    void download(const QUrl &url, std::chrono::milliseconds longest, std::int64_t largest,
                  void (State::*next)(const QByteArray &));
    UpdateTools::Completion orFail(void (State::*next)());

    bool mayCheck();
    void requestFeed();
    void readFeed(const QByteArray &body);
    void prepare();
    void requestArchive(const fs::path &);
    void storeArchive(const QByteArray &body);
    void unpack(const fs::path &);
    void findApplication();
    void verify(const fs::path &application);
    void stage();

    bool tell(std::vector<Observed> &observers, const QString &version);
    void forgetStaged();
    void fail(const QString &error);
    void finishFailed(const fs::path &) { finish(Failed{m_error}); }
    void finish(const CheckResult &result);

    Clock &m_clock;
    Settings &m_settings;
    Parts m_parts;
    Surroundings m_surroundings;
    UpdateStaging m_staging;
    std::unique_ptr<Downloader> m_downloader;
    std::unique_ptr<UpdateTools> m_tools;
    std::shared_ptr<std::atomic<bool>> m_stop = std::make_shared<std::atomic<bool>>(false);

    // Set from the first step that needs the staging folder to the last.
    std::optional<FileDescriptor> m_claim;
    bool m_isRunning = false;
    bool m_isHandedOver = false; // the staging folder is the install script's
    bool m_hasEnded = false;
    std::function<void(const CheckResult &)> m_completion;
    QUrl m_feed;
    Manifest m_manifest;
    fs::path m_application; // unpacked
    QString m_error;
    std::optional<QString> m_downloadingVersion;
    std::optional<QString> m_pendingVersion;
    fs::path m_pendingBundle;
    // Last, so that its threads have ended before anything else goes.
    QtExecutor m_executor;
};

template <typename Step>
auto UpdateChecker::State::whileAwaited(Step step) {
    return [weak = weak_from_this(), step](const auto &...values) {
        const auto state = weak.lock();
        if (state && !state->m_hasEnded)
            step(*state, values...);
    };
}

void UpdateChecker::State::inBackground(Work work, Next next) {
    const auto resume = whileAwaited([next](State &state, const fs::path &found, const QString &error) {
        if (error.isEmpty())
            (state.*next)(found);
        else
            state.fail(error);
    });
    m_executor.runInBackground(Executor::Priority::Utility,
                               [executor = &m_executor, work = std::move(work), resume] {
                                   fs::path found;
                                   QString error;
                                   try {
                                       found = work();
                                   } catch (const std::exception &exception) {
                                       error = toQString(exception.what());
                                   }
                                   executor->postToMain([resume, found, error] { resume(found, error); });
                               });
}

void UpdateChecker::State::download(const QUrl &url, std::chrono::milliseconds longest, std::int64_t largest,
                                    void (State::*next)(const QByteArray &)) {
    m_downloader->get({.url = url, .timeout = networkTimeout, .longest = longest, .largestBody = largest},
                      whileAwaited([next](State &state, const Downloader::Answer &answer) {
                          if (answer.error)
                              state.fail(*answer.error);
                          else
                              (state.*next)(answer.body);
                      }));
}

UpdateTools::Completion UpdateChecker::State::orFail(void (State::*next)()) {
    return whileAwaited([next](State &state, const std::optional<QString> &error) {
        if (error)
            state.fail(*error);
        else
            (state.*next)();
    });
}

QUrl UpdateChecker::State::feedURL() const {
    if (const auto url = feedOfTheUser())
        return *url;
    auto url = m_surroundings.feedAddress;
    QUrlQuery query;
    // A plus sign would be read as a blank.
    query.addQueryItem(QStringLiteral("v"),
                       QString::fromLatin1(QUrl::toPercentEncoding(m_surroundings.currentVersion)));
    url.setQuery(query);
    return url;
}

void UpdateChecker::State::run(std::function<void(const CheckResult &)> completion) {
    if (!isSupported())
        return completion(Failed{QStringLiteral("not run from a bundle that can be replaced")});
    if (m_isRunning)
        return completion(Failed{QStringLiteral("a check is already running")});
    if (m_isHandedOver)
        return completion(Failed{QStringLiteral("an update is being put in place")});
    m_isRunning = true;
    m_completion = std::move(completion);
    if (mayCheck())
        requestFeed();
}

bool UpdateChecker::State::mayCheck() {
    try {
        m_settings.setLastUpdateCheck(now());
        if (!m_claim)
            m_claim = m_staging.claim();
    } catch (const fs::filesystem_error &error) {
        fail(toQString(error.what()));
        return false;
    }
    if (!m_claim) {
        fail(QStringLiteral("another process is updating"));
        return false;
    }
    if (!m_downloader)
        m_downloader = m_parts.makeDownloader();
    if (!m_tools)
        m_tools = m_parts.makeTools();
    if (!m_downloader || !m_tools) {
        fail(QStringLiteral("the update module is not installed"));
        return false;
    }
    return true;
}

void UpdateChecker::State::requestFeed() {
    m_feed = feedURL();
    const bool isTheUsersOwn = feedOfTheUser().has_value();
    if (!Downloader::isEncrypted(m_feed) && !(isTheUsersOwn && Downloader::isOnThisMachine(m_feed)))
        return fail(QStringLiteral("the feed's address is not encrypted"));
    download(m_feed, longestFeedTransfer, largestFeed, &State::readFeed);
}

void UpdateChecker::State::readFeed(const QByteArray &body) {
    const auto manifest = Manifest::parse(body);
    if (!manifest)
        return fail(QStringLiteral("the feed cannot be read"));
    if (!Version::isNewer(toUtf8(manifest->version), toUtf8(m_surroundings.currentVersion)))
        return finish(UpToDate{});
    m_manifest = *manifest;
    m_downloadingVersion = m_manifest.version;
    if (tell(downloadingObservers, m_manifest.version))
        prepare();
}

void UpdateChecker::State::prepare() {
    // What a check before this one staged is in the folder that goes now.
    forgetStaged();
    if (!Downloader::mayLead(m_feed, m_manifest.url))
        return fail(QStringLiteral("the archive's address is not encrypted"));
    inBackground(
        [staging = m_staging] {
            staging.prepare();
            return fs::path();
        },
        &State::requestArchive);
}

void UpdateChecker::State::requestArchive(const fs::path &) {
    download(m_manifest.url, longestArchiveTransfer, largestArchive, &State::storeArchive);
}

void UpdateChecker::State::storeArchive(const QByteArray &body) {
    inBackground(
        [staging = m_staging, body, sha256 = m_manifest.sha256, stop = m_stop] {
            if (!hasDigest(bytesOf(body), bytesOf(sha256), *stop))
                throw fs::filesystem_error("the archive is corrupt", staging.archive(),
                                           std::make_error_code(std::errc::illegal_byte_sequence));
            replaceFileDurably(staging.archive(), bytesOf(body));
            return staging.archive();
        },
        &State::unpack);
}

void UpdateChecker::State::unpack(const fs::path &) {
    m_tools->unpack(m_staging.archive(), m_staging.folder(), orFail(&State::findApplication));
}

void UpdateChecker::State::findApplication() {
    inBackground([staging = m_staging] { return staging.application(); }, &State::verify);
}

void UpdateChecker::State::verify(const fs::path &application) {
    m_application = application;
    m_tools->verify(application,
                    {.version = m_manifest.version, .runningVersion = m_surroundings.currentVersion},
                    orFail(&State::stage));
}

void UpdateChecker::State::stage() {
    m_pendingBundle = m_application;
    m_pendingVersion = m_manifest.version;
    m_downloadingVersion.reset();
    if (tell(readyObservers, m_manifest.version))
        finish(UpdateFound{m_manifest.version});
}

bool UpdateChecker::State::tell(std::vector<Observed> &observers, const QString &version) {
    std::erase_if(observers, [](const Observed &observed) { return !observed.context; });
    // An observer may bring others, who are told the next time.
    const auto told = observers;
    for (const auto &[context, observer] : told) {
        if (!m_hasEnded && context)
            observer(version);
    }
    return !m_hasEnded;
}

void UpdateChecker::State::forgetStaged() {
    m_pendingVersion.reset();
    m_pendingBundle.clear();
}

void UpdateChecker::State::fail(const QString &error) {
    m_downloadingVersion.reset();
    m_error = error;
    // The folder is another process's.
    if (!m_claim)
        return finish(Failed{error});
    forgetStaged();
    inBackground(
        [staging = m_staging] {
            // Should something stay there, the next check removes it first, or fails as well.
            try {
                staging.remove();
            } catch (const fs::filesystem_error &) {
            }
            return fs::path();
        },
        &State::finishFailed);
}

void UpdateChecker::State::finish(const CheckResult &result) {
    m_isRunning = false;
    if (!m_pendingVersion)
        m_claim.reset();
    const auto completion = std::exchange(m_completion, nullptr);
    completion(result);
}

void UpdateChecker::State::install() {
    if (!m_pendingVersion)
        return;
    try {
        replaceFileDurably(m_staging.installScript(), bytesOf(m_tools->installScript()));
    } catch (const fs::filesystem_error &) {
        // The installed application stays, and the update is offered again.
        return;
    }
    // The script keeps the claim, so that nobody stages anything until it is done.
    const auto inherited = inheritableCopy(*m_claim);
    m_isHandedOver =
        m_tools->launchInstallScript(m_staging.installScript(), QCoreApplication::applicationPid(),
                                     m_pendingBundle, m_surroundings.bundle, m_staging.folder());
    if (m_isHandedOver) {
        forgetStaged();
        // The folder is the script's: a check under way must not touch it any more.
        end();
    }
}

std::optional<UpdateChecker::Manifest> UpdateChecker::Manifest::parse(const QByteArray &json) {
    const auto object = json.size() <= largestFeed ? parseObject(json) : std::nullopt;
    if (!object)
        return std::nullopt;
    Manifest manifest{.version = text(*object, "version"),
                      .url = QUrl(text(*object, "url"), QUrl::StrictMode),
                      .sha256 = text(*object, "sha256").toUtf8().toLower()};
    const bool isWhole = isVersion(manifest.version) && manifest.url.isValid() &&
                         !manifest.url.isRelative() && isDigest(manifest.sha256);
    return isWhole ? std::optional(manifest) : std::nullopt;
}

UpdateChecker::Surroundings UpdateChecker::surroundings() {
    // The program is in the folder "bin" of its bundle.
    const auto bundle = programFolder().parent_path();
    return {.bundle = bundle.extension() == ".app" ? bundle : fs::path(),
            .currentVersion = QCoreApplication::applicationVersion(),
            .stagingFolder = UserDirectories::data() / "Tavelo" / "Updates",
            .feedAddress = QUrl(QStringLiteral(TAVELO_UPDATE_FEED))};
}

UpdateChecker::UpdateChecker(Clock &clock, Settings &settings, Parts parts, Surroundings surroundings)
    : m_state(std::make_shared<State>(clock, settings, std::move(parts), std::move(surroundings))) {}

UpdateChecker::~UpdateChecker() {
    m_state->end();
}

bool UpdateChecker::isSupported() const {
    return m_state->isSupported();
}

const QString &UpdateChecker::currentVersion() const {
    return m_state->surroundings().currentVersion;
}

QUrl UpdateChecker::feedURL() const {
    return m_state->feedURL();
}

bool UpdateChecker::isRunning() const {
    return m_state->isRunning();
}

void UpdateChecker::checkIfDue() {
    if (m_state->isDue())
        runCheck([](const CheckResult &) {});
}

void UpdateChecker::runCheck(std::function<void(const CheckResult &)> completion) {
    // Held while it answers at once, which may be the end of the checker.
    const auto state = m_state;
    state->run(std::move(completion));
}

void UpdateChecker::installPendingUpdate() {
    m_state->install();
}

std::optional<UpdateStaging::Outcome> UpdateChecker::takeOutcome() {
    auto outcome = m_state->staging().takeOutcome();
    if (outcome && !outcome->reason.empty())
        qWarning("The update to %s was not installed: %s", outcome->version.c_str(), outcome->reason.c_str());
    return outcome;
}

std::optional<QString> UpdateChecker::pendingVersion() const {
    return m_state->pendingVersion();
}

std::optional<QString> UpdateChecker::downloadingVersion() const {
    return m_state->downloadingVersion();
}

void UpdateChecker::observeDownloading(QObject *context, Observer observer) {
    m_state->downloadingObservers.push_back({context, std::move(observer)});
}

void UpdateChecker::observeReady(QObject *context, Observer observer) {
    m_state->readyObservers.push_back({context, std::move(observer)});
}

} // namespace diary

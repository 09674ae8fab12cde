// SPDX-License-Identifier: MIT
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryKit/VaultLocation.h>

#include <QFontDatabase>
#include <QSet>

#include <utility>

namespace diary {

namespace {

// These are the names in the settings file.
constexpr const char *vaultPathKey = "vaultPath";
constexpr const char *editorFontSizeKey = "editorFontSize";
constexpr const char *bodyFontFamilyKey = "bodyFontFamily";
constexpr const char *showGapYearsKey = "showGapYears";
constexpr const char *showPhotosKey = "showPhotos";
constexpr const char *autoUpdateKey = "autoUpdate";
constexpr const char *lastUpdateCheckKey = "lastUpdateCheck";
constexpr const char *hasOnboardedKey = "hasOnboarded";
constexpr const char *photoFoldersKey = "photoFolders";
constexpr const char *languageOverrideKey = "languageOverride";

std::optional<QString> text(const Defaults &defaults, const char *key) {
    const auto stored = defaults.string(key);
    return stored ? std::optional(toQString(*stored)) : std::nullopt;
}

void setOrRemove(Defaults &defaults, const char *key, const std::optional<std::string> &value) {
    if (value)
        defaults.set(key, *value);
    else
        defaults.remove(key);
}

std::optional<std::string> inUtf8(const std::optional<QString> &value) {
    return value ? std::optional(toUtf8(*value)) : std::nullopt;
}

} // namespace

Settings::Settings(Defaults defaults) : m_defaults(std::move(defaults)) {}

Settings &Settings::shared() {
    static Settings settings{Defaults()};
    return settings;
}

double Settings::editorFontSize() const {
    const double points = m_defaults.number(editorFontSizeKey).value_or(defaultEditorFontSize);
    const bool canBeShown = points >= 4 && points <= 288;
    return canBeShown ? points : defaultEditorFontSize;
}

void Settings::setEditorFontSize(double points) {
    m_defaults.set(editorFontSizeKey, points);
}

bool Settings::showGapYears() const {
    return m_defaults.boolean(showGapYearsKey).value_or(true);
}

void Settings::setShowGapYears(bool show) {
    m_defaults.set(showGapYearsKey, show);
}

bool Settings::showPhotos() const {
    return m_defaults.boolean(showPhotosKey).value_or(true);
}

void Settings::setShowPhotos(bool show) {
    m_defaults.set(showPhotosKey, show);
}

bool Settings::autoUpdate() const {
    return m_defaults.boolean(autoUpdateKey).value_or(true);
}

void Settings::setAutoUpdate(bool update) {
    m_defaults.set(autoUpdateKey, update);
}

double Settings::lastUpdateCheck() const {
    return m_defaults.number(lastUpdateCheckKey).value_or(0);
}

void Settings::setLastUpdateCheck(double seconds) {
    m_defaults.set(lastUpdateCheckKey, seconds);
}

std::optional<QString> Settings::bodyFontFamily() const {
    return text(m_defaults, bodyFontFamilyKey);
}

void Settings::setBodyFontFamily(const std::optional<QString> &family) {
    setOrRemove(m_defaults, bodyFontFamilyKey, inUtf8(family));
}

std::optional<QString> Settings::languageOverride() const {
    return text(m_defaults, languageOverrideKey);
}

void Settings::setLanguageOverride(const std::optional<QString> &code) {
    setOrRemove(m_defaults, languageOverrideKey, inUtf8(code));
}

std::optional<std::filesystem::path> Settings::vaultPath() const {
    return m_defaults.string(vaultPathKey);
}

void Settings::setVaultPath(const std::optional<std::filesystem::path> &path) {
    setOrRemove(m_defaults, vaultPathKey, path ? std::optional(path->native()) : std::nullopt);
}

std::vector<std::filesystem::path> Settings::photoFolders() const {
    const auto stored = m_defaults.stringList(photoFoldersKey).value_or(std::vector<std::string>());
    return {stored.begin(), stored.end()};
}

void Settings::setPhotoFolders(const std::vector<std::filesystem::path> &folders) {
    if (folders.empty())
        m_defaults.remove(photoFoldersKey);
    else
        m_defaults.set(photoFoldersKey, std::vector<std::string>(folders.begin(), folders.end()));
}

void Settings::setHasOnboarded(bool hasOnboarded) {
    m_defaults.set(hasOnboardedKey, hasOnboarded);
}

bool Settings::needsOnboarding() const {
    if (m_defaults.boolean(hasOnboardedKey).value_or(false) || vaultPath())
        return false;
    const auto cloudVault = VaultLocation::cloudVault();
    return cloudVault && !VaultLocation::hasDiaryFiles(VaultLocation::localVault()) &&
           !VaultLocation::hasDiaryFiles(*cloudVault);
}

const QStringList &Settings::bodyFontChoices() {
    static const QStringList families = {QStringLiteral("Songti SC"),
                                         QStringLiteral("Noto Serif SC"),
                                         QStringLiteral("Source Han Serif SC"),
                                         QStringLiteral("Kaiti SC"),
                                         QStringLiteral("STKaiti"),
                                         QStringLiteral("LXGW WenKai"),
                                         QStringLiteral("PingFang SC"),
                                         QStringLiteral("Hiragino Sans GB"),
                                         QStringLiteral("New York"),
                                         QStringLiteral("Charter"),
                                         QStringLiteral("Iowan Old Style"),
                                         QStringLiteral("Georgia"),
                                         QStringLiteral("Palatino")};
    return families;
}

QStringList Settings::availableBodyFonts() {
    const auto families = QFontDatabase::families();
    const QSet<QString> installed(families.begin(), families.end());
    QStringList available;
    for (const auto &family : bodyFontChoices()) {
        if (installed.contains(family))
            available.append(family);
    }
    return available;
}

} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/Localization.h>
#include <DiaryApp/ProgramModule.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryKit/DurableFile.h>

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QPointer>
#include <QThread>

#include <algorithm>
#include <system_error>
#include <utility>

namespace diary {

namespace {

struct Placeholder {
    bool isNumber = false;
    qsizetype position = 0; // counted from 1; 0 for the next one in order
    qsizetype length = 0;
};

// Of a text that begins with a percent sign.
std::optional<Placeholder> placeholderAtStart(QStringView text) {
    constexpr qsizetype mostArguments = 99;
    Placeholder found;
    qsizetype at = 1;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at)
        found.position = std::min(found.position * 10 + (text[at].unicode() - u'0'), mostArguments);
    if (at > 1) {
        if (found.position == 0 || at == text.size() || text[at] != u'$')
            return std::nullopt;
        ++at;
    }
    if (at == text.size() || (text[at] != u'd' && text[at] != u'@'))
        return std::nullopt;
    found.isNumber = text[at] == u'd';
    found.length = at + 1;
    return found;
}

std::optional<QString> replacement(bool isNumber, const TextArgument &argument) {
    if (const auto *number = std::get_if<qlonglong>(&argument); number && isNumber)
        return QString::number(*number);
    if (const auto *text = std::get_if<QString>(&argument); text && !isNumber)
        return *text;
    return std::nullopt;
}

} // namespace

QString formatted(const QString &pattern, const std::vector<TextArgument> &arguments) {
    QString result;
    std::size_t nextInOrder = 0;
    for (qsizetype at = 0; at < pattern.size();) {
        const auto rest = QStringView(pattern).sliced(at);
        if (rest.startsWith(QLatin1String("%%"))) {
            result += u'%';
            at += 2;
            continue;
        }
        const auto placeholder = rest.front() == u'%' ? placeholderAtStart(rest) : std::nullopt;
        if (!placeholder) {
            result += rest.front();
            ++at;
            continue;
        }
        const auto index =
            placeholder->position > 0 ? static_cast<std::size_t>(placeholder->position - 1) : nextInOrder++;
        const auto text =
            index < arguments.size() ? replacement(placeholder->isNumber, arguments[index]) : std::nullopt;
        result += text ? *text : rest.first(placeholder->length).toString();
        at += placeholder->length;
    }
    return result;
}

QString L(const char *key) {
    const auto text = Localization::bundle().text(key);
    return text ? *text : QString::fromUtf8(key);
}

namespace Localization {

namespace {

const auto english = QStringLiteral("en");
const auto simplifiedChinese = QStringLiteral("zh-Hans");

constexpr const char *context = "Diary";
constexpr const char *bundleName = "Diary_DiaryApp.bundle";
constexpr const char *tableName = "Localizable.qm";

bool isFolder(const std::filesystem::path &path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

bool isFile(const std::filesystem::path &path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored);
}

std::filesystem::path folderOf(const QString &code) {
    return toUtf8(code) + ".lproj";
}

// Qt offers the languages of $LANGUAGE even then, unlike every program that goes by gettext's rules.
bool isSystemWithoutLanguage() {
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const auto value = qgetenv(name);
        if (!value.isEmpty())
            return value == "C" || value == "POSIX" || value.startsWith("C.");
    }
    return true;
}

std::unique_ptr<Bundle> ownTexts(const std::filesystem::path &resourceBundle) {
    const bool hasTable = isFile(resourceBundle / tableName);
    return std::make_unique<Bundle>(hasTable ? resourceBundle : resourceBundle / folderOf(english), english);
}

// Goes with the application, which it belongs to.
QPointer<QTranslator> &qtTexts() {
    static QPointer<QTranslator> translator;
    return translator;
}

// English is what Qt speaks without any table.
void setQtLanguage(const QString &code) {
    delete qtTexts().data();
    if (code == english || !QCoreApplication::instance())
        return;
    const auto name = code == simplifiedChinese ? QStringLiteral("zh_CN") : code;
    auto translator = std::make_unique<QTranslator>(QCoreApplication::instance());
    if (!translator->load(QStringLiteral("qtbase_") + name,
                          QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        return;
    qtTexts() = translator.release();
    QCoreApplication::installTranslator(qtTexts());
}

std::unique_ptr<Bundle> &currentBundle() {
    static std::unique_ptr<Bundle> current;
    return current;
}

} // namespace

const QStringList &supported() {
    static const QStringList codes = {english,
                                      simplifiedChinese,
                                      QStringLiteral("ja"),
                                      QStringLiteral("ko"),
                                      QStringLiteral("fr"),
                                      QStringLiteral("de"),
                                      QStringLiteral("es"),
                                      QStringLiteral("ru")};
    return codes;
}

const QStringList &displayNames() {
    static const QStringList names = {QStringLiteral("English"),  QStringLiteral("简体中文"),
                                      QStringLiteral("日本語"),   QStringLiteral("한국어"),
                                      QStringLiteral("Français"), QStringLiteral("Deutsch"),
                                      QStringLiteral("Español"),  QStringLiteral("Русский")};
    return names;
}

std::optional<QString> overrideLanguage() {
    const auto wanted = qEnvironmentVariable("DIARY_LANGUAGE");
    if (supported().contains(wanted))
        return wanted;
    const auto stored = Settings::shared().languageOverride();
    return stored && !stored->isEmpty() ? stored : std::nullopt;
}

QStringList preferredLanguages() {
    return isSystemWithoutLanguage() ? QStringList() : QLocale::system().uiLanguages();
}

QString bestMatch(const QStringList &preferences) {
    for (const auto &preference : preferences) {
        const QLocale wanted(preference);
        const auto match =
            std::find_if(supported().begin(), supported().end(), [&wanted](const QString &code) {
                const QLocale offered(code);
                return offered.language() == wanted.language() && offered.script() == wanted.script();
            });
        if (match != supported().end())
            return *match;
    }
    return {};
}

QString effectiveLanguage() {
    if (const auto language = overrideLanguage())
        return *language;
    const auto match = bestMatch(preferredLanguages());
    return match.isEmpty() ? english : match;
}

QLocale locale() {
    const QLocale wanted(effectiveLanguage());
    const auto system = QLocale::system();
    // Not the system's locale itself, which may take the names of months from yet another language (LC_TIME).
    if (system.language() == wanted.language() && system.script() == wanted.script())
        return {wanted.language(), wanted.script(), system.territory()};
    return wanted;
}

Bundle::Bundle(const std::filesystem::path &folder, QString language) : m_language(std::move(language)) {
    // Read here, since the loader would look for files with similar names, and knows none that is not UTF-8.
    std::error_code error;
    if (auto bytes = readWholeFile(folder / tableName, error)) {
        m_bytes = std::move(*bytes);
        static_cast<void>(
            m_table.load(reinterpret_cast<const uchar *>(m_bytes.data()), static_cast<int>(m_bytes.size())));
    }
}

std::optional<QString> Bundle::text(const char *key) const {
    const auto text = m_table.translate(context, key);
    return text.isNull() ? std::nullopt : std::optional(text);
}

std::vector<std::filesystem::path> resourceBundleCandidates(const std::filesystem::path &programFolder) {
    const auto applicationFolder = programFolder.parent_path();
    std::vector<std::filesystem::path> candidates = {applicationFolder / "share/tavelo" / bundleName,
                                                     programFolder / bundleName};
    if (applicationFolder.extension() == ".app")
        candidates.push_back(applicationFolder.parent_path() / bundleName);
    return candidates;
}

std::filesystem::path findResourceBundle(const std::filesystem::path &programFolder) {
    const auto candidates = resourceBundleCandidates(programFolder);
    const auto found = std::find_if(candidates.begin(), candidates.end(), isFolder);
    return found == candidates.end() ? programFolder : *found;
}

const std::filesystem::path &resourceBundle() {
    static const auto found = findResourceBundle(programFolder());
    return found;
}

std::unique_ptr<Bundle> resolveBundle(const std::filesystem::path &resourceBundle,
                                      const QStringList &preferences) {
    const auto code = bestMatch(preferences);
    if (code.isEmpty())
        return ownTexts(resourceBundle);
    for (const auto &name : {code, code.toLower()}) {
        if (const auto folder = resourceBundle / folderOf(name); isFolder(folder))
            return std::make_unique<Bundle>(folder, code);
    }
    return ownTexts(resourceBundle);
}

std::unique_ptr<Bundle> resolveBundle() {
    const auto language = overrideLanguage();
    return resolveBundle(resourceBundle(), language ? QStringList(*language) : preferredLanguages());
}

const Bundle &bundle() {
    if (!currentBundle())
        setBundle(resolveBundle());
    return *currentBundle();
}

void setBundle(std::unique_ptr<Bundle> bundle) {
    Q_ASSERT(!QCoreApplication::instance() ||
             QThread::currentThread() == QCoreApplication::instance()->thread());
    setQtLanguage(bundle->language());
    currentBundle() = std::move(bundle);
}

} // namespace Localization

} // namespace diary

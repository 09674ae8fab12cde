// SPDX-License-Identifier: MIT
#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>
#include <QTranslator>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace diary {

// What a text's placeholder stands for: %d for a whole number, %@ for a text.
using TextArgument = std::variant<qlonglong, QString>;

// The pattern with its placeholders replaced in order: `%d` by a number in plain decimal digits, `%@` by a
// text, `%%` by a percent sign. A translation may name them by position instead, `%2$d`. A placeholder
// without an argument of its kind stands as it is.
QString formatted(const QString &pattern, const std::vector<TextArgument> &arguments);

// The text of a key in the language in use; the key itself when there is no translation. Main thread only.
QString L(const char *key);

// The same, formatted: L("%d chars", count).
template <typename... Arguments>
QString L(const char *key, const Arguments &...arguments) {
    const auto argument = [](const auto &value) -> TextArgument {
        if constexpr (std::is_integral_v<std::decay_t<decltype(value)>>)
            return static_cast<qlonglong>(value);
        else
            return QString(value);
    };
    return formatted(L(key), {argument(arguments)...});
}

// Which language the interface speaks, and where its texts are. Main thread only.
//
// Nothing but the bundle in use is remembered: the settings and the environment are read at each call.
namespace Localization {

// The codes of the languages offered, and in the same order their names, each in its own language.
const QStringList &supported();
const QStringList &displayNames();

// The user's choice: DIARY_LANGUAGE when it is one of the supported codes, else what the settings hold, which
// may be any code.
std::optional<QString> overrideLanguage();

// The names of the languages that the system prefers, best first, such as "de-AT". Empty for a system that
// speaks no language in particular (the C locale).
QStringList preferredLanguages();

// The supported code for the first preference that has one; empty when none has. A preference matches the
// language whatever the country, but never in another script: "de-AT" is "de", "zh-TW" is not "zh-Hans".
QString bestMatch(const QStringList &preferences);

// The override as it stands, else the best match for the system's preferences, else "en".
QString effectiveLanguage();

// The conventions of that language, with the user's own country when the system speaks it too: its names of
// months and weekdays always go with the texts.
QLocale locale();

// The texts of one language: the table `Localizable.qm` of one folder.
class Bundle {
public:
    // A folder without a table that can be read has no texts.
    Bundle(const std::filesystem::path &folder, QString language);

    // One of the supported codes.
    const QString &language() const { return m_language; }

    // None when the table lacks the key.
    std::optional<QString> text(const char *key) const;

private:
    QString m_language;
    std::string m_bytes; // of the table
    QTranslator m_table;
};

// Where the resource bundle `Diary_DiaryApp.bundle` may stand for a program in a folder, best first: among
// the data of an installed program (`../share/tavelo`), beside the program (in a build), beside the
// application folder `….app` that the program's folder is in.
std::vector<std::filesystem::path> resourceBundleCandidates(const std::filesystem::path &programFolder);

// The first candidate that is there; without any the program's folder itself, which holds no texts.
std::filesystem::path findResourceBundle(const std::filesystem::path &programFolder);

// That of this program, found once.
const std::filesystem::path &resourceBundle();

// The bundle of the best match: its folder `<code>.lproj`, in lower case when only that is there. The
// resource bundle's own texts, which are the English ones, when nothing matches or the folder is missing.
std::unique_ptr<Bundle> resolveBundle(const std::filesystem::path &resourceBundle,
                                      const QStringList &preferences);

// For the override alone when there is one, else for the system's preferences.
std::unique_ptr<Bundle> resolveBundle();

// The bundle in use, resolved at the first call. After a change of language it is replaced whole:
// setBundle(resolveBundle()). Texts that are shown already stay as they are. Qt's own texts (the buttons of
// standard dialogs) follow the language.
const Bundle &bundle();
void setBundle(std::unique_ptr<Bundle> bundle);

} // namespace Localization

} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/RunProgram.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"

#include <DiaryApp/Localization.h>
#include <DiaryApp/Settings.h>
#include <DiaryApp/Text.h>
#include <DiaryApp/Theme.h>
#include <DiaryKit/DiaryStore.h>
#include <DiaryKit/YearSectionParser.h>

#include <QCoreApplication>
#include <QFile>
#include <QFontMetrics>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <set>

// So that a failed comparison shows the text and not its bytes.
inline void PrintTo(const QString &text, std::ostream *stream) {
    *stream << '"' << text.toStdString() << '"';
}

namespace diary {
namespace {

using testing::ProgramCall;
using testing::ScopedEnvironment;
using testing::TemporaryFolder;

constexpr auto tableName = "Localizable.qm";
const std::filesystem::path sourceFolder = TAVELO_SOURCE_FOLDER;

// Where the tests may choose the language: afterwards it is English again.
class LocalizationTest : public ::testing::Test {
protected:
    ~LocalizationTest() override {
        Settings::shared().setLanguageOverride(std::nullopt);
        qunsetenv("DIARY_LANGUAGE");
        useChosenLanguage();
    }

    static void store(const char *code) { Settings::shared().setLanguageOverride(QLatin1String(code)); }
    static void useChosenLanguage() { Localization::setBundle(Localization::resolveBundle()); }
};

// Placeholders

struct FormattedRow {
    const char *pattern;
    std::vector<TextArgument> arguments;
    const char *result;
};

TEST(Formatted, replacesPlaceholdersByArgumentsOfTheirKind) {
    const FormattedRow rows[] = {
        {"no placeholder", {}, "no placeholder"},
        {"", {12LL}, ""},
        {"%d years ago", {5LL}, "5 years ago"},
        {"year %d", {-44LL}, "year -44"},
        {"%d", {1234567LL}, "1234567"},
        {"Day %d / %d", {73LL, 365LL}, "Day 73 / 365"},
        {"Quit %@", {QStringLiteral("Tavelo")}, "Quit Tavelo"},
        {"%@: %d", {QStringLiteral("März"), 3LL}, "März: 3"},
        {"%%", {}, "%"},
        {"%d %%", {50LL}, "50 %"},
        {"%%d", {5LL}, "%d"},
        {"%%%d", {5LL}, "%5"},
        // By position, in any order and more than once; those in order are counted on their own.
        {"%2$d of %1$d", {1LL, 2LL}, "2 of 1"},
        {"%2$@, %1$d", {7LL, QStringLiteral("a")}, "a, 7"},
        {"%1$d %1$d", {7LL}, "7 7"},
        {"%2$d %d", {1LL, 2LL}, "2 1"},
        // An argument is never looked into.
        {"%@ %@", {QStringLiteral("%@"), QStringLiteral("b")}, "%@ b"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(formatted(QString::fromUtf8(row.pattern), row.arguments), QString::fromUtf8(row.result));
}

TEST(Formatted, leavesPlaceholdersWithoutAnArgumentOfTheirKind) {
    const FormattedRow rows[] = {
        {"%d", {}, "%d"},
        {"%d %d", {1LL}, "1 %d"},
        {"%d", {QStringLiteral("a")}, "%d"},
        {"%@", {1LL}, "%@"},
        // The wrong one is used up, so that those behind it still meet theirs.
        {"%d %@", {QStringLiteral("a"), QStringLiteral("b")}, "%d b"},
        {"%3$d", {1LL, 2LL}, "%3$d"},
        {"%1$@", {1LL}, "%1$@"},
        {"%0$d", {1LL}, "%0$d"},
        {"%99999999999999999999$d", {1LL}, "%99999999999999999999$d"},
        // None of these is a placeholder.
        {"100 %", {1LL}, "100 %"},
        {"%s %i %5d %1$ %1$x", {1LL}, "%s %i %5d %1$ %1$x"},
        {"% d", {1LL}, "% d"},
        {"%1", {1LL}, "%1"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(formatted(QString::fromUtf8(row.pattern), row.arguments), QString::fromUtf8(row.result));
}

// Languages

TEST(Localization, offersEightLanguagesEachUnderItsOwnName) {
    EXPECT_EQ(Localization::supported().join(u' '), QStringLiteral("en zh-Hans ja ko fr de es ru"));
    EXPECT_EQ(Localization::displayNames().join(u' '),
              QStringLiteral("English 简体中文 日本語 한국어 Français Deutsch Español Русский"));
}

struct MatchRow {
    const char *preferences; // separated by spaces
    const char *code;
};

TEST(Localization, picksTheFirstPreferenceThatIsOffered) {
    const MatchRow rows[] = {
        {"en", "en"},
        {"EN", "en"},
        {"en-GB", "en"},
        {"en_US", "en"},
        {"en-US-POSIX", "en"},
        {"de-AT", "de"},
        {"de_CH.UTF-8@euro", "de"},
        {"fr-CA", "fr"},
        {"es-419", "es"},
        {"ru-UA", "ru"},
        {"ja-JP", "ja"},
        {"ko-Kore-KR", "ko"},
        // Chinese only where it is written with simplified characters.
        {"zh-Hans", "zh-Hans"},
        {"zh-hans", "zh-Hans"},
        {"zh", "zh-Hans"},
        {"zh-CN", "zh-Hans"},
        {"zh_SG", "zh-Hans"},
        {"zh-Hans-CN", "zh-Hans"},
        {"zh-Hans-HK", "zh-Hans"},
        {"zh-TW", ""},
        {"zh-HK", ""},
        {"zh-MO", ""},
        {"zh-Hant", ""},
        {"zh-Hant-CN", ""},
        {"zh-TW ja", "ja"},
        {"zh-TW zh-CN", "zh-Hans"},
        // The order is the user's and not ours.
        {"pt", ""},
        {"pt-BR", ""},
        {"pt-BR fr de", "fr"},
        {"ru en", "ru"},
        // Neighbours of an offered language are languages of their own.
        {"gsw", ""},
        {"uk", ""},
        {"ca gl eu", ""},
        {"xx", ""},
        {"C", ""},
        {"", ""},
        {"xx de", "de"},
    };
    for (const auto &[preferences, code] : rows)
        EXPECT_EQ(Localization::bestMatch(QString::fromUtf8(preferences).split(u' ')), QLatin1String(code))
            << preferences;
    EXPECT_EQ(Localization::bestMatch({}), QString());
}

TEST_F(LocalizationTest, speaksEnglishInTheCLocale) {
    EXPECT_EQ(Localization::overrideLanguage(), std::nullopt);
    EXPECT_TRUE(Localization::preferredLanguages().isEmpty());
    EXPECT_EQ(Localization::effectiveLanguage(), QLatin1String("en"));
    EXPECT_EQ(L("Today"), QLatin1String("Today"));
    EXPECT_EQ(Localization::locale().standaloneMonthName(3), QLatin1String("March"));
}

TEST_F(LocalizationTest, ignoresAnEnvironmentWithoutASupportedCode) {
    for (const char *code : {"xx", "", "DE", "de-AT", "de_DE", "zh", " de"}) {
        const ScopedEnvironment environment("DIARY_LANGUAGE", code);
        EXPECT_EQ(Localization::overrideLanguage(), std::nullopt) << code;
        store("fr");
        EXPECT_EQ(Localization::overrideLanguage(), QLatin1String("fr")) << code;
        Settings::shared().setLanguageOverride(std::nullopt);
    }
}

TEST_F(LocalizationTest, prefersTheEnvironmentToTheStoredLanguage) {
    store("fr");
    const ScopedEnvironment environment("DIARY_LANGUAGE", "ja");
    EXPECT_EQ(Localization::effectiveLanguage(), QLatin1String("ja"));
    useChosenLanguage();
    EXPECT_EQ(L("Today"), QStringLiteral("今日"));
}

TEST_F(LocalizationTest, takesTheBestMatchOfAStoredLanguageThatIsNotOffered) {
    store("de-AT");
    useChosenLanguage();
    EXPECT_EQ(Localization::effectiveLanguage(), QLatin1String("de-AT"));
    EXPECT_EQ(L("Today"), QLatin1String("Heute"));
    EXPECT_EQ(Localization::locale().standaloneMonthName(1), QStringLiteral("Jänner"));
}

TEST_F(LocalizationTest, showsTheBundlesOwnTextsForAStoredLanguageWithoutAMatch) {
    store("pt");
    useChosenLanguage();
    EXPECT_EQ(L("GapLine", QStringLiteral("2024")), QLatin1String("Nothing written in 2024"));
}

TEST_F(LocalizationTest, hasNoOverrideOnceTheSystemsLanguageIsChosen) {
    store("fr");
    Settings::shared().setLanguageOverride(std::nullopt);
    EXPECT_FALSE(Settings::shared().defaults().string("languageOverride").has_value());
    EXPECT_EQ(Localization::effectiveLanguage(), QLatin1String("en"));
}

TEST_F(LocalizationTest, takesAnEmptyStoredLanguageForNone) {
    store("");
    EXPECT_EQ(Localization::overrideLanguage(), std::nullopt);
}

TEST_F(LocalizationTest, keepsTheTextsUntilTheBundleIsReplaced) {
    EXPECT_EQ(L("Today"), QLatin1String("Today"));
    store("ru");
    EXPECT_EQ(L("Today"), QLatin1String("Today"));
    useChosenLanguage();
    EXPECT_EQ(L("Today"), QStringLiteral("Сегодня"));
}

TEST_F(LocalizationTest, showsTheKeyWhereThereIsNoText) {
    store("de");
    useChosenLanguage();
    EXPECT_EQ(L("There is no such key · %d", 3), QStringLiteral("There is no such key · 3"));
    EXPECT_EQ(L("NoSuchNotice"), QLatin1String("NoSuchNotice"));
}

struct QtRow {
    const char *code;
    const char *cancel;
};

TEST_F(LocalizationTest, makesStandardDialogsSpeakTheLanguage) {
    const QtRow rows[] = {{"de", "Abbrechen"},  {"fr", "Annuler"}, {"es", "Cancelar"},  {"ru", "Отмена"},
                          {"ja", "キャンセル"}, {"ko", "취소"},    {"zh-Hans", "取消"}, {"en", "Cancel"}};
    for (const auto &[code, cancel] : rows) {
        store(code);
        useChosenLanguage();
        EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QString::fromUtf8(cancel)) << code;
    }
}

TEST_F(LocalizationTest, namesMonthsInTheLanguageInUse) {
    const std::pair<const char *, const char *> rows[] = {
        {"de", "März"}, {"fr", "mars"}, {"ru", "март"}, {"ja", "3月"}, {"zh-Hans", "三月"}};
    for (const auto &[code, march] : rows) {
        store(code);
        EXPECT_EQ(Localization::locale().standaloneMonthName(3), QString::fromUtf8(march)) << code;
    }
}

// Bundles

TEST(LocalizationBundle, isLookedForAmongTheInstalledDataThenBesideTheProgramThenBesideTheApplication) {
    using Paths = std::vector<std::filesystem::path>;
    EXPECT_EQ(Localization::resourceBundleCandidates("/usr/bin"),
              (Paths{"/usr/share/tavelo/Diary_DiaryApp.bundle", "/usr/bin/Diary_DiaryApp.bundle"}));
    EXPECT_EQ(Localization::resourceBundleCandidates("/opt/Tavelo.app/bin"),
              (Paths{"/opt/Tavelo.app/share/tavelo/Diary_DiaryApp.bundle",
                     "/opt/Tavelo.app/bin/Diary_DiaryApp.bundle", "/opt/Diary_DiaryApp.bundle"}));
}

TEST(LocalizationBundle, isTheFirstCandidateThatIsThere) {
    const TemporaryFolder folder;
    const auto programFolder = folder / "Tavelo.app/bin";
    EXPECT_EQ(Localization::findResourceBundle(programFolder), programFolder);
    auto candidates = Localization::resourceBundleCandidates(programFolder);
    std::reverse(candidates.begin(), candidates.end());
    for (const auto &candidate : candidates) {
        std::filesystem::create_directories(candidate);
        EXPECT_EQ(Localization::findResourceBundle(programFolder), candidate);
    }
}

TEST(LocalizationBundle, isNotAFile) {
    const TemporaryFolder folder;
    folder.write("bin/Diary_DiaryApp.bundle", "");
    EXPECT_EQ(Localization::findResourceBundle(folder / "bin"), folder / "bin");
}

class LanguageFolderTest : public ::testing::Test {
protected:
    // The table of one language under the name of another folder.
    void put(const char *language, const std::filesystem::path &folder) const {
        std::filesystem::create_directories(m_bundle / folder);
        const auto table = std::string(language) + ".lproj/" + tableName;
        std::filesystem::copy_file(Localization::resourceBundle() / table, m_bundle / folder / tableName);
    }

    QString today(const char *preference) const {
        const auto bundle = Localization::resolveBundle(m_bundle.path(), {QLatin1String(preference)});
        return bundle->text("Today").value_or(QStringLiteral("no text"));
    }

    TemporaryFolder m_bundle;
};

TEST_F(LanguageFolderTest, isNamedByTheCode) {
    put("en", "en.lproj");
    put("zh-Hans", "zh-Hans.lproj");
    EXPECT_EQ(today("zh-CN"), QStringLiteral("今天"));
}

TEST_F(LanguageFolderTest, mayBeNamedInLowerCase) {
    put("en", "en.lproj");
    put("zh-Hans", "zh-hans.lproj");
    EXPECT_EQ(today("zh-CN"), QStringLiteral("今天"));
}

TEST_F(LanguageFolderTest, mayStandWhereANameIsNotUtf8) {
    put("de", "caf\xe9/de.lproj");
    const auto bundle = Localization::resolveBundle(m_bundle / "caf\xe9", {QStringLiteral("de")});
    EXPECT_EQ(bundle->text("Today"), QStringLiteral("Heute"));
}

TEST_F(LanguageFolderTest, isReplacedByTheBundlesOwnTextsWhenMissing) {
    put("en", "en.lproj");
    EXPECT_EQ(today("de"), QLatin1String("Today"));
    put("fr", ".");
    EXPECT_EQ(today("de"), QStringLiteral("Aujourd’hui"));
}

TEST_F(LanguageFolderTest, hasNoTextsWithoutATableThatCanBeRead) {
    EXPECT_EQ(today("de"), QLatin1String("no text"));
    m_bundle.write("de.lproj/Localizable.qm", "no table");
    EXPECT_EQ(today("de"), QLatin1String("no text"));
    // Not even from a file with a similar name.
    put("fr", "fr.lproj");
    std::filesystem::rename(m_bundle / "fr.lproj/Localizable.qm", m_bundle / "fr.lproj/Localizable");
    EXPECT_EQ(today("fr"), QLatin1String("no text"));
}

// In a process of its own

using Lines = std::vector<std::string>;

Lines shownLanguage(const std::filesystem::path &program, std::map<std::string, std::string> environment) {
    const TemporaryFolder home;
    environment.emplace("HOME", home.path());
    ProgramCall call;
    call.program = program;
    call.environment = std::move(environment);
    const auto result = testing::runProgram(call);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    Lines lines;
    for (const auto &line : toQString(result.output).split(u'\n', Qt::SkipEmptyParts))
        lines.push_back(toUtf8(line));
    return lines;
}

struct ProcessRow {
    std::map<std::string, std::string> environment;
    Lines shown; // code, locale, March, Today, Cancel
};

TEST(LocalizationProcess, followsTheSystemsLanguages) {
    const auto program = testing::builtProgram("TAVELO_TEST_SHOW_LANGUAGE");
    const auto bundle = (program.parent_path() / "Diary_DiaryApp.bundle").string();
    const ProcessRow rows[] = {
        {{{"LC_ALL", "de_AT.UTF-8"}}, {"de", "de_AT", "März", "Heute", "Abbrechen"}},
        {{{"LC_ALL", "zh_SG.UTF-8"}}, {"zh-Hans", "zh_SG", "三月", "今天", "取消"}},
        {{{"LC_ALL", "zh_TW.UTF-8"}}, {"en", "en_US", "March", "Today", "Cancel"}},
        {{{"LC_ALL", "pt_BR.UTF-8"}}, {"en", "en_US", "March", "Today", "Cancel"}},
        {{{"LC_ALL", ""}, {"LANG", "ru_RU.UTF-8"}}, {"ru", "ru_RU", "март", "Сегодня", "Отмена"}},
        // A list of languages, of which the first is not offered.
        {{{"LC_ALL", ""}, {"LANG", "pt_BR.UTF-8"}, {"LANGUAGE", "pt_BR:fr:de"}},
         {"fr", "fr_FR", "mars", "Aujourd’hui", "Annuler"}},
        // Dates in the conventions of another country are still named in the language of the texts.
        {{{"LC_ALL", ""}, {"LANG", "en_GB.UTF-8"}, {"LC_TIME", "de_DE.UTF-8"}},
         {"en", "en_GB", "March", "Today", "Cancel"}},
        {{{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", "de"}}, {"en", "en_US", "March", "Today", "Cancel"}},
        {{{"LC_ALL", ""}}, {"en", "en_US", "March", "Today", "Cancel"}},
        // The user's choice beats the system; the country stays when the languages agree.
        {{{"LC_ALL", "de_AT.UTF-8"}, {"DIARY_LANGUAGE", "fr"}},
         {"fr", "fr_FR", "mars", "Aujourd’hui", "Annuler"}},
        {{{"LC_ALL", "fr_CA.UTF-8"}, {"DIARY_LANGUAGE", "fr"}},
         {"fr", "fr_CA", "mars", "Aujourd’hui", "Annuler"}},
    };
    for (const auto &row : rows) {
        auto expected = row.shown;
        expected.insert(expected.begin(), bundle);
        EXPECT_EQ(shownLanguage(program, row.environment), expected);
    }
}

TEST(LocalizationProcess, findsItsTextsInEveryTreeItIsInstalledInto) {
    const auto program = testing::builtProgram("TAVELO_TEST_SHOW_LANGUAGE");
    for (const char *tree : {"usr", "Tavelo.app"}) {
        const TemporaryFolder folder;
        const auto bundle = folder / tree / "share/tavelo/Diary_DiaryApp.bundle";
        std::filesystem::create_directories(folder / tree / "bin");
        std::filesystem::create_directories(bundle);
        std::filesystem::copy_file(program, folder / tree / "bin/show-language");
        std::filesystem::copy(Localization::resourceBundle(), bundle,
                              std::filesystem::copy_options::recursive);
        const auto shown = shownLanguage(folder / tree / "bin/show-language", {{"DIARY_LANGUAGE", "es"}});
        ASSERT_EQ(shown.size(), 6U) << tree;
        EXPECT_EQ(shown[0], bundle.string());
        EXPECT_EQ(shown[4], "Hoy");
    }
}

TEST(LocalizationProcess, showsTheKeysWithoutAnyResourceBundle) {
    const TemporaryFolder folder;
    std::filesystem::copy_file(testing::builtProgram("TAVELO_TEST_SHOW_LANGUAGE"), folder / "show-language");
    const auto shown = shownLanguage(folder / "show-language", {{"DIARY_LANGUAGE", "es"}});
    ASSERT_EQ(shown.size(), 6U);
    EXPECT_EQ(shown[0], folder.path().string());
    EXPECT_EQ(shown[4], "Today");
}

// The tables

struct Message {
    QString comment;
    QString translation;
    QString state; // what lrelease leaves out, or a person has not looked at yet
};

// By key; the order is the file's.
class Table {
public:
    explicit Table(const QString &code) {
        QFile file(pathToQString(sourceFolder / "Resources/translations") + QStringLiteral("/Localizable_") +
                   code + QStringLiteral(".ts"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        QXmlStreamReader xml(&file);
        QString key;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (xml.name() == QLatin1String("source")) {
                key = xml.readElementText();
                EXPECT_FALSE(m_messages.contains(key))
                    << key.toStdString() << " stands twice in " << toUtf8(code);
                m_keys.push_back(key);
            } else if (xml.name() == QLatin1String("extracomment")) {
                m_messages[key].comment = xml.readElementText();
            } else if (xml.name() == QLatin1String("translation")) {
                m_messages[key].state = xml.attributes().value(QLatin1String("type")).toString();
                m_messages[key].translation = xml.readElementText();
            } else if (xml.name() == QLatin1String("comment")) {
                ADD_FAILURE() << "a disambiguation, with which no text would be found: " << toUtf8(key);
            }
        }
        EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    }

    const std::vector<QString> &keys() const { return m_keys; }
    const Message &operator[](const QString &key) const { return m_messages.at(key); }
    bool contains(const QString &key) const { return m_messages.contains(key); }

private:
    std::vector<QString> m_keys;
    std::map<QString, Message> m_messages;
};

const Table &table(const QString &code) {
    static std::map<QString, Table> tables;
    return tables.try_emplace(code, code).first->second;
}

const Table &englishTable() {
    return table(QStringLiteral("en"));
}

// What argument each placeholder of a text takes, `d` or `@`, by its number.
std::map<int, QString> placeholders(const QString &text) {
    static const QRegularExpression pattern(QStringLiteral("%(?:%|(?:([1-9][0-9]*)\\$)?([d@]))"));
    std::map<int, QString> found;
    int inOrder = 0;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();) {
        const auto match = matches.next();
        if (match.captured(0) == QLatin1String("%%"))
            continue;
        found[match.captured(1).isEmpty() ? ++inOrder : match.captured(1).toInt()] = match.captured(2);
    }
    return found;
}

TEST(LocalizationTables, haveTheSameKeysAndNotesInTheSameOrder) {
    ASSERT_FALSE(englishTable().keys().empty());
    for (const auto &code : Localization::supported()) {
        EXPECT_EQ(table(code).keys(), englishTable().keys()) << toUtf8(code);
        for (const auto &key : englishTable().keys())
            EXPECT_EQ(table(code)[key].comment, englishTable()[key].comment) << toUtf8(code);
    }
}

TEST(LocalizationTables, sayWhatEveryTextIsFor) {
    for (const auto &key : englishTable().keys())
        EXPECT_FALSE(englishTable()[key].comment.isEmpty()) << toUtf8(key);
}

TEST(LocalizationTables, areComplete) {
    for (const auto &code : Localization::supported()) {
        for (const auto &key : table(code).keys()) {
            const auto &message = table(code)[key];
            EXPECT_EQ(message.state, QString()) << toUtf8(code) << ": " << toUtf8(key);
            EXPECT_FALSE(message.translation.isEmpty()) << toUtf8(code) << ": " << toUtf8(key);
            EXPECT_EQ(message.translation, message.translation.trimmed()) << toUtf8(code);
        }
    }
}

TEST(LocalizationTables, areWhatTheProgramShows) {
    for (const auto &code : Localization::supported()) {
        const auto bundle = Localization::resolveBundle(Localization::resourceBundle(), {code});
        for (const auto &key : table(code).keys())
            EXPECT_EQ(bundle->text(key.toUtf8().constData()), table(code)[key].translation) << toUtf8(code);
    }
}

TEST(LocalizationTables, keepEveryPlaceholderAndItsKind) {
    for (const auto &code : Localization::supported()) {
        for (const auto &key : table(code).keys()) {
            const auto &translation = table(code)[key].translation;
            EXPECT_EQ(placeholders(translation), placeholders(englishTable()[key].translation))
                << toUtf8(code) << ": " << toUtf8(translation);
            EXPECT_FALSE(translation.contains(QRegularExpression(QStringLiteral("%(?![%d@]|[1-9]\\$[d@])"))))
                << toUtf8(code) << ": " << toUtf8(translation);
        }
    }
    // A key that is an English phrase says what it takes; the others take what their English texts say.
    for (const auto &key : englishTable().keys()) {
        if (!placeholders(key).empty()) {
            EXPECT_EQ(placeholders(englishTable()[key].translation), placeholders(key)) << toUtf8(key);
        }
    }
}

TEST(LocalizationTables, leaveNoIdentifierInEnglish) {
    static const QRegularExpression identifier(QStringLiteral("^[A-Z][a-z0-9]+([A-Z]+[a-z0-9]+)+$"));
    for (const auto &key : englishTable().keys()) {
        if (identifier.match(key).hasMatch()) {
            EXPECT_NE(englishTable()[key].translation, key);
        }
    }
}

// The same word in both languages, or a name.
bool isSameInEnglish(const QString &code, const QString &key) {
    static const std::map<QString, std::set<QString>> same = {
        {QStringLiteral("ja"), {QStringLiteral("OK")}},
        {QStringLiteral("fr"),
         {QStringLiteral("OK"), QStringLiteral("Photos"), QStringLiteral("PhotosMark"),
          QStringLiteral("Source"), QStringLiteral("Version"), QStringLiteral("Version %@")}},
        {QStringLiteral("de"),
         {QStringLiteral("Feedback"), QStringLiteral("OK"), QStringLiteral("Version"),
          QStringLiteral("Version %@")}},
        {QStringLiteral("es"), {QStringLiteral("General"), QStringLiteral("%d d")}},
    };
    if (key == QLatin1String("Diary") || key == QLatin1String("iCloud Drive"))
        return true;
    const auto found = same.find(code);
    return found != same.end() && found->second.contains(key);
}

TEST(LocalizationTables, leaveNothingInEnglish) {
    for (const auto &code : Localization::supported()) {
        if (code == QLatin1String("en"))
            continue;
        for (const auto &key : table(code).keys()) {
            const auto &translation = table(code)[key].translation;
            if (isSameInEnglish(code, key))
                continue;
            EXPECT_NE(translation, englishTable()[key].translation) << toUtf8(code);
            EXPECT_NE(translation, key) << toUtf8(code);
        }
    }
}

TEST(LocalizationTables, areWrittenInTheScriptOfTheirLanguage) {
    const std::pair<const char *, const char *> rows[] = {{"zh-Hans", "\\p{Han}"},
                                                          {"ja", "[\\p{Han}\\p{Hiragana}\\p{Katakana}]"},
                                                          {"ko", "\\p{Hangul}"},
                                                          {"ru", "\\p{Cyrillic}"}};
    for (const auto &[language, letters] : rows) {
        const QRegularExpression script(QString::fromLatin1(letters));
        const auto code = QLatin1String(language);
        for (const auto &key : table(code).keys()) {
            if (isSameInEnglish(code, key))
                continue;
            EXPECT_TRUE(table(code)[key].translation.contains(script)) << language << ": " << toUtf8(key);
        }
    }
}

struct TypographyRow {
    const char *code;
    const char *wrong;
    const char *rule;
};

TEST(LocalizationTables, keepTheTypographyOfTheirLanguage) {
    const TypographyRow rows[] = {
        {"fr", "[^\\x{202F}][:;?!»]|«[^\\x{202F}]", "a thin no-break space before two-part punctuation"},
        {"fr", "['\"]", "’ and « »"},
        {"de", "['\"]", "„“ and ’"},
        {"de", "[^\\x{A0}]…", "a no-break space before …, which stands for missing words"},
        {"es", "['\"]", "« »"},
        {"es", "^[^¿]*\\?|^[^¡]*!", "¿? and ¡!"},
        {"ru", "['\"“”]", "« »"},
        {"zh-Hans", "\\p{Han}[,.:;?!()]|[,:;?!(]\\p{Han}", "full-width punctuation"},
        {"zh-Hans", "(?=\\p{L})\\p{Han}[A-Za-z0-9%]|[A-Za-z0-9@]\\p{Han}", "a space between Han and Latin"},
        {"zh-Hans", "[，。：；？！（）“”] | [，。：；？！（）]", "no space beside full-width punctuation"},
        {"ja", "[\\p{Han}\\p{Hiragana}\\p{Katakana}][,:;?!()]", "full-width punctuation"},
        {"ja", "[\\p{Han}\\p{Hiragana}\\p{Katakana}] (?![·#])[^\\s]", "no spaces"},
        {"en", "['\"]|\\.\\.\\.", "typographic quotes and ellipsis"},
    };
    for (const auto &[code, wrong, rule] : rows) {
        const QRegularExpression pattern(QString::fromUtf8(wrong),
                                         QRegularExpression::UseUnicodePropertiesOption);
        ASSERT_TRUE(pattern.isValid()) << wrong;
        for (const auto &key : table(QLatin1String(code)).keys()) {
            const auto &translation = table(QLatin1String(code))[key].translation;
            EXPECT_FALSE(translation.contains(pattern))
                << code << ": " << toUtf8(translation) << ": " << rule;
        }
    }
}

TEST(LocalizationTables, nameTheSameThingByTheSameWord) {
    for (const auto &code : Localization::supported()) {
        const auto text = [&code](const char *key) {
            return table(code)[QString::fromUtf8(key)].translation;
        };
        const auto menu = [&text](const char *key) {
            return text(key).remove(u'…').remove(QChar(QChar::Nbsp));
        };
        EXPECT_EQ(menu("Settings…"), text("Settings")) << toUtf8(code);
        EXPECT_EQ(menu("Find…"), text("Find")) << toUtf8(code);
        if (code != QLatin1String("en")) {
            EXPECT_EQ(text("Search"), text("Find")) << toUtf8(code);
        }
        EXPECT_TRUE(text("Years written: %d").startsWith(text("YearsWrittenLegend"))) << toUtf8(code);
        EXPECT_TRUE(text("This year · writing").startsWith(text("This year"))) << toUtf8(code);
    }
}

// The line is written into day files, and must stay a line of text there whatever stands around it.
TEST(LocalizationTables, haveAConflictMarkerThatIsHarmlessInADayFile) {
    const MonthDay day = *MonthDay::parse("03-14.md");
    std::set<std::string> markers;
    for (const auto &code : Localization::supported()) {
        const auto marker = toUtf8(table(code)[QStringLiteral("ConflictMarker")].translation);
        EXPECT_TRUE(markers.insert(marker).second) << marker;
        EXPECT_EQ(marker.find_first_of("\r\n"), std::string::npos) << marker;
        EXPECT_TRUE(marker.starts_with("*") && !marker.starts_with("* ") && !marker.starts_with("**"))
            << marker;
        EXPECT_TRUE(marker.ends_with("*")) << marker;
        EXPECT_EQ(std::count(marker.begin(), marker.end(), '*'), 2) << marker;
        EXPECT_EQ(YearSectionParser::closingOpenFence(marker), marker);

        const auto merged =
            YearSectionParser::mergingDocuments("# 03-14\n\n## 2024\n\nmine\n\n## 2023\n\nolder\n",
                                                "# 03-14\n\n## 2024\n\ntheirs\n", day, marker);
        const auto bodies = YearSectionParser::sectionBodies(merged);
        ASSERT_EQ(bodies.size(), 2U) << merged;
        EXPECT_EQ(bodies[1].body, "mine\n\n" + marker + "\n\ntheirs");
    }
    EXPECT_TRUE(markers.contains(DiaryStore::Options{}.conflictMarker));
}

// Room

struct RoomRow {
    std::vector<const char *> keys; // shown side by side
    QFont font;
    double width;
};

// In the widest of the faces that desktops commonly use for their interface.
QFont wide(QFont font) {
    font.setFamilies({QStringLiteral("DejaVu Sans")});
    return font;
}

QString widestNumber(QString text, const char *number) {
    return text.replace(QLatin1String("%d"), QLatin1String(number));
}

TEST(LocalizationTables, fitTheirControls) {
    const auto monoHead = Theme::mono(10.5, Theme::Weight::Regular, 1.47);
    const RoomRow rows[] = {
        {{"Random Day"}, wide(Theme::system(12)), 130},
        {{"Source"}, Theme::mono(12), 120},
        {{"Reader"}, Theme::mono(12), 120},
        {{"%d year sections"}, wide(Theme::system(11.5)), 200},
        {{"Viewing ## %d · %d chars"}, Theme::mono(10.5), 300},
        {{"MergedRemoteNotice"}, wide(Theme::system(11)), 560},
        {{"UpdateReadyNotice"}, wide(Theme::system(11)), 560},
        {{"Days not yet downloaded: %d"}, wide(Theme::system(11)), 560},
        {{"The diary folder could not be watched for changes."}, wide(Theme::system(11)), 560},
        {{"Day %d / %d"}, monoHead, 250},
        {{"This file has %d past-year sections"}, wide(Theme::system(12)), 560},
        {{"Write about this day in %d…"}, Theme::serif(16.5), 560},
        {{"This year"}, wide(Theme::system(10.5)), 84},
        {{"%d years ago"}, wide(Theme::system(10.5)), 84},
        {{"PhotosMark"}, monoHead, 76},
        {{"PhotosCaption"}, wide(Theme::system(11)), 460},
        {{"On This Day"}, monoHead, 230},
        {{"%d chars"}, Theme::mono(10.5), 150},
        {{"This year · writing"}, wide(Theme::system(10.5)), 220},
        {{"Add a past year"}, wide(Theme::system(12.5, Theme::Weight::Medium)), 220},
        {{"Back to Today"}, wide(Theme::system(12.5)), 145},
        {{"Days written"}, wide(Theme::system(11.5)), 125},
        {{"Earliest year"}, wide(Theme::system(11.5)), 150},
        {{"Total files"}, wide(Theme::system(11.5)), 150},
        {{"%d d"}, Theme::mono(9.5), 60},
        {{"YearsWrittenLegend"}, Theme::mono(10, Theme::Weight::Regular, 1.0), 250},
        {{"SearchPlaceholder"}, wide(Theme::system(13)), 330},
        {{"SearchNoResults"}, wide(Theme::system(13)), 330},
        {{"System Default"}, wide(Theme::system(13)), 300},
        {{"Default (Serif)"}, wide(Theme::system(13)), 300},
        {{"Choose…", "iCloud Drive", "Reset to Default"}, wide(Theme::system(11)), 288},
        {{"Choose…", "Cloud Drive", "Reset to Default"}, wide(Theme::system(11)), 288},
        {{"Show missing-year note"}, wide(Theme::system(13)), 350},
        {{"Show photos taken this day"}, wide(Theme::system(13)), 350},
        {{"Install updates automatically"}, wide(Theme::system(13)), 350},
        {{"Add Folder…", "PhotoAccessNotAsked"}, wide(Theme::system(11)), 336},
        {{"Add Folder…", "PhotoAccessDenied"}, wide(Theme::system(11)), 336},
        {{"Add Folder…", "PhotoAccessLimited"}, wide(Theme::system(11)), 336},
        {{"Add Folder…", "PhotoAccessAllowed"}, wide(Theme::system(11)), 336},
        {{"Check for Updates…"}, wide(Theme::system(11)), 230},
        {{"Checking…"}, wide(Theme::system(11)), 330},
        {{"UpToDateTitle"}, wide(Theme::system(11)), 330},
        {{"UpdateFailedTitle"}, wide(Theme::system(11)), 330},
        {{"Send Feedback…"}, wide(Theme::system(11)), 230},
        {{"FeedbackHint"}, wide(Theme::system(11)), 340},
        {{"OnboardICloud"}, wide(Theme::system(13)), 240},
        {{"OnboardLocal"}, wide(Theme::system(13)), 240},
        {{"Show Folder"}, wide(Theme::system(13)), 200},
        {{"Copy Diary"}, wide(Theme::system(13)), 200},
        {{"Start Empty"}, wide(Theme::system(13)), 200},
        {{"Cancel"}, wide(Theme::system(13)), 200},
        {{"Remove"}, wide(Theme::system(11)), 120},
    };
    for (const auto &code : Localization::supported()) {
        for (const auto &row : rows) {
            QString text;
            for (const char *key : row.keys)
                text += table(code)[QString::fromUtf8(key)].translation;
            text = widestNumber(text, row.width < 100 ? "88" : "8888")
                       .replace(QLatin1String("%@"), QLatin1String("Nextcloud"));
            EXPECT_LE(QFontMetrics(row.font).horizontalAdvance(text), row.width)
                << toUtf8(code) << ": " << toUtf8(text);
        }
    }
}

TEST(LocalizationTables, fitTheLabelColumnOfTheSettingsWordByWord) {
    const QFontMetrics metrics(wide(Theme::system(13)));
    constexpr int columnWidth = 84;
    for (const auto &code : Localization::supported()) {
        for (const char *key : {"Language", "Vault Location", "Body Font", "Editor Font Size", "Photo Access",
                                "Version", "Feedback"}) {
            const auto words = table(code)[QLatin1String(key)].translation.split(u' ');
            for (const auto &word : words) {
                EXPECT_LE(metrics.horizontalAdvance(word), columnWidth)
                    << toUtf8(code) << ": " << toUtf8(word);
            }
        }
    }
}

// The program

QString withoutEscapes(const QString &literal) {
    QString text;
    for (qsizetype at = 0; at < literal.size(); ++at) {
        if (literal[at] == u'\\' && at + 1 < literal.size())
            text += literal[++at] == u'n' ? u'\n' : literal[at];
        else
            text += literal[at];
    }
    return text;
}

// The first capture of the pattern holds string literals, one or more in a row, which the compiler joins.
std::set<QString> literalsInSources(const QString &pattern) {
    const QRegularExpression literals(pattern, QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression one(QStringLiteral("\"((?:[^\"\\\\\\n]|\\\\.)*)\""));
    std::set<QString> found;
    for (const auto &entry : std::filesystem::directory_iterator(sourceFolder / "Sources/DiaryApp")) {
        if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h")
            continue;
        QFile file(pathToQString(entry.path()));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << entry.path();
        const auto source = QString::fromUtf8(file.readAll());
        for (auto matches = literals.globalMatch(source); matches.hasNext();) {
            const auto group = matches.next().captured(1);
            QString joined;
            for (auto parts = one.globalMatch(group); parts.hasNext();)
                joined += withoutEscapes(parts.next().captured(1));
            found.insert(joined);
        }
    }
    return found;
}

const auto literalsInARow = QStringLiteral("((?:\"(?:[^\"\\\\\\n]|\\\\.)*\"\\s*)+)");

TEST(LocalizationTables, everyKeyInTheProgramHasATranslation) {
    const auto keys = literalsInSources(QStringLiteral("\\bL\\(\\s*") + literalsInARow);
    EXPECT_FALSE(keys.empty());
    for (const auto &code : Localization::supported()) {
        for (const auto &key : keys)
            EXPECT_TRUE(table(code).contains(key)) << toUtf8(code) << ": " << toUtf8(key);
    }
}

// Some are looked up from a list of theirs, so any literal counts.
TEST(LocalizationTables, everyKeyIsUsedByTheProgram) {
    const auto literals = literalsInSources(literalsInARow);
    for (const auto &key : englishTable().keys())
        EXPECT_TRUE(literals.contains(key)) << toUtf8(key);
}

} // namespace
} // namespace diary

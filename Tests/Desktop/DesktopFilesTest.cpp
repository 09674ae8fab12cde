// SPDX-License-Identifier: MIT
#include "InstalledTree.h"

#include <DiaryApp/DesktopActivation.h>
#include <DiaryApp/LaunchRequest.h>

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace diary {
namespace {

using ::testing::Contains;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const std::string id = DesktopActivation::applicationId;
// As locales are named in desktop files, besides English.
const std::vector<std::string> languages = {"zh_CN", "ja", "ko", "fr", "de", "es", "ru"};

std::optional<std::filesystem::path> findProgram(const std::string &name) {
    for (const auto *folder : {"/usr/local/bin", "/usr/bin", "/bin"}) {
        if (std::filesystem::exists(std::filesystem::path(folder) / name))
            return std::filesystem::path(folder) / name;
    }
    return std::nullopt;
}

// What stands in quotes or alone as a long option.
std::set<std::string> optionsIn(const std::string &text) {
    std::set<std::string> found;
    const std::regex option("--[a-z][a-z-]*");
    for (auto match = std::sregex_iterator(text.begin(), text.end(), option); match != std::sregex_iterator();
         ++match)
        found.insert(match->str());
    return found;
}

class DesktopFilesTest : public ::testing::Test {
protected:
    // Group to keys to values.
    using Groups = std::map<std::string, std::map<std::string, std::string>>;

    Groups desktopFile() const {
        Groups groups;
        std::istringstream lines(tree.read("share/applications/" + id + ".desktop"));
        std::string group;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with('['))
                group = line.substr(1, line.size() - 2);
            else if (const auto equals = line.find('='); equals != std::string::npos)
                groups[group][line.substr(0, equals)] = line.substr(equals + 1);
        }
        return groups;
    }

    // All that is said about a file by a program that checks it; an exit code other than zero is said too.
    static std::string verdict(const std::filesystem::path &program, std::vector<std::string> arguments) {
        const auto result = testing::runProgram(
            {.program = program, .arguments = std::move(arguments), .environment = {}, .input = {}});
        return result.output + result.errors +
               (result.exitCode == 0 ? "" : "exit code " + std::to_string(result.exitCode));
    }

    std::set<std::string> commandsOfCli() const {
        std::set<std::string> found;
        std::istringstream lines(tree.run("tavelo-cli", {"--help"}).output);
        const std::regex command("  ([a-z]+) +[a-z].*");
        bool isList = false;
        for (std::string line; std::getline(lines, line);) {
            std::smatch match;
            isList = line == "Commands:" || (isList && !line.empty());
            if (isList && std::regex_match(line, match, command))
                found.insert(match[1]);
        }
        return found;
    }
    std::set<std::string> optionsOfCli() const {
        auto found = optionsIn(tree.run("tavelo-cli", {"--help"}).output);
        for (const auto &command : commandsOfCli())
            found.merge(optionsIn(tree.run("tavelo-cli", {command, "--help"}).output));
        return found;
    }

    std::string manual(const std::string &name) const {
        // In the source a dash that is one is written with a backslash.
        return std::regex_replace(tree.read("share/man/man1/" + name + ".1"), std::regex("\\\\-"), "-");
    }

    testing::InstalledTree tree;
};

TEST_F(DesktopFilesTest, haveADesktopEntryWithNothingToSayAbout) {
    const auto program = findProgram("desktop-file-validate");
    if (!program)
        GTEST_SKIP() << "desktop-file-utils is not installed";
    EXPECT_EQ(verdict(*program, {tree / "share/applications" / (id + ".desktop")}), "");
}

TEST_F(DesktopFilesTest, speakEightLanguagesInTheMenu) {
    const auto groups = desktopFile();
    int texts = 0;
    for (const auto &[group, keys] : groups) {
        for (const auto &[key, value] : keys) {
            const bool isText = key == "GenericName" || key == "Comment" || key == "Keywords" ||
                                (key == "Name" && group != "Desktop Entry");
            if (!isText)
                continue;
            ++texts;
            for (const auto &language : languages) {
                ASSERT_TRUE(keys.contains(key + "[" + language + "]")) << group << key << language;
                EXPECT_NE(keys.at(key + "[" + language + "]"), value) << group << key << language;
            }
        }
    }
    EXPECT_EQ(texts, 5);
}

TEST_F(DesktopFilesTest, offerTheActionsThatTheProgramKnows) {
    const auto groups = desktopFile();
    std::istringstream actions(groups.at("Desktop Entry").at("Actions"));
    std::size_t count = 0;
    for (std::string action; std::getline(actions, action, ';'); ++count) {
        const auto known = launchActionNamed(QByteArray::fromStdString(action));
        ASSERT_TRUE(known.has_value()) << action;
        const auto &exec = groups.at("Desktop Action " + action).at("Exec");
        const auto option = exec.substr(exec.find("--"));
        const std::vector<const char *> words = {"tavelo", option.c_str()};
        EXPECT_EQ(parseCommandLine(2, words.data()).action, known) << exec;
    }
    EXPECT_EQ(count, groups.size() - 1);
    EXPECT_EQ(groups.at("Desktop Entry").at("Icon"), id);
}

TEST_F(DesktopFilesTest, haveMetainfoWithNothingToSayAbout) {
    const auto program = findProgram("appstreamcli");
    if (!program)
        GTEST_SKIP() << "appstream is not installed";
    const auto said = verdict(
        *program, {"validate", "--no-net", "--no-color", tree / "share/metainfo" / (id + ".metainfo.xml")});
    EXPECT_THAT(said, HasSubstr("Validation was successful"));
    EXPECT_THAT(said, Not(ContainsRegex("[EWI]: ")));
}

TEST_F(DesktopFilesTest, speakEightLanguagesInSoftwareCentres) {
    const auto text = tree.read("share/metainfo/" + id + ".metainfo.xml");
    const auto count = [&](const std::string &what) {
        int found = 0;
        for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
            ++found;
        return found;
    };
    for (const std::string tag : {"summary", "p", "li", "caption"}) {
        const auto english = count("<" + tag + ">");
        EXPECT_GT(english, 0) << tag;
        for (const auto &language : languages)
            EXPECT_EQ(count("<" + tag + " xml:lang=\"" + language + "\">"), english) << tag << language;
    }
}

TEST_F(DesktopFilesTest, haveManualsWithNothingToSayAbout) {
    for (const std::string name : {"tavelo", "tavelo-cli"}) {
        const auto page = (tree / "share/man/man1" / (name + ".1")).string();
        if (const auto mandoc = findProgram("mandoc")) {
            EXPECT_EQ(verdict(*mandoc, {"-Tlint", "-Wwarning", page}), "");
        }
        const auto man = findProgram("man");
        if (!man)
            GTEST_SKIP() << "man is not installed";
        const auto result = testing::runProgram({.program = *man,
                                                 .arguments = {"--warnings", "-E", "UTF-8", "-l", page},
                                                 .environment = {{"MANWIDTH", "80"}, {"MANPAGER", "cat"}},
                                                 .input = {}});
        EXPECT_EQ(result.errors, "") << name;
        EXPECT_THAT(result.output, HasSubstr("DIARY_ROOT")) << name;
    }
}

TEST_F(DesktopFilesTest, tellOfEveryOptionInTheManualsAndCompletions) {
    const auto check = [this](const std::string &program, const std::set<std::string> &options) {
        const auto page = manual(program);
        const auto bash = tree.read("share/bash-completion/completions/" + program);
        const auto zsh = tree.read("share/zsh/site-functions/_" + program);
        const auto fish = tree.read("share/fish/vendor_completions.d/" + program + ".fish");
        for (const auto &option : options) {
            const auto name = option.substr(2);
            // The page has "-" and the rest of the option's name behind the macro that sets a dash.
            EXPECT_THAT(page, ContainsRegex("Fl -" + name + "($|[^a-z-])")) << program;
            EXPECT_THAT(bash, HasSubstr(option)) << program;
            EXPECT_THAT(zsh, HasSubstr(option)) << program;
            EXPECT_THAT(fish, HasSubstr("-l " + name)) << program;
        }
    };
    const auto options = optionsIn(tree.run("tavelo", {"--help"}).output);
    EXPECT_THAT(options, Contains("--today"));
    check("tavelo", options);
    const auto cliOptions = optionsOfCli();
    EXPECT_THAT(cliOptions, Contains("--marker"));
    check("tavelo-cli", cliOptions);
}

TEST_F(DesktopFilesTest, tellOfEveryCommandInTheManualAndCompletions) {
    const auto commands = commandsOfCli();
    ASSERT_THAT(commands, Contains("resolve"));
    for (const auto &command : commands) {
        EXPECT_THAT(manual("tavelo-cli"), ContainsRegex("\n.It Cm " + command + "[ \n]"));
        EXPECT_THAT(tree.read("share/zsh/site-functions/_tavelo-cli"), HasSubstr(command + ":"));
        EXPECT_THAT(tree.read("share/fish/vendor_completions.d/tavelo-cli.fish"), HasSubstr("-a " + command));
    }
}

TEST_F(DesktopFilesTest, completeInBash) {
    const auto completed = [this](const std::string &program, const std::string &words) {
        const auto script = "source '" + (tree / "share/bash-completion/completions" / program).string() +
                            "'; COMP_WORDS=(" + words +
                            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
                            "$(complete -p " +
                            program + " | sed 's/.*-F \\([^ ]*\\) .*/\\1/'); echo \"${COMPREPLY[*]}\"";
        return verdict("/bin/bash", {"--norc", "-c", script});
    };
    EXPECT_EQ(completed("tavelo", "tavelo --s"), "--search --self-test\n");
    EXPECT_EQ(completed("tavelo-cli", "tavelo-cli re"), "resolve\n");
    EXPECT_EQ(completed("tavelo-cli", "tavelo-cli --root /tmp s"), "show search stats\n");
    EXPECT_EQ(completed("tavelo-cli", "tavelo-cli search --"), "--limit --json --root --help\n");
    EXPECT_EQ(completed("tavelo-cli", "tavelo-cli no-such-command --"), "\n");
    for (const auto &command : commandsOfCli())
        EXPECT_EQ(completed("tavelo-cli", "tavelo-cli " + command), command + "\n");
}

TEST_F(DesktopFilesTest, haveAnIconOfEachSize) {
    if (!testing::buildHas("icons"))
        GTEST_SKIP() << "rsvg-convert is not installed";
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        const auto name = std::to_string(size) + "x" + std::to_string(size);
        const QImage icon(
            QString::fromStdString(tree / "share/icons/hicolor" / name / "apps" / (id + ".png")));
        ASSERT_EQ(icon.size(), QSize(size, size)) << size;
        EXPECT_EQ(icon.pixelColor(0, 0).alpha(), 0) << size;
        // A light page with a red ribbon in its upper right.
        const auto page = icon.pixelColor(size * 5 / 16, size * 6 / 16);
        EXPECT_GT(page.lightness(), 230) << size;
        const auto ribbon = icon.pixelColor(size * 11 / 16, size * 4 / 16);
        EXPECT_GT(ribbon.red(), 2 * ribbon.blue()) << size;
    }
}

TEST_F(DesktopFilesTest, haveASymbolicIconOfOneColour) {
    const auto drawing = tree.read("share/icons/hicolor/symbolic/apps/" + id + "-symbolic.svg");
    std::set<std::string> colours;
    const std::regex colour("#[0-9a-fA-F]{3,8}");
    for (auto match = std::sregex_iterator(drawing.begin(), drawing.end(), colour);
         match != std::sregex_iterator(); ++match)
        colours.insert(match->str());
    EXPECT_EQ(colours.size(), 1U);
    EXPECT_THAT(drawing, HasSubstr("viewBox=\"0 0 16 16\""));
}

} // namespace
} // namespace diary

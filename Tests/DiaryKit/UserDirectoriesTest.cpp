// SPDX-License-Identifier: MIT
#include <DiaryKit/UserDirectories.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <Support/ScopedEnvironment.h>
#include <Support/TemporaryFolder.h>
#include <pwd.h>
#include <unistd.h>

namespace diary {
namespace {

using testing::ScopedEnvironment;
using testing::TemporaryFolder;

namespace fs = std::filesystem;

// A home folder of its own and none of the variables that lead elsewhere.
class UserDirectoriesTest : public ::testing::Test {
protected:
    fs::path inHome(const fs::path &name) const { return m_home / name; }

    fs::path documentsWith(const std::string &lines) const {
        m_home.write(".config/user-dirs.dirs", lines);
        return UserDirectories::documents();
    }

    TemporaryFolder m_home;

private:
    ScopedEnvironment m_homeVariable{"HOME", m_home.path().string()};
    ScopedEnvironment m_configVariable{"XDG_CONFIG_HOME", std::nullopt};
    ScopedEnvironment m_stateVariable{"XDG_STATE_HOME", std::nullopt};
    ScopedEnvironment m_cacheVariable{"XDG_CACHE_HOME", std::nullopt};
    ScopedEnvironment m_dataVariable{"XDG_DATA_HOME", std::nullopt};
    ScopedEnvironment m_documentsVariable{"XDG_DOCUMENTS_DIR", std::nullopt};
};

TEST_F(UserDirectoriesTest, takesTheHomeFolderFromTheEnvironment) {
    EXPECT_EQ(UserDirectories::home(), m_home.path());
    const ScopedEnvironment other("HOME", "/elsewhere/ä b");
    EXPECT_EQ(UserDirectories::home(), "/elsewhere/ä b");
}

TEST_F(UserDirectoriesTest, takesTheAccountsHomeFolderWithoutTheVariable) {
    const passwd *account = getpwuid(getuid());
    ASSERT_NE(account, nullptr);
    const fs::path expected = account->pw_dir;
    {
        const ScopedEnvironment unset("HOME", std::nullopt);
        EXPECT_EQ(UserDirectories::home(), expected);
        EXPECT_EQ(UserDirectories::cache(), expected / ".cache/tavelo");
    }
    const ScopedEnvironment empty("HOME", "");
    EXPECT_EQ(UserDirectories::home(), expected);
}

TEST_F(UserDirectoriesTest, keepsItsFilesBelowTheHomeFolder) {
    EXPECT_EQ(UserDirectories::config(), inHome(".config/tavelo"));
    EXPECT_EQ(UserDirectories::state(), inHome(".local/state/tavelo"));
    EXPECT_EQ(UserDirectories::cache(), inHome(".cache/tavelo"));
    EXPECT_EQ(UserDirectories::data(), inHome(".local/share"));
    EXPECT_EQ(UserDirectories::documents(), inHome("Documents"));
    EXPECT_EQ(UserDirectories::pictures(), inHome("Pictures"));
}

TEST_F(UserDirectoriesTest, createsNothing) {
    UserDirectories::config();
    UserDirectories::state();
    UserDirectories::cache();
    UserDirectories::data();
    UserDirectories::documents();
    UserDirectories::pictures();
    EXPECT_TRUE(m_home.names().empty());
}

TEST_F(UserDirectoriesTest, keepsItsFilesInTheBaseDirectoriesOfTheEnvironment) {
    const ScopedEnvironment config("XDG_CONFIG_HOME", "/base/config");
    const ScopedEnvironment state("XDG_STATE_HOME", "/base/state");
    const ScopedEnvironment cache("XDG_CACHE_HOME", "/base/cache");
    const ScopedEnvironment data("XDG_DATA_HOME", "/base/data");
    EXPECT_EQ(UserDirectories::config(), "/base/config/tavelo");
    EXPECT_EQ(UserDirectories::state(), "/base/state/tavelo");
    EXPECT_EQ(UserDirectories::cache(), "/base/cache/tavelo");
    EXPECT_EQ(UserDirectories::data(), "/base/data");
}

TEST_F(UserDirectoriesTest, ignoresRelativeAndEmptyBaseDirectories) {
    for (const char *value : {"", "relative", "./relative", "../relative", "~/config", "$HOME/config"}) {
        const ScopedEnvironment config("XDG_CONFIG_HOME", value);
        const ScopedEnvironment state("XDG_STATE_HOME", value);
        const ScopedEnvironment cache("XDG_CACHE_HOME", value);
        const ScopedEnvironment data("XDG_DATA_HOME", value);
        EXPECT_EQ(UserDirectories::config(), inHome(".config/tavelo")) << value;
        EXPECT_EQ(UserDirectories::state(), inHome(".local/state/tavelo")) << value;
        EXPECT_EQ(UserDirectories::cache(), inHome(".cache/tavelo")) << value;
        EXPECT_EQ(UserDirectories::data(), inHome(".local/share")) << value;
    }
}

TEST_F(UserDirectoriesTest, readsTheEnvironmentAtEachCall) {
    {
        const ScopedEnvironment config("XDG_CONFIG_HOME", "/one");
        EXPECT_EQ(UserDirectories::config(), "/one/tavelo");
    }
    EXPECT_EQ(UserDirectories::config(), inHome(".config/tavelo"));
}

TEST_F(UserDirectoriesTest, readsTheUsersFoldersFromTheirFile) {
    m_home.write(".config/user-dirs.dirs", "# This file is written by xdg-user-dirs-update\n"
                                           "#\n"
                                           "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                                           "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                                           "XDG_PICTURES_DIR=\"/data/Bilder\"\n");
    EXPECT_EQ(UserDirectories::documents(), inHome("Dokumente"));
    EXPECT_EQ(UserDirectories::pictures(), "/data/Bilder");
}

TEST_F(UserDirectoriesTest, findsTheFileInTheConfigurationDirectory) {
    m_home.write("elsewhere/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    const ScopedEnvironment config("XDG_CONFIG_HOME", inHome("elsewhere").string());
    EXPECT_EQ(UserDirectories::documents(), inHome("Papers"));
    EXPECT_EQ(UserDirectories::pictures(), inHome("Pictures"));
}

TEST_F(UserDirectoriesTest, readsEachFormOfALine) {
    struct Row {
        std::string lines;
        std::string expected; // below the home folder unless absolute
    };
    const std::vector<Row> rows = {
        {"XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"", "Dokumente"},
        {" \tXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"  # comment\n", "Dokumente"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/a b/ä\"\n", "a b/ä"},
        {"XDG_DOCUMENTS_DIR=\"/srv/documents\"\r\n", "/srv/documents"},
        {R"(XDG_DOCUMENTS_DIR="$HOME/a\"b")", R"(a"b)"},
        {R"(XDG_DOCUMENTS_DIR="$HOME/a\\b")", R"(a\b)"},
        {R"(XDG_DOCUMENTS_DIR="/cost/5\$\`x\`")", R"(/cost/5$`x`)"},
        {R"(XDG_DOCUMENTS_DIR="$HOME/\$HOME")", "$HOME"},
        {"XDG_DOCUMENTS_DIR=\"$HOME//Docs\"\n", "Docs"},
        {"XDG_DOCUMENTS_DIR=\"/first\"\nXDG_DOCUMENTS_DIR=\"/last\"\n", "/last"},
        {"XDG_DOCUMENTS_DIR=\"/first\"\nXDG_DOCUMENTS_DIR=\"relative\"\n", "/first"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(documentsWith(row.lines), m_home.path() / row.expected) << row.lines;
}

TEST_F(UserDirectoriesTest, takesTheHomeFolderItselfForAFolderSwitchedOff) {
    EXPECT_EQ(documentsWith("XDG_DOCUMENTS_DIR=\"$HOME/\"\n"), m_home.path());
    EXPECT_EQ(documentsWith("XDG_DOCUMENTS_DIR=\"$HOME\"\n"), m_home.path());
}

TEST_F(UserDirectoriesTest, ignoresLinesThatNameNoAbsoluteFolder) {
    for (const char *line : {"", "XDG_DOCUMENTS_DIR=\"Dokumente\"\n", "XDG_DOCUMENTS_DIR=\"\"\n",
                             "XDG_DOCUMENTS_DIR=/unquoted\n", "XDG_DOCUMENTS_DIR\n",
                             "XDG_DOCUMENTS_DIR=", "#XDG_DOCUMENTS_DIR=\"/commented\"\n",
                             "XDG_DOCUMENTS_DIRS=\"/plural\"\n", "MY_XDG_DOCUMENTS_DIR=\"/mine\"\n",
                             "XDG_DOCUMENTS_DIR=\"~/tilde\"\n", "XDG_DOCUMENTS_DIR=\"\\$HOME/escaped\"\n",
                             "XDG_DOCUMENTS_DIR=\"$HOMESTEAD/other\"\n", "XDG_DOWNLOAD_DIR=\"/downloads\"\n"})
        EXPECT_EQ(documentsWith(line), inHome("Documents")) << line;
}

TEST_F(UserDirectoriesTest, prefersTheFileToAVariableOfTheSameName) {
    const ScopedEnvironment variable("XDG_DOCUMENTS_DIR", "/from/environment");
    EXPECT_EQ(UserDirectories::documents(), inHome("Documents"));
    EXPECT_EQ(documentsWith("XDG_DOCUMENTS_DIR=\"/from/file\"\n"), "/from/file");
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/ScopedEnvironment.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaitUntil.h"

#include <DiaryKit/Defaults.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace diary {

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using testing::ScopedEnvironment;
using testing::TemporaryFolder;
using Names = std::set<std::string>;

constexpr const char *fileName = "settings.json";

class DefaultsFile : public ::testing::Test {
protected:
    TemporaryFolder m_folder;
    Defaults m_defaults{m_folder / fileName};

    std::string text() const { return m_folder.read(fileName); }
    void write(std::string_view bytes) const { m_folder.write(fileName, bytes); }

    // The error of a change that is refused; 0 when it is not.
    template <typename Change>
    int refusal(Change change) {
        try {
            change(m_defaults);
        } catch (const fs::filesystem_error &error) {
            EXPECT_EQ(error.path1(), m_defaults.path());
            return error.code().value();
        }
        return 0;
    }
};

TEST(Defaults, liveInTheConfigurationFolder) {
    const ScopedEnvironment home("HOME", "/home/somebody");
    const ScopedEnvironment config("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(Defaults().path(), "/home/somebody/.config/tavelo/settings.json");
}

TEST_F(DefaultsFile, haveNothingWithoutAFile) {
    EXPECT_EQ(m_defaults.string("vaultPath"), std::nullopt);
    EXPECT_EQ(m_defaults.number("editorFontSize"), std::nullopt);
    EXPECT_EQ(m_defaults.boolean("showPhotos"), std::nullopt);
    EXPECT_THAT(m_folder.names(), ::testing::IsEmpty());
}

TEST_F(DefaultsFile, giveAValueAsItsOwnTypeOnly) {
    struct Row {
        const char *json;
        std::optional<std::string> string;
        std::optional<double> number;
        std::optional<bool> boolean;
    };
    const Row rows[] = {
        {R"("no")", "no", std::nullopt, std::nullopt},
        {R"("")", "", std::nullopt, std::nullopt},
        {R"("日記")", "日記", std::nullopt, std::nullopt},
        {"16.5", std::nullopt, 16.5, std::nullopt},
        {"17", std::nullopt, 17.0, std::nullopt},
        {"-3", std::nullopt, -3.0, std::nullopt},
        {"18446744073709551615", std::nullopt, 18446744073709551615.0, std::nullopt},
        {"1", std::nullopt, 1.0, std::nullopt},
        {"true", std::nullopt, std::nullopt, true},
        {"false", std::nullopt, std::nullopt, false},
        {"null", std::nullopt, std::nullopt, std::nullopt},
        {"[true]", std::nullopt, std::nullopt, std::nullopt},
        {R"({"key": "no"})", std::nullopt, std::nullopt, std::nullopt},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.json);
        write(std::string(R"({"key": )") + row.json + "}");
        EXPECT_EQ(m_defaults.string("key"), row.string);
        EXPECT_EQ(m_defaults.number("key"), row.number);
        EXPECT_EQ(m_defaults.boolean("key"), row.boolean);
    }
}

TEST_F(DefaultsFile, giveBackWhatWasSet) {
    m_defaults.set("literal", "a \"quoted\" path\n");
    m_defaults.set("view", std::string_view("view\0with zero", 14));
    m_defaults.set("string", std::string("Übung"));
    m_defaults.set("third", 1.0 / 3.0);
    m_defaults.set("whole", 19.0);
    m_defaults.set("yes", true);
    m_defaults.set("no", false);
    m_defaults.set("list", std::vector<std::string>{"/a", "Übung", ""});
    m_defaults.set("emptyList", std::vector<std::string>());

    EXPECT_EQ(m_defaults.string("literal"), "a \"quoted\" path\n");
    EXPECT_EQ(m_defaults.string("view"), std::string("view\0with zero", 14));
    EXPECT_EQ(m_defaults.string("string"), "Übung");
    EXPECT_EQ(m_defaults.number("third"), 1.0 / 3.0);
    EXPECT_EQ(m_defaults.number("whole"), 19.0);
    EXPECT_EQ(m_defaults.boolean("yes"), true);
    EXPECT_EQ(m_defaults.boolean("no"), false);
    EXPECT_THAT(m_defaults.stringList("list"), Optional(ElementsAre("/a", "Übung", "")));
    EXPECT_THAT(m_defaults.stringList("emptyList"), Optional(IsEmpty()));
}

TEST_F(DefaultsFile, giveAListOnlyWhenAllItsValuesAreStrings) {
    for (const char *json : {R"(["/a", 1])", R"("/a")", R"({"/a": "/b"})", "null", "[[]]"}) {
        write(std::string(R"({"key": )") + json + "}");
        EXPECT_EQ(m_defaults.stringList("key"), std::nullopt) << json;
    }
    EXPECT_EQ(m_defaults.stringList("other"), std::nullopt);
}

TEST_F(DefaultsFile, refuseAListWithAStringThatIsNotUtf8) {
    m_defaults.set("key", std::vector<std::string>{"/a"});
    const auto before = text();
    EXPECT_EQ(refusal([](Defaults &d) { d.set("key", std::vector<std::string>{"/b", "\xff"}); }), EILSEQ);
    EXPECT_EQ(text(), before);
}

TEST_F(DefaultsFile, takeAnotherTypeForAKey) {
    m_defaults.set("key", true);
    m_defaults.set("key", "text");
    EXPECT_EQ(m_defaults.boolean("key"), std::nullopt);
    EXPECT_EQ(m_defaults.string("key"), "text");
}

TEST_F(DefaultsFile, readAfreshEachTime) {
    write(R"({"key": 1})");
    EXPECT_EQ(m_defaults.number("key"), 1.0);
    write(R"({"key": 2})");
    EXPECT_EQ(m_defaults.number("key"), 2.0);
}

template <typename Action>
bool opensTheFile(const fs::path &path, Action action) {
    const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    EXPECT_GE(::inotify_add_watch(watch, path.c_str(), IN_OPEN), 0);
    action();
    std::array<char, 4096> buffer{};
    const auto size = ::read(watch, buffer.data(), buffer.size());
    ::close(watch);
    return size > 0;
}

timespec modificationTime(const fs::path &path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mtim;
}

void setModificationTime(const fs::path &path, const timespec &time) {
    const std::array times = {time, time};
    EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times.data(), 0), 0);
}

TEST_F(DefaultsFile, seeEveryChangeOfAFileThatStayedAsItWasForLong) {
    const char *const before = R"({"key": 1})";
    const char *const after = R"({"key": 2})";
    struct Row {
        const char *name;
        std::function<void(const fs::path &)> change;
    };
    const Row rows[] = {
        {"written.json", [&](const fs::path &path) { m_folder.write(path.filename(), after); }},
        {"set-back.json",
         [&](const fs::path &path) {
             const auto time = modificationTime(path);
             m_folder.write(path.filename(), after);
             setModificationTime(path, time);
         }},
        {"replaced.json",
         [&](const fs::path &path) {
             const auto time = modificationTime(path);
             m_folder.write("other.json", after);
             setModificationTime(m_folder / "other.json", time);
             fs::rename(m_folder / "other.json", path);
         }},
        {"by-itself.json", [](const fs::path &path) { Defaults(path).set("key", 2.0); }},
    };
    for (const auto &row : rows)
        m_folder.write(row.name, before);
    const auto last = std::chrono::seconds(modificationTime(m_folder / rows[3].name).tv_sec);
    ASSERT_TRUE(testing::waitUntil([&] {
        return std::chrono::system_clock::now().time_since_epoch() > last + std::chrono::seconds(4);
    }));

    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const Defaults defaults(m_folder / row.name);
        EXPECT_TRUE(opensTheFile(defaults.path(), [&] { EXPECT_EQ(defaults.number("key"), 1.0); }));
        EXPECT_FALSE(opensTheFile(defaults.path(), [&] { EXPECT_EQ(defaults.number("key"), 1.0); }));
        row.change(defaults.path());
        EXPECT_EQ(defaults.number("key"), 2.0);
        fs::remove(defaults.path());
        EXPECT_EQ(defaults.number("key"), std::nullopt);
    }
}

TEST_F(DefaultsFile, writeOneSortedKeyALine) {
    m_defaults.set("showPhotos", false);
    m_defaults.set("editorFontSize", 16.5);
    m_defaults.set("bodyFontFamily", "Noto Serif");
    EXPECT_EQ(text(), "{\n    \"bodyFontFamily\": \"Noto Serif\",\n    \"editorFontSize\": 16.5,\n"
                      "    \"showPhotos\": false\n}\n");
}

TEST_F(DefaultsFile, writeUnicodeAsItIs) {
    m_defaults.set("vaultPath", "/home/花子/日記");
    EXPECT_THAT(text(), ::testing::HasSubstr("/home/花子/日記"));
}

TEST_F(DefaultsFile, keepWhatTheyDoNotKnow) {
    write(R"({"future": {"list": [1, 2.5, null, "x"]}, "big": 9223372036854775807, "key": 1})");
    m_defaults.set("key", 2.0);
    m_defaults.remove("absent");
    EXPECT_EQ(text(), "{\n    \"big\": 9223372036854775807,\n    \"future\": {\n        \"list\": [\n"
                      "            1,\n            2.5,\n            null,\n            \"x\"\n        ]\n"
                      "    },\n    \"key\": 2.0\n}\n");
}

TEST_F(DefaultsFile, removeAKey) {
    m_defaults.set("key", "text");
    m_defaults.set("other", "text");
    m_defaults.remove("key");
    EXPECT_EQ(m_defaults.string("key"), std::nullopt);
    EXPECT_EQ(m_defaults.string("other"), "text");
}

TEST_F(DefaultsFile, writeNothingForRemovingNothing) {
    m_defaults.remove("key");
    EXPECT_THAT(m_folder.names(), ::testing::IsEmpty());

    write("{ }");
    m_defaults.remove("key");
    EXPECT_EQ(text(), "{ }");

    write("broken");
    m_defaults.remove("key");
    EXPECT_EQ(m_folder.names(), Names{fileName});
}

TEST_F(DefaultsFile, makeMissingFolders) {
    Defaults below(m_folder / "config" / "tavelo" / fileName);
    below.set("key", true);
    EXPECT_EQ(below.boolean("key"), true);
}

TEST_F(DefaultsFile, followALinkToTheFile) {
    m_folder.write("dotfiles/shared.json", R"({"old": true})");
    fs::create_symlink("dotfiles/shared.json", m_defaults.path());
    m_defaults.set("key", true);
    EXPECT_TRUE(fs::is_symlink(m_defaults.path()));
    EXPECT_EQ(Defaults(m_folder / "dotfiles/shared.json").boolean("key"), true);
    EXPECT_EQ(m_defaults.boolean("old"), true);
}

TEST_F(DefaultsFile, readNumbersThatAreNotFiniteAsAbsent) {
    for (const double value : {std::numeric_limits<double>::infinity(), std::nan("")}) {
        m_defaults.set("key", value);
        EXPECT_EQ(m_defaults.number("key"), std::nullopt);
    }
}

TEST_F(DefaultsFile, refuseWhatIsNoUtf8) {
    m_defaults.set("key", "before");
    const auto before = text();
    EXPECT_EQ(refusal([](Defaults &defaults) { defaults.set("key", "\xff"); }), EILSEQ);
    EXPECT_EQ(refusal([](Defaults &defaults) { defaults.set("\xc3", true); }), EILSEQ);
    EXPECT_EQ(text(), before);
}

std::string nested(int depth) {
    std::string text = R"({"key": true, "deep": )";
    for (int level = 0; level < depth; ++level)
        text += R"({"a":[)";
    for (int level = 0; level < depth; ++level)
        text += "]}";
    return text + "}";
}

std::string longerThanAnySettings() {
    std::string text = R"({"key": true, "long": ")";
    text.resize(9'000'000, 'x');
    return text + "\"}";
}

const std::string brokenFiles[] = {
    "",
    "not JSON",
    "[1, 2]",
    "true",
    "\"text\"",
    R"({"key": true)",
    R"({"key": true} and more)",
    R"({"key": true, "bad": "\xff"})",
    R"({"key": true, "huge": 1e999})",
    std::string("{\"key\": true}\0", 14),
    std::string("{\"key\": true}\0more", 18),
    std::string("{\"key\": true, \"latin\": \"\xe9\"}"),
    nested(1'000'000),
    std::string(1'000'000, '['),
    longerThanAnySettings(),
};

TEST_F(DefaultsFile, readABrokenFileAsEmpty) {
    for (const auto &broken : brokenFiles) {
        SCOPED_TRACE(broken.substr(0, 40));
        write(broken);
        EXPECT_EQ(m_defaults.boolean("key"), std::nullopt);
        EXPECT_EQ(m_folder.names(), Names{fileName});
    }
}

TEST_F(DefaultsFile, moveABrokenFileAsideBeforeWriting) {
    for (const auto &broken : brokenFiles) {
        SCOPED_TRACE(broken.substr(0, 40));
        const TemporaryFolder folder;
        folder.write(fileName, broken);
        Defaults defaults(folder / fileName);
        defaults.set("new", true);
        EXPECT_EQ(defaults.boolean("new"), true);
        EXPECT_EQ(defaults.boolean("key"), std::nullopt);
        EXPECT_EQ(folder.read("settings.json.bad"), broken);
        EXPECT_EQ(folder.names(), (Names{fileName, "settings.json.bad"}));
    }
}

TEST_F(DefaultsFile, neverOverwriteAnOlderBrokenFile) {
    for (const char *broken : {"first", "second", "third"}) {
        write(broken);
        m_defaults.set("key", true);
    }
    std::set<std::string> contents;
    for (const auto &name : m_folder.names()) {
        if (name != fileName)
            contents.insert(m_folder.read(name));
    }
    EXPECT_EQ(contents, (std::set<std::string>{"first", "second", "third"}));
    EXPECT_EQ(m_folder.read("settings.json.bad"), "first");
}

TEST_F(DefaultsFile, moveABrokenFileBehindALinkAside) {
    m_folder.write("dotfiles/shared.json", "broken");
    fs::create_symlink("dotfiles/shared.json", m_defaults.path());
    m_defaults.set("key", true);
    EXPECT_TRUE(fs::is_symlink(m_defaults.path()));
    EXPECT_EQ(m_folder.read("dotfiles/shared.json.bad"), "broken");
    EXPECT_EQ(m_defaults.boolean("key"), true);
}

TEST_F(DefaultsFile, keepModerateNesting) {
    write(nested(40));
    EXPECT_EQ(m_defaults.boolean("key"), true);
    m_defaults.set("other", true);
    EXPECT_EQ(m_defaults.boolean("key"), true);
    EXPECT_EQ(m_folder.names(), Names{fileName});
}

TEST_F(DefaultsFile, refuseToWriteOverWhatCannotBeRead) {
    // A folder in the file's place fails to be read for everybody, the superuser included.
    fs::create_directory(m_defaults.path());
    EXPECT_EQ(m_defaults.string("key"), std::nullopt);
    EXPECT_EQ(refusal([](Defaults &defaults) { defaults.set("key", true); }), EISDIR);
    EXPECT_EQ(refusal([](Defaults &defaults) { defaults.remove("key"); }), EISDIR);
    EXPECT_EQ(m_folder.names(), Names{fileName});
}

TEST_F(DefaultsFile, refuseToWriteOverAFileWithoutReadPermission) {
    write(R"({"key": true})");
    fs::permissions(m_defaults.path(), fs::perms::owner_write);
    if (::access(m_defaults.path().c_str(), R_OK) == 0)
        GTEST_SKIP() << "the superuser reads everything";
    EXPECT_EQ(m_defaults.boolean("key"), std::nullopt);
    EXPECT_EQ(refusal([](Defaults &defaults) { defaults.set("other", true); }), EACCES);
    fs::permissions(m_defaults.path(), fs::perms::owner_all);
    EXPECT_EQ(text(), R"({"key": true})");
}

TEST_F(DefaultsFile, leaveAWriteProtectedFile) {
    for (const char *content : {R"({"key": true})", "broken"}) {
        SCOPED_TRACE(content);
        write(content);
        fs::permissions(m_defaults.path(), fs::perms::owner_read);
        EXPECT_EQ(refusal([](Defaults &defaults) { defaults.set("key", false); }), EACCES);
        EXPECT_EQ(text(), content);
        EXPECT_EQ(m_folder.names(), Names{fileName});
        fs::remove(m_defaults.path());
    }
}

} // namespace

} // namespace diary

// SPDX-License-Identifier: MIT
//
// The program as those have it who do not see its windows: over the accessibility bus alone.

#include "XServerFixture.h"

#include <DiaryKit/Defaults.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace diary {
namespace {

using testing::waitUntil;

struct Accessible {
    int depth = 0;
    std::string role;
    std::string name;
    std::string description;
    std::set<std::string> states;
    std::set<std::string> actions;

    bool is(const char *state) const { return states.contains(state); }
};

std::set<std::string> words(const std::string &text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<Accessible> parsed(const std::string &tree) {
    std::vector<Accessible> objects;
    std::istringstream lines(tree);
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> fields;
        std::istringstream rest(line);
        for (std::string field; std::getline(rest, field, '\t');)
            fields.push_back(field);
        fields.resize(6);
        objects.push_back(
            {std::stoi(fields[0]), fields[1], fields[2], fields[3], words(fields[4]), words(fields[5])});
    }
    return objects;
}

// What can be done with something of the role, so that without an action nothing can.
bool needsAction(const std::string &role) {
    static const std::set<std::string> roles = {"push button",   "check box",      "radio button",
                                                "toggle button", "menu item",      "combo box",
                                                "link",          "check menu item"};
    return roles.contains(role);
}

class AccessibilityTest : public XServerFixture {
protected:
    std::vector<Accessible> objects() const { return parsed(bus->tree().value_or("")); }

    bool shows(const std::string &role, const std::string &name) const {
        const auto all = objects();
        return std::any_of(all.begin(), all.end(), [&](const Accessible &object) {
            return object.role == role && object.name.starts_with(name) && object.is("showing");
        });
    }

    void expectEveryControlToSpeak(const std::string &where) const {
        int controls = 0;
        for (const auto &object : objects()) {
            const bool isReachable = object.is("showing") && object.is("enabled") &&
                                     (object.is("focusable") || needsAction(object.role));
            if (!isReachable)
                continue;
            ++controls;
            const auto what = where + ": " + object.role + " \"" + object.name + "\"";
            EXPECT_FALSE(object.name.empty()) << what;
            EXPECT_THAT(object.role, ::testing::Not(::testing::AnyOf("unknown", "invalid", ""))) << what;
            if (needsAction(object.role)) {
                EXPECT_FALSE(object.actions.empty()) << what;
            }
        }
        EXPECT_GT(controls, 3) << where;
    }
};

TEST_F(AccessibilityTest, givesEveryControlOfEveryWindowANameARoleAndAnAction) {
    writeFile("## 2019\n\nOld words\n\n## " + year + "\n\nNew words\n");
    ASSERT_NO_FATAL_FAILURE(startProgram({{"DIARY_FAKE_PHOTOS", "4"}}));
    ASSERT_TRUE(waitUntil([this] { return shows("push button", "IMG_4100.HEIC 07:12"); }));
    expectEveryControlToSpeak("page");

    ASSERT_TRUE(bus->press("push button", "IMG_4100.HEIC 07:12"));
    ASSERT_TRUE(waitUntil([this] { return shows("push button", "Next Photo"); }));
    expectEveryControlToSpeak("photo");
    press("Escape");
    ASSERT_TRUE(waitUntil([this] { return !shows("push button", "Next Photo"); }));

    press("ctrl+u");
    ASSERT_TRUE(waitUntil([this] { return !shows("push button", "IMG_4100.HEIC 07:12"); }));
    expectEveryControlToSpeak("file as it stands");
    press("ctrl+u");

    ASSERT_TRUE(bus->press("push button", "Find"));
    ASSERT_TRUE(waitUntil([this] { return windows() == 2; }));
    type("words");
    ASSERT_TRUE(
        waitUntil([this] { return bus->tree().value_or("").find("Old words") != std::string::npos; }));
    expectEveryControlToSpeak("search");
    press("Escape");
    ASSERT_TRUE(waitUntil([this] { return windows() == 1; }));

    ASSERT_TRUE(bus->press("push button", "Year Calendar"));
    ASSERT_TRUE(waitUntil([this] { return windows() == 2; }));
    expectEveryControlToSpeak("year");
    press("Escape");
    ASSERT_TRUE(waitUntil([this] { return windows() == 1; }));

    ASSERT_TRUE(bus->press("push button", "Settings"));
    ASSERT_TRUE(waitUntil([this] { return windows() == 2; }));
    expectEveryControlToSpeak("settings");
    press("Escape");
    ASSERT_TRUE(waitUntil([this] { return windows() == 1; }));

    openMenuToSeeAllKeysArrived();
    expectEveryControlToSpeak("menu");
    closeMenu();
}

TEST_F(AccessibilityTest, letsOneWriteFindStepAndSetOverTheBusAlone) {
    folder.write("v/07-04.md", "# 07-04\n\n## 2009\n\nA heron by the weir\n");
    ASSERT_NO_FATAL_FAILURE(startProgram());

    ASSERT_TRUE(waitUntil([&] {
        return bus->ask({"insert", "text", year, "Written without a keyboard."}).has_value();
    }));
    EXPECT_TRUE(
        waitUntil([&] { return fileIs(dayFile("## " + year + "\n\nWritten without a keyboard.\n")); }));

    ASSERT_TRUE(bus->press("push button", "Find"));
    ASSERT_TRUE(waitUntil([this] { return shows("text", "Search"); }));
    ASSERT_TRUE(bus->ask({"insert", "text", "Search", "heron"}).has_value());
    std::string row;
    ASSERT_TRUE(waitUntil([&] {
        for (const auto &object : objects()) {
            if (object.name.find("A heron by the weir") != std::string::npos && !object.actions.empty()) {
                row = object.role;
                return bus->press(object.role, object.name);
            }
        }
        return false;
    })) << bus->tree().value_or("");
    EXPECT_TRUE(waitUntil([this] { return shownText("2009") == "A heron by the weir"; })) << row;

    ASSERT_TRUE(bus->press("push button", "Next Day"));
    EXPECT_TRUE(waitUntil([this] { return shownText(year).empty() && shows("label", "07-05"); }))
        << bus->tree().value_or("");

    ASSERT_TRUE(bus->press("push button", "Settings"));
    ASSERT_TRUE(waitUntil([this] { return shows("check box", "Show missing-year note"); }));
    ASSERT_TRUE(bus->press("check box", "Show missing-year note"));
    EXPECT_TRUE(waitUntil([this] {
        return Defaults(folder / "config/tavelo/settings.json").boolean("showGapYears") == false;
    })) << bus->tree().value_or("");
}

} // namespace
} // namespace diary

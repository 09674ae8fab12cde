// SPDX-License-Identifier: MIT
#pragma once

#include "Support/AccessibilityBus.h"
#include "Support/ChildProcess.h"
#include "Support/RunProgram.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaitUntil.h"
#include "Support/XServer.h"

#include <DiaryKit/DiaryDay.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <string>

namespace diary {

// Without strict checks of strings: libxkbcommon copies parts of buffers that no zero ends.
inline constexpr const char *xServerSanitizerOptions =
    "detect_stack_use_after_return=1:strict_string_checks=0:intercept_tls_get_addr=0";

// The program on a screen, with real keys, and looked at as a screen reader does.
class XServerFixture : public ::testing::Test {
protected:
    void SetUp() override {
        if (!testing::XServer::isInstalled())
            GTEST_SKIP() << "Xvfb, openbox or xdotool is not installed";
        if (!testing::AccessibilityBus::isInstalled())
            GTEST_SKIP() << "the accessibility services are not installed";
        server = std::make_unique<testing::XServer>();
        bus = std::make_unique<testing::AccessibilityBus>(server->display());
    }

    std::map<std::string, std::string> environment() const {
        auto variables = bus->environment();
        variables.insert({{"QT_QPA_PLATFORM", "xcb"},
                          {"ASAN_OPTIONS", xServerSanitizerOptions},
                          {"XDG_STATE_HOME", folder / "state"},
                          {"XDG_CONFIG_HOME", folder / "config"},
                          {"DIARY_ROOT", folder / "v"}});
        return variables;
    }

    // Started, in front, and with the keyboard.
    void startProgram(const std::map<std::string, std::string> &more = {}) {
        auto variables = environment();
        variables.insert(more.begin(), more.end());
        program = std::make_unique<testing::ChildProcess>(
            std::vector<std::string>{testing::builtProgram("TAVELO_TEST_TAVELO")}, variables);
        ASSERT_TRUE(testing::waitUntil([this] { return windows() == 1 || !program->isRunning(); }));
        ASSERT_TRUE(program->isRunning()) << program->errors();
        ASSERT_TRUE(testing::waitUntil([this] { return focusedWindow().starts_with(today.fileName()); }))
            << focusedWindow();
    }

    // Its title.
    std::string focusedWindow() const {
        return server->xdotool({"getwindowfocus", "getwindowname"}).value_or("none");
    }

    // How many windows of the program are shown, pop-ups too.
    std::ptrdiff_t windows() const {
        const auto found = server->xdotool({"search", "--onlyvisible", "--class", "^tavelo$"});
        return found && !found->empty() ? std::count(found->begin(), found->end(), '\n') + 1 : 0;
    }

    void type(const std::string &text) const {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (!line.empty()) {
                ASSERT_TRUE(server->xdotool({"type", "--delay", "3", "--", line}).has_value()) << line;
            }
            if (!lines.eof())
                press("Return");
        }
    }
    void press(const std::string &keys, int times = 1) const {
        ASSERT_TRUE(
            server->xdotool({"key", "--delay", "3", "--repeat", std::to_string(times), keys}).has_value())
            << keys;
    }

    // The entry's text as assistive technologies have it.
    std::string shownText(const std::string &ofYear) const {
        return bus->text("text", ofYear).value_or("(no such text)");
    }
    // Whether something is on the screen whose name begins so.
    bool isShown(const std::string &role, const std::string &name) const {
        const auto tree = bus->tree().value_or("");
        return tree.find("\t" + role + "\t" + name) != std::string::npos;
    }

    // Keys travel in their order: once the menu is shown, everything typed before has arrived.
    void openMenuToSeeAllKeysArrived() const {
        press("alt+f");
        ASSERT_TRUE(testing::waitUntil([this] { return windows() == 2; }));
    }
    void closeMenu() const {
        press("Escape");
        ASSERT_TRUE(testing::waitUntil([this] { return windows() == 1; }));
        // The menu bar still has the keys.
        press("Escape");
    }

    std::string dayFile(const std::string &sections) const {
        return "# " + today.headerTitle() + "\n\n" + sections;
    }
    bool fileIs(const std::string &text) const {
        return std::filesystem::exists(folder / "v" / today.fileName()) &&
               folder.read(std::filesystem::path("v") / today.fileName()) == text;
    }
    std::string file() const { return folder.read(std::filesystem::path("v") / today.fileName()); }
    void writeFile(const std::string &sections) {
        folder.write(std::filesystem::path("v") / today.fileName(), dayFile(sections));
    }

    testing::TemporaryFolder folder;
    const MonthDay today = DiaryDay::today().monthDay();
    const std::string year = std::to_string(DiaryDay::today().year);
    std::unique_ptr<testing::XServer> server;
    std::unique_ptr<testing::AccessibilityBus> bus;
    std::unique_ptr<testing::ChildProcess> program;
};

} // namespace diary

// SPDX-License-Identifier: MIT
#include "Support/ChildProcess.h"
#include "Support/RunProgram.h"
#include "Support/ScopedEnvironment.h"
#include "Support/WaitUntil.h"
#include "XServerFixture.h"

#include <DiaryApp/DesktopActivation.h>
#include <DiaryKit/DiaryDay.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QTest>
#include <QVariant>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace diary {
namespace {

using testing::ScopedEnvironment;
using testing::waitUntil;

const QString id = QLatin1String(DesktopActivation::applicationId);
const QString busName = QStringLiteral("org.freedesktop.DBus");

// The program on a screen and a session bus, called as a desktop does. What the bus starts sees the variables
// that the bus was started with.
class DesktopActivationTest : public XServerFixture {
protected:
    void SetUp() override {
        folder.write("data/dbus-1/services/" + id.toStdString() + ".service",
                     "[D-BUS Service]\nName=" + id.toStdString() +
                         "\nExec=" + testing::builtProgram("TAVELO_TEST_TAVELO").string() + "\n");
        XServerFixture::SetUp();
        if (IsSkipped())
            return;
        session = QDBusConnection::connectToBus(
            QString::fromStdString(bus->environment().at("DBUS_SESSION_BUS_ADDRESS")),
            QStringLiteral("test"));
        ASSERT_TRUE(session->isConnected()) << session->lastError().message().toStdString();
    }

    void TearDown() override {
        if (!session)
            return;
        end();
        session.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("test"));
    }

    std::optional<pid_t> owner() const {
        const QDBusReply<uint> process = session->interface()->servicePid(id);
        return process.isValid() ? std::optional(static_cast<pid_t>(process.value())) : std::nullopt;
    }
    // Of the program that the bus knows.
    void end() const {
        const auto process = owner();
        if (!process)
            return;
        ::kill(*process, SIGTERM);
        EXPECT_TRUE(waitUntil([&] { return owner() != process; }));
    }

    // An error's name, or nothing when the call was answered.
    std::string call(const char *method, const QVariantList &arguments) const {
        auto message = QDBusMessage::createMethodCall(
            id, QLatin1Char('/') + QString(id).replace(QLatin1Char('.'), QLatin1Char('/')),
            QStringLiteral("org.freedesktop.Application"), QLatin1String(method));
        message.setArguments(arguments);
        return session->call(message, QDBus::Block, 30000).errorName().toStdString();
    }
    std::string activate() const { return call("Activate", {platformData()}); }
    std::string activateAction(const char *name) const {
        return call("ActivateAction", {QString::fromLatin1(name), QVariantList(), platformData()});
    }
    static QVariantMap platformData() {
        return {{QStringLiteral("desktop-startup-id"), QStringLiteral("test_TIME1")},
                {QStringLiteral("activation-token"), QStringLiteral("token")}};
    }

    bool isFocused(const MonthDay &day) const { return focusedWindow().starts_with(day.fileName()); }

    testing::ChildProcess start(const std::filesystem::path &vault) const {
        auto variables = bus->environment();
        variables["DIARY_ROOT"] = vault;
        return testing::ChildProcess({testing::builtProgram("TAVELO_TEST_TAVELO")}, variables);
    }

    ScopedEnvironment data{"XDG_DATA_HOME", folder / "data"};
    ScopedEnvironment config{"XDG_CONFIG_HOME", folder / "config"};
    ScopedEnvironment state{"XDG_STATE_HOME", folder / "state"};
    ScopedEnvironment root{"DIARY_ROOT", folder / "vault"};
    ScopedEnvironment platform{"QT_QPA_PLATFORM", "xcb"};
    ScopedEnvironment sanitizers{"ASAN_OPTIONS", xServerSanitizerOptions};
    std::optional<QDBusConnection> session;
};

TEST_F(DesktopActivationTest, isStartedByTheBusAndAnswers) {
    EXPECT_EQ(activate(), "");
    EXPECT_TRUE(waitUntil([this] { return windows() == 1; }));
    const auto process = owner();
    ASSERT_TRUE(process.has_value());
    // Again, by the same process.
    EXPECT_EQ(activate(), "");
    EXPECT_EQ(owner(), process);
    EXPECT_EQ(windows(), 1);
}

TEST_F(DesktopActivationTest, comesToTheFront) {
    EXPECT_EQ(activate(), "");
    ASSERT_TRUE(waitUntil([this] { return isFocused(today); }));
    ASSERT_TRUE(server->xdotool({"getactivewindow", "windowminimize"}).has_value());
    ASSERT_TRUE(waitUntil([this] { return windows() == 0; }));
    EXPECT_EQ(activate(), "");
    EXPECT_TRUE(waitUntil([this] { return windows() == 1 && isFocused(today); })) << focusedWindow();
}

TEST_F(DesktopActivationTest, opensTheSearchWindowAtItsStart) {
    EXPECT_EQ(activateAction("search"), "");
    EXPECT_TRUE(waitUntil([this] { return windows() == 2; }));
}

TEST_F(DesktopActivationTest, goesToToday) {
    EXPECT_EQ(activate(), "");
    ASSERT_TRUE(waitUntil([this] { return isFocused(today); })) << focusedWindow();
    ASSERT_TRUE(server->xdotool({"key", "alt+Left"}).has_value());
    ASSERT_TRUE(waitUntil([this] { return isFocused(today.advanced(-1)); })) << focusedWindow();
    EXPECT_EQ(activateAction("today"), "");
    EXPECT_TRUE(waitUntil([this] { return isFocused(today); })) << focusedWindow();
}

TEST_F(DesktopActivationTest, showsItsWindowWhenItIsToOpenFiles) {
    EXPECT_EQ(call("Open", {QStringList{QStringLiteral("file:///etc/passwd")}, platformData()}), "");
    EXPECT_TRUE(waitUntil([this] { return isFocused(today); })) << focusedWindow();
}

TEST_F(DesktopActivationTest, refusesAnActionThatItDoesNotHave) {
    EXPECT_EQ(activate(), "");
    EXPECT_EQ(activateAction("erase"), "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(activateAction(""), "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(windows(), 1);
}

TEST_F(DesktopActivationTest, passesTheNameOnToAnotherDiary) {
    EXPECT_EQ(activate(), "");
    const auto first = owner();
    auto other = start(folder / "other");
    ASSERT_TRUE(waitUntil([this] {
        QDBusMessage ask = QDBusMessage::createMethodCall(busName, QStringLiteral("/org/freedesktop/DBus"),
                                                          busName, QStringLiteral("ListQueuedOwners"));
        ask << id;
        return session->call(ask).arguments().value(0).toStringList().size() == 2;
    }));
    EXPECT_EQ(owner(), first);
    end();
    ASSERT_TRUE(owner().has_value());
    EXPECT_EQ(activateAction("search"), "");
    EXPECT_TRUE(waitUntil([this] { return windows() == 2; }));
    EXPECT_TRUE(other.isRunning());
}

TEST_F(DesktopActivationTest, needsNoBus) {
    auto variables = bus->environment();
    variables["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    testing::ChildProcess launched({testing::builtProgram("TAVELO_TEST_TAVELO"), "--search"}, variables);
    EXPECT_TRUE(waitUntil([this] { return windows() == 2; }));
    EXPECT_TRUE(launched.isRunning());
}

TEST_F(DesktopActivationTest, isHandedTheActionOfASecondLaunch) {
    EXPECT_EQ(activate(), "");
    ASSERT_TRUE(waitUntil([this] { return windows() == 1; }));
    testing::ChildProcess second({testing::builtProgram("TAVELO_TEST_TAVELO"), "--search"},
                                 bus->environment());
    EXPECT_EQ(second.waitForExit(), 0) << second.errors();
    EXPECT_TRUE(waitUntil([this] { return windows() == 2; }));
}

} // namespace
} // namespace diary

// SPDX-License-Identifier: MIT
#include <DiaryApp/DesktopActivation.h>

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QFile>
#include <QObject>
#include <QStringList>
#include <QVariant>

namespace diary {

namespace {

QString serviceName() {
    return QLatin1String(DesktopActivation::applicationId);
}

QString objectPath() {
    return QLatin1Char('/') + serviceName().replace(QLatin1Char('.'), QLatin1Char('/'));
}

// The bus library would start one where there is none.
bool hasSessionBus() {
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const auto runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtimeFolder.isEmpty() && QFile::exists(runtimeFolder + QLatin1String("/bus"));
}

QByteArray activationToken(const QVariantMap &platformData) {
    for (const auto &key : {QStringLiteral("activation-token"), QStringLiteral("desktop-startup-id")}) {
        if (auto token = platformData.value(key).toString().toUtf8(); !token.isEmpty())
            return token;
    }
    return {};
}

} // namespace

// The interface by which desktops start and activate programs. Files are not opened: the diary has one
// folder.
class DesktopActivation::Service : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit Service(DesktopActivation &owner) : m_owner(owner) {}

    Q_SCRIPTABLE void Activate(const QVariantMap &platformData) { launch(LaunchAction::Show, platformData); }

    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData) {
        Q_UNUSED(uris)
        launch(LaunchAction::Show, platformData);
    }

    Q_SCRIPTABLE void ActivateAction(const QString &name, const QVariantList &parameter,
                                     const QVariantMap &platformData) {
        Q_UNUSED(parameter)
        const auto action = launchActionNamed(name.toUtf8());
        if (action && *action != LaunchAction::Show)
            launch(*action, platformData);
        else
            sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("There is no such action."));
    }

private:
    void launch(LaunchAction action, const QVariantMap &platformData) {
        // By way of the bytes of a knock, whose checks hold here too.
        const auto request = decodedLaunchRequest(
            encoded({.action = action, .activationToken = activationToken(platformData)}));
        if (m_owner.onLaunch)
            m_owner.onLaunch(request);
    }

    DesktopActivation &m_owner;
};

DesktopActivation::DesktopActivation() = default;

// The object leaves the bus by itself.
DesktopActivation::~DesktopActivation() = default;

void DesktopActivation::start() {
    if (m_service || !hasSessionBus())
        return;
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    // Before the name: who waits for the name calls the object at once.
    m_service = std::make_unique<Service>(*this);
    bus.registerObject(objectPath(), m_service.get(), QDBusConnection::ExportScriptableInvokables);
    auto request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
    request << serviceName() << 0U;
    bus.send(request);
}

} // namespace diary

#include "DesktopActivationDBus.moc"

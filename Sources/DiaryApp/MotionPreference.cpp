// SPDX-License-Identifier: MIT
#include <DiaryApp/MotionPreference.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QStyle>

namespace diary {

void MotionPreference::ask() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    call << QStringLiteral("org.gnome.desktop.interface") << QStringLiteral("enable-animations");
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError())
            m_wantsAnimations = wantsAnimations(reply.value().variant());
        watcher->deleteLater();
    });
}

bool MotionPreference::isReduced() const {
    return !m_wantsAnimations || QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) == 0;
}

bool MotionPreference::wantsAnimations(const QVariant &answer) {
    auto value = answer;
    // The portal wraps its values twice.
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.metaType() != QMetaType::fromType<bool>() || value.toBool();
}

} // namespace diary

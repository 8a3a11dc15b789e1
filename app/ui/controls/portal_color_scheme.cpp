// SPDX-License-Identifier: MIT
#include "app/ui/controls/portal_color_scheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace kelvora {
namespace {

constexpr auto service = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto interface = "org.freedesktop.portal.Settings";
constexpr auto appearance = "org.freedesktop.appearance";
constexpr auto colorScheme = "color-scheme";
constexpr uint dark = 1; // 0: no preference, 2: light

} // namespace

PortalColorScheme::PortalColorScheme() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(service, path, interface, "SettingChanged", this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    registry_.setConnection(bus);
    registry_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    registry_.addWatchedService(service);
    connect(&registry_, &QDBusServiceWatcher::serviceRegistered, this, &PortalColorScheme::ask);
    ask();
}

void PortalColorScheme::ask() {
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, interface, "Read");
    question << appearance << colorScheme;
    question.setAutoStartService(false);
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid()) {
            setScheme(reply.value().variant());
        }
    });
}

void PortalColorScheme::settingChanged(const QString& group, const QString& key,
                                       const QDBusVariant& value) {
    if (group == QLatin1String(appearance) && key == QLatin1String(colorScheme)) {
        setScheme(value.variant());
    }
}

void PortalColorScheme::setScheme(const QVariant& value) {
    // `Read` wraps the value once more than the signal does.
    const QVariant scheme =
        value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
    const bool prefersDark = scheme.toUInt() == dark;
    if (prefersDark != prefersDark_) {
        prefersDark_ = prefersDark;
        emit changed();
    }
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "app/ui/status_notifier_watch.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace kelvora {
namespace {

constexpr QLatin1String service("org.kde.StatusNotifierWatcher"); // and its interface
constexpr QLatin1String path("/StatusNotifierWatcher");

} // namespace

StatusNotifierWatch::StatusNotifierWatch(std::function<void()> onHostThere)
    : onHostThere_(std::move(onHostThere)) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    registry_.setConnection(bus);
    registry_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    registry_.addWatchedService(service);
    connect(&registry_, &QDBusServiceWatcher::serviceRegistered, this,
            &StatusNotifierWatch::askForHost);
    bus.connect(service, path, service, QStringLiteral("StatusNotifierHostRegistered"), this,
                SLOT(askForHost()));
    askForHost();
}

void StatusNotifierWatch::askForHost() {
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
    question << service << "IsStatusNotifierHostRegistered";
    question.setAutoStartService(false);
    const auto* answer =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusPendingReply<QDBusVariant> reply = *finished;
                if (!reply.isError() && reply.value().variant().toBool() && onHostThere_)
                    std::exchange(onHostThere_, nullptr)();
            });
}

} // namespace kelvora

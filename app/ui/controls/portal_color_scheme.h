// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QString>

namespace kelvora {

/// Whether the user has asked the desktop for dark windows, by the settings portal
/// (org.freedesktop.portal.Settings, org.freedesktop.appearance color-scheme). The answer comes
/// later than the construction, and not before there is a portal: starting one at login, before the
/// desktop does, would leave the session with one that knows no display. Main thread only.
class PortalColorScheme : public QObject {
    Q_OBJECT

public:
    PortalColorScheme();

    [[nodiscard]] bool prefersDark() const { return prefersDark_; }

signals:
    void changed();

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void ask();
    void setScheme(const QVariant& value);

    QDBusServiceWatcher registry_;
    bool prefersDark_ = false;
};

} // namespace kelvora

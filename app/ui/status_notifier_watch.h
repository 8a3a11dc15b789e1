// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>

namespace kelvora {

/// Waits for a panel that shows status notifier items, on the session bus. Nothing in it blocks.
class StatusNotifierWatch final : public QObject {
    Q_OBJECT
public:
    /// `onHostThere` is called once from the loop, when a panel is there; it may destroy this.
    explicit StatusNotifierWatch(std::function<void()> onHostThere);

private:
    Q_SLOT void askForHost();

    std::function<void()> onHostThere_;
    QDBusServiceWatcher registry_;
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "app/ui/window_presenter.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>

namespace kelvora {
namespace {

/// Waits for a window to come up: before that the window manager knows nothing of it.
class FirstExposure final : public QObject {
public:
    FirstExposure(QWindow& window, WindowActivation& activation)
        : QObject(&window), activation_(activation) {
        window.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* window = static_cast<QWindow*>(watched);
        if (event->type() == QEvent::Expose && window->isExposed()) {
            window->removeEventFilter(this);
            deleteLater();
            activation_.bringToFront(window->winId());
        }
        return false;
    }

private:
    WindowActivation& activation_;
};

bool isOnScreen(const QWindow& window) {
    return window.isVisible() && !window.windowStates().testFlag(Qt::WindowMinimized) &&
           (window.type() == Qt::Window || window.type() == Qt::Dialog) &&
           !window.flags().testFlag(Qt::X11BypassWindowManagerHint);
}

} // namespace

void presentWindow(QWindow& window, WindowActivation& activation) {
    if (!window.isExposed())
        new FirstExposure(window, activation); // the window's
    if (window.isVisible())
        activation.bringToFront(window.winId()); // minimized, or on another desktop
    else
        window.setVisible(true);
}

void presentVisibleWindows(WindowActivation& activation) {
    QWindowList windows = QGuiApplication::topLevelWindows();
    // The last one ends up in front, with the focus.
    std::stable_partition(windows.begin(), windows.end(),
                          [](const QWindow* window) { return window->type() != Qt::Dialog; });
    for (QWindow* window : windows) {
        if (isOnScreen(*window))
            presentWindow(*window, activation);
    }
}

} // namespace kelvora

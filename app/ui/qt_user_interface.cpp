// SPDX-License-Identifier: MIT
#include "app/ui/qt_user_interface.h"

#include "app/ui/preferences_window.h"
#include "app/ui/status_item.h"
#include "app/ui/window_presenter.h"

#include <QApplication>
#include <QIcon>
#include <QSessionManager>

#include <utility>

namespace kelvora {

QtUserInterface::QtUserInterface(TrayArea& trayArea, WindowActivation& windowActivation,
                                 AddressOpener& addressOpener)
    : trayArea_(trayArea), windowActivation_(windowActivation), addressOpener_(addressOpener) {
    activation_.setSingleShot(true);
    activation_.callOnTimeout([this] { presentVisibleWindows(windowActivation_); });
    termination_.setSingleShot(true);
    // Not quit(), which would ask the windows first.
    termination_.callOnTimeout([] { QCoreApplication::exit(0); });
}

QtUserInterface::~QtUserInterface() = default;

void QtUserInterface::becomeAccessory() {
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QIcon icon;
    for (const int size : {32, 48, 128})
        icon.addFile(QStringLiteral(":/kelvora/AppIcon-%1.png").arg(size), {size, size});
    QGuiApplication::setWindowIcon(icon);
    // Login is the autostart entry's business; a session that restores programs would start a
    // second one, and as if the user had.
    QObject::connect(
        qGuiApp, &QGuiApplication::saveStateRequest, qGuiApp,
        [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); },
        Qt::DirectConnection);
}

void QtUserInterface::showStatusItem(const Menu& menu) {
    statusItem_ = std::make_unique<StatusItem>(trayArea_, menu,
                                               [this](MenuAction action) { perform(action); });
}

void QtUserInterface::setEnableItemState(bool isOn) {
    if (statusItem_)
        statusItem_->setEnableItemState(isOn);
}

void QtUserInterface::setOnMenuAction(std::function<void(MenuAction)> handler) {
    onMenuAction_ = std::move(handler);
}

void QtUserInterface::perform(MenuAction action) const {
    if (onMenuAction_)
        onMenuAction_(action);
}

void QtUserInterface::showPreferences(AppModel& model) {
    if (!preferences_)
        preferences_ = PreferencesWindow::create(model, addressOpener_, mainMenu_,
                                                 [this](MenuAction action) { perform(action); });
    if (preferences_)
        presentWindow(preferences_->window(), windowActivation_);
}

void QtUserInterface::activate() {
    activation_.start(); // after the window has come up that this is called for
}

void QtUserInterface::terminate() {
    termination_.start();
}

} // namespace kelvora

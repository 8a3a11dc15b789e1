// SPDX-License-Identifier: MIT
#include "app/ui/status_item.h"

#include "app/ui/menu_builder.h"
#include "app/ui/status_icon.h"
#include "app/ui/status_notifier_watch.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QMenu>
#include <QPalette>
#include <QSystemTrayIcon>

#include <chrono>

namespace kelvora {
namespace {

// Panels that offer both kinds of place for an icon are seen to do so within this time.
constexpr std::chrono::milliseconds timeForStatusNotifiers{1500};

PanelShade desktopShade(const PortalColorScheme& colorScheme) {
    const QPalette palette = QGuiApplication::palette();
    const bool isDark = colorScheme.prefersDark() || palette.windowText().color().lightness() >
                                                         palette.window().color().lightness();
    return isDark ? PanelShade::dark : PanelShade::light;
}

} // namespace

StatusItem::StatusItem(TrayArea& trayArea, const Menu& menu,
                       const std::function<void(MenuAction)>& onAction)
    : trayArea_(trayArea), menu_(buildMenu(menu, onAction)) {
    waitForPanel();
}

StatusItem::~StatusItem() {
    trayArea_.setOnAppeared(nullptr);
}

// Qt 6.4 decides at its first icon which kind of panel there is, for good; and a program that is
// started at login is there before the panel.
void StatusItem::waitForPanel() {
    preference_.setSingleShot(true);
    preference_.setInterval(timeForStatusNotifiers);
    preference_.callOnTimeout([this] { showIcon(); });
    const auto preferStatusNotifiers = [this] {
        if (!preference_.isActive())
            preference_.start();
    };
    trayArea_.setOnAppeared(preferStatusNotifiers);
    if (trayArea_.isThere())
        preferStatusNotifiers();
    statusNotifiers_ = std::make_unique<StatusNotifierWatch>([this] { showIcon(); });
}

void StatusItem::showIcon() {
    if (icon_)
        return; // both kinds came at once
    preference_.stop();
    trayArea_.setOnAppeared(nullptr);
    // Not destroyed here: it may be the caller. It has nothing to wait for any more.
    statusNotifiers_.release()->deleteLater();
    icon_ = std::make_unique<QSystemTrayIcon>(statusIcon(desktopShade(colorScheme_)));
    icon_->setToolTip(QStringLiteral("Kelvora"));
    icon_->setContextMenu(menu_.get());
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, menu_.get(),
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger)
                             popUpMenu();
                     });
    icon_->show();
    connect(&colorScheme_, &PortalColorScheme::changed, this, &StatusItem::updateShade);
    qApp->installEventFilter(this);
}

bool StatusItem::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        updateShade();
    return false;
}

void StatusItem::updateShade() {
    icon_->setIcon(statusIcon(desktopShade(colorScheme_)));
}

void StatusItem::popUpMenu() {
    if (!popUp_) {
        popUp_ = std::make_unique<QMenu>();
        popUp_->addActions(menu_->actions());
    }
    popUp_->popup(QCursor::pos());
}

void StatusItem::setEnableItemState(bool isOn) {
    for (QAction* action : menu_->actions()) {
        if (action->data().toInt() == static_cast<int>(MenuAction::toggleEnabled))
            action->setChecked(isOn);
    }
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "app/shell/menus.h"
#include "app/ui/controls/portal_color_scheme.h"
#include "host/tray_area.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class QMenu;
class QSystemTrayIcon;

namespace kelvora {

class StatusNotifierWatch;

/// The icon in the panel and its menu, as soon as there is a panel for it, and again in each later
/// one; light or dark as the desktop is. Main thread only.
class StatusItem final : public QObject {
public:
    /// `onAction` is called for what is chosen in the menu. `trayArea` outlives the item.
    StatusItem(TrayArea& trayArea, const Menu& menu,
               const std::function<void(MenuAction)>& onAction);
    ~StatusItem() override;

    /// The check mark of `toggleEnabled`.
    void setEnableItemState(bool isOn);

private:
    void waitForPanel();
    void showIcon();
    void popUpMenu();
    void updateShade();
    bool eventFilter(QObject* watched, QEvent* event) override;

    TrayArea& trayArea_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QMenu> popUp_; ///< the same items; `menu_` may be shown by the panel
    std::unique_ptr<StatusNotifierWatch> statusNotifiers_;
    PortalColorScheme colorScheme_;
    QTimer preference_; ///< while the better kind of panel may still come
    std::unique_ptr<QSystemTrayIcon> icon_;
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "app/shell/user_interface.h"
#include "host/address_opener.h"
#include "host/tray_area.h"
#include "host/window_activation.h"

#include <QTimer>

#include <functional>
#include <memory>
#include <span>

namespace kelvora {

class PreferencesWindow;
class StatusItem;

/// The interface in Qt. Needs a QApplication, which exists before and after it.
class QtUserInterface final : public UserInterface {
public:
    /// They outlive the interface.
    QtUserInterface(TrayArea& trayArea, WindowActivation& windowActivation,
                    AddressOpener& addressOpener);
    ~QtUserInterface() override;

    void becomeAccessory() override;
    void setMainMenu(std::span<const Menu> menus) override { mainMenu_ = menus; }
    void showStatusItem(const Menu& menu) override;
    void setEnableItemState(bool isOn) override;
    void setOnMenuAction(std::function<void(MenuAction)> handler) override;
    void showPreferences(AppModel& model) override;
    void activate() override;
    void terminate() override;

private:
    void perform(MenuAction action) const;

    TrayArea& trayArea_;
    WindowActivation& windowActivation_;
    AddressOpener& addressOpener_;
    std::span<const Menu> mainMenu_;
    std::function<void(MenuAction)> onMenuAction_;
    std::unique_ptr<StatusItem> statusItem_;
    std::unique_ptr<PreferencesWindow> preferences_; ///< none before it is first shown
    // Due in the loop's next turn.
    QTimer activation_;
    QTimer termination_;
};

} // namespace kelvora

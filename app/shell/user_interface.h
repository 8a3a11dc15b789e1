// SPDX-License-Identifier: MIT
#pragma once

#include "app/shell/menus.h"

#include <functional>
#include <span>

namespace kelvora {

class AppModel;

/// The program's own surface: its icon in the panel, its menus and its window. Main thread only.
class UserInterface {
public:
    virtual ~UserInterface() = default;

    /// The program lives in the panel: closing its last window does not end it.
    virtual void becomeAccessory() = 0;
    /// The menus that the program's windows show.
    virtual void setMainMenu(std::span<const Menu> menus) = 0;
    /// Puts the program's icon, without a title, into the panel, now or when there is one.
    virtual void showStatusItem(const Menu& menu) = 0;
    /// The check mark of `toggleEnabled`; nothing before `showStatusItem`.
    virtual void setEnableItemState(bool isOn) = 0;
    /// Called when an item is chosen, except those that edit text.
    virtual void setOnMenuAction(std::function<void(MenuAction)> handler) = 0;

    /// Brings the window with the preferences to the front; the same one each time, made by the
    /// first call. `model` outlives the interface.
    virtual void showPreferences(AppModel& model) = 0;
    /// Brings this program in front of others.
    virtual void activate() = 0;
    /// Ends the program, in order, once the event loop runs again.
    virtual void terminate() = 0;
};

} // namespace kelvora

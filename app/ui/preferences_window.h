// SPDX-License-Identifier: MIT
#pragma once

#include "app/shell/menus.h"
#include "app/ui/main_menu.h"

#include <QWindow>

#include <functional>
#include <memory>
#include <span>

namespace kelvora {

class AddressOpener;
class AppModel;

/// The window with the preferences and what it shows. Main thread only.
class PreferencesWindow {
public:
    /// Loads what the window needs, which takes a moment. Null when that is not installed.
    [[nodiscard]] static std::unique_ptr<PreferencesWindow>
    create(AppModel& model, AddressOpener& addressOpener, std::span<const Menu> menus,
           std::function<void(MenuAction)> onAction);

    [[nodiscard]] QWindow& window() { return *window_; }

private:
    PreferencesWindow() = default;

    std::unique_ptr<QObject> model_;
    std::unique_ptr<MainMenu> menus_;
    std::unique_ptr<QWindow> window_;
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>

namespace kelvora {

/// What the items of the menus do.
enum class MenuAction {
    separator, ///< nothing: a line between items
    toggleEnabled,
    showPreferences,
    checkForUpdates,
    quit,
    // Of whatever has the keyboard focus inside this program's own windows.
    undo,
    redo,
    cut,
    copy,
    paste,
    selectAll,
};

/// Texts are UTF-8 and live as long as the program.
struct MenuItem {
    MenuAction action = MenuAction::separator;
    std::string_view title = {}; ///< also the key of its translation
    /// With Command; a capital letter with Shift too. Empty: none.
    std::string_view keyEquivalent = {};
};

struct Menu {
    std::string_view title; ///< empty for the status item's, which shows none
    std::span<const MenuItem> items;
};

/// The menu of the status item.
[[nodiscard]] Menu statusMenu();
/// The menus of the program's windows, in the order of the menu bar.
[[nodiscard]] std::span<const Menu> mainMenu();

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "app/shell/menus.h"

#include <array>

namespace kelvora {
namespace {

using enum MenuAction;

constexpr MenuItem preferencesItem{showPreferences, "Preferences\u2026", ","};
constexpr MenuItem updatesItem{checkForUpdates, "Check for Updates\u2026"};
constexpr MenuItem quitItem{quit, "Quit Kelvora", "q"};

constexpr std::array statusItems{
    MenuItem{toggleEnabled, "Enable Kelvora"},
    MenuItem{},
    preferencesItem,
    updatesItem,
    MenuItem{},
    quitItem,
};
constexpr std::array applicationItems{preferencesItem, updatesItem, MenuItem{}, quitItem};
constexpr std::array editItems{
    MenuItem{undo, "Undo", "z"},
    MenuItem{redo, "Redo", "Z"},
    MenuItem{},
    MenuItem{cut, "Cut", "x"},
    MenuItem{copy, "Copy", "c"},
    MenuItem{paste, "Paste", "v"},
    MenuItem{selectAll, "Select All", "a"},
};
constexpr std::array mainMenus{Menu{"Kelvora", applicationItems}, Menu{"Edit", editItems}};

} // namespace

Menu statusMenu() {
    return {"", statusItems};
}

std::span<const Menu> mainMenu() {
    return mainMenus;
}

} // namespace kelvora

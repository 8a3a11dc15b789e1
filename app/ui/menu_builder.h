// SPDX-License-Identifier: MIT
#pragma once

#include "app/shell/menus.h"

#include <QKeySequence>
#include <QString>

#include <functional>
#include <memory>
#include <string_view>

class QMenu;

namespace kelvora {

/// A menu's or an item's title in the user's language; `title` itself where there is none.
[[nodiscard]] QString translatedTitle(std::string_view title);

/// The key equivalent with Control in the place of Command; empty for none.
[[nodiscard]] QKeySequence keySequence(std::string_view keyEquivalent);

/// The menu as a widget. `toggleEnabled` has a check mark, which only the caller sets; choosing an
/// item calls `onAction`.
[[nodiscard]] std::unique_ptr<QMenu> buildMenu(const Menu& menu,
                                               const std::function<void(MenuAction)>& onAction);

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "app/shell/menus.h"

#include <QObject>
#include <QVariantList>

#include <functional>
#include <span>
#include <utility>

namespace kelvora {

/// The menu bar of the program's windows, for QML.
class MainMenu final : public QObject {
    Q_OBJECT
    /// In their order: `title` and `items`; each of these with `title` (empty: a separator),
    /// `shortcut` (may be empty) and the same to show in `shortcutText`, `action` (for `trigger`)
    /// and `edit`: the name of the method of the focused item that it calls instead, or empty.
    Q_PROPERTY(QVariantList menus READ menus CONSTANT)

public:
    MainMenu(std::span<const Menu> menus, std::function<void(MenuAction)> onAction);

    [[nodiscard]] QVariantList menus() const { return menus_; }
    Q_INVOKABLE void trigger(int action) const { onAction_(static_cast<MenuAction>(action)); }

private:
    QVariantList menus_;
    std::function<void(MenuAction)> onAction_;
};

} // namespace kelvora

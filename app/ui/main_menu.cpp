// SPDX-License-Identifier: MIT
#include "app/ui/main_menu.h"

#include "app/ui/menu_builder.h"

#include <QVariantMap>

namespace kelvora {
namespace {

/// The text editing methods of Qt Quick's items go by these names.
QString editMethod(MenuAction action) {
    switch (action) {
    case MenuAction::undo:
        return QStringLiteral("undo");
    case MenuAction::redo:
        return QStringLiteral("redo");
    case MenuAction::cut:
        return QStringLiteral("cut");
    case MenuAction::copy:
        return QStringLiteral("copy");
    case MenuAction::paste:
        return QStringLiteral("paste");
    case MenuAction::selectAll:
        return QStringLiteral("selectAll");
    case MenuAction::separator:
    case MenuAction::toggleEnabled:
    case MenuAction::showPreferences:
    case MenuAction::checkForUpdates:
    case MenuAction::quit:
        return {};
    }
    return {};
}

QVariantMap itemForQml(const MenuItem& item) {
    const QKeySequence keys = keySequence(item.keyEquivalent);
    return {{"title", item.title.empty() ? QString() : translatedTitle(item.title)},
            {"shortcut", keys.toString(QKeySequence::PortableText)},
            {"shortcutText", keys.toString(QKeySequence::NativeText)},
            {"action", static_cast<int>(item.action)},
            {"edit", editMethod(item.action)}};
}

} // namespace

MainMenu::MainMenu(std::span<const Menu> menus, std::function<void(MenuAction)> onAction)
    : onAction_(std::move(onAction)) {
    for (const Menu& menu : menus) {
        QVariantList items;
        for (const MenuItem& item : menu.items)
            items.append(itemForQml(item));
        menus_.append(QVariantMap{{"title", translatedTitle(menu.title)}, {"items", items}});
    }
}

} // namespace kelvora

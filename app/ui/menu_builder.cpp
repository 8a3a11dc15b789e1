// SPDX-License-Identifier: MIT
#include "app/ui/menu_builder.h"

#include <QCoreApplication>
#include <QMenu>

namespace kelvora {

QString translatedTitle(std::string_view title) {
    return QCoreApplication::translate("Menu", std::string(title).c_str());
}

QKeySequence keySequence(std::string_view keyEquivalent) {
    if (keyEquivalent.empty())
        return {};
    const QString key = QString::fromUtf8(keyEquivalent);
    const bool isCapital = key != key.toLower();
    return QKeySequence(QLatin1String(isCapital ? "Ctrl+Shift+" : "Ctrl+") + key.toUpper());
}

std::unique_ptr<QMenu> buildMenu(const Menu& menu,
                                 const std::function<void(MenuAction)>& onAction) {
    auto built = std::make_unique<QMenu>(translatedTitle(menu.title));
    for (const MenuItem& item : menu.items) {
        if (item.action == MenuAction::separator) {
            built->addSeparator();
            continue;
        }
        QAction* const action = built->addAction(translatedTitle(item.title));
        action->setData(static_cast<int>(item.action));
        action->setShortcut(keySequence(item.keyEquivalent));
        action->setMenuRole(QAction::NoRole);
        action->setCheckable(item.action == MenuAction::toggleEnabled);
        QObject::connect(action, &QAction::triggered, built.get(),
                         [onAction, action, chosen = item.action](bool isChecked) {
                             // The toolkit has moved the check mark already; it shows a state.
                             if (action->isCheckable())
                                 action->setChecked(!isChecked);
                             onAction(chosen);
                         });
    }
    return built;
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "app/ui/preferences_window.h"

#include "app/ui/preferences_model.h"
#include "app/ui/preferences_module.h"
#include "app/ui/program_files.h"

#include <QPluginLoader>

#include <utility>

namespace kelvora {
namespace {

QString moduleFile() {
    return programsOwnFile(QStringLiteral("kelvora-preferences.so"),
                           QStringLiteral(KELVORA_MODULE_DIRECTORY));
}

} // namespace

std::unique_ptr<PreferencesWindow>
PreferencesWindow::create(AppModel& model, AddressOpener& addressOpener,
                          std::span<const Menu> menus, std::function<void(MenuAction)> onAction) {
    QPluginLoader loader(moduleFile());
    auto* module = qobject_cast<PreferencesModule*>(loader.instance());
    if (module == nullptr) {
        qWarning("The preferences window cannot be loaded: %ls",
                 qUtf16Printable(loader.errorString()));
        return nullptr;
    }
    std::unique_ptr<PreferencesWindow> preferences(new PreferencesWindow);
    preferences->model_ = std::make_unique<PreferencesModel>(model, addressOpener);
    preferences->menus_ = std::make_unique<MainMenu>(menus, std::move(onAction));
    preferences->window_ = module->makeWindow(*preferences->model_, *preferences->menus_);
    return preferences->window_ ? std::move(preferences) : nullptr;
}

} // namespace kelvora

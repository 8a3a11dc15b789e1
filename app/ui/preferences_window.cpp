// SPDX-License-Identifier: MIT
#include "app/ui/preferences_window.h"

#include "app/ui/preferences_model.h"
#include "app/ui/preferences_module.h"

#include <QCoreApplication>
#include <QDir>
#include <QPluginLoader>

#include <utility>

namespace kelvora {
namespace {

/// Beside the program in a build, in the library directory when installed.
QString moduleFile() {
    const QDir program(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral("kelvora-preferences.so");
    const QString inBuild = program.filePath(name);
    return QFile::exists(inBuild) ? inBuild : program.filePath(KELVORA_MODULE_DIRECTORY "/" + name);
}

} // namespace

std::unique_ptr<PreferencesWindow>
PreferencesWindow::create(AppModel& model, std::span<const Menu> menus,
                          std::function<void(MenuAction)> onAction) {
    QPluginLoader loader(moduleFile());
    auto* module = qobject_cast<PreferencesModule*>(loader.instance());
    if (module == nullptr) {
        qWarning("The preferences window cannot be loaded: %ls",
                 qUtf16Printable(loader.errorString()));
        return nullptr;
    }
    std::unique_ptr<PreferencesWindow> preferences(new PreferencesWindow);
    preferences->model_ = std::make_unique<PreferencesModel>(model);
    preferences->menus_ = std::make_unique<MainMenu>(menus, std::move(onAction));
    preferences->window_ = module->makeWindow(*preferences->model_, *preferences->menus_);
    return preferences->window_ ? std::move(preferences) : nullptr;
}

} // namespace kelvora

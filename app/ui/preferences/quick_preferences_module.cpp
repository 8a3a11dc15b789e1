// SPDX-License-Identifier: MIT
#include "app/ui/drag_guide/drag_guide_module.h"
#include "app/ui/preferences/persistent_window.h"
#include "app/ui/preferences_module.h"

#include <QCoreApplication>
#include <QQmlContext>
#include <QQuickWindow>

namespace kelvora {

class QuickPreferencesModule final : public QObject, public PreferencesModule {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "app.kelvora.PreferencesModule/1")
    Q_INTERFACES(kelvora::PreferencesModule)

public:
    std::unique_ptr<QWindow> makeWindow(QObject& model, QObject& menus) override {
        // Opens at once and takes a third of the memory; nothing here needs a graphics card.
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        registerDragGuideModule();
        auto window = std::make_unique<PersistentWindow>();
        window->setTitle(QCoreApplication::translate("PreferencesWindow", "Kelvora Preferences"));
        window->resize(540, 680);
        window->setMinimumSize({500, 500});
        window->setInitialProperties({{"preferences", QVariant::fromValue(&model)},
                                      {"mainMenu", QVariant::fromValue(&menus)},
                                      {"persistentWindow", QVariant::fromValue(window.get())}});
        window->setSource(QUrl(QStringLiteral(
            "qrc:/qt-project.org/imports/Kelvora/Preferences/PreferencesWindow.qml")));
        if (window->status() != QQuickView::Ready)
            return nullptr; // what was wrong stands on standard error
        window->center();
        return window;
    }
};

} // namespace kelvora

#include "quick_preferences_module.moc"

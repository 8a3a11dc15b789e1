// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QtPlugin>

#include <memory>

class QWindow;

namespace kelvora {

/// What the window with the preferences is made by. A library of its own, because Qt Quick would
/// otherwise stay in the memory of a program that hardly ever shows a window. It knows the program
/// only by the properties and signals of the objects that it is given.
class PreferencesModule {
public:
    virtual ~PreferencesModule() = default;

    /// A hidden window, which stays usable when it is closed. `model` and `menus` (a MainMenu)
    /// outlive it. Null when it cannot be made.
    [[nodiscard]] virtual std::unique_ptr<QWindow> makeWindow(QObject& model, QObject& menus) = 0;
};

} // namespace kelvora

Q_DECLARE_INTERFACE(kelvora::PreferencesModule, "app.kelvora.PreferencesModule/1")

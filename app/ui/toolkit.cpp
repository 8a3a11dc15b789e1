// SPDX-License-Identifier: MIT
#include "app/ui/toolkit.h"

#include "app/ui/translation.h"

#include <QByteArray>

#include <optional>

namespace kelvora {
namespace {

class EnvironmentChange {
public:
    EnvironmentChange(const char* name, const QByteArray& value)
        : name_(name), wasSet_(qEnvironmentVariableIsSet(name)), before_(qgetenv(name)) {
        qputenv(name, value);
    }
    ~EnvironmentChange() {
        if (wasSet_)
            qputenv(name_, before_);
        else
            qunsetenv(name_);
    }
    EnvironmentChange(const EnvironmentChange&) = delete;
    EnvironmentChange& operator=(const EnvironmentChange&) = delete;

private:
    const char* name_;
    bool wasSet_;
    QByteArray before_;
};

constexpr const char* desktopVariable = "XDG_CURRENT_DESKTOP";
constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";

/// Would the toolkit take GTK for its theme? That brings a second toolkit into the process, more
/// than twice as much memory, and gives nothing but dialogs.
bool asksForGtk() {
    const QByteArray theme = qgetenv(themeVariable);
    const QByteArray desktop = qgetenv(desktopVariable).toUpper();
    bool isGtkDesktop = false;
    for (const char* const name :
         {"GNOME", "XFCE", "MATE", "CINNAMON", "UNITY", "LXDE", "BUDGIE", "PANTHEON"})
        isGtkDesktop |= desktop.contains(name);
    return theme.isEmpty() ? isGtkDesktop : theme.startsWith("gtk");
}

} // namespace

std::unique_ptr<QApplication> makeApplication(int& argc, char** argv) {
    const EnvironmentChange platform("QT_QPA_PLATFORM", "xcb");
    const EnvironmentChange inputMethod("QT_IM_MODULE", "none");
    // A screen reader may be started long after the program, and Qt 6.4 looks for one only once,
    // some time after the start.
    qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    std::optional<EnvironmentChange> desktop;
    std::optional<EnvironmentChange> theme;
    if (asksForGtk()) {
        desktop.emplace(desktopVariable, "other"); // Qt 6.4 tries its plugins for the desktop first
        theme.emplace(themeVariable, "gnome");     // its own, with the fonts of such desktops
    }
    auto application = std::make_unique<QApplication>(argc, argv);
    installTranslation();
    return application;
}

} // namespace kelvora

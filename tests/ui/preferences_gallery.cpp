// SPDX-License-Identifier: MIT
// Pictures of the window with the preferences in all its states, in the language of the session:
// preferences_gallery DIRECTORY

#include "app/shell/app_model.h"
#include "app/shell/menus.h"
#include "app/ui/preferences_window.h"
#include "app/ui/translation.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <QApplication>
#include <QDir>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <cstdio>
#include <functional>

namespace {

using namespace kelvora;

QPalette darkPalette() {
    QPalette palette(QColor(0x3a, 0x3f, 0x44), QColor(0x2a, 0x2e, 0x32));
    palette.setColor(QPalette::Base, QColor(0x1b, 0x1e, 0x20));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    palette.setColor(QPalette::HighlightedText, QColor(0xfc, 0xfc, 0xfc));
    return palette;
}

struct Gallery {
    explicit Gallery(const QString& path) : directory(path) {
        desktop.layouts.enabled[0].localizedName = "English (US)";
        desktop.layouts.enabled[1].localizedName = "Russian";
    }

    QDir directory;
    fake::FakeDesktop desktop;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<PreferencesWindow> preferences;

    QQuickWindow& window() { return static_cast<QQuickWindow&>(preferences->window()); }

    void open(QSize size) {
        model = std::make_unique<AppModel>(desktop.services(), desktop.session());
        model->setHotkeyStatus("Listening for double-Shift");
        model->setShiftEventCount(1284);
        model->setDoubleTapCount(97);
        preferences = PreferencesWindow::create(*model, desktop.session().addressOpener, mainMenu(),
                                                [](MenuAction) {});
        window().resize(size);
        window().show();
        (void)QTest::qWaitForWindowExposed(&window());
    }
    void save(const QString& name) {
        QTest::qWait(300);
        window().grabWindow().save(directory.filePath(name + ".png"));
    }
    void close() {
        preferences.reset();
        model.reset();
    }
    QQuickItem* item(const char* name) { return window().findChild<QQuickItem*>(name); }
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    installTranslation();
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fprintf(stderr, "usage: preferences_gallery DIRECTORY\n");
        return 2;
    }
    for (const bool isDark : {false, true}) {
        if (isDark)
            QGuiApplication::setPalette(darkPalette());
        const QString prefix = isDark ? "dark-" : "light-";
        Gallery gallery(arguments[1]);

        gallery.open({540, 1400});
        gallery.item("dragGuideClock")->setProperty("animationTime", 1.6);
        gallery.save(prefix + "granted");
        gallery.item("dragGuideClock")->setProperty("animationTime", 3.3);
        gallery.save(prefix + "switched");
        gallery.close();

        gallery.desktop.permissions.accessibility = false;
        gallery.desktop.permissions.inputMonitoring = false;
        gallery.desktop.layouts.enabled.resize(1);
        gallery.desktop.defaults.values["sensitivity"] = 0.45;
        gallery.desktop.login.refusal = "the autostart directory cannot be written";
        gallery.open({540, 680});
        gallery.model->setHotkeyStatus(
            "Secure keyboard input is active. Leave password fields or disable Secure Keyboard "
            "Entry in Terminal.");
        gallery.model->setLaunchAtLogin(true);
        gallery.save(prefix + "needed");
        gallery.window().findChild<QQuickItem*>("page")->setProperty("contentY", 480);
        gallery.save(prefix + "needed-middle");
        gallery.window().resize(500, 500);
        gallery.window().findChild<QQuickItem*>("page")->setProperty("contentY", 5000);
        gallery.save(prefix + "small-end");
        gallery.close();

        Gallery keyboard(arguments[1]);
        keyboard.open({540, 680});
        for (int step = 0; step < 2; ++step)
            QTest::keyClick(&keyboard.window(), Qt::Key_Tab);
        keyboard.save(prefix + "focus");
        QTest::keyClick(&keyboard.window(), Qt::Key_Space);
        keyboard.save(prefix + "picker");
        QTest::keyClick(&keyboard.window(), Qt::Key_Escape);
        for (int step = 0; step < 7; ++step)
            QTest::keyClick(&keyboard.window(), Qt::Key_Tab);
        keyboard.save(prefix + "focus-guide");
        keyboard.close();
    }
    return 0;
}

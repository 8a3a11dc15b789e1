// SPDX-License-Identifier: MIT
#include "tests/app/running_app.h"

#include <vector>

namespace kelvora {
namespace {

class LifecycleTest : public RunningApp {
protected:
    std::size_t listeners() const {
        return desktop.events.tapCount() + desktop.events.monitorCount();
    }
    /// The desktop has switched the tap off without a word.
    void switchTapOff() { app->hotkey().eventTap()->setEnabled(false); }
    bool isTapOn() { return app->hotkey().eventTap() && app->hotkey().eventTap()->isEnabled(); }
    /// Half a double tap and some text: what a handler may have to forget.
    void typeAndTapOnce() {
        desktop.type(u"abc");
        desktop.tap(keyCode::leftShift);
    }
};

TEST_F(LifecycleTest, LaunchTakesOverFirstAndShowsThePreferencesToAUser) {
    using Calls = fake::SessionCalls;
    const Calls launched = {"claim", "accessory", "start updater", "main menu", "status item"};
    desktop.defaults.values = {{"firstSourceID", "us"}, {"secondSourceID", "ru"}};
    for (const bool inBackground : {true, false}) {
        desktop.launchedInBackground = inBackground;
        app.reset();
        desktop.sessionCalls.clear();
        launch();
        Calls expected = launched;
        if (!inBackground) {
            expected.emplace_back("preferences");
        }
        EXPECT_EQ(desktop.sessionCalls, expected);
        EXPECT_TRUE(isTapOn());
    }
    desktop.sessionCalls.clear();
    desktop.lifecycle.onReopen();
    EXPECT_EQ(desktop.sessionCalls, (Calls{"preferences"}));
}

TEST_F(LifecycleTest, MenusHaveTheirItems) {
    const auto lines = [](const Menu& menu) {
        std::vector<std::string> result;
        for (const MenuItem& item : menu.items) {
            result.push_back(std::string(item.title) + '|' + std::string(item.keyEquivalent));
        }
        return result;
    };
    using Lines = std::vector<std::string>;
    EXPECT_EQ(lines(statusMenu()), (Lines{"Enable Kelvora|", "|", "Preferences…|,",
                                          "Check for Updates…|", "|", "Quit Kelvora|q"}));
    ASSERT_EQ(mainMenu().size(), 2U);
    EXPECT_EQ(mainMenu()[0].title, "Kelvora");
    EXPECT_EQ(lines(mainMenu()[0]),
              (Lines{"Preferences…|,", "Check for Updates…|", "|", "Quit Kelvora|q"}));
    EXPECT_EQ(mainMenu()[1].title, "Edit");
    EXPECT_EQ(lines(mainMenu()[1]),
              (Lines{"Undo|z", "Redo|Z", "|", "Cut|x", "Copy|c", "Paste|v", "Select All|a"}));
}

TEST_F(LifecycleTest, MenuItemsAct) {
    const auto& choose = desktop.interface.choose;
    desktop.sessionCalls.clear();
    choose(MenuAction::toggleEnabled);
    EXPECT_EQ(app->model().hotkeyStatus(), "Disabled");
    EXPECT_EQ(listeners(), 0U);
    choose(MenuAction::toggleEnabled);
    EXPECT_EQ(app->model().hotkeyStatus(), "Listening for double-Shift");
    choose(MenuAction::showPreferences);
    choose(MenuAction::checkForUpdates);
    choose(MenuAction::quit);
    EXPECT_EQ(desktop.sessionCalls,
              (fake::SessionCalls{"store isEnabled", "store isEnabled", "preferences",
                                  "check for updates", "terminate"}));
    const auto menuOfThePast = choose;
    app.reset();
    menuOfThePast(MenuAction::toggleEnabled);
}

TEST_F(LifecycleTest, ReplacedCopyHearsNothingMore) {
    desktop.type(u"ghbdtn");
    desktop.lifecycle.onReplaced();
    EXPECT_EQ(listeners(), 0U);
    EXPECT_EQ(desktop.sessionCalls.back(), "terminate");
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(text(), u"ghbdtn");
}

TEST_F(LifecycleTest, HealthCheckRevivesTheListenerAndLeavesTheStatus) {
    switchTapOff();
    desktop.runFor(AppDelegate::healthCheckInterval - 1);
    EXPECT_FALSE(isTapOn());
    desktop.runFor(2);
    EXPECT_TRUE(isTapOn());

    desktop.events.tapSupport = fake::EventHub::TapSupport::refused;
    desktop.events.hasGlobalMonitors = false;
    app->model().setIsEnabled(false);
    app->model().setIsEnabled(true);
    const std::string failed = "Keyboard listener could not start. Quit and reopen Kelvora.";
    EXPECT_EQ(app->model().hotkeyStatus(), failed);
    desktop.events.tapSupport = fake::EventHub::TapSupport::works;
    desktop.runFor(AppDelegate::healthCheckInterval + 1);
    EXPECT_TRUE(isTapOn());
    EXPECT_EQ(app->model().hotkeyStatus(), failed);

    app->model().setIsEnabled(false);
    desktop.runFor(AppDelegate::healthCheckInterval + 1);
    EXPECT_EQ(listeners(), 0U) << "what is switched off stays off";
}

TEST_F(LifecycleTest, WakeOfMachineOrDisplayBeginsAnew) {
    for (const bool isDisplay : {false, true}) {
        SCOPED_TRACE(isDisplay);
        launch();
        typeAndTapOnce();
        desktop.permissions.inputMonitoring = isDisplay;
        (isDisplay ? desktop.lifecycle.onDisplayWake : desktop.lifecycle.onWake)();
        EXPECT_EQ(app->model().inputMonitoringGranted(), isDisplay);
        EXPECT_EQ(recorded(), u"") << "a start of what listens already would forget nothing";
        // Restarted also where it was off; conversions are refused then all the same.
        app->model().setIsEnabled(false);
        desktop.lifecycle.onWake();
        EXPECT_TRUE(isTapOn());
        EXPECT_EQ(app->model().hotkeyStatus(), "Disabled");
        app->model().setIsEnabled(true);
    }
}

TEST_F(LifecycleTest, SessionThatResignsForgetsAndConvertsNothing) {
    typeAndTapOnce();
    const EventTap* const tap = app->hotkey().eventTap();
    desktop.lifecycle.isSessionActive = false;
    desktop.lifecycle.onResignedActive();
    EXPECT_EQ(recorded(), u"");
    desktop.tap(keyCode::leftShift);
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount(), 0) << "the first tap was forgotten";
    EXPECT_EQ(app->hotkey().eventTap(), tap);
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"abcghbdtn");

    switchTapOff();
    desktop.permissions.inputMonitoring = false;
    desktop.lifecycle.isSessionActive = true;
    desktop.lifecycle.onBecameActive();
    EXPECT_FALSE(app->model().inputMonitoringGranted());
    EXPECT_TRUE(isTapOn());
    EXPECT_EQ(app->hotkey().eventTap(), tap) << "a tap that is there is only enabled";
}

TEST_F(LifecycleTest, AccessibilityChangeIsTakenUpAtOnce) {
    desktop.permissions.accessibility = false;
    desktop.lifecycle.onAccessibilityChanged();
    EXPECT_EQ(app->model().hotkeyStatus(), "Accessibility permission required");
    EXPECT_EQ(listeners(), 0U);
    desktop.permissions.accessibility = true;
    desktop.secureInput.isOn = true;
    desktop.lifecycle.onAccessibilityChanged();
    EXPECT_TRUE(isTapOn());
    desktop.secureInput.isOn = false;
    desktop.lifecycle.onAccessibilityChanged();
    EXPECT_EQ(app->model().hotkeyStatus(), "Listening for double-Shift");
}

} // namespace
} // namespace kelvora

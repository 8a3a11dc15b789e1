// SPDX-License-Identifier: MIT
#include "tests/app/running_app.h"

#include <vector>

namespace kelvora {
namespace {

using Tap = fake::EventHub::TapSupport;

constexpr const char* listening = "Listening for double-Shift";
constexpr const char* failed = "Keyboard listener could not start. Quit and reopen Kelvora.";
constexpr const char* notPermitted = "Accessibility permission required";
constexpr const char* secure = "Secure keyboard input is active. Leave password fields or disable "
                               "Secure Keyboard Entry in Terminal.";

class LifecycleTest : public RunningApp {
protected:
    std::size_t listeners() const {
        return desktop.events.tapCount() + desktop.events.monitorCount();
    }
    std::string listenerStatus() { return app->model().hotkeyStatus(); }
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
    fake::SessionCalls expected{"claim", "accessory", "start updater", "main menu", "status item"};
    desktop.defaults.values = {{"firstSourceID", "us"}, {"secondSourceID", "ru"}};
    for (const bool inBackground : {true, false}) {
        desktop.launchedInBackground = inBackground;
        app.reset();
        desktop.sessionCalls.clear();
        launch();
        if (!inBackground)
            expected.emplace_back("preferences");
        EXPECT_EQ(desktop.sessionCalls, expected);
        EXPECT_TRUE(isTapOn());
    }
    desktop.lifecycle.onReopen();
    EXPECT_EQ(desktop.sessionCalls.size(), expected.size() + 1);
}

TEST_F(LifecycleTest, MenuItemsAct) {
    const auto& choose = desktop.interface.choose;
    desktop.sessionCalls.clear();
    desktop.type(u"ghbdtn");
    choose(MenuAction::toggleEnabled);
    EXPECT_EQ(listenerStatus(), "Disabled");
    EXPECT_EQ(listeners(), 0U);
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount(), 0);
    choose(MenuAction::toggleEnabled);
    EXPECT_EQ(listenerStatus(), listening);
    EXPECT_EQ(recorded(), u"");
    choose(MenuAction::showPreferences);
    choose(MenuAction::checkForUpdates);
    choose(MenuAction::quit);
    EXPECT_EQ(desktop.sessionCalls,
              (fake::SessionCalls{"store isEnabled", "store isEnabled", "preferences",
                                  "check for updates", "terminate"}));
    desktop.sessionCalls.clear();
    for (const UpdateShowing showing : {UpdateShowing::asReminder, UpdateShowing::byController})
        desktop.updates->standardUserDriverWillHandleShowingUpdate(showing, {},
                                                                   UserUpdateState::userInitiated);
    EXPECT_EQ(desktop.sessionCalls, fake::SessionCalls{"activate"}) << "forward with a window";
    const auto menuOfThePast = choose;
    app.reset();
    menuOfThePast(MenuAction::toggleEnabled);
    desktop.hasUpdater = false;
    launch();
    choose(MenuAction::checkForUpdates);
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

TEST_F(LifecycleTest, TheStatusSaysWhatTheListenerDoes) {
    const struct {
        const char* name;
        bool accessibility;
        Tap tap;
        bool global, local;
        const char* status;
        std::size_t taps, monitors;
    } cases[] = {
        {"tap", true, Tap::works, true, true, listening, 1, 1},
        {"tap refused", true, Tap::refused, true, true, listening, 0, 2},
        {"tap not enabled", true, Tap::cannotBeEnabled, true, false, listening, 0, 1},
        {"own events only", true, Tap::refused, false, true, failed, 0, 1},
        {"nothing", true, Tap::cannotBeEnabled, false, false, failed, 0, 0},
        {"not permitted", false, Tap::works, true, true, notPermitted, 0, 0},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        app.reset();
        desktop.defaults.values.clear();
        desktop.permissions.accessibility = testCase.accessibility;
        desktop.events.tapSupport = testCase.tap;
        desktop.events.hasGlobalMonitors = testCase.global;
        desktop.events.hasLocalMonitors = testCase.local;
        launch();
        EXPECT_EQ(listenerStatus(), testCase.status);
        EXPECT_TRUE(desktop.interface.isEnableItemOn);
        desktop.secureInput.isOn = true;
        app->applySettings(); // listening already
        EXPECT_EQ(listenerStatus(), testCase.accessibility ? secure : testCase.status);
        desktop.secureInput.isOn = false;
        EXPECT_EQ(desktop.events.tapCount(), testCase.taps);
        EXPECT_EQ(desktop.events.monitorCount(), testCase.monitors);
        app->model().setIsEnabled(false);
        EXPECT_EQ(listeners(), 0U);
        EXPECT_FALSE(desktop.interface.isEnableItemOn);
    }
}

TEST_F(LifecycleTest, SensitivityReachesTheDetector) {
    app->model().setSensitivity(0.05);
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(app->model().doubleTapCount(), 0);
    app->model().setSensitivity(0.1);
    typeAndConvert(u"");
    EXPECT_EQ(text(), u"привет") << "applying settings does not disturb a running listener";
}

TEST_F(LifecycleTest, HealthCheckRevivesTheListenerAndLeavesTheStatus) {
    switchTapOff();
    desktop.runFor(AppDelegate::healthCheckInterval - 1);
    EXPECT_FALSE(isTapOn());
    desktop.runFor(2);
    EXPECT_TRUE(isTapOn());

    desktop.events.tapSupport = Tap::refused;
    desktop.events.hasGlobalMonitors = false;
    app->model().setIsEnabled(false);
    app->model().setIsEnabled(true);
    EXPECT_EQ(listenerStatus(), failed);
    desktop.events.tapSupport = Tap::works;
    desktop.runFor(AppDelegate::healthCheckInterval + 1);
    EXPECT_TRUE(isTapOn());
    EXPECT_EQ(listenerStatus(), failed);

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
        EXPECT_EQ(listenerStatus(), "Disabled");
        app->model().setIsEnabled(true);
    }
}

TEST_F(LifecycleTest, SessionThatResignsForgetsAndConvertsNothing) {
    typeAndTapOnce();
    const EventTap* const tap = app->hotkey().eventTap();
    desktop.lifecycle.isSessionLocked = true;
    desktop.lifecycle.onResignedActive();
    EXPECT_EQ(recorded(), u"");
    desktop.tap(keyCode::leftShift);
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount(), 0) << "the first tap was forgotten";
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"abcghbdtn");

    switchTapOff();
    desktop.permissions.inputMonitoring = false;
    desktop.lifecycle.isSessionLocked = false;
    desktop.lifecycle.onBecameActive();
    EXPECT_FALSE(app->model().inputMonitoringGranted());
    EXPECT_TRUE(isTapOn());
    EXPECT_EQ(app->hotkey().eventTap(), tap) << "a tap that is there is only enabled";
}

TEST_F(LifecycleTest, AWindowBetweenTheTapsEndsTheTextAndAGrabTheTapToo) {
    typeAndTapOnce();
    desktop.windows.focus(fake::Windows::otherEditor);
    desktop.tap(keyCode::leftShift);
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount(), 1);
    EXPECT_EQ(recorded(), u"");

    typeAndTapOnce();
    for (const bool isGrabbed : {true, false})
        desktop.windows.setGrabbed(isGrabbed);
    desktop.tap(keyCode::leftShift);
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount(), 1) << "its end may have come unseen";
}

TEST_F(LifecycleTest, AccessibilityChangeIsTakenUpAtOnce) {
    desktop.permissions.accessibility = false;
    desktop.lifecycle.onAccessibilityChanged();
    EXPECT_EQ(listenerStatus(), notPermitted);
    EXPECT_EQ(listeners(), 0U);
    desktop.permissions.accessibility = true;
    desktop.secureInput.isOn = true;
    desktop.lifecycle.onAccessibilityChanged();
    EXPECT_TRUE(isTapOn());
    desktop.secureInput.isOn = false;
    desktop.lifecycle.onAccessibilityChanged();
    EXPECT_EQ(listenerStatus(), listening);
}

} // namespace
} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "tests/app/running_app.h"

#include <vector>

namespace kelvora {
namespace {

using ListenerStatusTest = RunningApp;

TEST_F(ListenerStatusTest, SaysWhatTheListenerDoes) {
    using Tap = fake::EventHub::TapSupport;
    struct Case {
        const char* name;
        bool accessibility;
        Tap tap;
        bool global, local;
        const char* status;
        std::size_t taps, monitors;
    };
    constexpr const char* listening = "Listening for double-Shift";
    constexpr const char* failed = "Keyboard listener could not start. Quit and reopen Kelvora.";
    const Case cases[] = {
        {"tap", true, Tap::works, true, true, listening, 1, 1},
        {"tap refused", true, Tap::refused, true, true, listening, 0, 2},
        {"tap not enabled", true, Tap::cannotBeEnabled, true, false, listening, 0, 1},
        {"own events only", true, Tap::refused, false, true, failed, 0, 1},
        {"nothing", true, Tap::cannotBeEnabled, false, false, failed, 0, 0},
        {"not permitted", false, Tap::works, true, true, "Accessibility permission required", 0, 0},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        app.reset();
        desktop.defaults.values.clear();
        desktop.permissions.accessibility = testCase.accessibility;
        desktop.events.tapSupport = testCase.tap;
        desktop.events.hasGlobalMonitors = testCase.global;
        desktop.events.hasLocalMonitors = testCase.local;
        launch();
        EXPECT_EQ(app->model().hotkeyStatus(), testCase.status);
        EXPECT_TRUE(desktop.interface.isEnableItemOn);
        desktop.secureInput.isOn = true;
        app->applySettings(); // listening already
        EXPECT_EQ(app->model().hotkeyStatus(),
                  testCase.accessibility
                      ? "Secure keyboard input is active. Leave password fields or disable Secure "
                        "Keyboard Entry in Terminal."
                      : testCase.status);
        desktop.secureInput.isOn = false;
        EXPECT_EQ(desktop.events.tapCount(), testCase.taps);
        EXPECT_EQ(desktop.events.monitorCount(), testCase.monitors);
        app->model().setIsEnabled(false);
        EXPECT_EQ(desktop.events.tapCount() + desktop.events.monitorCount(), 0U);
        EXPECT_FALSE(desktop.interface.isEnableItemOn);
    }
}

TEST_F(ListenerStatusTest, SwitchingOffStopsAndSwitchingOnStarts) {
    std::vector<std::string> announced;
    const auto observation = app->model().observe([&](AppModelProperty property) {
        if (property == AppModelProperty::hotkeyStatus) {
            announced.push_back(app->model().hotkeyStatus());
        }
    });
    desktop.type(u"ghbdtn");
    app->model().setIsEnabled(false);
    EXPECT_EQ(desktop.events.tapCount(), 0U);
    app->model().setIsEnabled(false);
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount(), 0);
    app->model().setIsEnabled(true);
    EXPECT_EQ(desktop.events.tapCount(), 1U);
    app->applySettings();
    EXPECT_EQ(announced, (std::vector<std::string>{"Disabled", "Listening for double-Shift"}))
        << "a status that stays the same is not announced";
    EXPECT_EQ(recorded(), u"");
}

TEST_F(ListenerStatusTest, SensitivityReachesTheDetector) {
    app->model().setSensitivity(0.05);
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(app->model().doubleTapCount(), 0);
    app->model().setSensitivity(0.1);
    typeAndConvert(u"");
    EXPECT_EQ(app->model().doubleTapCount(), 1);
    EXPECT_EQ(text(), u"привет") << "applying settings does not disturb a running listener";
}

} // namespace
} // namespace kelvora

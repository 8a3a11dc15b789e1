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
        bool listening;
    };
    const Case cases[] = {
        {"tap", true, Tap::works, true, false, "Listening for double-Shift", true},
        {"monitor of the others", true, Tap::refused, true, false, "Listening for double-Shift",
         true},
        {"own events only", true, Tap::refused, false, true,
         "Keyboard listener could not start. Quit and reopen Kelvora.", true},
        {"nothing", true, Tap::cannotBeEnabled, false, false,
         "Keyboard listener could not start. Quit and reopen Kelvora.", false},
        {"not permitted", false, Tap::works, true, false, "Accessibility permission required",
         false},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        app.reset();
        desktop.permissions.accessibility = testCase.accessibility;
        desktop.events.tapSupport = testCase.tap;
        desktop.events.hasGlobalMonitors = testCase.global;
        desktop.events.hasLocalMonitors = testCase.local;
        launch();
        EXPECT_EQ(app->model().hotkeyStatus(), testCase.status);
        EXPECT_EQ(desktop.events.tapCount() + desktop.events.monitorCount() > 0,
                  testCase.listening);
    }
}

TEST_F(ListenerStatusTest, SaysWhatIsOutOfReach) {
    Desktop limited = desktop.services();
    limited.sessionLimit = "Only X11 windows are served.";
    app.reset();
    app = std::make_unique<AppDelegate>(limited);
    app->launch();
    EXPECT_EQ(app->model().hotkeyStatus(),
              "Listening for double-Shift. Only X11 windows are served.");
    app->model().setIsEnabled(false);
    EXPECT_EQ(app->model().hotkeyStatus(), "Disabled");
}

TEST_F(ListenerStatusTest, SwitchingOffStopsAndSwitchingOnStarts) {
    std::vector<std::string> announced;
    app->model().onStatusChanged = [&](std::string_view text) { announced.emplace_back(text); };
    desktop.type(u"ghbdtn");
    app->model().setIsEnabled(false);
    EXPECT_EQ(desktop.events.tapCount(), 0U);
    app->model().setIsEnabled(false);
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount, 0);
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
    EXPECT_EQ(app->model().doubleTapCount, 0);
    app->model().setSensitivity(0.1);
    typeAndConvert(u"");
    EXPECT_EQ(app->model().doubleTapCount, 1);
    EXPECT_EQ(text(), u"привет") << "applying settings does not disturb a running listener";
}

} // namespace
} // namespace kelvora

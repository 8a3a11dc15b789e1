// SPDX-License-Identifier: MIT
#include "app/io/hotkey_monitor.h"

#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

using fake::EventHub;

class HotkeyMonitorFallbackTest : public testing::Test {
protected:
    HotkeyMonitorFallbackTest() {
        monitor.onTrigger = [this] { ++triggers; };
        monitor.onShiftEvent = [this] { ++shiftEvents; };
    }

    fake::FakeDesktop desktop;
    HotkeyMonitor monitor{desktop.events, desktop.scheduler, desktop.log};
    int triggers = 0;
    int shiftEvents = 0;
};

TEST_F(HotkeyMonitorFallbackTest, WhatIsInstalled) {
    struct Case {
        const char* name;
        EventHub::TapSupport tap;
        bool global, local;
        bool hasTap, hasGlobal;
        std::size_t taps, monitors;
    };
    using Tap = EventHub::TapSupport;
    const Case cases[] = {
        {"tap", Tap::works, true, true, true, false, 1, 1},
        {"tap refused", Tap::refused, true, true, false, true, 0, 2},
        {"tap not enabled", Tap::cannotBeEnabled, true, true, false, true, 0, 2},
        {"other applications only", Tap::refused, true, false, false, true, 0, 1},
        {"own events only", Tap::refused, false, true, false, false, 0, 1},
        {"nothing", Tap::refused, false, false, false, false, 0, 0},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.events.tapSupport = testCase.tap;
        desktop.events.hasGlobalMonitors = testCase.global;
        desktop.events.hasLocalMonitors = testCase.local;
        monitor.start();
        monitor.start(); // listening already
        EXPECT_EQ(monitor.eventTap() != nullptr, testCase.hasTap);
        EXPECT_EQ(monitor.globalMonitor() != nullptr, testCase.hasGlobal);
        EXPECT_EQ(desktop.events.tapCount(), testCase.taps);
        EXPECT_EQ(desktop.events.monitorCount(), testCase.monitors);
        monitor.stop();
        EXPECT_EQ(monitor.eventTap(), nullptr);
        EXPECT_EQ(monitor.globalMonitor(), nullptr);
        EXPECT_EQ(desktop.events.tapCount() + desktop.events.monitorCount(), 0U);
    }
}

TEST_F(HotkeyMonitorFallbackTest, MonitorsFindTheDoubleTapAndRecordNothing) {
    desktop.events.tapSupport = EventHub::TapSupport::refused;
    desktop.events.hasLocalMonitors = true;
    monitor.start();
    for (const bool ownWindow : {false, true}) {
        triggers = 0;
        shiftEvents = 0;
        desktop.events.ownWindowHasFocus = ownWindow;
        desktop.type(u"abc");
        desktop.doubleShift();
        desktop.run();
        EXPECT_EQ(triggers, 1);
        EXPECT_EQ(shiftEvents, 4);
        EXPECT_EQ(monitor.typedText()->text(), u"");
        desktop.tap(keyCode::leftShift);
        desktop.type(u"a");
        desktop.tap(keyCode::leftShift);
        EXPECT_EQ(triggers, 1) << "a key between ends the tap";
    }
}

TEST_F(HotkeyMonitorFallbackTest, OwnEventsAreHandledOnceWhenThereIsATap) {
    desktop.events.hasLocalMonitors = true;
    desktop.events.ownWindowHasFocus = true;
    monitor.start();
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(shiftEvents, 4);
    EXPECT_EQ(triggers, 1);
}

TEST_F(HotkeyMonitorFallbackTest, StopForgetsEverythingHalfSeen) {
    monitor.start();
    desktop.type(u"abc");
    desktop.tap(keyCode::leftShift);
    desktop.keyboard.press(keyCode::leftShift);
    desktop.runFor(0.01);
    monitor.stop();
    EXPECT_EQ(monitor.typedText()->text(), u"");
    monitor.start();
    desktop.keyboard.release(keyCode::leftShift);
    desktop.run();
    EXPECT_EQ(triggers, 0);
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(triggers, 1) << "the Shift that went up unseen is not believed to be down";
}

TEST_F(HotkeyMonitorFallbackTest, StopForgetsAShiftKnownOnlyByItsPresses) {
    // Some synthetic events carry the Shift flag without the bit of the key.
    const InputEvent down{.type = EventType::flagsChanged,
                          .keyCode = keyCode::leftShift,
                          .flags = eventFlag::shift,
                          .text = {}};
    InputEvent up = down;
    up.flags = 0;
    monitor.start();
    desktop.events.emit(down);
    desktop.run();
    monitor.stop();
    monitor.start();
    for (const InputEvent& event : {down, up, down, up}) {
        desktop.events.emit(event);
    }
    desktop.run();
    EXPECT_EQ(triggers, 1);
}

TEST_F(HotkeyMonitorFallbackTest, StoppedMonitorHearsNothing) {
    monitor.start();
    const auto buffer = monitor.typedText();
    monitor.stop();
    monitor.stop();
    desktop.type(u"abc");
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(shiftEvents, 0);
    EXPECT_EQ(buffer->text(), u"");
    EXPECT_EQ(buffer, monitor.typedText()) << "one buffer for the monitor's whole life";
}

} // namespace
} // namespace kelvora

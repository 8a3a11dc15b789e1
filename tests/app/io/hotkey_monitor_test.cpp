// SPDX-License-Identifier: MIT
#include "app/io/hotkey_monitor.h"

#include "app/io/system_event_poster.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kelvora {
namespace {

class HotkeyMonitorTest : public testing::Test {
protected:
    HotkeyMonitorTest() {
        monitor->onTrigger = [this] { ++triggers; };
        monitor->onShiftEvent = [this] { ++shiftEvents; };
        monitor->start();
    }

    std::u16string typed() const { return monitor->typedText()->text(); }

    void fill() {
        monitor->typedText()->reset();
        desktop.type(u"ab");
        ASSERT_EQ(typed(), u"ab");
    }

    fake::FakeDesktop desktop;
    std::unique_ptr<HotkeyMonitor> monitor =
        std::make_unique<HotkeyMonitor>(desktop.events, desktop.scheduler, desktop.log);
    int triggers = 0;
    int shiftEvents = 0;
};

TEST_F(HotkeyMonitorTest, TextIsTakenUpToEightUnits) {
    desktop.events.emit({.keyCode = 0, .text = EventText(u"123456789")});
    desktop.run();
    EXPECT_EQ(typed(), u"12345678");
}

TEST_F(HotkeyMonitorTest, CaretKeysShortcutsAndClicksEmptyTheBuffer) {
    struct Case {
        const char* name;
        KeyCode key;
        KeyCode modifier;
        std::u16string_view left;
    };
    constexpr KeyCode noModifier = keyCode::capsLock; // its events carry no flag
    const Case cases[] = {
        {"Return", keyCode::returnKey, noModifier, u""},
        {"Left Arrow", keyCode::leftArrow, noModifier, u""},
        {"Control-A", keyCode::a, keyCode::leftControl, u""},
        {"Command-V", keyCode::v, keyCode::rightCommand, u""},
        {"Control-Backspace", keyCode::backspace, keyCode::rightControl, u""},
        {"Option-Backspace", keyCode::backspace, keyCode::leftOption, u""},
        {"a key that types nothing", 105, noModifier, u""},
        {"Shift-Backspace", keyCode::backspace, keyCode::leftShift, u"a"},
        {"Option and a letter", keyCode::a, keyCode::leftOption, u"aba"},
        {"Shift and a letter", keyCode::a, keyCode::rightShift, u"abA"},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        fill();
        desktop.keyboard.press(testCase.modifier);
        desktop.tap(testCase.key);
        desktop.keyboard.release(testCase.modifier);
        desktop.run();
        EXPECT_EQ(typed(), testCase.left);
    }
    for (const EventType button :
         {EventType::leftMouseDown, EventType::rightMouseDown, EventType::otherMouseDown}) {
        fill();
        desktop.keyboard.click(button);
        desktop.run();
        EXPECT_EQ(typed(), u"");
    }
}

TEST_F(HotkeyMonitorTest, FindsDoubleTapsOfShiftAlone) {
    constexpr KeyCode left = keyCode::leftShift;
    constexpr KeyCode right = keyCode::rightShift;
    constexpr KeyCode control = keyCode::leftControl;
    constexpr KeyCode caps = keyCode::capsLock;
    struct Case {
        const char* name;
        std::vector<KeyCode> keys; // each goes down, and up when it is named again
        int triggers;
    };
    const Case cases[] = {
        {"left, then right", {left, left, right, right}, 1},
        {"both at once", {left, right, left, right}, 0},
        {"Control held", {control, left, left, left, left, control}, 0},
        {"Caps Lock between", {left, left, caps, caps, left, left}, 0},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        monitor->stop();
        monitor->start();
        triggers = 0;
        shiftEvents = 0;
        std::set<KeyCode> down;
        for (const KeyCode key : testCase.keys) {
            if (down.erase(key) == 0) {
                down.insert(key);
                desktop.keyboard.press(key);
            } else {
                desktop.keyboard.release(key);
            }
            desktop.runFor(0.05);
        }
        desktop.run();
        EXPECT_EQ(triggers, testCase.triggers);
        EXPECT_EQ(shiftEvents, 4);
    }
}

TEST_F(HotkeyMonitorTest, MonitorsFindTheDoubleTapAndRecordNothing) {
    using Tap = fake::EventHub::TapSupport;
    struct Case {
        const char* name;
        Tap tap;
        bool ownWindow;
        std::u16string_view typed;
    };
    const Case cases[] = {
        {"other applications", Tap::refused, false, u""},
        {"own window", Tap::refused, true, u""},
        {"own window beside a tap: each event is handled once", Tap::works, true, u"abc"},
    };
    desktop.events.hasLocalMonitors = true;
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        monitor->stop();
        desktop.events.tapSupport = testCase.tap;
        desktop.events.ownWindowHasFocus = testCase.ownWindow;
        monitor->start();
        triggers = 0;
        shiftEvents = 0;
        desktop.type(u"abc");
        desktop.doubleShift();
        desktop.run();
        EXPECT_EQ(triggers, 1);
        EXPECT_EQ(shiftEvents, 4);
        EXPECT_EQ(typed(), testCase.typed);
        desktop.tap(keyCode::leftShift);
        desktop.type(u"a");
        desktop.tap(keyCode::leftShift);
        EXPECT_EQ(triggers, 1) << "a key between ends the tap";
    }
}

TEST_F(HotkeyMonitorTest, StopForgetsEverythingHalfSeen) {
    const auto buffer = monitor->typedText();
    desktop.type(u"abc");
    desktop.tap(keyCode::leftShift);
    desktop.keyboard.press(keyCode::leftShift);
    desktop.runFor(0.01);
    monitor->stop();
    desktop.type(u"a");
    EXPECT_EQ(typed(), u"");
    EXPECT_EQ(buffer, monitor->typedText()) << "one buffer for the monitor's whole life";
    monitor->start();
    desktop.keyboard.release(keyCode::leftShift);
    desktop.run();
    EXPECT_EQ(triggers, 0);
}

TEST_F(HotkeyMonitorTest, StopForgetsAShiftKnownOnlyByItsPresses) {
    // Some synthetic events carry the Shift flag without the bit of the key.
    const InputEvent down{.type = EventType::flagsChanged,
                          .keyCode = keyCode::leftShift,
                          .flags = eventFlag::shift,
                          .text = {}};
    InputEvent up = down;
    up.flags = 0;
    desktop.events.emit(down);
    desktop.run();
    monitor->stop();
    monitor->start();
    for (const InputEvent& event : {down, up, down, up}) {
        desktop.events.emit(event);
    }
    desktop.run();
    EXPECT_EQ(triggers, 1) << "the Shift that went up unseen is not believed to be down";
}

TEST_F(HotkeyMonitorTest, OwnKeysAreNotRecordedButEndATap) {
    SystemEventPoster poster(desktop.keyboard);
    fill();
    poster.sendKey(keyCode::backspace, 0, 0.008);
    poster.sendKey(keyCode::leftArrow, 0, 0.008);
    poster.typeText(u"x");
    desktop.run();
    EXPECT_EQ(typed(), u"ab");

    desktop.tap(keyCode::leftShift);
    poster.sendKey(keyCode::backspace, 0, 0.008);
    desktop.tap(keyCode::leftShift);
    desktop.run();
    EXPECT_EQ(triggers, 0);
}

TEST_F(HotkeyMonitorTest, TapThatIsSwitchedOffIsSwitchedOnAgain) {
    for (const EventType notice :
         {EventType::tapDisabledByTimeout, EventType::tapDisabledByUserInput}) {
        fill();
        desktop.tap(keyCode::leftShift);
        desktop.events.switchTapOff(notice);
        EXPECT_TRUE(monitor->eventTap()->isEnabled());
        EXPECT_EQ(typed(), u"ab") << "nothing else changes";
    }
    desktop.tap(keyCode::leftShift);
    desktop.run();
    EXPECT_EQ(triggers, 1) << "a tap in progress neither";
}

TEST_F(HotkeyMonitorTest, TriggerComesAfterTheEventFromTheMainQueue) {
    std::vector<std::string> order;
    monitor->onShiftEvent = [&] {
        order.emplace_back("event");
        desktop.scheduler.postToMain([&] { order.emplace_back("posted by the event"); });
    };
    monitor->onTrigger = [&] { order.emplace_back("trigger"); };
    desktop.doubleShift();
    order.clear();
    desktop.run();
    EXPECT_EQ(order, (std::vector<std::string>{"event", "posted by the event", "trigger"}));
}

TEST_F(HotkeyMonitorTest, MonitorGoneBeforeItsTriggerRuns) {
    monitor->onShiftEvent = [this] {
        if (++shiftEvents == 4) {
            desktop.scheduler.postToMain([this] { monitor.reset(); });
        }
    };
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(monitor, nullptr);
    EXPECT_EQ(triggers, 0);
    EXPECT_EQ(desktop.events.tapCount(), 0U);
}

} // namespace
} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "app/io/hotkey_monitor.h"

#include "app/io/system_event_poster.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>

namespace kelvora {
namespace {

constexpr KeyCode left = keyCode::leftShift, right = keyCode::rightShift;
constexpr KeyCode control = keyCode::leftControl, caps = keyCode::capsLock;

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

TEST_F(HotkeyMonitorTest, CaretKeysShortcutsAndClicksEmptyTheBuffer) {
    constexpr KeyCode noModifier = caps; // its events carry no flag
    const struct {
        const char* name;
        KeyCode key;
        KeyCode modifier;
        std::u16string_view left;
    } cases[] = {
        {"Return", keyCode::returnKey, noModifier, u""},
        {"Left Arrow", keyCode::leftArrow, noModifier, u""},
        {"Control-A", keyCode::a, control, u""},
        {"Command-V", keyCode::v, keyCode::rightCommand, u""},
        {"Control-Backspace", keyCode::backspace, keyCode::rightControl, u""},
        {"Option-Backspace", keyCode::backspace, keyCode::leftOption, u""},
        {"a key that types nothing", 105, noModifier, u""},
        {"Shift-Backspace", keyCode::backspace, left, u"a"},
        {"Option and a letter", keyCode::a, keyCode::leftOption, u"aba"},
        {"Shift and a letter", keyCode::a, right, u"abA"},
    };
    for (const auto& [name, key, modifier, expected] : cases) {
        SCOPED_TRACE(name);
        fill();
        desktop.keyboard.press(modifier);
        desktop.tap(key);
        desktop.keyboard.release(modifier);
        desktop.run();
        EXPECT_EQ(typed(), expected);
    }
    desktop.events.emit({.keyCode = 0, .text = EventText(u"123456789")});
    desktop.run();
    EXPECT_TRUE(typed().ends_with(u"12345678")) << "a key's text is taken up to eight units";
    for (const EventType button :
         {EventType::leftMouseDown, EventType::rightMouseDown, EventType::otherMouseDown}) {
        fill();
        desktop.keyboard.click(button);
        desktop.run();
        EXPECT_EQ(typed(), u"");
    }
}

TEST_F(HotkeyMonitorTest, AComposedWordIsKnownWholeOrNotAtAll) {
    const auto key = [this](std::u16string_view text, Composition composition) {
        desktop.events.emit({.text = EventText(text), .composition = composition});
    };
    fill();
    key(u"", Composition::underWay);
    key(u"ê", Composition::none);
    desktop.type(u"c");
    EXPECT_EQ(typed(), u"abêc");
    for (const std::u16string_view text : {u"", u"لا"}) {
        fill();
        key(text, Composition::broken);
        desktop.type(u"cd");
        EXPECT_EQ(typed(), u"") << "the end of a word";
        desktop.type(u" ef");
        EXPECT_EQ(typed(), u" ef");
    }
    key(u"", Composition::underWay);
    desktop.tap(left);
    desktop.tap(left);
    desktop.run();
    EXPECT_EQ(triggers, 1);
    EXPECT_EQ(monitor->takeTextAtTrigger(), u"") << "a Backspace would end the sequence only";
    key(u"ê", Composition::none);
    EXPECT_EQ(typed(), u"") << "the end of a word";
}

TEST_F(HotkeyMonitorTest, FindsDoubleTapsOfShiftAlone) {
    const auto strike = [this](std::initializer_list<KeyCode> keys) { // a second time: up
        std::set<KeyCode> down;
        for (const KeyCode key : keys) {
            const bool isPress = down.erase(key) == 0 && down.insert(key).second;
            isPress ? desktop.keyboard.press(key) : desktop.keyboard.release(key);
            desktop.runFor(0.05);
        }
        desktop.runFor(1);
    };
    strike({left, right, left, right});
    strike({control, left, left, left, left, control});
    strike({left, left, caps, caps, left, left});
    EXPECT_EQ(triggers, 0);
    strike({left, left, right, right});
    EXPECT_EQ(triggers, 1);
    EXPECT_EQ(shiftEvents, 16);
}

TEST_F(HotkeyMonitorTest, MonitorsFindTheDoubleTapAndRecordNothing) {
    using Tap = fake::EventHub::TapSupport;
    const struct {
        const char* name;
        Tap tap;
        bool ownWindow;
        std::u16string_view typed;
    } cases[] = {
        {"other applications", Tap::refused, false, u""},
        {"own window", Tap::refused, true, u""},
        {"own window beside a tap: each event is handled once", Tap::works, true, u"abc"},
    };
    desktop.events.hasLocalMonitors = true;
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        monitor->stop();
        desktop.events.tapSupport = testCase.tap;
        desktop.events.ownWindowHasFocus = testCase.ownWindow;
        monitor->start();
        triggers = shiftEvents = 0;
        desktop.type(u"abc");
        desktop.doubleShift();
        desktop.run();
        EXPECT_EQ(triggers, 1);
        EXPECT_EQ(shiftEvents, 4);
        EXPECT_EQ(typed(), testCase.typed);
        desktop.tap(left);
        desktop.type(u"a");
        desktop.tap(left);
        EXPECT_EQ(triggers, 1) << "a key between ends the tap";
    }
}

TEST_F(HotkeyMonitorTest, StopForgetsEverythingHalfSeen) {
    const auto buffer = monitor->typedText();
    desktop.type(u"abc");
    desktop.tap(left);
    desktop.keyboard.press(left);
    desktop.runFor(0.01);
    monitor->stop();
    desktop.type(u"a");
    EXPECT_EQ(typed(), u"");
    EXPECT_EQ(buffer, monitor->typedText()) << "one buffer for the monitor's whole life";
    monitor->start();
    desktop.keyboard.release(left);
    desktop.run();
    EXPECT_EQ(triggers, 0);

    // Some synthetic events carry the Shift flag without the bit of the key.
    const InputEvent down{
        .type = EventType::flagsChanged, .keyCode = left, .flags = eventFlag::shift, .text = {}};
    const InputEvent up{.type = EventType::flagsChanged, .keyCode = left, .text = {}};
    desktop.events.emit(down);
    desktop.run();
    monitor->stop();
    monitor->start();
    for (const InputEvent& event : {down, up, down, up})
        desktop.events.emit(event);
    desktop.run();
    EXPECT_EQ(triggers, 1) << "the Shift that went up unseen is not believed to be down";
}

TEST_F(HotkeyMonitorTest, OwnKeysAreNotRecordedButEndATap) {
    SystemEventPoster poster(desktop.keyboard);
    fill();
    poster.sendKey(keyCode::leftArrow, 0, 0.008);
    poster.typeText(u"x");
    desktop.run();
    EXPECT_EQ(typed(), u"ab");

    desktop.tap(left);
    poster.sendKey(keyCode::backspace, 0, 0.008);
    desktop.tap(left);
    desktop.run();
    EXPECT_EQ(triggers, 0);
}

TEST_F(HotkeyMonitorTest, TapThatIsSwitchedOffIsSwitchedOnAgain) {
    for (const EventType notice :
         {EventType::tapDisabledByTimeout, EventType::tapDisabledByUserInput}) {
        fill();
        desktop.tap(left);
        desktop.events.switchTapOff(notice);
        EXPECT_TRUE(monitor->eventTap()->isEnabled());
        EXPECT_EQ(typed(), u"ab") << "nothing else changes";
    }
    desktop.tap(left);
    desktop.run();
    EXPECT_EQ(triggers, 1) << "a tap in progress neither";
}

TEST_F(HotkeyMonitorTest, TriggerComesFromTheMainQueueUnlessTheMonitorIsGone) {
    std::string order;
    monitor->onShiftEvent = [&] {
        order = "event";
        desktop.scheduler.postToMain([&] { order += ", posted by the event"; });
    };
    monitor->onTrigger = [&] { order += ", trigger"; };
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(order, "event, posted by the event, trigger");

    monitor->onTrigger = [this] { ++triggers; };
    monitor->onShiftEvent = [this] {
        if (++shiftEvents == 4)
            desktop.scheduler.postToMain([this] { monitor.reset(); });
    };
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(monitor, nullptr);
    EXPECT_EQ(triggers, 0);
    EXPECT_EQ(desktop.events.tapCount(), 0U);
}

} // namespace
} // namespace kelvora

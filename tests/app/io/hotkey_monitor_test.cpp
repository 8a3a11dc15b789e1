// SPDX-License-Identifier: MIT
#include "app/io/hotkey_monitor.h"

#include "app/io/system_event_poster.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <memory>
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

TEST_F(HotkeyMonitorTest, RecordsWhatIsTyped) {
    desktop.type(u"aB");
    desktop.tap(keyCode::backspace);
    desktop.type(u"c d");
    EXPECT_EQ(typed(), u"ac d");
    desktop.layouts.activeID = "ru";
    desktop.type(u"q");
    EXPECT_EQ(typed(), u"ac dй");
}

TEST_F(HotkeyMonitorTest, TextIsTakenUpToEightUnits) {
    InputEvent key{.keyCode = 0, .text = EventText(u"123456789")};
    desktop.events.emit(key);
    desktop.run();
    EXPECT_EQ(typed(), u"12345678");
}

TEST_F(HotkeyMonitorTest, CaretKeysShortcutsAndClicksEmptyTheBuffer) {
    struct Case {
        const char* name;
        KeyCode key;
        KeyCode modifier = keyCode::unknown;
        std::u16string_view left = u"";
    };
    const Case cases[] = {
        {"Return", keyCode::returnKey},
        {"Tab", keyCode::tab},
        {"Escape", keyCode::escape},
        {"keypad Enter", keyCode::keypadEnter},
        {"Home", keyCode::home},
        {"Page Up", keyCode::pageUp},
        {"Forward Delete", keyCode::forwardDelete},
        {"End", keyCode::end},
        {"Page Down", keyCode::pageDown},
        {"Left Arrow", keyCode::leftArrow},
        {"Right Arrow", keyCode::rightArrow},
        {"Down Arrow", keyCode::downArrow},
        {"Up Arrow", keyCode::upArrow},
        {"Control-A", keyCode::a, keyCode::leftControl},
        {"Command-V", keyCode::v, keyCode::rightCommand},
        {"Control-Backspace", keyCode::backspace, keyCode::rightControl},
        {"Option-Backspace", keyCode::backspace, keyCode::leftOption},
        {"a key that types nothing", 105},
        {"Backspace", keyCode::backspace, keyCode::unknown, u"a"},
        {"Shift-Backspace", keyCode::backspace, keyCode::leftShift, u"a"},
        {"Option and a letter", keyCode::a, keyCode::leftOption, u"aba"},
        {"Shift and a letter", keyCode::a, keyCode::rightShift, u"abA"},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        fill();
        if (testCase.modifier != keyCode::unknown) {
            desktop.keyboard.press(testCase.modifier);
        }
        desktop.tap(testCase.key);
        if (testCase.modifier != keyCode::unknown) {
            desktop.keyboard.release(testCase.modifier);
        }
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

TEST_F(HotkeyMonitorTest, FindsDoubleTaps) {
    struct Step {
        double at; // seconds since the start of the trace
        KeyCode key;
        KeyDirection direction;
    };
    constexpr KeyCode left = keyCode::leftShift;
    constexpr KeyCode right = keyCode::rightShift;
    constexpr KeyDirection down = KeyDirection::down;
    constexpr KeyDirection up = KeyDirection::up;
    struct Case {
        const char* name;
        std::vector<Step> steps;
        int triggers;
        int shiftEvents;
    };
    const Case cases[] = {
        {"left twice", {{0, left, down}, {.1, left, up}, {.3, left, down}, {.5, left, up}}, 1, 4},
        {"left, then right",
         {{0, left, down}, {.1, left, up}, {.3, right, down}, {.5, right, up}},
         1,
         4},
        {"second held long",
         {{0, left, down}, {.1, left, up}, {.3, left, down}, {2.3, left, up}},
         1,
         4},
        {"first held too long",
         {{0, left, down}, {.46, left, up}, {.5, left, down}, {.6, left, up}},
         0,
         4},
        {"pause too long, third tap completes",
         {{0, left, down},
          {.1, left, up},
          {.7, left, down},
          {.8, left, up},
          {.9, left, down},
          {1, left, up}},
         1,
         6},
        {"a key between",
         {{0, left, down},
          {.1, left, up},
          {.2, keyCode::a, down},
          {.3, left, down},
          {.4, left, up}},
         0,
         4},
        {"a key under the second Shift",
         {{0, left, down},
          {.1, left, up},
          {.2, left, down},
          {.3, keyCode::a, down},
          {.4, left, up}},
         0,
         4},
        {"both at once",
         {{0, left, down}, {.1, right, down}, {.2, left, up}, {.3, right, up}},
         0,
         4},
        {"Control held",
         {{0, keyCode::leftControl, down},
          {.1, left, down},
          {.2, left, up},
          {.3, left, down},
          {.4, left, up},
          {.5, keyCode::leftControl, up}},
         0,
         4},
        {"Caps Lock between",
         {{0, left, down},
          {.1, left, up},
          {.15, keyCode::capsLock, down},
          {.2, keyCode::capsLock, up},
          {.3, left, down},
          {.4, left, up}},
         0,
         4},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        monitor->stop();
        monitor->start();
        triggers = 0;
        shiftEvents = 0;
        for (const Step& step : testCase.steps) {
            desktop.at(step.at, [this, step] {
                step.direction == down ? desktop.keyboard.press(step.key)
                                       : desktop.keyboard.release(step.key);
            });
        }
        desktop.run();
        EXPECT_EQ(triggers, testCase.triggers);
        EXPECT_EQ(shiftEvents, testCase.shiftEvents);
    }
}

TEST_F(HotkeyMonitorTest, MaximumIntervalIsTheDetectors) {
    monitor->setMaximumInterval(0.05);
    desktop.doubleShift(); // pauses 0.08
    desktop.run();
    EXPECT_EQ(triggers, 0);
    monitor->setMaximumInterval(0.1);
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(triggers, 1);
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

TEST_F(HotkeyMonitorTest, OtherProgramsKeysAreTyping) {
    InputEvent key = *desktop.keyboard.createKeyEvent(0, KeyDirection::down);
    key.text = EventText(u"x");
    key.sourceUserData = SystemEventPoster::userData + 1;
    desktop.keyboard.post(key);
    desktop.run();
    EXPECT_EQ(typed(), u"x");
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

TEST_F(HotkeyMonitorTest, TriggerMayDestroyTheMonitor) {
    monitor->onTrigger = [this] {
        monitor.reset();
        ++triggers;
    };
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(triggers, 1);
}

TEST_F(HotkeyMonitorTest, LogsShiftEventsAndTriggers) {
    desktop.type(u"a");
    desktop.doubleShift(keyCode::leftShift, keyCode::rightShift);
    desktop.run();
    EXPECT_EQ(desktop.log.messages("Hotkey", LogLevel::debug),
              (std::vector<std::string>{
                  "Shift event: code=56, shift=true", "Shift event: code=56, shift=false",
                  "Shift event: code=60, shift=true", "Shift event: code=60, shift=false"}));
    EXPECT_EQ(desktop.log.messages("Hotkey", LogLevel::info),
              (std::vector<std::string>{"Double Shift detected! Triggering onTrigger"}));
    EXPECT_EQ(desktop.log.lines().size(), 5U);
}

} // namespace
} // namespace kelvora

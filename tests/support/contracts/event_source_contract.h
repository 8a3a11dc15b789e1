// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/contracts/desktop_rig.h"

#include <gtest/gtest.h>

namespace kelvora::contract {

/// What every EventSource that has a tap promises. Included and instantiated as the others.
class EventSourceContract : public testing::TestWithParam<RigFactory> {
protected:
    EventSourceContract() {
        if (tap) {
            tap->setEnabled(true);
        }
    }

    void post(const InputEvent& event) {
        rig->onWorker([&] { rig->services().eventPoster.post(event); });
    }
    [[nodiscard]] bool seen(std::size_t count) {
        return rig->becomes([&] { return events.size() >= count; });
    }

    static constexpr EventMask allEvents =
        eventMaskBit(EventType::leftMouseDown) | eventMaskBit(EventType::rightMouseDown) |
        eventMaskBit(EventType::keyDown) | eventMaskBit(EventType::flagsChanged) |
        eventMaskBit(EventType::otherMouseDown);

    std::unique_ptr<DesktopRig> rig = GetParam().make();
    std::vector<InputEvent> events;
    std::unique_ptr<EventTap> tap = rig->services().eventSource.createTap(
        allEvents, [this](const InputEvent& event) { events.push_back(event); });
};

TEST_P(EventSourceContract, KeyDownsWithTextFlagsAndTime) {
    rig->strike(keyQ);
    rig->press(keyCode::leftShift);
    rig->strike(keyW);
    rig->release(keyCode::leftShift);
    ASSERT_TRUE(seen(4));
    ASSERT_EQ(events.size(), 4U) << "no key-ups";
    constexpr EventFlags shift = eventFlag::shift | eventFlag::leftShiftDevice;
    const struct {
        EventType type;
        KeyCode keyCode;
        EventFlags flags;
        std::u16string_view text;
    } expected[] = {
        {EventType::keyDown, keyQ, 0, u"q"},
        {EventType::flagsChanged, keyCode::leftShift, shift, u""},
        {EventType::keyDown, keyW, shift, u"W"},
        {EventType::flagsChanged, keyCode::leftShift, 0, u""},
    };
    for (std::size_t i = 0; i < events.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(events[i].type, expected[i].type);
        EXPECT_EQ(events[i].keyCode, expected[i].keyCode);
        EXPECT_EQ(events[i].flags, expected[i].flags) << "the state after the change";
        EXPECT_EQ(events[i].text.view(), expected[i].text);
        EXPECT_EQ(events[i].sourceUserData, 0);
        EXPECT_GE(events[i].timestamp, events[0].timestamp);
    }
}

TEST_P(EventSourceContract, TextIsThatOfTheActiveLayout) {
    ASSERT_TRUE(rig->selectLayout(1));
    rig->strike(keyQ);
    ASSERT_TRUE(seen(1));
    EXPECT_EQ(events[0].text.view(), u"й");
    EXPECT_EQ(events[0].keyCode, keyQ) << "the position does not depend on the layout";
}

TEST_P(EventSourceContract, PostedKeysCarryTheirMarkAndMoveNoModifier) {
    InputEvent event{.keyCode = keyCode::backspace, .sourceUserData = 0x1234567890, .text = {}};
    post(event);
    event.type = EventType::keyUp;
    post(event);
    rig->strike(keyQ);
    ASSERT_TRUE(seen(2));
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].keyCode, keyCode::backspace);
    EXPECT_EQ(events[0].sourceUserData, 0x1234567890);
    EXPECT_EQ(events[1].sourceUserData, 0);
}

TEST_P(EventSourceContract, Clicks) {
    rig->click();
    ASSERT_TRUE(seen(1));
    EXPECT_EQ(events[0].type, EventType::leftMouseDown);
}

TEST_P(EventSourceContract, OnlyAnEnabledTapHears) {
    ASSERT_TRUE(tap);
    EXPECT_TRUE(tap->isEnabled());
    tap->setEnabled(false);
    EXPECT_FALSE(tap->isEnabled());
    rig->strike(keyQ);
    rig->rest();
    EXPECT_TRUE(events.empty());
    tap->setEnabled(true);
    rig->strike(keyW);
    ASSERT_TRUE(seen(1));
    EXPECT_EQ(events[0].keyCode, keyW);
    tap.reset();
    rig->strike(keyQ);
    rig->rest();
    EXPECT_EQ(events.size(), 1U);
    tap = rig->services().eventSource.createTap(allEvents, [](const InputEvent&) {});
    ASSERT_TRUE(tap);
    EXPECT_FALSE(tap->isEnabled()) << "a new tap is off";
}

} // namespace kelvora::contract

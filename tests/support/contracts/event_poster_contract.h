// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/contracts/desktop_rig.h"

#include <gtest/gtest.h>

namespace kelvora::contract {

/// What every EventPoster promises. One translation unit of a test program includes this and
/// instantiates the suite with its rig.
class EventPosterContract : public testing::TestWithParam<RigFactory> {
protected:
    void post(KeyCode keyCode, std::u16string_view text = u"", EventFlags flags = 0) {
        for (const KeyDirection direction : {KeyDirection::down, KeyDirection::up}) {
            std::optional<InputEvent> event = poster.createKeyEvent(keyCode, direction);
            ASSERT_TRUE(event);
            event->text = EventText(text);
            event->flags = flags;
            poster.post(*event);
            poster.sleep(0.01);
        }
    }
    void postOnWorker(KeyCode keyCode, std::u16string_view text = u"", EventFlags flags = 0) {
        rig->onWorker([&] { post(keyCode, text, flags); });
    }

    std::unique_ptr<DesktopRig> rig = GetParam().make();
    EventPoster& poster = rig->services().eventPoster;
};

TEST_P(EventPosterContract, TextIsTypedOnceInWhateverLayoutIsActive) {
    std::u16string expected;
    for (const std::size_t active : {std::size_t{0}, std::size_t{1}}) {
        ASSERT_TRUE(rig->selectLayout(active));
        const auto before = rig->services().inputSources.currentSource();
        for (const std::u16string_view text : {u"Привет, мир? ", u"Hello, {World}! "}) {
            postOnWorker(0, text);
            expected += text;
            EXPECT_TRUE(rig->textBecomes(expected));
        }
        const auto after = rig->services().inputSources.currentSource();
        EXPECT_EQ(before->id, after->id) << "the layout is as it was";
    }
}

TEST_P(EventPosterContract, BackspaceErasesOneCharacter) {
    postOnWorker(0, u"аб");
    postOnWorker(keyCode::backspace);
    postOnWorker(0, u"в");
    EXPECT_TRUE(rig->textBecomes(u"ав"));
}

TEST_P(EventPosterContract, HeldShiftDoesNotReachPostedEvents) {
    rig->press(keyCode::leftShift);
    rig->rest();
    postOnWorker(0, u"qй1");
    postOnWorker(keyCode::backspace);
    EXPECT_TRUE(rig->textBecomes(u"qй"));
    rig->release(keyCode::leftShift);
    rig->rest();
    rig->strike(keyQ);
    EXPECT_TRUE(rig->textBecomes(u"qйq")) << "nor is it left stuck";
}

TEST_P(EventPosterContract, ModifierStateIsWhatIsHeld) {
    constexpr EventFlags asked =
        eventFlag::shift | eventFlag::control | eventFlag::option | eventFlag::command;
    const auto state = [&] {
        EventFlags flags = 0;
        rig->onWorker([&] { flags = poster.modifierState() & asked; });
        return flags;
    };
    EXPECT_EQ(state(), 0U);
    for (const auto& [key, flag] : {std::pair{keyCode::leftShift, eventFlag::shift},
                                    {keyCode::rightShift, eventFlag::shift},
                                    {keyCode::leftControl, eventFlag::control}}) {
        rig->press(key);
        EXPECT_TRUE(rig->becomes([&, expected = flag] { return state() == expected; })) << key;
        rig->release(key);
        EXPECT_TRUE(rig->becomes([&] { return state() == 0; })) << key;
    }
}

TEST_P(EventPosterContract, HeldKeysComeAfterThePostedOnesInTheNewLayout) {
    const auto tap = rig->services().eventSource.createTap(0, [](const InputEvent&) {});
    ASSERT_TRUE(tap);
    tap->setEnabled(true);
    const FocusTarget focus = rig->services().workspace.focusTarget();
    std::unique_ptr<KeyboardHold> hold;
    rig->onWorker([&] {
        hold = poster.holdKeyboard(focus);
        ASSERT_TRUE(hold);
        EXPECT_TRUE(hold->settle());
        EXPECT_TRUE(hold->hasFocus());
        post(0, u"a");
    });
    rig->strike(keyQ);
    rig->rest();
    postOnWorker(0, u"b");
    rig->strike(keyW);
    EXPECT_TRUE(rig->textBecomes(u"ab"));
    rig->rest();
    EXPECT_EQ(rig->text(), u"ab") << "held keys reach nobody";
    ASSERT_TRUE(rig->selectLayout(1));
    hold.reset();
    EXPECT_TRUE(rig->textBecomes(u"abйц"));
    rig->strike(keyQ);
    EXPECT_TRUE(rig->textBecomes(u"abйцй")) << "the keyboard is the user's again";
}

TEST_P(EventPosterContract, ModifierHeldAtTheHoldIsNotLeftStuck) {
    const FocusTarget focus = rig->services().workspace.focusTarget();
    rig->press(keyCode::leftShift);
    rig->rest();
    std::unique_ptr<KeyboardHold> hold;
    rig->onWorker([&] { hold = poster.holdKeyboard(focus); }); // which may be refused
    rig->release(keyCode::leftShift);
    rig->rest();
    hold.reset();
    rig->strike(keyQ);
    EXPECT_TRUE(rig->textBecomes(u"q"));
}

TEST_P(EventPosterContract, HoldFinishesWhereItBegan) {
    const FocusTarget focus = rig->services().workspace.focusTarget();
    std::unique_ptr<KeyboardHold> hold;
    rig->onWorker([&] {
        hold = poster.holdKeyboard(focus);
        ASSERT_TRUE(hold);
        post(0, u"a");
    });
    rig->focusOtherEditor();
    rig->rest();
    postOnWorker(0, u"b");
    hold.reset();
    EXPECT_TRUE(rig->textBecomes(u"ab"));
    rig->strike(keyQ);
    EXPECT_TRUE(rig->becomes([&] { return rig->otherText() == u"q"; }));
}

TEST_P(EventPosterContract, HoldDoesNotPostIntoAnotherWindow) {
    const FocusTarget focus = rig->services().workspace.focusTarget();
    std::unique_ptr<KeyboardHold> hold;
    rig->onWorker([&] { hold = poster.holdKeyboard(focus); });
    ASSERT_TRUE(hold);
    rig->focusOtherEditor();
    rig->rest();
    rig->onWorker([&] {
        EXPECT_FALSE(hold->hasFocus());
        post(0, u"a");
    });
    rig->rest();
    EXPECT_EQ(rig->text(), u"");
    EXPECT_EQ(rig->otherText(), u"");
    hold.reset();
    // Without a hold, whatever has the focus is meant.
    postOnWorker(0, u"b");
    EXPECT_TRUE(rig->becomes([&] { return rig->otherText() == u"b"; }));
}

} // namespace kelvora::contract

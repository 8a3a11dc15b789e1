// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_posting_marks.h"
#include "tests/host/x11/x11_rig.h"
#include "tests/support/real_desktop/keyboard_state.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

namespace kelvora {
namespace {

using namespace contract;
using real::KeySource;
using real::readKeyboardState;

class X11Hold : public testing::TestWithParam<KeySource> {
protected:
    X11Hold() {
        rig.keyboard().setSource(GetParam());
        tap->setEnabled(true);
        // The hold is made for the user who typed last.
        rig.strike(keyQ);
        EXPECT_TRUE(rig.textBecomes(u"q"));
        EXPECT_TRUE(rig.becomes([&] { return recorded == u"q"; }));
    }
    void begin() {
        const FocusTarget target = rig.services().workspace.focusTarget();
        rig.onWorker([&] {
            hold = rig.services().eventPoster.holdKeyboard(target);
            EXPECT_TRUE(hold->settle());
        });
    }
    void post(std::u16string_view text) {
        rig.onWorker([&] {
            auto event = rig.services().eventPoster.createKeyEvent(0, KeyDirection::down);
            event->text = EventText(text);
            event->sourceUserData = 1;
            rig.services().eventPoster.post(*event);
        });
    }
    void end() {
        hold.reset();
        rig.rest();
    }

    X11Rig rig;
    std::u16string recorded; ///< the user's text as the tap delivers it
    std::unique_ptr<EventTap> tap = rig.services().eventSource.createTap(
        eventMaskBit(EventType::keyDown), [this](const InputEvent& event) {
            if (event.sourceUserData == 0)
                recorded += event.text.view();
        });
    std::unique_ptr<KeyboardHold> hold;
};

TEST_P(X11Hold, ShiftThatIsHeldThroughoutGoesOnToShift) {
    rig.press(keyCode::leftShift);
    rig.rest();
    begin();
    post(u"ab");
    rig.strike(keyW);
    EXPECT_TRUE(rig.textBecomes(u"qab")) << "neither shifted nor mixed with the user's key";
    end();
    EXPECT_TRUE(rig.textBecomes(u"qabW"));
    rig.strike(keyW);
    EXPECT_TRUE(rig.textBecomes(u"qabWW"));
    rig.release(keyCode::leftShift);
    rig.strike(keyW);
    EXPECT_TRUE(rig.textBecomes(u"qabWWw"));
    EXPECT_TRUE(rig.becomes([&] { return recorded == u"qWWw"; }));
    EXPECT_TRUE(readKeyboardState(rig.xlib()).pressedKeys.empty());
    // Nothing was left down on the keyboard that stood in for the user's.
    rig.keyboard().setSource(KeySource::synthetic);
    rig.press(keyCode::leftShift);
    rig.strike(keyW);
    rig.release(keyCode::leftShift);
    rig.strike(keyW);
    EXPECT_TRUE(rig.textBecomes(u"qabWWwWw"));
}

TEST_P(X11Hold, ShiftThatComesUpMeanwhileIsNotStuck) {
    rig.press(keyCode::leftShift);
    rig.rest();
    begin();
    post(u"ab");
    rig.release(keyCode::leftShift);
    rig.strike(keyW);
    end();
    EXPECT_TRUE(rig.textBecomes(u"qabw"));
    EXPECT_TRUE(readKeyboardState(rig.xlib()).pressedKeys.empty());
}

TEST_P(X11Hold, ShiftThatGoesDownMeanwhileHolds) {
    begin();
    post(u"ab");
    rig.press(keyCode::leftShift);
    rig.strike(keyW);
    end();
    rig.strike(keyQ);
    rig.release(keyCode::leftShift);
    rig.strike(keyQ);
    EXPECT_TRUE(rig.textBecomes(u"qabWQq"));
    EXPECT_TRUE(readKeyboardState(rig.xlib()).pressedKeys.empty());
}

TEST_P(X11Hold, KeysThatGoDownBeforeAndComeUpAfter) {
    rig.press(keyW);
    EXPECT_TRUE(rig.textBecomes(u"qw"));
    begin();
    post(u"ab");
    rig.release(keyW);
    rig.press(keyQ);
    end();
    rig.release(keyQ);
    rig.strike(keyW);
    EXPECT_TRUE(rig.textBecomes(u"qwabqw"));
    EXPECT_TRUE(rig.becomes([&] { return recorded == u"qwqw"; }));
    EXPECT_TRUE(readKeyboardState(rig.xlib()).pressedKeys.empty());
}

TEST_P(X11Hold, ManyKeysInALongHoldComeInTheirOrder) {
    begin();
    std::u16string typed;
    for (int key = 0; key < 60; ++key) {
        if (key % 10 == 0)
            post(u"ab");
        const bool isShifted = key % 7 == 0;
        if (isShifted)
            rig.press(keyCode::leftShift);
        rig.strike(key % 3 == 0 ? keyQ : keyW);
        if (isShifted)
            rig.release(keyCode::leftShift);
        typed += key % 3 == 0 ? (isShifted ? u'Q' : u'q') : (isShifted ? u'W' : u'w');
    }
    rig.press(keyW); // until it repeats, which the server makes it do after two thirds of a second
    for (int wait = 0; wait < 6; ++wait)
        rig.rest();
    rig.release(keyW);
    rig.strike(keyQ);
    EXPECT_EQ(rig.text(), u"qabababababab");
    end();
    EXPECT_TRUE(rig.becomes([&] { return rig.text().ends_with(u"wq"); }));
    rig.rest();
    const std::u16string start = u"qabababababab" + typed;
    const std::u16string text = rig.text();
    ASSERT_TRUE(text.starts_with(start));
    const std::size_t repeats = text.size() - start.size() - 1;
    EXPECT_GT(repeats, 2U);
    EXPECT_EQ(text.substr(start.size()), std::u16string(repeats, u'w') + u"q");
    EXPECT_EQ(recorded, u"q" + typed + std::u16string(repeats, u'w') + u"q");
    EXPECT_TRUE(readKeyboardState(rig.xlib()).pressedKeys.empty());
}

TEST_P(X11Hold, FocusTakenInTheMiddleGoesBackForTheRest) {
    begin();
    post(u"ab");
    rig.focusOtherEditor();
    rig.rest();
    post(u"cd");
    rig.strike(keyW);
    end();
    EXPECT_TRUE(rig.textBecomes(u"qabcd")) << "a correction is finished where it began";
    EXPECT_TRUE(rig.becomes([&] { return rig.otherText() == u"w"; }))
        << "whoever took the focus has it again, and the user's keys go there";
}

TEST_P(X11Hold, KeyboardTakenInTheMiddleIsWaitedFor) {
    begin();
    post(u"ab");
    rig.other().grabKeyboard();
    std::thread menu([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        rig.other().ungrabKeyboard();
    });
    post(u"cd");
    menu.join();
    EXPECT_FALSE(hold->hasFailed());
    end();
    EXPECT_TRUE(rig.textBecomes(u"qabcd"));
    EXPECT_TRUE(rig.otherText().empty());
}

TEST_P(X11Hold, KeyboardTakenForGoodGetsNothing) {
    begin();
    post(u"ab");
    rig.other().grabKeyboard();
    post(u"cd");
    EXPECT_TRUE(hold->hasFailed());
    rig.other().ungrabKeyboard();
    post(u"ef");
    end();
    EXPECT_EQ(rig.text(), u"qab");
    EXPECT_TRUE(rig.otherText().empty());
}

TEST(X11PostingMarks, WaitForTheirOwnFence) {
    X11PostingMarks marks;
    const std::uint8_t late = marks.nextFence();
    const std::uint8_t fence = marks.nextFence();
    marks.fencePassed(late);
    EXPECT_FALSE(marks.waitForFence(fence, std::chrono::milliseconds(0)));
    marks.fencePassed(fence);
    EXPECT_TRUE(marks.waitForFence(fence, std::chrono::milliseconds(0)));
}

INSTANTIATE_TEST_SUITE_P(Sources, X11Hold,
                         testing::Values(KeySource::physical, KeySource::synthetic),
                         [](const auto& source) {
                             return source.param == KeySource::physical ? "Physical" : "Synthetic";
                         });

} // namespace
} // namespace kelvora

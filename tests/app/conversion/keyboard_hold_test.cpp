// SPDX-License-Identifier: MIT
#include "tests/app/running_app.h"

namespace kelvora {
namespace {

// Times are seconds from the release of the second Shift. The hold begins after 0.002 (the tap's
// lag), the first Backspace goes down at 0.004; six letters are erased and typed by 0.120.
using KeyboardHoldTest = RunningApp;

TEST_F(KeyboardHoldTest, KeysTypedMeanwhileComeAfterwardsInTheNewLayout) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    for (const double time : {0.01, 0.05, 0.09, 0.115}) {
        desktop.at(time, [this] { desktop.strike(u'q'); });
    }
    desktop.run();
    EXPECT_EQ(text(), u"приветйййй");
    EXPECT_EQ(recorded(), u"приветйййй");
    EXPECT_EQ(status(), success);
}

TEST_F(KeyboardHoldTest, WithoutAHoldTheyGoBetweenAndNothingIsOverwritten) {
    desktop.keyboard.canHold = false;
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.11, [this] { desktop.strike(u'q'); });
    desktop.run();
    EXPECT_EQ(text(), u"приветq");
    EXPECT_EQ(recorded(), u"ghbdtnq") << "what the user typed since wins";
    EXPECT_EQ(desktop.layouts.activeID, "ru");
}

TEST_F(KeyboardHoldTest, KeysTypedBeforeTheHoldFollowTheWordInTheNewLayout) {
    struct Case {
        const char* name;
        double time;
        std::u16string_view keys;
        std::u16string_view text;
        std::string status;
    };
    const Case cases[] = {
        {"not yet recorded when the hold begins", 0.001, u",", u"приветб", success},
        {"a next word", 0.0015, u" vbh", u"привет мир", success},
        {"what is the same in both layouts", 0.001, u" 42", u"привет 42", success},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.layouts.activeID = "us";
        desktop.windows.focus(desktop.windows.focusTarget().id + 1);
        desktop.type(u"ghbdtn");
        desktop.doubleShift();
        desktop.at(testCase.time, [&] {
            for (const char16_t key : testCase.keys) {
                desktop.strike(key);
            }
        });
        desktop.run();
        EXPECT_EQ(desktop.windows.text(desktop.windows.focusTarget().id), testCase.text);
        EXPECT_EQ(recorded(), testCase.text);
        EXPECT_EQ(status(), testCase.status);
        EXPECT_FALSE(desktop.keyboard.isHeldBack());
    }
}

TEST_F(KeyboardHoldTest, ModifierHeldOnDelaysTheHold) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    // The next word begins with a capital while the program waits for Shift to come up.
    desktop.at(0.0005, [this] { desktop.keyboard.press(keyCode::leftShift); });
    desktop.at(0.05, [this] { desktop.keyboard.press(fake::keyLabelled(u'q').keyCode); });
    desktop.at(0.1, [this] { desktop.keyboard.release(keyCode::leftShift); });
    desktop.run();
    EXPECT_EQ(text(), u"приветЙ");
    EXPECT_EQ(recorded(), u"приветЙ");
}

TEST_F(KeyboardHoldTest, FocusThatMovesFirstGetsNothing) {
    for (const double time : {0.0005, 0.0015, 0.0025, 0.0035}) {
        for (const bool comesBack : {false, true}) {
            if (comesBack && time > 0.002) {
                continue; // a caret that is back where it was
            }
            desktop.keyboard.posted.clear();
            SCOPED_TRACE(testing::Message() << time << (comesBack ? " and comes back" : ""));
            desktop.windows.focus(fake::Windows::editor);
            desktop.run();
            const std::u16string before = text();
            desktop.type(u"ghbdtn");
            desktop.doubleShift();
            desktop.at(time, [&] {
                desktop.windows.focus(fake::Windows::otherEditor);
                if (comesBack) {
                    desktop.windows.focus(fake::Windows::editor);
                }
            });
            desktop.at(0.05, [this] { desktop.strike(u'q'); });
            desktop.run();
            EXPECT_EQ(desktop.keyboard.posted.size(), 0U);
            EXPECT_EQ(status(), nothing);
            EXPECT_EQ(desktop.layouts.activeID, "us");
            EXPECT_EQ(text(), before + (comesBack ? u"ghbdtnq" : u"ghbdtn"));
            EXPECT_EQ(recorded(), u"q") << "in the window that has the focus now";
        }
    }
}

TEST_F(KeyboardHoldTest, FocusThatMovesFirstGetsNothingWithoutAHoldEither) {
    desktop.keyboard.canHold = false;
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.0005, [this] { desktop.keyboard.press(keyCode::leftShift); });
    desktop.at(0.05, [this] { desktop.windows.focus(fake::Windows::otherEditor); });
    desktop.at(0.1, [this] { desktop.keyboard.release(keyCode::leftShift); });
    desktop.run();
    EXPECT_EQ(desktop.keyboard.posted.size(), 0U);
    EXPECT_EQ(status(), nothing);
    EXPECT_EQ(desktop.layouts.activeID, "us");
}

TEST_F(KeyboardHoldTest, FocusThatMovesMidwayDoesNotLeaveHalfACorrection) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.06, [this] { desktop.windows.focus(fake::Windows::otherEditor); });
    desktop.at(0.07, [this] { desktop.strike(u'q'); });
    desktop.run();
    EXPECT_EQ(text(), u"привет");
    EXPECT_EQ(desktop.windows.text(fake::Windows::otherEditor), u"й") << "the user's own key only";
    EXPECT_EQ(recorded(), u"й");
}

TEST_F(KeyboardHoldTest, ACorrectionThatDoesNotGetThroughSwitchesNothing) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.06, [this] { desktop.windows.setGrabbed(true); });
    desktop.run();
    EXPECT_EQ(desktop.layouts.activeID, "us");
    EXPECT_EQ(status(), nothing);
    EXPECT_EQ(recorded(), u"");
    EXPECT_FALSE(desktop.keyboard.isHeldBack());
}

TEST_F(KeyboardHoldTest, ClickDuringTheHoldLeavesNothingToConvert) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.001, [this] { desktop.keyboard.click(EventType::leftMouseDown); });
    desktop.run();
    EXPECT_EQ(text(), u"ghbdtn");
    EXPECT_EQ(status(), nothing);
    EXPECT_FALSE(desktop.keyboard.isHeldBack());
}

TEST_F(KeyboardHoldTest, NothingIsErasedWhenTheRecordMayBeIncomplete) {
    desktop.keyboard.canSettle = false;
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.003, [this] { desktop.strike(u'q'); });
    desktop.run();
    EXPECT_EQ(text(), u"ghbdtnq");
    EXPECT_EQ(desktop.keyboard.posted.size(), 0U);
    EXPECT_EQ(status(), nothing);
}

TEST_F(KeyboardHoldTest, AnotherProgramThatKeepsTypingIsNotFoughtWith) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    for (int i = 1; i < 40; ++i) {
        desktop.at(0.0005 * i, [this] {
            InputEvent key = *desktop.keyboard.createKeyEvent(0, KeyDirection::down);
            key.text = EventText(u"x");
            desktop.keyboard.post(key);
        });
    }
    desktop.run();
    EXPECT_EQ(text(), u"ghbdtn" + std::u16string(39, u'x'));
    EXPECT_EQ(status(), nothing);
}

TEST_F(KeyboardHoldTest, NothingIsSentWhereTheFocusIsNotKnown) {
    // A window that the desktop cannot name receives keys.
    desktop.windows.setNameless(true);
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"ghbdtn");
    EXPECT_EQ(status(), nothing);
    EXPECT_TRUE(desktop.keyboard.posted.empty());
    desktop.windows.setNameless(false);
    typeAndConvert(u"");
    EXPECT_EQ(text(), u"привет");
}

TEST_F(KeyboardHoldTest, KeysSinceTheTriggerAreReadInTheTargetLayoutOnce) {
    // With the second, the user has switched by hand before the taps: the keys are right already.
    for (const char* active : {"us", "ru"}) {
        SCOPED_TRACE(active);
        desktop.layouts.activeID = "us";
        desktop.windows.focus(desktop.windows.focusTarget().id + 1);
        desktop.type(u"ghbdtn");
        desktop.layouts.activeID = active;
        desktop.doubleShift();
        desktop.at(0.001, [&] {
            for (const char16_t key : std::u16string_view(u"/ vbh")) {
                desktop.strike(key);
            }
        });
        desktop.run();
        EXPECT_EQ(desktop.windows.text(desktop.windows.focusTarget().id), u"привет. мир");
    }
}

TEST_F(KeyboardHoldTest, AFullBufferThatDropsItsOldestForAKeySinceTheTrigger) {
    desktop.type(std::u16string(TypedTextBuffer::maximumLength - 7, u'x') + u" ghbdtn");
    desktop.doubleShift();
    desktop.at(0.001, [&] {
        for (const char16_t key : std::u16string_view(u" vbh")) {
            desktop.strike(key);
        }
    });
    desktop.run();
    EXPECT_TRUE(text().ends_with(u" привет мир")) << "the word of the trigger";
}

TEST_F(KeyboardHoldTest, KeysAfterATriggerOnNothingAreNotItsWord) {
    desktop.doubleShift();
    desktop.at(0.0005, [&] { desktop.strike(u'q'); });
    desktop.run();
    EXPECT_EQ(text(), u"q");
    EXPECT_EQ(status(), nothing);
}

TEST_F(KeyboardHoldTest, LayoutIsSwitchedBeforeTheKeysAndTheStatusComesLast) {
    std::string layoutAtStatus;
    std::u16string textAtStatus;
    bool heldAtStatus = true;
    bool inProgressAtStatus = true;
    app->model().onStatusChanged = [&](std::string_view) {
        layoutAtStatus = desktop.layouts.activeID;
        textAtStatus = text();
        heldAtStatus = desktop.keyboard.isHeldBack();
        inProgressAtStatus = app->conversionInProgress();
    };
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] { desktop.strike(u'q'); });
    desktop.run();
    EXPECT_EQ(layoutAtStatus, "ru");
    EXPECT_EQ(textAtStatus, u"приветй");
    EXPECT_FALSE(heldAtStatus);
    EXPECT_FALSE(inProgressAtStatus);
}

TEST_F(KeyboardHoldTest, KeyboardsComeBackWhenTheProgramEndsMidway) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] {
        desktop.strike(u'q');
        app.reset();
    });
    desktop.run();
    EXPECT_FALSE(desktop.keyboard.isHeldBack());
    EXPECT_EQ(text(), u"приветй");
}

} // namespace
} // namespace kelvora

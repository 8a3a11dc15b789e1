// SPDX-License-Identifier: MIT
#include "tests/app/running_app.h"

#include <functional>

namespace kelvora {
namespace {

// Times are seconds from the release of the second Shift. The hold begins after 0.002 (the tap's
// lag), the first Backspace goes down at 0.004; six letters are erased and typed by 0.120.
class KeyboardHoldTest : public RunningApp {
protected:
    void strikeAll(std::u16string_view labels) {
        for (const char16_t label : labels)
            desktop.strike(label);
    }
    void nextWindow() { desktop.windows.focus(desktop.windows.focusTarget().id + 1); }
    std::u16string focusedText() { return desktop.windows.text(desktop.windows.focusTarget().id); }
};

TEST_F(KeyboardHoldTest, KeysTypedOnFollowTheWordInTheNewLayout) {
    const struct {
        const char* name;
        std::u16string_view typed;
        const char* switchedTo; // by hand, before the taps
        double time;
        std::u16string_view keys;
        std::u16string_view text;
        const char* status = success;
    } cases[] = {
        {"not yet recorded when the hold begins", u"ghbdtn", "us", 0.001, u",", u"приветб"},
        {"a next word, its keys read once", u"ghbdtn", "us", 0.001, u"/ vbh", u"привет. мир"},
        {"what is the same in both layouts", u"ghbdtn", "us", 0.001, u" 42", u"привет 42"},
        {"right already", u"ghbdtn", "ru", 0.001, u"/ vbh", u"привет. мир"},
        {"during the hold", u"ghbdtn", "us", 0.05, u"qq", u"приветйй"},
        {"just before its end", u"ghbdtn", "us", 0.115, u"q", u"приветй"},
        {"a trigger on nothing", u"", "us", 0.0005, u"q", u"q", nothing},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.layouts.activeID = "us";
        nextWindow();
        desktop.type(testCase.typed);
        desktop.layouts.activeID = testCase.switchedTo;
        desktop.doubleShift();
        desktop.at(testCase.time, [&] { strikeAll(testCase.keys); });
        desktop.run();
        EXPECT_EQ(focusedText(), testCase.text);
        EXPECT_EQ(recorded(), testCase.text);
        EXPECT_EQ(status(), testCase.status);
        EXPECT_FALSE(desktop.keyboard.isHeldBack());
    }
}

TEST_F(KeyboardHoldTest, NothingIsSentWhenTheTextBeforeTheCaretIsUncertain) {
    const auto click = [this] { desktop.keyboard.click(EventType::leftMouseDown); };
    const auto typeX = [this] {
        InputEvent key = *desktop.keyboard.createKeyEvent(0, KeyDirection::down);
        key.text = EventText(u"x");
        desktop.keyboard.post(key);
    };
    const struct {
        const char* name;
        std::function<void()> disturb;
        std::u16string added;
    } cases[] = {
        {"a click", [&] { desktop.at(0.001, click); }, u""},
        {"a window that the desktop cannot name", [&] { desktop.windows.setNameless(true); }, u""},
        {"the record may be incomplete",
         [&] {
             desktop.keyboard.canSettle = false;
             desktop.at(0.003, [this] { strikeAll(u"q"); });
         },
         u"q"},
        {"another program that keeps typing",
         [&] {
             for (int i = 1; i < 40; ++i)
                 desktop.at(0.0005 * i, typeX);
         },
         std::u16string(39, u'x')},
    };
    for (const auto& [name, disturb, added] : cases) {
        SCOPED_TRACE(name);
        nextWindow();
        desktop.keyboard.canSettle = true;
        desktop.type(u"ghbdtn");
        desktop.doubleShift();
        disturb();
        desktop.run();
        desktop.windows.setNameless(false);
        EXPECT_EQ(focusedText(), u"ghbdtn" + added);
        for (const auto& posted : desktop.keyboard.posted)
            EXPECT_NE(posted.event.sourceUserData, SystemEventPoster::userData);
        EXPECT_EQ(status(), nothing);
        EXPECT_FALSE(desktop.keyboard.isHeldBack());
    }
}

TEST_F(KeyboardHoldTest, FocusThatMovesFirstGetsNothing) {
    for (const double time : {0.0005, 0.0015, 0.0025, 0.0035}) {
        for (const bool comesBack : {false, true}) {
            if (comesBack && time > 0.002)
                continue; // a caret that is back where it was
            desktop.keyboard.posted.clear();
            SCOPED_TRACE(testing::Message() << time << (comesBack ? " and comes back" : ""));
            desktop.windows.focus(fake::Windows::editor);
            desktop.run();
            const std::u16string before = text();
            desktop.type(u"ghbdtn");
            desktop.doubleShift();
            desktop.at(time, [&] {
                desktop.windows.focus(fake::Windows::otherEditor);
                if (comesBack)
                    desktop.windows.focus(fake::Windows::editor);
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

TEST_F(KeyboardHoldTest, AFullBufferThatDropsItsOldestForAKeySinceTheTrigger) {
    desktop.type(std::u16string(TypedTextBuffer::maximumLength - 7, u'x') + u" ghbdtn");
    desktop.doubleShift();
    desktop.at(0.001, [this] { strikeAll(u" vbh"); });
    desktop.run();
    EXPECT_TRUE(text().ends_with(u" привет мир")) << "the word of the trigger";
}

TEST_F(KeyboardHoldTest, LayoutIsSwitchedBeforeTheKeysAndTheStatusComesLast) {
    int statuses = 0;
    const auto observation = app->model().observe([&](AppModelProperty property) {
        if (property != AppModelProperty::statusMessage)
            return;
        ++statuses;
        EXPECT_EQ(desktop.layouts.activeID, "ru");
        EXPECT_EQ(text(), u"приветй");
        EXPECT_FALSE(desktop.keyboard.isHeldBack());
        EXPECT_FALSE(app->conversionInProgress());
    });
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] { desktop.strike(u'q'); });
    desktop.run();
    EXPECT_EQ(statuses, 1);
}

TEST_F(KeyboardHoldTest, TheProgramMayEndMidway) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] {
        desktop.strike(u'q');
        app.reset();
    });
    desktop.run();
    EXPECT_FALSE(desktop.keyboard.isHeldBack());
    EXPECT_EQ(text(), u"приветй");
    desktop.windows.focus(fake::Windows::otherEditor);
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(desktop.events.tapCount(), 0U);
}

} // namespace
} // namespace kelvora

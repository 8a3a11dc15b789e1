// SPDX-License-Identifier: MIT
// Keys pressed on without waiting for the correction: they come after it, in the new layout, in
// order, and none is lost.
#include "tests/desktop/live_desktop.h"

#include <array>
#include <chrono>
#include <thread>

namespace kelvora::real {

namespace {

constexpr Rhythm noPause{std::chrono::milliseconds(0), std::chrono::milliseconds(0)};

class TypedOn : public LiveDesktopTest {
protected:
    void repeat(KeySource source, Rhythm rhythm, const char* typedOn, const char* expected) {
        SCOPED_TRACE(source == KeySource::physical ? "a keyboard" : "another program's keys");
        SCOPED_TRACE(rhythm.longest.count());
        keyboard().setSource(source);
        for (int round = 0; round < 2; ++round) {
            SCOPED_TRACE(round);
            keyboard().setRhythm(fastRhythm);
            beginFreshLine();
            keyboard().type("ghbdtn");
            keyboard().doubleShift();
            keyboard().setRhythm(rhythm);
            keyboard().type(typedOn);
            expectEnd(expected, "ru");
        }
    }
};

TEST_P(TypedOn, KeysFollowTheCorrection) {
    struct Case {
        const char* name;
        const char* typedOn;
        const char* expected;
    };
    constexpr std::array cases{
        Case{"letters of the same word", "vbh", "приветмир"},
        Case{"the next word", " vbh", "привет мир"},
        Case{"a capital letter", " Vbh? lf", "привет Мир, да"},
        Case{"Shift again and again", "VbVbVbVbVbVbVb", "приветМиМиМиМиМиМиМи"},
        Case{"a slip and its correction", " vvv\b\bbh", "привет мир"},
    };
    for (const KeySource source : {KeySource::physical, KeySource::synthetic}) {
        // The first is faster than any hand: keys come even before the program has seen the
        // trigger.
        for (const Rhythm rhythm : {noPause, fastRhythm, personRhythm}) {
            for (const Case& row : cases) {
                SCOPED_TRACE(row.name);
                repeat(source, rhythm, row.typedOn, row.expected);
            }
        }
    }
}

TEST_P(TypedOn, KeysBeginInTheMiddleOfTheCorrection) {
    for (const int delay : {20, 50, 80, 110, 140}) {
        SCOPED_TRACE(delay);
        beginFreshLine();
        keyboard().type("ghbdtn");
        keyboard().doubleShift();
        // Not a wait for something: these are the moments at which the person goes on.
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        keyboard().type(" vbh");
        expectEnd("привет мир", "ru");
    }
}

TEST_P(TypedOn, AKeyThatIsStillDownWhenTheCorrectionBegins) {
    constexpr unsigned keyN = 57;
    keyboard().type("ghbdt");
    keyboard().press(keyN);
    keyboard().doubleShift(); // the last letter's key is down all along
    ASSERT_TRUE(application().showsText("привет", std::chrono::milliseconds(0)))
        << application().text();
    keyboard().release(keyN);
    expectEnd("привет", "ru");
}

TEST_P(TypedOn, WordAfterWordWithoutEverWaiting) {
    keyboard().setRhythm(personRhythm);
    keyboard().type("ghbdtn");
    keyboard().doubleShift();
    keyboard().type(" vbh");
    keyboard().doubleShift(); // the second word is right; this turns it into the English keys
    keyboard().type(" ok");
    expectEnd("привет vbh ok", "us");
}

KELVORA_IN_EVERY_APPLICATION(TypedOn);

} // namespace

} // namespace kelvora::real

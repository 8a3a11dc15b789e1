// SPDX-License-Identifier: MIT
// Locks that are on and modifiers that are held while a correction runs.
#include "tests/desktop/live_desktop.h"
#include "tests/support/real_desktop/wait_until.h"

#include <array>

namespace kelvora::real {

namespace {

class Locks : public LiveDesktopTest {};

TEST_P(Locks, AreAsBeforeAfterwards) {
    struct Case {
        const char* name;
        unsigned lockKey;
        unsigned lockBit;
        const char* expected;
    };
    constexpr std::array cases{
        Case{"Caps Lock", key::capsLock, capsLockBit, "ПРИВЕТ"},
        Case{"Num Lock", key::numLock, numLockBit, "привет"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        beginFreshLine();
        keyboard().tap(row.lockKey);
        ASSERT_EQ(desktop().keyboardState().lockedModifiers, row.lockBit);
        keyboard().type("ghbdtn");
        keyboard().doubleShift();
        expectEnd(row.expected, "ru", row.lockBit);
        keyboard().tap(row.lockKey);
        expectEnd(row.expected, "ru");
    }
}

TEST_P(Locks, AModifierHeldAgainAfterTheTriggerDoesNotSpoilTheText) {
    for (const unsigned modifier : {key::leftShift, key::rightShift, key::control}) {
        SCOPED_TRACE(modifier);
        beginFreshLine();
        keyboard().type("ghbdtn");
        keyboard().doubleShift();
        keyboard().press(modifier);
        EXPECT_TRUE(application().showsText("привет", std::chrono::milliseconds(500)))
            << application().text();
        keyboard().release(modifier);
        expectEnd("привет", "ru");
        keyboard().type(" vbh");
        expectEnd("привет мир", "ru");
    }
}

TEST_P(Locks, TheSecondShiftMayBeHeldLong) {
    keyboard().type("ghbdtn");
    keyboard().tap(key::leftShift);
    keyboard().press(key::leftShift);
    EXPECT_TRUE(staysTrue([&] { return application().text() == "ghbdtn"; },
                          std::chrono::milliseconds(700)));
    keyboard().release(key::leftShift);
    expectEnd("привет", "ru");
}

KELVORA_IN_EVERY_APPLICATION(Locks);

} // namespace

} // namespace kelvora::real

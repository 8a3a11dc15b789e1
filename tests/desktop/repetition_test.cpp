// SPDX-License-Identifier: MIT
// The plain case again and again, as a race shows only now and then.
#include "tests/desktop/live_desktop.h"

#include <array>

namespace kelvora::real {

namespace {

class Repetition : public LiveDesktopTest {
protected:
    void repeat(KeySource source, Rhythm rhythm) {
        constexpr int repetitions = 8;
        keyboard().setSource(source);
        for (int round = 0; round < repetitions && !HasFailure(); ++round) {
            SCOPED_TRACE(round);
            keyboard().setRhythm(fastRhythm);
            beginFreshLine();
            keyboard().setRhythm(rhythm);
            keyboard().type("ok ghbdtn ");
            keyboard().doubleShift();
            expectEnd("ok привет ", "ru");
        }
    }
};

TEST_P(Repetition, AKeyboardAtAPersonsPace) {
    repeat(KeySource::physical, personRhythm);
}
TEST_P(Repetition, AKeyboardAtFullSpeed) {
    repeat(KeySource::physical, fastRhythm);
}
TEST_P(Repetition, AnotherProgramsKeysAtAPersonsPace) {
    repeat(KeySource::synthetic, personRhythm);
}
TEST_P(Repetition, AnotherProgramsKeysAtFullSpeed) {
    repeat(KeySource::synthetic, fastRhythm);
}

KELVORA_IN_EVERY_APPLICATION(Repetition);

} // namespace

} // namespace kelvora::real

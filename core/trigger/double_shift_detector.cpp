// SPDX-License-Identifier: MIT
#include "core/trigger/double_shift_detector.h"

namespace kelvora {
namespace {

/// False too when time runs backwards.
bool isWithin(double limit, double from, double to) {
    return to >= from && to - from <= limit;
}

} // namespace

void DoubleShiftDetector::enter(State state, double time) {
    state_ = state;
    since_ = time;
}

bool DoubleShiftDetector::process(HotkeyInput input, double time) {
    switch (input) {
    case HotkeyInput::shiftDown:
        shiftDown(time);
        return false;
    case HotkeyInput::shiftUp:
        return shiftUp(time);
    case HotkeyInput::otherKey:
    case HotkeyInput::otherModifier:
        reset();
        return false;
    }
    return false;
}

void DoubleShiftDetector::shiftDown(double time) {
    switch (state_) {
    case State::idle:
        return enter(State::firstDown, time);
    case State::waitingForSecond:
        // A late second press starts a new attempt.
        return enter(isWithin(maximumInterval, since_, time) ? State::secondDown : State::firstDown,
                     time);
    case State::firstDown:
    case State::secondDown:
        return reset();
    }
}

bool DoubleShiftDetector::shiftUp(double time) {
    const State before = state_;
    const double pressed = since_;
    reset();
    switch (before) {
    case State::firstDown:
        if (isWithin(holdLimit, pressed, time)) {
            enter(State::waitingForSecond, time);
        }
        return false;
    case State::secondDown:
        return true;
    case State::idle:
    case State::waitingForSecond:
        return false;
    }
    return false;
}

} // namespace kelvora

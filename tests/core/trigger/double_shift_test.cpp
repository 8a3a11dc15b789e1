// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "core/trigger/double_shift_detector.h"
#include "core/trigger/shift_event_interpreter.h"

namespace kelvora {
namespace {

using enum HotkeyInput;

constexpr std::uint16_t left = ShiftEventInterpreter::leftShiftKeyCode;
constexpr std::uint16_t right = ShiftEventInterpreter::rightShiftKeyCode;
constexpr std::uint16_t capsLock = 57;
constexpr std::uint16_t command = 55;

struct InterpreterCase {
    struct Step {
        ModifierChange change;
        HotkeyInput expected;
        PressedShiftKeys pressed;
    };
    std::string name;
    std::vector<Step> steps;
};

// Key, Shift flag, left bit, right bit, other modifier.
const std::vector<InterpreterCase> interpreterCases = {
    {"either key by itself",
     {{{left, true, true, false, false}, shiftDown, {true, false}},
      {{left, false, false, false, false}, shiftUp, {}},
      {{right, true, false, true, false}, shiftDown, {false, true}},
      {{right, false, false, false, false}, shiftUp, {}}}},
    {"overlapping keys are no press until both are up",
     {{{left, true, true, false, false}, shiftDown, {true, false}},
      {{right, true, true, true, false}, otherModifier, {true, true}},
      {{left, true, false, true, false}, otherModifier, {false, true}},
      {{right, false, false, false, false}, shiftUp, {}}}},
    {"another modifier held",
     {{{left, true, true, false, true}, otherModifier, {true, false}},
      {{left, false, false, false, false}, shiftUp, {}}}},
    {"another key changes while Shift is down",
     {{{left, true, true, false, false}, shiftDown, {true, false}},
      {{capsLock, true, true, false, false}, otherModifier, {true, false}},
      {{command, true, false, false, true}, otherModifier, {true, false}}}},
    {"no device bits: the key toggles",
     {{{left, true, false, false, false}, shiftDown, {true, false}},
      {{left, true, false, false, false}, shiftUp, {}},
      {{right, true, false, false, false}, shiftDown, {false, true}},
      {{left, true, false, false, false}, otherModifier, {true, true}}}},
    {"device bits overrule what was believed",
     {{{left, true, true, false, false}, shiftDown, {true, false}},
      {{left, true, false, true, false}, shiftUp, {false, true}},
      {{right, true, false, true, false}, otherModifier, {false, true}}}},
    {"a clear Shift flag empties, whatever the device bits",
     {{{left, true, true, true, false}, otherModifier, {true, true}},
      {{capsLock, false, true, true, false}, otherModifier, {}},
      {{left, true, true, false, false}, shiftDown, {true, false}}}},
    {"a release of a key not known to be down",
     {{{left, false, false, false, false}, otherModifier, {}}}},
};

TEST(ShiftEventInterpreter, classifiesChanges) {
    for (const InterpreterCase& testCase : interpreterCases) {
        ShiftEventInterpreter interpreter;
        for (std::size_t i = 0; i < testCase.steps.size(); ++i) {
            const auto& [change, expected, pressed] = testCase.steps[i];
            EXPECT_EQ(interpreter.flagsChanged(change), expected) << testCase.name << i;
            EXPECT_EQ(interpreter.pressed(), pressed) << testCase.name << i;
        }
    }
}

TEST(ShiftEventInterpreter, resetForgetsHeldKeys) {
    ShiftEventInterpreter interpreter;
    static_cast<void>(interpreter.flagsChanged({left, true, true, true, false}));
    interpreter.reset();
    EXPECT_EQ(interpreter.pressed(), PressedShiftKeys{});
    EXPECT_EQ(interpreter.flagsChanged({right, true, false, true, false}), shiftDown);
}

struct Tap {
    std::string name;
    std::string inputs; // down, up, key or modifier, each with its time; ! where a tap completes
    double maximumInterval = 0.5;
};

const std::vector<Tap> taps = {
    {"twice in a row", "d0 u0.1 d0.2 u0.3! d0.4 u0.5 d0.6 u0.7!"},
    {"first held exactly to the limit", "d0 u0.45 d0.5 u0.6!"},
    {"the limit is on the difference of doubles", "d1000 u1000.45 d1000.5 u1000.6"},
    {"first held too long, the next starts anew", "d0 u0.46 d0.5 u0.6 d0.7 u0.8!"},
    {"pause exactly at the limit", "d0 u0.25 d0.75 u0.9!"},
    {"a late second press is a first press", "d0 u0.25 d0.76 u0.9 d1.0 u1.1!"},
    {"second held for long", "d0 u0.1 d0.2 u9!"},
    {"a key while the first is down", "d0 k0.05 u0.1 d0.2 u0.3"},
    {"a key in the pause", "d0 u0.1 k0.15 d0.2 u0.3"},
    {"a modifier in the pause", "d0 u0.1 m0.15 d0.2 u0.3"},
    {"a key while the second is down", "d0 u0.1 d0.2 k0.25 u0.3"},
    {"two presses without a release", "d0 d0.1 u0.2 d0.3 u0.4"},
    {"a press while the second is down", "d0 u0.1 d0.2 d0.3 u0.4"},
    {"a release out of nothing", "u0 d0.1 u0.2 d0.3 u0.4!"},
    {"time runs back during the first press", "d5 u4.9 d5 u5.1"},
    {"time runs back in the pause: a first press", "d5 u5.1 d5.0 u5.1 d5.2 u5.3!"},
    {"a narrower interval", "d0 u0.1 d0.4 u0.5", 0.25},
};

TEST(DoubleShiftDetector, answersOnTheSecondRelease) {
    const std::map<char, HotkeyInput> kinds = {
        {'d', shiftDown}, {'u', shiftUp}, {'k', otherKey}, {'m', otherModifier}};
    for (const Tap& tap : taps) {
        DoubleShiftDetector detector(0.1);
        detector.maximumInterval = tap.maximumInterval;
        std::istringstream inputs(tap.inputs);
        for (std::string input; inputs >> input;) {
            EXPECT_EQ(detector.process(kinds.at(input[0]), std::stod(input.substr(1))),
                      input.back() == '!')
                << tap.name << ": " << input;
        }
    }
}

TEST(DoubleShiftDetector, resetDropsAHalfTap) {
    DoubleShiftDetector detector(0.5);
    static_cast<void>(detector.process(shiftDown, 0));
    static_cast<void>(detector.process(shiftUp, 0.1));
    static_cast<void>(detector.process(shiftDown, 0.2));
    detector.reset();
    EXPECT_FALSE(detector.process(shiftUp, 0.3));
}

} // namespace
} // namespace kelvora

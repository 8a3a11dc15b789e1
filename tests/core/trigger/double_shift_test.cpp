// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <utility>
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

struct Step {
    ModifierChange change;
    HotkeyInput expected;
    PressedShiftKeys pressed;
};

struct InterpreterCase {
    std::string name;
    std::vector<Step> steps;
};

// Key, Shift flag, left bit, right bit, other modifier.
const std::vector<InterpreterCase> interpreterCases = {
    {"left down and up",
     {{{left, true, true, false, false}, shiftDown, {true, false}},
      {{left, false, false, false, false}, shiftUp, {}}}},
    {"right down and up",
     {{{right, true, false, true, false}, shiftDown, {false, true}},
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
            SCOPED_TRACE(testCase.name + ", step " + std::to_string(i));
            const Step& step = testCase.steps[i];
            EXPECT_EQ(interpreter.flagsChanged(step.change), step.expected);
            EXPECT_EQ(interpreter.pressed(), step.pressed);
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
    std::vector<std::pair<HotkeyInput, double>> inputs;
    std::vector<std::size_t> triggers; // indices of the inputs that complete a tap
    double maximumInterval = 0.5;
};

const std::vector<Tap> taps = {
    {"in time", {{shiftDown, 0}, {shiftUp, 0.1}, {shiftDown, 0.3}, {shiftUp, 0.5}}, {3}},
    {"twice in a row",
     {{shiftDown, 0},
      {shiftUp, 0.1},
      {shiftDown, 0.2},
      {shiftUp, 0.3},
      {shiftDown, 0.4},
      {shiftUp, 0.5},
      {shiftDown, 0.6},
      {shiftUp, 0.7}},
     {3, 7}},
    {"first held exactly to the limit",
     {{shiftDown, 0}, {shiftUp, 0.45}, {shiftDown, 0.5}, {shiftUp, 0.6}},
     {3}},
    {"the limit is on the difference of doubles, without tolerance",
     {{shiftDown, 1000}, {shiftUp, 1000.45}, {shiftDown, 1000.5}, {shiftUp, 1000.6}},
     {}},
    {"first held too long, the next press starts anew",
     {{shiftDown, 0},
      {shiftUp, 0.46},
      {shiftDown, 0.5},
      {shiftUp, 0.6},
      {shiftDown, 0.7},
      {shiftUp, 0.8}},
     {5}},
    {"pause exactly at the limit",
     {{shiftDown, 0}, {shiftUp, 0.25}, {shiftDown, 0.75}, {shiftUp, 0.9}},
     {3}},
    {"a late second press is a first press",
     {{shiftDown, 0},
      {shiftUp, 0.25},
      {shiftDown, 0.76},
      {shiftUp, 0.9},
      {shiftDown, 1.0},
      {shiftUp, 1.1}},
     {5}},
    {"second held for long", {{shiftDown, 0}, {shiftUp, 0.1}, {shiftDown, 0.2}, {shiftUp, 9}}, {3}},
    {"a key while the first is down",
     {{shiftDown, 0}, {otherKey, 0.05}, {shiftUp, 0.1}, {shiftDown, 0.2}, {shiftUp, 0.3}},
     {}},
    {"a key in the pause",
     {{shiftDown, 0}, {shiftUp, 0.1}, {otherKey, 0.15}, {shiftDown, 0.2}, {shiftUp, 0.3}},
     {}},
    {"a modifier in the pause",
     {{shiftDown, 0}, {shiftUp, 0.1}, {otherModifier, 0.15}, {shiftDown, 0.2}, {shiftUp, 0.3}},
     {}},
    {"a key while the second is down",
     {{shiftDown, 0}, {shiftUp, 0.1}, {shiftDown, 0.2}, {otherKey, 0.25}, {shiftUp, 0.3}},
     {}},
    {"two presses without a release",
     {{shiftDown, 0}, {shiftDown, 0.1}, {shiftUp, 0.2}, {shiftDown, 0.3}, {shiftUp, 0.4}},
     {}},
    {"a press while the second is down",
     {{shiftDown, 0}, {shiftUp, 0.1}, {shiftDown, 0.2}, {shiftDown, 0.3}, {shiftUp, 0.4}},
     {}},
    {"a release out of nothing",
     {{shiftUp, 0}, {shiftDown, 0.1}, {shiftUp, 0.2}, {shiftDown, 0.3}, {shiftUp, 0.4}},
     {4}},
    {"time runs back during the first press",
     {{shiftDown, 5}, {shiftUp, 4.9}, {shiftDown, 5}, {shiftUp, 5.1}},
     {}},
    {"time runs back in the pause: a first press",
     {{shiftDown, 5},
      {shiftUp, 5.1},
      {shiftDown, 5.0},
      {shiftUp, 5.1},
      {shiftDown, 5.2},
      {shiftUp, 5.3}},
     {5}},
    {"a narrower interval",
     {{shiftDown, 0}, {shiftUp, 0.1}, {shiftDown, 0.4}, {shiftUp, 0.5}},
     {},
     0.25},
};

TEST(DoubleShiftDetector, answersOnTheSecondRelease) {
    for (const Tap& tap : taps) {
        DoubleShiftDetector detector(0.1);
        detector.maximumInterval = tap.maximumInterval;
        std::vector<std::size_t> triggers;
        for (std::size_t i = 0; i < tap.inputs.size(); ++i) {
            if (detector.process(tap.inputs[i].first, tap.inputs[i].second)) {
                triggers.push_back(i);
            }
        }
        EXPECT_EQ(triggers, tap.triggers) << tap.name;
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

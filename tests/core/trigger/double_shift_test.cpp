// SPDX-License-Identifier: MIT
#include "core/trigger/double_shift_detector.h"
#include "core/trigger/shift_event_interpreter.h"

#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace kelvora {
namespace {

using enum HotkeyInput;

constexpr std::uint16_t left = ShiftEventInterpreter::leftShiftKeyCode;
constexpr std::uint16_t right = ShiftEventInterpreter::rightShiftKeyCode;
constexpr std::uint16_t capsLock = 57, command = 55;

TEST(ShiftEventInterpreter, classifiesChanges) {
    struct Step {
        ModifierChange change; // key, Shift flag, left bit, right bit, other modifier
        HotkeyInput expected;
        PressedShiftKeys pressed;
    };
    const Step leftDown{{left, true, true, false, false}, shiftDown, {true, false}};
    const Step leftUp{{left, false, false, false, false}, shiftUp, {}};
    const Step rightDown{{right, true, false, true, false}, shiftDown, {false, true}};
    const Step rightUp{{right, false, false, false, false}, shiftUp, {}};
    const struct {
        const char* name;
        std::vector<Step> steps;
    } cases[] = {
        {"either key by itself", {leftDown, leftUp, rightDown, rightUp}},
        {"overlapping keys are no press until both are up",
         {leftDown,
          {{right, true, true, true, false}, otherModifier, {true, true}},
          {{left, true, false, true, false}, otherModifier, {false, true}},
          rightUp}},
        {"another modifier held",
         {{{left, true, true, false, true}, otherModifier, {true, false}}, leftUp}},
        {"another key changes while Shift is down",
         {leftDown,
          {{capsLock, true, true, false, false}, otherModifier, {true, false}},
          {{command, true, false, false, true}, otherModifier, {true, false}}}},
        {"no device bits: the key toggles",
         {{{left, true, false, false, false}, shiftDown, {true, false}},
          {{left, true, false, false, false}, shiftUp, {}},
          {{right, true, false, false, false}, shiftDown, {false, true}},
          {{left, true, false, false, false}, otherModifier, {true, true}}}},
        {"device bits overrule what was believed",
         {leftDown,
          {{left, true, false, true, false}, shiftUp, {false, true}},
          {{right, true, false, true, false}, otherModifier, {false, true}}}},
        {"a clear Shift flag empties, whatever the device bits",
         {{{left, true, true, true, false}, otherModifier, {true, true}},
          {{capsLock, false, true, true, false}, otherModifier, {}},
          leftDown}},
        {"a release of a key not known to be down",
         {{{left, false, false, false, false}, otherModifier, {}}}},
    };
    ShiftEventInterpreter interpreter;
    for (const auto& [name, steps] : cases) {
        interpreter.reset();
        for (const auto& [change, expected, pressed] : steps) {
            EXPECT_EQ(interpreter.flagsChanged(change), expected) << name;
            EXPECT_EQ(interpreter.pressed(), pressed) << name;
        }
    }
}

TEST(DoubleShiftDetector, answersOnTheSecondRelease) {
    const struct {
        const char* name;
        // down, up, key, modifier or reset, each with its time; ! where a tap completes
        std::string inputs;
        double maximumInterval = 0.5;
    } taps[] = {
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
        {"half a tap is forgotten", "d0 u0.1 d0.2 r0 u0.3"},
    };
    const std::map<char, HotkeyInput> kinds = {
        {'d', shiftDown}, {'u', shiftUp}, {'k', otherKey}, {'m', otherModifier}};
    for (const auto& tap : taps) {
        DoubleShiftDetector detector(0.1);
        detector.maximumInterval = tap.maximumInterval;
        std::istringstream inputs(tap.inputs);
        for (std::string input; inputs >> input;)
            if (input[0] == 'r')
                detector.reset();
            else
                EXPECT_EQ(detector.process(kinds.at(input[0]), std::stod(input.substr(1))),
                          input.back() == '!')
                    << tap.name << ": " << input;
    }
}

} // namespace
} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/trigger/hotkey_input.h"

namespace kelvora {

/// One modifier change as the keyboard reports it: the flags are those after the change.
struct ModifierChange {
    std::uint16_t keyCode = 0;  ///< virtual key code of the key that changed
    bool shift = false;         ///< some Shift is held
    bool leftShift = false;     ///< device bit of the left Shift key
    bool rightShift = false;    ///< device bit of the right Shift key
    bool otherModifier = false; ///< Control, Option, Command or Function is held
};

/// The Shift keys believed to be down.
struct PressedShiftKeys {
    bool left = false;
    bool right = false;

    [[nodiscard]] bool contains(std::uint16_t keyCode) const;
    [[nodiscard]] bool both() const { return left && right; }
    bool operator==(const PressedShiftKeys&) const = default;
};

/// Tells clean single-key Shift presses and releases from every other modifier change. A plain
/// value without a lock.
class ShiftEventInterpreter {
public:
    static constexpr std::uint16_t leftShiftKeyCode = 56;
    static constexpr std::uint16_t rightShiftKeyCode = 60;

    /// Classifies one change; the result is `shiftDown`, `shiftUp` or `otherModifier`.
    [[nodiscard]] HotkeyInput flagsChanged(const ModifierChange& change);

    /// Forgets which keys are down.
    void reset() { pressed_ = {}; }

    [[nodiscard]] const PressedShiftKeys& pressed() const { return pressed_; }

private:
    void updatePressed(const ModifierChange& change);

    PressedShiftKeys pressed_;
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "core/trigger/shift_event_interpreter.h"

namespace kelvora {
namespace {

bool isShiftKey(std::uint16_t keyCode) {
    return keyCode == ShiftEventInterpreter::leftShiftKeyCode ||
           keyCode == ShiftEventInterpreter::rightShiftKeyCode;
}

} // namespace

bool PressedShiftKeys::contains(std::uint16_t keyCode) const {
    return (left && keyCode == ShiftEventInterpreter::leftShiftKeyCode) ||
           (right && keyCode == ShiftEventInterpreter::rightShiftKeyCode);
}

void ShiftEventInterpreter::updatePressed(const ModifierChange& change) {
    if (!change.shift) {
        pressed_ = {};
    } else if (change.leftShift || change.rightShift) {
        pressed_ = {change.leftShift, change.rightShift};
    } else if (change.keyCode == leftShiftKeyCode) {
        pressed_.left = !pressed_.left; // some synthetic events carry no device bits
    } else if (change.keyCode == rightShiftKeyCode) {
        pressed_.right = !pressed_.right;
    }
}

HotkeyInput ShiftEventInterpreter::flagsChanged(const ModifierChange& change) {
    const PressedShiftKeys old = pressed_;
    updatePressed(change);
    if (change.otherModifier || !isShiftKey(change.keyCode) || old.both() || pressed_.both()) {
        return HotkeyInput::otherModifier;
    }
    const bool wasDown = old.contains(change.keyCode);
    const bool isDown = pressed_.contains(change.keyCode);
    if (wasDown == isDown) {
        return HotkeyInput::otherModifier;
    }
    return isDown ? HotkeyInput::shiftDown : HotkeyInput::shiftUp;
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/x_display.h"

#include <string>
#include <vector>

namespace kelvora::real {

/// What the server says of its keyboard at one moment.
struct KeyboardState {
    std::string layout;                ///< the active layout's name, for example "ru"
    unsigned lockedModifiers = 0;      ///< Caps Lock, Num Lock, ... as X modifier bits
    std::vector<unsigned> pressedKeys; ///< X key codes
    std::vector<unsigned long> keymap; ///< every key's symbols, in order

    friend bool operator==(const KeyboardState&, const KeyboardState&) = default;
};

inline constexpr unsigned capsLockBit = 1U << 1U;
inline constexpr unsigned numLockBit = 1U << 4U;

[[nodiscard]] KeyboardState readKeyboardState(_XDisplay* display);
/// The active layout's name only.
[[nodiscard]] std::string activeLayout(_XDisplay* display);
/// Makes the layout at `index` of the list the active one.
void lockLayout(_XDisplay* display, unsigned index);
/// Switches exactly these locks on, all others off.
void lockModifiers(_XDisplay* display, unsigned modifiers);

} // namespace kelvora::real

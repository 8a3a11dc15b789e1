// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora {

/// What the keyboard did, as far as the double tap of Shift is concerned.
enum class HotkeyInput : std::uint8_t {
    shiftDown,     ///< a Shift key went down while no other Shift key was down
    shiftUp,       ///< that Shift key came up again
    otherKey,      ///< an ordinary key went down
    otherModifier, ///< any other modifier change, or a Shift change that is no clean press or
                   ///< release
};

} // namespace kelvora

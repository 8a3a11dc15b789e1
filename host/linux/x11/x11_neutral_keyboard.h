// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_keyboard_control.h"

#include <cstdint>
#include <vector>

namespace kelvora {

/// The core keyboard without held, latched or locked modifiers that would change what a posted key
/// does, for as long as the object lives. Locks and group are put back at the end; held modifiers
/// are not pressed again, because their keys may have come up meanwhile.
class X11NeutralKeyboard {
public:
    enum class Locks {
        keep,          ///< Caps Lock and Num Lock do no harm to what follows
        clearCapsLock, ///< letters follow
    };

    /// The control is synchronised, and outlives the object.
    X11NeutralKeyboard(X11KeyboardControl& control, Locks locks);
    ~X11NeutralKeyboard();
    X11NeutralKeyboard(const X11NeutralKeyboard&) = delete;
    X11NeutralKeyboard& operator=(const X11NeutralKeyboard&) = delete;

    /// Presses what sets exactly these modifiers, and lets go of it again.
    void pressModifiers(std::uint8_t modifiers);
    void releaseModifiers();
    void lockGroup(std::uint8_t group);
    /// Clears the remaining locks too.
    void clearLocks();

    [[nodiscard]] std::uint8_t lockedModifiers() const { return locked_; }

private:
    void setLocked(std::uint8_t modifiers);

    X11KeyboardControl& control_;
    X11KeyboardState found_;
    std::uint8_t locked_ = 0; ///< what is locked now
    std::uint8_t group_ = 0;  ///< what group is locked now
    std::vector<std::uint8_t> pressed_;
    std::uint8_t lentLocks_ = 0; ///< modifiers that no key sets, locked for one stroke
};

} // namespace kelvora

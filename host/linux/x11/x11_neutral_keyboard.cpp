// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_neutral_keyboard.h"

#include <utility>

namespace kelvora {
namespace {
constexpr std::uint8_t capsLock = 2;
constexpr std::uint8_t everyModifier = 0xFF;
/// Shift, Control and Mod1, 3 to 5 turn a key into another one; Lock and Num Lock (Mod2) do not.
constexpr std::uint8_t changingModifiers = 0xFF & ~(0x02 | 0x10);
} // namespace

X11NeutralKeyboard::X11NeutralKeyboard(X11KeyboardControl& control, Locks locks)
    : control_(control), found_(control.state()), locked_(found_.lockedModifiers),
      group_(found_.lockedGroup) {
    if (found_.baseModifiers != 0) {
        const X11KeySet down = control_.keysDown();
        for (const ModifierKeycode& key : control_.keys().modifierKeys())
            if (down[key.keycode])
                control_.releaseKey(key.keycode);
    }
    auto keep = static_cast<std::uint8_t>(locked_ & ~changingModifiers);
    if (locks == Locks::clearCapsLock)
        keep = static_cast<std::uint8_t>(keep & ~capsLock);
    if (keep != locked_ || found_.latchedModifiers != 0)
        setLocked(keep);
}

X11NeutralKeyboard::~X11NeutralKeyboard() {
    releaseModifiers();
    if (locked_ != found_.lockedModifiers)
        setLocked(found_.lockedModifiers);
    if (group_ != found_.lockedGroup)
        control_.lockGroup(found_.lockedGroup);
    control_.flush();
}

void X11NeutralKeyboard::setLocked(std::uint8_t modifiers) {
    control_.lockModifiers(everyModifier, modifiers);
    locked_ = modifiers;
}

void X11NeutralKeyboard::pressModifiers(std::uint8_t modifiers) {
    std::uint8_t remaining = 0;
    pressed_ = control_.keys().keysFor(modifiers, remaining);
    for (const std::uint8_t key : pressed_)
        control_.pressKey(key);
    if (remaining != 0) {
        lentLocks_ = remaining;
        setLocked(static_cast<std::uint8_t>(locked_ | remaining));
    }
}

void X11NeutralKeyboard::releaseModifiers() {
    for (auto key = pressed_.rbegin(); key != pressed_.rend(); ++key)
        control_.releaseKey(*key);
    pressed_.clear();
    if (lentLocks_ != 0)
        setLocked(static_cast<std::uint8_t>(locked_ & ~std::exchange(lentLocks_, std::uint8_t{0})));
}

void X11NeutralKeyboard::lockGroup(std::uint8_t group) {
    if (group != group_)
        control_.lockGroup(group);
    group_ = group;
}

void X11NeutralKeyboard::clearLocks() {
    if (locked_ != 0)
        setLocked(0);
}

} // namespace kelvora

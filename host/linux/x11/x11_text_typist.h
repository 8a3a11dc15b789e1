// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_keyboard_control.h"

#include <functional>
#include <string_view>

namespace kelvora {

/// Sends one key to where it belongs: calls its argument, or does not and returns false.
using X11KeyGate = std::function<bool(const std::function<void()>&)>;

/// Types text with the keys that produce it, each in a group that has it; what no group has, with
/// borrowed keys. Group, locks and keymap are as before when it returns. Stops at the first key
/// that the gate refuses. Characters that no keysym exists for are left out. True when keys were
/// borrowed.
bool typeText(X11KeyboardControl& control, std::u16string_view text, const X11KeyGate& gate);

} // namespace kelvora

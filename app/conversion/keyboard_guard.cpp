// SPDX-License-Identifier: MIT
#include "app/conversion/keyboard_guard.h"

namespace kelvora {

void KeyboardGuard::begin() {
    // A hold is for one window: posted keys would reach nothing if that is not known.
    if (target_ != FocusTarget{}) {
        hold_ = poster_.holdKeyboard(target_);
    }
}

bool KeyboardGuard::hasLostFocus() {
    // Where it is not known what has the focus, nothing may be sent there either.
    return target_ == FocusTarget{} || focusChanged_ || (hold_ && !hold_->hasFocus());
}

} // namespace kelvora

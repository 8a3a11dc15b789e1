// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_poster.h"
#include "host/focus_target.h"
#include "host/keyboard_hold.h"

#include <atomic>
#include <memory>

namespace kelvora {

/// Keeps the user's keys out of one conversion, and knows whether the focus is still where it was
/// at the trigger. Made on the main thread; used by the conversion's thread until that has handed
/// over its outcome, and by the main thread afterwards.
class KeyboardGuard {
public:
    KeyboardGuard(EventPoster& poster, FocusTarget target) : poster_(poster), target_(target) {}

    /// What had the focus at the trigger.
    [[nodiscard]] FocusTarget target() const { return target_; }

    /// Holds the keyboards, where the desktop can.
    void begin();
    /// Gives them back; the keys pressed meanwhile are delivered now. Again and again: no effect.
    void end() { hold_.reset(); }
    [[nodiscard]] bool isHolding() const { return hold_ != nullptr; }

    /// While holding: waits until everything typed before the hold has been recorded. False when
    /// that cannot be told.
    [[nodiscard]] bool settle() { return hold_->settle(); }

    /// The focus left the trigger's window, even if it came back: what was typed there is
    /// forgotten. Or it was not known which window that was.
    [[nodiscard]] bool hasLostFocus();
    /// While holding: a key of the user's waits for the end of the hold.
    [[nodiscard]] bool hasHeldKeys() { return hold_ && hold_->hasHeldKeys(); }
    /// While holding, or after: something of what was posted did not get through.
    [[nodiscard]] bool hasFailed() { return hold_ && hold_->hasFailed(); }
    /// Any thread: another window got the focus, another client the keyboard, or a click may have
    /// moved the caret.
    void noteFocusChange() { focusChanged_ = true; }

private:
    EventPoster& poster_;
    FocusTarget target_;
    std::unique_ptr<KeyboardHold> hold_;
    std::atomic<bool> focusChanged_ = false;
};

} // namespace kelvora

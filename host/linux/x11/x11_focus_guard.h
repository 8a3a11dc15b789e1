// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_focus.h"
#include "host/linux/x11/x11_keyboard_control.h"
#include "host/linux/x11/x11_posting_marks.h"

#include <functional>
#include <optional>

namespace kelvora {

/// Lets posted keys reach one window only. The server is grabbed for the moment of each key, so
/// that no client can move the focus, or take the keyboard, between the look at it and the key.
///
/// A correction that has begun must be finished, or letters are lost: when the focus is taken away
/// in the middle, the window gets it back for the rest, and whoever took it has it again at the
/// end; a client that takes the keyboard is waited for, for a bounded time.
class X11FocusGuard {
public:
    /// `control` is for questions; it and the marks outlive the guard.
    X11FocusGuard(X11KeyboardControl& control, const X11PostingMarks& marks, FocusTarget target);
    /// Gives the focus back to whoever took it in the middle.
    ~X11FocusGuard();
    X11FocusGuard(const X11FocusGuard&) = delete;
    X11FocusGuard& operator=(const X11FocusGuard&) = delete;

    /// Calls `send`, which posts one key over `control`, if it reaches the window. False when it
    /// was not called; from then on nothing is.
    bool post(X11KeyboardControl& control, const std::function<void()>& send);

    [[nodiscard]] bool hasFocus() { return hasFocus(control_); }
    /// Something was not posted.
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }

private:
    [[nodiscard]] bool isTaken(X11KeyboardControl& control);
    [[nodiscard]] bool hasFocus(X11KeyboardControl& control);
    [[nodiscard]] bool takeFocusBack(X11KeyboardControl& control);

    X11KeyboardControl& control_;
    const X11PostingMarks& marks_;
    FocusTarget target_;
    xcb_window_t window_ = XCB_NONE; ///< what had the focus within the target
    std::optional<X11Focus> takenBy_;
    bool wasGrabbed_; ///< by the application itself, or nothing would have been recorded
    bool hasPosted_ = false;
    bool hasFailed_ = false;
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_focus.h"
#include "host/linux/x11/x11_keyboard_control.h"

#include <optional>

namespace kelvora {

/// Lets posted keys reach one window only. The server is grabbed for the moment of each key, so
/// that no client can move the focus between the look at it and the key.
///
/// A correction that has begun must be finished, or letters are lost: when the focus is taken away
/// in the middle, the window gets it back for the rest, and whoever took it has it again at the
/// end.
class X11FocusGuard {
public:
    X11FocusGuard(X11KeyboardControl& control, FocusTarget target)
        : control_(control), target_(target) {}
    /// Gives the focus back to whoever took it in the middle.
    ~X11FocusGuard();
    X11FocusGuard(const X11FocusGuard&) = delete;
    X11FocusGuard& operator=(const X11FocusGuard&) = delete;

    /// Calls `send`, which posts one key, if it reaches the window. False when it was not called.
    template <typename Send>
    bool post(Send send) {
        control_.grabServer();
        const bool reaches = !hasFailed_ && (hasFocus() || (hasPosted_ && takeFocusBack()));
        if (reaches)
            send();
        control_.ungrabServer();
        hasPosted_ = hasPosted_ || reaches;
        hasFailed_ = !reaches;
        return reaches;
    }

    [[nodiscard]] bool hasFocus();

private:
    bool takeFocusBack();

    X11KeyboardControl& control_;
    FocusTarget target_;
    xcb_window_t window_ = XCB_NONE; ///< what had the focus within the target
    std::optional<xcb_window_t> takenBy_;
    bool hasPosted_ = false;
    bool hasFailed_ = false;
};

} // namespace kelvora

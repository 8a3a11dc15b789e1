// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_focus_guard.h"

namespace kelvora {
namespace {

bool setFocus(xcb_connection_t* connection, xcb_window_t window) {
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(
        connection,
        xcb_set_input_focus_checked(connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME)));
    return !error && xcb_connection_has_error(connection) == 0;
}

} // namespace

X11FocusGuard::~X11FocusGuard() {
    // Only if the window still has what was taken back for it; the user's newer choice stands.
    if (takenBy_ && *takenBy_ != XCB_NONE && hasFocus())
        static_cast<void>(setFocus(control_.connection(), *takenBy_));
}

bool X11FocusGuard::hasFocus() {
    const X11Focus focus = readFocus(control_.connection());
    if (focus.target != target_ || focus.window == XCB_NONE)
        return false;
    window_ = focus.window;
    return true;
}

bool X11FocusGuard::takeFocusBack() {
    const xcb_window_t taker = readFocus(control_.connection()).window;
    if (!setFocus(control_.connection(), window_) || !hasFocus())
        return false;
    takenBy_ = taker;
    return true;
}

} // namespace kelvora

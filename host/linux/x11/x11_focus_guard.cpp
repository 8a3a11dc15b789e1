// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_focus_guard.h"

namespace kelvora {
namespace {

bool setFocus(xcb_connection_t* connection, FocusTarget target) {
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(
        connection,
        xcb_set_input_focus_checked(connection, XCB_INPUT_FOCUS_PARENT,
                                    static_cast<xcb_window_t>(target.id), XCB_CURRENT_TIME)));
    return !error && xcb_connection_has_error(connection) == 0;
}

} // namespace

X11FocusGuard::~X11FocusGuard() {
    // Only if the window still has what was taken back for it; the user's newer choice stands.
    if (takenBy_ && takenBy_->id != XCB_NONE && hasFocus())
        static_cast<void>(setFocus(control_.connection(), *takenBy_));
}

bool X11FocusGuard::takeFocusBack() {
    if (target_.id == XCB_NONE)
        return false;
    const FocusTarget taker = readFocus(control_.connection());
    if (!setFocus(control_.connection(), target_) || !hasFocus())
        return false;
    takenBy_ = taker;
    return true;
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_focus_guard.h"

#include <chrono>
#include <thread>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

constexpr auto grabLimit = 1s;
constexpr auto grabPollInterval = 10ms;

bool setFocus(xcb_connection_t* connection, xcb_window_t window, std::uint8_t revertTo) {
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(
        connection, xcb_set_input_focus_checked(connection, revertTo, window, XCB_CURRENT_TIME)));
    return !error && xcb_connection_has_error(connection) == 0;
}

} // namespace

X11FocusGuard::X11FocusGuard(X11KeyboardControl& control, const X11PostingMarks& marks,
                             FocusTarget target)
    : control_(control), marks_(marks), target_(target), wasGrabbed_(control.isKeyboardGrabbed()) {}

X11FocusGuard::~X11FocusGuard() {
    // Only if the window still has what was taken back for it: the user's newer choice stands. A
    // focus that follows the pointer goes on to do so.
    if (takenBy_ && takenBy_->given != XCB_NONE &&
        (hasFocus() || takenBy_->given == XCB_INPUT_FOCUS_POINTER_ROOT))
        static_cast<void>(setFocus(control_.connection(), takenBy_->given, takenBy_->revertTo));
}

bool X11FocusGuard::post(X11KeyboardControl& control, const std::function<void()>& send) {
    const auto deadline = std::chrono::steady_clock::now() + grabLimit;
    while (!hasFailed_) {
        control.grabServer();
        const bool taken = isTaken(control);
        const bool reaches =
            !taken && (hasFocus(control) || (hasPosted_ && takeFocusBack(control)));
        if (reaches)
            send();
        control.ungrabServer();
        if (reaches) {
            hasPosted_ = true;
            return true;
        }
        if (taken && hasPosted_ && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(grabPollInterval);
        else
            hasFailed_ = true;
    }
    return false;
}

bool X11FocusGuard::isTaken(X11KeyboardControl& control) {
    return !wasGrabbed_ && control.isKeyboardGrabbed() && !marks_.isPopupOpen;
}

bool X11FocusGuard::hasFocus(X11KeyboardControl& control) {
    const X11Focus focus = readFocus(control.connection());
    if (focus.target != target_ || focus.window == XCB_NONE)
        return false;
    window_ = focus.window;
    return true;
}

bool X11FocusGuard::takeFocusBack(X11KeyboardControl& control) {
    const X11Focus taker = readFocus(control.connection());
    if (!setFocus(control.connection(), window_, XCB_INPUT_FOCUS_PARENT) || !hasFocus(control))
        return false;
    if (!takenBy_)
        takenBy_ = taker;
    return true;
}

} // namespace kelvora

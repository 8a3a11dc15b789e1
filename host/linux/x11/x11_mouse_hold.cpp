// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_mouse_hold.h"

#include "host/linux/x11/x11_connection.h"

namespace kelvora {

X11MouseHold::X11MouseHold(xcb_connection_t* connection, xcb_window_t focus)
    : connection_(connection) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    for (const std::uint8_t button : {XCB_BUTTON_INDEX_1, XCB_BUTTON_INDEX_2, XCB_BUTTON_INDEX_3}) {
        // A window manager may have reserved clicks of the desktop for itself.
        if (!grab({root, button}) && focus > XCB_INPUT_FOCUS_POINTER_ROOT)
            static_cast<void>(grab({focus, button}));
    }
}

X11MouseHold::~X11MouseHold() {
    for (const Grab& grab : grabs_)
        xcb_ungrab_button(connection_, grab.button, grab.window, XCB_MOD_MASK_ANY);
    replay();
}

void X11MouseHold::replay() {
    xcb_allow_events(connection_, XCB_ALLOW_REPLAY_POINTER, XCB_CURRENT_TIME);
    xcb_flush(connection_);
}

bool X11MouseHold::grab(Grab wanted) {
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(
        connection_,
        xcb_grab_button_checked(connection_, 0, wanted.window, XCB_EVENT_MASK_BUTTON_PRESS,
                                XCB_GRAB_MODE_SYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE,
                                wanted.button, XCB_MOD_MASK_ANY)));
    if (!error)
        grabs_.push_back(wanted);
    return !error;
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_grab_probe.h"

#include "host/linux/x11/x11_connection.h"

namespace kelvora {

X11GrabProbe::X11GrabProbe(xcb_connection_t* connection)
    : connection_(connection), window_(xcb_generate_id(connection)) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_create_window(connection, 0, window_, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
}

bool X11GrabProbe::isKeyboardGrabbed() {
    // A window that cannot be seen gets no grab, but the server looks at other grabs first.
    const XcbPtr<xcb_grab_keyboard_reply_t> reply(
        xcb_grab_keyboard_reply(connection_,
                                xcb_grab_keyboard(connection_, 0, window_, XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_focus.h"

#include "host/linux/x11/x11_connection.h"

namespace kelvora {

FocusTarget readFocus(xcb_connection_t* connection) {
    const XcbPtr<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    if (!focus)
        return {};
    if (focus->focus != XCB_INPUT_FOCUS_POINTER_ROOT)
        return {focus->focus};
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const XcbPtr<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    return pointer ? FocusTarget{pointer->child} : FocusTarget{};
}

} // namespace kelvora

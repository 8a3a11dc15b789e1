// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_focus.h"

#include "host/linux/x11/x11_connection.h"

namespace kelvora {
namespace {

constexpr int maximumDepth = 64;

/// The window itself when it is a root, XCB_NONE when it is gone.
xcb_window_t outermost(xcb_connection_t* connection, xcb_window_t window) {
    for (int depth = 0; depth < maximumDepth; ++depth) {
        const XcbPtr<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
        if (!tree)
            return XCB_NONE;
        if (tree->parent == tree->root || window == tree->root)
            return window;
        window = tree->parent;
    }
    return XCB_NONE;
}

} // namespace

X11Focus readFocus(xcb_connection_t* connection) {
    const XcbPtr<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    if (!focus || focus->focus == XCB_NONE)
        return {};
    X11Focus result;
    result.given = focus->focus;
    result.revertTo = focus->revert_to;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    if (focus->focus != XCB_INPUT_FOCUS_POINTER_ROOT && focus->focus != root) {
        result.window = focus->focus;
        result.target = {outermost(connection, focus->focus)};
        return result;
    }
    const XcbPtr<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    if (pointer) {
        result.window = pointer->child;
        result.target = {pointer->child};
    }
    return result;
}

} // namespace kelvora

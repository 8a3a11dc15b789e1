// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_window_activation.h"

#include "host/linux/x11/x11_connection.h"
#include "host/linux/x11/x11_property.h"

namespace kelvora {
namespace {

constexpr std::uint32_t fromPager = 2; // the source of a request that the user made
constexpr xcb_window_t noWindow = XCB_WINDOW_NONE;

/// The server's time, which it tells in the notice of a property's change.
xcb_timestamp_t serverTime(xcb_connection_t* connection, xcb_window_t root) {
    const xcb_window_t probe = xcb_generate_id(connection);
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, probe, root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, probe, XCB_ATOM_WM_NAME, XCB_ATOM_STRING,
                        8, 0, nullptr);
    xcb_flush(connection);
    while (const XcbPtr<xcb_generic_event_t> event{xcb_wait_for_event(connection)}) {
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY)
            return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->time;
    }
    return XCB_CURRENT_TIME; // the server has gone
}

/// The root window of the screen that a window is on.
xcb_window_t rootOf(xcb_connection_t* connection, xcb_window_t window) {
    const XcbPtr<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    return geometry ? geometry->root : noWindow;
}

} // namespace

void X11WindowActivation::bringToFront(std::uint64_t window) {
    // A connection of its own, for the moment: the events of the probe belong to nobody else.
    const XcbConnectionPtr connection = connectX11(display_.c_str());
    const auto target = static_cast<xcb_window_t>(window);
    const xcb_window_t root = connection ? rootOf(connection.get(), target) : noWindow;
    if (root == noWindow)
        return;
    xcb_atom_t activeWindow = XCB_ATOM_NONE;
    xcb_atom_t userTime = XCB_ATOM_NONE;
    internAtoms(connection.get(),
                {{"_NET_ACTIVE_WINDOW", &activeWindow}, {"_NET_WM_USER_TIME", &userTime}});
    const xcb_timestamp_t now = serverTime(connection.get(), root);
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, target, userTime,
                        XCB_ATOM_CARDINAL, 32, 1, &now);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = target;
    message.type = activeWindow;
    message.data.data32[0] = fromPager;
    message.data.data32[1] = now;
    xcb_send_event(connection.get(), 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    // Disconnecting throws away what the server has not read yet.
    const XcbPtr<xcb_get_input_focus_reply_t> served(xcb_get_input_focus_reply(
        connection.get(), xcb_get_input_focus(connection.get()), nullptr));
}

} // namespace kelvora

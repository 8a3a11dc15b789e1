// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_tray_area.h"

#include "host/linux/x11/x11_property.h"

namespace kelvora {
namespace {

xcb_window_t rootOf(xcb_connection_t* connection, int screen) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screen > 0 && screens.rem > 1; --screen)
        xcb_screen_next(&screens);
    return screens.data->root;
}

} // namespace

X11TrayArea::X11TrayArea(const std::string& display, EventLoop& loop)
    : loop_(loop), connection_(xcb_connect(display.c_str(), &screen_)) {
    if (xcb_connection_has_error(connection_.get()) != 0) {
        connection_.reset();
        return;
    }
    const std::string selection = "_NET_SYSTEM_TRAY_S" + std::to_string(screen_);
    internAtoms(connection_.get(), {{selection, &traySelection_}, {"MANAGER", &manager_}});
}

bool X11TrayArea::isThere() const {
    if (!connection_)
        return false;
    const XcbPtr<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection_.get(), xcb_get_selection_owner(connection_.get(), traySelection_), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

void X11TrayArea::setOnAppeared(std::function<void()> handler) {
    onAppeared_ = std::move(handler);
    if (!connection_)
        return;
    // A tray that comes tells it with a message to whoever listens to the root window's structure.
    const std::uint32_t mask =
        onAppeared_ ? XCB_EVENT_MASK_STRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(connection_.get(), rootOf(connection_.get(), screen_),
                                 XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection_.get());
    if (!onAppeared_)
        watch_.reset();
    else if (!watch_)
        watch_ = loop_.watchReadable(xcb_get_file_descriptor(connection_.get()),
                                     [this] { processEvents(); });
}

void X11TrayArea::processEvents() {
    bool hasAppeared = false;
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
        if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE)
            continue;
        const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event.get());
        hasAppeared |= message->type == manager_ && message->data.data32[1] == traySelection_;
    }
    if (xcb_connection_has_error(connection_.get()) != 0) {
        watch_.reset(); // others tell that the server has gone
        connection_.reset();
        return;
    }
    if (hasAppeared && onAppeared_) {
        const auto handler = onAppeared_; // which may be replaced by the call
        handler();
    }
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_display_events.h"

#include <xcb/screensaver.h>

namespace kelvora {

X11DisplayEvents::X11DisplayEvents(XcbConnectionPtr connection, EventLoop& loop)
    : connection_(std::move(connection)) {
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection_.get(), &xcb_screensaver_id);
    if (extension == nullptr || extension->present == 0)
        return;
    notice_ = static_cast<std::uint8_t>(extension->first_event + XCB_SCREENSAVER_NOTIFY);
    for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())); screen.rem > 0;
         xcb_screen_next(&screen))
        xcb_screensaver_select_input(connection_.get(), screen.data->root,
                                     XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
    xcb_flush(connection_.get());
    watch_ =
        loop.watchReadable(xcb_get_file_descriptor(connection_.get()), [this] { processEvents(); });
}

void X11DisplayEvents::processEvents() {
    bool isAwake = false;
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
        if ((event->response_type & 0x7f) != notice_)
            continue;
        const auto* const change =
            reinterpret_cast<const xcb_screensaver_notify_event_t*>(event.get());
        isAwake = change->state == XCB_SCREENSAVER_STATE_OFF;
    }
    if (xcb_connection_has_error(connection_.get()) != 0)
        watch_.reset(); // others tell that the server has gone
    if (isAwake && onWake_)
        onWake_();
}

} // namespace kelvora

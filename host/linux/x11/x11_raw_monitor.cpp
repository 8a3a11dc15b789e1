// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_raw_monitor.h"

#include <xcb/xinput.h>

namespace kelvora {
namespace {

struct RawKeySelection {
    xcb_input_event_mask_t header;
    std::uint32_t mask;
};

bool selectRawKeys(xcb_connection_t* connection) {
    const XcbPtr<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    if (!version || version->major_version < 2)
        return false;
    const RawKeySelection selection{
        .header = {.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1},
        .mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE};
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(
        connection, xcb_input_xi_select_events_checked(connection, root, 1, &selection.header)));
    return !error && xcb_connection_has_error(connection) == 0;
}

} // namespace

std::unique_ptr<X11RawMonitor> X11RawMonitor::create(const char* display, EventLoop& loop,
                                                     SecureEntry* secureEntry, EventMask mask,
                                                     EventHandler handler) {
    XcbConnectionPtr connection = connectX11(display);
    if (!connection)
        return nullptr;
    const auto* xinput = xcb_get_extension_data(connection.get(), &xcb_input_id);
    if (xinput == nullptr || xinput->present == 0 || !selectRawKeys(connection.get()))
        return nullptr;
    std::unique_ptr<X11Keymap> keymap = X11Keymap::create(connection.get(), X11StateNotices::all);
    if (!keymap)
        return nullptr;
    std::unique_ptr<X11RawMonitor> monitor(new X11RawMonitor(
        std::move(connection), std::move(keymap), loop, secureEntry, mask, std::move(handler)));
    monitor->extension_ = xinput->major_opcode;
    X11RawMonitor& self = *monitor;
    monitor->watch_ = loop.watchReadable(xcb_get_file_descriptor(self.connection_.get()),
                                         [&self] { self.processEvents(); });
    return monitor;
}

X11RawMonitor::X11RawMonitor(XcbConnectionPtr connection, std::unique_ptr<X11Keymap> keymap,
                             EventLoop& loop, SecureEntry* secureEntry, EventMask mask,
                             EventHandler handler)
    : mask_(mask), handler_(std::move(handler)),
      gate_(
          loop, secureEntry,
          [this](const InputEvent& event) {
              if ((mask_ & eventMaskBit(event.type)) != 0)
                  handler_(event);
          },
          [](FocusChange /*change*/) {}),
      connection_(std::move(connection)), keymap_(std::move(keymap)) {}

void X11RawMonitor::processEvents() {
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())})
        if (!keymap_->handleEvent(event.get()))
            deliver(event.get());
    if (xcb_connection_has_error(connection_.get()) != 0)
        watch_.reset();
}

void X11RawMonitor::deliver(const xcb_generic_event_t* event) {
    if ((event->response_type & 0x7F) != XCB_GE_GENERIC)
        return;
    const auto* generic = reinterpret_cast<const xcb_ge_generic_event_t*>(event);
    if (generic->extension != extension_ || (generic->event_type != XCB_INPUT_RAW_KEY_PRESS &&
                                             generic->event_type != XCB_INPUT_RAW_KEY_RELEASE))
        return;
    const auto* raw = reinterpret_cast<const xcb_input_raw_key_press_event_t*>(event);
    interpreter_.setKeymap(keymap_->keymap());
    const X11KeyboardState& state = keymap_->state();
    auto result = interpreter_.interpret(
        {.keycode = raw->detail,
         .isPress = generic->event_type == XCB_INPUT_RAW_KEY_PRESS,
         .modifiers = static_cast<std::uint8_t>(state.baseModifiers | state.latchedModifiers |
                                                state.lockedModifiers),
         .group = state.effectiveGroup});
    if (!result)
        return;
    result->timestamp = time_.seconds(raw->time);
    gate_.handleEvent(*result);
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_connection.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kelvora {

/// Another program of the session, and the window manager where one is needed.
class WindowClient {
public:
    explicit WindowClient(const std::string& display) : connection_(connectX11(display.c_str())) {}

    [[nodiscard]] xcb_connection_t* x() const { return connection_.get(); }
    [[nodiscard]] xcb_window_t root() const {
        return xcb_setup_roots_iterator(xcb_get_setup(x())).data->root;
    }
    /// A visible window, 100 by 100 pixels in a corner; of the root window if not of another.
    xcb_window_t window(xcb_window_t parent = XCB_NONE) {
        const xcb_window_t window = xcb_generate_id(x());
        xcb_create_window(x(), XCB_COPY_FROM_PARENT, window, parent != XCB_NONE ? parent : root(),
                          0, 0, 100, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                          nullptr);
        xcb_map_window(x(), window);
        return window;
    }
    void set(xcb_window_t window, std::string_view property, std::string_view bytes,
             xcb_atom_t type = XCB_ATOM_STRING, std::uint8_t format = 8) {
        xcb_change_property(x(), XCB_PROP_MODE_REPLACE, window, atom(property), type, format,
                            static_cast<std::uint32_t>(bytes.size() * 8 / format), bytes.data());
        finish();
    }
    void set(xcb_window_t window, std::string_view property, xcb_atom_t type, std::uint32_t item) {
        set(window, property, {reinterpret_cast<const char*>(&item), sizeof item}, type, 32);
    }
    void focus(xcb_window_t window) {
        xcb_set_input_focus(x(), XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
        finish();
    }
    /// Waits until the server has done all of this.
    void finish() { atom("DONE"); }
    xcb_atom_t atom(std::string_view name) {
        const XcbPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            x(), xcb_intern_atom(x(), 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        return reply->atom;
    }

private:
    XcbConnectionPtr connection_;
};

} // namespace kelvora

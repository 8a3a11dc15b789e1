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
    explicit WindowClient(const std::string& display) : connection_(connectX11(display.c_str())) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
    }

    [[nodiscard]] xcb_connection_t* connection() const { return connection_.get(); }
    [[nodiscard]] xcb_window_t root() const { return root_; }
    /// A visible window, 100 by 100 pixels, at the same place both ways.
    xcb_window_t window(xcb_window_t parent, std::int16_t place = 0) {
        const xcb_window_t window = xcb_generate_id(connection_.get());
        xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window, parent, place, place,
                          100, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                          nullptr);
        xcb_map_window(connection_.get(), window);
        return window;
    }
    void set(xcb_window_t window, std::string_view property, std::string_view bytes,
             xcb_atom_t type = XCB_ATOM_STRING, std::uint8_t format = 8) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, atom(property), type,
                            format, static_cast<std::uint32_t>(bytes.size() * 8 / format),
                            bytes.data());
        atom(property); // the server has then done it
    }
    void set(xcb_window_t window, std::string_view property, xcb_atom_t type, std::uint32_t item) {
        set(window, property, {reinterpret_cast<const char*>(&item), sizeof item}, type, 32);
    }
    void focus(xcb_window_t window) {
        xcb_set_input_focus(connection_.get(), XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
        atom("DONE");
    }
    void movePointer(std::int16_t place) {
        xcb_warp_pointer(connection_.get(), XCB_NONE, root_, 0, 0, 0, 0, place, place);
        atom("DONE");
    }
    void destroy(xcb_window_t window) {
        xcb_destroy_window(connection_.get(), window);
        atom("DONE");
    }
    xcb_atom_t atom(std::string_view name) {
        const XcbPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection_.get(),
            xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()),
                            name.data()),
            nullptr));
        return reply->atom;
    }

private:
    XcbConnectionPtr connection_;
    xcb_window_t root_ = XCB_NONE;
};

} // namespace kelvora

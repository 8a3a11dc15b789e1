// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace kelvora::real {

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Type>
using Reply = std::unique_ptr<Type, FreeMemory>;
using Event = Reply<xcb_generic_event_t>;

/// A client of the X server that other clients' mistakes and deaths do not end, as they would with
/// Xlib.
class XConnection {
public:
    explicit XConnection(const std::string& display)
        : connection_(xcb_connect(display.c_str(), nullptr)) {}
    ~XConnection() { xcb_disconnect(connection_); }
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    [[nodiscard]] xcb_connection_t* get() const { return connection_; }

    [[nodiscard]] xcb_atom_t atom(const std::string& name) const {
        const auto length = static_cast<std::uint16_t>(name.size());
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection_, xcb_intern_atom(connection_, 0, length, name.c_str()), nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    [[nodiscard]] std::string atomName(xcb_atom_t atom) const {
        const Reply<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(connection_, xcb_get_atom_name(connection_, atom), nullptr));
        return reply ? std::string(xcb_get_atom_name_name(reply.get()), reply->name_len)
                     : std::string();
    }
    /// A window that is never shown and reports changes of its properties.
    [[nodiscard]] xcb_window_t createWindow() const {
        const xcb_setup_t* const setup = xcb_get_setup(connection_);
        if (setup == nullptr) {
            return XCB_WINDOW_NONE;
        }
        const xcb_window_t window = xcb_generate_id(connection_);
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window,
                          xcb_setup_roots_iterator(setup).data->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &events);
        return window;
    }
    [[nodiscard]] Event nextEvent() const { return Event(xcb_poll_for_event(connection_)); }

private:
    xcb_connection_t* connection_;
};

} // namespace kelvora::real

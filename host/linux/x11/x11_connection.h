// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace kelvora {

struct XcbConnectionDeleter {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
/// A reply, error or event that xcb allocated.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }
};

using XcbConnectionPtr = std::unique_ptr<xcb_connection_t, XcbConnectionDeleter>;
template <typename T>
using XcbPtr = std::unique_ptr<T, XcbFree>;

/// Opens a connection of its own. `display` as in DISPLAY; null: the environment's. Null when there
/// is no such server or it refuses the connection.
[[nodiscard]] inline XcbConnectionPtr connectX11(const char* display) {
    XcbConnectionPtr connection(xcb_connect(display, nullptr));
    if (connection && xcb_connection_has_error(connection.get()) != 0)
        connection.reset();
    return connection;
}

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace kelvora {

/// The process that says a window is its own, in the property `processIdentifier` (_NET_WM_PID); 0
/// when the window tells none, or it runs on another machine. Waits for the server.
[[nodiscard]] std::int64_t processOfWindow(xcb_connection_t* connection, xcb_window_t window,
                                           xcb_atom_t processIdentifier);

} // namespace kelvora

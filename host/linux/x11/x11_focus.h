// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"

#include <xcb/xcb.h>

#include <cstdint>

namespace kelvora {

/// Where keys go.
struct X11Focus {
    /// The focus window; where the focus follows the pointer, or is the root's, the top-level
    /// window under it.
    xcb_window_t window = XCB_NONE;
    /// The window as a person sees it: the outermost one around the focus window below the root.
    /// Toolkits move the focus between it and helper windows inside while one field stays focused.
    FocusTarget target;
    /// As the server has it, for setting it again: a window, PointerRoot or None, and where it goes
    /// when that window does.
    xcb_window_t given = XCB_NONE;
    std::uint8_t revertTo = XCB_INPUT_FOCUS_NONE;
};

/// Asks the server; nothing when it does not answer.
[[nodiscard]] X11Focus readFocus(xcb_connection_t* connection);

} // namespace kelvora

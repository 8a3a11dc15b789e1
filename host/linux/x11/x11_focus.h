// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"

#include <xcb/xcb.h>

namespace kelvora {

/// Where keys go.
struct X11Focus {
    /// The focus window; where the focus follows the pointer, the top-level window under it.
    xcb_window_t window = XCB_NONE;
    /// The window as a person sees it: the outermost one around the focus window below the root.
    /// Toolkits move the focus between it and helper windows inside while one field stays focused.
    FocusTarget target;
};

/// Asks the server; nothing when it does not answer.
[[nodiscard]] X11Focus readFocus(xcb_connection_t* connection);

} // namespace kelvora

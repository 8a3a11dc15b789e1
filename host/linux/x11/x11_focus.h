// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"

#include <xcb/xcb.h>

namespace kelvora {

/// What has the keyboard focus: the focus window; where the focus follows the pointer, the
/// top-level window under it. Asks the server.
[[nodiscard]] FocusTarget readFocus(xcb_connection_t* connection);

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

namespace kelvora {

/// Tells whether a client holds the whole keyboard: a locker, a PIN dialog, an open menu. One
/// connection, one thread.
class X11GrabProbe {
public:
    /// The connection outlives the probe.
    explicit X11GrabProbe(xcb_connection_t* connection);

    /// Asks the server. False when it does not answer.
    [[nodiscard]] bool isKeyboardGrabbed();

private:
    xcb_connection_t* connection_;
    xcb_window_t window_; ///< never mapped
};

} // namespace kelvora

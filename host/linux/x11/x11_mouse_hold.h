// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

namespace kelvora {

/// Keeps clicks from moving the caret as long as this object lives: the first one freezes the
/// pointer where it is, and everything since then is delivered at the end. Until a click comes the
/// pointer moves as ever, and the wheel scrolls. A button that is down already is not held, nor one
/// that another program has reserved in the same place.
class X11MouseHold {
public:
    /// `connection` outlives this object. `focus` is the window that has the keyboard, 0 for none.
    X11MouseHold(xcb_connection_t* connection, xcb_window_t focus);
    ~X11MouseHold();
    X11MouseHold(const X11MouseHold&) = delete;
    X11MouseHold& operator=(const X11MouseHold&) = delete;

    /// Delivers a click that waits; the next one waits again. The click came along the connection
    /// as a core ButtonPress.
    void replay();

private:
    struct Grab {
        xcb_window_t window;
        std::uint8_t button;
    };

    [[nodiscard]] bool grab(Grab wanted);

    xcb_connection_t* connection_;
    std::vector<Grab> grabs_;
};

} // namespace kelvora

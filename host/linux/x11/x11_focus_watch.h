// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"
#include "host/linux/x11/x11_grab_probe.h"
#include "host/linux/x11/x11_record_stream.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace kelvora {

/// Which window has the focus and whether another client holds the keyboard, from the focus events
/// that RECORD shows. The server only sends focus events that somebody asked for, so this asks for
/// those of the focus window, on a connection of the caller's. Main thread only; never waits.
class X11FocusWatch {
public:
    explicit X11FocusWatch(xcb_connection_t* connection);

    /// Learns the present focus. Waits for the server, so only before listening starts.
    void start();
    /// How what has the keyboard has changed.
    enum class Change {
        none,
        grab, ///< a client took the keyboard or gave it back; the focus is where it was. A list of
              ///< completions is no change
        window,
    };
    [[nodiscard]] Change onFocusEvent(const X11FocusEvent& event);
    void onKeyboardGrabRequest(std::uint32_t client) { grabbingClient_ = client; }
    /// What was typed or clicked last: text, or what may move the focus or open a menu.
    void onInput(bool isText) { isTextLast_ = isText; }
    /// Takes up answers that have arrived.
    void processReplies();
    /// Resource id base of the client whose window has the focus, as far as is known; 0 before the
    /// start, and for a window of the server's.
    [[nodiscard]] std::uint32_t client() const;

    /// Another client than the focused one reads the keys now.
    [[nodiscard]] bool isKeyboardTaken() const { return grab_ == Grab::foreign; }
    /// The focused application has taken the keyboard for a menu, a popover, or a prompt that
    /// nobody is to listen to.
    [[nodiscard]] bool isKeyboardReserved() const { return grab_ == Grab::own; }
    /// It has for a list of completions: text goes where it went before.
    [[nodiscard]] bool isPopupOpen() const { return grab_ == Grab::popup; }

    /// Keys go to whatever window is under the pointer. No event tells when that is another one.
    [[nodiscard]] bool followsPointer() const { return followsPointer_; }
    /// Whether it is another one than the last time. Waits for the server.
    [[nodiscard]] bool hasPointerMovedOn();

private:
    void askForFocus();
    void setFocus(xcb_window_t window);
    void follow(xcb_window_t window);
    void select(xcb_window_t window);
    [[nodiscard]] bool isRoot(xcb_window_t window) const;

    /// Who holds the keyboard.
    enum class Grab {
        none,
        popup, ///< the focused application itself, in answer to text
        own,   ///< the focused application itself, for anything else
        foreign,
    };

    xcb_connection_t* connection_;
    X11GrabProbe probe_{connection_};
    xcb_window_t followed_ = XCB_NONE;
    std::optional<xcb_get_input_focus_cookie_t> question_;
    /// The last client that asked for the keyboard, and not since a grab began.
    std::uint32_t grabbingClient_ = 0;
    Grab grab_ = Grab::none;
    bool isTextLast_ = false;
    bool followsPointer_ = false;
    FocusTarget underPointer_;
};

} // namespace kelvora

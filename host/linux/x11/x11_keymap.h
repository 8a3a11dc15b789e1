// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/xkb/handles.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>

namespace kelvora {

/// The XKB modifier and group state of the core keyboard, as XkbStateNotify reports it. Modifiers
/// are masks of the eight real modifiers (Shift 1, Lock 2, Control 4, Mod1 8, ...).
struct X11KeyboardState {
    std::uint8_t baseModifiers = 0;
    std::uint8_t latchedModifiers = 0;
    std::uint8_t lockedModifiers = 0;
    std::uint8_t effectiveGroup = 0; ///< 0 to 3
    std::uint8_t lockedGroup = 0;    ///< 0 to 3

    friend bool operator==(const X11KeyboardState&, const X11KeyboardState&) = default;
};

/// Whether a connection is told of every change of the modifiers and the group. Only for those that
/// are read all the time: the server keeps what is not.
enum class X11StateNotices { none, all };

/// The core keyboard's keymap and state on one connection, kept in step by that connection's XKB
/// notices. The core keyboard takes over the keymap of whichever keyboard was used last, so several
/// keyboards are followed too. One thread: the one that reads the connection.
class X11Keymap {
public:
    /// Selects the XKB notices on `connection`, which must outlive the object and stays the
    /// caller's. Null when the server has no XKB or no keyboard.
    [[nodiscard]] static std::unique_ptr<X11Keymap>
    create(xcb_connection_t* connection, X11StateNotices notices = X11StateNotices::none);

    /// True when the event was an XKB event, and then it is used up. Neither allocates nor asks the
    /// server.
    bool handleEvent(const xcb_generic_event_t* event);

    /// The keymap as of the last handled event. Asks the server when it has changed since, once for
    /// any number of notices. Valid until the next call; keep a reference (xkb_keymap_ref) for
    /// longer. The last good one when the server does not answer; never null.
    [[nodiscard]] xkb_keymap* keymap();
    /// Changes with every change of the keymap, before keymap() has fetched the new one.
    [[nodiscard]] std::uint64_t version() const { return version_; }

    /// False while keymap() is, or will be, older than the last notice of a change.
    [[nodiscard]] bool isCurrent() const { return !stale_; }

    /// As of the last synchronizeState(), or, with all notices, of the last handled event.
    [[nodiscard]] const X11KeyboardState& state() const { return state_; }
    /// The effective group, 0 to 3.
    [[nodiscard]] std::uint32_t group() const { return state_.effectiveGroup; }

    /// Asks the server for the state and waits for the answer: whatever happened before the call is
    /// then in state() or in the connection's event queue. False when the server is gone.
    bool synchronizeState();

    /// The XKB device of the core keyboard, for requests.
    [[nodiscard]] std::uint16_t deviceId() const { return deviceId_; }
    [[nodiscard]] xkb_context* context() const { return context_.get(); }

private:
    X11Keymap(xcb_connection_t* connection, XkbContextPtr context, std::uint8_t firstEvent,
              std::uint16_t deviceId, X11StateNotices notices);

    void selectEvents();
    void markStale();
    void refetch();

    xcb_connection_t* connection_;
    XkbContextPtr context_;
    XkbKeymapPtr keymap_;
    X11KeyboardState state_;
    std::uint64_t version_ = 1;
    std::uint16_t deviceId_;
    std::uint8_t firstEvent_;
    X11StateNotices notices_;
    bool stale_ = false;
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_client.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvora {

/// One target of the CLIPBOARD selection on its way from its owner to a window of ours, at once or
/// in pieces (INCR). It is asked for on construction and gets on as the window's events come in.
class IncomingTransfer {
public:
    enum class State {
        underWay,
        complete,
        refused, ///< the owner does not give this target, or there is no owner
        failed,  ///< too large, or against the protocol
    };

    /// `window` must not serve another transfer meanwhile. What the owner claims about the size is
    /// not relied on; at most `maximumBytes` are taken.
    IncomingTransfer(ClipboardClient& client, xcb_window_t window, xcb_atom_t target,
                     xcb_timestamp_t time, std::size_t maximumBytes);

    void onEvent(const xcb_generic_event_t& event);

    [[nodiscard]] State state() const { return state_; }
    [[nodiscard]] xcb_window_t window() const { return window_; }
    [[nodiscard]] ClipboardClient::Clock::time_point lastProgress() const { return lastProgress_; }

    // Once complete:
    [[nodiscard]] xcb_atom_t type() const { return type_; }
    [[nodiscard]] std::uint8_t format() const { return format_; }
    [[nodiscard]] std::vector<std::byte>& bytes() { return bytes_; }

private:
    void onNotify(const xcb_selection_notify_event_t& notify);
    void onPiece();
    /// The property's content, deleted from the window; null when it is too large.
    [[nodiscard]] XcbPtr<xcb_get_property_reply_t> takeProperty();
    void append(const xcb_get_property_reply_t& reply);
    void fail() { state_ = State::failed; }

    ClipboardClient& client_;
    xcb_window_t window_;
    xcb_atom_t target_;
    std::size_t maximumBytes_;
    State state_ = State::underWay;
    bool isInPieces_ = false;
    xcb_atom_t type_ = XCB_ATOM_NONE;
    std::uint8_t format_ = 0;
    std::vector<std::byte> bytes_;
    ClipboardClient::Clock::time_point lastProgress_ = ClipboardClient::Clock::now();
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_client.h"
#include "host/linux/x11/clipboard/incoming_data.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvora {

/// One target of the CLIPBOARD selection on its way from its owner to a window of ours, at once or
/// in pieces (INCR). It is asked for on construction and gets on as the window's events come in.
class IncomingTransfer {
public:
    using State = IncomingData::State;

    /// `window` must not serve another transfer meanwhile. What the owner claims about the size is
    /// not relied on; at most `maximumBytes` are taken.
    IncomingTransfer(ClipboardClient& client, xcb_window_t window, xcb_atom_t target,
                     xcb_timestamp_t time, std::size_t maximumBytes);

    void onEvent(const xcb_generic_event_t& event);

    [[nodiscard]] State state() const { return data_.state(); }
    [[nodiscard]] xcb_window_t window() const { return window_; }
    [[nodiscard]] ClipboardClient::Clock::time_point lastProgress() const { return lastProgress_; }

    // Once complete:
    [[nodiscard]] xcb_atom_t type() const { return data_.type(); }
    [[nodiscard]] std::uint8_t format() const { return data_.format(); }
    [[nodiscard]] std::vector<std::byte>& bytes() { return data_.bytes(); }

private:
    void onNotify(const xcb_selection_notify_event_t& notify);
    void onPiece();
    /// The property, deleted from the window unless it is too large; null without a server.
    [[nodiscard]] XcbPtr<xcb_get_property_reply_t> takeProperty();

    ClipboardClient& client_;
    xcb_window_t window_;
    xcb_atom_t target_;
    IncomingData data_;
    ClipboardClient::Clock::time_point lastProgress_ = ClipboardClient::Clock::now();
};

} // namespace kelvora

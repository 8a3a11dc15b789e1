// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_client.h"
#include "host/linux/x11/clipboard/clipboard_contents.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace kelvora {

/// Data on its way to requestors: small data at once, large data in pieces (INCR), each sent when
/// the requestor has taken the one before. A requestor that stops taking is given up.
class OutgoingTransfers {
public:
    explicit OutgoingTransfers(ClipboardClient& client);

    /// Writes `target`'s bytes to the property, or begins to. When too much is under way, the
    /// transfer that has stood still for longest is given up for it.
    void give(xcb_window_t requestor, xcb_atom_t property, const ClipboardTarget& target);
    void onPropertyDeleted(xcb_window_t requestor, xcb_atom_t property);
    void onWindowDestroyed(xcb_window_t requestor);
    void giveUpOverdue(ClipboardClient::Clock::time_point now);

    [[nodiscard]] bool isEmpty() const { return transfers_.empty(); }
    /// When giveUpOverdue() has something to do.
    [[nodiscard]] std::optional<ClipboardClient::Clock::time_point> nextDeadline() const;

private:
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        std::uint8_t format;
        std::shared_ptr<const std::vector<std::byte>> bytes;
        std::size_t sent;
        ClipboardClient::Clock::time_point deadline;
    };

    void write(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type, std::uint8_t format,
               const std::byte* bytes, std::size_t size);
    /// False when that was the last.
    bool sendPiece(Transfer& transfer);
    /// Listens to the requestor's window for as long as a transfer needs it.
    void watch(xcb_window_t requestor);
    void unwatch(xcb_window_t requestor);
    template <typename Condition>
    void drop(const Condition& condition);

    ClipboardClient& client_;
    std::size_t pieceSize_;
    std::vector<Transfer> transfers_;
};

} // namespace kelvora

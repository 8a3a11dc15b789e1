// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_client.h"
#include "host/linux/x11/clipboard/incoming_transfer.h"
#include "host/pasteboard.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kelvora {

/// What reading another program's clipboard may cost.
struct ClipboardLimits {
    std::size_t bytes = 128UL * 1024 * 1024;    ///< of one snapshot or one text
    std::chrono::milliseconds snapshot{5000};   ///< for all of it
    std::chrono::milliseconds standstill{1500}; ///< within a snapshot, without anything coming
    /// For the text of a claim, when first asked for. Later questions wait for `textAgain` only,
    /// and take what has come by then.
    std::chrono::milliseconds text{250};
    std::chrono::milliseconds textAgain{5};
};

/// Reads the CLIPBOARD selection from whoever owns it. The owner is another program, so it may
/// answer late, wrongly, endlessly or never. One thread at a time.
class ClipboardReader {
public:
    /// Null when there is no such server or it has no XFIXES.
    [[nodiscard]] static std::unique_ptr<ClipboardReader> create(const char* display,
                                                                 const ClipboardLimits& limits);

    [[nodiscard]] xcb_connection_t* connection() const { return client_->connection(); }

    /// Absent when there is no text or it has not come yet.
    [[nodiscard]] std::optional<std::u16string> text();
    /// As Pasteboard::snapshot().
    [[nodiscard]] std::optional<PasteboardSnapshot> snapshot();

private:
    using TimePoint = ClipboardClient::Clock::time_point;

    /// A text that has been asked for and has not come yet.
    struct PendingText {
        std::size_t candidate; ///< index into textAtoms_
        xcb_timestamp_t time;
        IncomingTransfer transfer;
    };

    ClipboardReader(std::unique_ptr<ClipboardClient> client, const ClipboardLimits& limits);

    [[nodiscard]] std::optional<std::u16string> awaitText();
    [[nodiscard]] std::optional<PasteboardSnapshot> awaitSnapshot();
    [[nodiscard]] std::optional<PasteboardSnapshot> trySnapshot(TimePoint deadline);
    /// The targets worth asking for; absent when the owner does not tell.
    [[nodiscard]] std::optional<std::vector<xcb_atom_t>> targets(xcb_timestamp_t time,
                                                                 TimePoint deadline);
    [[nodiscard]] IncomingTransfer ask(xcb_atom_t target, xcb_timestamp_t time,
                                       std::size_t maximumBytes);
    /// Gets on with the transfer until it has ended, the owner has changed or time is over.
    void await(IncomingTransfer& transfer, TimePoint deadline,
               std::chrono::milliseconds standstill);
    /// Gives a transfer's window back, or away when more may arrive there.
    void finish(const IncomingTransfer& transfer);
    /// Instead of what is pending; nothing is pending any more when there is no such candidate.
    void askForText(std::size_t candidate, xcb_timestamp_t time);
    void abandonText();
    void handle(const xcb_generic_event_t& event);
    [[nodiscard]] ClipboardClient::EventHandler handler();

    std::unique_ptr<ClipboardClient> client_;
    ClipboardLimits limits_;
    std::vector<xcb_atom_t> textAtoms_;
    xcb_window_t freeWindow_ = XCB_WINDOW_NONE;
    /// Windows of transfers that were given up. They stay for a while: many an owner dies of
    /// answering to a window that is gone.
    std::deque<xcb_window_t> abandoned_;
    bool hasOwnerChanged_ = false;
    std::optional<PendingText> pendingText_;
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_watchers.h"
#include "host/linux/x11/clipboard/outgoing_transfers.h"
#include "host/linux/x11/clipboard/selection_responder.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace kelvora {

/// Claims the CLIPBOARD selection, gives out what it claimed with, and counts the claims. One
/// thread at a time, which calls process() whenever the descriptor is readable or the deadline has
/// come.
class ClipboardOwner {
public:
    /// Another program's claim that may be a clipboard manager's: somebody had fetched our text.
    struct PossibleEcho {
        std::uint64_t serial;
        std::u16string text; ///< an echo has exactly this
    };
    struct State {
        std::int64_t changeCount = 0;                      ///< without the possible echo
        std::shared_ptr<const ClipboardContents> contents; ///< null: the selection is not ours
        std::optional<PossibleEcho> possibleEcho;
    };

    /// Null when there is no such server or it has no XFIXES.
    [[nodiscard]] static std::unique_ptr<ClipboardOwner> create(const char* display);

    [[nodiscard]] int descriptor() const; ///< -1 once the server is gone
    [[nodiscard]] std::optional<ClipboardClient::Clock::time_point> nextDeadline() const;
    void process();

    /// As it is on the server now.
    [[nodiscard]] State state();
    /// Takes the selection with nothing in it; write() is expected at once, so requests wait for it
    /// for a moment. The change count of this claim.
    std::int64_t claimEmpty();
    /// `text` is what others may claim with as an echo, empty when they cannot. False when the
    /// selection has been taken over by others.
    [[nodiscard]] bool write(ClipboardContents contents, std::u16string text);
    /// Takes the selection with these contents, which are to stay.
    void claim(ClipboardContents contents);
    /// What became of state().possibleEcho; ignored when it is another by now.
    void decideEcho(std::uint64_t serial, bool isEcho);

    /// Leaves what is held to the session's clipboard manager if there is one, in at most `limit`;
    /// texts of write() are not left to anybody.
    void handOver(std::chrono::milliseconds limit);

private:
    explicit ClipboardOwner(std::unique_ptr<ClipboardClient> client);

    struct Undecided {
        std::uint64_t serial;
        bool isByFetcher; ///< the claiming program is one of those that had fetched our text
    };

    void take(std::shared_ptr<const ClipboardContents> contents);
    void handle(const xcb_generic_event_t& event);
    void onOwnerNotice(const ClipboardClient::OwnerNotice& notice);
    void onForeignClaim(xcb_window_t owner);
    void onRequest(const xcb_selection_request_event_t& request);
    void answer(const xcb_selection_request_event_t& request);
    void answerWaiting();
    void settleUndecided();
    [[nodiscard]] ClipboardClient::EventHandler handler();

    std::unique_ptr<ClipboardClient> client_;
    OutgoingTransfers transfers_{*client_};
    SelectionResponder responder_{*client_, transfers_};
    ClipboardWatchers watchers_{*client_};

    ClipboardClaim claim_;
    bool awaitsOwnNotice_ = false; ///< what is noticed until then happened before our claim
    std::int64_t changeCount_ = 0;
    std::int64_t countOfClaim_ = 0;

    std::vector<xcb_selection_request_event_t> waiting_;
    std::optional<ClipboardClient::Clock::time_point> waitEnd_;

    std::u16string echoText_; ///< what was written last; empty when no echo of it can come
    std::vector<std::uint32_t> fetchers_; ///< clients that have got it from us
    std::optional<Undecided> undecided_;
    std::uint64_t lastSerial_ = 0;

    bool isHandedOver_ = false;
};

} // namespace kelvora

// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/outgoing_transfers.h"

namespace kelvora {

/// What a claim of the selection is answered from.
struct ClipboardClaim {
    std::shared_ptr<const ClipboardContents> contents; ///< null: the selection is not ours
    xcb_timestamp_t time = XCB_CURRENT_TIME;           ///< since when it is
};

/// Answers requests for the selection the way ICCCM 2.2 and 2.6 say.
class SelectionResponder {
public:
    SelectionResponder(ClipboardClient& client, OutgoingTransfers& transfers)
        : client_(client), transfers_(transfers) {}

    /// What was given, in the order of their weight: nothing, no more than a list of the contents,
    /// data of them, a plain text among the data.
    enum class Result { nothing, description, data, text };

    /// A request that cannot be met is answered, too.
    Result answer(const xcb_selection_request_event_t& request, const ClipboardClaim& claim);

private:
    [[nodiscard]] Result convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property,
                                 const ClipboardClaim& claim);
    [[nodiscard]] Result convertMultiple(xcb_window_t requestor, xcb_atom_t property,
                                         const ClipboardClaim& claim);
    void writeTargets(xcb_window_t requestor, xcb_atom_t property,
                      const ClipboardContents& contents);

    ClipboardClient& client_;
    OutgoingTransfers& transfers_;
};

} // namespace kelvora

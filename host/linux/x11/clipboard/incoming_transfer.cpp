// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/incoming_transfer.h"

#include <cstddef>
#include <cstdint>

namespace kelvora {
namespace {

IncomingProperty incomingProperty(const xcb_get_property_reply_t& reply) {
    return {.type = reply.type,
            .format = reply.format,
            .bytes = {static_cast<const std::byte*>(xcb_get_property_value(&reply)),
                      static_cast<std::size_t>(xcb_get_property_value_length(&reply))},
            .isWhole = reply.bytes_after == 0};
}

} // namespace

IncomingTransfer::IncomingTransfer(ClipboardClient& client, xcb_window_t window, xcb_atom_t target,
                                   xcb_timestamp_t time, std::size_t maximumBytes)
    : client_(client), window_(window), target_(target), data_(client.atoms().incr, maximumBytes) {
    xcb_delete_property(client_.connection(), window_, client_.atoms().transfer);
    xcb_convert_selection(client_.connection(), window_, client_.atoms().clipboard, target_,
                          client_.atoms().transfer, time);
}

void IncomingTransfer::onEvent(const xcb_generic_event_t& event) {
    if (state() != State::underWay)
        return;
    const int type = event.response_type & 0x7F;
    if (type == XCB_SELECTION_NOTIFY && !data_.isInPieces()) {
        onNotify(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
    } else if (type == XCB_PROPERTY_NOTIFY && data_.isInPieces()) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.window == window_ && property.atom == client_.atoms().transfer &&
            property.state == XCB_PROPERTY_NEW_VALUE)
            onPiece();
    }
}

void IncomingTransfer::onNotify(const xcb_selection_notify_event_t& notify) {
    if (notify.requestor != window_ || notify.selection != client_.atoms().clipboard ||
        notify.target != target_)
        return;
    lastProgress_ = ClipboardClient::Clock::now();
    if (notify.property == XCB_ATOM_NONE) {
        data_.refuse();
    } else if (const auto reply = takeProperty()) {
        // Of pieces this is the announcement; that it is gone tells the owner to begin.
        data_.takeAnswer(incomingProperty(*reply));
    } else {
        data_.fail();
    }
}

void IncomingTransfer::onPiece() {
    const auto reply = takeProperty();
    if (!reply) {
        data_.fail();
        return;
    }
    if (reply->type != XCB_ATOM_NONE)
        lastProgress_ = ClipboardClient::Clock::now();
    data_.takePiece(incomingProperty(*reply));
}

XcbPtr<xcb_get_property_reply_t> IncomingTransfer::takeProperty() {
    // More than the limit leaves the property where it is, and bytes after.
    const auto words = static_cast<std::uint32_t>(data_.bytesLeft() / 4 + 1);
    return XcbPtr<xcb_get_property_reply_t>(xcb_get_property_reply(
        client_.connection(),
        xcb_get_property(client_.connection(), 1, window_, client_.atoms().transfer,
                         XCB_GET_PROPERTY_TYPE_ANY, 0, words),
        nullptr));
}

} // namespace kelvora

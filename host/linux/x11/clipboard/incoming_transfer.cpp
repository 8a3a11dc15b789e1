// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/incoming_transfer.h"

#include <span>

namespace kelvora {

IncomingTransfer::IncomingTransfer(ClipboardClient& client, xcb_window_t window, xcb_atom_t target,
                                   xcb_timestamp_t time, std::size_t maximumBytes)
    : client_(client), window_(window), target_(target), maximumBytes_(maximumBytes) {
    xcb_delete_property(client_.connection(), window_, client_.atoms().transfer);
    xcb_convert_selection(client_.connection(), window_, client_.atoms().clipboard, target_,
                          client_.atoms().transfer, time);
}

void IncomingTransfer::onEvent(const xcb_generic_event_t& event) {
    if (state_ != State::underWay)
        return;
    const int type = event.response_type & 0x7F;
    if (type == XCB_SELECTION_NOTIFY && !isInPieces_) {
        onNotify(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
    } else if (type == XCB_PROPERTY_NOTIFY && isInPieces_) {
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
        state_ = State::refused;
        return;
    }
    const auto reply = takeProperty();
    if (!reply) {
        fail();
    } else if (reply->type == XCB_ATOM_NONE) {
        state_ = State::refused; // the owner says that it gave it, and did not
    } else if (reply->type == client_.atoms().incr) {
        isInPieces_ = true; // that the property is gone tells the owner to begin
    } else {
        append(*reply);
        state_ = State::complete;
    }
}

void IncomingTransfer::onPiece() {
    const auto reply = takeProperty();
    if (!reply) {
        fail();
        return;
    }
    if (reply->type == XCB_ATOM_NONE)
        return; // notice of a piece that has been taken already
    lastProgress_ = ClipboardClient::Clock::now();
    if (xcb_get_property_value_length(reply.get()) == 0) {
        if (format_ == 0)
            append(*reply); // nothing but the end: the data is empty
        state_ = State::complete;
    } else if (format_ != 0 && (reply->type != type_ || reply->format != format_)) {
        fail();
    } else {
        append(*reply);
    }
}

XcbPtr<xcb_get_property_reply_t> IncomingTransfer::takeProperty() {
    // More than the limit would leave the property where it is, and bytes after.
    const std::size_t left = maximumBytes_ - bytes_.size();
    XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        client_.connection(),
        xcb_get_property(client_.connection(), 1, window_, client_.atoms().transfer,
                         XCB_GET_PROPERTY_TYPE_ANY, 0, static_cast<std::uint32_t>(left / 4 + 1)),
        nullptr));
    if (reply && (reply->bytes_after != 0 ||
                  static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) > left))
        reply.reset();
    return reply;
}

void IncomingTransfer::append(const xcb_get_property_reply_t& reply) {
    type_ = reply.type;
    format_ = reply.format;
    const std::span bytes(static_cast<const std::byte*>(xcb_get_property_value(&reply)),
                          static_cast<std::size_t>(xcb_get_property_value_length(&reply)));
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

} // namespace kelvora

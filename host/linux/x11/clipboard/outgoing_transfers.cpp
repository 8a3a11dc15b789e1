// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/outgoing_transfers.h"

#include <algorithm>

namespace kelvora {
namespace {

constexpr std::chrono::seconds idleLimit{5};
constexpr std::size_t maximumTransfers = 64;
/// More would keep the server from its other clients for too long.
constexpr std::size_t largestPiece = 256UL * 1024;
constexpr std::size_t requestOverhead = 64;

} // namespace

OutgoingTransfers::OutgoingTransfers(ClipboardClient& client)
    : client_(client),
      pieceSize_(std::min(largestPiece,
                          std::size_t{4} * xcb_get_maximum_request_length(client.connection()) -
                              requestOverhead)) {}

void OutgoingTransfers::give(xcb_window_t requestor, xcb_atom_t property,
                             const ClipboardTarget& target) {
    // Asked for again: the requestor has forgotten about the one under way.
    drop([&](const Transfer& transfer) {
        return transfer.requestor == requestor && transfer.property == property;
    });
    const auto& bytes = target.data.bytes;
    if (bytes->size() <= pieceSize_) {
        write(requestor, property, target.type, target.format, bytes->data(), bytes->size());
        return;
    }
    if (transfers_.size() == maximumTransfers)
        giveUpOverdue(*nextDeadline());
    watch(requestor);
    transfers_.push_back({requestor, property, target.type, target.format, bytes, 0,
                          ClipboardClient::Clock::now() + idleLimit});
    const auto announcedSize = static_cast<std::uint32_t>(bytes->size());
    xcb_change_property(client_.connection(), XCB_PROP_MODE_REPLACE, requestor, property,
                        client_.atoms().incr, 32, 1, &announcedSize);
}

void OutgoingTransfers::onPropertyDeleted(xcb_window_t requestor, xcb_atom_t property) {
    const auto transfer = std::ranges::find_if(transfers_, [&](const Transfer& each) {
        return each.requestor == requestor && each.property == property;
    });
    if (transfer == transfers_.end() || sendPiece(*transfer))
        return;
    transfers_.erase(transfer);
    unwatch(requestor);
}

void OutgoingTransfers::onWindowDestroyed(xcb_window_t requestor) {
    drop([requestor](const Transfer& transfer) { return transfer.requestor == requestor; });
}

void OutgoingTransfers::giveUpOverdue(ClipboardClient::Clock::time_point now) {
    drop([now](const Transfer& transfer) { return transfer.deadline <= now; });
}

std::optional<ClipboardClient::Clock::time_point> OutgoingTransfers::nextDeadline() const {
    if (transfers_.empty())
        return std::nullopt;
    return std::ranges::min_element(transfers_, {}, &Transfer::deadline)->deadline;
}

bool OutgoingTransfers::sendPiece(Transfer& transfer) {
    const std::size_t size = std::min(pieceSize_, transfer.bytes->size() - transfer.sent);
    write(transfer.requestor, transfer.property, transfer.type, transfer.format,
          transfer.bytes->data() + transfer.sent, size);
    transfer.sent += size;
    transfer.deadline = ClipboardClient::Clock::now() + idleLimit;
    return size > 0; // an empty piece says that this is all
}

void OutgoingTransfers::write(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                              std::uint8_t format, const std::byte* bytes, std::size_t size) {
    xcb_change_property(client_.connection(), XCB_PROP_MODE_REPLACE, requestor, property, type,
                        format, static_cast<std::uint32_t>(size / (format / 8)), bytes);
}

void OutgoingTransfers::watch(xcb_window_t requestor) {
    const std::uint32_t eventMask =
        XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(client_.connection(), requestor, XCB_CW_EVENT_MASK, &eventMask);
}

void OutgoingTransfers::unwatch(xcb_window_t requestor) {
    if (std::ranges::find(transfers_, requestor, &Transfer::requestor) != transfers_.end())
        return;
    const std::uint32_t eventMask = XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(client_.connection(), requestor, XCB_CW_EVENT_MASK, &eventMask);
}

template <typename Condition>
void OutgoingTransfers::drop(const Condition& condition) {
    std::vector<xcb_window_t> requestors;
    for (const Transfer& transfer : transfers_)
        if (condition(transfer))
            requestors.push_back(transfer.requestor);
    std::erase_if(transfers_, condition);
    for (const xcb_window_t requestor : requestors)
        unwatch(requestor);
}

} // namespace kelvora
